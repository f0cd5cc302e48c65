#include "hatch_edges.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include <db/ge_values.h>
#include <ge/arcs.h>

namespace gs {

namespace {

constexpr double kPi = std::numbers::pi;
// "type" of an edge
enum : std::int64_t { kLine = 1, kArc = 2, kEllipse = 3, kSpline = 4 };

// Of one cubic curve: off a circle by no more than 1/200,000 of its radius.
constexpr double kWidestCurve = kPi / 4;
constexpr std::size_t kCurvesOfCircle = 8;
constexpr int kMostDegree = 20;
constexpr std::uint32_t kSamplesPerSpan = 24;

/// center + u cos t + v sin t, from @p start on by @p sweep.
HatchEdge bow(const TvGePoint2d& center, const TvGeVector2d& u, const TvGeVector2d& v, double start,
              double sweep)
{
    const auto at = [&](double t) { return center + u * std::cos(t) + v * std::sin(t); };
    const auto along = [&](double t) { return v * std::cos(t) - u * std::sin(t); };
    const int count =
        std::max(1, static_cast<int>(std::ceil(std::abs(sweep) / kWidestCurve - 1e-9)));
    const double step = sweep / count, handle = 4.0 / 3 * std::tan(step / 4);
    std::vector<TvGePoint2d> points{at(start)};
    for (int i = 0; i < count; ++i) {
        const double from = start + i * step, to = from + step;
        points.push_back(at(from) + along(from) * handle);
        points.push_back(at(to) - along(to) * handle);
        points.push_back(at(to));
    }
    return {std::move(points), true};
}

/// The way from one angle to the other; equal ones are a full turn.
double sweepOf(double start, double end)
{
    double sweep = std::fmod(end - start, 2 * kPi);
    if (sweep <= 1e-12)
        sweep += 2 * kPi;
    return sweep;
}

HatchEdge bowOf(const db::RecordView& edge, const TvGeVector2d& u, const TvGeVector2d& v)
{
    const double start = edge.real("start_angle"), end = edge.real("end_angle");
    const TvGePoint2d center = db::asPoint2d(edge.point("center"));
    if (!std::isfinite(start) || !std::isfinite(end))
        return {{TvGePoint2d(start, end), center}, false}; // makes its loop one that is left out
    const double sweep = sweepOf(start, end);
    // Clockwise edges measure their angles the other way round.
    return edge.flag("ccw") ? bow(center, u, v, start, sweep) : bow(center, u, v, -start, -sweep);
}

/// A spline as its table of knots and weighted points tells it.
struct Spline {
    struct Weighted {
        double x, y, w;
    };

    int degree = 0;
    std::vector<double> knots;
    std::vector<Weighted> points;

    bool isSound() const
    {
        return degree >= 1 && degree <= kMostDegree &&
               points.size() > static_cast<std::size_t>(degree) &&
               knots.size() == points.size() + static_cast<std::size_t>(degree) + 1 &&
               std::is_sorted(knots.begin(), knots.end());
    }

    /// De Boor's scheme, in the span of knots @p span.
    TvGePoint2d at(double t, std::size_t span) const
    {
        Weighted d[kMostDegree + 1];
        const auto p = static_cast<std::size_t>(degree);
        for (std::size_t i = 0; i <= p; ++i)
            d[i] = points[span - p + i];
        for (std::size_t r = 1; r <= p; ++r)
            for (std::size_t i = p; i >= r; --i) {
                const double low = knots[span - p + i], high = knots[span + 1 + i - r];
                const double a = high > low ? (t - low) / (high - low) : 0;
                d[i] = {d[i - 1].x * (1 - a) + d[i].x * a, d[i - 1].y * (1 - a) + d[i].y * a,
                        d[i - 1].w * (1 - a) + d[i].w * a};
            }
        return {d[p].x / d[p].w, d[p].y / d[p].w};
    }
};

Spline splineOf(const db::RecordView& edge, std::size_t most)
{
    Spline spline;
    spline.degree = static_cast<int>(std::clamp<std::int64_t>(edge.integer("degree"), 0, 100));
    const db::ArrayView knots = edge.array("knots"), points = edge.array("ctrl");
    for (std::uint32_t i = 0; i < knots.size() && i < most + 100; ++i)
        spline.knots.push_back(knots.real(i));
    const bool isRational = edge.flag("rational");
    for (std::uint32_t i = 0; i < points.size() && i < most; ++i) {
        const db::Point at = points[i].point("pt");
        const double weight = isRational ? points[i].real("weight") : 1;
        const double w = weight > 0 ? weight : 1;
        spline.points.push_back({at.x * w, at.y * w, w});
    }
    return spline;
}

std::vector<TvGePoint2d> splinePoints(const db::RecordView& edge, std::size_t most)
{
    const Spline spline = splineOf(edge, most);
    std::vector<TvGePoint2d> points;
    if (!spline.isSound()) { // its points are the best that is known
        for (const auto& p : spline.points)
            points.emplace_back(p.x / p.w, p.y / p.w);
        return points;
    }
    for (auto span = static_cast<std::size_t>(spline.degree);
         span < spline.points.size() && points.size() < most; ++span) {
        const double from = spline.knots[span], to = spline.knots[span + 1];
        if (!(to > from))
            continue;
        if (points.empty())
            points.push_back(spline.at(from, span));
        for (std::uint32_t i = 1; i <= kSamplesPerSpan; ++i)
            points.push_back(spline.at(from + (to - from) * i / kSamplesPerSpan, span));
    }
    return points;
}

} // namespace

void HatchEdge::reverse()
{
    std::reverse(m_points.begin(), m_points.end());
}

void HatchEdge::appendTo(Path& path) const
{
    if (!m_isCurved) {
        for (std::size_t i = 1; i < m_points.size(); ++i)
            path.lineTo(m_points[i]);
        return;
    }
    for (std::size_t i = 1; i + 2 < m_points.size(); i += 3)
        path.curveTo(m_points[i], m_points[i + 1], m_points[i + 2]);
}

void HatchEdge::appendChords(std::vector<TvGePoint2d>& corners, std::size_t chords) const
{
    if (!m_isCurved) {
        corners.insert(corners.end(), m_points.begin() + 1, m_points.end() - 1);
        return;
    }
    for (std::size_t i = 0; i + 3 < m_points.size(); i += 3) {
        for (std::size_t k = i == 0 ? 1 : 0; k < chords; ++k) {
            const double t = static_cast<double>(k) / static_cast<double>(chords), s = 1 - t;
            const double a = s * s * s, b = 3 * s * s * t, c = 3 * s * t * t, d = t * t * t;
            const TvGePoint2d* p = &m_points[i];
            corners.emplace_back(a * p[0].x + b * p[1].x + c * p[2].x + d * p[3].x,
                                 a * p[0].y + b * p[1].y + c * p[2].y + d * p[3].y);
        }
    }
}

HatchEdge bulgeEdge(const TvGePoint2d& from, const TvGePoint2d& to, double bulge)
{
    // Flatter, or nearer to a full circle, than numbers can tell from a line.
    const bool isArc = std::abs(bulge) > 1e-9 && std::abs(bulge) < 1e9;
    const auto arc = isArc ? ge::bulgeArc(from, to, bulge) : std::nullopt;
    if (!arc)
        return {{from, to}, false};
    const double sweep = sweepOf(arc->startAngle, arc->endAngle);
    HatchEdge edge = bow(arc->center, {arc->radius, 0}, {0, arc->radius}, arc->startAngle, sweep);
    if (bulge < 0)
        edge.reverse();
    return edge;
}

std::vector<HatchEdge> hatchEdges(const db::RecordView& path, std::size_t mostCorners,
                                  std::size_t chords)
{
    std::vector<HatchEdge> edges;
    const db::ArrayView stored = path.array("segs");
    std::size_t corners = 0;
    for (std::uint32_t i = 0; i < stored.size() && corners < mostCorners; ++i) {
        const db::RecordView edge = stored[i];
        switch (edge.integer("type")) {
        case kLine:
            edges.push_back(
                {{db::asPoint2d(edge.point("start")), db::asPoint2d(edge.point("end"))}, false});
            break;
        case kArc: {
            const double radius = edge.real("radius");
            edges.push_back(bowOf(edge, {radius, 0}, {0, radius}));
            corners += kCurvesOfCircle * chords;
            break;
        }
        case kEllipse: {
            const TvGePoint2d end = db::asPoint2d(edge.point("major"));
            const double ratio = edge.real("ratio");
            edges.push_back(bowOf(edge, {end.x, end.y}, {-end.y * ratio, end.x * ratio}));
            corners += kCurvesOfCircle * chords;
            break;
        }
        case kSpline: {
            auto points = splinePoints(edge, mostCorners - corners);
            corners += points.size();
            if (points.size() >= 2)
                edges.push_back({std::move(points), false});
            break;
        }
        default: break;
        }
        ++corners;
    }
    return edges;
}

} // namespace gs
