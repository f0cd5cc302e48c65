#include "solid_edges.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "solid_outlines.h"

namespace gs {

namespace {

void addBow(SpacePath& path, const SolidEllipse& ellipse, const SolidEdge& edge)
{
    const double uu = ellipse.u.dotProduct(ellipse.u), vv = ellipse.v.dotProduct(ellipse.v);
    const auto angleOf = [&](const TvGePoint3d& point) {
        const TvGeVector3d way = point - ellipse.center;
        return std::atan2(way.dotProduct(ellipse.v) / vv, way.dotProduct(ellipse.u) / uu);
    };
    double from = angleOf(edge.start), to = angleOf(edge.end);
    if (edge.isReversed)
        std::swap(from, to);
    if (to <= from + 1e-9)
        to += 2 * std::numbers::pi;
    path.bow(ellipse.center, ellipse.u, ellipse.v, from, to);
}

double sizeOf(const SplineCurve& curve)
{
    double size = 0;
    for (const TvGePoint3d& point : curve.controls)
        size = std::max(size, point.distanceTo(curve.controls.front()));
    return size;
}

/// Which part of the curve the edge takes is told in various ways: the one that joins its corners
/// is right. False when none does.
bool addSplineEdge(SpacePath& path, const SplineCurve& curve, const SolidEdge& edge)
{
    constexpr double kClose = 1e-4; // of its size
    constexpr double kEverywhere = std::numeric_limits<double>::infinity();
    const double near = kClose * sizeOf(curve);
    const auto joinsCorners = [&](const SpacePath& piece) {
        if (piece.isEmpty())
            return false;
        const TvGePoint3d &first = piece.points().front(), &last = piece.points().back();
        const auto areEnds = [&](const TvGePoint3d& a, const TvGePoint3d& b) {
            return a.distanceTo(edge.start) <= near && b.distanceTo(edge.end) <= near;
        };
        return areEnds(first, last) || areEnds(last, first);
    };
    std::vector<std::pair<double, double>> ranges;
    if (edge.range) {
        const auto [low, high] = std::minmax(edge.range->first, edge.range->second);
        ranges = {{low, high}, {-high, -low}};
        if (edge.isReversed)
            std::swap(ranges[0], ranges[1]);
    }
    ranges.emplace_back(-kEverywhere, kEverywhere);
    for (const auto& [from, to] : ranges) {
        SpacePath piece;
        addSplinePart(piece, curve, from, to);
        if (joinsCorners(piece)) {
            path.append(piece);
            return true;
        }
    }
    return false;
}

void addEdge(SpacePath& path, SolidModel& model, const SolidEdge& edge)
{
    if (edge.curveKind == ModelerKind::EllipseCurve) {
        if (const auto ellipse = model.ellipse(edge.curve); ellipse)
            return addBow(path, *ellipse, edge);
    } else if (edge.curveKind == ModelerKind::SplineCurve) {
        const auto spline = model.spline(edge.curve);
        if (spline && addSplineEdge(path, *spline, edge))
            return;
    }
    if (edge.start == edge.end)
        return;
    path.moveTo(edge.start);
    path.lineTo(edge.end);
}

bool isFinite(const SpacePath& path)
{
    return std::all_of(path.points().begin(), path.points().end(), [](const TvGePoint3d& point) {
        return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
    });
}

} // namespace

void addSolidEdges(SpacePath& path, std::span<const std::uint8_t> body)
{
    SolidModel model(body);
    const TvGeMatrix3d place = model.place();
    SolidOutlines outlines(model);
    SpacePath piece;
    for (std::size_t i = 0; i < model.records().size(); ++i) {
        piece.clear();
        if (const auto edge = model.edge(i); edge)
            addEdge(piece, model, *edge);
        else
            outlines.addFace(piece, i);
        piece.transform(place);
        if (isFinite(piece))
            path.append(piece);
    }
}

} // namespace gs
