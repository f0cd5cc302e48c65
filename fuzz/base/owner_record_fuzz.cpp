#include <cstdlib>

#include <base/edit_lock.h>

// The record of an edit lock's owner, as anybody may have written it. What is read makes sense, and
// what is written of it reads back the same: a record that passed through us is stable.

namespace {

bool isEqual(const base::LockOwner& a, const base::LockOwner& b)
{
    return a.token == b.token && a.user == b.user && a.host == b.host &&
           a.machineId == b.machineId && a.bootId == b.bootId && a.pid == b.pid &&
           a.program == b.program && a.sinceNs == b.sinceNs && a.purpose == b.purpose;
}

void require(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto owner = base::parseOwnerRecord({reinterpret_cast<const char*>(data), size});
    if (!owner)
        return 0;
    require(owner->token.size() == 32);
    require(owner->pid >= 0 && owner->sinceNs >= 0);
    const std::string text = base::ownerRecordText(*owner);
    require(text.size() == base::kOwnerRecordSize && text.back() == '\0');
    const auto once = base::parseOwnerRecord(text); // values may have been cut
    require(once.has_value());
    const auto twice = base::parseOwnerRecord(base::ownerRecordText(*once));
    require(twice && isEqual(*once, *twice));
    return 0;
}
