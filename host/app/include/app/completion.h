#pragma once

#include <vector>

#include <base/tv_string.h>

class TvEdCommandStack;

namespace app {

/// What a word that was begun at the command line can become.
struct Completion {
    std::vector<TvString> candidates; ///< in the order that a reader expects, no name twice
    TvString common;                  ///< how they all begin; the word itself without candidates
};

/// Commands by their local and global names and system variables that begin with @p word, without
/// regard to case. A leading underscore asks for global names, and stays. Nothing for an empty
/// word.
/// @param commands  may be null.
Completion complete(const TvString& word, const TvEdCommandStack* commands);

} // namespace app
