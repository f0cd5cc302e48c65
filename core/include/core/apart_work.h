#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>

namespace core {

/// Goes through a list in a thread of its own, one step after the other, for what may take minutes
/// and cannot be interrupted: a call of the system to a file server that is away.
///
/// Who gives it up goes on at once; the thread ends by itself when its call comes back. So a step
/// holds what it works on by value or in common (std::shared_ptr), and touches nothing else once it
/// was given up.
class ApartWork
{
public:
    using GivenUp = std::atomic<bool>;
    /// Called in the other thread for 0, 1, ... What it makes may be looked at when it is done.
    using Step = std::function<void(std::size_t index, const GivenUp& isGivenUp)>;

    ApartWork(std::size_t count, Step step);
    /// Gives up. Waits a moment for the step that runs, but not for one that does not come back.
    ~ApartWork();
    ApartWork(const ApartWork&) = delete;
    ApartWork& operator=(const ApartWork&) = delete;

    static constexpr int kForEver = -1;
    /// Whether the first @p count steps are done, within @p waitMs.
    bool hasDone(std::size_t count, int waitMs) const;
    /// How many are done now.
    std::size_t done() const;
    /// Steps that were not begun are not done any more; nothing is waited for.
    void giveUp();
    /// The thread is at its end: all is done, or it was given up.
    bool isOver() const;

    /// How many threads of all ApartWork have not come to their end, given up or not. Who takes
    /// away what they work on (a test its files) waits until there are none.
    static int running();

private:
    struct Shared;
    std::shared_ptr<Shared> m_shared; // the thread's, too
    mutable std::size_t m_seen = 0;   // so many are known to be done
};

} // namespace core
