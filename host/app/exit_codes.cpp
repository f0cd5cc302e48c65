#include "app/exit_codes.h"

namespace app {

ExitCode exitCodeOf(base::Failure failure)
{
    using base::Failure;
    switch (failure) {
    case Failure::None: return ExitCode::Ok;
    case Failure::Locked: return ExitCode::Locked;
    case Failure::Damaged:
    case Failure::Unsupported:
    case Failure::TooLarge: return ExitCode::Damaged;
    case Failure::DiskFull:
    case Failure::Exists: return ExitCode::CannotWrite;
    case Failure::Usage: return ExitCode::Usage;
    case Failure::Interrupted: return ExitCode::Interrupted;
    default: return ExitCode::NoInput;
    }
}

} // namespace app
