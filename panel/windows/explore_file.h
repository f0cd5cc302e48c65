#pragma once

#include <base/tv_string.h>

namespace panel {

/// Shows the file in the desktop's file manager, selected; where that cannot select, its folder.
/// Nothing for an empty path.
void exploreFile(const TvString& path);

} // namespace panel
