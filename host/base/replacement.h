#pragma once

#include <functional>

#include "base/atomic_replace.h"

namespace base {

/// The new bytes, piece by piece, asked for in order and twice: to write them and to compare them.
/// As FileOps::read: 0 bytes at the end.
using ContentReader =
    std::function<int(std::uint64_t offset, std::span<std::byte> buffer, std::size_t& out)>;

/// What replaceFile() does, for content that need not be in memory (request.bytes is not looked
/// at).
///
/// @param metadataOf  the file whose mode, owner, ACL and attributes the new one gets; empty: those
/// of
///                    the file that is replaced, or of any new file.
Status replaceContent(FileOps& ops, const TvString& path, const ReplaceRequest& request,
                      const ContentReader& content, const std::string& metadataOf = {});

} // namespace base
