#include "watch_look.h"

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <base/publish.h>
#include <core/leftover.h>
#include <core/session.h>
#include <sm/environment.h>
#include <sm/load_version.h>
#include <sm/locked_here.h>
#include <sm/tv_sm_database.h>

#include "silent_folders.h"

namespace core {

namespace {

using base::Failure;

constexpr int kTries = 6, kDelayMs = 500; // while the folder cannot be reached

void writeAgain(WatchEntry& entry)
{
    if (entry.neverHadAFile() || entry.isGivenUp)
        return;
    TvSmDatabase* database = entry.database;
    const bool isWritten = database->save(0);
    if (WatchEntry* still = watchEntryOf(database)) {
        still->takeFile();
        still->isGivenUp = !isWritten;
        // That it once was there is not forgotten with the time.
        if (!isWritten)
            still->stamp = base::FileStamp();
    }
}

/// Who holds the lock himself keeps it alive by looking; nobody else could tell.
void lookAtLock(WatchEntry& entry, const std::optional<base::LockInfo>& seen)
{
    noteLock(entry,
             seen && !sm::isLockedHere(entry.database) ? *seen : sm::lockInfo(entry.database));
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

/// Reads the file, unless that was done.
bool load(TvSmDatabase& database, std::optional<base::Result<base::VersionRead>>& version)
{
    return version ? *version && sm::loadVersion(database, std::move(**version))
                   : database.load(database.getFileName());
}

void takeOver(WatchEntry& entry, std::optional<base::Result<base::VersionRead>>& version)
{
    constexpr int kHeldByUs = 1;
    TvSmDatabase* database = entry.database;
    if (entry.lockStatus == kHeldByUs || database->isBusy())
        return;
    const bool isRead = version && *version;
    const base::FileStamp stamp = isRead ? (*version)->stamp : base::FileStamp();
    const bool isLoaded = load(*database, version);
    const base::Status& failure = version && !isRead ? version->status() : sm::lastStatus(database);
    if (!isLoaded && mayPass(failure))
        return;
    if (WatchEntry* still = watchEntryOf(database))
        isRead ? still->takeStamp(stamp) : still->takeFile();
    if (isLoaded)
        sessionDatabaseChanged(database);
}

/// What is there now; a file that went is waited for, but not one that is known to be missing.
base::Result<base::FileStamp> lookAtFile(const WatchQuestion& question, base::FileOps& ops,
                                         base::Clock& clock)
{
    if (question.isKnownMissing && !KvFileSystem::isFileExisting(question.path, kTries, kDelayMs))
        return base::Status(Failure::NotFound, base::Reason::FileMissing, {question.path});
    return base::lookAt(ops, clock, question.path);
}

bool isAnotherFile(const WatchEntry& entry, const base::FileStamp& seen)
{
    return entry.stamp != seen || entry.fileTime != base::fileTimeFromUnixNs(seen.modifiedNs);
}

} // namespace

WatchEntry* watchEntryOf(const TvSmDatabase* database)
{
    const auto entry = g_watchTable.find(const_cast<TvSmDatabase*>(database));
    return entry == g_watchTable.end() ? nullptr : &entry->second;
}

void noteLock(WatchEntry& entry, const base::LockInfo& lock)
{
    entry.lock = lock;
    const int status = base::lockStatusOf(lock.state);
    if (status == entry.lockStatus)
        return;
    entry.lockStatus = status;
    if (entry.database == GetCurrentDatabase())
        RefreshLockState();
}

WatchQuestion watchQuestion(const WatchEntry& entry, bool apart)
{
    WatchQuestion question;
    question.database = entry.database;
    question.generation = entry.generation;
    question.path = entry.database->getFileName();
    question.isKnownMissing = entry.isGivenUp || entry.neverHadAFile();
    question.known = entry.stamp;
    if (!apart)
        return question;
    question.reads = !sm::isLockedHere(entry.database); // then it waits
    if (leftover().pathFor)
        question.leftover = leftover().pathFor(question.path);
    // The others know the state of their lock without the disk.
    question.asksLock = !sm::isLockedHere(entry.database) && !entry.neverHadAFile() &&
                        !sm::isReadOnlyVersion(entry.database) && sm::environment().useEditLock;
    return question;
}

WatchAnswer answerTo(const WatchQuestion& question, base::FileOps& ops, base::Clock& clock)
{
    const AskedFolder asked(folderOfNative(base::nativePath(question.path)));
    WatchAnswer answer;
    answer.seen = lookAtFile(question, ops, clock);
    if (question.reads && answer.seen && question.known && question.known != *answer.seen)
        answer.version = base::readVersion(ops, clock, question.path, sm::kLargestSetFile);
    if (question.asksLock)
        answer.lock = base::EditLock(ops, clock, question.path).query();
    base::FileInfo info;
    answer.hasLeftover = !question.leftover.isEmpty() &&
                         ops.describeName(base::nativePath(question.leftover), info) == 0;
    return answer;
}

void actOn(const WatchQuestion& question, WatchAnswer& answer)
{
    TvSmDatabase* database = question.database;
    WatchEntry* entry = watchEntryOf(database);
    if (!entry || entry->generation != question.generation)
        return;
    const bool isGone = !answer.seen && answer.seen.status().failure() == Failure::NotFound;
    if (isGone)
        writeAgain(*entry);
    if ((entry = watchEntryOf(database)))
        lookAtLock(*entry, answer.lock);
    if ((entry = watchEntryOf(database)) && answer.seen && isAnotherFile(*entry, *answer.seen))
        takeOver(*entry, answer.version);
}

} // namespace core

void PollWatchTable()
{
    std::vector<TvSmDatabase*> databases;
    for (const auto& [database, entry] : g_watchTable)
        databases.push_back(database);
    for (TvSmDatabase* database : databases)
        if (const core::WatchEntry* entry = core::watchEntryOf(database)) {
            const core::WatchQuestion question = core::watchQuestion(*entry, false);
            core::WatchAnswer answer = core::answerTo(question, sm::files(), sm::clock());
            core::actOn(question, answer);
        }
}
