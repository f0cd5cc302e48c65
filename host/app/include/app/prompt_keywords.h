#pragma once

#include <vector>

#include <base/tv_string.h>

namespace app {

/// The answers that a prompt offers, so that they can be clicked: what stands between its last
/// brackets, with / between them. Empty when it offers none.
std::vector<TvString> promptKeywords(const TvString& prompt);

} // namespace app
