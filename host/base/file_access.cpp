#include "base/file_access.h"

#include "file_guard.h"
#include "replacement.h"
#include "resolve_links.h"

#include <algorithm>
#include <cerrno>

namespace base {

namespace {

/// Errors of a share that has dropped out and may be back in a moment.
bool mayComeBack(int error)
{
    return error == EIO || error == EAGAIN ||
           Status::fromSystem(error, {}).failure() == Failure::Unreachable;
}

/// The content of an open file, as long as it has the size that it had.
ContentReader readerOf(FileOps& ops, FileOps::Descriptor file, std::uint64_t size)
{
    return [&ops, file, size](std::uint64_t offset, std::span<std::byte> buffer, std::size_t& out) {
        if (const int error = ops.read(file, offset, buffer, out))
            return error;
        // It grows or shrinks while we copy, or has no size at all: what we made would be no copy.
        const bool isCut = out == 0 && offset < size;
        return isCut || offset + out > size ? EIO : 0;
    };
}

bool isBefore(const KvFileSystem::Entry& left, const KvFileSystem::Entry& right)
{
    const int order = compareNoCase(left.name, right.name);
    return order ? order < 0 : left.name < right.name;
}

bool isFolder(FileOps& ops, const std::string& path)
{
    FileInfo info;
    return ops.describeTarget(path, info) == 0 && info.kind == FileInfo::Kind::Folder;
}

/// Those of the folders of @p path, itself included, that are missing; the innermost first.
std::vector<std::string> missingFolders(FileOps& ops, std::string path)
{
    std::vector<std::string> missing;
    FileInfo info;
    while (ops.describeTarget(path, info) == ENOENT) {
        missing.push_back(path);
        std::string above = nativeFolderOf(path);
        if (above.size() >= path.size() || above == ".")
            break;
        path = std::move(above);
    }
    return missing;
}

} // namespace

FileAccess::FileAccess(FileOps& ops, Clock& clock, PathFlavour flavour)
    : m_ops(ops), m_clock(clock), m_rules(flavour)
{
}

void FileAccess::allowHost(const TvString& host)
{
    const std::lock_guard guard(m_hostsMutex);
    if (!host.isEmpty())
        m_allowedHosts.insert(host.toLower());
}

bool FileAccess::isTouchAllowed(const TvString& path) const
{
    if (!m_rules.isNetwork(path) && !PathRules::isUrl(path))
        return true;
    const std::lock_guard guard(m_hostsMutex);
    // Devices and URLs without a host have none that anybody could agree to.
    return m_allowedHosts.count(m_rules.hostOf(path).toLower()) != 0;
}

/// Whether a path leads to no place of this system: a folder that a drive happens to stand in, and
/// in the Posix flavour every drive.
bool FileAccess::isElsewhere(const TvString& path) const
{
    if (PathRules::isDriveRelative(path))
        return true;
    const bool hasDrive = m_rules.isAbsolute(path) && !PathRules::isSeparator(path.at(0));
    return hasDrive && m_rules.flavour() == PathFlavour::Posix;
}

/// Whether a name with backslashes in it is on the disk, or would be made in a folder that is.
bool FileAccess::isLiterallyThere(const std::string& native)
{
    FileInfo info;
    if (m_ops.describeName(native, info) == 0)
        return true;
    const bool isOnlyInFolder = nativeNameOf(native).find('\\') == std::string::npos;
    return isOnlyInFolder && m_ops.describeName(nativeFolderOf(native), info) == 0;
}

/// The one gate to the disk: the system's name for @p path; nullopt when it must not or cannot be
/// touched.
std::optional<std::string> FileAccess::locate(const TvString& path)
{
    if (path.isEmpty() || !isTouchAllowed(path) || isElsewhere(path))
        return std::nullopt;
    std::string native = nativePath(path);
    const bool mayHoldSeparators = m_rules.flavour() == PathFlavour::Posix &&
                                   !m_rules.isNetwork(path) &&
                                   native.find('\\') != std::string::npos;
    if (mayHoldSeparators && !isLiterallyThere(native))
        std::replace(native.begin(), native.end(), '\\', '/');
    return native;
}

bool FileAccess::isFolderAnswering(const std::string& native)
{
    FileInfo info;
    return !mayComeBack(m_ops.describeTarget(nativeFolderOf(native), info));
}

bool FileAccess::find(const TvString& path, int tries, int delayMs, FileInfo& out)
{
    const std::optional<std::string> native = locate(path);
    if (!native)
        return false;
    for (int left = tries - 1;; --left) {
        const int error = m_ops.describeTarget(*native, out);
        if (!error || left <= 0 || !mayComeBack(error))
            return !error;
        if (isFolderAnswering(*native)) // is back meanwhile, or only this file is out of order
            return m_ops.describeTarget(*native, out) == 0;
        m_clock.sleep(std::chrono::milliseconds(std::max(delayMs, 0)));
    }
}

bool FileAccess::isFileExisting(const TvString& path, int tries, int delayMs)
{
    FileInfo info;
    return find(path, tries, delayMs, info) && info.kind == FileInfo::Kind::Regular;
}

bool FileAccess::pathFileExists(const TvString& path, int tries, int delayMs)
{
    FileInfo info;
    return find(path, tries, delayMs, info) &&
           (info.kind == FileInfo::Kind::Regular || info.kind == FileInfo::Kind::Folder);
}

bool FileAccess::isDirectory(const TvString& path)
{
    FileInfo info;
    return find(path, 1, 0, info) && info.kind == FileInfo::Kind::Folder;
}

/// A copy gets the rights of its source: a backup must not show what the original hides.
bool FileAccess::copyTo(const std::string& source, const std::string& destination,
                        bool mustNotExist)
{
    ResolvedName from;
    if (resolveLinks(m_ops, source, from) || !from.info ||
        from.info->kind != FileInfo::Kind::Regular)
        return false;
    FileGuard file(m_ops);
    FileInfo info;
    if (file.open(from.path, FileOps::OpenMode::ReadNoFollow) || m_ops.describe(file.get(), info) ||
        info.kind != FileInfo::Kind::Regular)
        return false;
    ReplaceRequest request;
    request.mustNotExist = mustNotExist;
    const ContentReader content = readerOf(m_ops, file.get(), info.stamp.size);
    return bool(replaceContent(m_ops, pathFromNative(destination), request, content, from.path));
}

bool FileAccess::copyFile(const TvString& source, const TvString& destination, int flags)
{
    const auto from = locate(source);
    const auto to = locate(destination);
    if (!from || !to || isSameFile(source, destination))
        return false;
    const bool mustNotExist = (flags & 1) != 0;
    // The copy takes the name; a file that a link of that name leads to is none of ours.
    FileInfo named;
    const bool isLink =
        !mustNotExist && m_ops.describeName(*to, named) == 0 && named.kind == FileInfo::Kind::Link;
    if (isLink && (!isFileExisting(source, 1, 0) || m_ops.remove(*to) != 0))
        return false;
    return copyTo(*from, *to, mustNotExist || isLink);
}

/// The second half of a move: without it there are two files, which nobody asked for.
bool FileAccess::removeMoved(const std::string& source, const std::string& destination)
{
    if (m_ops.remove(source) == 0)
        return true;
    m_ops.remove(destination);
    return false;
}

bool FileAccess::moveWithinVolume(const std::string& source, const std::string& destination)
{
    return m_ops.link(source, destination) == 0 && removeMoved(source, destination);
}

bool FileAccess::moveFile(const TvString& source, const TvString& destination)
{
    const auto from = locate(source);
    const auto to = locate(destination);
    if (!from || !to)
        return false;
    switch (m_ops.renameNew(*from, *to)) {
    case 0: return true;
    case EXDEV: return copyTo(*from, *to, true) && removeMoved(*from, *to);
    case EINVAL: return moveWithinVolume(*from, *to); // cannot promise not to replace
    default: return false;
    }
}

bool FileAccess::deleteFile(const TvString& path)
{
    const auto native = locate(path);
    return native && m_ops.remove(*native) == 0;
}

bool FileAccess::createDirectory(const TvString& path)
{
    const auto native = locate(path);
    if (!native)
        return false;
    const std::vector<std::string> missing = missingFolders(m_ops, *native);
    for (auto folder = missing.rbegin(); folder != missing.rend(); ++folder) {
        const int error = m_ops.makeFolder(*folder);
        if (error && error != EEXIST) // EEXIST: somebody else was quicker
            return false;
    }
    return isFolder(m_ops, *native);
}

std::int64_t FileAccess::getFileSize(const TvString& path)
{
    FileInfo info;
    if (!find(path, 1, 0, info) || info.kind != FileInfo::Kind::Regular)
        return -1;
    return static_cast<std::int64_t>(info.stamp.size);
}

std::uint64_t FileAccess::getModificationTime(const TvString& path)
{
    // Looked at before it is opened: opening alone can do something to a device.
    FileInfo info;
    if (!find(path, 1, 0, info) || info.kind == FileInfo::Kind::Other)
        return 0;
    FileGuard file(m_ops);
    if (file.open(locate(path).value_or(std::string()), FileOps::OpenMode::Read) ||
        m_ops.describe(file.get(), info))
        return 0;
    return fileTimeFromUnixNs(info.stamp.modifiedNs);
}

bool FileAccess::isReadOnly(const TvString& path)
{
    const auto native = locate(path);
    ResolvedName name;
    if (!native || resolveLinks(m_ops, *native, name) || !name.info)
        return true;
    const bool hasWriteBit = (name.info->mode & 0222) != 0;
    if (!hasWriteBit || name.info->kind == FileInfo::Kind::Folder)
        return !hasWriteBit;
    FileGuard file(m_ops);
    return name.info->kind != FileInfo::Kind::Regular ||
           file.open(name.path, FileOps::OpenMode::ReadWriteNoFollow) != 0;
}

bool FileAccess::isSameFile(const TvString& left, const TvString& right)
{
    const std::optional<FileIdentity> mine = identityOf(left);
    return mine && mine == identityOf(right);
}

std::optional<FileIdentity> FileAccess::identityOf(const TvString& path)
{
    FileInfo info;
    if (!find(path, 1, 0, info))
        return std::nullopt;
    return FileIdentity{info.stamp.device, info.stamp.inode};
}

std::vector<KvFileSystem::Entry> FileAccess::listFolder(const TvString& folder)
{
    const auto native = locate(folder);
    std::vector<std::string> names;
    if (!native || m_ops.list(*native, names))
        return {};
    std::vector<KvFileSystem::Entry> entries;
    entries.reserve(names.size());
    for (const std::string& name : names)
        entries.push_back({pathFromNative(name), isFolder(m_ops, nativeJoin(*native, name))});
    std::sort(entries.begin(), entries.end(), isBefore);
    return entries;
}

Result<std::vector<std::byte>> FileAccess::readFile(const TvString& path, std::int64_t limit)
{
    if (!isTouchAllowed(path))
        return Status(Failure::Denied, Reason::NetworkNotTouched, {path});
    const auto native = locate(path);
    if (!native)
        return Status(Failure::NotFound, Reason::FileMissing, {path});
    // A device is not even opened: for some that alone has an effect.
    FileInfo info;
    if (m_ops.describeTarget(*native, info) == 0 && info.kind != FileInfo::Kind::Regular)
        return Status(Failure::Unsupported, Reason::NotRegularFile, {path});
    const auto most = static_cast<std::uint64_t>(std::max<std::int64_t>(limit, 0));
    Result<FileContent> content = readWhole(m_ops, pathFromNative(*native), most);
    if (!content)
        return content.status();
    return std::move(content->bytes);
}

} // namespace base
