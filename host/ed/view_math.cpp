#include <cmath>

#include <ge/ocs.h>

#include "ed/drawing_view.h"

namespace ed {

bool isUsable(const View& view)
{
    const double numbers[] = {view.center.x, view.center.y,    view.height,      view.aspect,
                              view.twist,    view.direction.x, view.direction.y, view.direction.z,
                              view.target.x, view.target.y,    view.target.z,    view.lensLengthMm};
    for (const double number : numbers)
        if (!std::isfinite(number))
            return false;
    return view.height > 0 && view.aspect > 0 && std::isfinite(view.width()) && view.width() > 0 &&
           !view.direction.isZeroLength();
}

TvGeMatrix3d displayToWorld(const View& view)
{
    return TvGeMatrix3d::translation(view.target.asVector()) *
           TvGeMatrix3d::rotation(-view.twist, view.direction) * ge::ocsToWcs(view.direction);
}

TvDbExtents displayExtents(const View& view, const TvDbExtents& extents)
{
    const std::optional<TvGeMatrix3d> toDisplay = displayToWorld(view).inverse();
    return toDisplay ? extents.transformed(*toDisplay) : TvDbExtents();
}

} // namespace ed
