#include "lock_table.h"

namespace base {

LockTable& LockTable::ofProcess()
{
    static LockTable& table = *new LockTable; // never destroyed: locks in statics outlive any order
    return table;
}

bool LockTable::enter(const Sidecar& sidecar, const LockOwner& owner)
{
    const std::lock_guard guard(m_mutex);
    return m_holders.emplace(sidecar, owner).second;
}

void LockTable::leave(const Sidecar& sidecar)
{
    const std::lock_guard guard(m_mutex);
    m_holders.erase(sidecar);
}

std::optional<LockOwner> LockTable::holderOf(const Sidecar& sidecar) const
{
    const std::lock_guard guard(m_mutex);
    const auto found = m_holders.find(sidecar);
    return found == m_holders.end() ? std::nullopt : std::optional(found->second);
}

LockServices& LockServices::ofProcess()
{
    static LockServices& services = *new LockServices; // like the table
    return services;
}

std::optional<bool> LockServices::known(std::uint64_t device, const std::string& folder) const
{
    const std::lock_guard guard(m_mutex);
    const auto found = m_works.find({device, folder});
    return found == m_works.end() ? std::nullopt : std::optional(found->second);
}

void LockServices::remember(std::uint64_t device, const std::string& folder, bool works)
{
    const std::lock_guard guard(m_mutex);
    m_works[{device, folder}] = works;
}

} // namespace base
