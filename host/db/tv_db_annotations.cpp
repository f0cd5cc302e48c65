#include <db/tv_db_annotations.h>

#include "block_extents.h"

#include <ge/arcs.h>
#include <ge/ocs.h>

TVRX_DEFINE_MEMBERS(TvDbDimension, TvDbEntity)
TVRX_DEFINE_MEMBERS(TvDbRotatedDimension, TvDbDimension)
TVRX_DEFINE_MEMBERS(TvDbAlignedDimension, TvDbDimension)
TVRX_DEFINE_MEMBERS(TvDb3PointAngularDimension, TvDbDimension)
TVRX_DEFINE_MEMBERS(TvDb2LineAngularDimension, TvDbDimension)
TVRX_DEFINE_MEMBERS(TvDbRadialDimension, TvDbDimension)
TVRX_DEFINE_MEMBERS(TvDbDiametricDimension, TvDbDimension)
TVRX_DEFINE_MEMBERS(TvDbOrdinateDimension, TvDbDimension)
TVRX_DEFINE_MEMBERS(TvDbArcDimension, TvDbDimension)
TVRX_DEFINE_MEMBERS(TvDbRadialDimensionLarge, TvDbDimension)
TVRX_DEFINE_MEMBERS(TvDbLeader, TvDbEntity)
TVRX_DEFINE_MEMBERS(TvDbMLeader, TvDbEntity)
TVRX_DEFINE_MEMBERS(TvDbFcf, TvDbEntity)

namespace {

TvStatusCode statusOf(const TvDbExtents& box)
{
    return box.isEmpty() ? TvStatus::NotApplicable : TvStatus::Ok;
}

} // namespace

TvDbObjectId TvDbDimension::dimBlockId() const
{
    const TvDbObjectId id = idField("block");
    return id.isValid() ? id : TvDbObjectId();
}

TvStatusCode TvDbDimension::getGeomExtents(TvDbExtents& out) const
{
    // The block is drawn as it is, where it is.
    db::BlockExtents blocks;
    out = blocks.of(dimBlockId());
    return statusOf(out);
}

std::vector<TvGePoint3d> TvDbLeader::vertices() const
{
    std::vector<TvGePoint3d> points;
    const db::ArrayView array = fields().array("points");
    for (std::uint32_t i = 0; i < array.size(); ++i)
        points.push_back(db::asPoint(array.point(i)));
    return points;
}

TvStatusCode TvDbLeader::getGeomExtents(TvDbExtents& out) const
{
    out = TvDbExtents();
    for (const TvGePoint3d& point : vertices())
        out.addPoint(point);
    return statusOf(out);
}

std::vector<std::vector<TvGePoint3d>> TvDbMLeader::leaderLines() const
{
    std::vector<std::vector<TvGePoint3d>> all;
    const db::ArrayView roots = context().array("roots");
    for (std::uint32_t r = 0; r < roots.size(); ++r) {
        const db::RecordView root = roots[r];
        const db::ArrayView lines = root.array("lines");
        for (std::uint32_t l = 0; l < lines.size(); ++l) {
            const db::ArrayView points = lines[l].array("pts");
            std::vector<TvGePoint3d>& line = all.emplace_back();
            for (std::uint32_t p = 0; p < points.size(); ++p)
                line.push_back(db::asPoint(points.point(p)));
            if (root.flag("has_end"))
                line.push_back(db::asPoint(root.point("end_pt")));
        }
    }
    return all;
}

TvDbObjectId TvDbMLeader::blockContentId() const
{
    const TvDbObjectId id = idOf(context().handle("block"));
    return context().flag("has_block") && id.isValid() ? id : TvDbObjectId();
}

TvStatusCode TvDbMLeader::getGeomExtents(TvDbExtents& out) const
{
    out = TvDbExtents();
    for (const std::vector<TvGePoint3d>& line : leaderLines())
        for (const TvGePoint3d& point : line)
            out.addPoint(point);
    if (hasText())
        out.addPoint(textLocation());
    else if (context().flag("has_block"))
        out.addPoint(blockPosition());
    return statusOf(out);
}
