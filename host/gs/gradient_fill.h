#pragma once

#include <gs/display_list.h>
#include <gs/hatch_shape.h>

#include "scene.h"

namespace gs {

/// The filling that a hatch with a gradient is drawn with, in the plane of its shape.
///
/// The gradient lies in a frame around the area, turned by its angle: linear from its left to its
/// right side; a cylinder from both sides to the middle; a sphere from the corners to the middle; a
/// half sphere from the upper corners to the middle of the lower side; a curved one likewise, from
/// a point further below. Backwards ("INV"), the colours change places. One that is not centred
/// comes from the upper left.
/// @return nullopt for an empty area, and without colours.
std::optional<Filling> fillingOf(const Gradient& gradient, const Path& area, const Scene& scene);

/// What @p filling is where it can only be one colour.
Color meanColor(const Filling& filling);

} // namespace gs
