#include "file_test_tools.h"

#include "kill_at_syscall.h"

#include <array>
#include <csignal>
#include <stdexcept>

#include <gtest/gtest.h>

namespace {

using Names = std::vector<std::string>;

using Paths = std::array<std::string, 3>;

/// Three system calls, each of which leaves a trace, and no others: asking for memory is one too,
/// and so may be what a sanitizer does to look at an object with virtual functions.
int makeThree(const Paths& paths)
{
    for (const std::string& path : paths)
        ::mkdir(path.c_str(), 0700);
    return 7;
}

class KillAtSyscallTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (runKilledAt(0, [] { return 0; }).end == KillOutcome::End::NotPermitted)
            GTEST_SKIP() << "tracing is not permitted here";
    }

    TempFolder m_folder;
    const Paths m_paths = {nativeIn(m_folder, "1"), nativeIn(m_folder, "2"),
                           nativeIn(m_folder, "3")};
};

TEST_F(KillAtSyscallTest, KillsBeforeTheCallDoesAnything)
{
    const KillOutcome outcome = runKilledAt(2, [&paths = m_paths] { return makeThree(paths); });

    EXPECT_EQ(outcome.end, KillOutcome::End::Killed);
    EXPECT_EQ(outcome.calls, 2);
    EXPECT_EQ(outcome.exitCode, -1);
    EXPECT_EQ(namesIn(m_folder), Names{"1"});
}

TEST_F(KillAtSyscallTest, LetsTheWorkEndWhenItMakesFewerCalls)
{
    const KillOutcome outcome = runKilledAt(100, [&paths = m_paths] { return makeThree(paths); });

    EXPECT_EQ(outcome.end, KillOutcome::End::Finished);
    EXPECT_EQ(outcome.calls, 3);
    EXPECT_EQ(outcome.exitCode, 7);
    EXPECT_EQ(namesIn(m_folder), (Names{"1", "2", "3"}));
}

TEST_F(KillAtSyscallTest, GoesThroughAllCallsInTurn)
{
    std::vector<std::size_t> left;
    const KillSeries series = killAtEverySyscall(
        [&] {
            for (const std::string& name : namesIn(m_folder))
                std::filesystem::remove(nativeIn(m_folder, name));
        },
        [&paths = m_paths] { return makeThree(paths); },
        [&](const KillOutcome&) { left.push_back(namesIn(m_folder).size()); });

    EXPECT_EQ(left, (std::vector<std::size_t>{0, 1, 2, 3}));
    EXPECT_EQ(series.kills, 3);
    EXPECT_EQ(series.exitCode, 7);
    EXPECT_TRUE(series.hasEnded);
}

TEST_F(KillAtSyscallTest, StopsAtTheMostCalls)
{
    const KillSeries series = killAtEverySyscall(
        [] {}, [&paths = m_paths] { return makeThree(paths); }, [](const KillOutcome&) {}, 2);
    EXPECT_EQ(series.kills, 2);
    EXPECT_FALSE(series.hasEnded);
}

TEST_F(KillAtSyscallTest, TellsOfWorkThatThrows)
{
    const KillOutcome outcome = runKilledAt(0, []() -> int { throw std::runtime_error("no"); });
    EXPECT_EQ(outcome.end, KillOutcome::End::Finished);
    EXPECT_EQ(outcome.exitCode, 120);
}

TEST_F(KillAtSyscallTest, DeliversSignalsOfItsOwn)
{
    const KillOutcome outcome = runKilledAt(0, [] {
        ::raise(SIGTERM);
        return 0;
    });
    EXPECT_EQ(outcome.end, KillOutcome::End::Finished);
    EXPECT_EQ(outcome.exitCode, -1) << "ended by the signal";
}

} // namespace
