#include "hatch_boundary.h"

#include <algorithm>
#include <numbers>

#include <db/ge_values.h>
#include <ge/arcs.h>

#include "hatch_edges.h"

namespace gs {

namespace {

constexpr std::int64_t kPolylinePath = 2; // "flags" of a path
constexpr std::size_t kMostCorners = 1'000'000;
// Of a cubic curve, an eighth of a circle: 64 are off by 1/50,000 of the radius. When a hatch has
// many edges, each gets fewer, so that none must be left out.
constexpr std::size_t kMostChords = 64, kFewestChords = 2, kChordsOfHatch = 100'000;
// Comparisons for finding out which loops lie within others; above that none does.
constexpr double kMostNestingWork = 5e7;

HatchLoop loopOfEdges(const std::vector<HatchEdge>& edges, std::size_t chords)
{
    HatchLoop loop;
    TvGePoint2d at;
    for (HatchEdge edge : edges) {
        if (loop.path.isEmpty()) {
            loop.path.moveTo(edge.start());
        } else {
            // Edges are sometimes stored against the direction of their loop.
            if (at.distanceTo(edge.end()) < 0.01 * at.distanceTo(edge.start()))
                edge.reverse();
            if (!at.isEqualTo(edge.start(), TvGeTol(0, 0)))
                loop.path.lineTo(edge.start());
        }
        loop.corners.push_back(edge.start());
        edge.appendTo(loop.path);
        edge.appendChords(loop.corners, chords);
        at = edge.end();
    }
    if (!edges.empty())
        loop.path.close();
    return loop;
}

bool isFinite(const HatchLoop& loop)
{
    return std::all_of(loop.path.points().begin(), loop.path.points().end(),
                       [](const auto& p) { return std::abs(p.x) < 1e15 && std::abs(p.y) < 1e15; });
}

std::vector<HatchEdge> polylineEdges(const db::RecordView& path)
{
    std::vector<HatchEdge> edges;
    const db::ArrayView points = path.array("pts");
    for (std::uint32_t i = 0; i < points.size() && edges.size() < kMostCorners; ++i) {
        const TvGePoint2d from = db::asPoint2d(points[i].point("pt"));
        const TvGePoint2d to = db::asPoint2d(points[(i + 1) % points.size()].point("pt"));
        edges.push_back(bulgeEdge(from, to, points[i].real("bulge")));
    }
    return edges;
}

double signedArea(const std::vector<TvGePoint2d>& corners)
{
    double area = 0;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        // Against the first corner, so that areas far from the origin keep their digits.
        const TvGeVector2d a = corners[i] - corners[0];
        const TvGeVector2d b = corners[(i + 1) % corners.size()] - corners[0];
        area += a.x * b.y - a.y * b.x;
    }
    return area / 2;
}

bool contains(const HatchLoop& loop, const TvGePoint2d& point)
{
    bool isInside = false;
    const auto& c = loop.corners;
    for (std::size_t i = 0, before = c.size() - 1; i < c.size(); before = i++)
        if ((c[i].y > point.y) != (c[before].y > point.y) &&
            point.x < (c[before].x - c[i].x) * (point.y - c[i].y) / (c[before].y - c[i].y) + c[i].x)
            isInside = !isInside;
    return isInside;
}

/// How many other loops each one lies in; all 0 when that would take too long.
std::vector<int> depths(const std::vector<HatchLoop>& loops)
{
    std::vector<int> depth(loops.size());
    double corners = 0;
    for (const HatchLoop& loop : loops)
        corners += static_cast<double>(loop.corners.size());
    if (corners * static_cast<double>(loops.size()) > kMostNestingWork)
        return depth;
    for (std::size_t i = 0; i < loops.size(); ++i)
        for (std::size_t j = 0; j < loops.size(); ++j)
            depth[i] += i != j && contains(loops[j], loops[i].corners.front());
    return depth;
}

/// The loop run through backwards. Its chords do, too: they are as exact as lines are clipped.
Path reversed(const HatchLoop& loop)
{
    Path path;
    const auto& points = loop.path.points();
    std::size_t end = points.size();
    path.moveTo(points.back());
    for (auto verb = loop.path.verbs().rbegin(); verb != loop.path.verbs().rend(); ++verb) {
        if (*verb == Path::Verb::Line) {
            path.lineTo(points[--end - 1]);
        } else if (*verb == Path::Verb::Curve) {
            path.curveTo(points[end - 2], points[end - 3], points[end - 4]);
            end -= 3;
        }
    }
    path.close();
    return path;
}

} // namespace

std::vector<HatchLoop> hatchLoops(const db::RecordView& fields)
{
    std::vector<HatchLoop> loops;
    const db::ArrayView paths = fields.array("paths");
    std::size_t edges = 1, corners = 0;
    for (std::uint32_t i = 0; i < paths.size(); ++i)
        edges += paths[i].array("segs").size() + paths[i].array("pts").size();
    const std::size_t chords = std::clamp(kChordsOfHatch / edges, kFewestChords, kMostChords);
    for (std::uint32_t i = 0; i < paths.size() && corners < kMostCorners; ++i) {
        const db::RecordView path = paths[i];
        const bool isPolyline = (path.integer("flags") & kPolylinePath) != 0;
        HatchLoop loop = loopOfEdges(isPolyline ? polylineEdges(path)
                                                : hatchEdges(path, kMostCorners - corners, chords),
                                     chords);
        corners += loop.corners.size();
        if (loop.corners.size() >= 2 && isFinite(loop))
            loops.push_back(std::move(loop));
    }
    return loops;
}

HatchArea hatchArea(const std::vector<HatchLoop>& loops, IslandStyle style)
{
    HatchArea area;
    if (style == IslandStyle::Ignore) {
        // All run the same way round: what lies in any of them is inside.
        area.isEvenOdd = false;
        for (const HatchLoop& loop : loops)
            area.path.append(signedArea(loop.corners) < 0 ? reversed(loop) : loop.path);
        return area;
    }
    const std::vector<int> depth =
        style == IslandStyle::OuterOnly ? depths(loops) : std::vector<int>(loops.size());
    for (std::size_t i = 0; i < loops.size(); ++i)
        if (depth[i] <= 1)
            area.path.append(loops[i].path);
    return area;
}

} // namespace gs
