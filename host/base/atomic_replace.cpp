#include "base/atomic_replace.h"

#include "file_guard.h"
#include "replacement.h"
#include "resolve_links.h"

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "base/edit_lock.h"
#include "base/path_rules.h"

// Invariants, as the header promises them:
//  1. The target is at every instant the whole old or the whole new version: the only operation on
//     its name is the last one, an atomic rename (or link).
//  2. The new version was flushed to disk and read back before the rename.
//  3. A failed call leaves the target's bytes, and removes its temporary file if the system lets
//  it.
//  4. After success the folder was flushed too. Where only that fails, the new version is in place,
//     and the status says so with a reason of its own (NotFlushed).

namespace base {

namespace {

constexpr std::size_t kChunk = std::size_t(1) << 18;
constexpr std::size_t kMostNameBytes = 255;
constexpr unsigned kAnyWriteBit = 0222;

/// ".NAME.tmp.TOKEN"; a long name is cut, at the end of a character, so that the whole still fits.
std::string temporaryName(const std::string& name, const std::string& token)
{
    const std::string ending = ".tmp." + token;
    std::size_t length = std::min(name.size(), kMostNameBytes - 1 - ending.size());
    if (length < name.size()) {
        while (length > 0 && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80)
            --length;
    }
    return "." + name.substr(0, length) + ending;
}

/// Whether two looks at a name saw one file, with the same names and the same rights.
bool isSameFile(const FileInfo& before, const FileInfo& now)
{
    return before.stamp.device == now.stamp.device && before.stamp.inode == now.stamp.inode &&
           before.kind == now.kind && before.mode == now.mode && before.owner == now.owner &&
           before.group == now.group && before.links == now.links;
}

int hashFile(FileOps& ops, const std::string& path, ContentHash& out)
{
    FileGuard file(ops);
    if (const int error = file.open(path, FileOps::OpenMode::ReadNoFollow))
        return error;
    return hashWhole(ops, file.get(), out);
}

/// One replacement on its way; its temporary file goes with it.
class Replacement
{
public:
    Replacement(FileOps& ops, const TvString& path, const ReplaceRequest& request,
                const ContentReader& content, const std::string& metadataOf)
        : m_ops(ops), m_path(path), m_request(request), m_content(content),
          m_metadataOf(metadataOf), m_folder(ops)
    {
    }
    ~Replacement() { removeTemporary(); }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    Status run()
    {
        using Step = Status (Replacement::*)();
        constexpr Step kSteps[] = {
            &Replacement::findTarget,      &Replacement::checkTarget,  &Replacement::openFolder,
            &Replacement::writeTemporary,  &Replacement::readBack,     &Replacement::verify,
            &Replacement::checkStillThere, &Replacement::takeThePlace, &Replacement::flushFolder,
        };
        for (const Step step : kSteps) {
            if (Status status = (this->*step)(); !status)
                return status;
        }
        return {};
    }

private:
    Status fromSystem(int error) const { return Status::fromSystem(error, m_path); }
    Status failed(Failure failure, Reason reason) const { return {failure, reason, {m_path}}; }

    Status findTarget()
    {
        ResolvedName name;
        if (const int error = resolveLinks(m_ops, nativePath(m_path), name))
            return fromSystem(error);
        if (m_request.mustNotExist && (name.info || name.wasLink))
            return failed(Failure::Exists, Reason::FileExists);
        if (nativeNameOf(name.path).empty() || (m_request.expected && !name.info))
            return failed(Failure::NotFound, Reason::FileMissing);
        m_target = name.path;
        m_old = name.info;
        return {};
    }

    /// Whether the file is one that we may replace. Mode bits count for the administrator too, whom
    /// the system would let through.
    Status checkTarget()
    {
        if (!m_old)
            return {};
        if (m_old->kind != FileInfo::Kind::Regular)
            return failed(Failure::Unsupported, Reason::NotRegularFile);
        if (m_old->links > 1 && !m_request.allowHardLinked)
            return failed(Failure::Unsupported, Reason::HardLinked);
        if (!(m_old->mode & kAnyWriteBit))
            return failed(Failure::ReadOnly, Reason::FileReadOnly);
        // Renaming over a file needs no right to write it; we want that right all the same.
        FileGuard file(m_ops);
        return fromSystem(file.open(m_target, FileOps::OpenMode::ReadWriteNoFollow));
    }

    /// Opened before anything is made, and kept: a folder that cannot be flushed is found out now.
    Status openFolder()
    {
        if (const int error = m_folder.open(nativeFolderOf(m_target), FileOps::OpenMode::Folder))
            return fromSystem(error);
        FileInfo info;
        if (const int error = m_ops.describe(m_folder.get(), info))
            return fromSystem(error);
        if (!(info.mode & kAnyWriteBit))
            return failed(Failure::Denied, Reason::AccessDenied);
        return {};
    }

    Status writeTemporary()
    {
        const std::string metadataOf = m_metadataOf.empty() && m_old ? m_target : m_metadataOf;
        // Ours alone until it has the old one's rights; with none to copy, as any new file.
        const auto mode = metadataOf.empty() ? FileOps::OpenMode::CreateOrdinary
                                             : FileOps::OpenMode::CreateExclusive;
        const std::string path =
            nativeJoin(nativeFolderOf(m_target), temporaryName(nativeNameOf(m_target), newToken()));
        FileGuard file(m_ops);
        const int openError = file.open(path, mode);
        if (openError != EEXIST)
            m_temporary = path; // also when we do not know whether it was made
        if (openError)
            return fromSystem(openError);
        if (const int error = writeContent(file.get()))
            return fromSystem(error);
        bool ownershipKept = true;
        if (!metadataOf.empty()) {
            if (const int error = m_ops.copyMetadata(metadataOf, file.get(), ownershipKept))
                return fromSystem(error);
        }
        if (const int error = m_ops.flush(file.get()))
            return fromSystem(error);
        return fromSystem(file.close());
    }

    int writeContent(FileOps::Descriptor file)
    {
        std::vector<std::byte> buffer(kChunk);
        for (;;) {
            std::size_t length = 0;
            if (const int error = m_content(m_size, buffer, length))
                return error;
            if (length == 0)
                return 0;
            if (const int error = writeAll(file, m_size, std::span(buffer).first(length)))
                return error;
            m_size += length;
        }
    }

    int writeAll(FileOps::Descriptor file, std::uint64_t offset, std::span<const std::byte> bytes)
    {
        while (!bytes.empty()) {
            std::size_t written = 0;
            if (const int error = m_ops.write(file, offset, bytes, written))
                return error;
            if (written == 0)
                return EIO; // no progress and no reason: do not try for ever
            offset += written;
            bytes = bytes.subspan(written);
        }
        return 0;
    }

    Status readBack()
    {
        FileGuard file(m_ops);
        if (const int error = file.open(m_temporary, FileOps::OpenMode::ReadNoFollow))
            return fromSystem(error);
        if (const int error = m_ops.describe(file.get(), m_new))
            return fromSystem(error);
        bool isEqual = m_new.stamp.size == m_size;
        for (std::uint64_t at = 0; isEqual && at < m_size;) {
            if (const int error = compareChunk(file.get(), at, isEqual))
                return fromSystem(error);
        }
        return isEqual ? Status() : failed(Failure::Damaged, Reason::VerifyFailed);
    }

    /// Compares what stands at @p at, and moves on by as much as could be read.
    int compareChunk(FileOps::Descriptor file, std::uint64_t& at, bool& isEqual)
    {
        m_written.resize(kChunk);
        m_wanted.resize(kChunk);
        std::size_t got = 0;
        if (const int error = m_ops.read(file, at, m_written, got))
            return error;
        std::size_t had = 0;
        if (const int error = m_content(at, std::span(m_wanted).first(got), had))
            return error;
        isEqual = had > 0 && had <= got && std::memcmp(m_written.data(), m_wanted.data(), had) == 0;
        at += had;
        return 0;
    }

    Status verify()
    {
        return m_request.verify ? m_request.verify(pathFromNative(m_temporary)) : Status();
    }

    /// The last look before the old version goes. (A new file looks when it takes its name.)
    Status checkStillThere()
    {
        if (!m_old)
            return {};
        FileInfo now;
        if (const int error = m_ops.describeName(m_target, now))
            return fromSystem(error);
        if (!isSameFile(*m_old, now))
            return changed();
        return m_request.expected ? checkContent() : Status();
    }

    Status checkContent()
    {
        ContentHash hash;
        if (const int error = hashFile(m_ops, m_target, hash))
            return fromSystem(error);
        return hash == *m_request.expected ? Status() : changed();
    }

    Status changed() const { return failed(Failure::Conflict, Reason::ChangedOnDisk); }
    Status appeared() const
    {
        return m_request.mustNotExist ? failed(Failure::Exists, Reason::FileExists) : changed();
    }

    Status takeThePlace()
    {
        assert(m_new.stamp.inode && "2: read back before the rename");
        const int error = m_old ? m_ops.rename(m_temporary, m_target) : takeFreeName();
        // An answer can be lost on its way from a server; then the name tells.
        if (error && !isInPlace())
            return error == EEXIST ? appeared() : fromSystem(error);
        if (error)
            m_ops.remove(m_temporary); // a link may have left it; after a rename it has gone
        m_temporary.clear();
        return {};
    }

    /// Nobody's file is replaced, not even one that appeared a moment ago.
    int takeFreeName()
    {
        const int error = m_ops.renameNew(m_temporary, m_target);
        if (error != EINVAL)
            return error;
        switch (const int linkError = m_ops.link(m_temporary, m_target)) {
        case 0: m_ops.remove(m_temporary); return 0; // refused: a second name stays, equally whole
        case EPERM:
        case EOPNOTSUPP:
        case ENOSYS:
        case EMLINK: return takeNameAfterLooking();
        default: return linkError;
        }
    }

    /// Where the file system knows neither: a last look is all that can be had.
    int takeNameAfterLooking()
    {
        FileInfo info;
        const int error = m_ops.describeName(m_target, info);
        if (error != ENOENT)
            return error ? error : EEXIST;
        return m_ops.rename(m_temporary, m_target);
    }

    bool isInPlace()
    {
        FileInfo now;
        return m_ops.describeName(m_target, now) == 0 && now.stamp.device == m_new.stamp.device &&
               now.stamp.inode == m_new.stamp.inode;
    }

    Status flushFolder()
    {
        assert(m_temporary.empty() && "1: nothing of ours beside the target");
        const int error = m_ops.flush(m_folder.get());
        if (!error)
            return {};
        const std::string text = std::generic_category().message(error);
        return {Failure::Io, Reason::NotFlushed, {m_path, TvString(std::string_view(text))}};
    }

    void removeTemporary()
    {
        if (!m_temporary.empty())
            m_ops.remove(m_temporary);
    }

    FileOps& m_ops; // not owned
    const TvString& m_path;
    const ReplaceRequest& m_request;
    const ContentReader& m_content;
    const std::string& m_metadataOf;
    FileGuard m_folder;
    std::string m_target;          ///< At the end of all links.
    std::optional<FileInfo> m_old; ///< None when a new file is made.
    std::string m_temporary;       ///< Empty: there is none, or it has become the target.
    std::uint64_t m_size = 0;      ///< Of the new version.
    FileInfo m_new;
    std::vector<std::byte> m_written, m_wanted;
};

} // namespace

Status replaceContent(FileOps& ops, const TvString& path, const ReplaceRequest& request,
                      const ContentReader& content, const std::string& metadataOf)
{
    return Replacement(ops, path, request, content, metadataOf).run();
}

Status replaceFile(FileOps& ops, const TvString& path, const ReplaceRequest& request)
{
    const std::span<const std::byte> bytes = request.bytes;
    const auto read = [bytes](std::uint64_t offset, std::span<std::byte> buffer, std::size_t& out) {
        out = std::min<std::size_t>(buffer.size(), bytes.size() - offset);
        if (out)
            std::memcpy(buffer.data(), bytes.data() + offset, out);
        return 0;
    };
    ResolvedName target;
    const bool isNew = !request.rightsOf.isEmpty() &&
                       resolveLinks(ops, nativePath(path), target) == 0 && !target.info;
    return replaceContent(ops, path, request, request.content ? request.content : read,
                          isNew ? nativePath(request.rightsOf) : std::string());
}

void sweepLeftovers(FileOps& ops, const TvString& path)
{
    ResolvedName target;
    std::vector<std::string> names;
    if (resolveLinks(ops, nativePath(path), target) || ops.list(nativeFolderOf(target.path), names))
        return;
    const std::string token = newToken();
    const std::string ours = temporaryName(nativeNameOf(target.path), token);
    const std::size_t fixed = ours.size() - token.size();
    for (const std::string& name : names) {
        const bool isLeft = name.size() == ours.size() &&
                            name.compare(0, fixed, ours, 0, fixed) == 0 &&
                            name.find_first_not_of("0123456789abcdef", fixed) == std::string::npos;
        if (isLeft)
            ops.remove(nativeJoin(nativeFolderOf(target.path), name));
    }
}

} // namespace base
