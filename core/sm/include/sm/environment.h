#pragma once

#include <base/clock.h>
#include <base/file_ops.h>
#include <base/tv_db_handle.h>
#include <base/tv_string.h>

class TvDbDatabase;
class TvSmSheetSetMgr;

namespace sm {

/// What the model asks of a document, supplied by the host: which layout the user has before him.
class CurrentLayoutProvider
{
public:
    virtual ~CurrentLayoutProvider() = default;
    /// False in model space and without a document; then the arguments are left alone.
    virtual bool currentLayout(TvDbDatabase*& db, TvString& drawingName, TvDbHandle& layout) = 0;
};

/// What the model stands on. One for the process, since databases are made by their default
/// constructor; set it before the first database, and in tests.
struct Environment {
    base::FileOps* files = nullptr;          // not owned; the system's when null
    base::Clock* clock = nullptr;            // not owned; the machine's when null
    CurrentLayoutProvider* layout = nullptr; // not owned; none: no document
    TvString purpose = u"edit";              // told to others who meet our lock
    TvSmSheetSetMgr* manager = nullptr;      // not owned; the process's one when null
    bool useEditLock = true;                 // off only to prove that the fence alone loses nothing
};

Environment& environment();
base::FileOps& files();
base::Clock& clock();

} // namespace sm
