#include "drawers.h"

#include <cmath>

#include <db/tv_db_curves.h>
#include <ge/arcs.h>
#include <ge/ocs.h>

namespace gs::draw {

namespace {

constexpr std::int64_t kPlinegenOfVertices = 128; // "flags" of a polyline with vertices

struct Corner {
    TvGePoint2d point;
    double bulge = 0; ///< of the segment that begins here
    double startWidth = 0, endWidth = 0;
};

struct Chain {
    std::vector<Corner> corners;
    bool isClosed = false;
    bool hasPlinegen = false; ///< its pattern runs on over corners
    double elevation = 0;

    std::size_t segments() const
    {
        return corners.empty() ? 0 : corners.size() - (isClosed ? 0 : 1);
    }
    const Corner& next(std::size_t at) const
    {
        return corners[at + 1 < corners.size() ? at + 1 : 0];
    }
};

/// The one width of all segments; nullopt when they differ.
std::optional<double> commonWidth(const Chain& chain)
{
    const double width = chain.corners.front().startWidth;
    for (std::size_t i = 0; i < chain.segments(); ++i)
        if (chain.corners[i].startWidth != width || chain.corners[i].endWidth != width)
            return std::nullopt;
    return width;
}

/// One segment as an area between two lines that go apart or together.
void addWideSegment(SpacePath& path, const Corner& from, const TvGePoint2d& to, double elevation)
{
    constexpr int kPiecesOfTurn = 64;
    std::vector<TvGePoint2d> middle;
    std::vector<TvGeVector2d> left; // unit
    if (const auto arc = ge::bulgeArc(from.point, to, from.bulge); arc) {
        const double sweep = 4 * std::atan(from.bulge);
        const double start = (from.point - arc->center).angle();
        const int pieces =
            std::max(2, static_cast<int>(std::ceil(std::abs(sweep) / 6.3 * kPiecesOfTurn)));
        for (int i = 0; i <= pieces; ++i) {
            const double angle = start + sweep * i / pieces;
            const TvGeVector2d out(std::cos(angle), std::sin(angle));
            middle.push_back(arc->center + out * arc->radius);
            left.push_back(sweep > 0 ? -out : out);
        }
    } else {
        middle = {from.point, to};
        left.assign(2, (to - from.point).normal().perpVector());
    }
    const auto half = [&](std::size_t i) {
        const double part = static_cast<double>(i) / static_cast<double>(middle.size() - 1);
        return (from.startWidth + (from.endWidth - from.startWidth) * part) / 2;
    };
    std::vector<TvGePoint3d> outline;
    for (std::size_t i = 0; i < middle.size(); ++i) {
        const TvGePoint2d side = middle[i] + left[i] * half(i);
        outline.push_back({side.x, side.y, elevation});
    }
    for (std::size_t i = middle.size(); i-- > 0;) {
        const TvGePoint2d side = middle[i] - left[i] * half(i);
        outline.push_back({side.x, side.y, elevation});
    }
    path.polygon(outline);
}

void drawWide(Scene& scene, const Chain& chain, const TvGeMatrix3d& place)
{
    SpacePath& areas = scene.path();
    for (std::size_t i = 0; i < chain.segments(); ++i)
        if (chain.corners[i].startWidth > 0 || chain.corners[i].endWidth > 0)
            addWideSegment(areas, chain.corners[i], chain.next(i).point, chain.elevation);
    if (!areas.isEmpty())
        scene.fill(place);
    SpacePath& lines = scene.path();
    for (std::size_t i = 0; i < chain.segments(); ++i) {
        const Corner& from = chain.corners[i];
        if (from.startWidth > 0 || from.endWidth > 0)
            continue;
        lines.moveTo({from.point.x, from.point.y, chain.elevation});
        lines.bulgeTo(from.point, chain.next(i).point, from.bulge, chain.elevation);
    }
    if (!lines.isEmpty())
        scene.stroke(place);
}

void drawChain(Scene& scene, const Chain& chain, const TvGeVector3d& normal)
{
    if (chain.corners.empty())
        return;
    const TvGeMatrix3d place = ge::ocsToWcs(normal);
    const auto width = commonWidth(chain);
    if (!width) {
        drawWide(scene, chain, place);
        return;
    }
    SpacePath& path = scene.path();
    const TvGePoint2d first = chain.corners.front().point;
    path.moveTo({first.x, first.y, chain.elevation});
    for (std::size_t i = 0; i < chain.segments(); ++i) {
        const Corner& from = chain.corners[i];
        const bool isLast = chain.isClosed && i + 1 == chain.corners.size();
        if (!isLast || from.bulge != 0)
            path.bulgeTo(from.point, chain.next(i).point, from.bulge, chain.elevation);
    }
    if (chain.isClosed)
        path.close();
    scene.stroke(place, *width, !chain.hasPlinegen);
}

} // namespace

void polyline(Scene& scene, const TvDbEntity& entity)
{
    // "flags"
    enum : std::int64_t {
        kNormal = 1,
        kConstantWidth = 4,
        kElevation = 8,
        kPlinegen = 256,
        kClosed = 512
    };
    static const db::FieldId kFlags = db::fieldId("flags"), kPoints = db::fieldId("points"),
                             kBulges = db::fieldId("bulges"), kWidths = db::fieldId("widths"),
                             kWidth = db::fieldId("const_width"), kZ = db::fieldId("elevation"),
                             kUp = db::fieldId("normal");
    const db::RecordView fields = entity.fields();
    const std::int64_t flags = fields.integer(kFlags);
    const db::ArrayView points = fields.array(kPoints), bulges = fields.array(kBulges),
                        widths = fields.array(kWidths);
    Chain chain;
    chain.isClosed = (flags & kClosed) != 0;
    chain.hasPlinegen = (flags & kPlinegen) != 0;
    chain.elevation = (flags & kElevation) != 0 ? fields.real(kZ) : 0;
    const double constant = (flags & kConstantWidth) != 0 ? fields.real(kWidth) : 0;
    chain.corners.resize(points.size());
    for (std::uint32_t i = 0; i < points.size(); ++i) {
        Corner& corner = chain.corners[i];
        corner.point = db::asPoint2d(points.point(i));
        corner.bulge = bulges.isEmpty() ? 0 : bulges.real(i);
        const db::Point width =
            widths.isEmpty() ? db::Point{constant, constant, 0} : widths.point(i);
        corner.startWidth = width.x, corner.endWidth = width.y;
    }
    drawChain(scene, chain,
              (flags & kNormal) != 0 ? db::asVector(fields.point(kUp)) : TvGeVector3d::zAxis());
}

void polyline2d(Scene& scene, const TvDbEntity& entity)
{
    const auto& self = static_cast<const TvDb2dPolyline&>(entity);
    Chain chain;
    chain.isClosed = self.isClosed();
    chain.hasPlinegen = (self.fields().integer("flags") & kPlinegenOfVertices) != 0;
    chain.elevation = self.elevation();
    for (const TvDbObjectId id : self.vertexIds()) {
        const TvDbObjectPointer<TvDbVertex> vertex(id, TvDb::kForNotify);
        if (!vertex || vertex->isControlPoint())
            continue;
        const TvGePoint3d at = vertex->position();
        chain.corners.push_back(
            {{at.x, at.y}, vertex->bulge(), vertex->startWidth(), vertex->endWidth()});
    }
    drawChain(scene, chain, self.normal());
}

void polyline3d(Scene& scene, const TvDbEntity& entity)
{
    const auto& self = static_cast<const TvDb3dPolyline&>(entity);
    std::vector<TvGePoint3d> corners;
    for (const TvDbObjectId id : self.vertexIds()) {
        const TvDbObjectPointer<TvDbVertex> vertex(id, TvDb::kForNotify);
        if (vertex && !vertex->isControlPoint())
            corners.push_back(vertex->position());
    }
    scene.path().polygon(corners, self.isClosed());
    scene.stroke();
}

} // namespace gs::draw
