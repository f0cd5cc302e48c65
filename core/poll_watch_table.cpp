#include <base/kv_file_system.h>
#include <base/publish.h>
#include <core/session.h>
#include <core/watch_table.h>
#include <sm/environment.h>
#include <sm/tv_sm_database.h>

namespace {

using base::Failure;

constexpr int kTries = 6, kDelayMs = 500; // while the folder cannot be reached

core::WatchEntry* entryOf(TvSmDatabase* database)
{
    const auto entry = g_watchTable.find(database);
    return entry == g_watchTable.end() ? nullptr : &entry->second;
}

void writeAgain(core::WatchEntry& entry)
{
    if (entry.neverHadAFile() || entry.isGivenUp)
        return;
    TvSmDatabase* database = entry.database;
    const bool isWritten = database->save(0);
    if (core::WatchEntry* still = entryOf(database)) {
        still->takeFile();
        still->isGivenUp = !isWritten;
        // That it once was there is not forgotten with the time.
        if (!isWritten)
            still->stamp = base::FileStamp();
    }
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

/// Whether looking again later may give another answer for the same file.
bool mayPass(const base::Status& failure)
{
    switch (failure.failure()) {
    case Failure::Damaged:
    case Failure::Unsupported:
    case Failure::TooLarge: return false;
    default: return true;
    }
}

void takeOver(core::WatchEntry& entry)
{
    constexpr int kHeldByUs = 1;
    TvSmDatabase* database = entry.database;
    if (entry.lockStatus == kHeldByUs || database->isBusy())
        return;
    const bool isLoaded = database->load(database->getFileName());
    if (!isLoaded && mayPass(sm::lastStatus(database)))
        return;
    if (core::WatchEntry* still = entryOf(database))
        still->takeFile();
    if (isLoaded)
        core::sessionDatabaseChanged(database);
}

/// What is there now; a file that went is waited for, but not one that is known to be missing.
base::Result<base::FileStamp> lookAtFile(const core::WatchEntry& entry)
{
    const TvString path = entry.database->getFileName();
    if ((entry.isGivenUp || entry.neverHadAFile()) &&
        !KvFileSystem::isFileExisting(path, kTries, kDelayMs))
        return base::Status(Failure::NotFound, base::Reason::FileMissing, {path});
    return base::lookAt(sm::files(), sm::clock(), path);
}

bool isAnotherFile(const core::WatchEntry& entry, const base::FileStamp& seen)
{
    return entry.stamp != seen || entry.fileTime != base::fileTimeFromUnixNs(seen.modifiedNs);
}

void pollOne(TvSmDatabase* database)
{
    core::WatchEntry* entry = entryOf(database);
    if (!entry)
        return;
    const auto seen = lookAtFile(*entry);
    const bool isGone = !seen && seen.status().failure() == Failure::NotFound;
    if (isGone)
        writeAgain(*entry);
    if ((entry = entryOf(database)))
        lookAtLock(*entry);
    if ((entry = entryOf(database)) && seen && isAnotherFile(*entry, *seen))
        takeOver(*entry);
}

} // namespace

void PollWatchTable()
{
    std::vector<TvSmDatabase*> databases;
    for (const auto& [database, entry] : g_watchTable)
        databases.push_back(database);
    for (TvSmDatabase* database : databases)
        pollOne(database);
}
