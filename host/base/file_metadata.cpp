#include "file_metadata.h"

#include <cerrno>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace base {

namespace {

constexpr char kAccessAcl[] = "system.posix_acl_access";

/// Attributes that speak of the bytes of one file: on other bytes they would be a lie.
bool speaksOfBytes(std::string_view name)
{
    return name == "security.ima" || name == "security.evm" || name == "security.capability";
}

/// Whether a normal user's program may be refused this attribute without anything being wrong.
bool isRefusalExpected(std::string_view name, int error)
{
    if (error == ENOTSUP)
        return true;
    const bool isRefusal = error == EPERM || error == EACCES || error == EINVAL;
    return isRefusal && name != kAccessAcl && name.substr(0, 5) != "user.";
}

/// The names, each ended by a NUL, as the system lists them.
int attributeNames(int file, std::string& out)
{
    for (;;) {
        const ssize_t size = ::flistxattr(file, nullptr, 0);
        if (size <= 0) {
            out.clear();
            return size == 0 || errno == ENOTSUP || errno == ENOSYS ? 0 : errno;
        }
        out.resize(static_cast<std::size_t>(size));
        const ssize_t got = ::flistxattr(file, out.data(), out.size());
        if (got >= 0) {
            out.resize(static_cast<std::size_t>(got));
            return 0;
        }
        if (errno != ERANGE) // ERANGE: one was added since we asked for the size
            return errno;
    }
}

int attributeValue(int file, const char* name, std::vector<char>& out)
{
    for (;;) {
        const ssize_t size = ::fgetxattr(file, name, nullptr, 0);
        if (size < 0)
            return errno;
        out.resize(static_cast<std::size_t>(size));
        const ssize_t got = ::fgetxattr(file, name, out.data(), out.size());
        if (got >= 0) {
            out.resize(static_cast<std::size_t>(got));
            return 0;
        }
        if (errno != ERANGE)
            return errno;
    }
}

int copyAttribute(int source, int target, const char* name)
{
    std::vector<char> value;
    if (const int error = attributeValue(source, name, value))
        return error == ENODATA || isRefusalExpected(name, error) ? 0 : error;
    if (::fsetxattr(target, name, value.data(), value.size(), 0) == 0)
        return 0;
    return isRefusalExpected(name, errno) ? 0 : errno;
}

int copyAttributes(int source, int target)
{
    std::string names;
    if (const int error = attributeNames(source, names))
        return error;
    bool hasAcl = false;
    for (std::size_t at = 0; at < names.size();) {
        const std::string name = names.c_str() + at;
        at += name.size() + 1;
        hasAcl = hasAcl || name == kAccessAcl;
        if (speaksOfBytes(name))
            continue;
        if (const int error = copyAttribute(source, target, name.c_str()))
            return error;
    }
    // The folder may have given the new file an ACL that the old one did not have. Where there is
    // none, or no such thing, the call fails and all is well.
    if (!hasAcl)
        ::fremovexattr(target, kAccessAcl);
    return 0;
}

/// Owner and group, or the group alone where giving files away is for the administrator.
/// Refusals are no error; what counts is what the target has in the end.
int copyOwner(const struct stat& from, int target, bool& kept)
{
    if (::fchown(target, from.st_uid, from.st_gid) != 0 &&
        ::fchown(target, static_cast<uid_t>(-1), from.st_gid) != 0 && errno == EIO)
        return EIO;
    struct stat now;
    if (::fstat(target, &now) != 0)
        return errno;
    kept = now.st_uid == from.st_uid && now.st_gid == from.st_gid;
    return 0;
}

/// @pre the owner is settled: changing it clears the set-id bits.
int copyMode(const struct stat& from, int target, bool ownershipKept)
{
    // A set-id bit under another owner would lend that owner's rights to everybody.
    const mode_t wanted = from.st_mode & (ownershipKept ? 07777 : 0777);
    if (::fchmod(target, wanted) == 0)
        return 0;
    const int error = errno;
    // File systems without modes refuse, though every file there has the same one.
    struct stat now;
    return ::fstat(target, &now) == 0 && (now.st_mode & 07777) == wanted ? 0 : error;
}

int copyAll(int source, int target, bool& ownershipKept)
{
    struct stat from;
    if (::fstat(source, &from) != 0)
        return errno;
    if (const int error = copyOwner(from, target, ownershipKept))
        return error;
    if (const int error = copyAttributes(source, target))
        return error;
    return copyMode(from, target, ownershipKept);
}

} // namespace

int copyFileMetadata(const std::string& source, int target, bool& ownershipKept)
{
    const int file =
        ::open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW);
    if (file < 0)
        return errno;
    bool kept = false;
    const int error = copyAll(file, target, kept);
    ::close(file);
    if (!error)
        ownershipKept = kept;
    return error;
}

} // namespace base
