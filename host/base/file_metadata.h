#pragma once

#include <string>

namespace base {

/// Puts mode, owner, group, ACL and extended attributes of the file named @p source on @p target.
///
/// @return 0 or a system error number. What only a privileged user may set is left out quietly;
///         @p ownershipKept tells whether owner and group are those of the source.
int copyFileMetadata(const std::string& source, int target, bool& ownershipKept);

} // namespace base
