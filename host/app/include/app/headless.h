#pragma once

#include <functional>
#include <string_view>

#include <app/exit_codes.h>
#include <app/options.h>
#include <app/program_folders.h>

namespace app {

/// Where a program without a window writes, and what it reads.
struct HeadlessPorts {
    std::function<void(std::string_view)> out, err; ///< UTF-8
    std::function<base::Result<TvString>()> readStandardInput;
};

/// Opens the drawings, runs the script, and ends: all that the program does without a window.
///
/// The first drawing that could be opened is active when the script begins. What the script leaves
/// unsaved is gone, and that is said.
/// @return Ok when everything worked; of one drawing that cannot be opened its failure's code;
///         PartlyFailed when something else failed.
ExitCode runHeadless(const Options& options, const ProgramFolders& folders,
                     const HeadlessPorts& ports);

/// The text of a script, its line ends made line feeds. At most a few megabytes.
base::Result<TvString> readScript(const TvString& path);
/// The same of what is in memory.
TvString scriptText(std::string_view utf8);

} // namespace app
