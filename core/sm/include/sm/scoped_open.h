#pragma once

#include <sm/tv_sm_sheet_set_mgr.h>

namespace sm {

/// A quiet look into a set: opens it if it is not open yet, and closes only what it opened itself.
class [[nodiscard]] ScopedOpen
{
public:
    /// @param manager  not owned; null gives a scope without database.
    ScopedOpen(TvSmSheetSetMgr* manager, const TvString& path) : m_manager(manager)
    {
        if (!manager)
            return;
        m_db = manager->findOpenDatabase(path);
        m_openedHere = m_db == nullptr;
        if (m_openedHere)
            m_db = manager->openDatabase(path, true, 0);
    }
    ~ScopedOpen()
    {
        if (m_db && m_openedHere)
            m_manager->closeDatabase(m_db);
    }
    ScopedOpen(const ScopedOpen&) = delete;
    ScopedOpen& operator=(const ScopedOpen&) = delete;

    explicit operator bool() const { return m_db != nullptr; }
    TvSmDatabase* database() const { return m_db; }
    /// Whether the set was closed before, and will be again.
    bool openedHere() const { return m_db && m_openedHere; }
    /// Keeps the database open when the scope ends.
    TvSmDatabase* keepOpen()
    {
        m_openedHere = false;
        return m_db;
    }

private:
    TvSmSheetSetMgr* m_manager;
    TvSmDatabase* m_db = nullptr; // the manager's
    bool m_openedHere = false;
};

} // namespace sm
