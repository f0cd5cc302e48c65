#pragma once

#include "base/atomic_replace.h"

namespace base {

/// What replaceFile() does, with @p content alone.
///
/// @param metadataOf  the file whose mode, owner, ACL and attributes the new one gets; empty: those
/// of
///                    the file that is replaced, or of any new file.
Status replaceContent(FileOps& ops, const TvString& path, const ReplaceRequest& request,
                      const ContentReader& content, const std::string& metadataOf = {});

} // namespace base
