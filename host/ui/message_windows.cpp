#include "ui/message_windows.h"

#include <QGuiApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QStyle>

#include "message_parts.h"
#include "task_window.h"
#include "ui/main_frame.h"
#include "ui/qt_text.h"

namespace ui {

namespace {

using Answer = TvUserMessages::Answer;
using Buttons = TvUserMessages::Buttons;

struct ButtonRow {
    Answer answer;
    int text;
    QMessageBox::ButtonRole role;
};
constexpr ButtonRow kOk = {Answer::Ok, kOkText, QMessageBox::AcceptRole};
constexpr ButtonRow kCancel = {Answer::Cancel, kCancelText, QMessageBox::RejectRole};
constexpr ButtonRow kYes = {Answer::Yes, kYesText, QMessageBox::YesRole};
constexpr ButtonRow kNo = {Answer::No, kNoText, QMessageBox::NoRole};

/// From the one that says yes to the one that Escape presses.
std::vector<ButtonRow> buttonsOf(Buttons buttons)
{
    switch (buttons) {
    case Buttons::OkCancel: return {kOk, kCancel};
    case Buttons::YesNo: return {kYes, kNo};
    default: return {kOk};
    }
}

} // namespace

TvUserMessages::Answer MessageWindows::show(const Message& message)
{
    QMessageBox window(dialogParent());
    window.setWindowTitle(titleOf(message.caption));
    window.setTextFormat(Qt::PlainText);
    window.setText(textOf(message.text, shortened(message.arguments)));
    const int iconPx = window.style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, &window);
    window.setIconPixmap(pictureOf(message.icon).pixmap(iconPx));
    const std::vector<ButtonRow> rows = buttonsOf(message.buttons);
    std::map<QAbstractButton*, Answer> answers;
    for (const ButtonRow& row : rows) {
        QPushButton* button = window.addButton(textOf(row.text), row.role); // owned by the window
        answers[button] = row.answer;
        if (row.answer == message.standard || &row == &rows.front())
            window.setDefaultButton(button);
        window.setEscapeButton(button); // the last one
    }
    window.exec();
    const auto pressed = answers.find(window.clickedButton());
    return pressed == answers.end() ? rows.back().answer : pressed->second;
}

TvUserMessages::TaskAnswer MessageWindows::showTask(const TaskDialog& dialog)
{
    return TaskWindow(dialog, dialogParent()).ask();
}

} // namespace ui
