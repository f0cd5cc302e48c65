#include <core/apart_work.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>

namespace core {

namespace {

std::atomic<int> g_running = 0;

} // namespace

struct ApartWork::Shared {
    Shared(std::size_t all, Step&& each) : count(all), step(std::move(each)) {}

    void run()
    {
        for (std::size_t i = 0; i < count && !isGivenUp; ++i) {
            step(i, isGivenUp);
            const std::lock_guard guard(mutex);
            done = i + 1;
            if (done >= wanted)
                changed.notify_all();
        }
        const std::lock_guard guard(mutex);
        isOver = true;
        changed.notify_all();
    }

    const std::size_t count;
    const Step step;
    GivenUp isGivenUp = false;
    std::mutex mutex;
    std::condition_variable changed;
    std::size_t done = 0; // guarded, as the next two
    std::size_t wanted = 0;
    bool isOver = false;
};

ApartWork::ApartWork(std::size_t count, Step step)
    : m_shared(std::make_shared<Shared>(count, std::move(step)))
{
    if (count == 0) {
        m_shared->isOver = true;
        return;
    }
    ++g_running;
    try {
        std::thread([shared = m_shared] {
            shared->run();
            --g_running;
        }).detach();
    } catch (const std::system_error&) {
        --g_running;
        m_shared->run(); // no threads to be had: better late than never
    }
}

ApartWork::~ApartWork()
{
    constexpr std::chrono::milliseconds kForOneCall(50);
    const bool wasGivenUp = m_shared->isGivenUp.exchange(true);
    std::unique_lock guard(m_shared->mutex);
    if (!wasGivenUp)
        m_shared->changed.wait_for(guard, kForOneCall, [this] { return m_shared->isOver; });
}

bool ApartWork::hasDone(std::size_t count, int waitMs) const
{
    if (count <= m_seen)
        return true;
    std::unique_lock guard(m_shared->mutex);
    m_shared->wanted = count;
    const auto isThere = [&] { return m_shared->done >= count; };
    if (waitMs == kForEver)
        m_shared->changed.wait(guard, isThere);
    else if (waitMs > 0)
        m_shared->changed.wait_for(guard, std::chrono::milliseconds(waitMs), isThere);
    m_seen = m_shared->done;
    return count <= m_seen;
}

std::size_t ApartWork::done() const
{
    const std::lock_guard guard(m_shared->mutex);
    return m_seen = m_shared->done;
}

void ApartWork::giveUp()
{
    m_shared->isGivenUp = true;
}

int ApartWork::running()
{
    return g_running;
}

bool ApartWork::isOver() const
{
    const std::lock_guard guard(m_shared->mutex);
    return m_shared->isOver;
}

} // namespace core
