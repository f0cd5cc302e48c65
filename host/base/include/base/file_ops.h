#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace base {

/// Which file a name stood for, and in which state, at one moment.
///
/// Change time and link count are no part of it: our own links alter them.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t size = 0;
    std::int64_t modifiedNs = 0; ///< Since 1970-01-01 UTC.
    friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

/// More about a file than its stamp.
struct FileInfo {
    enum class Kind { Regular, Folder, Link, Other };
    FileStamp stamp;
    Kind kind = Kind::Other;
    unsigned mode = 0;  ///< Permission bits.
    unsigned owner = 0; ///< User id.
    unsigned group = 0; ///< Group id.
    unsigned links = 1; ///< Number of hard links.
};

/// The operations on files that must not go wrong unnoticed: replacing user files, and the locks on
/// them.
///
/// One thin layer over the system, so that a test can fail, or end, any single operation. Names are
/// the system's own bytes (see nativePath()). Every operation gives 0 or a system error number
/// (errno), and touches its out-arguments only on success. Descriptors are closed on exec and never
/// opened through a link unless said; opening never blocks on a pipe.
class FileOps
{
public:
    using Descriptor = int;
    static constexpr Descriptor kNone = -1;

    enum class OpenMode {
        Read,              ///< Existing, follows links.
        ReadNoFollow,      ///< Existing, refuses a link (ELOOP).
        ReadWriteNoFollow, ///< Existing, refuses a link.
        CreateExclusive,   ///< Must not exist (EEXIST); mode 0600; read and write.
        CreateOrdinary,    ///< Must not exist (EEXIST); mode 0666 less the umask; read and write.
        CreateOrOpen, ///< Made with mode 0666 less the umask when missing; refuses a link; read and
                      ///< write.
        Folder,       ///< A folder, to list or to flush it.
    };

    virtual ~FileOps() = default;

    virtual int open(const std::string& path, OpenMode mode, Descriptor& out) = 0;
    /// Reports what the system says; the descriptor is gone either way.
    virtual int close(Descriptor file) = 0;
    /// Up to buffer.size() bytes at @p offset; @p out is 0 at the end.
    virtual int read(Descriptor file, std::uint64_t offset, std::span<std::byte> buffer,
                     std::size_t& out) = 0;
    /// May write less than asked; @p out tells.
    virtual int write(Descriptor file, std::uint64_t offset, std::span<const std::byte> bytes,
                      std::size_t& out) = 0;
    virtual int truncate(Descriptor file, std::uint64_t size) = 0;
    /// Down to the disk: file content, or a folder's names.
    virtual int flush(Descriptor file) = 0;
    virtual int describe(Descriptor file, FileInfo& out) = 0;
    /// About the name itself: a link is not followed.
    virtual int describeName(const std::string& path, FileInfo& out) = 0;
    /// About the file that a name leads to: links are followed, nothing is opened.
    virtual int describeTarget(const std::string& path, FileInfo& out) = 0;
    /// Mode, owner, group, ACL and extended attributes of @p source put on @p target. What the
    /// system refuses to a normal user (ownership) is left and reported in @p ownershipKept only.
    virtual int copyMetadata(const std::string& source, Descriptor target, bool& ownershipKept) = 0;
    /// Atomic; replaces @p to.
    virtual int rename(const std::string& from, const std::string& to) = 0;
    /// Atomic; never replaces @p to (EEXIST). EINVAL where the file system cannot promise that.
    virtual int renameNew(const std::string& from, const std::string& to) = 0;
    /// A second name; never replaces one (EEXIST).
    virtual int link(const std::string& from, const std::string& to) = 0;
    /// Takes a name away; a folder is refused.
    virtual int remove(const std::string& path) = 0;
    /// Mode 0777 less the umask; EEXIST when the name is there. The folder above must exist.
    virtual int makeFolder(const std::string& path) = 0;
    /// Names in a folder, without "." and "..", in no order.
    virtual int list(const std::string& folder, std::vector<std::string>& out) = 0;
    /// Where a link points; EINVAL when @p path is none.
    virtual int readLink(const std::string& path, std::string& out) = 0;

    /// A lock on one byte at @p offset, held by the open file description: it goes when that is
    /// closed, and two descriptors of one process exclude each other. Never waits: EAGAIN when
    /// another holds it, ENOLCK or EOPNOTSUPP when there is no lock service.
    virtual int lockByte(Descriptor file, std::uint64_t offset) = 0;
    virtual int unlockByte(Descriptor file, std::uint64_t offset) = 0;
    /// Whether somebody else holds a lock on that byte. Takes nothing.
    virtual int isByteLocked(Descriptor file, std::uint64_t offset, bool& out) = 0;
};

/// The system's own operations.
FileOps& systemFileOps();

} // namespace base
