#include <base/kv_file_system.h>
#include <base/path_rules.h>

#include "database_state.h"
#include "dst_writer.h"
#include "sm/environment.h"

// The database's dealings with its file: lock, commit, save.
//
//  1. A commit writes the state with the journal, save the one without it; nothing else is ever
//  written.
//  2. What memory holds, less the journal, is what m_base identifies, but for a database that must
//  be written anyway.
//  3. Nothing is changed on top of a version of the file that was not read: taking the lock reads
//  afresh.
//  4. When unlock returns, the lock is free, the journal empty, and the events were raised.

namespace sm {

using base::Failure;
using base::LockState;
using base::Reason;
using base::Status;

TvString DatabaseState::folder() const
{
    return base::PathRules::native().folderOf(m_fileName);
}

void DatabaseState::takeFileName(const TvString& path)
{
    m_fileName = path;
    if (m_editLock)
        m_editLock->setFile(path);
    else if (!path.isEmpty() && m_kind != DatabaseKind::Scratch)
        m_editLock.emplace(files(), clock(), path);
}

bool DatabaseState::setFileName(const TvString& path)
{
    // The lock belongs to the file that it was taken for.
    if (m_unlocking || (m_inTransaction && m_kind == DatabaseKind::Shared))
        return false;
    if (path == m_fileName)
        return true;
    if (!base::PathRules::native().isSame(path, m_fileName)) {
        m_base.reset();
        m_stamp = {};
        m_mustWrite = true;
    }
    takeFileName(path);
    return true;
}

// --- status
// ---------------------------------------------------------------------------------------------------------

base::LockInfo DatabaseState::lockInfo()
{
    if (m_inTransaction && (!m_editLock || m_kind != DatabaseKind::Shared))
        return {LockState::HeldByMe, std::nullopt};
    if (m_kind != DatabaseKind::Shared || !m_editLock)
        return {};
    if (m_inTransaction) {
        const bool stillHeld = !m_editLock->isHeld() || m_editLock->heartbeatIfDue();
        return {stillHeld ? LockState::HeldByMe : LockState::Lost, std::nullopt};
    }
    if (m_readOnlyVersion)
        return {LockState::Denied, std::nullopt};
    return environment().useEditLock ? m_editLock->query() : base::LockInfo();
}

int DatabaseState::lockStatus()
{
    return base::lockStatusOf(lockInfo().state);
}

// --- lock
// -----------------------------------------------------------------------------------------------------------

/// Loads the file if it changed since our last read.
Status DatabaseState::readFresh()
{
    const auto stamp = base::lookAt(files(), clock(), m_fileName);
    if (!stamp) {
        // A file that went is written anew by the commit.
        return stamp.status().failure() == Failure::NotFound ? Status() : stamp.status();
    }
    if (*stamp == m_stamp && m_base)
        return {};
    auto read = base::readVersion(files(), clock(), m_fileName, kLargestFile);
    if (!read)
        return read.status();
    if (m_base != read->hash) {
        const BusyScope busy(*this);
        if (Status status = replaceContent(std::move(read->bytes), m_fileName); !status)
            return status;
        m_base = read->hash;
        m_mustWrite = false;
    }
    m_stamp = read->stamp;
    if (m_readOnlyVersion)
        return {Failure::Unsupported, Reason::DstNewerVersion, {m_fileName, m_version}};
    return {};
}

bool DatabaseState::lock()
{
    if (m_inTransaction || m_unlocking)
        return false;
    if (m_kind == DatabaseKind::Shared) {
        if (m_readOnlyVersion) {
            m_status =
                Status(Failure::Unsupported, Reason::DstNewerVersion, {m_fileName, m_version});
            return false;
        }
        m_status = environment().useEditLock ? m_editLock->take(environment().purpose) : Status();
        if (!m_status)
            return false;
        // A database under a new name has nothing there to read.
        m_status = m_base ? readFresh() : Status();
        if (!m_status) {
            m_editLock->release();
            return false;
        }
        base::sweepLeftovers(files(), clock(), m_fileName);
    } else {
        m_savedNextHandle = m_nextHandle; // all that was done without a lock is committed now
    }
    m_inTransaction = true;
    return true;
}

// --- write
// ----------------------------------------------------------------------------------------------------------

/// While no category is marked as the default, the first without a name is; marked, it stays so
/// when it gets a name.
void DatabaseState::markDefaultCategory()
{
    TvSmViewCategory* category = m_set.getViewCategories()->getDefaultCategory();
    if (!category || Internals::isDefault(*category))
        return;
    if (m_inTransaction)
        m_journal.keep(Internals::isDefault(*category));
    Internals::isDefault(*category) = true;
}

Status DatabaseState::publish(const std::string& text, bool keepRecovery)
{
    if (m_fileName.isEmpty())
        return {Failure::Usage, Reason::DstNoFileName};
    if (m_readOnlyVersion)
        return {Failure::Unsupported, Reason::DstNewerVersion, {m_fileName, m_version}};
    base::PublishRequest request;
    request.bytes = std::as_bytes(std::span(text));
    request.base = m_base;
    request.haveSystemLock = m_editLock && m_editLock->hasSystemLock();
    request.keepRecovery = keepRecovery;
    const auto outcome = base::publishVersion(files(), clock(), m_fileName, request);
    if (!outcome)
        return outcome.status();
    m_base = outcome->hash;
    m_stamp = outcome->stamp;
    m_mustWrite = false;
    m_expectedSize = text.size() + text.size() / 16;
    return {};
}

bool DatabaseState::save()
{
    if (m_unlocking)
        return false;
    const BusyScope busy(*this);
    std::string text;
    const bool isOwn = m_kind != DatabaseKind::Shared;
    if (m_inTransaction) {
        const Journal::CommittedView committed(m_journal);
        forgetGroups();
        text = writeText(*this, m_savedNextHandle);
    } else {
        markDefaultCategory();
        if (isOwn)
            m_savedNextHandle = m_nextHandle;
        text = writeText(*this, m_savedNextHandle);
    }
    forgetGroups();
    m_status = publish(text, false);
    if (!m_status)
        return false;
    if (m_kind == DatabaseKind::Building)
        becomeShared();
    return true;
}

void DatabaseState::becomeShared()
{
    m_kind = DatabaseKind::Shared;
    takeFileName(m_fileName);
}

/// Writes the changes since the lock, if there are any or the file needs writing for another
/// reason.
Status DatabaseState::commitChanges()
{
    if (m_kind == DatabaseKind::Scratch)
        return {};
    const bool isBuilding = m_kind == DatabaseKind::Building;
    if (!m_journal.isEmpty() || isBuilding)
        markDefaultCategory();
    const bool mustWrite = m_mustWrite || isBuilding || !isFileThere();
    if (m_journal.isEmpty() && !mustWrite)
        return {};
    const std::uint64_t next =
        m_journal.isEmpty() && !isBuilding ? m_savedNextHandle : m_nextHandle;
    const std::string text = writeText(*this, next);
    if (Status status = publish(text, true); !status)
        return status;
    m_savedNextHandle = next;
    return {};
}

bool DatabaseState::isFileThere()
{
    const auto stamp = base::lookAt(files(), clock(), m_fileName);
    return stamp || stamp.status().failure() != Failure::NotFound;
}

bool DatabaseState::unlock(bool commit)
{
    if (!m_inTransaction || m_unlocking)
        return false;
    m_unlocking = true;
    ++m_busy;
    m_status = commit ? commitChanges() : Status();
    const bool kept = commit && m_status;
    if (kept)
        m_journal.clear();
    else
        m_journal.rollBack();
    forgetGroups();
    if (m_editLock)
        m_editLock->release();
    const bool written = kept && m_kind != DatabaseKind::Scratch;
    if (written && m_kind == DatabaseKind::Building)
        becomeShared();
    m_inTransaction = false;
    m_unlocking = false;
    --m_busy;
    // From here on the database is as any unlocked one: a sink may lock, load or close sets.
    const bool result = !commit || kept;
    if (written)
        m_sinks.tell(SmEventDatabaseWritten, &m_database);
    m_sinks.tell(SmEventLockEnded, &m_database);
    return result;
}

} // namespace sm
