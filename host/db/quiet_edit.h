#pragma once

#include <db/tv_db_database.h>

namespace db {

/// Changes to an object that follow from changes elsewhere: lists that must agree, names that are
/// kept twice. They are made whoever has the object open, and told to the reactors.
class QuietEdit
{
public:
    explicit QuietEdit(TvDbObjectId id);
    ~QuietEdit();
    QuietEdit(const QuietEdit&) = delete;
    QuietEdit& operator=(const QuietEdit&) = delete;

    /// False for what is not there, is erased, or cannot be changed.
    explicit operator bool() const { return static_cast<bool>(m_editor); }
    RecordEditor& operator*() { return m_editor; }
    RecordEditor* operator->() { return &m_editor; }

private:
    TvDbObject* m_object = nullptr; // open for notification; the database's
    bool m_wasOpenForChange = false;
    RecordEditor m_editor;
};

/// Whether the object could be changed; does not change it.
bool isChangeable(TvDbObjectId id);

} // namespace db
