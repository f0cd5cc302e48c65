#pragma once

#include <functional>

#include <QWidget>

#include <app/command_history.h>
#include <ed/command_line.h>
#include <ed/user_prompts.h>

class QEventLoop;
class QHBoxLayout;
class QKeyEvent;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class TvEdCommandStack;

namespace window {

/// The command line: what was said, what is asked, and where one types.
///
/// Up and down go through the lines typed before, Tab completes the names of commands and
/// variables, Escape cancels. While a command asks, its keywords can be clicked.
class CommandPanel : public QWidget, public ed::UserPrompts
{
public:
    /// Neither is owned; both outlive the panel.
    CommandPanel(ed::CommandLine& commandLine, const TvEdCommandStack& commands,
                 QWidget* parent = nullptr);
    ~CommandPanel() override;

    /// A line as if it were typed, with Enter.
    void enter(const TvString& line);
    /// Runs a command from a menu: what runs is cancelled first.
    void run(const TvString& text);
    void cancel();
    bool isAsking() const { return m_asking > 0; }
    /// Answers all questions as cancelled from now on: the program ends.
    void refuseAll();
    /// A key that was pressed elsewhere goes into the line.
    void type(QKeyEvent* event);

    QLineEdit& line() { return *m_line; }
    QPlainTextEdit& log() { return *m_log; }
    const app::CommandHistory& history() const { return m_history; }
    /// Told after commands have run.
    std::function<void()> onWorked;

    // ed::UserPrompts
    int askText(const TvString& prompt, bool withBlanks, TvString& out) override;
    int askFiles(const FileQuestion& question, std::vector<TvString>& out) override;
    void print(const TvString& text) override;
    void say(int text, const std::vector<TvString>& arguments) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void work();
    bool keyPressed(QKeyEvent& event);
    void showPrompt(const TvString& prompt);
    void completeWord();
    void addLine(const TvString& text);

    ed::CommandLine& m_commandLine;
    const TvEdCommandStack& m_commands;
    app::CommandHistory m_history;
    QPlainTextEdit* m_log; // owned by the toolkit, as all below
    QLabel* m_prompt;
    QWidget* m_keywords;
    QLineEdit* m_line;
    QEventLoop* m_waiting = nullptr; // not owned; of the question that is asked now
    int m_asking = 0;
    bool m_refusesAll = false;
    bool m_isInLine = false; // what was printed last has no line end yet
};

} // namespace window
