#include "base/edit_lock.h"

// How an edit lock is kept:
//
//  1. The lock lies on the sidecar, never on the file. Who holds it keeps the sidecar open; only
//     the deletion of the file removes the sidecar, and then only while holding the lock.
//  2. A lock counts only if the sidecar's name still stands for the file that was locked: between
//     opening and locking, a deletion may have taken the name away.
//  3. In a process the table decides first, then the system's lock between processes.
//  4. Nothing waits, follows a link or opens a pipe: the sidecar is anybody's to put there.
//  5. A record that is not ours is never written over while its owner may be alive: only after the
//     system's lock was had, and not any more once another's token was seen.
//  6. A lock that is lost stays lost until release(), and its descriptor is closed at once: no
//     publish relies on it, and whoever comes next may take it.

#include <cassert>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

#include "base/path_rules.h"
#include "file_guard.h"
#include "lock_table.h"
#include "owner_record.h"
#include "publish_names.h"

namespace base {

namespace {

constexpr std::uint64_t kLockOffset = std::uint64_t(1) << 40; // far past any record

bool isNoService(int error)
{
    return error == ENOLCK || error == EOPNOTSUPP || error == ENOSYS || error == EINVAL;
}

/// What stands in the sidecar's place is not a file that we may write.
bool isRefusal(int error)
{
    return error == EACCES || error == EPERM || error == EROFS || error == ELOOP ||
           error == EISDIR || error == ENXIO;
}

/// Whether the system refuses us a right for certain. Asked for the effective user, and changes
/// nothing; what cannot be reached is for the opening to tell.
bool isRefused(const std::string& path, int rights)
{
    return ::faccessat(AT_FDCWD, path.c_str(), rights, AT_EACCESS) != 0 && isRefusal(errno);
}

enum class WriteAccess { Yes, No, MarkedReadOnly };

/// Whether a save could replace the file. What has no write bit at all is read only for everybody,
/// whatever the system lets an administrator do.
WriteAccess writeAccess(FileOps& ops, const PublishNames& names)
{
    constexpr unsigned kAnyWriteBit = 0222;
    if (names.found() && !(names.found()->mode & kAnyWriteBit))
        return WriteAccess::MarkedReadOnly;
    if (names.found() && isRefused(names.target(), W_OK))
        return WriteAccess::No;
    FileInfo folder;
    const bool isMarked =
        ops.describeTarget(names.folder(), folder) == 0 && !(folder.mode & kAnyWriteBit);
    return isMarked || isRefused(names.folder(), W_OK | X_OK) ? WriteAccess::No : WriteAccess::Yes;
}

bool isTakeable(LockState state)
{
    return lockStatusOf(state) == 0;
}

LockState stateOfError(int error)
{
    return isRefusal(error) ? LockState::Denied : LockState::Unreachable;
}

LockState stateOfFailure(const Status& failure)
{
    const bool isGone = failure.failure() == Failure::Unreachable ||
                        failure.failure() == Failure::NotFound ||
                        failure.reason() == Reason::SystemError;
    return isGone ? LockState::Unreachable : LockState::Denied;
}

std::optional<LockOwner> readRecord(FileOps& ops, FileOps::Descriptor sidecar)
{
    std::byte bytes[kOwnerRecordSize];
    std::size_t length = 0;
    if (ops.read(sidecar, 0, bytes, length) != 0)
        return std::nullopt;
    return parseOwnerRecord({reinterpret_cast<const char*>(bytes), length});
}

int writeRecord(FileOps& ops, FileOps::Descriptor sidecar, const std::string& record)
{
    assert(record.size() == kOwnerRecordSize);
    if (const int error = writeWhole(ops, sidecar, std::as_bytes(std::span(record))))
        return error;
    return ops.flush(sidecar);
}

/// The state of a sidecar that nobody in this process holds.
LockState stateBetweenProcesses(FileOps& ops, FileOps::Descriptor sidecar,
                                const std::optional<LockOwner>& owner)
{
    bool isLocked = false;
    if (const int error = ops.isByteLocked(sidecar, kLockOffset, isLocked))
        return isNoService(error) ? LockState::Unsupported : LockState::Unreachable;
    if (isLocked) // without a record we cannot tell where the holder is: not "here", then
        return owner && isThisMachine(*owner) ? LockState::HeldSameHost : LockState::HeldOtherHost;
    return owner ? LockState::Abandoned : LockState::Free;
}

LockInfo lookAtSidecar(FileOps& ops, FileOps::Descriptor sidecar, const PublishNames& names)
{
    FileInfo info;
    if (ops.describe(sidecar, info) != 0)
        return {LockState::Unreachable, {}};
    if (info.kind != FileInfo::Kind::Regular)
        return {LockState::Denied, {}};
    if (auto holder = LockTable::ofProcess().holderOf({info.stamp.device, info.stamp.inode}))
        return {LockState::HeldSameHost, std::move(holder)};
    LockInfo found;
    found.owner = readRecord(ops, sidecar);
    found.state = stateBetweenProcesses(ops, sidecar, found.owner);
    const auto works = LockServices::ofProcess().known(info.stamp.device, names.folder());
    if (isTakeable(found.state) && works == false)
        found.state = LockState::Unsupported;
    return found;
}

/// The state where no sidecar was made yet.
LockState stateOfFolder(FileOps& ops, const PublishNames& names)
{
    FileGuard folder(ops);
    const int error = folder.open(names.folder(), FileOps::OpenMode::Folder);
    return error ? stateOfError(error) : LockState::Free;
}

Status statusOfSidecar(int error, const std::string& sidecar)
{
    const TvString path = pathFromNative(sidecar);
    if (error == ENOENT)
        return Status(Failure::Unreachable, Reason::FolderUnreachable, {path});
    if (isRefusal(error) && error != EROFS)
        return Status(Failure::Denied, Reason::AccessDenied, {path});
    return Status::fromSystem(error, path);
}

Status heldBy(const std::optional<LockOwner>& owner, const TvString& file)
{
    return Status(Failure::Locked, Reason::LockHeld, {file, nameOfOwner(owner)});
}

Status statusOfWriteAccess(WriteAccess access, const TvString& path)
{
    switch (access) {
    case WriteAccess::Yes: return {};
    case WriteAccess::No: return Status(Failure::Denied, Reason::AccessDenied, {path});
    case WriteAccess::MarkedReadOnly: break;
    }
    return Status(Failure::ReadOnly, Reason::FileReadOnly, {path});
}

int openSidecar(FileGuard& sidecar, const PublishNames& names)
{
    constexpr int kTries = 3; // somebody may make it, or delete it, in between
    int error = 0;
    for (int i = 0; i < kTries; ++i) {
        error = sidecar.open(names.sidecar(), FileOps::OpenMode::ReadWriteNoFollow);
        if (error == ENOENT)
            error = sidecar.open(names.sidecar(), FileOps::OpenMode::CreateOrdinary);
        if (error != EEXIST && error != ENOENT)
            break;
    }
    return error;
}

bool namesTheSame(FileOps& ops, const std::string& sidecar, std::uint64_t device,
                  std::uint64_t inode)
{
    FileInfo info;
    return ops.describeName(sidecar, info) == 0 && info.stamp.device == device &&
           info.stamp.inode == inode;
}

/// Tries whether a second descriptor is denied the lock that a first one has. Where it is not,
/// there is no lock service. Asked once a folder and session, and only while the lock is ours:
/// nobody is disturbed.
bool deniesOthers(FileOps& ops, const std::string& sidecar, const std::string& folder,
                  std::uint64_t device)
{
    LockServices& services = LockServices::ofProcess();
    if (const auto known = services.known(device, folder))
        return *known;
    FileGuard second(ops);
    if (second.open(sidecar, FileOps::OpenMode::ReadWriteNoFollow) != 0)
        return true; // not tried: asked again the next time
    const int answer = ops.lockByte(second.get(), kLockOffset);
    if (answer && answer != EAGAIN && !isNoService(answer))
        return true; // no answer
    const bool works = answer == EAGAIN;
    services.remember(device, folder, works);
    return works;
}

} // namespace

int lockStatusOf(LockState state)
{
    switch (state) {
    case LockState::Abandoned:
    case LockState::Unsupported: return 0;
    default: return static_cast<int>(state);
    }
}

EditLock::EditLock(FileOps& ops, Clock& clock, TvString file)
    : m_ops(ops), m_clock(clock), m_file(std::move(file))
{
}

EditLock::~EditLock()
{
    release();
}

void EditLock::setFile(TvString file)
{
    assert(!m_held); // invariant 1: the open sidecar belongs to the old name
    if (!m_held)
        m_file = std::move(file);
}

LockInfo EditLock::query()
{
    if (m_held)
        return {m_lost ? LockState::Lost : LockState::HeldByMe, m_owner};
    const auto names = PublishNames::resolve(m_ops, m_file);
    if (!names)
        return {stateOfFailure(names.status()), {}};
    LockInfo found;
    FileGuard sidecar(m_ops);
    const int error = sidecar.open(names->sidecar(), FileOps::OpenMode::ReadWriteNoFollow);
    if (error == ENOENT)
        found.state = stateOfFolder(m_ops, *names);
    else if (error)
        found.state = stateOfError(error);
    else
        found = lookAtSidecar(m_ops, sidecar.get(), *names);
    if (isTakeable(found.state) && writeAccess(m_ops, *names) != WriteAccess::Yes)
        found.state = LockState::Denied;
    return found;
}

Status EditLock::take(const TvString& purpose)
{
    if (m_held && m_lost)
        return Status(Failure::Locked, Reason::LockLost, {m_file});
    if (m_held)
        return heldBy(m_owner, m_file);
    const auto names = PublishNames::resolve(m_ops, m_file);
    if (!names)
        return names.status();
    if (Status refused = statusOfWriteAccess(writeAccess(m_ops, *names), m_file); !refused)
        return refused;
    m_owner = thisProcess();
    m_owner.token = newToken();
    m_owner.sinceNs = m_clock.utcNs();
    m_owner.purpose = purpose;

    constexpr int kTries = 8; // each one more deletion of the sidecar that came between
    bool again = true;
    Status status;
    for (int i = 0; i < kTries && again; ++i)
        status = tryToTake(*names, again);
    return status;
}

/// One try. @p again, with a failure, when the sidecar was deleted on the way.
Status EditLock::tryToTake(const PublishNames& names, bool& again)
{
    again = false;
    FileGuard sidecar(m_ops);
    if (const int error = openSidecar(sidecar, names))
        return statusOfSidecar(error, names.sidecar());
    FileInfo info;
    if (const int error = m_ops.describe(sidecar.get(), info))
        return statusOfSidecar(error, names.sidecar());
    if (info.kind != FileInfo::Kind::Regular)
        return statusOfSidecar(EACCES, names.sidecar());
    const LockTable::Sidecar id{info.stamp.device, info.stamp.inode};
    if (!LockTable::ofProcess().enter(id, m_owner)) // invariant 3
        return heldBy(LockTable::ofProcess().holderOf(id), m_file);
    m_sidecar = names.sidecar();
    m_device = id.device;
    m_inode = id.inode;
    Status status = lockSidecar(names, sidecar.get(), again);
    if (!status) {
        LockTable::ofProcess().leave(id);
        return status;
    }
    m_descriptor = m_hasService ? sidecar.release() : FileOps::kNone;
    m_lastBeatNs = m_clock.steadyNs();
    m_held = true;
    return status;
}

/// The system's lock and the record, where there is a lock service.
Status EditLock::lockSidecar(const PublishNames& names, FileOps::Descriptor file, bool& again)
{
    const int refusal = m_ops.lockByte(file, kLockOffset);
    if (refusal == EAGAIN)
        return heldBy(readRecord(m_ops, file), m_file);
    if (refusal && !isNoService(refusal))
        return statusOfSidecar(refusal, m_sidecar);
    again = !namesTheSame(m_ops, m_sidecar, m_device, m_inode); // invariant 2
    if (again)
        return heldBy(std::nullopt, m_file);
    m_hasService = !refusal && deniesOthers(m_ops, m_sidecar, names.folder(), m_device);
    if (!m_hasService)
        return {};
    // Who may write the file may lock it: the sidecar's rights follow those of the file. A file
    // that is not there yet, or a sidecar of somebody else's, leaves them as they are.
    bool ignored = false;
    m_ops.copyMetadata(names.target(), file, ignored);
    return statusOfSidecar(writeRecord(m_ops, file, ownerRecordText(m_owner)), m_sidecar);
}

bool EditLock::isOurProcess() const
{
    return m_owner.pid == ::getpid();
}

bool EditLock::isRecordOurs()
{
    const auto record = readRecord(m_ops, m_descriptor);
    return record && record->token == m_owner.token;
}

/// Writes the record anew and asks all that can tell that the lock went: the record, the sidecar's
/// name, the disk, the lock service. A write alone proves nothing.
bool EditLock::isStillOurs()
{
    bool isForeign = true;
    return isRecordOurs() && namesTheSame(m_ops, m_sidecar, m_device, m_inode) &&
           writeRecord(m_ops, m_descriptor, ownerRecordText(m_owner)) == 0 &&
           m_ops.isByteLocked(m_descriptor, kLockOffset, isForeign) == 0 && !isForeign;
}

bool EditLock::heartbeat()
{
    if (!m_held || m_lost)
        return false;
    m_lastBeatNs = m_clock.steadyNs();
    if (m_descriptor == FileOps::kNone || isStillOurs())
        return true;
    letGo(); // invariant 6
    m_lost = true;
    return false;
}

bool EditLock::heartbeatIfDue()
{
    const std::chrono::nanoseconds passed(m_clock.steadyNs() - m_lastBeatNs);
    return passed >= kHeartbeat ? heartbeat() : m_held && !m_lost;
}

void EditLock::release()
{
    if (!m_held)
        return;
    if (!m_lost) {
        if (m_descriptor != FileOps::kNone && isOurProcess() && isRecordOurs()) // invariant 5
            writeRecord(m_ops, m_descriptor, std::string(kOwnerRecordSize, '\0'));
        letGo();
    }
    m_held = m_lost = false;
}

/// Gives the system's lock and the place in the table away.
void EditLock::letGo()
{
    if (m_descriptor != FileOps::kNone) {
        // The copy that a fork has shares the lock with us: unlocking it would take it from us
        // both.
        if (isOurProcess())
            m_ops.unlockByte(m_descriptor, kLockOffset);
        m_ops.close(std::exchange(m_descriptor, FileOps::kNone));
    }
    LockTable::ofProcess().leave({m_device, m_inode});
}

Status EditLock::removeSidecar()
{
    if (!m_held || m_lost)
        return Status(Failure::Usage, Reason::LockLost, {m_file});
    int error = 0;
    if (namesTheSame(m_ops, m_sidecar, m_device, m_inode))
        error = m_ops.remove(m_sidecar);
    release();
    return error == ENOENT ? Status() : statusOfSidecar(error, m_sidecar);
}

} // namespace base
