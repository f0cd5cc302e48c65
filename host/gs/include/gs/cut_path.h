#pragma once

#include <optional>
#include <utility>

#include <gs/display_list.h>

namespace gs {

/// The parts of @p path inside of @p window, curves as chords that leave them by at most
/// @p tolerance (as far as they lie in the window).
Path cutLines(PathView path, const Box& window, double tolerance);
/// The part inside of @p window of the area that @p path encloses, each subpath by itself.
Path cutArea(PathView path, const Box& window, double tolerance);
/// The piece inside of @p window of the line through @p a and @p b; of a ray, from @p a on.
std::optional<std::pair<TvGePoint2d, TvGePoint2d>>
cutEndless(const TvGePoint2d& a, const TvGePoint2d& b, bool isRay, const Box& window);

} // namespace gs
