#include <thread>

#include <gtest/gtest.h>

#include <base/confined_program.h>

namespace {

using Bytes = std::vector<std::byte>;

Bytes bytesOf(std::string_view text)
{
    const auto* const first = reinterpret_cast<const std::byte*>(text.data());
    return {first, first + text.size()};
}

base::Result<Bytes> shell(const char* script, std::string_view input = {},
                          const base::ProgramLimits& limits = {})
{
    return base::runConfined(u"/bin/sh", {"-c", script}, bytesOf(input), limits);
}

} // namespace

TEST(ConfinedProgram, AnswersWhatItIsGiven)
{
    const auto answer = shell("cat; echo more", "some");
    ASSERT_TRUE(bool(answer));
    EXPECT_EQ(*answer, bytesOf("somemore\n"));
    const std::string much(3'000'000, 'x');
    base::ProgramLimits limits;
    limits.output = much.size();
    const auto large = shell("cat", much, limits);
    ASSERT_TRUE(bool(large));
    EXPECT_EQ(large->size(), much.size());
}

TEST(ConfinedProgram, ThatFailsOrIsNotThereIsAFailure)
{
    EXPECT_FALSE(bool(shell("echo some; exit 3")));
    EXPECT_FALSE(bool(shell("kill -SEGV $$")));
    EXPECT_FALSE(bool(base::runConfined(u"/nowhere/at/all", {}, {}, {})));
}

TEST(ConfinedProgram, ThatSaysTooMuchIsAFailure)
{
    base::ProgramLimits limits;
    limits.output = 3;
    EXPECT_TRUE(bool(shell("printf abc", {}, limits)));
    EXPECT_EQ(shell("printf abcd", {}, limits).status().failure(), base::Failure::TooLarge);
}

TEST(ConfinedProgram, IsEndedAfterItsTime)
{
    base::ProgramLimits limits;
    limits.time = std::chrono::milliseconds(100);
    EXPECT_EQ(shell("while :; do :; done", {}, limits).status().failure(),
              base::Failure::Interrupted);
}

TEST(ConfinedProgram, IsEndedWhenNobodyWantsItsAnswer)
{
    std::atomic<bool> stop = false;
    base::ProgramLimits limits;
    limits.time = std::chrono::hours(1);
    limits.stop = &stop;
    std::thread impatient([&stop] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        stop = true;
    });
    EXPECT_EQ(shell("while :; do :; done", {}, limits).status().failure(),
              base::Failure::Interrupted);
    impatient.join();
}

TEST(ConfinedProgram, HasNothingOfOursOpen)
{
    // Its three files, the sign that it lives, and the folder that is being listed.
    const auto open = shell("ls /proc/self/fd");
    ASSERT_TRUE(bool(open));
    EXPECT_EQ(*open, bytesOf("0\n1\n2\n3\n4\n"));
}

TEST(FolderOfCode, IsWhereItsLibraryLies)
{
    const TvString folder = base::folderOfCode(reinterpret_cast<const void*>(&base::folderOfCode));
    EXPECT_TRUE(folder.utf8().ends_with("/lib")) << folder.utf8();
    EXPECT_TRUE(base::folderOfCode(nullptr).isEmpty());
}
