#include <cmath>

#include <db/tv_db_annotations.h>
#include <ge/arcs.h>
#include <ge/ocs.h>

TVRX_DEFINE_MEMBERS(TvDbHatch, TvDbEntity)
TVRX_DEFINE_MEMBERS(TvDbRasterImage, TvDbEntity)
TVRX_DEFINE_MEMBERS(TvDbWipeout, TvDbRasterImage)
TVRX_DEFINE_MEMBERS(TvDbRasterImageDef, TvDbObject)
TVRX_DEFINE_MEMBERS(TvDbUnderlayReference, TvDbEntity)
TVRX_DEFINE_MEMBERS(TvDbUnderlayDefinition, TvDbObject)

namespace {

// "type" of an edge
enum : std::int64_t { kLineEdge = 1, kArcEdge = 2, kEllipseEdge = 3, kSplineEdge = 4 };
constexpr std::int64_t kPolylinePath = 2; // "flags" of a path

TvStatusCode statusOf(const TvDbExtents& box)
{
    return box.isEmpty() ? TvStatus::NotApplicable : TvStatus::Ok;
}

/// Clockwise edges measure their angles the other way round.
TvDbExtents bowExtents(const db::RecordView& edge, const TvGeVector3d& u, const TvGeVector3d& v)
{
    const bool ccw = edge.flag("ccw");
    const double start = edge.real("start_angle"), end = edge.real("end_angle");
    return ge::curveExtents(db::asPoint(edge.point("center")), u, v, ccw ? start : -end,
                            ccw ? end : -start);
}

void addEdge(const db::RecordView& edge, TvDbExtents& box)
{
    switch (edge.integer("type")) {
    case kLineEdge:
        box.addPoint(db::asPoint(edge.point("start")));
        box.addPoint(db::asPoint(edge.point("end")));
        break;
    case kArcEdge: {
        const double radius = edge.real("radius");
        box.addExtents(bowExtents(edge, {radius, 0, 0}, {0, radius, 0}));
        break;
    }
    case kEllipseEdge: {
        const TvGeVector3d major = db::asVector(edge.point("major"));
        const double ratio = edge.real("ratio");
        box.addExtents(bowExtents(edge, major, {-major.y * ratio, major.x * ratio, 0}));
        break;
    }
    case kSplineEdge: {
        const db::ArrayView points = edge.array("ctrl");
        for (std::uint32_t i = 0; i < points.size(); ++i)
            box.addPoint(db::asPoint(points[i].point("pt")));
        break;
    }
    default: break;
    }
}

void addPath(const db::RecordView& path, TvDbExtents& box)
{
    if ((path.integer("flags") & kPolylinePath) == 0) {
        const db::ArrayView edges = path.array("segs");
        for (std::uint32_t i = 0; i < edges.size(); ++i)
            addEdge(edges[i], box);
        return;
    }
    const db::ArrayView points = path.array("pts");
    for (std::uint32_t i = 0; i < points.size(); ++i) {
        const TvGePoint2d from = db::asPoint2d(points[i].point("pt"));
        const TvGePoint2d to = db::asPoint2d(points[(i + 1) % points.size()].point("pt"));
        box.addPoint({from.x, from.y, 0});
        if (const auto arc = ge::bulgeArc(from, to, points[i].real("bulge")); arc)
            box.addExtents(ge::curveExtents({arc->center.x, arc->center.y, 0}, {arc->radius, 0, 0},
                                            {0, arc->radius, 0}, arc->startAngle, arc->endAngle));
    }
}

} // namespace

TvStatusCode TvDbHatch::getGeomExtents(TvDbExtents& out) const
{
    TvDbExtents flat;
    const db::ArrayView paths = fields().array("paths");
    for (std::uint32_t i = 0; i < paths.size(); ++i)
        addPath(paths[i], flat);
    const TvGeMatrix3d lift = TvGeMatrix3d::translation({0, 0, elevation()});
    out = flat.isEmpty() ? flat : flat.transformed(ge::ocsToWcs(normal()) * lift);
    return statusOf(out);
}

TvGeVector3d TvDbRasterImage::width() const
{
    return db::asVector(fields().point("u_vec")) * fields().point("size").x;
}

TvGeVector3d TvDbRasterImage::height() const
{
    return db::asVector(fields().point("v_vec")) * fields().point("size").y;
}

std::vector<TvGePoint3d> TvDbRasterImage::boundary() const
{
    const TvGeVector3d u = db::asVector(fields().point("u_vec"));
    const TvGeVector3d v = db::asVector(fields().point("v_vec"));
    const db::ArrayView clip = fields().array("clip");
    const double high = fields().point("size").y;
    std::vector<TvGePoint3d> corners;
    const auto add = [&](double x, double y) { corners.push_back(origin() + u * x + v * y); };
    // Clip points count pixels from the middle of the upper left one, downwards.
    const auto addClip = [&](double x, double y) { add(x + 0.5, high - (y + 0.5)); };
    if (!isClipped() || clip.size() < 2) {
        corners = {origin(), origin() + width(), origin() + width() + height(),
                   origin() + height()};
    } else if (clip.size() == 2) {
        const db::Point a = clip.point(0), b = clip.point(1);
        addClip(a.x, a.y);
        addClip(b.x, a.y);
        addClip(b.x, b.y);
        addClip(a.x, b.y);
    } else {
        for (std::uint32_t i = 0; i < clip.size(); ++i)
            addClip(clip.point(i).x, clip.point(i).y);
    }
    return corners;
}

TvStatusCode TvDbRasterImage::getGeomExtents(TvDbExtents& out) const
{
    out = TvDbExtents();
    for (const TvGePoint3d& corner : boundary())
        out.addPoint(corner);
    return statusOf(out);
}

TvStatusCode TvDbRasterImageDef::setSourceFileName(const TvString& path)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    return edit().setText("path", path.view()) ? TvStatus::Ok : TvStatus::NotUnderstood;
}

TvStatusCode TvDbUnderlayDefinition::setSourceFileName(const TvString& path)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    return edit().setText("path", path.view()) ? TvStatus::Ok : TvStatus::NotUnderstood;
}
