#include <QCheckBox>
#include <QCommandLinkButton>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>

#include <ui/message_windows.h>
#include <ui/qt_text.h>

#include "program.h"

namespace {

using Messages = TvUserMessages;
using Answer = Messages::Answer;
using Buttons = Messages::Buttons;

// Texts of the host that are there: their words do not matter here.
constexpr int kQuestion = 23003, kTitle = 23340, kCommand = 23001, kPlain = 23004, kCheck = 23342;

class MessageTest : public Program
{
protected:
    ui::MessageWindows m_windows;

    Answer press(const Messages::Message& message, Qt::Key key)
    {
        whenWaiting([key] { QTest::keyClick(QApplication::activeModalWidget(), key); });
        return m_windows.show(message);
    }
    Messages::TaskAnswer press(const Messages::TaskDialog& dialog, Qt::Key key)
    {
        whenWaiting([key] { QTest::keyClick(QApplication::activeModalWidget(), key); });
        return m_windows.showTask(dialog);
    }
};

Messages::Message message(Buttons buttons, Answer standard)
{
    Messages::Message message;
    message.text = kQuestion;
    message.caption = kTitle;
    message.arguments = {u"NAME", u"<b>x</b> & y"};
    message.buttons = buttons;
    message.icon = Messages::Icon::Question;
    message.standard = standard;
    return message;
}

Messages::TaskDialog task()
{
    Messages::TaskDialog dialog;
    dialog.title = {{kTitle, {}}, {kPlain, {}}};
    dialog.instruction = {kQuestion, {u"SSLOCATE", u"7"}};
    dialog.content = {kCommand, {u"below"}};
    dialog.icon = Messages::Icon::Warning;
    dialog.commands = {{1001, {kCommand, {u"Bread & Butter"}}}, {1002, {kPlain, {}}}};
    dialog.standard = 1001;
    dialog.check = {kCheck, {}};
    return dialog;
}

QCommandLinkButton* command(int index)
{
    return QApplication::activeModalWidget()->findChildren<QCommandLinkButton*>().value(index);
}

} // namespace

TEST_F(MessageTest, ShowsEachTextInItsPlace)
{
    for (const ui::Theme theme : {ui::Theme::Dark, ui::Theme::Light}) {
        switchTo(theme);
        whenWaiting([theme] {
            auto* box = runningDialog<QMessageBox>();
            ASSERT_TRUE(box);
            EXPECT_EQ(box->windowTitle(), ui::textOf(kTitle));
            const TvString arguments[] = {u"NAME", u"<b>x</b> & y"};
            EXPECT_EQ(box->text(), ui::textOf(kQuestion, arguments));
            EXPECT_TRUE(box->text().contains(QLatin1String("<b>x</b> & y")));
            EXPECT_EQ(box->textFormat(), Qt::PlainText);
            EXPECT_FALSE(box->iconPixmap().isNull());
            ASSERT_EQ(box->buttons().size(), 2);
            keepPicture(*box, QStringLiteral("message-%1").arg(static_cast<int>(theme)));
            QTest::keyClick(box, Qt::Key_Escape);
        });
        m_windows.show(message(Buttons::YesNo, Answer::No));
    }
}

TEST_F(MessageTest, WithoutATitleItBearsTheProgramsName)
{
    Messages::Message plain = message(Buttons::Ok, Answer::Ok);
    plain.caption = 0;
    whenWaiting([] {
        EXPECT_EQ(QApplication::activeModalWidget()->windowTitle(),
                  QGuiApplication::applicationDisplayName());
        QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
    });
    EXPECT_EQ(m_windows.show(plain), Answer::Ok);
}

TEST_F(MessageTest, EnterPressesTheStandardButton)
{
    EXPECT_EQ(press(message(Buttons::Ok, Answer::Ok), Qt::Key_Return), Answer::Ok);
    EXPECT_EQ(press(message(Buttons::OkCancel, Answer::Ok), Qt::Key_Return), Answer::Ok);
    EXPECT_EQ(press(message(Buttons::OkCancel, Answer::Cancel), Qt::Key_Return), Answer::Cancel);
    EXPECT_EQ(press(message(Buttons::YesNo, Answer::Yes), Qt::Key_Return), Answer::Yes);
    EXPECT_EQ(press(message(Buttons::YesNo, Answer::No), Qt::Key_Return), Answer::No);
    // One that is not there: the first.
    EXPECT_EQ(press(message(Buttons::YesNo, Answer::Ok), Qt::Key_Return), Answer::Yes);
}

TEST_F(MessageTest, EscapeRefuses)
{
    EXPECT_EQ(press(message(Buttons::OkCancel, Answer::Ok), Qt::Key_Escape), Answer::Cancel);
    EXPECT_EQ(press(message(Buttons::YesNo, Answer::Yes), Qt::Key_Escape), Answer::No);
}

TEST_F(MessageTest, EachButtonHasItsAnswer)
{
    const std::tuple<Buttons, int, Answer> cases[] = {{Buttons::OkCancel, 23300, Answer::Ok},
                                                      {Buttons::OkCancel, 23301, Answer::Cancel},
                                                      {Buttons::YesNo, 23302, Answer::Yes},
                                                      {Buttons::YesNo, 23303, Answer::No}};
    for (const auto& [buttons, words, answer] : cases) {
        whenWaiting([words = words] {
            for (QAbstractButton* button : runningDialog<QMessageBox>()->buttons())
                if (button->text() == ui::textOf(words))
                    QTest::mouseClick(button, Qt::LeftButton);
        });
        EXPECT_EQ(m_windows.show(message(buttons, Answer::Ok)), answer) << words;
    }
}

TEST_F(MessageTest, AVeryLongNameIsShortened)
{
    Messages::Message longOne = message(Buttons::Ok, Answer::Ok);
    longOne.arguments[1] = TvString(std::u16string(100000, u'x'));
    whenWaiting([] {
        EXPECT_LT(runningDialog<QMessageBox>()->text().size(), 1000);
        QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
    });
    m_windows.show(longOne);
}

TEST_F(MessageTest, MarksThatHideLettersAreShown)
{
    Messages::Message tricky = message(Buttons::Ok, Answer::Ok);
    tricky.arguments[1] = u"plan\u202Egwd.exe\nnext\tline";
    whenWaiting([] {
        const QString words = runningDialog<QMessageBox>()->text();
        EXPECT_FALSE(words.contains(QChar(0x202E)));
        EXPECT_TRUE(words.contains(QLatin1String("202")));
        EXPECT_EQ(words.count(QLatin1Char('\n')), 1);
        QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
    });
    m_windows.show(tricky);
}

TEST_F(MessageTest, ATaskShowsEachTextInItsPlace)
{
    for (const ui::Theme theme : {ui::Theme::Dark, ui::Theme::Light}) {
        switchTo(theme);
        Messages::TaskDialog dialog = task();
        dialog.choices = {{1, {23347, {}}}, {2, {23348, {}}}};
        dialog.marked = 2;
        whenWaiting([theme] {
            QWidget* window = QApplication::activeModalWidget();
            EXPECT_EQ(window->windowTitle(),
                      ui::textOf(kTitle) + QLatin1String(" - ") + ui::textOf(kPlain));
            QStringList words;
            for (const QLabel* label : window->findChildren<QLabel*>())
                words.append(label->text());
            const TvString instruction[] = {u"SSLOCATE", u"7"}, content[] = {u"below"};
            EXPECT_TRUE(words.contains(ui::textOf(kQuestion, instruction)));
            EXPECT_TRUE(words.contains(ui::textOf(kCommand, content)));
            const TvString name[] = {u"Bread && Butter"};
            EXPECT_EQ(command(0)->text(), ui::textOf(kCommand, name));
            EXPECT_TRUE(command(0)->isDefault());
            EXPECT_FALSE(command(1)->isDefault());
            keepPicture(*window, QStringLiteral("task-%1").arg(static_cast<int>(theme)));
            QTest::keyClick(window, Qt::Key_Escape);
        });
        const Messages::TaskAnswer answer = m_windows.showTask(dialog);
        EXPECT_EQ(answer.button, 2);
        EXPECT_EQ(answer.marked, 2);
        EXPECT_FALSE(answer.isChecked);
        EXPECT_FALSE(answer.hasFailed);
    }
}

TEST_F(MessageTest, ATaskAnswersTheCommandThatWasPressed)
{
    EXPECT_EQ(press(task(), Qt::Key_Return).button, 1001);
    whenWaiting([] { QTest::mouseClick(command(1), Qt::LeftButton); });
    EXPECT_EQ(m_windows.showTask(task()).button, 1002);
}

TEST_F(MessageTest, ATaskTellsItsMarksHoweverItEnds)
{
    Messages::TaskDialog dialog = task();
    dialog.choices = {{7, {23347, {}}}, {8, {23348, {}}}};
    dialog.marked = 7;
    whenWaiting([] {
        QWidget* window = QApplication::activeModalWidget();
        window->findChild<QCheckBox*>()->setChecked(true);
        window->findChildren<QRadioButton*>().at(1)->click();
        QTest::keyClick(window, Qt::Key_Escape);
    });
    const Messages::TaskAnswer answer = m_windows.showTask(dialog);
    EXPECT_EQ(answer.button, static_cast<int>(Answer::Cancel));
    EXPECT_TRUE(answer.isChecked);
    EXPECT_EQ(answer.marked, 8);
}

TEST_F(MessageTest, ATaskWithoutCancelStaysAtEscape)
{
    Messages::TaskDialog dialog = task();
    dialog.mayBeCancelled = false;
    whenWaiting([] {
        QWidget* window = QApplication::activeModalWidget();
        QTest::keyClick(window, Qt::Key_Escape);
        EXPECT_TRUE(window->isVisible());
        QTest::mouseClick(command(0), Qt::LeftButton);
    });
    EXPECT_EQ(m_windows.showTask(dialog).button, 1001);
}

TEST_F(MessageTest, ATaskWithoutCommandsIsAgreedWith)
{
    Messages::TaskDialog dialog = task();
    dialog.commands.clear();
    dialog.standard = static_cast<int>(Answer::Ok);
    dialog.check = {};
    dialog.isChecked = true;
    const Messages::TaskAnswer answer = press(dialog, Qt::Key_Return);
    EXPECT_EQ(answer.button, static_cast<int>(Answer::Ok));
    EXPECT_TRUE(answer.isChecked);
}
