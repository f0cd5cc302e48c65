#include "selection_commands.h"

#include <core/session.h>
#include <core/watch_poller.h>
#include <rx/resource_module.h>
#include <sm/change_scope.h>

#include "panel_windows/create_sheet_selection_dlg.h"
#include "panel_windows/sheet_set_dlg.h"
#include "panel_windows/sheet_set_manage_dlg.h"

namespace panel {

namespace {

/// Under the lock of the current set; OK keeps what the dialog changed.
template <class Make>
void runLocked(Make make)
{
    sm::ChangeScope scope(core::answering(GetCurrentDatabase()));
    if (!scope)
        return;
    const rx::ResourceContext ours(rx::sheetSetResourceName());
    auto dialog = make(scope.database());
    if (dialog.DoModal() == text::kIdOk)
        scope.commit();
}

void manage(CSheetSetDlg& page)
{
    const std::vector<TvString> selections = page.menus().selectionSets();
    runLocked([&](TvSmDatabase* database) { return CSheetSetManageDlg(database, selections); });
}

void create(CSheetSetDlg& page)
{
    std::vector<TvString> handles;
    for (const TreeItem* item : page.page().tree().GetSelectedItems())
        handles.push_back(item->handle());
    if (!handles.empty())
        runLocked(
            [&](TvSmDatabase* database) { return CCreateSheetSelectionDlg(database, handles); });
}

} // namespace

void addSelectionCommands(CSheetSetDlg& page)
{
    page.commands().setHandler(kManageSelections, [&page](SheetListPage&) { manage(page); });
    page.commands().setHandler(kCreateSelection, [&page](SheetListPage&) { create(page); });
}

} // namespace panel
