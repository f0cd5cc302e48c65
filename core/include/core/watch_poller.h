#pragma once

#include <memory>
#include <optional>
#include <vector>

#include <base/edit_lock.h>
#include <core/apart_work.h>

class TvSmDatabase;

namespace core {

/// Polls the watch table as PollWatchTable() does, with the same reactions in the same order, but
/// asks the disk in another thread: a file server that is away keeps nobody waiting.
///
/// Where the disk answers at once, a tick does all that it has to do. What it has not answered yet
/// is taken at a later tick; a set whose folder is silent for long counts as one that cannot be
/// reached, keeps no other set from being watched, and is asked again when its folder is back.
///
/// While one lives, lockInfoAtHand() answers from what it saw last.
class WatchPoller
{
public:
    /// How long a tick waits for answers, and after which time a set counts as unreachable.
    static constexpr int kWaitMs = 20, kSilentMs = 1000;

    explicit WatchPoller(int waitMs = kWaitMs, int silentMs = kSilentMs);
    ~WatchPoller();
    WatchPoller(const WatchPoller&) = delete;
    WatchPoller& operator=(const WatchPoller&) = delete;

    /// @param mayAsk  the user may be asked about what was left beside a set.
    void tick(bool mayAsk = true);

private:
    struct Looks;
    std::unique_ptr<Looks> begin();
    bool isSilent(const TvSmDatabase* database) const;
    void take(Looks& looks, std::vector<TvSmDatabase*>& withLeftovers);
    void leaveSilent();

    const int m_waitMs, m_silentMs;
    std::unique_ptr<Looks> m_looks;               // those that are under way
    std::vector<std::unique_ptr<Looks>> m_silent; // each stuck at one set
    bool m_isTicking = false;
};

/// Whether there is one.
bool isWatching();

/// The state of a set's lock for who shows it: while a WatchPoller lives what it saw last, without
/// a question to the disk; else as it is now.
base::LockInfo lockInfoAtHand(const TvSmDatabase* database);
/// The same as the number that TvSmDatabase::getLockStatus() gives.
int lockStatusAtHand(const TvSmDatabase* database);

/// The database for who is about to change it; null while its folder does not answer, which would
/// keep him waiting.
TvSmDatabase* answering(TvSmDatabase* database);

} // namespace core
