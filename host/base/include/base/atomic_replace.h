#pragma once

#include <functional>
#include <optional>
#include <span>

#include <base/content_hash.h>
#include <base/file_ops.h>
#include <base/status.h>

namespace base {

/// Content piece by piece, asked for in order and twice: to write it and to compare it. As
/// FileOps::read: 0 bytes at the end.
using ContentReader =
    std::function<int(std::uint64_t offset, std::span<std::byte> buffer, std::size_t& out)>;

/// What a caller knows of the file that it is about to replace, and what else must hold.
struct ReplaceRequest {
    std::span<const std::byte> bytes; ///< The new content, whole.
    ContentReader content;            ///< Gives it instead, where it is not in memory.
    /// What was read; when set, a target that is something else by now is refused (Conflict;
    /// NotFound when it is gone). The hash decides; with `mustNotExist` a target that is there at
    /// all is refused (Exists), be it a link that leads nowhere.
    std::optional<ContentHash> expected;
    bool mustNotExist = false;
    bool allowHardLinked = false; ///< Otherwise a target with several names is refused.
    /// A new file gets mode, owner and ACL of this one, as a copy does; empty: those of any new
    /// file.
    TvString rightsOf;
    /// Reads the new file's structure back before it takes the old one's place; empty: bytes are
    /// compared only.
    std::function<Status(const TvString& temporaryPath)> verify;
};

/// Replaces a user's file, or makes it: atomically or not at all.
///
/// Symbolic links are followed to the file they end at; one that leads nowhere gets its file there.
/// Mode, owner, ACL and extended attributes are kept; a new file gets those that the folder and the
/// umask give to any new file. A file that is read only, or whose folder cannot be written, is
/// refused: never a trick. A file that appears, vanishes or changes its rights while we work is
/// left alone (Conflict, NotFound). On failure the target is what it was, and nothing of ours is
/// left beside it.
///
/// One failure is different, and has a reason of its own: with NotFlushed the new version is in
/// place and whole, but the folder could not be flushed: a power cut may bring the old version
/// back.
///
/// Invariants:
///  1. The target is at every instant the whole old or the whole new version.
///  2. The new version was flushed to disk and read back before the rename.
///  3. A failed call leaves the target's bytes, and removes its temporary file if the system lets
///  it.
///  4. After success the folder was flushed too.
Status replaceFile(FileOps& ops, const TvString& path, const ReplaceRequest& request);

/// Removes the temporary files that replacements of @p path left which were ended from outside.
///
/// @pre nobody else replaces the file now: the caller holds a lock that all respect.
/// @note lists the folder.
void sweepLeftovers(FileOps& ops, const TvString& path);

/// Room behind the content that readWhole gives: a parser may put its terminator there without
/// moving all.
constexpr std::size_t kReadPadding = 32;

/// The whole content of a regular file with the stamp it had; never blocks on pipes and devices. A
/// file that gives more than its size says (some of the system's own) is refused like a device.
///
/// The stamp was taken before the first byte was read: of a file that is written to meanwhile, a
/// later look shows another one.
struct FileContent {
    std::vector<std::byte> bytes;
    FileStamp stamp;
};
Result<FileContent> readWhole(FileOps& ops, const TvString& path, std::uint64_t limit);

} // namespace base
