#pragma once

#include "gs/hatch_shape.h"
#include "hatch_boundary.h"

namespace gs {

/// Parallel lines of a pattern. Angles in radians, the rest in drawing units.
struct PatternLines {
    double angle = 0;
    TvGePoint2d base;           ///< where one of them begins its dashes
    TvGeVector2d offset;        ///< from there to where the next one does
    std::vector<double> dashes; ///< above 0 drawn, below 0 left out, 0 a dot; none: whole lines
};

/// Appends the pieces of the lines that lie inside of the loops to @p out.
/// @param pieces  how many are there already; counted up.
/// @return false when there would be too many by @p limits; then @p out makes no sense.
bool clipLines(const PatternLines& lines, const std::vector<HatchLoop>& loops, IslandStyle style,
               const HatchLimits& limits, Path& out, std::size_t& pieces);

} // namespace gs
