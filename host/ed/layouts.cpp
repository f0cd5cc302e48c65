#include "ed/layouts.h"

#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>

#include "ed/tv_editor.h"

namespace ed {

TvDbObjectId currentLayout(const TvDbDatabase& database)
{
    const TvDbObjectPointer<TvDbDictionary> layouts(database.layoutDictionaryId());
    if (!layouts)
        return {};
    const TvDbObjectId shown = database.currentSpaceId();
    const std::unique_ptr<TvDbDictionaryIterator> each(layouts->newIterator());
    for (; !each->done(); each->next()) {
        const TvDbObjectPointer<TvDbLayout> layout(each->objectId());
        if (layout && layout->getBlockTableRecordId() == shown)
            return each->objectId();
    }
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
    return TvStatus::Ok;
}

} // namespace ed
