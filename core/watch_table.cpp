#include <core/watch_table.h>

#include <base/kv_file_system.h>
#include <core/session.h>
#include <sm/tv_sm_database.h>

TVRX_DEFINE_MEMBERS(CTvSmSheetSetEventsHandler, TvSmEvents)

core::WatchTable g_watchTable;

CTvSmSheetSetEventsHandler::CTvSmSheetSetEventsHandler(core::WatchTable* table) : m_table(table) {}

CTvSmSheetSetEventsHandler::~CTvSmSheetSetEventsHandler() = default;

void CTvSmSheetSetEventsHandler::onEvent(int code, TvSmPersist* object)
{
    auto* database = tvrxCast<TvSmDatabase>(object);
    if (!database || !m_table)
        return;
    switch (code) {
    case SmEventDatabaseOpened: return opened(*database);
    case SmEventDatabaseClosing: return closing(*database);
    case SmEventDatabaseWritten: m_writtenSinceLockEnded = true; return;
    case SmEventLockEnded: return lockEnded(*database);
    default: return;
    }
}

void CTvSmSheetSetEventsHandler::opened(TvSmDatabase& database)
{
    if (m_table->contains(&database))
        return;
    core::WatchEntry entry;
    entry.database = &database;
    entry.lockStatus = database.getLockStatus();
    entry.handler = std::make_unique<CTvSmSheetSetEventsHandler>(m_table);
    entry.cookie = database.registerEventHandler(entry.handler.get());
    entry.fileTime = KvFileSystem::getModificationTime(database.getFileName());
    m_table->emplace(&database, std::move(entry));
}

void CTvSmSheetSetEventsHandler::closing(TvSmDatabase& database)
{
    const auto entry = m_table->find(&database);
    if (entry == m_table->end())
        return;
    database.unregisterEventHandler(entry->second.cookie);
    m_table->erase(entry);
}

void CTvSmSheetSetEventsHandler::lockEnded(TvSmDatabase& database)
{
    if (!std::exchange(m_writtenSinceLockEnded, false) || &database != GetCurrentDatabase())
        return;
    if (const auto entry = m_table->find(&database); entry != m_table->end())
        entry->second.fileTime = KvFileSystem::getModificationTime(database.getFileName());
    RefreshAllPalettes();
}
