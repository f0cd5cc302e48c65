#include <cmath>

#include <db/tv_db_curves.h>
#include <ge/arcs.h>
#include <ge/ocs.h>

TVRX_DEFINE_MEMBERS(TvDbPolyline, TvDbCurve)
TVRX_DEFINE_MEMBERS(TvDbVertex, TvDbEntity)
TVRX_DEFINE_MEMBERS(TvDb2dVertex, TvDbVertex)
TVRX_DEFINE_MEMBERS(TvDb3dPolylineVertex, TvDbVertex)
TVRX_DEFINE_MEMBERS(TvDbPolygonMeshVertex, TvDbVertex)
TVRX_DEFINE_MEMBERS(TvDbPolyFaceMeshVertex, TvDbVertex)
TVRX_DEFINE_MEMBERS(TvDbFaceRecord, TvDbVertex)
TVRX_DEFINE_MEMBERS(TvDbVertexOwner, TvDbCurve)
TVRX_DEFINE_MEMBERS(TvDb2dPolyline, TvDbVertexOwner)
TVRX_DEFINE_MEMBERS(TvDb3dPolyline, TvDbVertexOwner)
TVRX_DEFINE_MEMBERS(TvDbPolyFaceMesh, TvDbVertexOwner)
TVRX_DEFINE_MEMBERS(TvDbPolygonMesh, TvDbVertexOwner)
TVRX_DEFINE_MEMBERS(TvDbSolid, TvDbEntity)
TVRX_DEFINE_MEMBERS(TvDbTrace, TvDbSolid)
TVRX_DEFINE_MEMBERS(TvDbFace, TvDbEntity)

namespace {

// "flags" of an LWPOLYLINE
enum : std::int64_t { kPlinegen = 256, kClosed = 512 };

TvStatusCode statusOf(const TvDbExtents& box)
{
    return box.isEmpty() ? TvStatus::NotApplicable : TvStatus::Ok;
}

/// The box of a flat chain of lines and arcs, in its plane at z = @p elevation.
class FlatChain
{
public:
    explicit FlatChain(double elevation) : m_elevation(elevation) {}

    void add(const TvGePoint2d& point, double bulge, double width)
    {
        if (m_count++ > 0)
            addSegment(m_last, point, m_bulge);
        else
            m_first = point;
        m_last = point;
        m_bulge = bulge;
        m_width = std::max(m_width, width);
    }

    /// In world coordinates, thickened along the normal.
    TvDbExtents box(bool isClosed, double thickness, const TvGeVector3d& normal)
    {
        if (isClosed && m_count > 1)
            addSegment(m_last, m_first, m_bulge);
        else if (m_count == 1)
            m_box.addPoint({m_first.x, m_first.y, m_elevation});
        if (m_box.isEmpty())
            return m_box;
        const TvGeVector3d half(m_width / 2, m_width / 2, 0);
        TvDbExtents all(m_box.minPoint() - half, m_box.maxPoint() + half);
        all.addPoint(all.maxPoint() + TvGeVector3d(0, 0, thickness));
        return all.transformed(ge::ocsToWcs(normal));
    }

private:
    void addSegment(const TvGePoint2d& from, const TvGePoint2d& to, double bulge)
    {
        m_box.addPoint({from.x, from.y, m_elevation});
        m_box.addPoint({to.x, to.y, m_elevation});
        if (const std::optional<ge::Arc2d> arc = ge::bulgeArc(from, to, bulge); arc)
            m_box.addExtents(ge::curveExtents({arc->center.x, arc->center.y, m_elevation},
                                              {arc->radius, 0, 0}, {0, arc->radius, 0},
                                              arc->startAngle, arc->endAngle));
    }

    double m_elevation;
    int m_count = 0;
    TvGePoint2d m_first, m_last;
    double m_bulge = 0; // of the segment that begins at m_last
    double m_width = 0; // the largest
    TvDbExtents m_box;
};

std::uint32_t placeOf(int index)
{
    return index < 0 ? UINT32_MAX : static_cast<std::uint32_t>(index);
}

} // namespace

// LWPOLYLINE

TvGePoint2d TvDbPolyline::pointAt(int index) const
{
    return db::asPoint2d(fields().array("points").point(placeOf(index)));
}

double TvDbPolyline::bulgeAt(int index) const
{
    return fields().array("bulges").real(placeOf(index));
}

double TvDbPolyline::startWidthAt(int index) const
{
    const db::ArrayView widths = fields().array("widths");
    return widths.isEmpty() ? constantWidth() : widths.point(placeOf(index)).x;
}

double TvDbPolyline::endWidthAt(int index) const
{
    const db::ArrayView widths = fields().array("widths");
    return widths.isEmpty() ? constantWidth() : widths.point(placeOf(index)).y;
}

TvStatusCode TvDbPolyline::addVertexAt(int index, const TvGePoint2d& point, double bulge,
                                       double startWidth, double endWidth)
{
    if (index < 0 || index > numVerts())
        return TvStatus::OutOfRange;
    if (!std::isfinite(point.x) || !std::isfinite(point.y) || !std::isfinite(bulge))
        return TvStatus::InvalidInput;
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    db::RecordEditor polyline = edit();
    if (!polyline)
        return TvStatus::NotUnderstood;
    const std::uint32_t at = placeOf(index), before = static_cast<std::uint32_t>(numVerts());
    db::ArrayEditor points = polyline.array("points");
    points.insert(at);
    points.setPoint(at, db::fromPoint(point));
    // Lists that only some polylines have come with the first value that is not 0.
    const auto insertInto = [&](const char* name, std::int64_t flag, bool isNeeded) {
        db::ArrayEditor list = polyline.array(name);
        if (list.size() == 0 && !isNeeded)
            return list;
        polyline.setInteger("flags", polyline.integer("flags") | flag);
        list.resize(std::max(list.size(), before));
        list.insert(at);
        return list;
    };
    if (db::ArrayEditor list = insertInto("bulges", 16, bulge != 0); list.size() > 0)
        list.setReal(at, bulge);
    if (db::ArrayEditor list = insertInto("widths", 32, startWidth != 0 || endWidth != 0);
        list.size() > 0)
        list.setPoint(at, {startWidth, endWidth, 0});
    if (db::ArrayEditor ids = polyline.array("ids"); ids.size() > 0)
        ids.insert(std::min(at, ids.size()));
    return TvStatus::Ok;
}

TvStatusCode TvDbPolyline::removeVertexAt(int index)
{
    if (index < 0 || index >= numVerts())
        return TvStatus::OutOfRange;
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    db::RecordEditor polyline = edit();
    if (!polyline)
        return TvStatus::NotUnderstood;
    for (const char* name : {"points", "bulges", "widths", "ids"})
        polyline.array(name).erase(placeOf(index));
    return TvStatus::Ok;
}

bool TvDbPolyline::isClosed() const
{
    return (fields().integer("flags") & kClosed) != 0;
}

TvStatusCode TvDbPolyline::setClosed(bool closed)
{
    const std::int64_t others = fields().integer("flags") & ~kClosed;
    return setInteger("flags", closed ? others | kClosed : others);
}

bool TvDbPolyline::hasPlinegen() const
{
    return (fields().integer("flags") & kPlinegen) != 0;
}

TvGeVector3d TvDbPolyline::normal() const
{
    const TvGeVector3d normal = db::asVector(fields().point("normal"));
    return normal.isZeroLength() ? TvGeVector3d::zAxis() : normal;
}

TvStatusCode TvDbPolyline::setNormal(const TvGeVector3d& normal)
{
    return normal.isZeroLength() ? TvStatus::InvalidInput
                                 : setPoint("normal", db::fromVector(normal.normal()));
}

TvStatusCode TvDbPolyline::getGeomExtents(TvDbExtents& out) const
{
    FlatChain chain(elevation());
    for (int i = 0; i < numVerts(); ++i)
        chain.add(pointAt(i), bulgeAt(i), std::max(startWidthAt(i), endWidthAt(i)));
    out = chain.box(isClosed(), thickness(), normal());
    return statusOf(out);
}

// Polylines with vertices of their own

double TvDbVertex::startWidth() const
{
    return std::abs(fields().real("start_width"));
}

double TvDbVertex::endWidth() const
{
    // A negative start width stands for both.
    const double start = fields().real("start_width");
    return start < 0 ? -start : fields().real("end_width");
}

std::vector<TvDbObjectId> TvDbVertexOwner::vertexIds() const
{
    std::vector<TvDbObjectId> ids;
    const db::ArrayView vertices = fields().array("vertices");
    for (std::uint32_t i = 0; i < vertices.size(); ++i)
        if (const TvDbObjectId id = idOf(vertices.handle(i)); id.isValid())
            ids.push_back(id);
    return ids;
}

TvStatusCode TvDbVertexOwner::getGeomExtents(TvDbExtents& out) const
{
    out = TvDbExtents();
    for (const TvDbObjectId id : vertexIds()) {
        const TvDbObjectPointer<TvDbVertex> vertex(id, TvDb::kForNotify);
        if (vertex && vertex->isA() != TvDbFaceRecord::desc())
            out.addPoint(vertex->position());
    }
    return statusOf(out);
}

TvStatusCode TvDb2dPolyline::getGeomExtents(TvDbExtents& out) const
{
    FlatChain chain(elevation());
    for (const TvDbObjectId id : vertexIds()) {
        const TvDbObjectPointer<TvDbVertex> vertex(id, TvDb::kForNotify);
        if (!vertex || vertex->isControlPoint())
            continue;
        const TvGePoint3d point = vertex->position();
        chain.add({point.x, point.y}, vertex->bulge(),
                  std::max(vertex->startWidth(), vertex->endWidth()));
    }
    out = chain.box(isClosed(), thickness(), normal());
    return statusOf(out);
}

// Corners

TvGePoint3d TvDbSolid::pointAt(int index) const
{
    static constexpr const char* kFields[] = {"p1", "p2", "p3", "p4"};
    if (index < 0 || index > 3)
        return {};
    const db::Point corner = fields().point(kFields[index]);
    return {corner.x, corner.y, fields().real("elevation")};
}

TvStatusCode TvDbSolid::getGeomExtents(TvDbExtents& out) const
{
    out = TvDbExtents();
    const TvGeMatrix3d toWorld = ge::ocsToWcs(normal());
    for (int i = 0; i < 4; ++i)
        for (const double up : {0.0, thickness()})
            out.addPoint(toWorld * (pointAt(i) + TvGeVector3d(0, 0, up)));
    return statusOf(out);
}

TvGePoint3d TvDbFace::vertexAt(int index) const
{
    static constexpr const char* kFields[] = {"p1", "p2", "p3", "p4"};
    return index < 0 || index > 3 ? TvGePoint3d() : db::asPoint(fields().point(kFields[index]));
}

bool TvDbFace::isEdgeVisibleAt(int index) const
{
    return (fields().integer("invisible_edges") >> (index & 3) & 1) == 0;
}

TvStatusCode TvDbFace::getGeomExtents(TvDbExtents& out) const
{
    out = TvDbExtents();
    for (int i = 0; i < 4; ++i)
        out.addPoint(vertexAt(i));
    return statusOf(out);
}
