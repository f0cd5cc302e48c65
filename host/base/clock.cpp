#include "base/clock.h"

#include <thread>

namespace {

class SystemClock : public base::Clock
{
public:
    std::int64_t utcNs() override { return nsOf(std::chrono::system_clock::now()); }
    std::int64_t steadyNs() override { return nsOf(std::chrono::steady_clock::now()); }
    void sleep(std::chrono::milliseconds delay) override { std::this_thread::sleep_for(delay); }

private:
    template <class TimePoint>
    static std::int64_t nsOf(TimePoint time)
    {
        return std::chrono::duration_cast<std::chrono::nanoseconds>(time.time_since_epoch())
            .count();
    }
};

} // namespace

namespace base {

Clock& systemClock()
{
    static SystemClock clock;
    return clock;
}

std::uint64_t fileTimeFromUnixNs(std::int64_t unixNs)
{
    constexpr std::int64_t kUnixEpoch = 116'444'736'000'000'000; // 1970-01-01, in 100 ns since 1601
    const std::int64_t ticks = unixNs / 100 - (unixNs % 100 < 0); // down, before 1970 too
    return static_cast<std::uint64_t>(ticks + kUnixEpoch); // 64 bits of ns reach back to 1677 only
}

} // namespace base
