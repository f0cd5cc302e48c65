#include "module/tarv_sheet_set_internal_imp.h"

#include <core/new_sheet_set_wizard.h>
#include <core/open_sheet_set.h>
#include <sm/kv_db_util.h>

#include "module/palette_host.h"

void TarvSheetSetInternalImp::GetCurrentLayoutSheetSetFile(TvString& out)
{
    out = TvString();
    TvDbDatabase* drawing = nullptr;
    const TvChar* path = nullptr;
    TvDbHandle layout;
    TvSmSheetSetMgr* manager = KvDbUtil::tarvGetSheetSetMgr();
    if (!manager || !KvDbUtil::GetCurrentLayout(drawing, path, layout))
        return;
    const std::unique_ptr<TvSmEnumerator<TvSmDatabase>> each(manager->getDatabaseEnumerator());
    while (TvSmDatabase* database = each->next()) {
        if (KvDbUtil::FindSheetFromSubset(database->getSheetSet(), path, layout)) {
            out = database->getFileName();
            return;
        }
    }
}

void TarvSheetSetInternalImp::OnSheetStatusPollTimeChanged(short seconds)
{
    if (core::SheetSetPanel* panel = module::paletteHost().panel())
        panel->setPollTime(seconds);
}

void TarvSheetSetInternalImp::OnSheetStatusModeChanged(short mode)
{
    if (core::SheetSetPanel* panel = module::paletteHost().panel())
        panel->setSheetStatusMode(mode);
}

void TarvSheetSetInternalImp::OpenSheetSetFile(const TvChar* path)
{
    if (path)
        ::OpenSheetSetFile(path);
}

void TarvSheetSetInternalImp::OpenSheetSetByDialog()
{
    ::OpenSheetSetByDialog();
}

void TarvSheetSetInternalImp::RunNewSheetSetWizard()
{
    ::RunNewSheetSetWizard();
}
