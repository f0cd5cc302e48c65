#pragma once

#include <optional>

#include <base/clock.h>
#include <base/edit_lock.h>
#include <base/publish.h>
#include <base/status.h>
#include <core/watch_table.h>

namespace core {

/// One look at a set's file: what is asked is copied, so that it can be asked in another thread.
struct WatchQuestion {
    TvSmDatabase* database = nullptr; ///< only to find the entry again
    unsigned generation = 0;          ///< of the entry, when it was asked
    TvString path;
    TvString leftover;                    ///< may be beside it; empty: nothing is
    std::optional<base::FileStamp> known; ///< the version that is in memory
    bool isKnownMissing = false;          ///< nobody waits for it to come back
    bool asksLock = false;
    bool reads = false; ///< another version, too
};
struct WatchAnswer {
    base::Result<base::FileStamp> seen = base::FileStamp();
    std::optional<base::LockInfo> lock;
    std::optional<base::Result<base::VersionRead>> version; ///< another one, read; else none
    bool hasLeftover = false;
};

/// Asks the disk nothing.
/// @param apart  it will be asked in another thread: the lock, too.
WatchQuestion watchQuestion(const WatchEntry& entry, bool apart);
WatchAnswer answerTo(const WatchQuestion& question, base::FileOps& ops, base::Clock& clock);
/// What follows from it, for the set and for the palettes. Nothing when the set closed, or its file
/// was taken over anew, since it was asked.
void actOn(const WatchQuestion& question, WatchAnswer& answer);

WatchEntry* watchEntryOf(const TvSmDatabase* database);
/// Notes another state of the lock, and shows it if the set is the current one.
void noteLock(WatchEntry& entry, const base::LockInfo& lock);

} // namespace core
