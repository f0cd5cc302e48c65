#pragma once

#include <chrono>
#include <cstdint>

namespace base {

/// Time as the rooms see it; tests supply a clock that they move by hand.
class Clock
{
public:
    virtual ~Clock() = default;
    /// Nanoseconds since 1970-01-01 UTC.
    virtual std::int64_t utcNs() = 0;
    /// Nanoseconds that only go forward; the starting point means nothing.
    virtual std::int64_t steadyNs() = 0;
    virtual void sleep(std::chrono::milliseconds delay) = 0;
};

/// The machine's clock.
Clock& systemClock();

/// A clock that stands still until it is told; sleeping moves it at once.
class ManualClock : public Clock
{
public:
    explicit ManualClock(std::int64_t startNs = 1'700'000'000'000'000'000) : m_nowNs(startNs) {}
    std::int64_t utcNs() override { return m_nowNs; }
    std::int64_t steadyNs() override { return m_nowNs; }
    void sleep(std::chrono::milliseconds delay) override { advance(delay); }
    void advance(std::chrono::nanoseconds delta) { m_nowNs += delta.count(); }

private:
    std::int64_t m_nowNs;
};

/// A time in 100 ns units since 1601-01-01 UTC, as file times travel; 0 stands for "unreadable".
std::uint64_t fileTimeFromUnixNs(std::int64_t unixNs);

} // namespace base
