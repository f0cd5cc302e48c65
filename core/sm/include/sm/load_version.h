#pragma once

#include <base/publish.h>

class TvSmDatabase;

namespace sm {

/// The largest file that is read as a set, in bytes.
constexpr std::uint64_t kLargestSetFile = std::uint64_t(1) << 31;

/// Takes over a version of the database's own file that was read before, perhaps in another thread,
/// as TvSmDatabase::load() does. Asks the disk nothing.
/// @return false, and nothing changed, while it is locked here, and when it is no sheet set
///         (lastStatus() says why).
bool loadVersion(TvSmDatabase& db, base::VersionRead&& version);

} // namespace sm
