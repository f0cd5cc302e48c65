#include "ed/named_views.h"

#include <db/ge_values.h>
#include <db/symbol_names.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_viewport.h>

#include "ed/layouts.h"
#include "ed/system_variables.h"
#include "ed/view_history.h"

namespace ed {

namespace {

TvDbObjectId viewNamed(TvDbDatabase& database, const TvString& name)
{
    const TvDbObjectPointer<TvDbViewTable> table(database.symbolTableId(TvDb::SymbolTable::View));
    TvDbObjectId id;
    if (table)
        table->getIdAt(name, id);
    return id;
}

TvStatusCode addRecord(TvDbDatabase& database, const TvString& name, TvDbObjectId& out)
{
    TvDbObjectPointer<TvDbViewTable> table(database.symbolTableId(TvDb::SymbolTable::View),
                                           TvDb::kForWrite);
    if (!table)
        return table.openStatus();
    auto record = std::make_unique<TvDbViewTableRecord>();
    record->setName(name);
    if (const TvStatusCode status = table->add(out, record.get()))
        return status;
    record.release()->close();
    return TvStatus::Ok;
}

bool store(TvDbViewTableRecord& record, const View& view)
{
    db::RecordEditor fields = record.edit();
    return fields.setPoint("center", db::fromPoint(view.center)) &&
           fields.setReal("height", view.height) && fields.setReal("width", view.width()) &&
           fields.setReal("twist", view.twist) &&
           fields.setPoint("direction", db::fromVector(view.direction)) &&
           fields.setPoint("target", db::fromPoint(view.target)) &&
           fields.setReal("lens_length", view.lensLengthMm);
}

TvDbObjectId modelLayout(TvDbDatabase& database)
{
    const TvDbObjectPointer<TvDbBlockTableRecord> space(database.modelSpaceId());
    return space ? space->getLayoutId() : TvDbObjectId();
}

bool isModelLayout(TvDbObjectId id)
{
    const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForNotify);
    return layout && layout->isModelLayout();
}

/// The layout on which the view is to be shown.
TvDbObjectId placeOf(const TvDbViewTableRecord& record, TvDbDatabase& database)
{
    const TvDbObjectId noted = record.getLayout();
    if (noted.isValid() && isModelLayout(noted) != record.isPaperspaceView())
        return noted;
    if (!record.isPaperspaceView())
        return modelLayout(database);
    const TvDbObjectPointer<TvDbBlockTableRecord> paper(database.paperSpaceId());
    return paper ? paper->getLayoutId() : TvDbObjectId();
}

} // namespace

View viewOf(const TvDbViewTableRecord& record)
{
    View view;
    view.center = db::asPoint2d(record.centerPoint());
    view.height = record.height();
    view.aspect = record.width() / record.height();
    view.twist = record.viewTwist();
    view.direction = db::asVector(record.viewDirection());
    view.target = db::asPoint(record.target());
    view.lensLengthMm = record.fields().real("lens_length");
    return view;
}

TvStatusCode saveNamedView(TvDbDatabase& database, const TvString& name,
                           const std::optional<View>& view)
{
    if (!db::isSymbolName(name))
        return TvStatus::InvalidName;
    const TvDbObjectId where = currentViewObject(database);
    const std::optional<View> shown = view ? view : drawingView().view(where);
    if (!shown)
        return TvStatus::NotApplicable;
    // A window of a sheet shows model space, and its views are of that.
    const TvDbObjectPointer<TvDbLayout> layout(where, TvDb::kForNotify);
    const bool isPaper = layout && !layout->isModelLayout();
    TvDbObjectId id = viewNamed(database, name);
    if (id.isNull())
        if (const TvStatusCode status = addRecord(database, name, id))
            return status;
    const TvDbObjectPointer<TvDbViewTableRecord> record(id, TvDb::kForWrite);
    if (!record)
        return record.openStatus();
    if (!store(*record, *shown))
        return TvStatus::NotUnderstood;
    if (const TvStatusCode status = record->setIsPaperspaceView(isPaper))
        return status;
    return record->setLayout(isPaper ? where : modelLayout(database));
}

TvStatusCode restoreNamedView(TvDbDatabase& database, const TvString& name)
{
    const TvDbObjectPointer<TvDbViewTableRecord> record(viewNamed(database, name));
    if (!record)
        return TvStatus::KeyNotFound;
    const View view = viewOf(*record);
    if (!isUsable(view))
        return TvStatus::NotApplicable;
    TvDbObjectId where = currentViewObject(database);
    const TvDbObjectPointer<TvDbViewport> window(where, TvDb::kForNotify);
    if (!window || record->isPaperspaceView()) {
        where = placeOf(*record, database);
        if (const TvStatusCode status = setCurrentLayout(database, where))
            return status;
    }
    return changeView(where, view) ? TvStatus::Ok : TvStatus::NotApplicable;
}

TvStatusCode deleteNamedView(TvDbDatabase& database, const TvString& name)
{
    const TvDbObjectPointer<TvDbViewTableRecord> record(viewNamed(database, name), TvDb::kForWrite);
    return record ? record->erase() : TvStatus::KeyNotFound;
}

} // namespace ed
