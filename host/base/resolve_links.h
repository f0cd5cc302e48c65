#pragma once

#include <optional>
#include <string>

#include "base/file_ops.h"

namespace base {

/// Where a name leads when its links are followed.
struct ResolvedName {
    std::string path;             ///< The name of the file itself: no link.
    std::optional<FileInfo> info; ///< None when nothing is there (a link may dangle).
    bool wasLink = false;
};

/// Follows the links of the last name in @p path by hand, since what is to be replaced is the file
/// they end at. Links in the folders before it are the system's business.
///
/// @return 0, also when nothing is there; ELOOP after kMaxLinks; else a system error number.
int resolveLinks(FileOps& ops, const std::string& path, ResolvedName& out);
constexpr int kMaxLinks = 40;

/// All before the last slash; "/" for the root, "." when there is none.
std::string nativeFolderOf(const std::string& path);
/// All behind the last slash.
std::string nativeNameOf(const std::string& path);
/// @p name in @p folder.
std::string nativeJoin(const std::string& folder, const std::string& name);

} // namespace base
