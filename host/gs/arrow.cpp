#include "arrow.h"

#include <cmath>

#include <db/tv_db_symbol_table.h>

namespace gs {

void drawArrow(Scene& scene, const TvGePoint3d& tip, const TvGeVector3d& along,
               const TvGeVector3d& up, double size, TvDbObjectId block)
{
    constexpr double kHalfWidth = 1.0 / 6;
    if (along.isZeroLength() || !std::isfinite(along.length()) || !(size > 0))
        return;
    const TvGeVector3d ahead = -along.normal(), aside = up.normal().crossProduct(ahead);
    const TvGeMatrix3d place =
        TvGeMatrix3d::coordinateSystem(tip, ahead * size, aside * size, up.normal() * size);
    if (block.isValid()) {
        scene.insert(block, place);
        return;
    }
    scene.path().polygon({{0, 0, 0}, {-1, kHalfWidth, 0}, {-1, -kHalfWidth, 0}});
    scene.fill(place);
}

} // namespace gs
