#include <cmath>

#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_viewport.h>
#include <gs/display_list.h>

#include "layout_scene.h"
#include "scene.h"

namespace gs {

namespace {

constexpr std::int64_t kHidesWeights = 0x200; // of the header's flags

/// The record of the model view that was current when the drawing was saved; null without one.
TvDbObjectId activeModelView(TvDbDatabase& database)
{
    TvDbObjectId id;
    const TvDbObjectPointer<TvDbViewportTable> table(
        database.symbolTableId(TvDb::SymbolTable::Viewport), TvDb::kForNotify);
    if (!table || table->getIdAt(TvString(u"*Active"), id) != TvStatus::Ok)
        return {};
    return id;
}

void makeHeader(TvDbDatabase& database, ListWriter& writer)
{
    writer.setShowsLineWeights((database.headerRecord().integer("FLAGS") & kHidesWeights) == 0);
}

/// How a view sees model space.
struct ModelView {
    TvGeMatrix3d map;
    std::optional<Lens> lens;
};

/// Reads the record of a view, and tells the list what of the model it shows.
ModelView modelView(const TvDbObject* view, ListWriter& writer)
{
    ModelView seen;
    if (!view)
        return seen;
    const db::RecordView fields = view->fields();
    const TvGeVector3d direction = db::asVector(fields.point("direction"));
    if (direction.isZeroLength() || !std::isfinite(direction.length()))
        return seen;
    seen.map = viewAxes(direction, fields.real("twist"));
    const Camera camera = cameraOfView(fields);
    seen.lens = camera.lens(db::asPoint(fields.point("target")), seen.map, 1);
    const TvGePoint3d target = seen.lens->target;
    const db::Point center = fields.point("center");
    double height = fields.real("height"), width = fields.real("width");
    if (const double tall = camera.heightSeen(width / height); tall > 0)
        width *= tall / height, height = tall;
    Box window;
    window.add({target.x + center.x - width / 2, target.y + center.y - height / 2});
    window.add({target.x + center.x + width / 2, target.y + center.y + height / 2});
    if (height > 0 && width > 0 && std::isfinite(window.width() + window.height()))
        writer.setSavedWindow(window);
    return seen;
}

void makeModel(TvDbDatabase& database, const TvDbObject* view, ListWriter& writer,
               db::AttachedDrawings* attached)
{
    Scene scene(database, writer, attached);
    makeHeader(database, writer);
    const ModelView seen = modelView(view, writer);
    Scene::Frame frame;
    frame.map = seen.map;
    writer.setFromWorld(frame.map);
    writer.setLens(seen.lens ? &*seen.lens : nullptr);
    scene.drawBlock(database.modelSpaceId(), frame);
    writer.setLens(nullptr);
}

void makeCurrentModel(TvDbDatabase& database, ListWriter& writer, db::AttachedDrawings* attached)
{
    const TvDbObjectPointer<TvDbViewportTableRecord> view(activeModelView(database),
                                                          TvDb::kForNotify);
    makeModel(database, view ? &*view : nullptr, writer, attached);
}

void makeSheet(const TvDbLayout& layout, ListWriter& writer)
{
    db::Point low, high;
    double width = 0, height = 0;
    if (layout.getPlotPaperSize(width, height) != TvStatus::Ok ||
        layout.getPaperArea(low, high) != TvStatus::Ok)
        return;
    const bool isTurned = layout.plotRotation() == TvDbPlotSettings::k90degrees ||
                          layout.plotRotation() == TvDbPlotSettings::k270degrees;
    const double mmPerUnit = (isTurned ? height : width) / (high.x - low.x);
    double margins[4]; // left, bottom, right, top of the paper as it is fed
    layout.getPlotPaperMargins(margins[0], margins[1], margins[2], margins[3]);
    // Turning the paper turns its margins: the one that comes to the left is that many further on.
    const int turn = layout.plotRotation() == TvDbPlotSettings::k0degrees     ? 0
                     : layout.plotRotation() == TvDbPlotSettings::k90degrees  ? 3
                     : layout.plotRotation() == TvDbPlotSettings::k180degrees ? 2
                                                                              : 1;
    const auto margin = [&](int side) { return margins[(side + turn) % 4] / mmPerUnit; };
    const Box sheet{low.x, low.y, high.x, high.y};
    const Box printable{low.x + margin(0), low.y + margin(1), high.x - margin(2),
                        high.y - margin(3)};
    writer.setSheet(sheet, printable, mmPerUnit);
}

void makePaper(const TvDbLayout& layout, ListWriter& writer, db::AttachedDrawings* attached)
{
    TvDbDatabase& database = *layout.database();
    Scene scene(database, writer, attached);
    makeHeader(database, writer);
    writer.setIsPaper();
    makeSheet(layout, writer);
    const std::vector<TvDbObjectId> viewports = layout.getViewportArray();
    if (!viewports.empty())
        scene.setOverallViewport(viewports.front());
    Scene::Frame frame;
    scene.drawBlock(layout.getBlockTableRecordId(), frame);
}

} // namespace

DisplayList DisplayList::ofLayout(TvDbObjectId id, const ListLimits& limits,
                                  db::AttachedDrawings* attached)
{
    DisplayList list;
    const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForNotify);
    if (!layout)
        return list;
    ListWriter writer(list, limits);
    if (layout->getBlockTableRecordId() == layout->database()->modelSpaceId())
        makeCurrentModel(*layout->database(), writer, attached);
    else
        makePaper(*layout, writer, attached);
    writer.finish();
    return list;
}

DisplayList DisplayList::ofModel(TvDbDatabase& database, const ListLimits& limits,
                                 db::AttachedDrawings* attached)
{
    DisplayList list;
    ListWriter writer(list, limits);
    makeCurrentModel(database, writer, attached);
    writer.finish();
    return list;
}

DisplayList DisplayList::ofView(TvDbObjectId id, const ListLimits& limits,
                                db::AttachedDrawings* attached)
{
    DisplayList list;
    const TvDbObjectPointer<TvDbViewTableRecord> view(id, TvDb::kForNotify);
    if (!view)
        return list;
    ListWriter writer(list, limits);
    makeModel(*id.database(), &*view, writer, attached);
    writer.finish();
    return list;
}

DisplayList DisplayList::ofBlock(TvDbObjectId id, const ListLimits& limits,
                                 db::AttachedDrawings* attached)
{
    DisplayList list;
    const TvDbObjectPointer<TvDbBlockTableRecord> block(id, TvDb::kForNotify);
    if (!block)
        return list;
    ListWriter writer(list, limits);
    Scene scene(*id.database(), writer, attached);
    makeHeader(*id.database(), writer);
    const db::Point base = block->origin();
    Look plain;
    Scene::Frame frame;
    plain = scene.looks().layer(0).look;
    plain.color = Color::foreground();
    frame.by = &plain;
    frame.map = TvGeMatrix3d::translation({-base.x, -base.y, -base.z});
    scene.drawBlock(id, frame);
    writer.finish();
    return list;
}

} // namespace gs
