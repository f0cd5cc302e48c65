#include "spline_curve.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <ge/tv_db_extents.h>

namespace gs {

namespace {

constexpr int kHighestDegree = 25;

struct Homogeneous {
    double x = 0, y = 0, z = 0, w = 1;

    Homogeneous operator+(const Homogeneous& o) const
    {
        return {x + o.x, y + o.y, z + o.z, w + o.w};
    }
    Homogeneous operator-(const Homogeneous& o) const
    {
        return {x - o.x, y - o.y, z - o.z, w - o.w};
    }
    Homogeneous operator*(double f) const { return {x * f, y * f, z * f, w * f}; }
};

struct PointAndSpeed {
    TvGePoint3d point;
    TvGeVector3d speed;
};

std::vector<double> evenKnots(std::size_t controls, int degree)
{
    const std::size_t inner = controls - static_cast<std::size_t>(degree);
    std::vector<double> knots(static_cast<std::size_t>(degree), 0);
    for (std::size_t i = 0; i <= inner; ++i)
        knots.push_back(static_cast<double>(i));
    knots.insert(knots.end(), static_cast<std::size_t>(degree), static_cast<double>(inner));
    return knots;
}

bool areKnots(const std::vector<double>& knots, std::size_t controls, int degree)
{
    return knots.size() == controls + static_cast<std::size_t>(degree) + 1 &&
           std::is_sorted(knots.begin(), knots.end()) && std::isfinite(knots.front()) &&
           std::isfinite(knots.back()) && knots[static_cast<std::size_t>(degree)] < knots[controls];
}

/// De Boor's algorithm on the span that begins at knot @p span, whichever end of it @p u is.
PointAndSpeed evaluate(const std::vector<Homogeneous>& controls, const std::vector<double>& knots,
                       std::size_t degree, std::size_t span, double u)
{
    Homogeneous d[kHighestDegree + 1];
    for (std::size_t i = 0; i <= degree; ++i)
        d[i] = controls[span - degree + i];
    Homogeneous speed;
    for (std::size_t round = 1; round <= degree; ++round) {
        if (round == degree)
            speed = (d[degree] - d[degree - 1]) *
                    (static_cast<double>(degree) / (knots[span + 1] - knots[span]));
        for (std::size_t i = degree; i >= round; --i) {
            const double low = knots[span - degree + i], high = knots[span + 1 + i - round];
            const double part = high > low ? (u - low) / (high - low) : 0;
            d[i] = d[i - 1] * (1 - part) + d[i] * part;
        }
    }
    const Homogeneous& at = d[degree];
    const TvGePoint3d point(at.x / at.w, at.y / at.w, at.z / at.w);
    return {point,
            {(speed.x - point.x * speed.w) / at.w, (speed.y - point.y * speed.w) / at.w,
             (speed.z - point.z * speed.w) / at.w}};
}

void addPiece(SpacePath& path, const PointAndSpeed& from, const PointAndSpeed& to, double span)
{
    path.curveTo(from.point + from.speed * (span / 3), to.point - to.speed * (span / 3), to.point);
}

/// What a spline through points needs at each of them: its speed. The equations of smoothness
/// couple neighbours only.
std::vector<TvGeVector3d> speedsThrough(const std::vector<TvGePoint3d>& points,
                                        const std::vector<double>& steps,
                                        const TvGeVector3d& startDirection,
                                        const TvGeVector3d& endDirection)
{
    const std::size_t n = points.size();
    std::vector<double> below(n), middle(n, 1), above(n);
    std::vector<TvGeVector3d> speeds(n);
    const auto slope = [&](std::size_t i) { return (points[i + 1] - points[i]) * (1 / steps[i]); };
    if (startDirection.isZeroLength()) // no bend at the end
        middle[0] = 2, above[0] = 1, speeds[0] = slope(0) * 3;
    else
        speeds[0] = startDirection.normal();
    if (endDirection.isZeroLength())
        middle[n - 1] = 2, below[n - 1] = 1, speeds[n - 1] = slope(n - 2) * 3;
    else
        speeds[n - 1] = endDirection.normal();
    for (std::size_t i = 1; i + 1 < n; ++i) {
        below[i] = steps[i];
        middle[i] = 2 * (steps[i - 1] + steps[i]);
        above[i] = steps[i - 1];
        speeds[i] = (slope(i - 1) * steps[i] + slope(i) * steps[i - 1]) * 3;
    }
    for (std::size_t i = 1; i < n; ++i) {
        const double part = below[i] / middle[i - 1];
        middle[i] -= part * above[i - 1];
        speeds[i] = speeds[i] - speeds[i - 1] * part;
    }
    for (std::size_t i = n; i-- > 0;)
        speeds[i] =
            (i + 1 < n ? speeds[i] - speeds[i + 1] * above[i] : speeds[i]) * (1 / middle[i]);
    return speeds;
}

} // namespace

void addSpline(SpacePath& path, const SplineCurve& curve)
{
    constexpr double kEverywhere = std::numeric_limits<double>::infinity();
    addSplinePart(path, curve, -kEverywhere, kEverywhere);
}

void addSplinePart(SpacePath& path, const SplineCurve& curve, double from, double to)
{
    constexpr int kPiecesOfSpan = 8; // of curves that no cubic follows exactly
    const std::size_t n = curve.controls.size();
    if (n < 2)
        return;
    const int degree =
        std::clamp(curve.degree, 1, std::min(kHighestDegree, static_cast<int>(n) - 1));
    const bool isRational = curve.weights.size() == n;
    const std::vector<double> knots =
        areKnots(curve.knots, n, degree) ? curve.knots : evenKnots(n, degree);
    std::vector<Homogeneous> controls;
    for (std::size_t i = 0; i < n; ++i) {
        const TvGePoint3d& p = curve.controls[i];
        const double w = isRational && curve.weights[i] > 0 ? curve.weights[i] : 1;
        controls.push_back({p.x * w, p.y * w, p.z * w, w});
    }
    const auto order = static_cast<std::size_t>(degree);
    const int pieces = isRational || degree > 3 ? kPiecesOfSpan : 1;
    bool isFirst = true;
    for (std::size_t span = order; span < n; ++span) {
        const double low = std::max(knots[span], from), high = std::min(knots[span + 1], to);
        const double step = (high - low) / pieces;
        if (!(step > 0))
            continue;
        PointAndSpeed last = evaluate(controls, knots, order, span, low);
        if (std::exchange(isFirst, false))
            path.moveTo(last.point);
        for (int i = 1; i <= pieces; ++i) {
            const double u = i == pieces ? high : low + i * step;
            const PointAndSpeed next = evaluate(controls, knots, order, span, u);
            addPiece(path, last, next, step);
            last = next;
        }
    }
}

void addCurveThrough(SpacePath& path, std::vector<TvGePoint3d> points, bool isClosed,
                     double exponent, const TvGeVector3d& startDirection,
                     const TvGeVector3d& endDirection)
{
    constexpr std::size_t kLap = 16; // points that a closed curve shares with itself
    constexpr double kSame = 1e-9;   // of the curve's size: what is closer is one point
    TvDbExtents all;
    for (const TvGePoint3d& point : points)
        all.addPoint(point);
    const double least = all.size().length() * kSame;
    const auto areSame = [least](const TvGePoint3d& a, const TvGePoint3d& b) {
        return !(a.distanceTo(b) > least);
    };
    points.erase(std::unique(points.begin(), points.end(), areSame), points.end());
    if (isClosed && points.size() > 1 && areSame(points.front(), points.back()))
        points.pop_back();
    const std::size_t n = points.size();
    if (n < 2)
        return;
    const bool isRing = isClosed && n > 2;
    const std::size_t lap = isRing ? kLap : 0;
    if (isRing) {
        // Run on at both ends, where it then does not count that the curve could end.
        std::vector<TvGePoint3d> longer;
        for (std::size_t i = 0; i < n + 2 * lap; ++i)
            longer.push_back(points[(i + n * lap - lap) % n]);
        points = std::move(longer);
    }
    std::vector<double> steps;
    for (std::size_t i = 0; i + 1 < points.size(); ++i)
        steps.push_back(std::pow(points[i].distanceTo(points[i + 1]), exponent));
    const std::vector<TvGeVector3d> speeds =
        speedsThrough(points, steps, isRing ? TvGeVector3d() : startDirection,
                      isRing ? TvGeVector3d() : endDirection);
    const std::size_t first = lap, last = isRing ? lap + n : n - 1;
    path.moveTo(points[first]);
    for (std::size_t i = first; i < last; ++i)
        addPiece(path, {points[i], speeds[i]}, {points[i + 1], speeds[i + 1]}, steps[i]);
    if (isRing)
        path.close();
}

} // namespace gs
