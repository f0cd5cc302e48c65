#include <ed/undo.h>

#include "host_scene.h"

namespace {

using Names = std::vector<std::string>;

class UndoTest : public HostTest
{
protected:
    void SetUp() override
    {
        HostTest::SetUp();
        open("a.dwg");
        type(u"LTSCALE 1\n");
        drawing().startUndoRecord();
    }
    double scale() { return std::get<double>(*ed::variable(u"LTSCALE")); }
    /// Steps that each set the scale to its number: by a command, as variables are no commands.
    void steps(int from, int to)
    {
        for (int i = from; i <= to; ++i) {
            drawing().startUndoRecord();
            ed::setVariable(u"LTSCALE", static_cast<double>(i));
        }
    }
};

TEST_F(UndoTest, UTakesBackOneStepAndRedoDoesItAgain)
{
    steps(2, 4);
    type(u"U\n");
    EXPECT_EQ(scale(), 3);
    type(u"REDO\n");
    EXPECT_EQ(scale(), 4);
    type(u"REDO\n");
    EXPECT_EQ(said(), (std::vector<int>{23262, 23263, 23265}));
}

TEST_F(UndoTest, SeveralStepsAreTakenBackAndDoneAgainByNumber)
{
    steps(2, 9);
    type(u"UNDO 5\n");
    EXPECT_EQ(scale(), 4);
    type(u"MREDO 2\n");
    EXPECT_EQ(scale(), 6);
    type(u"MREDO Last\n");
    EXPECT_EQ(scale(), 7);
    type(u"MREDO _All\n");
    EXPECT_EQ(scale(), 9);
    EXPECT_EQ(told(), (Names{"say 23262 5", "say 23263 2", "say 23263 1", "say 23263 2"}));
    type(u"UNDO\n\nMREDO\n\n");
    EXPECT_EQ(scale(), 9);
    told();
    type(u"UNDO 0 -3 two 1\n"); // wrong answers are told, and asked for again
    EXPECT_EQ(told(), (Names{"say 23163 0", "say 23163 -3", "say 23163 two", "say 23262 1"}));
    EXPECT_EQ(scale(), 8);
}

TEST_F(UndoTest, NothingToTakeBackIsTold)
{
    type(u"UNDO 999\n");
    told();
    type(u"U\nMREDO 3\n");
    const std::vector<int> numbers = said();
    EXPECT_EQ(numbers.front(), 23264);
    EXPECT_EQ(scale(), std::get<double>(*ed::variable(u"LTSCALE")));
}

TEST_F(UndoTest, AChangeEndsWhatCanBeDoneAgain)
{
    steps(2, 4);
    type(u"UNDO 2\n");
    steps(7, 7);
    type(u"REDO\n");
    EXPECT_EQ(scale(), 7);
    EXPECT_EQ(said().back(), 23265);
}

TEST_F(UndoTest, GoesBackToTheMark)
{
    steps(2, 3);
    type(u"UNDO Mark\n");
    steps(4, 8);
    type(u"UNDO B\n");
    EXPECT_EQ(scale(), 3);
    EXPECT_EQ(said(), (std::vector<int>{23262, 23266}));
    steps(5, 6);
    type(u"UNDO M\n");
    steps(7, 8);
    type(u"UNDO 9\n");
    EXPECT_EQ(scale(), 6) << "a mark is not passed";
    type(u"UNDO 1\n");
    EXPECT_EQ(scale(), 5) << "but it counts once only";
}

TEST_F(UndoTest, WithoutAMarkBackAsksBeforeItTakesEverythingBack)
{
    steps(2, 5);
    type(u"UNDO Back\nNo\n");
    EXPECT_EQ(scale(), 5);
    type(u"UNDO Back\n"); // nobody answers
    EXPECT_EQ(scale(), 5);
    type(u"UNDO Back\n\n");
    EXPECT_EQ(drawing().undoDepth(), 0);
    EXPECT_FALSE(drawing().hasUndo());
}

TEST_F(UndoTest, AGroupIsTakenBackAtOnce)
{
    steps(2, 2);
    type(u"UNDO Begin\n");
    steps(3, 6);
    type(u"UNDO End\n");
    steps(7, 7);
    type(u"U\n");
    EXPECT_EQ(scale(), 6);
    type(u"U\n");
    EXPECT_EQ(scale(), 2);
    type(u"REDO\n");
    EXPECT_EQ(scale(), 6);
    type(u"UNDO End\n");
    EXPECT_EQ(said().back(), 23269);
}

TEST_F(UndoTest, AGroupThatWasGoneBackBehindIsNoneAnyMore)
{
    steps(2, 4);
    type(u"UNDO Begin\n");
    steps(5, 5);
    type(u"UNDO 3\nUNDO End\n");
    EXPECT_EQ(said().back(), 23269);
    EXPECT_EQ(scale(), 2);
}

TEST_F(UndoTest, WhatIsKeptOutOfTheHistoryStays)
{
    steps(2, 2);
    drawing().startUndoRecord();
    drawing().disableUndoRecording(true);
    ed::setVariable(u"TEXTSIZE", 9.0);
    drawing().disableUndoRecording(false);
    steps(3, 3);
    type(u"UNDO 2\n");
    EXPECT_EQ(scale(), 1);
    EXPECT_EQ(ed::variable(u"TEXTSIZE"), ed::VariableValue(9.0));
}

TEST_F(UndoTest, ACommandIsOneStepHoweverMuchItChanges)
{
    stack.addCommand(u"T", u"MANY", u"MANY", 0, [] {
        ed::setVariable(u"LTSCALE", 5.0);
        ed::setVariable(u"TEXTSIZE", 7.0);
        ed::setVariable(u"LTSCALE", 6.0);
    });
    const auto before = ed::variable(u"TEXTSIZE");
    type(u"MANY\nU\n");
    EXPECT_EQ(scale(), 1);
    EXPECT_EQ(ed::variable(u"TEXTSIZE"), before);
}

TEST_F(UndoTest, ReactorsHearOfVariablesThatAreOthersAndOfTheCommand)
{
    type(u"LAYOUT S Layout1\n");
    steps(2, 2);
    reactor.told.clear();
    type(u"UNDO 2\n");
    EXPECT_EQ(reactor.told.front(), "starts UNDO");
    EXPECT_EQ(reactor.told.back(), "ended UNDO");
    for (const char* name : {"changed LTSCALE", "changed CTAB", "changed TILEMODE"})
        EXPECT_EQ(std::ranges::count(reactor.told, name), 1) << name;
    EXPECT_EQ(std::ranges::count(reactor.told, "changed TEXTSIZE"), 0);
}

TEST_F(UndoTest, AnObjectThatIsBeingChangedHoldsItUp)
{
    steps(2, 2);
    TvDbObject* open = nullptr;
    ASSERT_EQ(tvdbOpenTvDbObject(open, drawing().layoutDictionaryId(), TvDb::kForWrite),
              TvStatus::Ok);
    type(u"U\n");
    EXPECT_EQ(said(), std::vector<int>{23267});
    EXPECT_EQ(scale(), 2);
    open->close();
    type(u"U\n");
    EXPECT_EQ(scale(), 1);
}

TEST_F(UndoTest, MarksAreThoseOfTheDrawing)
{
    steps(2, 2);
    type(u"UNDO M\n");
    open("b.dwg");
    EXPECT_FALSE(ed::hasUndoMark(drawing()));
    manager.activateDocument(manager.documentOf(path("a.dwg")));
    EXPECT_TRUE(ed::hasUndoMark(drawing()));
}

} // namespace
