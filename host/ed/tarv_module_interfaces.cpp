// Where module and program leave each other what they publish. Nothing here is owned.

#include "ed/tarv_palette_prop_manager.h"
#include "ed/tarv_sheet_set_internal.h"
#include "sheet_set_variables.h"

namespace {

TarvWSManager* g_workspaces = nullptr;
TarvikMainAppService* g_mainApp = nullptr;
TarvSheetSetInternal* g_sheetSets = nullptr;

} // namespace

TarvWSManager* tarvWSManager()
{
    return g_workspaces;
}

void tarvSetWSManager(TarvWSManager* manager)
{
    g_workspaces = manager;
}

TarvikMainAppService* tarvikMainAppService()
{
    return g_mainApp;
}

void tarvSetMainAppService(TarvikMainAppService* service)
{
    g_mainApp = service;
}

TarvSheetSetInternal* tarvGetSheetSetInternal()
{
    return g_sheetSets;
}

void tarvSetSheetSetInternal(TarvSheetSetInternal* module)
{
    g_sheetSets = module;
}

void ed::tellSheetSetModule(const TvString& variable, const VariableValue& value)
{
    const auto* number = std::get_if<std::int16_t>(&value);
    if (!number || !g_sheetSets)
        return;
    if (variable.compareNoCase(u"SSMPOLLTIME") == 0)
        g_sheetSets->OnSheetStatusPollTimeChanged(*number);
    else if (variable.compareNoCase(u"SSMSHEETSTATUS") == 0)
        g_sheetSets->OnSheetStatusModeChanged(*number);
}
