#pragma once

#include <vector>

#include <base/tv_string.h>

/// Puts a sheet set in front of the program's list of recent files.
void AddDstFileToRecentFileList(const TvString& path);

namespace ed {

constexpr int kMostRecentFiles = 20;

/// The drawings and sheet sets that were opened or saved last, the latest first, at most
/// kMostRecentFiles: absolute paths, none twice (without regard to case). Kept with the program's
/// state, not with the preferences (setRecentFilesFolder()); what others put into the file in the
/// meantime is there, too.
std::vector<TvString> recentFiles();
/// Puts a file in front. An empty path and one that is not absolute is nothing.
void addRecentFile(const TvString& path);
/// Takes a file out, as one that is gone.
void removeRecentFile(const TvString& path);
void clearRecentFiles();

/// Where the list is kept from now on; empty: $XDG_STATE_HOME/tarvik, or what stands for it (a
/// relative value there does not count).
void setRecentFilesFolder(const TvString& folder);

} // namespace ed
