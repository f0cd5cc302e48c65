#pragma once

#include <base/status.h>

namespace cli {

/// How the tool ends. Numbers are forever: scripts test them.
enum class ExitCode : int {
    Ok = 0,
    PartlyFailed = 1, ///< Finished, but some of what was asked for failed.
    Usage = 2,
    NoInput = 3, ///< A file or an object is missing or cannot be read.
    Locked = 4,
    Conflict = 5,    ///< The file changed since it was read.
    CheckFailed = 6, ///< The check found errors.
    Damaged = 7,     ///< Or not supported.
    CannotWrite = 8,
    Internal = 70,
    Interrupted = 130,
};

/// What was being done when something failed: a right that is missing is another matter for a file
/// that is read than for one that is written.
enum class Doing { Reading, Writing };

ExitCode exitCodeOf(base::Failure failure, Doing doing);

} // namespace cli
