#pragma once

#include <span>
#include <string>
#include <vector>

#include <base/tv_string.h>

namespace app {

/// What the program was started with.
struct Options {
    bool isHeadless = false;
    bool wantsNewInstance = false;
    bool wantsHelp = false;
    bool wantsVersion = false;
    TvString script;             ///< a path; empty: none; "-": the standard input
    std::vector<TvString> files; ///< as given
    /// For the program's own tests: nothing else uses it.
    std::string hidden;
    TvString error; ///< what is wrong with the arguments; empty when nothing is
};

/// @param arguments  without the program's name.
Options parseOptions(std::span<const std::string> arguments);

/// What --help shows.
TvString helpText();
/// What --version shows.
TvString versionText();
/// "0.1.0"
TvString programVersion();

/// @p path seen from the current folder, when it is relative; another process may have another
/// current folder.
TvString absolutePath(const TvString& path);

} // namespace app
