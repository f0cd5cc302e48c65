#include "rename_files.h"

#include <algorithm>
#include <cerrno>
#include <set>

#include <base/atomic_replace.h>
#include <base/edit_lock.h>
#include <base/path_rules.h>
#include <sm/environment.h>

namespace operations {

using base::Status;

namespace {

Status statusOf(int error, const TvString& path)
{
    return error ? Status::fromSystem(error, path) : Status();
}

} // namespace

bool RenameFiles::isTouched(std::size_t drawing) const
{
    const RenameJournal::Drawing& each = m_journal.drawings[drawing];
    return each.hasNewContent || each.oldPath != each.newPath;
}

bool RenameFiles::isThere(const std::string& path)
{
    base::FileInfo info;
    return m_ops.describeName(path, info) == 0;
}

Status RenameFiles::move(const std::string& from, const std::string& to, const TvString& told)
{
    base::FileInfo source, there;
    if (const int error = m_ops.describeName(from, source))
        return statusOf(error, told);
    if (m_ops.describeName(to, there) == 0) {
        if (there.stamp.device != source.stamp.device || there.stamp.inode != source.stamp.inode)
            return statusOf(EEXIST, base::pathFromNative(to));
        return statusOf(m_ops.remove(from), told); // both halves are one file
    }
    int error = m_ops.renameNew(from, to);
    if (error == EINVAL) { // the file system does not promise it: a second name does
        error = m_ops.link(from, to);
        if (!error)
            error = m_ops.remove(from);
    }
    return statusOf(error, told);
}

Status RenameFiles::stage(std::size_t drawing, std::span<const std::byte> bytes)
{
    const TvString& told = m_journal.drawings[drawing].oldPath;
    const std::string path = m_journal.stagedPath(drawing);
    base::FileOps::Descriptor file = base::FileOps::kNone;
    if (const int error = m_ops.open(path, base::FileOps::OpenMode::CreateExclusive, file))
        return statusOf(error, told);
    bool isOwnershipKept = true; // what a normal user may not keep is left
    int error = m_ops.copyMetadata(base::nativePath(told), file, isOwnershipKept);
    for (std::size_t at = 0, done = 0; !error && at < bytes.size(); at += done)
        error = m_ops.write(file, at, bytes.subspan(at), done);
    if (!error)
        error = m_ops.flush(file);
    const int closing = m_ops.close(file);
    if (error || closing)
        return statusOf(error ? error : closing, told);
    const base::Result<base::FileContent> back =
        base::readWhole(m_ops, base::pathFromNative(path), bytes.size());
    if (!back)
        return back.status();
    return std::ranges::equal(back->bytes, bytes)
               ? Status()
               : Status(base::Failure::Io, base::Reason::VerifyFailed, {told});
}

Status RenameFiles::leave(std::size_t drawing)
{
    const RenameJournal::Drawing& each = m_journal.drawings[drawing];
    base::EditLock use(m_ops, sm::clock(), each.oldPath);
    if (Status status = use.take(u"rename"); !status)
        return status;
    const std::string to =
        each.hasNewContent ? m_journal.asidePath(drawing) : m_journal.stagedPath(drawing);
    Status status = move(base::nativePath(each.oldPath), to, each.oldPath);
    if (status && each.hasNewContent)
        status = isAsRead(drawing, to);
    const Status ignored = use.removeSidecar(); // an empty one says nothing
    static_cast<void>(ignored);
    return status;
}

/// What left must be what the new content was made from.
Status RenameFiles::isAsRead(std::size_t drawing, const std::string& path)
{
    base::FileInfo info;
    if (const int error = m_ops.describeName(path, info))
        return statusOf(error, m_journal.drawings[drawing].oldPath);
    const auto read = m_read.find(drawing);
    if (read != m_read.end() && !(read->second == info.stamp))
        return {base::Failure::Conflict,
                base::Reason::ChangedOnDisk,
                {m_journal.drawings[drawing].oldPath}};
    return {};
}

Status RenameFiles::arrive(std::size_t drawing)
{
    const TvString& path = m_journal.drawings[drawing].newPath;
    return move(m_journal.stagedPath(drawing), base::nativePath(path), path);
}

/// Whether the file still is what was put there.
bool RenameFiles::isContentOf(std::size_t drawing, const TvString& path)
{
    constexpr std::uint64_t kLargest = std::uint64_t(1) << 40;
    const base::Result<base::FileContent> content = base::readWhole(m_ops, path, kLargest);
    return content && base::hashOf(content->bytes) == m_journal.drawings[drawing].newContent;
}

/// A name in sight of the user, for what he made of a file that goes back.
std::string RenameFiles::keptPath(std::size_t drawing) const
{
    constexpr std::size_t kMarkDigits = 4;
    const base::PathRules& rules = base::PathRules::native();
    const TvString& path = m_journal.drawings[drawing].newPath;
    const TvString mark(m_journal.token.substr(0, kMarkDigits).c_str());
    return base::nativePath(rules.join(
        rules.folderOf(path.view()).view(),
        (rules.stemOf(path.view()) + u" (recovered " + mark + u")" + rules.extensionOf(path.view()))
            .view()));
}

Status RenameFiles::takeBackArrivals()
{
    for (std::size_t i = 0; i < m_journal.drawings.size(); ++i) {
        if (!isTouched(i))
            continue;
        const TvString& path = m_journal.drawings[i].newPath;
        const std::string staged = m_journal.stagedPath(i), arrived = base::nativePath(path);
        base::FileInfo waiting, there;
        if (m_ops.describeName(staged, waiting) == 0) {
            // Only what stands there under both names is ours.
            if (m_ops.describeName(arrived, there) == 0 &&
                there.stamp.inode == waiting.stamp.inode &&
                there.stamp.device == waiting.stamp.device)
                m_ops.remove(arrived);
            continue;
        }
        if (!isThere(arrived))
            continue; // somebody took it away since
        const bool isOurs = !m_journal.drawings[i].hasNewContent || isContentOf(i, path);
        if (Status status = move(arrived, isOurs ? staged : keptPath(i), path); !status)
            return status;
    }
    return {};
}

Status RenameFiles::takeBackLeaves()
{
    for (std::size_t i = 0; i < m_journal.drawings.size(); ++i) {
        const RenameJournal::Drawing& each = m_journal.drawings[i];
        if (!isTouched(i))
            continue;
        const std::string from =
            each.hasNewContent ? m_journal.asidePath(i) : m_journal.stagedPath(i);
        if (isThere(from))
            if (Status status = move(from, base::nativePath(each.oldPath), each.oldPath); !status)
                return status;
        if (!each.hasNewContent)
            continue;
        m_ops.remove(m_journal.stagedPath(i));
    }
    return flushFolders();
}

bool RenameFiles::removeFormer()
{
    bool areGone = true;
    for (std::size_t i = 0; i < m_journal.drawings.size(); ++i) {
        if (!m_journal.drawings[i].hasNewContent)
            continue;
        const int error = m_ops.remove(m_journal.asidePath(i));
        areGone = areGone && (error == 0 || error == ENOENT);
    }
    return areGone;
}

Status RenameFiles::flushFolders()
{
    std::set<TvString> folders;
    for (const RenameJournal::Drawing& each : m_journal.drawings)
        folders.insert(base::PathRules::native().folderOf(each.oldPath.view()));
    for (const TvString& folder : folders) {
        base::FileOps::Descriptor open = base::FileOps::kNone;
        int error = m_ops.open(base::nativePath(folder), base::FileOps::OpenMode::Folder, open);
        if (!error) {
            error = m_ops.flush(open);
            m_ops.close(open);
        }
        if (error)
            return statusOf(error, folder);
    }
    return {};
}

} // namespace operations
