#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>

#include "base/edit_lock.h"

namespace base {

/// The edit locks that this process holds: by the sidecar's identity, so that no spelling of a path
/// and no link leads around it.
///
/// It is what keeps two holders of one process apart where the system has no lock to offer.
class LockTable
{
public:
    struct Sidecar {
        std::uint64_t device = 0;
        std::uint64_t inode = 0;
        friend auto operator<=>(const Sidecar&, const Sidecar&) = default;
    };
    /// The one of this process.
    static LockTable& ofProcess();

    /// False, and nothing changes, when there is a holder already.
    bool enter(const Sidecar& sidecar, const LockOwner& owner);
    void leave(const Sidecar& sidecar);
    std::optional<LockOwner> holderOf(const Sidecar& sidecar) const;

private:
    mutable std::mutex m_mutex;
    std::map<Sidecar, LockOwner> m_holders;
};

/// Which folders have a lock service that keeps its word, as found in this session.
class LockServices
{
public:
    static LockServices& ofProcess();

    /// nullopt when the folder was not tried yet.
    std::optional<bool> known(std::uint64_t device, const std::string& folder) const;
    void remember(std::uint64_t device, const std::string& folder, bool works);

private:
    mutable std::mutex m_mutex;
    std::map<std::pair<std::uint64_t, std::string>, bool> m_works;
};

} // namespace base
