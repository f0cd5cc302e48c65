#pragma once

#include <ge/tv_ge_matrix3d.h>

class TvDbViewport;

namespace gs {

/// From the model's world to the paper that the viewport is on.
TvGeMatrix3d modelToPaper(const TvDbViewport& viewport);

} // namespace gs
