#include <core/watch_poll.h>

#include <vector>

#include <base/kv_file_system.h>
#include <core/session.h>
#include <core/watch_table.h>
#include <sm/tv_sm_database.h>

namespace {

constexpr int kTries = 6, kDelayMs = 500;
constexpr int kLockedHere = 1;

std::uint64_t timeOf(const TvSmDatabase& database)
{
    return KvFileSystem::getModificationTime(database.getFileName());
}

/// Null when the set was closed meanwhile.
core::WatchEntry* entryOf(TvSmDatabase* database)
{
    const auto entry = g_watchTable.find(database);
    return entry == g_watchTable.end() ? nullptr : &entry->second;
}

void bringBack(core::WatchEntry& entry)
{
    if (KvFileSystem::isFileExisting(entry.database->getFileName(), kTries, kDelayMs))
        return;
    entry.database->save(0);
    entry.fileTime = timeOf(*entry.database);
}

void lookAtLock(core::WatchEntry& entry)
{
    const int status = entry.database->getLockStatus();
    if (status == entry.lockStatus)
        return;
    entry.lockStatus = status;
    if (entry.database == GetCurrentDatabase())
        RefreshLockState();
}

void lookAtTime(core::WatchEntry& entry)
{
    TvSmDatabase& database = *entry.database;
    const std::uint64_t time = timeOf(database);
    if (time == entry.fileTime || entry.lockStatus == kLockedHere)
        return;
    // What was written since is seen at the next look.
    entry.fileTime = time;
    database.load(database.getFileName());
    if (&database == GetCurrentDatabase())
        RefreshAllPalettes();
}

} // namespace

void PollWatchTable()
{
    // Palettes that are told may open and close sets: the walk goes over a copy.
    std::vector<TvSmDatabase*> watched;
    for (const auto& [database, entry] : g_watchTable)
        watched.push_back(database);
    for (TvSmDatabase* database : watched) {
        for (void (*const look)(core::WatchEntry&) : {bringBack, lookAtLock, lookAtTime}) {
            core::WatchEntry* entry = entryOf(database);
            if (!entry || database->isBusy() || !sm::committedHash(database))
                break;
            look(*entry);
        }
    }
}
