#include "module/exports.h"

#include <core/inspector_style.h>
#include <core/publish_options_dialog.h>
#include <core/session.h>
#include <core/sheet_data.h>
#include <rx/resource_module.h>
#include <sm/kv_db_util.h>
#include <sm/tv_sm_view_category.h>

#include "module/kv_sheet_set_app.h"
#include "module/palette_host.h"
#include "module/tarv_sheet_set_cuix_manager.h"

int tvrxEntryPoint(int message, void* appId)
{
    return module::application().entryPoint(message, appId);
}

int tvrxGetApiVersion()
{
    return TvRx::kApiVersion;
}

void CloseSheetSet()
{
    CloseCurrentSheetSet();
    module::paletteHost().hidePanel();
}

bool IsInSheetSet()
{
    TvSmSheetSetMgr* manager = KvDbUtil::tarvGetSheetSetMgr();
    if (!manager)
        return false;
    const std::unique_ptr<TvSmEnumerator<TvSmDatabase>> each(manager->getDatabaseEnumerator());
    return each->next() != nullptr;
}

void ImportLayoutAsSheet(const TvString* name, const std::vector<TvString>* layouts)
{
    core::SheetSetPanel* panel = module::paletteHost().panel();
    if (panel && name && layouts)
        panel->importLayoutsAsSheets(*name, *layouts);
}

void ShowEditTocDialog(void* /*parent*/, const TvDbObjectId* /*tableId*/)
{
    const rx::ResourceContext ours(rx::sheetSetResourceName());
}

void KvCmd_DWFPublishOption(void* parent, TvSmDatabase* database, TvSmPublishOptions* options)
{
    const rx::ResourceContext ours(rx::sheetSetResourceName());
    const core::InspectorStyle style;
    if (core::publishOptionsDialog() && database && options)
        core::publishOptionsDialog()(parent, *database, *options);
}

void KvCmd_GetViewCategoryFromCurSheetSet(std::vector<TvString>* out)
{
    const TvSmDatabase* database = GetDatabaseOfActiveDrawing();
    if (!database || !out)
        return;
    const std::unique_ptr<TvSmEnumerator<TvSmViewCategory>> each(
        database->getSheetSet()->getViewCategories()->getEnumerator());
    TvString name;
    while (const TvSmViewCategory* category = each->next())
        out->push_back(category->getName(name));
}

ITarvPalettePropManager* GetCuixManager()
{
    return module::cuixManager();
}
