#pragma once

#include <vector>

#include <base/tv_string.h>

class TvDbDatabase;
class TvSmDatabase;

namespace publish {

/// The named page setups of a drawing that may take the place of a sheet's own, in the order of the
/// drawing: those that plot extents or a layout.
std::vector<TvString> pageSetupNames(TvDbDatabase& drawing);

/// The same of the drawing that a set names for its page setups, as it is now where it is open.
/// Empty without one, and when it cannot be read.
std::vector<TvString> pageSetupNames(const TvSmDatabase& database);

} // namespace publish
