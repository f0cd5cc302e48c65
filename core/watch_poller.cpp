#include <core/watch_poller.h>

#include <algorithm>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <core/drawing_look.h>
#include <core/leftover.h>
#include <sm/environment.h>
#include <sm/locked_here.h>
#include <sm/tv_sm_database.h>

#include "ask_in_time.h"
#include "folder_notices.h"
#include "silent_folders.h"
#include "watch_look.h"

namespace core {

namespace {

int g_pollers = 0;

std::string folderOf(const TvSmDatabase& database)
{
    return folderOfNative(base::nativePath(database.getFileName()));
}

/// Whether what happens to a set's file is told from now on: nothing of one in another folder, and
/// a test's disk is none that the system knows.
bool isToldOf(const TvString& path, base::FileOps& ops, FolderNotices& notices)
{
    const std::string native = base::nativePath(path);
    const AskedFolder asked(folderOfNative(native));
    base::FileInfo info;
    return &ops == &base::systemFileOps() && notices.watch(folderOfNative(native)) &&
           ops.describeName(native, info) == 0 && info.kind == base::FileInfo::Kind::Regular;
}

} // namespace

/// How a set was when nothing was left to do: as long as nothing happens in its folder, it still
/// is.
struct WatchPoller::Settled {
    TvString path;
    std::string folder;
    std::uint64_t last = 0; ///< that had happened there
    unsigned generation = 0;
    std::int64_t sinceNs = 0;
};

/// One look at each of some sets, one after the other.
struct WatchPoller::Looks {
    struct Shared {
        std::vector<WatchQuestion> questions;
        std::vector<WatchAnswer> answers; // each is written before its step is done
        std::vector<char> isTold;         // the same; of what happens in the folder from now on
    };
    Looks(std::vector<WatchQuestion> questions, base::FileOps& ops, base::Clock& clock,
          const std::shared_ptr<FolderNotices>& notices)
        : shared(std::make_shared<Shared>(Shared{std::move(questions), {}, {}})),
          sinceNs(base::systemClock().steadyNs())
    {
        shared->answers.resize(shared->questions.size());
        shared->isTold.resize(shared->questions.size());
        for (const WatchQuestion& question : shared->questions)
            before.push_back(notices->last(folderOf(*question.database)));
        work.emplace(count(), [asked = shared, notices, &ops, &clock](std::size_t i,
                                                                      const ApartWork::GivenUp&) {
            const WatchQuestion& question = asked->questions[i];
            asked->isTold[i] = isToldOf(question.path, ops, *notices);
            asked->answers[i] = answerTo(question, ops, clock);
        });
    }
    std::size_t count() const { return shared->questions.size(); }
    bool isAtEnd() const { return taken == count(); }

    std::shared_ptr<Shared> shared; // the thread's, too
    std::optional<ApartWork> work;
    std::vector<std::optional<std::uint64_t>> before; // what had happened in each folder
    std::size_t taken = 0;                            // so many answers were acted on
    std::int64_t sinceNs;                             // when the last answer came
};

WatchPoller::WatchPoller(int waitMs, int silentMs, int trustMs)
    : m_waitMs(waitMs), m_silentMs(silentMs), m_trustMs(trustMs),
      m_notices(std::make_shared<FolderNotices>())
{
    if (++g_pollers == 1)
        sm::setDiskAsker(&askInTime);
}

WatchPoller::~WatchPoller()
{
    if (--g_pollers == 0)
        sm::setDiskAsker(nullptr);
}

bool WatchPoller::isSilent(const TvSmDatabase* database) const
{
    return std::ranges::any_of(m_silent, [&](const std::unique_ptr<Looks>& each) {
        return each->shared->questions[each->taken].database == database;
    });
}

/// False while nothing can have changed. A lock that goes with its holder is not told, nor who
/// mounts something over a folder.
bool WatchPoller::isDue(const TvSmDatabase* database) const
{
    constexpr std::int64_t kNsPerMs = 1'000'000;
    const auto settled = m_settled.find(database);
    const WatchEntry* entry = watchEntryOf(database);
    if (settled == m_settled.end() || !entry)
        return true;
    const Settled& then = settled->second;
    return m_notices->last(then.folder) != then.last || entry->generation != then.generation ||
           database->getFileName() != then.path || sm::isLockedHere(database) ||
           base::systemClock().steadyNs() - then.sinceNs > m_trustMs * kNsPerMs;
}

/// Behind the last answer that was acted on.
void WatchPoller::noteSettled(const Looks& looks)
{
    const WatchQuestion& question = looks.shared->questions[looks.taken];
    const WatchAnswer& answer = looks.shared->answers[looks.taken];
    const std::optional<std::uint64_t>& before = looks.before[looks.taken];
    const WatchEntry* entry = watchEntryOf(question.database);
    const bool isSettled = entry && looks.shared->isTold[looks.taken] && before && answer.seen &&
                           entry->stamp == *answer.seen && !answer.hasLeftover &&
                           entry->lock.state == base::LockState::Free;
    if (isSettled)
        m_settled[question.database] = {question.path, folderOf(*question.database), *before,
                                        entry->generation, looks.sinceNs};
    else
        m_settled.erase(question.database);
}

/// Looks at all sets but those that cannot be reached, and those where nothing can have changed.
std::unique_ptr<WatchPoller::Looks> WatchPoller::begin()
{
    std::vector<WatchQuestion> questions;
    std::vector<TvSmDatabase*> unreachable;
    for (const auto& [database, entry] : g_watchTable) {
        if (isSilent(database) || !isDue(database))
            continue;
        if (core::isSilent(folderOf(*database), m_silentMs))
            unreachable.push_back(database);
        else
            questions.push_back(watchQuestion(entry, true));
    }
    for (TvSmDatabase* database : unreachable)
        if (WatchEntry* entry = watchEntryOf(database); entry && !sm::isLockedHere(database))
            noteLock(*entry, {base::LockState::Unreachable, {}});
    return questions.empty()
               ? nullptr
               : std::make_unique<Looks>(std::move(questions), sm::files(), sm::clock(), m_notices);
}

void WatchPoller::take(Looks& looks, std::vector<TvSmDatabase*>& withLeftovers)
{
    for (const std::size_t done = looks.work->done(); looks.taken < done; ++looks.taken) {
        looks.sinceNs = base::systemClock().steadyNs();
        const WatchQuestion& question = looks.shared->questions[looks.taken];
        WatchAnswer& answer = looks.shared->answers[looks.taken];
        if (answer.hasLeftover)
            withLeftovers.push_back(question.database);
        actOn(question, answer);
        noteSettled(looks);
    }
}

/// The set at which the looks are stuck is left to its thread; the others are looked at anew.
void WatchPoller::leaveSilent()
{
    m_looks->work->giveUp();
    TvSmDatabase* database = m_looks->shared->questions[m_looks->taken].database;
    m_silent.push_back(std::move(m_looks));
    if (WatchEntry* entry = watchEntryOf(database); entry && !sm::isLockedHere(database))
        noteLock(*entry, {base::LockState::Unreachable, {}});
}

void WatchPoller::tick(bool mayAsk)
{
    constexpr std::int64_t kNsPerMs = 1'000'000;
    if (m_isTicking) // what an answer led to lets events through
        return;
    m_isTicking = true;
    std::vector<TvSmDatabase*> withLeftovers;
    std::erase_if(m_silent, [](const auto& each) { return each->work->isOver(); });
    const bool isNew = !m_looks;
    if (isNew) {
        m_notices->take();
        std::erase_if(m_settled, [](const auto& each) { return !watchEntryOf(each.first); });
        m_looks = begin();
    }
    if (m_looks) {
        m_looks->work->hasDone(m_looks->count(), isNew ? m_waitMs : 0);
        take(*m_looks, withLeftovers);
        if (m_looks->isAtEnd())
            m_looks.reset();
        else if (base::systemClock().steadyNs() - m_looks->sinceNs > m_silentMs * kNsPerMs)
            leaveSilent();
    }
    m_isTicking = false;
    if (!mayAsk || !leftover().lookAfter)
        return;
    // Not touching ourselves any more: the user may close everything meanwhile.
    for (TvSmDatabase* database : withLeftovers)
        if (watchEntryOf(database))
            leftover().lookAfter(*database);
}

bool isWatching()
{
    return g_pollers > 0;
}

base::LockInfo lockInfoAtHand(const TvSmDatabase* database)
{
    using base::LockState;
    const WatchEntry* entry = isWatching() ? watchEntryOf(database) : nullptr;
    if (!entry)
        return sm::lockInfo(database);
    const bool isLost = entry->lock.state == LockState::Lost;
    if (sm::isLockedHere(database))
        return {isLost ? LockState::Lost : LockState::HeldByMe, {}};
    return isLost || entry->lock.state == LockState::HeldByMe ? base::LockInfo() : entry->lock;
}

int lockStatusAtHand(const TvSmDatabase* database)
{
    return base::lockStatusOf(lockInfoAtHand(database).state);
}

TvSmDatabase* answering(TvSmDatabase* database)
{
    constexpr int kTooLongMs = 150;
    if (!database || sm::isLockedHere(database) || !isWatching())
        return database;
    const bool isAway = lockInfoAtHand(database).state == base::LockState::Unreachable ||
                        isSilent(folderOf(*database), kTooLongMs);
    return isAway ? nullptr : database;
}

bool answersInTime(const TvString& path)
{
    const std::string folder = folderOfNative(base::nativePath(path));
    if (!isWatching())
        return true;
    if (isSilent(folder, kPatienceMs))
        return false;
    ApartWork look(1, [path, folder](std::size_t, const ApartWork::GivenUp&) {
        const AskedFolder asked(folder);
        KvFileSystem::pathFileExists(path);
    });
    const bool isThere = look.hasDone(1, kPatienceMs);
    look.giveUp();
    return isThere;
}

} // namespace core
