#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <base/path_rules.h>
#include <base/status.h>

/// Questions and simple operations on files and folders.
///
/// Both slashes separate, on every system; only where a file has a backslash in its very name, that
/// file is meant. A drive path ("C:\plans") means nothing where there are no drives.
///
/// Paths that name a network host or are URLs are never touched: each test answers "not there"
/// until the user agreed to that host (allowHost), since merely asking sends the user's credentials
/// out.
class KvFileSystem
{
public:
    /// Whether a regular file is there.
    ///
    /// Answers at once when the folder answers. Only while the folder itself cannot be reached (a
    /// share that drops out: time-outs, stale handles, I/O errors) it tries again, @p tries times
    /// in all, @p delayMs apart.
    static bool isFileExisting(const TvString& path, int tries = 1, int delayMs = 0);
    /// The same for a file or a folder.
    static bool pathFileExists(const TvString& path, int tries = 1, int delayMs = 0);
    static bool isDirectory(const TvString& path);

    /// @param flags 0 overwrites, a link itself and not what it leads to; 1 fails when the
    /// destination exists. The copy appears whole or not at all, with the rights of its source.
    static bool copyFile(const TvString& source, const TvString& destination, int flags);
    /// Never overwrites; false when @p destination exists.
    static bool moveFile(const TvString& source, const TvString& destination);
    /// True when it was there and is gone. Folders are refused.
    static bool deleteFile(const TvString& path);
    /// Makes the folder and those above it that are missing. True when it is there afterwards.
    static bool createDirectory(const TvString& path);

    /// In bytes; -1 when it cannot be read.
    static std::int64_t getFileSize(const TvString& path);
    /// Last write time in 100 ns units since 1601-01-01 UTC; 0 if the file cannot be opened.
    static std::uint64_t getModificationTime(const TvString& path);
    /// A file counts as read only when its mode has no write bit or writing is denied, for root
    /// too; so does one that vanished.
    static bool isReadOnly(const TvString& path);
    /// Whether both name one file on disk (links resolved). False when either is not there.
    static bool isSameFile(const TvString& left, const TvString& right);

    struct Entry {
        TvString name;
        bool isDirectory = false;
    };
    /// The entries of a folder, without "." and "..", sorted without regard to case and then by
    /// unit, so that "the first" is the same everywhere. Empty when it cannot be read.
    static std::vector<Entry> listFolder(const TvString& folder);

    /// Files named on a network host or URL scheme may be touched from now on, in this process.
    static void allowHost(const TvString& host);
    static bool isTouchAllowed(const TvString& path);
    static constexpr std::int64_t kDefaultReadLimit = std::int64_t(1) << 30;
    /// The whole content of a regular file; TooLarge over @p limit bytes; pipes, devices and
    /// folders are refused without blocking.
    static base::Result<std::vector<std::byte>> readFile(const TvString& path,
                                                         std::int64_t limit = kDefaultReadLimit);
};
