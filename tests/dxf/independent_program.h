#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// Runs one of the scripts beside the tests, which use an independent program for drawings.
struct ScriptRun {
    int exitCode = 0;
    std::string output;                              ///< what it printed
    bool isMissing() const { return exitCode == 2; } ///< the program is not installed
};

ScriptRun runScript(const std::string& name, const std::vector<std::filesystem::path>& arguments);
