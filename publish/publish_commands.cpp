#include "publish/publish_commands.h"

#include <algorithm>

#include <base/kv_file_system.h>
#include <core/optional_module.h>
#include <core/session.h>
#include <core/watch_poller.h>
#include <ed/tv_ap_doc_manager.h>
#include <panel/panel_commands.h>
#include <plot/publish_request.h>
#include <rx/tv_user_messages.h>
#include <sm/change_scope.h>
#include <sm/publishing.h>

#include "page_setup_source.h"

namespace publish {

namespace {

constexpr int kTries = 6, kDelayMs = 500;

// Texts.
constexpr int kSheetSets = 511, kPageSetupTitle = 525;
constexpr int kNotReadable = 504, kNoPageSetups = 524, kIsOpen = 526;

AskForPageSetups& askForPageSetups()
{
    static AskForPageSetups ask;
    return ask;
}

template <class Entry>
Entry plotEntry(const char* name)
{
    return core::plotCommandsModule().entry<Entry>(name);
}

/// What the plot module makes: known to it by these numbers.
std::int32_t kindOf(int command)
{
    switch (command) {
    case 4: return 2;
    case 5: return 3;
    case 6: return 1;
    default: return 0;
    }
}

std::vector<TvSmSheet*> sheetsOf(const PublishSelection& selection)
{
    std::vector<TvSmSheet*> sheets;
    CollectSelectedPublishableSheets(selection.components, sheets);
    return sheets;
}

template <class Fill>
void publishSheets(const PublishSelection& selection, Fill fill)
{
    if (!selection.database)
        return;
    std::vector<TvSmSheet*> sheets = sheetsOf(selection);
    if (selection.isReversed)
        std::ranges::reverse(sheets);
    const auto run = plotEntry<plot::PublishSheetSet>("KvCmd_PublishSheetSet");
    if (!run)
        return;
    PublishRequest request;
    fill(request, sheets);
    run(&sheets, selection.database->getSheetSet(), &request);
}

TvUserMessages::Answer say(int text, const TvString& argument, int caption,
                           TvUserMessages::Buttons buttons = TvUserMessages::Buttons::Ok)
{
    TvUserMessages::Message message;
    message.text = text;
    message.caption = caption;
    message.arguments = {argument};
    message.buttons = buttons;
    message.icon = TvUserMessages::Icon::Information;
    return tvrxShowMessage(message);
}

/// The set's reference, asked for until there is one; null when the user gave up.
const TvSmFileReference* neededPageSetups(TvSmDatabase& database, const AskForPageSetups& ask)
{
    for (;;) {
        if (const TvSmFileReference* reference = database.getSheetSet()->getAltPageSetups())
            return reference;
        const auto answer =
            say(kNoPageSetups, TvString(), kSheetSets, TvUserMessages::Buttons::OkCancel);
        if (answer != TvUserMessages::Answer::Ok || database.getLockStatus() != 0 || !ask ||
            !ask(database))
            return nullptr;
    }
}

void editPageSetups(TvDbDatabase& drawing, const TvSmDatabase& database, bool isOpen)
{
    if (const auto run = plotEntry<plot::PageSetupDialog>("KvCmd_PageSetupDlg"))
        run(&drawing, database.getSheetSet()->getName(), isOpen);
}

PublishSelection selectionOf(const panel::SheetListPage& page, panel::PanelMenus& menus)
{
    PublishSelection selection;
    selection.database = GetCurrentDatabase();
    page.GetSelectedComponents(selection.components);
    selection.isReversed = menus.reverseOrder();
    return selection;
}

} // namespace

void publishAs(const PublishSelection& selection, int command)
{
    publishSheets(selection,
                  [&](PublishRequest& request, const auto&) { request.kind = kindOf(command); });
}

void publishWithPageSetup(const PublishSelection& selection, const TvString& name)
{
    publishSheets(selection, [&](PublishRequest& request, const std::vector<TvSmSheet*>& sheets) {
        request.usePageSetup = true;
        request.multipleSheets = sheets.size() > 1;
        request.pageSetupName = name;
    });
}

void openPublishDialog(const PublishSelection& selection)
{
    TvSmPublishOptions* options =
        selection.database ? selection.database->getSheetSet()->getPublishOptions() : nullptr;
    const auto run = plotEntry<plot::PublishDialog>("KvCmd_PublisDlg");
    if (!options || !run)
        return;
    std::vector<TvSmSheet*> sheets = sheetsOf(selection);
    run(options, selection.database, &sheets);
}

void editPdfOptions(const PublishSelection& selection)
{
    const auto run = plotEntry<plot::PdfPublishOption>("KvCmd_PDFPublishOption");
    if (!run || selection.components.empty())
        return;
    sm::ChangeScope scope(core::answering(selection.database));
    if (!scope)
        return;
    run(scope.database());
    scope.commit();
}

void editStampSettings()
{
    if (const auto run = plotEntry<plot::PlotStampSetting>("KvCmd_PlotStampSetting"))
        run();
}

void managePageSetups(TvSmDatabase* database, const AskForPageSetups& ask)
{
    const TvSmFileReference* reference = database ? neededPageSetups(*database, ask) : nullptr;
    if (!reference)
        return;
    const TvString path =
        core::answersInTime(reference->getFileName()) ? reference->resolveFileName() : TvString();
    if (!KvFileSystem::isFileExisting(path, kTries, kDelayMs)) {
        say(kNoPageSetups, reference->getFileName(), kSheetSets);
        return;
    }
    const TvApDocument* document =
        tvDocManagerPtr() ? tvDocManagerPtr()->documentOf(path) : nullptr;
    if (document) {
        say(kIsOpen, path, kPageSetupTitle);
        editPageSetups(*document->database(), *database, true);
        return;
    }
    TvDbDatabase drawing(false, true);
    if (drawing.readDbByDocName(path) == TvStatus::Ok)
        editPageSetups(drawing, *database, false);
    else
        say(kNotReadable, path, kSheetSets);
}

void setAskForPageSetups(AskForPageSetups ask)
{
    askForPageSetups() = std::move(ask);
}

void addHandlers(panel::PanelCommands& commands, int patienceMs)
{
    panel::PanelMenus& menus = commands.menus();
    menus.setPageSetups([source = std::make_shared<PageSetupSource>(patienceMs)](
                            const TvSmDatabase& database) { return source->names(database); });
    for (int id = panel::kPublishFirst; id <= panel::kPublishLast; ++id)
        commands.setHandler(id, [&menus, id](panel::SheetListPage& page) {
            publishAs(selectionOf(page, menus), id);
        });
    commands.setPageSetupHandler([&menus](panel::SheetListPage& page, const TvString& name) {
        publishWithPageSetup(selectionOf(page, menus), name);
    });
    commands.setHandler(panel::kPublishDialog, [&menus](panel::SheetListPage& page) {
        openPublishDialog(selectionOf(page, menus));
    });
    commands.setHandler(panel::kPdfOptions, [&menus](panel::SheetListPage& page) {
        editPdfOptions(selectionOf(page, menus));
    });
    commands.setHandler(panel::kStampSettings, [](panel::SheetListPage&) { editStampSettings(); });
    commands.setHandler(panel::kPageSetups, [](panel::SheetListPage&) {
        managePageSetups(GetCurrentDatabase(), askForPageSetups());
    });
}

} // namespace publish
