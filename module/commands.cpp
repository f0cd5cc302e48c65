#include "module/commands.h"

#include <core/new_sheet_set_wizard.h>
#include <core/not_available_yet.h>
#include <core/open_sheet_set.h>
#include <core/optional_module.h>
#include <core/session.h>
#include <core/watch_poller.h>
#include <ed/command_line.h>
#include <rx/tv_ed_command_stack.h>
#include <rx/tv_rx_dictionary.h>
#include <rx/tv_user_messages.h>
#include <sm/change_scope.h>
#include <sm/kv_db_util.h>

#include "module/palette_host.h"
#include "module/resource_texts.h"

namespace module {

namespace {

constexpr int kNoFlags = 0;
constexpr int kNoSheetSet = 514; // text

struct Command {
    const TvChar* globalName;
    int localName; ///< number of its text; 0: as the global one
    TvEdCommandFunction run;
};

// In the order in which they are added.
constexpr Command kCommands[] = {
    {u"SHEETSET", 600, [] { ShowSheetSetPalette(0); }},
    {u"SHEETSETHIDE", 604, &HideSheetSetPalette},
    {u"OPENSHEETSET", 601, &OpenSheetSetByDialog},
    {u"-OPENSHEETSET", 602, &OpenSheetSetByPrompt},
    {u"NEWSHEETSET", 603, &RunNewSheetSetWizard},
    {u"ARCHIVE", 605, &ArchiveSheetSet},
    {u"PLACEVIEW", 606, &PlaceViewCommand},
    {u"VIEWLABEL", 0, &InsertLabelOrCallout},
    {u"CALLOUT", 0, &InsertLabelOrCallout},
    {u"SMINSERTTOC", 0, &InsertSheetListTableCommand},
};

TvEdCommandStack* commandStack()
{
    return tvrxCast<TvEdCommandStack>(tvrxSysRegistry()->at(kTvRegisteredCommands));
}

TvString localNameOf(const Command& command)
{
    const TvString name = command.localName ? LoadResourceText(command.localName) : TvString();
    return name.isEmpty() ? TvString(command.globalName) : name;
}

/// Says that the command that runs is not built yet.
/// @param usual  its name where no command line runs it.
void sayNotAvailable(const TvChar* usual)
{
    const ed::CommandLine* line = ed::commandLine();
    const TvString running = line ? line->running() : TvString();
    core::sayNotAvailableYet(running.isEmpty() ? TvString(usual) : running);
}

} // namespace

void addCommands()
{
    for (const Command& command : kCommands)
        if (TvEdCommandStack* stack = commandStack())
            stack->addCommand(kCommandGroup, command.globalName, localNameOf(command), kNoFlags,
                              command.run, nullptr);
}

void removeCommands()
{
    if (TvEdCommandStack* stack = commandStack())
        stack->removeGroup(kCommandGroup);
}

void ShowSheetSetPalette(int /*which*/)
{
    if (!paletteHost().showPanel())
        sayNotAvailable(u"SHEETSET");
}

void HideSheetSetPalette()
{
    if (!paletteHost().hidePanel() && !core::sheetSetPanelMaker())
        sayNotAvailable(u"SHEETSETHIDE");
}

void ArchiveSheetSet()
{
    TvSmDatabase* database = GetCurrentDatabase();
    if (!database) {
        TvUserMessages::Message message;
        message.text = kNoSheetSet;
        message.icon = TvUserMessages::Icon::Warning;
        tvrxShowMessage(message);
        return;
    }
    std::vector<TvSmSheet*> sheets;
    KvDbUtil::GetAllSheetsInTheSubSet(database->getSheetSet(), sheets);
    using Archive = void (*)(std::vector<TvSmSheet*> sheets, TvSmDatabase * database);
    const auto archive = core::transmitModule().entry<Archive>("KvCmd_Archive");
    if (!archive)
        return;
    sm::ChangeScope change(core::answering(database));
    if (!change)
        return;
    archive(sheets, database);
    change.commit();
}

void PlaceViewCommand()
{
    sayNotAvailable(u"PLACEVIEW");
}

void InsertLabelOrCallout()
{
    if (!GetCurrentDatabase())
        return;
    // Rolled back on the way out, whatever was inserted: the blocks stand in the drawing.
    const auto change = sm::ChangeScope::withoutTest(core::answering(GetCurrentDatabase()));
    sayNotAvailable(u"VIEWLABEL");
}

void InsertSheetListTableCommand()
{
    sayNotAvailable(u"SMINSERTTOC");
}

} // namespace module
