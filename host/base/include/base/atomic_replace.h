#pragma once

#include <functional>
#include <optional>
#include <span>

#include <base/content_hash.h>
#include <base/file_ops.h>
#include <base/status.h>

namespace base {

/// What a caller knows of the file that it is about to replace, and what else must hold.
struct ReplaceRequest {
    std::span<const std::byte> bytes;   ///< The new content, whole.
    /// What was read; when set, a target that is something else by now is refused (Conflict). The hash
    /// decides; with `mustNotExist` a target that is there at all is refused (Exists).
    std::optional<ContentHash> expected;
    bool mustNotExist = false;
    bool allowHardLinked = false;       ///< Otherwise a target with several names is refused.
    /// Reads the new file's structure back before it takes the old one's place; empty: bytes are compared only.
    std::function<Status(const TvString& temporaryPath)> verify;
};

/// Replaces a user's file, or makes it: atomically or not at all.
///
/// Symbolic links are followed to the file they end at. Mode, owner, ACL and extended attributes are kept. A file that is read
/// only, or whose folder cannot be written, is refused: never a trick. On failure the target is what it was,
/// and nothing of ours is left beside it.
///
/// Invariants:
///  1. The target is at every instant the whole old or the whole new version.
///  2. The new version was flushed to disk and read back before the rename.
///  3. A failed call leaves the target's bytes, and removes its temporary file if the system lets it.
///  4. After success the folder was flushed too.
Status replaceFile(FileOps& ops, const TvString& path, const ReplaceRequest& request);

/// The whole content of a regular file with the stamp it had; never blocks on pipes and devices.
struct FileContent {
    std::vector<std::byte> bytes;
    FileStamp stamp;
};
Result<FileContent> readWhole(FileOps& ops, const TvString& path, std::uint64_t limit);

} // namespace base
