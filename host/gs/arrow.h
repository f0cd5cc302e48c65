#pragma once

#include <ge/tv_ge_matrix3d.h>

#include "scene.h"

namespace gs {

/// The head of an arrow in the entity's place.
///
/// @param tip    what it points at.
/// @param along  from the tip along its line; any length.
/// @param up     of the plane it lies in.
/// @param size   from tip to end.
/// @param block  what it looks like; null: a filled triangle.
void drawArrow(Scene& scene, const TvGePoint3d& tip, const TvGeVector3d& along,
               const TvGeVector3d& up, double size, TvDbObjectId block);

} // namespace gs
