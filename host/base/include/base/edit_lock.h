#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include <base/clock.h>
#include <base/file_ops.h>
#include <base/status.h>

namespace base {

class PublishNames;

/// What is known about the edit lock of a file. Numbers are forever: they are what getLockStatus
/// tells.
enum class LockState : int {
    Free = 0,
    HeldByMe = 1,
    HeldSameHost = 2, ///< Another process, or another holder in this process.
    HeldOtherHost = 3,
    Abandoned = 4,   ///< A record, but nobody holds the system lock: the next writer takes it.
    Lost = 5,        ///< Was mine; the heartbeat found it gone.
    Denied = 6,      ///< No right to write here.
    Unsupported = 7, ///< No lock service here: the fence alone guards.
    Unreachable = 8, ///< The folder does not answer.
};

/// The number that the rest of the system tests: 0 where taking the lock may be tried.
int lockStatusOf(LockState state);

/// Who holds, or last held, an edit lock. Read from a file that anybody may have written: capped,
/// never trusted.
struct LockOwner {
    std::string token; ///< 32 hexadecimal digits, new for each taking.
    TvString user;
    TvString host;
    TvString machineId;
    TvString bootId;
    std::int64_t pid = 0;
    TvString program;
    std::int64_t sinceNs = 0; ///< UTC, since 1970.
    TvString purpose;
};

/// The record's bytes: exactly kOwnerRecordSize, padded with NUL.
constexpr std::size_t kOwnerRecordSize = 512;
std::string ownerRecordText(const LockOwner& owner);
/// nullopt when @p bytes hold no record that makes sense. Never fails otherwise, whatever the
/// bytes. Control characters are kept: escape on showing.
std::optional<LockOwner> parseOwnerRecord(std::string_view bytes);

struct LockInfo {
    LockState state = LockState::Free;
    std::optional<LockOwner> owner;
};

/// The politeness lock of one user file: lets one person edit for hours while others see who does.
///
/// It lies on a sidecar (".NAME.lk" beside the file, made once, never renamed or removed but with
/// the file), never on the file itself, whose inode changes at each save. Losing it never loses
/// data: publishVersion() guards that. Within a process one table, keyed by the sidecar's device
/// and inode, lets one holder in.
class EditLock
{
public:
    /// @param ops, clock  not owned; outlive the lock.
    EditLock(FileOps& ops, Clock& clock, TvString file);
    ~EditLock(); ///< Releases.
    EditLock(const EditLock&) = delete;
    EditLock& operator=(const EditLock&) = delete;

    const TvString& file() const { return m_file; }
    /// For another file name; only while not held.
    void setFile(TvString file);

    /// The state now. Creates nothing and takes nothing.
    ///
    /// A file that nobody holds but that may not be written, or whose folder may not, is Denied.
    /// @note one open, one lock query, one read; nothing of it while we hold the lock ourselves.
    LockInfo query();
    /// Takes the lock. Never waits and never nests: held by anyone, ourselves included, gives
    /// Locked. A state of Unsupported counts as taken (isHeld() is true, hasSystemLock() false).
    ///
    /// Refused as well where the file is read only or may not be written: editing would lead to
    /// nothing.
    Status take(const TvString& purpose);
    /// Clears the record, unlocks, closes. Nothing when not held.
    void release();
    /// From take() to release(), lost in between or not.
    bool isHeld() const { return m_held; }
    /// Held, not lost, and guarded by the system: what a publish may rely on.
    bool hasSystemLock() const { return m_descriptor != FileOps::kNone && m_held; }

    /// To be called while held, at least every kHeartbeat: writes the record, flushes, and looks
    /// whether the lock is still ours. False means lost: the state stays Lost until release().
    bool heartbeat();
    /// heartbeat() when kHeartbeat has passed since the last one; otherwise what was found then.
    bool heartbeatIfDue();
    static constexpr std::chrono::seconds kHeartbeat{5};

    /// Removes the sidecar as a part of deleting the file; the lock must be held, and is released
    /// by it.
    Status removeSidecar();

private:
    Status tryToTake(const PublishNames& names, bool& again);
    Status lockSidecar(const PublishNames& names, int file, bool& again);
    bool isOurProcess() const;
    bool isRecordOurs();
    bool isStillOurs();
    void letGo();

    FileOps& m_ops;
    Clock& m_clock;
    TvString m_file;
    LockOwner m_owner;     ///< Ourselves, while held.
    std::string m_sidecar; ///< Its path, while held.
    FileOps::Descriptor m_descriptor =
        FileOps::kNone; ///< None without a system lock, and when lost.
    std::uint64_t m_device = 0;
    std::uint64_t m_inode = 0;
    std::int64_t m_lastBeatNs = 0;
    bool m_hasService = false; ///< What taking found.
    bool m_held = false;
    bool m_lost = false;
};

/// 128 random bits as 32 lower-case hexadecimal digits.
std::string newToken();

} // namespace base
