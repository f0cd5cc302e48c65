#include "publication.h"

// The names that published versions keep for a while: ".NAME.done.N", a higher number newer.
// (Invariant 6 of publication.cpp.)

#include <cerrno>

#include "base/edit_lock.h"
#include "payload.h"

namespace base {

namespace {

constexpr std::size_t kKeptVersions = 3;

/// Whether @p path stands for the file with this identity.
bool isNameOf(FileOps& ops, const std::string& path, const FileStamp& file)
{
    FileInfo info;
    return ops.describeName(path, info) == 0 && isOneFile(info.stamp, file);
}

} // namespace

/// The version that goes has a name beside the file, or gets one (invariant 6).
Publication::Step Publication::keepReplaced()
{
    m_number = m_versions.empty() ? 1 : m_versions.front().number + 1;
    m_keptAs = m_versions.empty() ? std::string() : m_versions.front().path;
    if (m_isAbsent)
        return Step::Next;
    for (const HelperFile& version : m_versions) {
        m_keptAs = version.path;
        if (isNameOf(m_ops, version.path, m_replaced))
            return Step::Next;
    }
    return linkReplaced(m_number);
}

Publication::Step Publication::linkReplaced(std::uint64_t number)
{
    constexpr int kTries = 100; // others may be at the same, and take a number first
    int error = EEXIST;
    for (int i = 0; i < kTries && error == EEXIST; ++i, ++number) {
        m_keptAs = m_names.published(number);
        error = m_ops.link(m_names.target(), m_keptAs);
        if (isLinkRefused(error))
            return copyReplaced(number);
        if (error == EEXIST && isNameOf(m_ops, m_keptAs, m_replaced))
            error = 0;
    }
    m_number = number;
    if (error == ENOENT)
        return Step::Again; // the file went
    return error ? fail(error) : Step::Next;
}

/// Where links are refused, a published version is a copy, and is known by its content.
Publication::Step Publication::copyReplaced(std::uint64_t number)
{
    ContentHash copied;
    if (!m_versions.empty() && hashOfFile(m_ops, m_versions.front().path, copied) == 0 &&
        copied == m_request.base) {
        m_keptAs = m_versions.front().path;
        return Step::Next;
    }
    const std::string half =
        m_names.helper(HelperFile::Kind::Pending, newToken()); // not a version until whole
    int error = copyFile(m_ops, m_names.target(), half, copied);
    m_keptAs = m_names.published(number);
    if (!error && copied == m_request.base)
        error = moveToFreeName(m_ops, half, m_keptAs);
    else if (!error)
        error = ENOENT; // it is another file by now
    m_number = number + 1;
    if (!error)
        return Step::Next;
    m_ops.remove(half);
    return error == ENOENT || error == EEXIST ? Step::Again : fail(error);
}

/// Whether our version was in place and was replaced in good order: then whoever did it kept a name
/// for it, under our number or a later one. (An older version may have our very content: a change
/// taken back.)
bool Publication::isSuperseded()
{
    std::vector<HelperFile> helpers;
    if (listHelpers(m_ops, m_names, helpers) != 0)
        return false;
    for (const HelperFile& version : newestFirst(helpers)) {
        if (version.number >= m_number && isOurs(version.path))
            return true;
    }
    return false;
}

bool Publication::isOurs(const std::string& version)
{
    if (isNameOf(m_ops, version, m_ours))
        return true;
    ContentHash kept; // a copy has nothing but its content to be known by
    return m_isCopying && hashOfFile(m_ops, version, kept) == 0 && kept == m_hash;
}

/// Our version stays under a number. It is on disk whatever happens here: who replaces it names it
/// anew.
Publication::Step Publication::keepPublished()
{
    constexpr int kTries = 100;
    for (int i = 0; i < kTries; ++i, ++m_number) {
        const std::string name = m_names.published(m_number);
        const int error = moveToFreeName(m_ops, m_pending, name);
        if (!error)
            break;
        if (error != EEXIST || isNameOf(m_ops, name, m_ours)) {
            m_ops.remove(m_pending);
            break;
        }
    }
    trim();
    return Step::Done;
}

void Publication::trim()
{
    std::vector<HelperFile> helpers;
    if (listHelpers(m_ops, m_names, helpers) != 0)
        return; // the next commit trims
    const auto versions = newestFirst(helpers);
    for (std::size_t i = kKeptVersions; i < versions.size(); ++i)
        m_ops.remove(versions[i].path);
}

} // namespace base
