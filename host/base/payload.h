#pragma once

#include "file_guard.h"

namespace base {

/// Makes a file that must not be there, whole and flushed; on failure none is left.
///
/// @param rightsOf  the file whose mode, owner, ACL and attributes it gets; until then it is the
/// owner's
///                  alone. Empty: the rights of any new file.
int writeNewFile(FileOps& ops, const std::string& path, std::span<const std::byte> bytes,
                 const std::string& rightsOf);

/// The same with the content and the rights of @p from; @p hash is of what was copied.
int copyFile(FileOps& ops, const std::string& from, const std::string& to, ContentHash& hash);

/// Of a file that is no link.
int hashOfFile(FileOps& ops, const std::string& path, ContentHash& out);

} // namespace base
