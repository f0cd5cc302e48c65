#pragma once

#include <base/clock.h>
#include <base/file_ops.h>
#include <base/status.h>

namespace app {

/// "image/vnd.dwg" and the like, by the file's name; empty for what the program does not open.
TvString mimeTypeOf(const TvString& path);

/// The address of a file: "file:///..." with everything escaped that is no plain letter.
std::string fileAddress(const TvString& path);

/// Puts a file into the desktop's own list of recent files (recently-used.xbel), from which the
/// dialogs and menus of other programs show it.
///
/// What others wrote there stays. A list that is no list, or too large to be one, is left alone;
/// so is one that somebody else goes on writing.
/// @param list  the list's file; made when it is not there, but not its folder. Empty: nothing.
/// @param path  absolute; a file of no known type is nothing.
base::Status noteRecentFile(base::FileOps& files, base::Clock& clock, const TvString& list,
                            const TvString& path);

} // namespace app
