#pragma once

#include <map>
#include <memory>
#include <optional>
#include <vector>

#include <base/edit_lock.h>
#include <core/apart_work.h>

class TvSmDatabase;

namespace core {

class FolderNotices;

/// Polls the watch table as PollWatchTable() does, with the same reactions in the same order, but
/// asks the disk in another thread: a file server that is away keeps nobody waiting.
///
/// Where the disk answers at once, a tick does all that it has to do. What it has not answered yet
/// is taken at a later tick; a set whose folder is silent for long counts as one that cannot be
/// reached, keeps no other set from being watched, and is asked again when its folder is back.
///
/// Where the system tells what happens in a folder, and nobody else has the set's lock, an idle set
/// is looked at only every few seconds.
///
/// While one lives, lockInfoAtHand() answers from what it saw last, and what is asked of files only
/// to find out whether they are open waits no longer than the panel does (sm::setDiskAsker).
class WatchPoller
{
public:
    /// How long a tick waits for answers, and after which time a set counts as unreachable.
    static constexpr int kWaitMs = 20, kSilentMs = 1000;
    /// How long a set that nothing happened to is not looked at.
    static constexpr int kTrustMs = 3000;

    explicit WatchPoller(int waitMs = kWaitMs, int silentMs = kSilentMs, int trustMs = kTrustMs);
    ~WatchPoller();
    WatchPoller(const WatchPoller&) = delete;
    WatchPoller& operator=(const WatchPoller&) = delete;

    /// @param mayAsk  the user may be asked about what was left beside a set.
    void tick(bool mayAsk = true);

private:
    struct Looks;
    struct Settled;
    std::unique_ptr<Looks> begin();
    bool isSilent(const TvSmDatabase* database) const;
    void take(Looks& looks, std::vector<TvSmDatabase*>& withLeftovers);
    void leaveSilent();
    bool isDue(const TvSmDatabase* database) const;
    void noteSettled(const Looks& looks);

    const int m_waitMs, m_silentMs, m_trustMs;
    std::shared_ptr<FolderNotices> m_notices;         // the threads', too
    std::map<const TvSmDatabase*, Settled> m_settled; // sets at which nothing was left to do
    std::unique_ptr<Looks> m_looks;                   // those that are under way
    std::vector<std::unique_ptr<Looks>> m_silent;     // each stuck at one set
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

/// Whether the folder of a file tells at once what is in it. Always, where nobody watches: then
/// whoever asks waits.
bool answersInTime(const TvString& path);

} // namespace core
