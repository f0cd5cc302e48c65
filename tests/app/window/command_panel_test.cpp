#include "window_scene.h"

#include <QTimer>
#include <QToolButton>

#include <ed/system_variables.h>
#include <ed/user_prompts.h>

namespace {

TvString g_answer;
int g_result = 0;

class CommandPanelTest : public WindowTest
{
protected:
    CommandPanelTest()
    {
        g_answer.setEmpty();
        g_result = 0;
        program.commands().addCommand(u"T", u"ASKING", u"ASKING", 0, [] {
            g_result = tvedGetString(0, u"Choose [One/Two]:", g_answer);
        });
    }
    /// Does it while a command asks.
    void whileAsking(std::function<void()> step)
    {
        QTimer::singleShot(0, main.get(), std::move(step));
        type("ASKING");
        settle();
    }
};

TEST_F(CommandPanelTest, AnswersAreTypedIntoTheLine)
{
    whileAsking([this] { type("something"); });
    EXPECT_EQ(g_result, 5100);
    EXPECT_EQ(g_answer, u"something");
    EXPECT_FALSE(main->commandPanel().isAsking());
}

TEST_F(CommandPanelTest, AnswersOnTheSameLineAreTaken)
{
    type("ASKING something");
    EXPECT_EQ(g_answer, u"something");
}

TEST_F(CommandPanelTest, EscapeCancels)
{
    whileAsking([this] { QTest::keyClick(&line(), Qt::Key_Escape); });
    EXPECT_EQ(g_result, ed::kCancelled);
    EXPECT_NE(said().find("*Cancel*"), std::string::npos) << said();
}

TEST_F(CommandPanelTest, EscapeInTheDrawingCancelsToo)
{
    open("a.dwg");
    whileAsking([this] { QTest::keyClick(&main->currentPage()->canvas(), Qt::Key_Escape); });
    EXPECT_EQ(g_result, ed::kCancelled);
}

TEST_F(CommandPanelTest, KeywordsCanBeClicked)
{
    whileAsking([this] {
        for (QToolButton* button : main->commandPanel().findChildren<QToolButton*>())
            if (button->text() == QLatin1String("Two"))
                QTest::mouseClick(button, Qt::LeftButton);
    });
    EXPECT_EQ(g_answer, u"Two");
}

TEST_F(CommandPanelTest, AMenuCancelsWhatAsks)
{
    whileAsking([this] { main->commandPanel().run(u"NOSUCHTHING"); });
    EXPECT_EQ(g_result, ed::kCancelled);
    EXPECT_NE(said().find("NOSUCHTHING"), std::string::npos) << said();
}

TEST_F(CommandPanelTest, WhatIsPostedRunsWithoutAKey)
{
    open("a.dwg");
    tvedPostCommand(u"\u001BCTAB Layout1\n");
    EXPECT_EQ(ed::variable(u"CTAB"), ed::VariableValue(TvString(u"Model"))) << "not at once";
    settle();
    EXPECT_EQ(ed::variable(u"CTAB"), ed::VariableValue(TvString(u"Layout1")));
}

TEST_F(CommandPanelTest, WhatIsPostedCancelsTheCommandThatAsksAndRunsThen)
{
    open("a.dwg");
    QTimer::singleShot(0, [] { tvedPostCommand(u"\u001BCTAB Layout1\n"); });
    bool hasHung = false; // then the test itself ends the question
    QTimer::singleShot(10000, main.get(), [&] {
        hasHung = true;
        main->commandPanel().refuseAll();
    });
    type("LAYOUT Rename");
    settle();
    EXPECT_FALSE(hasHung);
    EXPECT_FALSE(main->commandPanel().isAsking());
    EXPECT_EQ(ed::variable(u"CTAB"), ed::VariableValue(TvString(u"Layout1")));
    EXPECT_NE(said().find("*Cancel*"), std::string::npos) << said();
}

TEST_F(CommandPanelTest, TheEndOfTheProgramRefusesQuestions)
{
    whileAsking([this] { main->commandPanel().refuseAll(); });
    EXPECT_EQ(g_result, ed::kCancelled);
}

TEST_F(CommandPanelTest, ArrowsGoThroughWhatWasTyped)
{
    type("FIRSTONE");
    type("SECONDONE");
    QTest::keyClicks(&line(), "DRAFT");
    QTest::keyClick(&line(), Qt::Key_Up);
    QTest::keyClick(&line(), Qt::Key_Up);
    EXPECT_EQ(line().text(), "FIRSTONE");
    QTest::keyClick(&line(), Qt::Key_Down);
    QTest::keyClick(&line(), Qt::Key_Down);
    EXPECT_EQ(line().text(), "DRAFT");
}

TEST_F(CommandPanelTest, TabCompletes)
{
    QTest::keyClicks(&line(), "aski");
    QTest::keyClick(&line(), Qt::Key_Tab);
    EXPECT_EQ(line().text(), "ASKING");
    line().clear();
    QTest::keyClicks(&line(), "tilem");
    QTest::keyClick(&line(), Qt::Key_Tab);
    EXPECT_EQ(line().text(), "TILEMODE");
}

TEST_F(CommandPanelTest, WhatIsTypedIntoTheDrawingGoesIntoTheLine)
{
    open("a.dwg");
    QTest::keyClicks(&main->currentPage()->canvas(), "x");
    EXPECT_EQ(line().text(), "x");
}

TEST_F(CommandPanelTest, TextsOfOthersAreShownAsTheyAre)
{
    main->commandPanel().print(u"<b>bold</b> one\n");
    main->commandPanel().print(u"two ");
    main->commandPanel().print(u"parts\nthree");
    EXPECT_NE(said().find("<b>bold</b> one\ntwo parts\nthree"), std::string::npos) << said();
}

} // namespace
