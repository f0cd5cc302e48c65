#pragma once

#include <mutex>
#include <optional>
#include <set>
#include <string>

#include <base/clock.h>
#include <base/file_identity.h>
#include <base/file_ops.h>
#include <base/kv_file_system.h>

namespace base {

/// The questions and operations of KvFileSystem, on file operations and a clock that are passed in.
///
/// KvFileSystem forwards to one of these for the whole process; a test makes its own. Every touch
/// of the disk goes through locate(): there stands the gate before network hosts, and there is
/// decided which file a path means.
///
/// In the Posix flavour a path with backslashes means the file that has this very name; when there
/// is none, backslashes separate ("plans\a.dwg"). Paths with a drive mean nothing here.
class FileAccess
{
public:
    /// @param ops, clock  not owned; outlive us.
    FileAccess(FileOps& ops, Clock& clock, PathFlavour flavour = PathRules::native().flavour());

    // As in KvFileSystem, function by function.
    bool isFileExisting(const TvString& path, int tries, int delayMs);
    bool pathFileExists(const TvString& path, int tries, int delayMs);
    bool isDirectory(const TvString& path);
    bool copyFile(const TvString& source, const TvString& destination, int flags);
    bool moveFile(const TvString& source, const TvString& destination);
    bool deleteFile(const TvString& path);
    bool createDirectory(const TvString& path);
    std::int64_t getFileSize(const TvString& path);
    std::uint64_t getModificationTime(const TvString& path);
    bool isReadOnly(const TvString& path);
    bool isSameFile(const TvString& left, const TvString& right);
    std::optional<FileIdentity> identityOf(const TvString& path); ///< as base::identityOf()
    std::vector<KvFileSystem::Entry> listFolder(const TvString& folder);
    void allowHost(const TvString& host);
    bool isTouchAllowed(const TvString& path) const;
    Result<std::vector<std::byte>> readFile(const TvString& path, std::int64_t limit);

private:
    std::optional<std::string> locate(const TvString& path);
    bool isElsewhere(const TvString& path) const;
    bool isLiterallyThere(const std::string& native);
    bool find(const TvString& path, int tries, int delayMs, FileInfo& out);
    bool isFolderAnswering(const std::string& native);
    bool copyTo(const std::string& source, const std::string& destination, bool mustNotExist);
    bool moveWithinVolume(const std::string& source, const std::string& destination);
    bool removeMoved(const std::string& source, const std::string& destination);

    FileOps& m_ops; // not owned
    Clock& m_clock; // not owned
    PathRules m_rules;
    mutable std::mutex m_hostsMutex;   ///< files may be asked about in other threads
    std::set<TvString> m_allowedHosts; ///< Folded: hosts have no case.
};

} // namespace base
