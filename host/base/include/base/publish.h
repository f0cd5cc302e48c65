#pragma once

#include <optional>
#include <span>
#include <vector>

#include <base/clock.h>
#include <base/content_hash.h>
#include <base/file_ops.h>
#include <base/status.h>

namespace base {

/// One version of a file on its way to disk.
struct PublishRequest {
    std::span<const std::byte> bytes;
    /// The version that the new one was made from; nullopt: there was no file.
    std::optional<ContentHash> base;
    /// Whether the edit lock's system lock is held by the caller (EditLock::hasSystemLock). Then
    /// foreign payloads are leftovers, and are revoked without manners. The fence never relies on
    /// it.
    bool haveSystemLock = false;
    /// Write even though the file is gone (save to a vanished file); it still yields to a newer
    /// published version that is not `base` (Conflict). Otherwise a file that is gone is NotFound.
    bool recreateVanished = true;
    /// When there is a conflict, keep `bytes` as "NAME (recovered TIME TOKEN).ext" beside the file.
    bool keepRecovery = true;
};

struct PublishOutcome {
    FileStamp stamp; ///< Of the published file. Another one later means another version, as ever.
    ContentHash hash;
};

/// Writes a new version of a user file that several people work on: no committed version is ever
/// lost or overwritten, even where no lock works, and the file is at every instant a whole old or
/// new version.
///
/// Links are followed. Mode, owner, ACL and extended attributes stay those of the file; a new file
/// gets what any new file gets. What is read only, or may not be written, is refused, to an
/// administrator too. The last three versions keep a hidden name beside the file (".NAME.done.N"),
/// as links where the file system has them.
///
/// Conflict: the file's content is not `base` any more; nothing was overwritten, ours is kept as a
/// recovery file, whose path is the second argument of the status (Reason::PublishConflict), or
/// which was not wanted (Reason::ChangedOnDisk). With `base` nullopt a published version of a file
/// that has gone is a conflict too: delete with removePublished() what shall not come back.
///
/// Any other failure: the file is what it was, and nothing of ours is left beside it. Only what
/// fails behind the replace itself finds the new version in place: NotFlushed when the folder could
/// not be flushed, NotReplaced (with the former version's path) when the disk gives other bytes
/// back than were written, or the system's error when the last look failed. Publishing the same
/// again is safe: a file that holds our very content already is a success.
///
/// Invariants:
///  1. Of two publishes from one base at most one succeeds.
///  2. The file's name stands for a whole version at every instant, or, if a system call failed in
///  the
///     middle of a replace on a file system without atomic rename, the newest ".done" version is
///     linked back.
///  3. A version that succeeded was read back from the disk, and its folder was flushed.
///  4. Nobody renames or removes another's payload but to revoke it (".rev.") or, older than a day,
///  to
///     sweep it.
///  5. A publish whose answer could not be learned (killed) is either wholly there or not at all.
///
/// @note Two flushes (file, folder); the new version is written once and read twice, the old one
/// read
///       once. Waits at most 1 s for each other publish that goes first, 10 s in all, and as long
///       for a busy file.
Result<PublishOutcome> publishVersion(FileOps& ops, Clock& clock, const TvString& path,
                                      const PublishRequest& request);

/// A version as it was read.
struct VersionRead {
    std::vector<std::byte> bytes;
    FileStamp stamp; ///< Taken before the first byte was read.
    ContentHash hash;
};
/// Reads the file; when it is missing but a ".done" version is there, waits 200 ms, looks again,
/// then heals: links the newest version back, never over a file. NotFound when there is nothing to
/// heal from, Unreachable when the folder is not there.
Result<VersionRead> readVersion(FileOps& ops, Clock& clock, const TvString& path,
                                std::uint64_t limit);

/// Opens and closes the folder (a share's cache is asked afresh), then describes the file, without
/// opening it. NotFound when gone after two more looks within 300 ms; Unreachable, at once, when
/// the folder does not answer.
Result<FileStamp> lookAt(FileOps& ops, Clock& clock, const TvString& path);

/// Removes our leftovers older than a day beside @p path; the caller holds the lock.
void sweepLeftovers(FileOps& ops, Clock& clock, const TvString& path);

/// Removes the file and all that belongs to it (payloads, published versions), so that nothing
/// heals it back; and the link, if @p path is one. A file that is not there is no failure. The
/// caller holds the edit lock and removes the sidecar with EditLock::removeSidecar afterwards.
Status removePublished(FileOps& ops, const TvString& path);

} // namespace base
