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
    /// Whether the edit lock's system lock is held by the caller (then foreign payloads are leftovers, and
    /// are revoked without manners).
    bool haveSystemLock = false;
    /// Write even though the file's content is not `base` or it is gone (save to a vanished file): still yields to a newer
    /// published version that is not `base` (Conflict).
    bool recreateVanished = true;
    /// When there is a conflict, keep `bytes` as "NAME (recovered TIME TOKEN).ext" beside the file.
    bool keepRecovery = true;
};

struct PublishOutcome {
    FileStamp stamp;           ///< Of the published file.
    ContentHash hash;
    TvString recoveryFile;     ///< Set when a conflict kept our version.
};

/// Writes a new version of a user file that several people work on: no committed version is ever lost or
/// overwritten, even where no lock works, and the file is at every instant a whole old or new version.
///
/// Conflict: the file's content is not `base` any more; nothing was overwritten, ours is kept as a
/// recovery file. Any other failure: the file is what it was.
///
/// Invariants:
///  1. Of two publishes from one base at most one succeeds.
///  2. The file's name stands for a whole version at every instant, or, if a system call failed in the middle of a
///     replace on a file system without atomic rename, the newest ".done" version is linked back.
///  3. A version that succeeded was read back from the disk, and its folder was flushed.
///  4. Nobody renames or removes another's payload but to revoke it (".rev.") or, older than a day, to sweep it.
///  5. A publish whose answer could not be learned (killed) is either wholly there or not at all.
Result<PublishOutcome> publishVersion(FileOps& ops, Clock& clock, const TvString& path,
                                      const PublishRequest& request);

/// Reads the file; when it is missing but a ".done" version is there, waits 200 ms, looks again, then heals.
struct VersionRead {
    std::vector<std::byte> bytes;
    FileStamp stamp;
    ContentHash hash;
};
Result<VersionRead> readVersion(FileOps& ops, Clock& clock, const TvString& path, std::uint64_t limit);

/// Opens and closes the folder (a share's cache is asked afresh), then describes the file. NotFound when gone after two more looks
/// within 300 ms.
Result<FileStamp> lookAt(FileOps& ops, Clock& clock, const TvString& path);

/// Removes our leftovers older than a day beside @p path; the caller holds the lock.
void sweepLeftovers(FileOps& ops, Clock& clock, const TvString& path);

/// Removes the file and all that belongs to it (payloads, published versions), so that nothing heals it back. The caller holds
/// the edit lock and removes the sidecar with EditLock::removeSidecar afterwards.
Status removePublished(FileOps& ops, const TvString& path);

} // namespace base
