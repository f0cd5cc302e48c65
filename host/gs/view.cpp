#include "gs/view.h"

#include <cmath>

namespace gs {

View View::fitting(const Box& box, int width, int height, double margin)
{
    View view;
    view.width = std::max(width, 1);
    view.height = std::max(height, 1);
    if (box.isEmpty()) {
        view.center = {0.5, 0.5};
        view.pixelsPerUnit = std::min(view.width, view.height) * (1 - 2 * margin);
        return view;
    }
    view.center = box.center();
    const double wide = view.width * (1 - 2 * margin), high = view.height * (1 - 2 * margin);
    const double boxWidth = box.width() > 0 ? box.width() : box.height();
    const double boxHeight = box.height() > 0 ? box.height() : box.width();
    const double scale =
        boxWidth > 0 ? std::min(wide / boxWidth, high / boxHeight) : std::min(wide, high);
    view.pixelsPerUnit = std::isfinite(scale) && scale > 0 ? scale : 1;
    return view;
}

Box View::window() const
{
    Box box;
    box.add(fromPixels({0, 0}));
    box.add(fromPixels({static_cast<double>(width), static_cast<double>(height)}));
    return box;
}

View View::zoomed(double factor, const TvGePoint2d& pixel) const
{
    View changed = *this;
    if (!(factor > 0) || !std::isfinite(pixelsPerUnit * factor) || pixelsPerUnit * factor <= 0)
        return changed;
    changed.pixelsPerUnit *= factor;
    const TvGePoint2d before = fromPixels(pixel), after = changed.fromPixels(pixel);
    changed.center = center + (before - after);
    return changed;
}

View View::panned(double pixelsRight, double pixelsDown) const
{
    View changed = *this;
    changed.center = center + TvGeVector2d(-pixelsRight, pixelsDown) * (1 / pixelsPerUnit);
    return changed;
}

} // namespace gs
