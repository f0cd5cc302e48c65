#include <core/watch_table.h>

#include <base/kv_file_system.h>
#include <base/publish.h>
#include <core/session.h>
#include <sm/environment.h>
#include <sm/tv_sm_database.h>

TVRX_DEFINE_MEMBERS(CTvSmSheetSetEventsHandler, TvSmEvents)

core::WatchTable g_watchTable;

CTvSmSheetSetEventsHandler::CTvSmSheetSetEventsHandler(core::WatchTable* table) : m_table(table) {}

CTvSmSheetSetEventsHandler::~CTvSmSheetSetEventsHandler() = default;

void core::WatchEntry::takeFile()
{
    const TvString path = database->getFileName();
    ++generation;
    stamp.reset();
    fileTime = KvFileSystem::getModificationTime(path);
    isGivenUp = false;
    if (fileTime == 0)
        return; // the look would wait for it
    if (const auto seen = base::lookAt(sm::files(), sm::clock(), path))
        stamp = *seen;
}

void core::WatchEntry::takeStamp(const base::FileStamp& seen)
{
    ++generation;
    stamp = seen;
    fileTime = base::fileTimeFromUnixNs(seen.modifiedNs);
    isGivenUp = false;
}

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
    entry.lock = sm::lockInfo(&database);
    entry.lockStatus = base::lockStatusOf(entry.lock.state);
    entry.handler = std::make_unique<CTvSmSheetSetEventsHandler>(m_table);
    entry.cookie = database.registerEventHandler(entry.handler.get());
    entry.takeFile();
    m_table->emplace(&database, std::move(entry));
}

void CTvSmSheetSetEventsHandler::closing(TvSmDatabase& database)
{
    core::sessionDatabaseCloses(&database);
    const auto entry = m_table->find(&database);
    if (entry == m_table->end())
        return;
    database.unregisterEventHandler(entry->second.cookie);
    m_table->erase(entry);
}

void CTvSmSheetSetEventsHandler::lockEnded(TvSmDatabase& database)
{
    if (!std::exchange(m_writtenSinceLockEnded, false))
        return;
    if (&database != GetCurrentDatabase())
        return core::sessionDatabaseChanged(&database);
    if (const auto entry = m_table->find(&database); entry != m_table->end())
        entry->second.takeFile();
    RefreshAllPalettes();
}
