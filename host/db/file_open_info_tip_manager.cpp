#include <db/file_open_info_tip_manager.h>

#include <map>
#include <mutex>

#include <base/edit_lock.h>
#include <base/kv_file_system.h>

#include "database_extras.h"

namespace {

using base::EditLock;
using base::LockState;

/// What each database of this process uses. Never destroyed: a database may outlive it otherwise.
std::map<const TvDbDatabase*, std::unique_ptr<EditLock>>& uses()
{
    static auto& all = *new std::map<const TvDbDatabase*, std::unique_ptr<EditLock>>;
    return all;
}

/// Drawings that are only read come and go in other threads as well, without a use of their own.
std::mutex& usesMutex()
{
    static auto& mutex = *new std::mutex;
    return mutex;
}

base::LockInfo usersOf(const TvString& path)
{
    if (!KvFileSystem::isTouchAllowed(path))
        return {};
    return EditLock(db::databaseFiles(), db::databaseClock(), path).query();
}

bool isUse(LockState state)
{
    return state == LockState::HeldByMe || state == LockState::HeldSameHost ||
           state == LockState::HeldOtherHost;
}

/// Anybody may have written the file that it comes from.
TvString withoutControls(const TvString& text)
{
    std::u16string shown;
    for (const TvChar unit : text.view())
        if (unit >= u' ' && (unit < 0x7F || unit > 0x9F))
            shown += unit;
    return TvString(shown);
}

} // namespace

bool CFileOpenInfoTipManager::IsInfoFileExists(const TvString& path)
{
    return isUse(usersOf(path).state);
}

bool CFileOpenInfoTipManager::GetInfoFromHideFile(const TvString& path, TvString& user,
                                                  TvString& second)
{
    const base::LockInfo info = usersOf(path);
    if (!isUse(info.state) || !info.owner)
        return false;
    user = withoutControls(info.owner->user);
    second = withoutControls(info.owner->host);
    return true;
}

base::Status db::beginUse(const TvDbDatabase& database, const TvString& path,
                          const TvString& purpose)
{
    if (!KvFileSystem::isTouchAllowed(path))
        return {base::Failure::Denied, base::Reason::NetworkNotTouched, {path}};
    if (isHeldByAnother(path, database.impl()))
        return statusOfHeld(path);
    if (const auto own = uses().find(&database);
        own != uses().end() && isSameFile(own->second->file(), path))
        return {};
    auto use = std::make_unique<EditLock>(databaseFiles(), databaseClock(), path);
    if (base::Status status = use->take(purpose); !status)
        return status;
    endUse(database);
    const std::lock_guard guard(usesMutex());
    uses().emplace(&database, std::move(use));
    return {};
}

void db::endUse(const TvDbDatabase& database)
{
    decltype(uses().extract(&database)) own;
    {
        const std::lock_guard guard(usesMutex());
        own = uses().extract(&database);
    }
    if (own.empty())
        return;
    // Where the name cannot be taken away, an empty record stays, which says nothing.
    const base::Status ignored = own.mapped()->removeSidecar();
    static_cast<void>(ignored);
}

db::SaveUse::SaveUse(const TvString& path, const TvDbDatabase& database)
{
    if (const auto own = uses().find(&database);
        own != uses().end() && isSameFile(own->second->file(), path)) {
        m_isGuarded = own->second->hasSystemLock();
        return;
    }
    m_lock = std::make_unique<EditLock>(databaseFiles(), databaseClock(), path);
    m_status = m_lock->take(u"save");
    m_isGuarded = m_status && m_lock->hasSystemLock();
}

db::SaveUse::~SaveUse()
{
    if (!m_lock || !m_lock->isHeld())
        return;
    const base::Status ignored = m_lock->removeSidecar(); // what stays says nothing
    static_cast<void>(ignored);
}

base::Status db::statusOfHeld(const TvString& path)
{
    TvString user, host;
    const bool isKnown = CFileOpenInfoTipManager::GetInfoFromHideFile(path, user, host);
    return {base::Failure::Locked,
            base::Reason::LockHeld,
            {path, isKnown ? user + u"@" + host : TvString(u"?")}};
}

bool db::isUsedByAnother(const TvString& path, const TvDbDatabase& asking)
{
    const auto own = uses().find(&asking);
    if (own != uses().end() && isSameFile(own->second->file(), path))
        return false;
    return isUse(usersOf(path).state);
}
