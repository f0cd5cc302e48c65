#pragma once

#include <gs/box.h>

namespace gs {

/// Which part of a display list is seen in how many pixels. Pixels count from the upper left corner
/// downwards, the list's own plane has y upwards.
struct View {
    TvGePoint2d center;        ///< in the list's plane: what is in the middle
    double pixelsPerUnit = 1;  ///< above 0
    int width = 0, height = 0; ///< pixels

    /// Shows all of @p box, with @p margin of the width and height left free on each side. An empty
    /// box is shown as a unit square, one without width or height as wide as it is high.
    static View fitting(const Box& box, int width, int height, double margin = 0.02);

    TvGePoint2d toPixels(const TvGePoint2d& point) const
    {
        return {(point.x - center.x) * pixelsPerUnit + width / 2.0,
                height / 2.0 - (point.y - center.y) * pixelsPerUnit};
    }
    TvGePoint2d fromPixels(const TvGePoint2d& pixel) const
    {
        return {(pixel.x - width / 2.0) / pixelsPerUnit + center.x,
                (height / 2.0 - pixel.y) / pixelsPerUnit + center.y};
    }
    /// What is seen.
    Box window() const;
    /// The same place stays under @p pixel; @p factor above 1 shows it larger.
    View zoomed(double factor, const TvGePoint2d& pixel) const;
    /// What was under one pixel is moved by so many pixels, as by a hand.
    View panned(double pixelsRight, double pixelsDown) const;
};

} // namespace gs
