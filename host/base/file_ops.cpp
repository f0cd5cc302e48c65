#include "base/file_ops.h"

#include "file_metadata.h"

#include <cerrno>
#include <cstdio>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace base {

namespace {

static_assert(sizeof(off_t) == 8, "locks lie beyond 2^31, and so may a file's end");

int flagsOf(FileOps::OpenMode mode)
{
    // O_NONBLOCK: a pipe must not hold us. O_NOCTTY: nor may a terminal become ours.
    constexpr int kAlways = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    switch (mode) {
    case FileOps::OpenMode::Read: return kAlways | O_RDONLY;
    case FileOps::OpenMode::ReadNoFollow: return kAlways | O_RDONLY | O_NOFOLLOW;
    case FileOps::OpenMode::ReadWriteNoFollow: return kAlways | O_RDWR | O_NOFOLLOW;
    case FileOps::OpenMode::CreateExclusive:
    case FileOps::OpenMode::CreateOrdinary: return kAlways | O_RDWR | O_NOFOLLOW | O_CREAT | O_EXCL;
    case FileOps::OpenMode::CreateOrOpen: return kAlways | O_RDWR | O_NOFOLLOW | O_CREAT;
    case FileOps::OpenMode::Folder: return kAlways | O_RDONLY | O_DIRECTORY;
    }
    return kAlways | O_RDONLY | O_NOFOLLOW;
}

/// Nothing can have a NUL in its name; the system would take the part before it for the whole.
bool isNameable(const std::string& path)
{
    return path.find('\0') == std::string::npos;
}

template <class Call>
auto retried(Call call)
{
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

int errorOf(long result)
{
    return result == -1 ? errno : 0;
}

FileInfo::Kind kindOf(mode_t mode)
{
    if (S_ISREG(mode))
        return FileInfo::Kind::Regular;
    if (S_ISDIR(mode))
        return FileInfo::Kind::Folder;
    return S_ISLNK(mode) ? FileInfo::Kind::Link : FileInfo::Kind::Other;
}

FileInfo infoOf(const struct stat& from)
{
    FileInfo info;
    info.stamp.device = from.st_dev;
    info.stamp.inode = from.st_ino;
    info.stamp.size = static_cast<std::uint64_t>(from.st_size);
    info.stamp.modifiedNs =
        from.st_mtim.tv_sec * std::int64_t(1'000'000'000) + from.st_mtim.tv_nsec;
    info.kind = kindOf(from.st_mode);
    info.mode = from.st_mode & 07777;
    info.owner = from.st_uid;
    info.group = from.st_gid;
    info.links = static_cast<unsigned>(from.st_nlink);
    return info;
}

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};
using OpenFolder = std::unique_ptr<DIR, CloseFolder>;

int readNames(DIR* folder, std::vector<std::string>& out)
{
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(folder);
        if (!entry)
            return errno;
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..")
            out.emplace_back(name);
    }
}

/// @return 0, EAGAIN when somebody else holds it, EOPNOTSUPP when there is no such lock here.
int lockError(long result)
{
    if (result != -1)
        return 0;
    switch (errno) {
    case EACCES: return EAGAIN; // some servers' word for a lock that another holds
    case EINVAL:
    case ENOSYS: return EOPNOTSUPP;
    default: return errno;
    }
}

struct flock oneByte(short type, std::uint64_t offset)
{
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = static_cast<off_t>(offset);
    lock.l_len = 1;
    return lock;
}

class SystemFileOps final : public FileOps
{
public:
    int open(const std::string& path, OpenMode mode, Descriptor& out) override
    {
        if (!isNameable(path))
            return ENOENT;
        const mode_t permissions = mode == OpenMode::CreateExclusive ? 0600 : 0666;
        const int flags = flagsOf(mode);
        const int file = retried([&] { return ::open(path.c_str(), flags, permissions); });
        if (file == -1)
            return errno;
        out = file;
        return 0;
    }

    // Never tried again: on Linux the descriptor is gone even when a signal came.
    int close(Descriptor file) override { return errorOf(::close(file)); }

    int read(Descriptor file, std::uint64_t offset, std::span<std::byte> buffer,
             std::size_t& out) override
    {
        const ssize_t got = retried([&] {
            return ::pread(file, buffer.data(), buffer.size(), static_cast<off_t>(offset));
        });
        if (got == -1)
            return errno;
        out = static_cast<std::size_t>(got);
        return 0;
    }

    int write(Descriptor file, std::uint64_t offset, std::span<const std::byte> bytes,
              std::size_t& out) override
    {
        const ssize_t put = retried(
            [&] { return ::pwrite(file, bytes.data(), bytes.size(), static_cast<off_t>(offset)); });
        if (put == -1)
            return errno;
        out = static_cast<std::size_t>(put);
        return 0;
    }

    int truncate(Descriptor file, std::uint64_t size) override
    {
        return errorOf(retried([&] { return ::ftruncate(file, static_cast<off_t>(size)); }));
    }

    int flush(Descriptor file) override
    {
        if (retried([&] { return ::fsync(file); }) == 0)
            return 0;
        const int error = errno;
        // Some file systems keep no names in memory and refuse to flush a folder: nothing is lost.
        FileInfo info;
        const bool isFolder = describe(file, info) == 0 && info.kind == FileInfo::Kind::Folder;
        return isFolder && (error == EINVAL || error == EOPNOTSUPP) ? 0 : error;
    }

    int describe(Descriptor file, FileInfo& out) override
    {
        struct stat found;
        if (::fstat(file, &found) != 0)
            return errno;
        out = infoOf(found);
        return 0;
    }

    int describeName(const std::string& path, FileInfo& out) override
    {
        struct stat found;
        if (!isNameable(path))
            return ENOENT;
        if (::lstat(path.c_str(), &found) != 0)
            return errno;
        out = infoOf(found);
        return 0;
    }

    int describeTarget(const std::string& path, FileInfo& out) override
    {
        struct stat found;
        if (!isNameable(path))
            return ENOENT;
        if (::stat(path.c_str(), &found) != 0)
            return errno;
        out = infoOf(found);
        return 0;
    }

    int copyMetadata(const std::string& source, Descriptor target, bool& ownershipKept) override
    {
        return isNameable(source) ? copyFileMetadata(source, target, ownershipKept) : ENOENT;
    }

    int rename(const std::string& from, const std::string& to) override
    {
        if (!isNameable(from) || !isNameable(to))
            return ENOENT;
        return errorOf(::rename(from.c_str(), to.c_str()));
    }

    int renameNew(const std::string& from, const std::string& to) override
    {
        if (!isNameable(from) || !isNameable(to))
            return ENOENT;
        const int result =
            ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE);
        return result == -1 && errno == ENOSYS ? EINVAL : errorOf(result);
    }

    int link(const std::string& from, const std::string& to) override
    {
        if (!isNameable(from) || !isNameable(to))
            return ENOENT;
        return errorOf(::link(from.c_str(), to.c_str()));
    }

    int remove(const std::string& path) override
    {
        return isNameable(path) ? errorOf(::unlink(path.c_str())) : ENOENT;
    }

    int makeFolder(const std::string& path) override
    {
        return isNameable(path) ? errorOf(::mkdir(path.c_str(), 0777)) : ENOENT;
    }

    int list(const std::string& folder, std::vector<std::string>& out) override
    {
        Descriptor file = kNone;
        if (const int error = open(folder, OpenMode::Folder, file))
            return error;
        const OpenFolder opened(::fdopendir(file)); // owns the descriptor from here on
        if (!opened) {
            const int error = errno;
            ::close(file);
            return error;
        }
        std::vector<std::string> names;
        if (const int error = readNames(opened.get(), names))
            return error;
        out = std::move(names);
        return 0;
    }

    int readLink(const std::string& path, std::string& out) override
    {
        if (!isNameable(path))
            return ENOENT;
        for (std::size_t room = 256;; room *= 2) {
            std::string target(room, '\0');
            const ssize_t length = ::readlink(path.c_str(), target.data(), room);
            if (length == -1)
                return errno;
            if (static_cast<std::size_t>(length) < room) { // else it may have been cut
                target.resize(static_cast<std::size_t>(length));
                out = std::move(target);
                return 0;
            }
        }
    }

    int lockByte(Descriptor file, std::uint64_t offset) override
    {
        struct flock lock = oneByte(F_WRLCK, offset);
        return lockError(retried([&] { return ::fcntl(file, F_OFD_SETLK, &lock); }));
    }

    int unlockByte(Descriptor file, std::uint64_t offset) override
    {
        struct flock lock = oneByte(F_UNLCK, offset);
        return lockError(retried([&] { return ::fcntl(file, F_OFD_SETLK, &lock); }));
    }

    int isByteLocked(Descriptor file, std::uint64_t offset, bool& out) override
    {
        struct flock lock = oneByte(F_WRLCK, offset);
        const int error = lockError(retried([&] { return ::fcntl(file, F_OFD_GETLK, &lock); }));
        if (!error)
            out = lock.l_type != F_UNLCK;
        return error;
    }
};

} // namespace

FileOps& systemFileOps()
{
    static auto& ops = *new SystemFileOps; // never destroyed: threads may ask to the very end
    return ops;
}

} // namespace base
