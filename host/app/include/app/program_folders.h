#pragma once

#include <vector>

#include <base/tv_string.h>

namespace app {

/// Where the program finds its own things and keeps the user's. Absolute; an empty folder is one
/// that the program does without.
struct ProgramFolders {
    TvString config, data, state, cache;
    TvString runtime;              ///< sockets
    std::vector<TvString> modules; ///< the first that has a module is the one
    TvString program;              ///< of the program's own file

    /// Of the user that runs it. TARVIK_TEST_MODULES is a module folder that comes before the
    /// others.
    static ProgramFolders ofUser();
};

/// The module folders of a program that lies in @p programFolder: beside it in a build tree, and
/// below lib where it was installed.
std::vector<TvString> moduleFoldersFor(const TvString& programFolder);
/// Where the templates lie that came with such a program.
TvString templateFolderFor(const TvString& programFolder);

} // namespace app
