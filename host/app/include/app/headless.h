#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include <app/exit_codes.h>
#include <app/options.h>
#include <app/program_folders.h>

namespace app {

/// Where a program without a window writes, and what it reads.
struct HeadlessPorts {
    std::function<void(std::string_view)> out, err; ///< UTF-8
    std::function<base::Result<std::vector<std::byte>>()> readStandardInput;
};

/// Opens the drawings, runs the script, and ends: all that the program does without a window.
///
/// The first drawing that could be opened is active when the script begins. What the script leaves
/// unsaved is gone, and that is said.
/// @return Ok when everything worked; of one drawing that cannot be opened its failure's code;
///         PartlyFailed when something else failed.
ExitCode runHeadless(const Options& options, const ProgramFolders& folders,
                     const HeadlessPorts& ports);

/// Runs the script that the options name, if they name one. Says why it cannot be read.
/// @return that reason's kind.
base::Failure runStartScript(const Options& options, const HeadlessPorts& ports);

} // namespace app
