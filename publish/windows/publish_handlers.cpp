// What loading the windows of publishing brings: the commands of the panel, and the dialog that
// other modules ask for.

#include <QWidget>

#include <core/inspector_style.h>
#include <core/publish_options_dialog.h>
#include <core/session.h>
#include <core/watch_poller.h>
#include <panel/handler_installer.h>
#include <panel/panel_commands.h>
#include <publish/publish_commands.h>
#include <rx/resource_module.h>
#include <sm/change_scope.h>

#include "publish_windows/edit_subset_and_sheet_publish_dlg.h"
#include "publish_windows/tarv_dwf_publish_options_dialg.h"

namespace publish {

namespace {

bool editOptions(void* parent, TvSmDatabase& database, TvSmPublishOptions& options)
{
    CTarvDWFPublishOptionsDialg dialog(static_cast<QWidget*>(parent), &database, &options);
    return dialog.DoModal() == text::kIdOk;
}

void editPublishList(panel::SheetListPage& page)
{
    sm::ChangeScope scope(core::answering(GetCurrentDatabase()));
    if (!scope)
        return;
    const rx::ResourceContext ours(rx::sheetSetResourceName());
    CEditSubsetAndSheetPublishDlg dialog(scope.database(), nullptr);
    if (dialog.DoModal() == text::kIdOk && scope.commit())
        page.statusTimer().UpdateSheetStatusIfEnabled();
}

void editPublishOptions(panel::SheetListPage&)
{
    TvSmDatabase* database = GetCurrentDatabase();
    TvSmPublishOptions* options = database ? database->getSheetSet()->getPublishOptions() : nullptr;
    sm::ChangeScope scope(core::answering(options ? database : nullptr));
    if (!scope)
        return;
    const rx::ResourceContext ours(rx::sheetSetResourceName());
    const core::InspectorStyle style;
    if (editOptions(nullptr, *database, *options))
        scope.commit();
}

const panel::HandlerInstaller kInstaller([](panel::PanelCommands& commands) {
    addHandlers(commands);
    setAskForPageSetups(&choosePageSetups);
    commands.setHandler(panel::kEditPublishList, &editPublishList);
    commands.setHandler(panel::kPublishOptions, &editPublishOptions);
});

struct OptionsDialog {
    OptionsDialog() { core::setPublishOptionsDialog(&editOptions); }
    ~OptionsDialog() { core::setPublishOptionsDialog(nullptr); }
    OptionsDialog(const OptionsDialog&) = delete;
    OptionsDialog& operator=(const OptionsDialog&) = delete;
};
const OptionsDialog kOptionsDialog;

} // namespace

} // namespace publish
