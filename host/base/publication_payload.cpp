#include "publication.h"

// The first steps of a publish: our version on disk, beside the file, whole, read back, under two
// names.

#include <cerrno>

#include "payload.h"

namespace base {

/// Whose rights our version gets: those of the file; where that is missing, of its newest version,
/// lest a private file comes back public. Empty for a new one. Not knowing is a failure, and never
/// "new".
int Publication::findMetadataSource(std::string& out)
{
    FileInfo info;
    const int error = m_ops.describeName(m_names.target(), info);
    out = m_names.target();
    if (error != ENOENT)
        return error;
    std::vector<HelperFile> helpers;
    const int unknown = listHelpers(m_ops, m_names, helpers);
    const auto versions = newestFirst(helpers);
    out = versions.empty() ? std::string() : versions.front().path;
    return unknown;
}

Publication::Step Publication::writePayload()
{
    int error = findMetadataSource(m_rightsFrom);
    if (!error)
        error = writeNewFile(m_ops, m_payload, m_request.bytes, m_rightsFrom);
    if (error == ENOENT && !m_rightsFrom.empty())
        return Step::Again; // what we copied the rights from has gone
    if (error == ENOENT)
        return fail(Status(Failure::Unreachable, Reason::FolderUnreachable, {m_names.given()}));
    return error ? fail(error) : Step::Next;
}

Publication::Step Publication::verifyPayload()
{
    FileGuard file(m_ops);
    FileInfo info;
    ContentHash written;
    int error = file.open(m_payload, FileOps::OpenMode::ReadNoFollow);
    if (error == ENOENT)
        return Step::Again; // revoked already
    if (!error)
        error = m_ops.describe(file.get(), info);
    if (!error)
        error = hashWhole(m_ops, file.get(), written);
    if (error)
        return fail(error);
    if (written != m_hash)
        return fail(Status(Failure::Damaged, Reason::VerifyFailed, {m_names.given()}));
    m_ours = info.stamp;
    return Step::Next;
}

/// The second name outlives the rename, and becomes the name of the published version.
Publication::Step Publication::nameTwice()
{
    int error = m_ops.link(m_payload, m_pending);
    m_isCopying = isLinkRefused(error);
    if (m_isCopying)
        error = writeNewFile(m_ops, m_pending, m_request.bytes, m_payload);
    if (error == ENOENT)
        return Step::Again; // revoked already
    return error ? fail(error) : Step::Next;
}

} // namespace base
