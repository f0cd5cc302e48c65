#pragma once

#include <deque>
#include <exception>

#include <base/tv_string.h>

class TvEdCommand;

namespace ed {

/// Texts that the command line says, by number.
enum CommandLineText : int {
    kUnknownCommand = 23001,   ///< 1: what was typed
    kVariableReadOnly = 23002, ///< 1: variable, 2: its value
    kNoValueFor = 23003,       ///< 1: variable, 2: what was typed
    kCommandCancelled = 23004,
    kCommandFailed = 23005, ///< 1: command, 2: what it threw
};

/// What was thrown: its text, or its number where it has none; empty when nothing is known of it.
TvString wordsOfFailure(const std::exception_ptr& thrown);

/// Works off what is typed, posted or read from a script: words that name commands or system
/// variables, and the answers to what they ask.
///
/// A blank or the end of a line ends a word. Commands run one after the other, never within each
/// other: what a command posts comes after it, unless the command asks for it. The escape character
/// cancels the command that asks, and the word that is being typed; otherwise it is nothing. A
/// command that is cancelled ends the script that it came from.
///
/// What a command throws ends the command, not the program: it is told, and counts as cancelled.
/// What it had changed by then can be undone.
class CommandLine
{
public:
    static constexpr TvChar kEscape = 0x1B;

    CommandLine();
    ~CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    void post(const TvString& text);
    /// Puts the text of a script in front of all that was posted. While it is being run, files are
    /// asked for at the command line.
    /// @return false, and nothing taken, while another script runs.
    bool startScript(const TvString& text);
    /// Something of a script is left, or its last command runs.
    bool isScripting() const { return !m_script.empty() || m_isRunningScript; }
    /// Drops what is left of the script.
    void stopScript();
    /// Runs all that was posted. Nothing while a command runs.
    void work();
    bool isIdle() const { return m_input.empty() && m_script.empty() && !m_running; }
    /// The global name of the command that runs; empty when none does.
    TvString running() const;

    enum class Answer { None, Text, Escape };
    /// For a command that asks: the next word, or with blanks the rest of the line. An escape takes
    /// what was typed before it on the same line, or in the same word, along.
    /// @param out  set for Text only; an empty answer is one.
    Answer takeAnswer(bool withBlanks, TvString& out);
    /// The command that runs was given up; told when it ends.
    void cancel() { m_isCancelled = true; }

private:
    bool takeWord(TvString& out);
    void perform(const TvString& typed);
    void run(TvEdCommand& command);
    bool call(void (*function)(), const TvString& name);

    std::deque<TvChar> m_input;
    std::deque<TvChar> m_script; // taken before the input
    bool m_isRunningScript = false;
    bool m_isAnswerOfScript = false; // the one that was taken last
    TvEdCommand* m_running = nullptr;
    bool m_isWorking = false;
    bool m_isCancelled = false;
};

/// The program's, or null before it made one.
CommandLine* commandLine();

/// Asks for a new value of a system variable, telling the one that it has; a read-only one is
/// shown.
/// @return false, and nothing asked, when there is no such variable here.
bool askVariable(const TvString& name);

} // namespace ed
