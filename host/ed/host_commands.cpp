#include "ed/host_commands.h"

#include <rx/tv_ed_command_stack.h>

#include "command_texts.h"
#include "host_command_list.h"

namespace ed {

namespace {

struct Row {
    const TvChar* name;
    Wording localName;
    TvEdCommandFunction function;
};

// clang-format off
constexpr Row kCommands[] = {
    {u"NEW",    Wording::NameNew,    runNew},
    {u"OPEN",   Wording::NameOpen,   runOpen},
    {u"SAVE",   Wording::NameSave,   runSave},
    {u"QSAVE",  Wording::NameQSave,  runSave},
    {u"SAVEAS", Wording::NameSaveAs, runSaveAs},
    {u"CLOSE",  Wording::NameClose,  runClose},
    {u"QUIT",   Wording::NameQuit,   runQuit},
    {u"LAYOUT", Wording::NameLayout, runLayout},
    {u"-VIEW",  Wording::NameView,   runNamedView},
    {u"ZOOM",   Wording::NameZoom,   runZoom},
    {u"PAN",    Wording::NamePan,    runPan},
    {u"REGEN",  Wording::NameRegen,  runRegen},
    {u"AUDIT",  Wording::NameAudit,  runAudit},
    {u"SCRIPT", Wording::NameScript, runScriptCommand},
    {u"HELP",   Wording::NameHelp,   runHelp},
    {u"SETVAR", Wording::NameSetVar, runSetVariable},
    {u"U",      Wording::NameU,      runUndoOne},
    {u"UNDO",   Wording::NameUndo,   runUndo},
    {u"REDO",   Wording::NameRedo,   runRedo},
    {u"MREDO",  Wording::NameMRedo,  runMultipleRedo},
};

constexpr struct {
    const TvChar *name, *command;
} kAliases[] = {
    {u"-LAYOUT", u"LAYOUT"}, {u"LO", u"LAYOUT"}, {u"-V", u"-VIEW"},  {u"Z", u"ZOOM"},
    {u"P", u"PAN"},          {u"RE", u"REGEN"},  {u"SCR", u"SCRIPT"}, {u"SET", u"SETVAR"},
    {u"?", u"HELP"},         {u"EXIT", u"QUIT"},
};
// clang-format on

} // namespace

bool addHostCommands(TvEdCommandStack& stack)
{
    for (const TvEdCommand* command : stack.commands())
        if (command->groupName().compareNoCase(kHostCommandGroup) == 0)
            return false;
    for (const Row& row : kCommands)
        stack.addCommand(kHostCommandGroup, row.name, textOf(row.localName), 0, row.function);
    return true;
}

TvString aliasedCommand(const TvString& typed)
{
    const TvString name = typed.startsWith(u"_") ? typed.substr(1) : typed;
    for (const auto& alias : kAliases)
        if (name.compareNoCase(alias.name) == 0)
            return alias.command;
    return {};
}

} // namespace ed
