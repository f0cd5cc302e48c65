#pragma once

#include "base/file_ops.h"

namespace base {

/// Moves a file to a name that is free, and never replaces one (EEXIST): as atomically as the file
/// system lets us.
int moveToFreeName(FileOps& ops, const std::string& from, const std::string& to);

/// Whether a folder that refuses a hard link with @p error wants a copy instead.
bool isLinkRefused(int error);

} // namespace base
