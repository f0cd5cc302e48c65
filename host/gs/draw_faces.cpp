#include "drawers.h"

#include <db/modeler_data.h>
#include <db/tv_db_curves.h>
#include <ge/ocs.h>

#include "solid_edges.h"

namespace gs::draw {

namespace {

/// The edges between @p corners, the last one back to the first; those that are hidden left out.
void addEdges(SpacePath& path, const std::vector<TvGePoint3d>& corners,
              const std::vector<bool>& isShown)
{
    for (std::size_t i = 0; i < corners.size(); ++i)
        if (isShown[i]) {
            path.moveTo(corners[i]);
            path.lineTo(corners[(i + 1) % corners.size()]);
        }
}

} // namespace

void solid(Scene& scene, const TvDbEntity& entity)
{
    const auto& self = static_cast<const TvDbSolid&>(entity);
    // Stored crosswise.
    scene.path().polygon({self.pointAt(0), self.pointAt(1), self.pointAt(3), self.pointAt(2)});
    scene.fill(ge::ocsToWcs(self.normal()));
}

void face(Scene& scene, const TvDbEntity& entity)
{
    const auto& self = static_cast<const TvDbFace&>(entity);
    std::vector<TvGePoint3d> corners;
    std::vector<bool> isShown;
    for (int i = 0; i < 4; ++i) {
        corners.push_back(self.vertexAt(i));
        isShown.push_back(self.isEdgeVisibleAt(i));
    }
    addEdges(scene.path(), corners, isShown);
    scene.stroke();
}

void polygonMesh(Scene& scene, const TvDbEntity& entity)
{
    const auto& self = static_cast<const TvDbPolygonMesh&>(entity);
    std::vector<TvGePoint3d> corners, smooth;
    for (const TvDbObjectId id : self.vertexIds())
        if (const TvDbObjectPointer<TvDbVertex> vertex(id, TvDb::kForNotify); vertex)
            // Of a smooth mesh, the corners that it was made from are no part of it.
            (vertex->isControlPoint() ? smooth : corners).push_back(vertex->position());
    const db::RecordView fields = self.fields();
    const bool isSmooth = fields.integer("curve_type") != 0 && !smooth.empty();
    const std::int64_t m = isSmooth ? fields.integer("m_density") : self.mSize();
    const std::int64_t n = isSmooth ? fields.integer("n_density") : self.nSize();
    if (m < 1 || n < 1 || m * n > static_cast<std::int64_t>(corners.size()))
        return;
    const auto at = [&](std::int64_t row, std::int64_t column) {
        return corners[static_cast<std::size_t>(row * n + column)];
    };
    SpacePath& path = scene.path();
    for (std::int64_t row = 0; row < m; ++row) {
        for (std::int64_t column = 0; column < n; ++column)
            column == 0 ? path.moveTo(at(row, 0)) : path.lineTo(at(row, column));
        if (self.isNClosed())
            path.close();
    }
    for (std::int64_t column = 0; column < n; ++column) {
        for (std::int64_t row = 0; row < m; ++row)
            row == 0 ? path.moveTo(at(0, column)) : path.lineTo(at(row, column));
        if (self.isMClosed())
            path.close();
    }
    scene.stroke();
}

void polyFaceMesh(Scene& scene, const TvDbEntity& entity)
{
    static constexpr const char* kCorners[] = {"v1", "v2", "v3", "v4"};
    const auto& self = static_cast<const TvDbPolyFaceMesh&>(entity);
    std::vector<TvGePoint3d> places;
    std::vector<TvDbObjectId> faces;
    for (const TvDbObjectId id : self.vertexIds()) {
        const TvDbObjectPointer<TvDbVertex> vertex(id, TvDb::kForNotify);
        if (!vertex)
            continue;
        if (vertex->isA() == TvDbFaceRecord::desc())
            faces.push_back(id);
        else
            places.push_back(vertex->position());
    }
    SpacePath& path = scene.path();
    for (const TvDbObjectId id : faces) {
        const TvDbObjectPointer<TvDbFaceRecord> record(id, TvDb::kForNotify);
        std::vector<TvGePoint3d> corners;
        std::vector<bool> isShown;
        for (const char* field : kCorners) {
            // Two's complement in 16 bits.
            const auto number = static_cast<std::int16_t>(record->fields().integer(field));
            const auto index = static_cast<std::size_t>(std::abs(int(number)));
            if (index == 0 || index > places.size())
                continue;
            corners.push_back(places[index - 1]);
            isShown.push_back(number > 0);
        }
        addEdges(path, corners, isShown);
    }
    scene.stroke();
}

void subdivisionMesh(Scene& scene, const TvDbEntity& entity)
{
    const db::RecordView fields = entity.fields();
    const db::ArrayView places = fields.array("vertices"), edges = fields.array("edges");
    SpacePath& path = scene.path();
    for (std::uint32_t i = 0; i < edges.size(); ++i) {
        const auto from = static_cast<std::uint64_t>(edges[i].integer("e1"));
        const auto to = static_cast<std::uint64_t>(edges[i].integer("e2"));
        if (from >= places.size() || to >= places.size())
            continue;
        path.moveTo(db::asPoint(places.point(static_cast<std::uint32_t>(from))));
        path.lineTo(db::asPoint(places.point(static_cast<std::uint32_t>(to))));
    }
    scene.stroke();
}

void modelerWires(Scene& scene, const TvDbEntity& entity)
{
    const db::ArrayView wires = entity.fields().array("wires");
    SpacePath& path = scene.path();
    for (std::uint32_t w = 0; w < wires.size(); ++w) {
        const db::RecordView wire = wires[w];
        const db::ArrayView points = wire.array("pts");
        TvGeMatrix3d place;
        if (wire.flag("has_transform"))
            place = TvGeMatrix3d::coordinateSystem(
                db::asPoint(wire.point("translation")), db::asVector(wire.point("ax")),
                db::asVector(wire.point("ay")), db::asVector(wire.point("az")));
        for (std::uint32_t i = 0; i < points.size(); ++i) {
            const TvGePoint3d at = place * db::asPoint(points.point(i));
            i == 0 ? path.moveTo(at) : path.lineTo(at);
        }
    }
    if (path.isEmpty())
        addSolidEdges(path, db::modelerData(entity));
    if (!path.isEmpty()) {
        scene.stroke();
        return;
    }
    // All that is known of it is where it stands, if that.
    if (!entity.fields().flag("has_point"))
        return;
    constexpr double kSign = 0.012; // of the view's height
    path.polygon({{-kSign, 0, 0}, {0, -kSign, 0}, {kSign, 0, 0}, {0, kSign, 0}});
    scene.addMarker(db::asPoint(entity.fields().point("point")));
}

} // namespace gs::draw
