#pragma once

#include <vector>

#include "space_path.h"

namespace gs {

/// A free curve by control points.
struct SplineCurve {
    int degree = 3;
    std::vector<double> knots; ///< as many as control points, and degree + 1
    std::vector<TvGePoint3d> controls;
    std::vector<double> weights; ///< as many as control points; empty: all 1
};

/// Appends @p curve as cubic pieces: exactly for up to degree 3 without weights, else one for each
/// of several parts of a knot's span. Knots that do not fit are replaced by even ones.
void addSpline(SpacePath& path, const SplineCurve& curve);
/// The same of a part of it, between two parameters; nothing when @p from is not below @p to.
void addSplinePart(SpacePath& path, const SplineCurve& curve, double from, double to);

/// Appends a smooth curve through @p points: a natural cubic spline.
///
/// @param exponent  how far the parameter moves for a chord: its length to this power (1: chord
///                  length, 0.5: its root, 0: even steps).
/// @param startDirection  of the curve at its first point; without length: as it likes.
void addCurveThrough(SpacePath& path, std::vector<TvGePoint3d> points, bool isClosed,
                     double exponent = 1, const TvGeVector3d& startDirection = {},
                     const TvGeVector3d& endDirection = {});

} // namespace gs
