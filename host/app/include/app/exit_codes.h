#pragma once

#include <base/status.h>

namespace app {

/// How the program ends. Numbers are forever: scripts test them.
enum class ExitCode : int {
    Ok = 0,
    PartlyFailed = 1, ///< It ran to its end, but a drawing or a command failed.
    Usage = 2,
    NoInput = 3, ///< A drawing or the script is missing or cannot be read.
    Locked = 4,  ///< Somebody else has it in use.
    Damaged = 7, ///< Or not supported.
    CannotWrite = 8,
    Internal = 70,
    Interrupted = 130,
};

/// Of a drawing or script that could not be opened.
ExitCode exitCodeOf(base::Failure failure);

} // namespace app
