#pragma once

#include <memory>

#include <db/tv_db_object.h>

class TvDbDatabase;

/// One open transaction; a handle that its manager owns.
class TvDbTransaction
{
public:
    explicit TvDbTransaction(TvDbDatabase& database) : m_database(database) {}
    /// Opens an object until the transaction ends.
    template <class T>
    TvStatusCode getObject(T*& out, TvDbObjectId id, TvDb::OpenMode mode = TvDb::kForRead)
    {
        const TvStatusCode status = tvdbOpenObject(out, id, mode);
        if (status == TvStatus::Ok)
            keep(out);
        return status;
    }

private:
    friend class TvDbTransactionManager;
    void keep(TvDbObject* object) { m_opened.push_back(object); }
    void closeAll();

    TvDbDatabase& m_database;
    std::vector<TvDbObject*> m_opened; // opened by us
};

/// Transactions of one drawing, one within the other. What an aborted one changed, made or erased
/// is as it was before it; what an ended one did belongs to the one around it, or to the history.
class TvDbTransactionManager
{
public:
    explicit TvDbTransactionManager(TvDbDatabase& database);
    ~TvDbTransactionManager();

    /// Null when none can be started.
    TvDbTransaction* startTransaction();
    /// Ends, or takes back, the innermost one. InvalidInput when there is none.
    TvStatusCode endTransaction();
    TvStatusCode abortTransaction();
    int numActiveTransactions() const;
    TvDbTransaction* topTransaction() const;

private:
    TvDbDatabase& m_database;
    std::vector<std::unique_ptr<TvDbTransaction>> m_open;
};
