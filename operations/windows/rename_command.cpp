#include <core/session.h>
#include <operations/rename_walk.h>
#include <panel/handler_installer.h>
#include <panel/panel_commands.h>
#include <rx/resource_module.h>
#include <sm/tv_sm_sheet.h>

#include "operations_windows/rename_and_renumber_dwg_dlg.h"

namespace {

/// A walk over the sheets of the panel's page.
class PageWalk : public operations::RenameWalkPorts
{
public:
    explicit PageWalk(panel::SheetListPage& page) : m_page(page) {}
    TvSmSheet* selectedSheet() override
    {
        return tvrxCast<TvSmSheet>(m_page.GetSelectedComponent());
    }
    operations::RenameStep runDialog(TvSmSheet& sheet, TvString& layoutName) override
    {
        CRenameAndRenumberDwgDlg dialog(&sheet, GetCurrentDatabase());
        layoutName = dialog.sheet().names().layout;
        const int result = dialog.DoModal();
        return result == CTvUiDialog::kFailed ? operations::RenameStep::Cancel
                                              : static_cast<operations::RenameStep>(result);
    }
    void labelChanged(const TvString& sheet) override
    {
        m_page.tree().UpdateSheetLabel(m_page.tree().itemOf(sheet));
    }
    void selectPrevious() override { m_page.SelectPreviousSheet(); }
    void selectNext() override { m_page.SelectNextSheet(); }

private:
    panel::SheetListPage& m_page;
};

void renameSheets(panel::SheetListPage& page)
{
    const rx::ResourceContext ours(rx::sheetSetResourceName());
    TvSmDatabase* database = GetCurrentDatabase();
    if (database != page.tree().database())
        return;
    PageWalk walk(page);
    if (operations::renameSheets(database, walk))
        page.statusTimer().UpdateSheetStatusIfEnabled();
}

const panel::HandlerInstaller kInstaller([](panel::PanelCommands& commands) {
    commands.setHandler(panel::kRenameSheets, &renameSheets);
});

} // namespace
