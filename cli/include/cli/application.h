#pragma once

#include <span>
#include <string>

#include <cli/console.h>

namespace cli {

/// The tool from its arguments (without the program's own name) to its exit code. Never throws.
int runTool(std::span<const std::string> arguments, Ports& ports);

} // namespace cli
