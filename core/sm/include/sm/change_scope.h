#pragma once

#include <utility>

#include <sm/tv_sm_database.h>

namespace sm {

/// One change to a database: tests the lock, takes it, and rolls back unless commit() was reached.
///
/// The lock may be refused: test the scope before changing anything. A scope can be moved, for a
/// change that spans events (a drag, a wizard), and released on purpose by name.
class [[nodiscard]] ChangeScope
{
public:
    /// Takes the lock only if its status is 0; a null database is refused.
    explicit ChangeScope(TvSmDatabase* db)
        : m_db(db && db->getLockStatus() == 0 && db->lockDb(db) ? db : nullptr)
    {
    }
    /// Takes the lock without testing the status first.
    static ChangeScope withoutTest(TvSmDatabase* db)
    {
        ChangeScope scope(nullptr);
        if (db && db->lockDb(db))
            scope.m_db = db;
        return scope;
    }
    ChangeScope(ChangeScope&& other) noexcept : m_db(std::exchange(other.m_db, nullptr)) {}
    ChangeScope& operator=(ChangeScope&& other) noexcept
    {
        if (this != &other) {
            rollBack();
            m_db = std::exchange(other.m_db, nullptr);
        }
        return *this;
    }
    ~ChangeScope() { rollBack(); }

    explicit operator bool() const { return m_db != nullptr; }
    TvSmDatabase* database() const { return m_db; }

    /// Keeps the change and unlocks; false if it could not be written (then nothing changed).
    bool commit()
    {
        TvSmDatabase* db = std::exchange(m_db, nullptr);
        return db && db->unlockDb(db, true);
    }
    /// Undoes the change and unlocks. Nothing when the scope holds no lock.
    void rollBack()
    {
        if (TvSmDatabase* db = std::exchange(m_db, nullptr))
            db->unlockDb(db, false);
    }
    /// Leaves the database locked: somebody else ends the lock.
    void leaveLocked() { m_db = nullptr; }

private:
    TvSmDatabase* m_db; // not owned; null when refused or finished
};

} // namespace sm
