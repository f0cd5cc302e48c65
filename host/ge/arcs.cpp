#include "ge/arcs.h"

#include <numbers>

#include "ge/ocs.h"

namespace ge {

namespace {

constexpr double kTurn = 2 * std::numbers::pi;

// 0 up to a turn; not finite stays so.
double withinTurn(double angle)
{
    const double rest = std::fmod(angle, kTurn);
    return rest < 0 ? rest + kTurn : rest;
}

} // namespace

std::optional<Arc2d> bulgeArc(const TvGePoint2d& from, const TvGePoint2d& to, double bulge)
{
    const TvGeVector2d chord = to - from;
    const double length = chord.length();
    const double radius = length * (1 + bulge * bulge) / (4 * std::fabs(bulge));
    if (bulge == 0 || length == 0 || !std::isfinite(radius))
        return std::nullopt;
    const TvGeVector2d left = chord.perpVector().normal(TvGeTol(0, 0));
    const double height = length * (1 - bulge * bulge) / (4 * bulge);
    Arc2d arc;
    arc.center = from + chord * 0.5 + left * height;
    arc.radius = radius;
    const bool forward = bulge > 0;
    arc.startAngle = ((forward ? from : to) - arc.center).angle();
    arc.endAngle = ((forward ? to : from) - arc.center).angle();
    return arc;
}

bool isAngleOnArc(double angle, double start, double end)
{
    const double span = withinTurn(end - start);
    return span == 0 || withinTurn(angle - start) <= span;
}

TvDbExtents curveExtents(const TvGePoint3d& center, const TvGeVector3d& u, const TvGeVector3d& v,
                         double start, double end)
{
    const auto at = [&](double t) { return center + u * std::cos(t) + v * std::sin(t); };
    TvDbExtents box;
    box.addPoint(at(start));
    box.addPoint(at(end));
    const double turns[] = {std::atan2(v.x, u.x), std::atan2(v.y, u.y), std::atan2(v.z, u.z)};
    for (const double turn : turns)
        for (const double t : {turn, turn + std::numbers::pi})
            if (isAngleOnArc(t, start, end))
                box.addPoint(at(t));
    return box;
}

TvDbExtents arcExtents(const TvGePoint3d& center, double radius, double start, double end,
                       const TvGeVector3d& normal)
{
    const TvGeMatrix3d ocs = ocsToWcs(normal);
    return curveExtents(ocs * center, ocs.axis(0) * radius, ocs.axis(1) * radius, start, end);
}

TvDbExtents ellipseExtents(const TvGePoint3d& center, const TvGeVector3d& major,
                           const TvGeVector3d& normal, double ratio, double start, double end)
{
    const TvGeVector3d minor = normal.normal().crossProduct(major) * ratio;
    return curveExtents(center, major, minor, start, end);
}

} // namespace ge
