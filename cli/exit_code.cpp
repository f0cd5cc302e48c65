#include "cli/exit_code.h"

namespace cli {

namespace {

using base::Failure;

struct Row {
    Failure failure;
    ExitCode reading;
    ExitCode writing;
};

// clang-format off
constexpr Row kRows[] = {
    {Failure::None,        ExitCode::Ok,          ExitCode::Ok},
    {Failure::NotFound,    ExitCode::NoInput,     ExitCode::NoInput},
    {Failure::Denied,      ExitCode::NoInput,     ExitCode::CannotWrite},
    {Failure::ReadOnly,    ExitCode::NoInput,     ExitCode::CannotWrite},
    {Failure::DiskFull,    ExitCode::CannotWrite, ExitCode::CannotWrite},
    {Failure::Exists,      ExitCode::CannotWrite, ExitCode::CannotWrite},
    {Failure::Locked,      ExitCode::Locked,      ExitCode::Locked},
    {Failure::Conflict,    ExitCode::Conflict,    ExitCode::Conflict},
    {Failure::Damaged,     ExitCode::Damaged,     ExitCode::Damaged},
    {Failure::Unsupported, ExitCode::Damaged,     ExitCode::Damaged},
    {Failure::Unreachable, ExitCode::NoInput,     ExitCode::CannotWrite},
    {Failure::TooLarge,    ExitCode::Damaged,     ExitCode::Damaged},
    {Failure::Usage,       ExitCode::Usage,       ExitCode::Usage},
    {Failure::Interrupted, ExitCode::Interrupted, ExitCode::Interrupted},
    {Failure::Io,          ExitCode::NoInput,     ExitCode::CannotWrite},
};
// clang-format on

} // namespace

ExitCode exitCodeOf(Failure failure, Doing doing)
{
    for (const Row& row : kRows)
        if (row.failure == failure)
            return doing == Doing::Reading ? row.reading : row.writing;
    return ExitCode::Internal;
}

} // namespace cli
