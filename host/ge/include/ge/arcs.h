#pragma once

#include <optional>

#include <ge/tv_db_extents.h>

namespace ge {

/// A piece of a circle in the plane, run through counter-clockwise from start to end.
struct Arc2d {
    TvGePoint2d center;
    double radius = 0;
    double startAngle = 0; ///< radians
    double endAngle = 0;
};

/// The arc of a polyline's segment from @p from to @p to.
///
/// The bulge is the tangent of a quarter of the angle that the arc spans, positive when it runs
/// counter-clockwise; 1 is a half circle. With the chord c: radius = c (1 + b^2) / (4 |b|), and the
/// centre lies c (1 - b^2) / (4 b) to the left of the chord's middle.
/// @return nullopt when the segment is straight: no bulge, no length, or numbers that make no
///         circle. A clockwise arc comes back run from @p to to @p from.
std::optional<Arc2d> bulgeArc(const TvGePoint2d& from, const TvGePoint2d& to, double bulge);

/// Whether @p angle lies on the way from @p start to @p end counter-clockwise (radians, any turn).
/// Equal ends are a full circle.
bool isAngleOnArc(double angle, double start, double end);

/// The box around the curve center + u cos(t) + v sin(t), t from @p start to @p end
/// counter-clockwise: circles, arcs and ellipses in any position.
///
/// Along each axis the curve turns back where tan(t) = v / u; those turns that lie on it count, and
/// both ends. Start equal to end is the whole curve.
TvDbExtents curveExtents(const TvGePoint3d& center, const TvGeVector3d& u, const TvGeVector3d& v,
                         double start, double end);
/// An arc in object coordinates: center and angles in the axes of @p normal.
TvDbExtents arcExtents(const TvGePoint3d& center, double radius, double start, double end,
                       const TvGeVector3d& normal);
/// An ellipse in world coordinates: @p major from the centre, the minor axis at right angles to it
/// and @p normal, @p ratio as long; parameters as in curveExtents.
TvDbExtents ellipseExtents(const TvGePoint3d& center, const TvGeVector3d& major,
                           const TvGeVector3d& normal, double ratio, double start, double end);

} // namespace ge
