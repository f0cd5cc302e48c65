#include "ed/layouts.h"

#include <db/tv_db_dictionary.h>
#include <db/tv_db_host_application_services.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>

#include "ed/tv_db_layout_manager.h"
#include "ed/tv_editor.h"

namespace ed {

namespace {

bool isLayoutOf(TvDbObjectId id, TvDbObjectId block)
{
    const TvDbObjectPointer<TvDbLayout> layout(id, TvDb::kForNotify);
    return layout && !layout->isErased() && layout->getBlockTableRecordId() == block;
}

} // namespace

TvDbObjectId currentLayout(const TvDbDatabase& database)
{
    const TvDbObjectId shown = database.currentSpaceId();
    if (const TvDbObjectPointer<TvDbBlockTableRecord> block(shown, TvDb::kForNotify); block)
        if (const TvDbObjectId id = block->getLayoutId(); isLayoutOf(id, shown))
            return id;
    // Damaged drawings have blocks that name no layout.
    const TvDbObjectPointer<TvDbDictionary> layouts(database.layoutDictionaryId());
    if (!layouts)
        return {};
    for (const auto& [name, id] : layouts->entries())
        if (isLayoutOf(id, shown))
            return id;
    return {};
}

TvString currentLayoutName(const TvDbDatabase& database)
{
    const TvDbObjectPointer<TvDbLayout> layout(currentLayout(database));
    return layout ? layout->getLayoutName() : TvString();
}

TvStatusCode setCurrentLayout(TvDbDatabase& database, const TvString& name)
{
    const TvDbObjectPointer<TvDbDictionary> layouts(database.layoutDictionaryId());
    TvDbObjectId id;
    if (!layouts || layouts->getAt(name, id) != TvStatus::Ok)
        return TvStatus::KeyNotFound;
    return setCurrentLayout(database, id);
}

TvStatusCode setCurrentLayout(TvDbDatabase& database, TvDbObjectId id)
{
    TvDbObjectId block;
    bool isModel = false;
    {
        const TvDbObjectPointer<TvDbLayout> layout(id);
        if (!layout || layout->database() != &database)
            return TvStatus::NotThatObject;
        block = layout->getBlockTableRecordId();
        isModel = layout->isModelLayout();
    }
    if (database.currentSpaceId() == block)
        return TvStatus::Ok;
    const bool wasModel = database.tilemode();
    if (!isModel) {
        TvDbHeaderVar header(database);
        if (const TvStatusCode status = header.setpaperSpace(block); status != TvStatus::Ok)
            return status;
    }
    if (const TvStatusCode status = database.setTilemode(isModel); status != TvStatus::Ok)
        return status;
    if (TvEditor* editor = tvedEditor()) {
        if (wasModel != isModel)
            editor->fireSysVarChanged(u"TILEMODE");
        editor->fireSysVarChanged(u"CTAB");
    }
    if (TvDbLayoutManager* manager = tvdbHostApplicationServices()->layoutManager())
        manager->fireLayoutSwitched(id);
    return TvStatus::Ok;
}

} // namespace ed
