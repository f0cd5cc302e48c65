#pragma once

#include <optional>

#include "database_impl.h"

#include <base/clock.h>
#include <base/edit_lock.h>
#include <base/file_ops.h>

namespace db {

/// The version that a TvDb::TvDbDwgVersion stands for; 0 stands for the one that the database came
/// in. nullopt for any other number.
std::optional<Version> versionOfCode(const TvDbDatabase& database, int code);
int codeOfVersion(Version version);

base::FileOps& databaseFiles();
base::Clock& databaseClock();
/// The database of the open document of that path; null when there is none.
TvDbDatabase* documentDatabase(const TvString& path);

/// Whether both paths mean one file.
bool isSameFile(const TvString& a, const TvString& b);
/// The status of the interface for a failed file operation; @p otherwise where none says more.
TvStatusCode codeFor(const base::Status& status, TvStatusCode otherwise);

/// Whether another database of this process holds the file for writing, or somebody uses it.
bool isHeldByAnother(const TvString& path, const DatabaseImpl& asking);
/// Behind a save, which made another file of it.
void noteSaved(const DatabaseImpl& database);
/// Keeps a file from everybody else for the time of a save.
class SaveUse
{
public:
    SaveUse(const TvString& path, const TvDbDatabase& database);
    ~SaveUse();
    SaveUse(const SaveUse&) = delete;
    SaveUse& operator=(const SaveUse&) = delete;
    const base::Status& status() const { return m_status; }
    /// The system sees to it that nobody else has it now.
    bool isGuarded() const { return m_isGuarded; }

private:
    std::unique_ptr<base::EditLock> m_lock; // null: the database's own use guards it
    base::Status m_status;
    bool m_isGuarded = false;
};

/// Whether somebody but @p asking began to use the file, here or elsewhere.
bool isUsedByAnother(const TvString& path, const TvDbDatabase& asking);
/// That somebody holds the file, and who.
base::Status statusOfHeld(const TvString& path);

} // namespace db
