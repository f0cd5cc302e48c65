#include <db/tv_db_symbol_table.h>

#include "command_support.h"
#include "ed/named_views.h"
#include "host_command_list.h"

namespace ed {

namespace {

constexpr TvChar kOptions[] = u"? Delete Restore Save";

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

void save(TvDbDatabase& database)
{
    const std::optional<TvString> name = askLine(Wording::AskViewSave);
    if (!name)
        return;
    if (hasView(database, *name) && !askYesNo(Wording::AskViewReplace, false).value_or(false))
        return;
    tell(saveNamedView(database, *name), *name);
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
    if (*option == u"Save")
        return save(*database);
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
