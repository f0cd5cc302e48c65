#pragma once

#include <db/record.h>
#include <ge/tv_ge_matrix3d.h>

#include "lens.h"

class TvDbViewport;

namespace gs {

Camera cameraOf(const TvDbViewport& viewport);
/// Of a record of the model's views or of a named view: both have the same fields.
Camera cameraOfView(const db::RecordView& view);

/// Paper units by model units, of a camera those in its target's plane; 0 when it shows nothing.
double paperScale(const TvDbViewport& viewport);

/// From the model's world to the paper that the viewport is on.
TvGeMatrix3d modelToPaper(const TvDbViewport& viewport);

} // namespace gs
