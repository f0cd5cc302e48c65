#pragma once

#include <vector>

#include <base/tv_string.h>

class TvDbDatabase;

namespace publish {

/// The named page setups of a drawing that may take the place of a sheet's own, in the order of the
/// drawing: those that plot extents or a layout.
std::vector<TvString> pageSetupNames(TvDbDatabase& drawing);

} // namespace publish
