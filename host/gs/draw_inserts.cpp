#include "drawers.h"

#include <cmath>

#include <db/tv_db_annotations.h>
#include <db/tv_db_block_reference.h>
#include <db/tv_db_dictionary.h>
#include <ge/ocs.h>

#include "attachments.h"
#include "frames.h"

namespace gs::draw {

namespace {

TvDbObjectId entryOf(TvDbObjectId dictionary, const TvChar* name)
{
    const TvDbObjectPointer<TvDbDictionary> entries(dictionary, TvDb::kForNotify);
    TvDbObjectId id;
    if (!entries || entries->getAt(TvString(name), id) != TvStatus::Ok)
        return {};
    return id;
}

/// Twelve numbers, row by row; nullopt when there are not as many.
std::optional<TvGeMatrix3d> matrixOf(const db::ArrayView& numbers)
{
    if (numbers.size() != 12)
        return std::nullopt;
    TvGeMatrix3d map;
    for (std::uint32_t i = 0; i < 12; ++i)
        map.entry[i / 4][i % 4] = numbers.real(i);
    return map;
}

/// What the insert is cut out by, in coordinates of its block; empty when nothing cuts it.
void addClipOutline(const TvDbEntity& entity, SpacePath& path)
{
    const TvDbObjectId filters = entryOf(entity.extensionDictionary(), u"ACAD_FILTER");
    const TvDbObjectPointer<TvDbObject> filter(entryOf(filters, u"SPATIAL"), TvDb::kForNotify);
    if (!filter || filter->record().classDef()->name() != "SPATIAL_FILTER")
        return;
    const db::RecordView fields = filter->fields();
    const auto blockFromWorld = matrixOf(fields.array("inverse_block"));
    const auto planeFromWorld = matrixOf(fields.array("block_to_world"));
    if (!blockFromWorld || !planeFromWorld || !fields.flag("display_on"))
        return;
    const auto worldFromPlane = planeFromWorld->inverse();
    if (!worldFromPlane)
        return;
    const db::ArrayView points = fields.array("points");
    std::vector<TvGePoint3d> corners;
    if (points.size() == 2) {
        const db::Point a = points.point(0), b = points.point(1);
        corners = {{a.x, a.y, 0}, {b.x, a.y, 0}, {b.x, b.y, 0}, {a.x, b.y, 0}};
    } else {
        for (std::uint32_t i = 0; i < points.size(); ++i)
            corners.push_back(db::asPoint(points.point(i)));
    }
    if (corners.size() < 3)
        return;
    path.polygon(corners);
    path.transform(*blockFromWorld * *worldFromPlane);
}

/// What cuts the insert; nullopt when nothing of it would be seen.
std::optional<std::uint32_t> clipOf(Scene& scene, const TvDbEntity& entity,
                                    const TvGeMatrix3d& place)
{
    SpacePath& outline = scene.path();
    addClipOutline(entity, outline);
    if (outline.isEmpty())
        return Item::kNoClip;
    return scene.writer().addClip(outline, scene.frame().map * place, scene.frame().clip);
}

/// The path of a reference that cannot be shown, where its insert stands.
void drawLost(Scene& scene, const TvString& path, const TvGeMatrix3d& place)
{
    const TvGeVector3d right = place * TvGeVector3d::xAxis(), up = place * TvGeVector3d::yAxis();
    const TvGeVector3d normal = right.crossProduct(up);
    if (right.isZeroLength() || normal.isZeroLength())
        return;
    const TvGeVector3d x = right.normal(), z = normal.normal();
    drawName(scene, TvGeMatrix3d::coordinateSystem(place * TvGePoint3d(), x, z.crossProduct(x), z),
             path, scene.database().headerRecord().real("TEXTSIZE"));
}

void drawReference(Scene& scene, const TvDbEntity& entity, TvDbObjectId block,
                   const TvGeMatrix3d& place)
{
    const Attachments::Reference& reference = scene.referenceOf(block);
    // The base point of the drawing counts, whatever it was when it was attached.
    const TvGeMatrix3d atBlock =
        place * TvGeMatrix3d::translation(reference.origin - TvGePoint3d::origin());
    if (!reference.lost.isEmpty())
        return drawLost(scene, reference.lost, atBlock);
    if (!reference.scene)
        return;
    const TvGePoint3d base = db::asPoint(reference.drawing->headerRecord().point("INSBASE"));
    const TvGeMatrix3d atModel = atBlock * TvGeMatrix3d::translation(TvGePoint3d::origin() - base);
    if (const auto clip = clipOf(scene, entity, atModel); clip)
        scene.insert(reference, atModel, *clip);
}

void drawContent(Scene& scene, const TvDbEntity& entity, TvDbObjectId block,
                 const TvGeMatrix3d& place)
{
    if (!scene.hasContent(block))
        return drawReference(scene, entity, block, place);
    if (const auto clip = clipOf(scene, entity, place); clip)
        scene.insert(block, place, *clip);
}

void drawAttributes(Scene& scene, const TvDbBlockReference& reference)
{
    for (const TvDbObjectId id : reference.attributeIds())
        scene.drawPart(id);
}

} // namespace

void insert(Scene& scene, const TvDbEntity& entity)
{
    const auto& reference = static_cast<const TvDbBlockReference&>(entity);
    drawContent(scene, entity, reference.blockTableRecord(), reference.blockTransform());
    drawAttributes(scene, reference);
}

void insertArray(Scene& scene, const TvDbEntity& entity)
{
    const auto& array = static_cast<const TvDbMInsertBlock&>(entity);
    const int columns = std::max(array.columns(), 1), rows = std::max(array.rows(), 1);
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column) {
            if (!scene.writer().mayVisit())
                return;
            drawContent(scene, entity, array.blockTableRecord(),
                        array.blockTransformAt(column, row));
        }
    drawAttributes(scene, array);
}

void dimension(Scene& scene, const TvDbEntity& entity)
{
    // What it draws stands in its block, at its place.
    const auto& self = static_cast<const TvDbDimension&>(entity);
    scene.insert(self.dimBlockId(), {});
}

void table(Scene& scene, const TvDbEntity& entity)
{
    const db::RecordView fields = entity.fields();
    ge::BlockPlacement placement;
    placement.insertion = db::asPoint(fields.point("ins_pt"));
    placement.normal = db::asVector(fields.point("normal"));
    placement.rotation = fields.real("rotation");
    const db::Point scale = fields.point("scale");
    placement.scale = {scale.x, scale.y, scale.z};
    scene.insert(entity.idOf(fields.handle("block")), ge::blockTransform(placement));
}

} // namespace gs::draw
