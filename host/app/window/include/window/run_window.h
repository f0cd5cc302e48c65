#pragma once

#include <app/headless.h>

namespace window {

/// Runs the program with its window until it ends. A start that could hand its files to a program
/// that runs already does, and ends at once.
app::ExitCode runWindow(const app::Options& options, const app::ProgramFolders& folders,
                        const app::HeadlessPorts& ports, int& argc, char** argv);

} // namespace window
