#include <db/tv_db_transaction.h>

#include "database_impl.h"

void TvDbTransaction::closeAll()
{
    for (std::size_t i = m_opened.size(); i-- > 0;)
        m_opened[i]->close();
    m_opened.clear();
}

TvDbTransactionManager::TvDbTransactionManager(TvDbDatabase& database) : m_database(database) {}

TvDbTransactionManager::~TvDbTransactionManager() = default;

TvDbTransaction* TvDbTransactionManager::startTransaction()
{
    m_database.impl().log().startTransaction();
    return m_open.emplace_back(std::make_unique<TvDbTransaction>(m_database)).get();
}

TvStatusCode TvDbTransactionManager::endTransaction()
{
    if (m_open.empty())
        return TvStatus::InvalidInput;
    m_open.back()->closeAll();
    m_open.pop_back();
    m_database.impl().log().endTransaction();
    return TvStatus::Ok;
}

TvStatusCode TvDbTransactionManager::abortTransaction()
{
    if (m_open.empty())
        return TvStatus::InvalidInput;
    m_open.back()->closeAll();
    m_open.pop_back();
    m_database.impl().log().abortTransaction();
    return TvStatus::Ok;
}

int TvDbTransactionManager::numActiveTransactions() const
{
    return static_cast<int>(m_open.size());
}

TvDbTransaction* TvDbTransactionManager::topTransaction() const
{
    return m_open.empty() ? nullptr : m_open.back().get();
}
