#include <base/tv_db_handle.h>
#include <db/drawing_audit.h>
#include <db/tv_db_database.h>
#include <db/tv_status.h>
#include <resources/texts.h>
#include <rx/tv_ed_command_stack.h>
#include <rx/tv_rx_dictionary.h>

#include "command_support.h"
#include "ed/command_line.h"
#include "ed/host_commands.h"
#include "ed/program_control.h"
#include "ed/script.h"
#include "ed/system_variables.h"
#include "ed/user_prompts.h"
#include "host_command_list.h"

namespace ed {

namespace {

/// What the finding is about, in words.
TvString wordsOf(const db::DrawingFinding& finding)
{
    const auto filled = [](int number, const std::vector<TvString>& arguments) {
        const std::vector<base::FormatArgument> packed(arguments.begin(), arguments.end());
        return TvString().formatArguments(text::find(number), packed);
    };
    const TvString words = filled(static_cast<int>(finding.rule), finding.arguments);
    return finding.status
               ? words
               : words + u" " +
                     filled(static_cast<int>(finding.status.reason()), finding.status.arguments());
}

/// The line about one of the host's own commands; empty for others.
TvString helpLine(const TvString& globalName)
{
    constexpr int kFirstName = static_cast<int>(Wording::NameNew);
    constexpr int kLastName = static_cast<int>(Wording::NameMRedo);
    constexpr int kFirstHelp = static_cast<int>(Wording::HelpNew);
    for (int name = kFirstName; name <= kLastName; ++name)
        if (globalName.compareNoCase(text::find(name)) == 0)
            return text::find(kFirstHelp + (name - kFirstName));
    return {};
}

void tellOf(const TvEdCommand& command)
{
    say(Wording::HelpRow, {command.localName(), helpLine(command.globalName())});
}

} // namespace

void runAudit()
{
    TvDbDatabase* database = askedDrawing();
    if (!database)
        return;
    const std::optional<bool> wantsFix = askYesNo(Wording::AskAuditFix, false);
    if (!wantsFix)
        return;
    db::DrawingRepair repair;
    if (*wantsFix)
        repair = db::repairDrawing(*database);
    else
        repair.findings = db::auditDrawing(*database);
    int counts[3] = {};
    for (const db::DrawingFinding& finding : repair.findings) {
        ++counts[static_cast<int>(finding.severity)];
        say(finding.isFixed ? Wording::AuditRowFixed : Wording::AuditRow,
            {db::auditCode(finding.rule),
             finding.handle ? base::hexText(finding.handle) : TvString(), wordsOf(finding)});
    }
    say(Wording::AuditCounts,
        {numberText(counts[0]), numberText(counts[1]), numberText(counts[2])});
    if (*wantsFix)
        say(Wording::AuditFixed, {numberText(repair.fixed), numberText(repair.left)});
}

void runScriptCommand()
{
    const CommandLine* line = commandLine();
    if (line && line->isScripting())
        return say(Wording::ScriptNested);
    const std::vector<TvString> paths =
        askFiles({Wording::TitleScript, Wording::AskScript, {}, u"scr", u"RunScript"});
    if (!paths.empty())
        if (const base::Status status = runScript(paths.front()); !status)
            say(status);
}

void runHelp()
{
    auto* stack = tvrxCast<TvEdCommandStack>(tvrxSysRegistry()->at(kTvRegisteredCommands));
    const std::optional<TvString> topic = askLine(Wording::AskHelp);
    if (!topic || !stack)
        return;
    const TvString aliased = aliasedCommand(*topic);
    const TvEdCommand* command = stack->lookupCmd(aliased.isEmpty() ? *topic : aliased);
    ProgramControl* program = programControl();
    if (program && program->showHelp(command ? command->globalName() : *topic))
        return;
    if (command)
        return tellOf(*command);
    if (!topic->isEmpty()) {
        if (UserPrompts* prompts = userPrompts())
            prompts->say(kUnknownCommand, {*topic});
        return;
    }
    for (const TvEdCommand* each : stack->commands())
        tellOf(*each);
}

void runSetVariable()
{
    TvString name; // a word: the value may follow on the line
    if (tvedGetString(0, textOf(Wording::AskVariable).kwszPtr(), name) !=
            static_cast<int>(TvStatus::Normal) ||
        name.isEmpty())
        return;
    if (name != u"?") {
        if (!askVariable(name))
            say(Wording::NoVariable, {name});
        return;
    }
    for (const VariableInfo& info : systemVariables())
        if (const std::optional<VariableValue> value = variable(info.name))
            say(info.isReadOnly ? Wording::VariableRowFixed : Wording::VariableRow,
                {info.name, valueText(*value)});
}

} // namespace ed
