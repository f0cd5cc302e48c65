#include "ed/drawing_view.h"

#include <algorithm>
#include <cmath>

#include <db/ge_values.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_viewport.h>

#include "ed/layouts.h"
#include "ed/system_variables.h"

namespace ed {

namespace {

constexpr TvChar kActive[] = u"*Active";
constexpr double kUnmeasured = 1e19; // extents that nobody measured lie beyond

DrawingView* g_view = nullptr;

ExtentsSource& extentsSource()
{
    static ExtentsSource source;
    return source;
}

/// The names of the fields that differ between the records that hold views.
struct ViewFields {
    const char* center;
    const char* height;
    const char* width; ///< null: its window's shape tells it
};
constexpr ViewFields kModelFields = {"center", "height", "width"};
constexpr ViewFields kViewportFields = {"view_center", "view_height", nullptr};

View viewOf(const TvDbObject& object, const ViewFields& names)
{
    const db::RecordView fields = object.fields();
    View view;
    view.center = db::asPoint2d(fields.point(names.center));
    view.height = fields.real(names.height);
    view.twist = fields.real("twist");
    view.direction = db::asVector(fields.point("direction"));
    view.target = db::asPoint(fields.point("target"));
    view.lensLengthMm = fields.real("lens_length");
    const double width = names.width ? fields.real(names.width) : 0;
    view.aspect = width / view.height;
    return view;
}

/// What makes sense of it: drawings hold zeros and worse.
View mended(View view)
{
    if (!(view.height > 0) || !std::isfinite(view.height))
        view.height = 1;
    if (!(view.aspect > 0) || !std::isfinite(view.aspect))
        view.aspect = 1;
    if (!std::isfinite(view.center.x) || !std::isfinite(view.center.y))
        view.center = {};
    if (!std::isfinite(view.direction.length()) || view.direction.isZeroLength())
        view.direction = TvGeVector3d::zAxis();
    if (isUsable(view))
        return view;
    View plain;
    plain.center = view.center;
    plain.height = view.height;
    plain.aspect = view.aspect;
    return isUsable(plain) ? plain : View();
}

bool store(TvDbObject& object, const ViewFields& names, const View& view)
{
    db::RecordEditor fields = object.edit();
    bool done = fields.setPoint(names.center, db::fromPoint(view.center)) &&
                fields.setReal(names.height, view.height) && fields.setReal("twist", view.twist) &&
                fields.setPoint("direction", db::fromVector(view.direction)) &&
                fields.setPoint("target", db::fromPoint(view.target)) &&
                fields.setReal("lens_length", view.lensLengthMm);
    if (done && names.width)
        done = fields.setReal(names.width, view.width());
    return done;
}

/// @p wanted in a window of another shape, all of it.
View fitted(View wanted, double aspect)
{
    wanted.height = std::max(wanted.height, wanted.width() / aspect);
    wanted.aspect = aspect;
    return wanted;
}

/// The first of its name counts, as the others are the windows beside it.
TvDbObjectId activeModelRecord(TvDbDatabase& database)
{
    const TvDbObjectPointer<TvDbViewportTable> table(
        database.symbolTableId(TvDb::SymbolTable::Viewport));
    if (!table)
        return {};
    for (const TvDbObjectId id : table->recordIds())
        if (const TvDbObjectPointer<TvDbViewportTableRecord> record(id, TvDb::kForNotify);
            record && record->getName().compareNoCase(kActive) == 0)
            return id;
    return {};
}

TvDbObjectId makeActiveModelRecord(TvDbDatabase& database)
{
    TvDbObjectPointer<TvDbViewportTable> table(database.symbolTableId(TvDb::SymbolTable::Viewport),
                                               TvDb::kForWrite);
    if (!table)
        return {};
    auto record = std::make_unique<TvDbViewportTableRecord>();
    record->setName(kActive);
    record->edit().setPoint("upper_right", {1, 1, 0});
    TvDbObjectId id;
    if (table->add(id, record.get()) != TvStatus::Ok)
        return {};
    record.release()->close();
    return id;
}

/// Where the view of a layout or viewport is kept.
struct Place {
    enum Kind { None, Model, Sheet, Window } kind = None;
    TvDbObjectId holder; ///< null: nothing keeps it yet
};

Place placeOf(TvDbObjectId where)
{
    if (!where.isValid())
        return {};
    if (const TvDbObjectPointer<TvDbViewport> window(where, TvDb::kForNotify); window)
        return {window->isOverall() ? Place::Sheet : Place::Window, where};
    const TvDbObjectPointer<TvDbLayout> layout(where, TvDb::kForNotify);
    if (!layout)
        return {};
    if (layout->isModelLayout())
        return {Place::Model, activeModelRecord(*where.database())};
    const std::vector<TvDbObjectId> viewports = layout->getViewportArray();
    return {Place::Sheet, viewports.empty() ? TvDbObjectId() : viewports.front()};
}

/// A little more than that box, seen from above.
View viewOfBox(const db::Point& low, const db::Point& high)
{
    constexpr double kAround = 1.05;
    View view;
    view.center = {(low.x + high.x) / 2, (low.y + high.y) / 2};
    view.height = (high.y - low.y) * kAround;
    view.aspect = (high.x - low.x) / (high.y - low.y);
    return mended(view);
}

/// Of what has no record yet.
View firstView(TvDbObjectId where)
{
    const TvDbObjectPointer<TvDbLayout> layout(where, TvDb::kForNotify);
    db::Point low, high;
    if (layout && !layout->isModelLayout() && layout->getPaperArea(low, high) == TvStatus::Ok)
        return viewOfBox(low, high);
    const db::Record& header = where.database()->headerRecord();
    return viewOfBox(header.point("LIMMIN"), header.point("LIMMAX"));
}

TvDbExtents measured(const db::Point& low, const db::Point& high)
{
    const bool isSet = std::abs(low.x) < kUnmeasured && std::abs(high.x) < kUnmeasured &&
                       low.x <= high.x && low.y <= high.y;
    return isSet ? TvDbExtents(db::asPoint(low), db::asPoint(high)) : TvDbExtents();
}

} // namespace

std::optional<View> StoredDrawingView::view(TvDbObjectId where) const
{
    const Place place = placeOf(where);
    if (place.kind == Place::None)
        return std::nullopt;
    if (place.holder.isNull())
        return firstView(where);
    const TvDbObjectPointer<TvDbObject> holder(place.holder, TvDb::kForNotify);
    if (!holder)
        return std::nullopt;
    if (place.kind == Place::Model)
        return mended(viewOf(*holder, kModelFields));
    View view = viewOf(*holder, kViewportFields);
    view.aspect = holder->fields().real("width") / holder->fields().real("height");
    return mended(view);
}

bool StoredDrawingView::setView(TvDbObjectId where, const View& wanted)
{
    const std::optional<View> now = view(where);
    if (!now || !isUsable(wanted))
        return false;
    const View next = fitted(wanted, now->aspect);
    if (!isUsable(next))
        return false;
    if (next == *now)
        return true;
    Place place = placeOf(where);
    if (place.holder.isNull())
        place.holder = place.kind == Place::Model ? makeActiveModelRecord(*where.database())
                                                  : db::addOverallViewport(where);
    if (place.kind == Place::Model) {
        const TvDbObjectPointer<TvDbViewportTableRecord> record(place.holder, TvDb::kForWrite);
        return record && store(*record, kModelFields, next);
    }
    const TvDbObjectPointer<TvDbViewport> viewport(place.holder, TvDb::kForWrite);
    if (!viewport || (place.kind == Place::Window && viewport->isLocked()) ||
        !store(*viewport, kViewportFields, next))
        return false;
    if (place.kind == Place::Window)
        return true;
    // The viewport of the sheet as a whole is as large as what it shows.
    db::RecordEditor fields = viewport->edit();
    return fields.setPoint("center", db::fromPoint(next.center)) &&
           fields.setReal("width", next.width()) && fields.setReal("height", next.height);
}

TvDbExtents StoredDrawingView::extents(TvDbObjectId where) const
{
    const Place place = placeOf(where);
    if (place.kind == Place::None)
        return {};
    if (extentsSource())
        if (TvDbExtents found = extentsSource()(where); !found.isEmpty())
            return found;
    const TvDbDatabase& database = *where.database();
    if (place.kind != Place::Sheet)
        return measured(database.extmin(), database.extmax());
    TvDbObjectId sheet = where;
    if (const TvDbObjectPointer<TvDbViewport> viewport(where, TvDb::kForNotify); viewport)
        if (const TvDbObjectPointer<TvDbBlockTableRecord> block(viewport->ownerId(),
                                                                TvDb::kForNotify);
            block)
            sheet = block->getLayoutId();
    const TvDbObjectPointer<TvDbLayout> layout(sheet, TvDb::kForNotify);
    db::Point low, high;
    return layout && layout->getExtents(low, high) == TvStatus::Ok ? measured(low, high)
                                                                   : TvDbExtents();
}

DrawingView& drawingView()
{
    static StoredDrawingView stored;
    return g_view ? *g_view : stored;
}

void setDrawingView(DrawingView* view)
{
    g_view = view;
}

void setExtentsSource(ExtentsSource source)
{
    extentsSource() = std::move(source);
}

TvDbObjectId currentViewObject(TvDbDatabase& database)
{
    const TvDbObjectId layout = currentLayout(database);
    const std::optional<VariableValue> number = variable(u"CVPORT");
    const auto* window = number ? std::get_if<std::int16_t>(&*number) : nullptr;
    if (database.tilemode() || !window || *window < 2)
        return layout;
    const TvDbObjectPointer<TvDbLayout> sheet(layout);
    const std::vector<TvDbObjectId> all =
        sheet ? sheet->getViewportArray() : std::vector<TvDbObjectId>();
    return static_cast<std::size_t>(*window) <= all.size() ? all[*window - 1] : layout;
}

} // namespace ed
