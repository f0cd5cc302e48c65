#include <db/symbol_names.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_status.h>

#include "command_support.h"
#include "ed/named_views.h"
#include "ed/prompts.h"
#include "host_command_list.h"
#include "zoom.h"

namespace ed {

namespace {

constexpr TvChar kOptions[] = u"? Delete Restore Save Window";

void tell(TvStatusCode status, const TvString& name)
{
    switch (status) {
    case TvStatus::Ok: return;
    case TvStatus::KeyNotFound: return say(Wording::NoView, {name});
    case TvStatus::InvalidName: return say(Wording::NameWrong, {name});
    case TvStatus::NotApplicable: return say(Wording::CannotShow);
    default: say(Wording::ViewFailed, {name});
    }
}

bool hasView(TvDbDatabase& database, const TvString& name)
{
    const TvDbObjectPointer<TvDbViewTable> table(database.symbolTableId(TvDb::SymbolTable::View));
    return table && table->has(name);
}

void list(TvDbDatabase& database)
{
    const TvDbObjectPointer<TvDbViewTable> table(database.symbolTableId(TvDb::SymbolTable::View));
    if (!table)
        return;
    for (const TvDbObjectId id : table->recordIds())
        if (const TvDbObjectPointer<TvDbViewTableRecord> view(id, TvDb::kForNotify); view)
            say(Wording::ViewRow,
                {view->getName(),
                 textOf(view->isPaperspaceView() ? Wording::SpacePaper : Wording::SpaceModel)});
}

/// The part of what is shown that lies between two points; nullopt when the user gave up.
std::optional<View> askWindow(TvDbDatabase& database)
{
    const std::optional<View> now = drawingView().view(currentViewObject(database));
    TvGePoint3d corner, opposite;
    tvedInitGet(kNoEmpty, nullptr);
    if (!now || tvedGetPoint(nullptr, textOf(Wording::AskCorner).kwszPtr(), corner) !=
                    static_cast<int>(TvStatus::Normal))
        return std::nullopt;
    tvedInitGet(kNoEmpty, nullptr);
    if (tvedGetCorner(corner, textOf(Wording::AskOtherCorner).kwszPtr(), opposite) !=
        static_cast<int>(TvStatus::Normal))
        return std::nullopt;
    const std::optional<View> view = viewBetween(*now, corner, opposite);
    if (!view)
        say(Wording::CannotShow);
    return view;
}

void save(TvDbDatabase& database, bool isWindow)
{
    const std::optional<TvString> name = askLine(Wording::AskViewSave);
    if (!name)
        return;
    if (!db::isSymbolName(*name)) // before its window is asked for
        return tell(TvStatus::InvalidName, *name);
    if (hasView(database, *name) && !askYesNo(Wording::AskViewReplace, false).value_or(false))
        return;
    const std::optional<View> view = isWindow ? askWindow(database) : std::nullopt;
    if (!isWindow || view)
        tell(saveNamedView(database, *name, view), *name);
}

} // namespace

void runNamedView()
{
    TvDbDatabase* database = askedDrawing();
    if (!database)
        return;
    const std::optional<TvString> option =
        askKeyword(Wording::AskViewOption, Wording::KeysView, kOptions, u"Save");
    if (!option)
        return;
    if (*option == u"?")
        return list(*database);
    if (*option == u"Save" || *option == u"Window")
        return save(*database, *option == u"Window");
    const bool isDelete = *option == u"Delete";
    const std::optional<TvString> name =
        askLine(isDelete ? Wording::AskViewDelete : Wording::AskViewRestore);
    if (name)
        tell(isDelete ? deleteNamedView(*database, *name) : restoreNamedView(*database, *name),
             *name);
}

void runRegen()
{
    if (TvDbDatabase* database = askedDrawing())
        drawingView().regenerate(*database);
}

} // namespace ed
