#pragma once

#include <string_view>

#include "base/edit_lock.h"

namespace base {

/// What a record says of this process: user, host, machine, boot, pid and program. Token, time and
/// purpose are the caller's to fill in.
LockOwner thisProcess();

/// Whether the record speaks of the machine that we run on.
bool isThisMachine(const LockOwner& owner);

/// "user@host", safe to show; "?" where nothing is known.
TvString nameOfOwner(const std::optional<LockOwner>& owner);

} // namespace base
