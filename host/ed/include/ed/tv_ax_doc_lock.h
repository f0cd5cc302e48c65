#pragma once

#include <db/tv_status.h>

class TvApDocument;
class TvDbDatabase;

/// Holds the lock of a document as long as it lives. Taken before a sheet set's lock and released
/// after it.
///
/// A drawing that is no document needs no lock: locking it works, and does nothing.
class [[nodiscard]] TvAxDocLock
{
public:
    /// Locks the document of that drawing. Null: lockStatus() is NoDatabase.
    explicit TvAxDocLock(const TvDbDatabase* database);
    /// Locks the current document; without one lockStatus() is NoDatabase.
    TvAxDocLock();
    ~TvAxDocLock();
    TvAxDocLock(const TvAxDocLock&) = delete;
    TvAxDocLock& operator=(const TvAxDocLock&) = delete;

    TvStatusCode lockStatus() const { return m_status; }

private:
    void lock(TvApDocument* document);
    TvApDocument* m_document = nullptr; // not owned; cannot close while it is locked
    TvStatusCode m_status = TvStatus::Ok;
};
