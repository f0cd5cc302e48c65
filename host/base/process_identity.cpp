#include "owner_record.h"

// Who we are, as the system tells it. None of it is trusted for more than showing, and for telling
// "this machine" from "another".

#include <cerrno>
#include <fstream>
#include <random>

#include <pwd.h>
#include <unistd.h>

namespace base {

namespace {

TvString firstWordOf(const char* path)
{
    std::string word;
    std::ifstream(path) >> word;
    return TvString(std::string_view(word));
}

TvString userName()
{
    std::vector<char> room(16384);
    passwd entry;
    passwd* found = nullptr;
    const uid_t user = ::geteuid();
    if (::getpwuid_r(user, &entry, room.data(), room.size(), &found) == 0 && found)
        return TvString(std::string_view(found->pw_name));
    return TvString(std::string_view(std::to_string(user)));
}

TvString hostName()
{
    char name[256] = {};
    if (::gethostname(name, sizeof name - 1) != 0)
        return {};
    return TvString(std::string_view(name));
}

/// What stays the same as long as the process runs.
LockOwner fixedPart()
{
    LockOwner owner;
    owner.user = userName();
    owner.host = hostName();
    owner.machineId = firstWordOf("/etc/machine-id");
    owner.bootId = firstWordOf("/proc/sys/kernel/random/boot_id");
    owner.program = TvString(std::string_view(program_invocation_short_name));
    return owner;
}

} // namespace

LockOwner thisProcess()
{
    static const LockOwner fixed = fixedPart();
    LockOwner owner = fixed;
    owner.pid = ::getpid(); // asked anew: a fork has another
    return owner;
}

bool isThisMachine(const LockOwner& owner)
{
    const LockOwner self = thisProcess();
    // Machines cloned from one image may share the id: the host's name must agree too.
    return owner.machineId == self.machineId && owner.host == self.host;
}

TvString nameOfOwner(const std::optional<LockOwner>& owner)
{
    if (!owner || (owner->user.isEmpty() && owner->host.isEmpty()))
        return "?";
    return escapedForDisplay(owner->user + TvString("@") + owner->host);
}

std::string newToken()
{
    std::random_device source; // the system's own generator
    std::string token;
    for (int word = 0; word < 4; ++word) {
        std::uint32_t bits = source();
        for (int digit = 0; digit < 8; ++digit, bits >>= 4)
            token += "0123456789abcdef"[bits & 15];
    }
    return token;
}

} // namespace base
