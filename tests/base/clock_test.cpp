#include <base/clock.h>

namespace {

TEST(SystemClock, TellsTheTimeAndGoesForward)
{
    base::Clock& clock = base::systemClock();
    const std::int64_t before = clock.steadyNs();

    clock.sleep(std::chrono::milliseconds(1));

    EXPECT_GE(clock.steadyNs() - before, 1'000'000);
    EXPECT_GT(clock.utcNs(), 1'600'000'000'000'000'000) << "in 2020 this was the past";
}

TEST(ManualClock, MovesOnlyWhenTold)
{
    base::ManualClock clock(1000);

    EXPECT_EQ(clock.utcNs(), 1000);
    clock.sleep(std::chrono::milliseconds(2));
    clock.advance(std::chrono::nanoseconds(5));
    EXPECT_EQ(clock.utcNs(), 2'001'005);
    EXPECT_EQ(clock.steadyNs(), 2'001'005);
}

TEST(FileTime, CountsFrom1601)
{
    EXPECT_EQ(base::fileTimeFromUnixNs(0), 116'444'736'000'000'000u);
    EXPECT_EQ(base::fileTimeFromUnixNs(1'700'000'000'123'456'789), 133'444'736'001'234'567u);
    EXPECT_EQ(base::fileTimeFromUnixNs(-1), 116'444'735'999'999'999u)
        << "rounds down before 1970 too";
    EXPECT_GT(base::fileTimeFromUnixNs(std::numeric_limits<std::int64_t>::min()), 0u)
        << "0 means unreadable";
}

} // namespace
