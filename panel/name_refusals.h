#pragma once

#include <vector>

#include <base/tv_string.h>

namespace panel {

/// Why a name of a selection is refused; each tells the user, and gives whether there was a reason.
bool refusesEmptyName(const TvString& name);
bool refusesCharacters(const TvString& name);
bool refusesLength(const TvString& name);
/// That another selection has it.
void tellNameIsTaken(const TvString& name);

/// A warning with an OK button.
void warn(int text, int caption, std::vector<TvString> arguments = {});

} // namespace panel
