#include "window/command_panel.h"

#include <QEventLoop>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QToolButton>

#include <app/completion.h>
#include <app/prompt_keywords.h>
#include <app/words.h>
#include <db/tv_status.h>
#include <ui/file_dialog.h>
#include <ui/qt_text.h>

namespace window {

namespace {

constexpr int kKeptLines = 2000;
constexpr int kShownCandidates = 40;

} // namespace

CommandPanel::CommandPanel(ed::CommandLine& commandLine, const TvEdCommandStack& commands,
                           QWidget* parent)
    : QWidget(parent), m_commandLine(commandLine), m_commands(commands),
      m_log(new QPlainTextEdit(this)), m_prompt(new QLabel(this)), m_keywords(new QWidget(this)),
      m_line(new QLineEdit(this))
{
    m_log->setReadOnly(true);
    m_log->setMaximumBlockCount(kKeptLines);
    m_log->setFocusPolicy(Qt::ClickFocus);
    m_log->setFrameShape(QFrame::NoFrame);
    m_prompt->setTextFormat(Qt::PlainText);
    m_line->setAccessibleName(ui::toQt(app::textOf(app::Word::CommandLine)));
    m_line->installEventFilter(this);
    auto* row = new QHBoxLayout;
    row->setContentsMargins(6, 2, 6, 4);
    row->addWidget(m_prompt);
    row->addWidget(m_keywords);
    row->addWidget(m_line, 1);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_log, 1);
    column->addLayout(row);
    setFocusProxy(m_line);
    showPrompt({});
}

CommandPanel::~CommandPanel() = default;

void CommandPanel::showPrompt(const TvString& prompt)
{
    delete m_keywords->layout();
    qDeleteAll(m_keywords->findChildren<QToolButton*>());
    auto* row = new QHBoxLayout(m_keywords);
    row->setContentsMargins(0, 0, 0, 0);
    for (const TvString& keyword : app::promptKeywords(prompt)) {
        auto* button = new QToolButton(m_keywords);
        button->setText(ui::withoutMnemonics(ui::toQt(keyword)));
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::NoFocus);
        // Later: what is asked next replaces the buttons.
        QObject::connect(
            button, &QToolButton::clicked, this, [this, keyword] { enter(keyword); },
            Qt::QueuedConnection);
        row->addWidget(button);
    }
    m_prompt->setText(
        ui::toQt(prompt.isEmpty() ? app::textOf(app::Word::CommandPrompt) : prompt.trimmed()));
}

// What is typed

void CommandPanel::enter(const TvString& line)
{
    addLine(TvString(ui::fromQt(m_prompt->text())) + u" " + line);
    m_history.add(line);
    m_line->clear();
    m_commandLine.post(line + u"\n");
    work();
}

void CommandPanel::run(const TvString& text)
{
    cancel();
    m_commandLine.post(text + u"\n");
    work();
}

void CommandPanel::cancel()
{
    m_line->clear();
    if (!isAsking())
        return;
    constexpr TvChar kEscapes[] = {ed::CommandLine::kEscape, ed::CommandLine::kEscape, 0};
    m_commandLine.post(kEscapes);
    work();
}

void CommandPanel::work()
{
    if (m_waiting)
        return m_waiting->quit(); // the command that asks takes it
    m_commandLine.work();
    if (onWorked)
        onWorked();
}

void CommandPanel::workSoon()
{
    QMetaObject::invokeMethod(
        this, [this] { work(); }, Qt::QueuedConnection);
}

void CommandPanel::refuseAll()
{
    m_refusesAll = true;
    if (m_waiting)
        m_waiting->quit();
}

void CommandPanel::type(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        return cancel();
    m_line->setFocus();
    QKeyEvent copy(event->type(), event->key(), event->modifiers(), event->text());
    if (!keyPressed(copy))
        m_line->insert(event->text());
}

bool CommandPanel::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_line && event->type() == QEvent::KeyPress)
        return keyPressed(*static_cast<QKeyEvent*>(event));
    return QWidget::eventFilter(watched, event);
}

bool CommandPanel::keyPressed(QKeyEvent& event)
{
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: enter(ui::fromQt(m_line->text())); return true;
    case Qt::Key_Escape: cancel(); return true;
    case Qt::Key_Tab: completeWord(); return true;
    case Qt::Key_Up:
        m_line->setText(ui::toQt(m_history.older(ui::fromQt(m_line->text()))));
        return true;
    case Qt::Key_Down:
        m_line->setText(ui::toQt(m_history.newer(ui::fromQt(m_line->text()))));
        return true;
    case Qt::Key_PageUp:
    case Qt::Key_PageDown: {
        QScrollBar* bar = m_log->verticalScrollBar();
        bar->triggerAction(event.key() == Qt::Key_PageUp ? QScrollBar::SliderPageStepSub
                                                         : QScrollBar::SliderPageStepAdd);
        return true;
    }
    default: return false;
    }
}

void CommandPanel::completeWord()
{
    const QString text = m_line->text();
    const int begin = static_cast<int>(text.lastIndexOf(QLatin1Char(' '))) + 1;
    const app::Completion found = app::complete(ui::fromQt(text.mid(begin)), &m_commands);
    if (found.candidates.empty())
        return;
    m_line->setText(text.left(begin) + ui::toQt(found.common));
    if (found.candidates.size() == 1)
        return;
    TvString all;
    for (std::size_t i = 0; i < found.candidates.size() && i < kShownCandidates; ++i)
        all += (i ? TvString(u"  ") : TvString()) + found.candidates[i];
    addLine(found.candidates.size() > kShownCandidates ? all + u"  ..." : all);
}

// What is said and asked

void CommandPanel::addLine(const TvString& text)
{
    m_log->appendPlainText(ui::toQt(base::escapedForDisplay(text)));
    m_isInLine = false;
}

void CommandPanel::print(const TvString& text)
{
    QStringList lines = ui::toQt(text).split(QLatin1Char('\n'));
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const bool isLast = i + 1 == lines.size();
        const QString shown = ui::toQt(base::escapedForDisplay(ui::fromQt(lines[i])));
        if (isLast && shown.isEmpty())
            break;
        if (m_isInLine) {
            QTextCursor end(m_log->document());
            end.movePosition(QTextCursor::End);
            end.insertText(shown);
        } else {
            m_log->appendPlainText(shown);
        }
        m_isInLine = isLast;
    }
    m_log->verticalScrollBar()->setValue(m_log->verticalScrollBar()->maximum());
}

void CommandPanel::say(int text, const std::vector<TvString>& arguments)
{
    addLine(app::textOf(text, arguments));
}

/// Waits until something was typed, picked or moved.
/// @return 5100 for what was typed and for a point.
int CommandPanel::ask(const TvString& prompt, bool withBlanks, TvString& out)
{
    showPrompt(prompt);
    ++m_asking;
    int answer = ed::kCancelled;
    QEventLoop loop;
    QEventLoop* const outer = std::exchange(m_waiting, &loop);
    while (!m_refusesAll) {
        const auto taken = m_commandLine.takeAnswer(withBlanks, out);
        if (taken == ed::CommandLine::Answer::Text || m_picked || m_moved)
            answer = TvStatus::Normal;
        if (taken != ed::CommandLine::Answer::None || m_picked || m_moved)
            break;
        loop.exec();
    }
    m_waiting = outer;
    --m_asking;
    showPrompt({});
    return answer;
}

int CommandPanel::askText(const TvString& prompt, bool withBlanks, TvString& out)
{
    return ask(prompt, withBlanks, out);
}

/// A question for a point, as long as it lives.
class CommandPanel::AskedPointer
{
public:
    AskedPointer(CommandPanel& panel, const PointerQuestion& question)
        : m_panel(panel), m_outer(std::exchange(panel.m_pointer, &question))
    {
        panel.m_picked.reset();
        panel.m_moved.reset();
        tell();
    }
    ~AskedPointer()
    {
        m_panel.m_picked.reset();
        m_panel.m_moved.reset();
        m_panel.m_pointer = m_outer;
        tell();
    }
    AskedPointer(const AskedPointer&) = delete;
    AskedPointer& operator=(const AskedPointer&) = delete;

private:
    void tell()
    {
        if (m_panel.onPointerQuestion)
            m_panel.onPointerQuestion(m_panel.m_pointer);
    }
    CommandPanel& m_panel;
    const PointerQuestion* m_outer;
};

int CommandPanel::askPoint(const PointQuestion& question, TvString& typed,
                           std::optional<TvGePoint3d>& picked)
{
    const PointerQuestion pointer{question.base, question.isCorner};
    const AskedPointer asked(*this, pointer);
    const int answer = ask(question.prompt, false, typed);
    if (answer == TvStatus::Normal && m_picked) {
        picked = m_picked;
        addLine(question.prompt.trimmed() + TvString().format(u" %.4f,%.4f", picked->x, picked->y));
    }
    return answer;
}

bool CommandPanel::pick(const TvGePoint3d& point)
{
    if (!m_pointer || !m_waiting || m_picked)
        return false;
    m_picked = point;
    m_waiting->quit();
    return true;
}

void CommandPanel::hover(const TvGePoint3d& point)
{
    if (!m_pointer || !m_waiting || !m_followsPointer)
        return;
    m_moved = point;
    m_waiting->quit();
}

bool CommandPanel::next(const ed::JigQuestion& question, ed::JigEvent& out)
{
    if (m_refusesAll)
        return false;
    const bool isForText = question.kind == ed::JigQuestion::Text;
    const PointerQuestion pointer{question.base, false};
    std::optional<AskedPointer> asked;
    if (!isForText)
        asked.emplace(*this, pointer);
    const bool former = std::exchange(m_followsPointer, !isForText);
    const int answer = ask(question.prompt, isForText, out.text);
    m_followsPointer = former;
    out.kind = answer != TvStatus::Normal ? ed::JigEvent::Escaped
               : m_picked                 ? ed::JigEvent::Picked
               : m_moved                  ? ed::JigEvent::Moved
                                          : ed::JigEvent::Typed;
    if (m_picked || m_moved)
        out.point = m_picked ? *m_picked : *m_moved;
    return true;
}

void CommandPanel::show(const TvDbEntity* entity)
{
    if (onDragged)
        onDragged(entity);
}

int CommandPanel::askFiles(const FileQuestion& question, std::vector<TvString>& out)
{
    return m_refusesAll ? ed::kCancelled : ui::askFiles(question, out, window());
}

} // namespace window
