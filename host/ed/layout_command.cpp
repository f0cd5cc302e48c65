#include <db/tv_db_host_application_services.h>
#include <db/tv_db_symbol_table.h>

#include "command_support.h"
#include "ed/layouts.h"
#include "ed/tv_db_layout_manager.h"
#include "host_command_list.h"

namespace ed {

namespace {

constexpr TvChar kOptions[] = u"Copy Delete New Rename Set ?";

/// Tells what came of it.
void tell(TvStatusCode status, const TvString& name, const TvDbDatabase& database)
{
    switch (status) {
    case TvStatus::Ok: return;
    case TvStatus::KeyNotFound: return say(Wording::NoLayout, {name});
    case TvStatus::DuplicateName: return say(Wording::NameTaken, {name});
    case TvStatus::InvalidName: return say(Wording::NameWrong, {name});
    case TvStatus::NameReserved:
    case TvStatus::NotApplicable: return say(Wording::ModelStays);
    case TvStatus::StillInUse: return say(Wording::LastLayoutStays);
    default: say(Wording::LayoutFailed, {name}); say(database.lastFailure());
    }
}

/// The first name of the pattern that no layout has.
template <class Named>
TvString freeName(const TvDbLayoutManager& manager, int first, Named named)
{
    for (int number = first;; ++number)
        if (const TvString name = named(number); !manager.layoutExists(name))
            return name;
}

struct Layouts {
    TvDbDatabase& database;
    TvDbLayoutManager& manager;
    TvString current;

    void copy()
    {
        const std::optional<TvString> source = askLine(Wording::AskLayoutCopy, current);
        if (!source)
            return;
        if (!manager.layoutExists(*source))
            return tell(TvStatus::KeyNotFound, *source, database);
        const TvString standard = freeName(manager, 2, [&](int number) {
            return textOf(Wording::CopiedName, {*source, numberText(number)});
        });
        if (const auto name = askLine(Wording::AskLayoutCopyName, standard))
            tell(manager.copyLayout(*source, *name), *name, database);
    }
    void erase()
    {
        if (const auto name = askLine(Wording::AskLayoutDelete, current))
            tell(manager.deleteLayout(*name), *name, database);
    }
    void make()
    {
        const TvString standard = freeName(manager, 1, [](int number) {
            return textOf(Wording::NewLayoutName, {numberText(number)});
        });
        TvDbObjectId layout, block;
        if (const auto name = askLine(Wording::AskLayoutNew, standard))
            tell(manager.createLayout(*name, layout, block), *name, database);
    }
    void rename()
    {
        const std::optional<TvString> before = askLine(Wording::AskLayoutRename, current);
        if (!before)
            return;
        if (!manager.layoutExists(*before))
            return tell(TvStatus::KeyNotFound, *before, database);
        if (const auto after = askLine(Wording::AskLayoutNewName))
            tell(manager.renameLayout(*before, *after), *after, database);
    }
    void show()
    {
        if (const auto name = askLine(Wording::AskLayoutSet, current))
            tell(manager.setCurrentLayout(*name), *name, database);
    }
    void list()
    {
        for (const TvDbObjectId id : db::layoutsInTabOrder(database)) {
            const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForNotify);
            const TvDbObjectPointer<TvDbBlockTableRecord> block(layout->getBlockTableRecordId(),
                                                                TvDb::kForNotify);
            say(Wording::LayoutRow,
                {layout->getLayoutName(), block ? block->getName() : TvString()});
        }
    }
};

} // namespace

void runLayout()
{
    TvDbDatabase* database = askedDrawing();
    TvDbLayoutManager* manager = tvdbHostApplicationServices()->layoutManager();
    if (!database || !manager)
        return;
    const std::optional<TvString> option =
        askKeyword(Wording::AskLayoutOption, Wording::KeysLayout, kOptions, u"Set");
    if (!option)
        return;
    Layouts layouts{*database, *manager, currentLayoutName(*database)};
    if (*option == u"Copy")
        layouts.copy();
    else if (*option == u"Delete")
        layouts.erase();
    else if (*option == u"New")
        layouts.make();
    else if (*option == u"Rename")
        layouts.rename();
    else if (*option == u"Set")
        layouts.show();
    else
        layouts.list();
}

} // namespace ed
