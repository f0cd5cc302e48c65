#include "publication.h"

// How a version gets to disk when several people write one file, and no lock can be relied on.
//
//  1. Of two publishes from one base at most one succeeds. Each makes its payload first, then lists
//     the folder and takes every other payload out of the race, then reads the file. Whoever lists
//     later finds the other's payload and revokes it, so that its rename fails, or finds it gone
//     because it has taken its place, and reads a file that is not the base any more. The order
//     payload - fence - base - rename is what this rests on, in each new attempt too.
//  2. The file's name stands for a whole version at every instant: nothing but one rename touches
//     it. Where a rename failed half-way, the newest published version is linked back.
//  3. Success is told only of a version that was read back before and after the rename, and whose
//     folder was flushed.
//  4. Another's payload is touched only to revoke it, by renaming it.
//  5. Killed at any moment, a publish is wholly there or not at all: what it leaves are hidden
//     files that the next publish revokes and a sweep removes.
//  6. A version that was published keeps a name (".done.") before it is replaced; the higher
//     number is the newer. The number of ours is settled before the rename: whoever replaces us
//     links us under the same one if we were too slow.
//  7. A file that is not there is only ever made, never replaced: what appears meanwhile stays.

#include <cassert>
#include <cerrno>
#include <chrono>
#include <system_error>

#include "base/edit_lock.h"
#include "base/path_rules.h"
#include "payload.h"

namespace base {

namespace {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;

constexpr nanoseconds kPatience = 10s; // for a busy file, and for others that go first
constexpr nanoseconds kManners = 1s;   // a payload this old has been left, or is too slow
constexpr auto kPollDelay = 20ms;
constexpr auto kBusyDelay = 100ms;
constexpr unsigned kAnyWriteBit = 0222;
using Kind = HelperFile::Kind;

bool isBusy(int error)
{
    return error == EBUSY || error == ETXTBSY || error == EAGAIN;
}

TvString systemText(int error)
{
    return TvString(std::string_view(std::generic_category().message(error)));
}

} // namespace

Publication::Publication(FileOps& ops, Clock& clock, PublishNames names,
                         const PublishRequest& request, Healing healing)
    : m_ops(ops), m_clock(clock), m_names(std::move(names)), m_request(request), m_healing(healing),
      m_hash(hashOf(request.bytes)), m_token(newToken()),
      m_payload(m_names.helper(Kind::Payload, m_token)),
      m_pending(m_names.helper(Kind::Pending, m_token)),
      m_revoked(m_names.helper(Kind::Revoked, m_token)), m_startNs(clock.steadyNs()), m_folder(ops)
{
}

Result<PublishOutcome> Publication::run()
{
    if (Status refused = checkTarget(); !refused)
        return refused;
    Step step = tryOnce();
    while (step == Step::Again && hasPatience()) {
        withdraw();
        waitForOthers();
        step = tryOnce();
    }
    if (step == Step::Done)
        return PublishOutcome{m_stamp, m_hash};
    if (step != Step::Failed)
        return conflict();
    withdraw();
    return m_failure;
}

Publication::Step Publication::tryOnce()
{
    using Way = Step (Publication::*)();
    constexpr Way kWay[] = {
        // in this order: invariant 1
        &Publication::writePayload,  &Publication::verifyPayload, &Publication::nameTwice,
        &Publication::fence,         &Publication::compareBase,   &Publication::keepReplaced,
        &Publication::putInPlace,    &Publication::flushFolder,   &Publication::confirm,
        &Publication::keepPublished,
    };
    for (const Way way : kWay) {
        if (const Step step = (this->*way)(); step != Step::Next)
            return step;
    }
    return Step::Done;
}

Publication::Step Publication::fail(int error)
{
    return fail(Status::fromSystem(error, m_names.given()));
}

Publication::Step Publication::fail(Status status)
{
    assert(!status);
    m_failure = std::move(status);
    return Step::Failed;
}

/// Refuses what we may not write, before anything is made. Mode bits count for an administrator
/// too, whom the system would let through.
Status Publication::checkTarget()
{
    const TvString& path = m_names.given();
    if (const auto& file = m_names.found()) {
        if (file->kind != FileInfo::Kind::Regular)
            return Status(Failure::Unsupported, Reason::NotRegularFile, {path});
        if (!(file->mode & kAnyWriteBit))
            return Status(Failure::ReadOnly, Reason::FileReadOnly, {path});
        // Renaming over a file needs no right to write it; we want that right all the same.
        FileGuard probe(m_ops);
        const int error = probe.open(m_names.target(), FileOps::OpenMode::ReadWriteNoFollow);
        if (error && error != ENOENT)
            return Status::fromSystem(error, path);
    }
    const int error = m_folder.open(m_names.folder(), FileOps::OpenMode::Folder);
    if (error == ENOENT || error == ENOTDIR)
        return Status(Failure::Unreachable, Reason::FolderUnreachable, {path});
    FileInfo folder;
    if (const int unknown = error ? error : m_ops.describe(m_folder.get(), folder))
        return Status::fromSystem(unknown, path);
    if (!(folder.mode & kAnyWriteBit))
        return Status(Failure::Denied, Reason::AccessDenied, {path});
    return {};
}

/// Whether a rival that we could revoke goes first: it is at work, and its token wins.
bool Publication::deservesManners(const HelperFile& rival, const FileInfo& info) const
{
    if (m_request.haveSystemLock || rival.token > m_token || m_waitedFor.contains(rival.path))
        return false;
    // Both times are the file server's: no clock of a machine comes in. Subtracted without a sign,
    // since a file may claim any time.
    const auto ours = static_cast<std::uint64_t>(m_ours.modifiedNs);
    const auto its = static_cast<std::uint64_t>(info.stamp.modifiedNs);
    return info.stamp.modifiedNs > m_ours.modifiedNs ||
           ours - its < static_cast<std::uint64_t>(kManners.count());
}

/// The other payloads, and in m_yieldTo one that goes first. Gone since the listing: fine.
int Publication::findRivals(std::vector<HelperFile>& rivals)
{
    std::vector<HelperFile> helpers;
    if (const int error = listHelpers(m_ops, m_names, helpers))
        return error;
    m_versions = newestFirst(helpers);
    for (const HelperFile& helper : helpers) {
        if (helper.kind != Kind::Payload || helper.token == m_token)
            continue;
        FileInfo info;
        const int error = m_ops.describeName(helper.path, info);
        if (error && error != ENOENT)
            return error;
        if (error || info.kind != FileInfo::Kind::Regular)
            continue;
        if (deservesManners(helper, info))
            m_yieldTo = helper.path;
        rivals.push_back(helper);
    }
    return 0;
}

Publication::Step Publication::fence()
{
    std::vector<HelperFile> rivals;
    if (const int error = findRivals(rivals))
        return fail(error);
    if (!m_yieldTo.empty() && hasPatience())
        return Step::Again;
    for (const HelperFile& rival : rivals) {
        assert(rival.token != m_token); // invariant 4
        const int error = m_ops.rename(rival.path, m_names.helper(Kind::Revoked, rival.token));
        if (error &&
            error != ENOENT) // gone: it is in place, and compareBase() sees it, or withdrawn
            return fail(error);
    }
    return Step::Next;
}

/// The file as it is now: only the version that ours was made from may be replaced.
Publication::Step Publication::compareBase()
{
    FileGuard file(m_ops);
    FileInfo info;
    ContentHash now;
    int error = file.open(m_names.target(), FileOps::OpenMode::ReadNoFollow);
    if (error == ENOENT)
        return compareVanished();
    if (!error)
        error = m_ops.describe(file.get(), info);
    if (!error && info.kind != FileInfo::Kind::Regular)
        return fail(Status(Failure::Unsupported, Reason::NotRegularFile, {m_names.given()}));
    if (!error)
        error = hashWhole(m_ops, file.get(), now);
    if (error)
        return fail(error);
    m_isAbsent = false;
    m_replaced = info.stamp;
    if (now == m_request.base) // a file that was missing when we copied its rights is back
        return m_rightsFrom == m_names.target() ? Step::Next : Step::Again;
    return now == m_hash ? settle(info.stamp) : Step::Conflict;
}

/// Our very content is there: a former try was carried out and could not say so. Nothing is left to
/// do.
Publication::Step Publication::settle(const FileStamp& stamp)
{
    m_stamp = stamp;
    withdraw();
    const Step flushed = flushFolder();
    return flushed == Step::Next ? Step::Done : flushed;
}

/// There is no file. A version that was published after our base is newer than ours all the same.
Publication::Step Publication::compareVanished()
{
    if (m_request.base && !m_request.recreateVanished)
        return fail(ENOENT);
    std::vector<HelperFile> helpers;
    if (const int error = listHelpers(m_ops, m_names, helpers))
        return fail(error);
    m_isAbsent = true;
    m_versions = newestFirst(helpers);
    if (m_versions.empty())
        return Step::Next;
    FileGuard file(m_ops);
    ContentHash newest;
    int error = file.open(m_versions.front().path, FileOps::OpenMode::ReadNoFollow);
    if (error == ENOENT)
        return Step::Again; // trimmed: a newer one is there
    if (!error)
        error = hashWhole(m_ops, file.get(), newest);
    if (error)
        return fail(error);
    return newest == m_request.base ? Step::Next : Step::Conflict;
}

Publication::Step Publication::putInPlace()
{
    assert(m_ours.inode); // invariant 3: read back
    const std::int64_t start = m_clock.steadyNs();
    for (;;) {
        const int error = m_isAbsent
                              ? moveToFreeName(m_ops, m_payload, m_names.target()) // invariant 7
                              : m_ops.rename(m_payload, m_names.target());
        if (!error)
            return Step::Next;
        if (error == ENOENT || error == EEXIST)
            return afterLoss();
        if (!isBusy(error) || nanoseconds(m_clock.steadyNs() - start) >= kPatience)
            return afterError(error);
        m_clock.sleep(kBusyDelay);
        if (const Step step = compareBase(); step != Step::Next)
            return step; // the wait is long enough for one who does not know of payloads
    }
}

/// Our payload is gone, or the name is taken: revoked, overtaken, or a lost answer to a rename that
/// was carried out.
Publication::Step Publication::afterLoss()
{
    switch (whatIsThere()) {
    case Content::Ours:
    case Content::Superseded: return Step::Next;
    case Content::Base:
    case Content::Missing: return Step::Again; // revoked, and nobody came first: nothing conflicts
    case Content::Other: return Step::Conflict;
    case Content::Unknown: break;
    }
    return Step::Failed;
}

/// The replace failed. The payload goes first: a server that is late cannot carry it out any more.
Publication::Step Publication::afterError(int error)
{
    m_ops.remove(m_payload);
    const Content there = whatIsThere();
    if (there == Content::Ours || there == Content::Superseded)
        return Step::Next;
    if (there == Content::Missing && m_healing == Healing::Yes)   // invariant 2
        static_cast<void>(healVanished(m_ops, m_clock, m_names)); // the error below is what counts
    return fail(error);
}

Publication::Content Publication::whatIsThere()
{
    FileGuard file(m_ops);
    FileInfo info;
    ContentHash now;
    int error = file.open(m_names.target(), FileOps::OpenMode::ReadNoFollow);
    if (error == ENOENT)
        return Content::Missing;
    if (!error)
        error = m_ops.describe(file.get(), info);
    if (!error)
        error = hashWhole(m_ops, file.get(), now);
    if (error) {
        fail(error);
        return Content::Unknown;
    }
    m_stamp = info.stamp;
    if (now == m_hash)
        return Content::Ours;
    if (isSuperseded()) {
        m_stamp = m_ours;
        return Content::Superseded;
    }
    return now == m_request.base ? Content::Base : Content::Other;
}

Publication::Step Publication::flushFolder()
{
    const int error = m_ops.flush(m_folder.get());
    if (!error)
        return Step::Next;
    return fail(Status(Failure::Io, Reason::NotFlushed, {m_names.given(), systemText(error)}));
}

/// A last look at what the name stands for.
Publication::Step Publication::confirm()
{
    const Content there = whatIsThere();
    if (there == Content::Ours || there == Content::Superseded)
        return Step::Next;
    if (there == Content::Unknown)
        return Step::Failed;
    if (there == Content::Missing)
        return restore();
    if (isOneFile(m_stamp, m_ours)) // our file, and not our bytes: the disk does not keep its word
        return fail(Status(Failure::Damaged, Reason::NotReplaced,
                           {m_names.given(), pathFromNative(m_keptAs)}));
    return there == Content::Base ? Step::Again : Step::Conflict; // the replace did not hold
}

/// The file went right after it was in place. Its second name brings it back, unless that went too:
/// then the file was deleted on purpose.
Publication::Step Publication::restore()
{
    if (const int error = moveToFreeName(m_ops, m_pending, m_names.target()))
        return fail(error);
    if (const Step step = flushFolder(); step != Step::Next)
        return step;
    return whatIsThere() == Content::Ours ? Step::Done : fail(EIO);
}

bool Publication::hasPatience()
{
    return nanoseconds(m_clock.steadyNs() - m_startNs) < kPatience;
}

/// Lets the payload that goes first have its second, or others a moment: a longer one each time.
void Publication::waitForOthers()
{
    constexpr int kLongestRound = 5; // 640 ms
    if (m_yieldTo.empty()) {
        m_clock.sleep(kPollDelay * (1 << std::min(m_rounds++, kLongestRound)));
        return;
    }
    const std::int64_t start = m_clock.steadyNs();
    FileInfo info;
    do {
        m_clock.sleep(kPollDelay);
    } while (nanoseconds(m_clock.steadyNs() - start) < kManners &&
             m_ops.describeName(m_yieldTo, info) == 0);
    m_waitedFor.insert(std::exchange(m_yieldTo, {}));
}

/// Takes all that is ours away from beside the file. The payload first: it cannot be revoked any
/// more then.
void Publication::withdraw()
{
    for (const std::string* path : {&m_payload, &m_revoked, &m_pending})
        m_ops.remove(*path);
}

Status Publication::conflict()
{
    const std::string recovery = m_request.keepRecovery ? keepRecovery() : std::string();
    withdraw();
    if (recovery.empty())
        return Status(Failure::Conflict, Reason::ChangedOnDisk, {m_names.given()});
    return Status(Failure::Conflict, Reason::PublishConflict,
                  {m_names.given(), pathFromNative(recovery)});
}

} // namespace base
