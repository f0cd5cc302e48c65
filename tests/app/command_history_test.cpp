#include <gtest/gtest.h>

#include <app/command_history.h>

namespace {

TEST(CommandHistory, GoesBackAndForthWithWhatWasBeingTypedAtTheEnd)
{
    app::CommandHistory history;
    history.add(u"ZOOM");
    history.add(u"LAYOUT");

    EXPECT_EQ(history.older(u"PA"), u"LAYOUT");
    EXPECT_EQ(history.older(u"LAYOUT"), u"ZOOM");
    EXPECT_EQ(history.older(u"ZOOM"), u"ZOOM");
    EXPECT_EQ(history.newer(u"ZOOM"), u"LAYOUT");
    EXPECT_EQ(history.newer(u"LAYOUT"), u"PA");
    EXPECT_EQ(history.newer(u"PA"), u"PA");
}

TEST(CommandHistory, NotesNeitherBlankLinesNorRepetitions)
{
    app::CommandHistory history;
    for (const char16_t* line : {u"ZOOM", u"ZOOM", u"  ", u"", u"PAN", u"ZOOM"})
        history.add(line);
    EXPECT_EQ(history.lines(), (std::vector<TvString>{u"ZOOM", u"PAN", u"ZOOM"}));
}

TEST(CommandHistory, ForgetsTheOldest)
{
    app::CommandHistory history;
    for (int i = 0; i <= static_cast<int>(app::CommandHistory::kMost); ++i)
        history.add(TvString().format(u"%d", i));
    EXPECT_EQ(history.lines().size(), app::CommandHistory::kMost);
    EXPECT_EQ(history.lines().front(), u"1");
}

TEST(CommandHistory, ANewLineEndsTheWayBack)
{
    app::CommandHistory history;
    history.add(u"A");
    history.add(u"B");
    history.older(u"");
    history.older(u"");
    history.add(u"C");
    EXPECT_EQ(history.older(u""), u"C");
}

} // namespace
