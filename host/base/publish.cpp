#include "base/publish.h"

#include <cerrno>
#include <chrono>

#include "base/atomic_replace.h"
#include "base/path_rules.h"
#include "publication.h"
#include "resolve_links.h"

// The invariants are those of publication.cpp. Here is what stands around a publish: reading,
// healing, looking, sweeping, deleting. Two more hold here:
//
//  8. A missing file is healed only by a link that never overwrites, or by a publish; and only
//     while published versions are there.
//  9. A deletion takes the published versions first and the file last: at no moment is the file
//     gone while there is something to heal it from.

namespace base {

namespace {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;
using Kind = HelperFile::Kind;

constexpr auto kHealDelay = 200ms;  // a replace that is not atomic is over by then
constexpr auto kSecondLook = 150ms; // twice
constexpr nanoseconds kLeftOver = 24h;
constexpr std::uint64_t kHealLimit = std::uint64_t(1) << 32; // bytes; no file of ours comes near

/// The newest version to a place where no link can be made: as a publish that replaces nothing.
Status publishNewest(FileOps& ops, Clock& clock, const PublishNames& names, const std::string& from)
{
    const auto newest = readWhole(ops, pathFromNative(from), kHealLimit);
    if (!newest)
        return newest.status();
    PublishRequest request;
    request.bytes = newest->bytes;
    request.base = hashOf(newest->bytes);
    request.keepRecovery = false;
    const auto healed = Publication(ops, clock, names, request, Publication::Healing::No).run();
    return healed ? Status() : healed.status();
}

int removeIfThere(FileOps& ops, const std::string& path)
{
    const int error = ops.remove(path);
    return error == ENOENT ? 0 : error;
}

/// A payload is revoked first: who is about to rename it then learns of it in one way only.
int removeHelper(FileOps& ops, const PublishNames& names, const HelperFile& helper)
{
    if (helper.kind != Kind::Payload)
        return removeIfThere(ops, helper.path);
    const std::string revoked = names.helper(Kind::Revoked, helper.token);
    const int error = ops.rename(helper.path, revoked);
    if (error)
        return error == ENOENT ? 0 : error;
    return removeIfThere(ops, revoked);
}

int removeHelpers(FileOps& ops, const PublishNames& names)
{
    std::vector<HelperFile> helpers;
    if (const int error = listHelpers(ops, names, helpers))
        return error;
    int result = 0;
    for (const HelperFile& helper : helpers) {
        const int error = removeHelper(ops, names, helper);
        result = result ? result : error;
    }
    return result;
}

bool isLeftOver(FileOps& ops, Clock& clock, const std::string& path)
{
    FileInfo info;
    return ops.describeName(path, info) == 0 && info.kind == FileInfo::Kind::Regular &&
           info.stamp.modifiedNs < clock.utcNs() - kLeftOver.count();
}

int flushFolderOf(FileOps& ops, const PublishNames& names)
{
    FileGuard folder(ops);
    if (const int error = folder.open(names.folder(), FileOps::OpenMode::Folder))
        return error;
    return ops.flush(folder.get());
}

/// Asks a share's server for the folder, where its client would answer from memory.
int refreshFolder(FileOps& ops, const std::string& folder)
{
    FileGuard opened(ops);
    const int error = opened.open(folder, FileOps::OpenMode::Folder);
    if (error == EACCES)
        return 0; // one that may be passed through, but not listed
    return error;
}

Status unreachable(const TvString& path)
{
    return Status(Failure::Unreachable, Reason::FolderUnreachable, {path});
}

Status statusOfFolder(int error, const TvString& path)
{
    return error == ENOENT || error == ENOTDIR ? unreachable(path)
                                               : Status::fromSystem(error, path);
}

/// One look. NotFound is for a file that is not in its folder; a folder that is not there is
/// Unreachable.
Result<FileStamp> lookOnce(FileOps& ops, const TvString& path)
{
    const std::string folder = nativeFolderOf(nativePath(path));
    if (const int error = refreshFolder(ops, folder))
        return statusOfFolder(error, path);
    const auto names = PublishNames::resolve(ops, path);
    if (!names)
        return names.status();
    std::optional<FileInfo> info = names->found();
    if (names->folder() != folder) { // a link: the folder at its end is the one to ask
        if (const int error = refreshFolder(ops, names->folder()))
            return statusOfFolder(error, path);
        FileInfo fresh;
        info.reset();
        if (const int error = ops.describeName(names->target(), fresh); !error)
            info = fresh;
        else if (error != ENOENT)
            return Status::fromSystem(error, path);
    }
    if (!info)
        return Status::fromSystem(ENOENT, path);
    if (info->kind != FileInfo::Kind::Regular)
        return Status(Failure::Unsupported, Reason::NotRegularFile, {path});
    return info->stamp;
}

/// Waits for a file that is missing though published versions are there, and heals it if it does
/// not come.
Status waitAndHeal(FileOps& ops, Clock& clock, const PublishNames& names)
{
    std::vector<HelperFile> helpers;
    if (const int error = listHelpers(ops, names, helpers))
        return statusOfFolder(error, names.given());
    if (newestFirst(helpers).empty())
        return Status::fromSystem(ENOENT, names.given());
    clock.sleep(kHealDelay);
    FileInfo info;
    if (ops.describeName(names.target(), info) == 0)
        return {};
    return healVanished(ops, clock, names);
}

bool isGone(const Status& status)
{
    return status.failure() == Failure::NotFound;
}

/// A link among the versions would be healed into a link: it is none of ours.
std::optional<std::string> newestVersion(FileOps& ops, const std::vector<HelperFile>& helpers)
{
    for (const HelperFile& version : newestFirst(helpers)) {
        FileInfo info;
        if (ops.describeName(version.path, info) == 0 && info.kind == FileInfo::Kind::Regular)
            return version.path;
    }
    return std::nullopt;
}

} // namespace

Result<PublishOutcome> publishVersion(FileOps& ops, Clock& clock, const TvString& path,
                                      const PublishRequest& request)
{
    auto names = PublishNames::resolve(ops, path);
    if (!names)
        return names.status();
    return Publication(ops, clock, std::move(*names), request, Publication::Healing::Yes).run();
}

Status healVanished(FileOps& ops, Clock& clock, const PublishNames& names)
{
    constexpr int kTries = 5; // the newest may be trimmed between listing and linking
    int error = ENOENT;
    for (int i = 0; i < kTries && error == ENOENT; ++i) {
        std::vector<HelperFile> helpers;
        if (const int unknown = listHelpers(ops, names, helpers))
            return Status::fromSystem(unknown, names.given());
        const auto newest = newestVersion(ops, helpers);
        if (!newest)
            break;
        error = ops.link(*newest, names.target()); // invariant 8
        if (isLinkRefused(error))
            return publishNewest(ops, clock, names, *newest);
    }
    return error == EEXIST ? Status() : Status::fromSystem(error, names.given());
}

Result<VersionRead> readVersion(FileOps& ops, Clock& clock, const TvString& path,
                                std::uint64_t limit)
{
    const auto names = PublishNames::resolve(ops, path);
    if (!names)
        return names.status();
    Result<FileContent> content = readWhole(ops, path, limit);
    if (!content && isGone(content.status())) {
        if (Status healed = waitAndHeal(ops, clock, *names); !healed)
            return healed;
        content = readWhole(ops, path, limit);
    }
    if (!content)
        return content.status();
    const ContentHash hash = hashOf(content->bytes);
    return VersionRead{std::move(content->bytes), content->stamp, hash};
}

Result<FileStamp> lookAt(FileOps& ops, Clock& clock, const TvString& path)
{
    Result<FileStamp> seen = lookOnce(ops, path);
    for (int i = 0; i < 2 && !seen && isGone(seen.status()); ++i) {
        clock.sleep(kSecondLook);
        seen = lookOnce(ops, path);
    }
    return seen;
}

void sweepLeftovers(FileOps& ops, Clock& clock, const TvString& path)
{
    const auto names = PublishNames::resolve(ops, path);
    std::vector<HelperFile> helpers;
    if (!names || listHelpers(ops, *names, helpers) != 0)
        return;
    for (const HelperFile& helper : helpers) {
        if (helper.kind != Kind::Published && isLeftOver(ops, clock, helper.path))
            removeHelper(ops, *names, helper);
    }
}

Status removePublished(FileOps& ops, const TvString& path)
{
    const auto names = PublishNames::resolve(ops, path);
    if (!names)
        return names.status();
    int error = removeHelpers(ops, *names); // invariant 9
    if (!error)
        error = removeIfThere(ops, names->target());
    if (!error) // somebody without a lock may have been on the way
        error = removeHelpers(ops, *names);
    const std::string given = nativePath(path);
    if (!error && given != names->target())
        error = removeIfThere(ops, given); // the link that led to it
    if (!error)
        error = flushFolderOf(ops, *names);
    return statusOfFolder(error, path);
}

} // namespace base
