#pragma once

#include <functional>

#include <QWidget>

#include <app/command_history.h>
#include <ed/command_line.h>
#include <ed/jig_input.h>
#include <ed/user_prompts.h>

class QEventLoop;
class QHBoxLayout;
class QKeyEvent;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class TvEdCommandStack;

namespace window {

/// What a command wants of the pointer.
struct PointerQuestion {
    std::optional<TvGePoint3d> base; ///< a line leads from here to the pointer; world
    bool isCorner = false;           ///< a rectangle instead
};

/// The command line: what was said, what is asked, and where one types.
///
/// Up and down go through the lines typed before, Tab completes the names of commands and
/// variables, Escape cancels. While a command asks, its keywords can be clicked. Asked for a point,
/// it takes one that was picked elsewhere as well.
class CommandPanel : public QWidget, public ed::UserPrompts, public ed::JigInput
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
    /// Works off what was posted, or lets the question that waits look at it, at the next turn of
    /// the event loop.
    void workSoon();
    bool isAsking() const { return m_asking > 0; }
    /// Answers all questions as cancelled from now on: the program ends.
    void refuseAll();
    bool isAskingPoint() const { return m_pointer != nullptr; }
    /// Answers the question for a point. False when there is none.
    bool pick(const TvGePoint3d& point);
    /// The pointer is there now: for what follows it.
    void hover(const TvGePoint3d& point);
    /// Told when a question for a point begins; null: when it ends.
    std::function<void(const PointerQuestion*)> onPointerQuestion;
    /// Told how what is dragged looks now; null: it is gone.
    std::function<void(const TvDbEntity*)> onDragged;
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
    int askPoint(const PointQuestion& question, TvString& typed,
                 std::optional<TvGePoint3d>& picked) override;
    void print(const TvString& text) override;
    void say(int text, const std::vector<TvString>& arguments) override;

    // ed::JigInput
    bool next(const ed::JigQuestion& question, ed::JigEvent& out) override;
    void show(const TvDbEntity* entity) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class AskedPointer;
    int ask(const TvString& prompt, bool withBlanks, TvString& out);
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
    const PointerQuestion* m_pointer = nullptr; // not owned; of the question that is asked now
    std::optional<TvGePoint3d> m_picked, m_moved;
    bool m_followsPointer = false;
    bool m_refusesAll = false;
    bool m_isInLine = false; // what was printed last has no line end yet
};

} // namespace window
