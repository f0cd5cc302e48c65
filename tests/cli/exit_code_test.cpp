#include <cli/exit_code.h>

#include "tool_scene.h"

namespace {

using base::Failure;
using cli::Doing;
using cli::ExitCode;

TEST(ExitCodeOf, EachFailureHasItsNumber)
{
    struct Case {
        Failure failure;
        int reading, writing;
    };
    // clang-format off
    constexpr Case kCases[] = {
        {Failure::None, 0, 0},       {Failure::NotFound, 3, 3},    {Failure::Denied, 3, 8},
        {Failure::ReadOnly, 3, 8},   {Failure::DiskFull, 8, 8},    {Failure::Exists, 8, 8},
        {Failure::Locked, 4, 4},     {Failure::Conflict, 5, 5},    {Failure::Damaged, 7, 7},
        {Failure::Unsupported, 7, 7},{Failure::Unreachable, 3, 8}, {Failure::TooLarge, 7, 7},
        {Failure::Usage, 2, 2},      {Failure::Interrupted, 130, 130}, {Failure::Io, 3, 8},
    };
    // clang-format on
    for (const Case& each : kCases) {
        const int number = static_cast<int>(each.failure);
        EXPECT_EQ(static_cast<int>(cli::exitCodeOf(each.failure, Doing::Reading)), each.reading)
            << number;
        EXPECT_EQ(static_cast<int>(cli::exitCodeOf(each.failure, Doing::Writing)), each.writing)
            << number;
    }
}

TEST(ExitCodeOf, AFailureThatNobodyKnowsIsADefect)
{
    EXPECT_EQ(cli::exitCodeOf(static_cast<Failure>(999), Doing::Reading), ExitCode::Internal);
}

} // namespace
