#include "task_window.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QCommandLinkButton>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QVBoxLayout>

#include "message_parts.h"
#include "ui/icon.h"
#include "ui/qt_text.h"

namespace ui {

namespace {

using Messages = TvUserMessages;

constexpr int kCancelled = static_cast<int>(Messages::Answer::Cancel);
constexpr int kAccepted = static_cast<int>(Messages::Answer::Ok);
constexpr int kWidthPx = 440, kMarginPx = 16, kIconPx = 32, kArrowPx = 20;
constexpr double kLargeText = 1.25; // of the usual height

QString wordsOf(const Messages::Text& text)
{
    return text.number ? textOf(text.number, shortened(text.arguments)) : QString();
}

QString titleFrom(const std::vector<Messages::Text>& parts)
{
    QStringList words;
    for (const Messages::Text& part : parts)
        words.append(wordsOf(part));
    return words.isEmpty() ? titleOf(0) : words.join(QStringLiteral(" - "));
}

QLabel* plainLabel(const QString& words, QWidget* parent)
{
    auto* label = new QLabel(words, parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

} // namespace

TaskWindow::TaskWindow(const Messages::TaskDialog& dialog, QWidget* parent)
    : QDialog(parent), m_mayBeCancelled(dialog.mayBeCancelled), m_choices(new QButtonGroup(this))
{
    m_answer.marked = dialog.marked;
    m_answer.isChecked = dialog.isChecked;
    setWindowTitle(titleFrom(dialog.title));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMarginPx, kMarginPx, kMarginPx, kMarginPx);
    column->setSpacing(kMarginPx / 2);
    addTexts(dialog, *column);
    addChoices(dialog, *column);
    addCommands(dialog, *column);
    addFoot(dialog, *column);
    setMinimumWidth(kWidthPx);
    if (!m_mayBeCancelled)
        setWindowFlag(Qt::WindowCloseButtonHint, false);
}

void TaskWindow::addTexts(const Messages::TaskDialog& dialog, QBoxLayout& column)
{
    auto* row = new QHBoxLayout;
    row->setSpacing(kMarginPx);
    const bool hasPicture = dialog.icon != Messages::Icon::None;
    auto* place = new QLabel(this);
    place->setPixmap(
        (hasPicture ? pictureOf(dialog.icon) : icon(QStringLiteral("tarvik"))).pixmap(kIconPx));
    row->addWidget(place, 0, Qt::AlignTop);
    auto* texts = new QVBoxLayout;
    QLabel* question = plainLabel(wordsOf(dialog.instruction), this);
    QFont large = question->font();
    large.setPointSizeF(large.pointSizeF() * kLargeText);
    question->setFont(large);
    texts->addWidget(question);
    if (const QString content = wordsOf(dialog.content); !content.isEmpty())
        texts->addWidget(plainLabel(content, this));
    row->addLayout(texts, 1);
    column.addLayout(row);
}

void TaskWindow::addChoices(const Messages::TaskDialog& dialog, QBoxLayout& column)
{
    for (const Messages::Choice& choice : dialog.choices) {
        auto* radio = new QRadioButton(withoutMnemonics(wordsOf(choice.text)), this);
        m_choices->addButton(radio, choice.result);
        radio->setChecked(choice.result == dialog.marked);
        column.addWidget(radio);
    }
}

void TaskWindow::addCommands(const Messages::TaskDialog& dialog, QBoxLayout& column)
{
    for (const Messages::Choice& command : dialog.commands) {
        // What stands behind a line feed explains the rest.
        const QString words = wordsOf(command.text);
        auto* button =
            new QCommandLinkButton(withoutMnemonics(words.section(QLatin1Char('\n'), 0, 0)),
                                   words.section(QLatin1Char('\n'), 1), this);
        button->setIcon(icon(QStringLiteral("arrow-right")));
        button->setIconSize({kArrowPx, kArrowPx});
        button->setAutoDefault(true);
        if (command.result == dialog.standard) {
            button->setDefault(true);
            button->setFocus();
        }
        connect(button, &QPushButton::clicked, this,
                [this, result = command.result] { answer(result); });
        column.addWidget(button);
    }
}

void TaskWindow::addFoot(const Messages::TaskDialog& dialog, QBoxLayout& column)
{
    auto* foot = new QHBoxLayout;
    if (const QString words = wordsOf(dialog.check); !words.isEmpty()) {
        m_check = new QCheckBox(withoutMnemonics(words), this);
        m_check->setChecked(dialog.isChecked);
        foot->addWidget(m_check);
    }
    foot->addStretch(1);
    const auto addButton = [&](int words, int result) {
        auto* button = new QPushButton(textOf(words), this);
        button->setDefault(result == dialog.standard);
        connect(button, &QPushButton::clicked, this, [this, result] { answer(result); });
        foot->addWidget(button);
        if (result == dialog.standard)
            button->setFocus();
    };
    // Without a command there is nothing else to agree with.
    if (dialog.commands.empty())
        addButton(kOkText, kAccepted);
    if (m_mayBeCancelled)
        addButton(kCancelText, kCancelled);
    column.addLayout(foot);
}

void TaskWindow::answer(int button)
{
    m_answer.button = button;
    done(button);
}

void TaskWindow::reject()
{
    if (m_mayBeCancelled)
        answer(kCancelled);
}

Messages::TaskAnswer TaskWindow::ask()
{
    exec();
    if (m_choices->checkedButton())
        m_answer.marked = m_choices->checkedId();
    if (m_check)
        m_answer.isChecked = m_check->isChecked();
    return m_answer;
}

} // namespace ui
