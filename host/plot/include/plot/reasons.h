#pragma once

#include <base/reasons.h>

namespace plot {

/// Why something was not plotted: the numbers of texts, as any base::Reason.
constexpr base::Reason kLayoutMissing{23910}; ///< 1: layout, 2: drawing
constexpr base::Reason kSetupMissing{23911};  ///< 1: page setup, 2: drawing
constexpr base::Reason kFileNotMade{23912};   ///< 1: path, 2: the library's own text
constexpr base::Reason kNothingMade{23913};   ///< every page failed, or there was none

} // namespace plot
