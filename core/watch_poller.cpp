#include <core/watch_poller.h>

#include <algorithm>

#include <base/path_rules.h>
#include <core/leftover.h>
#include <sm/environment.h>
#include <sm/locked_here.h>
#include <sm/tv_sm_database.h>

#include "silent_folders.h"
#include "watch_look.h"

namespace core {

namespace {

int g_pollers = 0;

std::string folderOf(const TvSmDatabase& database)
{
    return folderOfNative(base::nativePath(database.getFileName()));
}

} // namespace

/// One look at each of some sets, one after the other.
struct WatchPoller::Looks {
    struct Shared {
        std::vector<WatchQuestion> questions;
        std::vector<WatchAnswer> answers; // each is written before its step is done
    };
    Looks(std::vector<WatchQuestion> questions, base::FileOps& ops, base::Clock& clock)
        : shared(std::make_shared<Shared>(Shared{std::move(questions), {}})),
          sinceNs(base::systemClock().steadyNs())
    {
        shared->answers.resize(shared->questions.size());
        work.emplace(count(),
                     [asked = shared, &ops, &clock](std::size_t i, const ApartWork::GivenUp&) {
                         asked->answers[i] = answerTo(asked->questions[i], ops, clock);
                     });
    }
    std::size_t count() const { return shared->questions.size(); }
    bool isAtEnd() const { return taken == count(); }

    std::shared_ptr<Shared> shared; // the thread's, too
    std::optional<ApartWork> work;
    std::size_t taken = 0; // so many answers were acted on
    std::int64_t sinceNs;  // when the last answer came
};

WatchPoller::WatchPoller(int waitMs, int silentMs) : m_waitMs(waitMs), m_silentMs(silentMs)
{
    ++g_pollers;
}

WatchPoller::~WatchPoller()
{
    --g_pollers;
}

bool WatchPoller::isSilent(const TvSmDatabase* database) const
{
    return std::ranges::any_of(m_silent, [&](const std::unique_ptr<Looks>& each) {
        return each->shared->questions[each->taken].database == database;
    });
}

/// Looks at all sets but those that cannot be reached.
std::unique_ptr<WatchPoller::Looks> WatchPoller::begin()
{
    std::vector<WatchQuestion> questions;
    std::vector<TvSmDatabase*> unreachable;
    for (const auto& [database, entry] : g_watchTable) {
        if (isSilent(database))
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
               : std::make_unique<Looks>(std::move(questions), sm::files(), sm::clock());
}

void WatchPoller::take(Looks& looks, std::vector<TvSmDatabase*>& withLeftovers)
{
    for (const std::size_t done = looks.work->done(); looks.taken < done; ++looks.taken) {
        looks.sinceNs = base::systemClock().steadyNs();
        const WatchQuestion& question = looks.shared->questions[looks.taken];
        const WatchAnswer& answer = looks.shared->answers[looks.taken];
        if (answer.hasLeftover)
            withLeftovers.push_back(question.database);
        actOn(question, answer);
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
    if (isNew)
        m_looks = begin();
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

} // namespace core
