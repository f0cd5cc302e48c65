#include "base/kv_file_system.h"

#include "base/file_access.h"

namespace {

/// The one that remembers which hosts this process may touch.
base::FileAccess& files()
{
    // Never destroyed: a thread that waits for a file server may outlive the program.
    static auto& access = *new base::FileAccess(base::systemFileOps(), base::systemClock());
    return access;
}

} // namespace

bool KvFileSystem::isFileExisting(const TvString& path, int tries, int delayMs)
{
    return files().isFileExisting(path, tries, delayMs);
}

bool KvFileSystem::pathFileExists(const TvString& path, int tries, int delayMs)
{
    return files().pathFileExists(path, tries, delayMs);
}

bool KvFileSystem::isDirectory(const TvString& path)
{
    return files().isDirectory(path);
}

bool KvFileSystem::copyFile(const TvString& source, const TvString& destination, int flags)
{
    return files().copyFile(source, destination, flags);
}

bool KvFileSystem::moveFile(const TvString& source, const TvString& destination)
{
    return files().moveFile(source, destination);
}

bool KvFileSystem::deleteFile(const TvString& path)
{
    return files().deleteFile(path);
}

bool KvFileSystem::createDirectory(const TvString& path)
{
    return files().createDirectory(path);
}

std::int64_t KvFileSystem::getFileSize(const TvString& path)
{
    return files().getFileSize(path);
}

std::uint64_t KvFileSystem::getModificationTime(const TvString& path)
{
    return files().getModificationTime(path);
}

bool KvFileSystem::isReadOnly(const TvString& path)
{
    return files().isReadOnly(path);
}

bool KvFileSystem::isSameFile(const TvString& left, const TvString& right)
{
    return files().isSameFile(left, right);
}

std::vector<KvFileSystem::Entry> KvFileSystem::listFolder(const TvString& folder)
{
    return files().listFolder(folder);
}

void KvFileSystem::allowHost(const TvString& host)
{
    files().allowHost(host);
}

bool KvFileSystem::isTouchAllowed(const TvString& path)
{
    return files().isTouchAllowed(path);
}

base::Result<std::vector<std::byte>> KvFileSystem::readFile(const TvString& path,
                                                            std::int64_t limit)
{
    return files().readFile(path, limit);
}

std::optional<base::FileIdentity> base::identityOf(const TvString& path)
{
    return ::files().identityOf(path);
}
