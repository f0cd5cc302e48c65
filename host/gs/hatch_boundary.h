#pragma once

#include <vector>

#include <db/record.h>

#include "gs/flat.h"

namespace gs {

/// One closed loop of a hatch.
struct HatchLoop {
    Path path;                        ///< begins with a Move, ends with a Close
    std::vector<TvGePoint2d> corners; ///< the same as chords; the last leads to the first
};

/// How areas within areas are filled. Stored numbers of the drawing format.
enum class IslandStyle : std::uint8_t { Normal = 0, OuterOnly = 1, Ignore = 2 };

/// The loops in a record with the fields of a HATCH. Loops with numbers that are not finite, and
/// what is beyond a million chords, are left out.
std::vector<HatchLoop> hatchLoops(const db::RecordView& fields);

/// An area that has the same inside as the loops have by their style.
struct HatchArea {
    Path path;
    bool isEvenOdd = true;
};
HatchArea hatchArea(const std::vector<HatchLoop>& loops, IslandStyle style);

} // namespace gs
