#pragma once

#include <sm/ask_disk.h>

namespace core {

/// Asks as sm::askDisk() does, but in threads of its own, and waits no longer than the panel does
/// for the disk: what was not answered in time is a no. A folder for which somebody waits already
/// is not asked again.
std::vector<bool> askInTime(std::vector<sm::DiskQuestion> questions, sm::Wanted wanted);

} // namespace core
