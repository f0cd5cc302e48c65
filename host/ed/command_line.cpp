#include "ed/command_line.h"

#include <algorithm>

#include <base/kv_error_status.h>
#include <db/tv_db_host_application_services.h>
#include <rx/tv_ed_command_stack.h>
#include <rx/tv_rx_dictionary.h>

#include "command_texts.h"
#include "ed/host_commands.h"
#include "ed/program_control.h"
#include "ed/system_variables.h"
#include "ed/tv_ap_doc_manager.h"
#include "ed/tv_ax_doc_lock.h"
#include "ed/tv_editor.h"
#include "ed/user_prompts.h"

namespace ed {

namespace {

CommandLine* g_commandLine = nullptr;

bool isLineEnd(TvChar unit)
{
    return unit == u'\n' || unit == u'\r';
}

bool isWordEnd(TvChar unit)
{
    return unit == u' ' || unit == u'\t' || isLineEnd(unit);
}

void say(int text, const std::vector<TvString>& arguments)
{
    if (UserPrompts* prompts = userPrompts())
        prompts->say(text, arguments);
}

TvEdCommandStack* commandStack()
{
    return tvrxCast<TvEdCommandStack>(tvrxSysRegistry()->at(kTvRegisteredCommands));
}

/// The context of a command's document, from its start to its end.
class RunningCommand
{
public:
    explicit RunningCommand(const TvEdCommand& command) : m_name(command.globalName())
    {
        if (TvApDocManager* manager = tvDocManagerPtr())
            m_context.emplace(*manager);
        if (TvDbDatabase* database = tvdbHostApplicationServices()->workingDatabase())
            database->startUndoRecord();
        if (TvEditor* editor = tvedEditor())
            editor->fireCommandWillStart(m_name);
    }
    const TvString& name() const { return m_name; }
    void end(bool isCancelled)
    {
        m_context.reset(); // reactors are told in the context of the application
        TvEditor* editor = tvedEditor();
        if (editor && isCancelled)
            editor->fireCommandCancelled(m_name);
        else if (editor)
            editor->fireCommandEnded(m_name);
    }

private:
    TvString m_name; // the command may take its own group away
    std::optional<TvApDocManager::CommandContext> m_context;
};

/// A flag that is cleared when it ends.
class FlagScope
{
public:
    FlagScope(bool& flag, bool value) : m_flag(flag) { m_flag = value; }
    ~FlagScope() { m_flag = false; }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

private:
    bool& m_flag;
};

} // namespace

TvString wordsOfFailure(const std::exception_ptr& thrown)
{
    try {
        std::rethrow_exception(thrown);
    } catch (const KvErrorStatus& status) {
        return status.text().isEmpty() ? TvString().format(u"%d", status.code()) : status.text();
    } catch (const std::exception& failure) {
        return TvString(failure.what());
    } catch (...) {
        return {};
    }
}

CommandLine* commandLine()
{
    return g_commandLine;
}

CommandLine::CommandLine()
{
    g_commandLine = this;
}

CommandLine::~CommandLine()
{
    g_commandLine = nullptr;
}

void CommandLine::post(const TvString& text)
{
    const std::u16string_view units = text;
    m_input.insert(m_input.end(), units.begin(), units.end());
}

TvString CommandLine::running() const
{
    return m_running ? m_running->globalName() : TvString();
}

bool CommandLine::startScript(const TvString& text)
{
    if (isScripting())
        return false;
    const std::u16string_view units = text;
    m_script.assign(units.begin(), units.end());
    return true;
}

void CommandLine::stopScript()
{
    if (m_script.empty())
        return;
    m_script.clear();
    say(static_cast<int>(Wording::ScriptStopped), {});
}

CommandLine::Answer CommandLine::takeAnswer(bool withBlanks, TvString& out)
{
    std::deque<TvChar>& source = m_script.empty() ? m_input : m_script;
    if (source.empty())
        return Answer::None;
    m_isAnswerOfScript = &source == &m_script;
    const auto end = std::ranges::find_if(source, [&](TvChar unit) {
        return unit == kEscape || (withBlanks ? isLineEnd(unit) : isWordEnd(unit));
    });
    const bool isEscaped = end != source.end() && *end == kEscape;
    std::u16string answer(source.begin(), end);
    source.erase(source.begin(), end == source.end() ? end : end + 1);
    if (isEscaped)
        return Answer::Escape;
    out = TvString(answer);
    return Answer::Text;
}

/// The next word that is not empty; false when there is none.
bool CommandLine::takeWord(TvString& out)
{
    while (true) {
        switch (takeAnswer(false, out)) {
        case Answer::None: return false;
        case Answer::Escape: break;
        case Answer::Text:
            if (!out.isEmpty())
                return true;
        }
    }
}

void CommandLine::work()
{
    if (m_isWorking)
        return;
    const FlagScope working(m_isWorking, true);
    TvString word;
    while (takeWord(word)) {
        const FlagScope script(m_isRunningScript, m_isAnswerOfScript);
        perform(word);
    }
}

void CommandLine::perform(const TvString& typed)
{
    // Menus and habit put an apostrophe before what may run within another command. Here each runs
    // by itself, and the name is the same.
    const TvString word = typed.startsWith(u"'") ? typed.substr(1) : typed;
    TvEdCommandStack* stack = commandStack();
    if (TvEdCommand* command = stack ? stack->lookupCmd(word) : nullptr)
        return run(*command);
    const TvString aliased = aliasedCommand(word);
    if (TvEdCommand* command =
            stack && !aliased.isEmpty() ? stack->lookupGlobalCmd(aliased) : nullptr)
        return run(*command);
    if (!askVariable(word))
        say(kUnknownCommand, {typed});
}

/// @return whether the command came to its end.
bool CommandLine::call(void (*function)(), const TvString& name)
{
    try {
        function();
        return true;
    } catch (...) {
        say(kCommandFailed, {name, wordsOfFailure(std::current_exception())});
    }
    return false;
}

void CommandLine::run(TvEdCommand& command)
{
    RunningCommand running(command);
    m_running = &command;
    m_isCancelled = false;
    const bool isDone = call(command.functionAddr(), running.name());
    m_running = nullptr;
    if (!isDone)
        m_isCancelled = true;
    else if (m_isCancelled)
        say(kCommandCancelled, {});
    running.end(m_isCancelled);
    if (m_isCancelled && m_isRunningScript)
        stopScript();
}

bool askVariable(const TvString& name)
{
    const std::optional<VariableInfo> info = systemVariable(name);
    const std::optional<VariableValue> now = info ? variable(name) : std::nullopt;
    if (!now)
        return false;
    const TvString shown = valueText(*now);
    if (info->isReadOnly) {
        say(kVariableReadOnly, {info->name, shown});
        return true;
    }
    TvString typed;
    const bool withBlanks = info->kind == VariableKind::Text;
    if (tvedGetString(withBlanks, (TvString(info->name) + u" <" + shown + u">: ").kwszPtr(),
                      typed) != TvStatus::Normal ||
        typed.isEmpty())
        return true;
    const std::optional<VariableValue> value = parsedValue(info->kind, typed);
    if (!value || !ed::setVariable(name, *value))
        say(kNoValueFor, {info->name, typed});
    return true;
}

} // namespace ed

void tvedPostCommand(const TvString& text)
{
    if (ed::CommandLine* line = ed::commandLine())
        line->post(text);
    if (ed::ProgramControl* program = ed::programControl())
        program->posted();
}
