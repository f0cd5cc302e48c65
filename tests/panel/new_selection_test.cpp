// What is selected in the tree becomes a selection of the set.

#include <panel/new_selection.h>

#include "document_scene.h"
#include "panel_scene.h"

namespace {

class NewSelectionTest : public PanelTest
{
protected:
    void SetUp() override
    {
        PanelTest::SetUp();
        ASSERT_TRUE(database->lockDb(database));
    }
    void TearDown() override
    {
        EXPECT_TRUE(database->unlockDb(database, false));
        PanelTest::TearDown();
    }
    TvSmSheetSelections& all() { return *database->getSheetSet()->getSheetSelections(); }
    std::vector<TvString> names()
    {
        std::vector<TvString> found;
        for (const TvSmSheetSelection* each : sm::each(all().getEnumerator()))
            found.push_back(each->getName());
        return found;
    }
    std::vector<TvString> membersOf(std::size_t index)
    {
        std::vector<TvString> found;
        std::size_t at = 0;
        for (const TvSmSheetSelection* each : sm::each(all().getEnumerator()))
            if (at++ == index)
                for (const TvSmComponent* member : sm::each(each->getEnumerator()))
                    found.push_back(handleOf(member));
        return found;
    }

    ScriptedMessages messages;
};

TEST_F(NewSelectionTest, ProposesTheFirstNumberThatNoSelectionHasInAnyCase)
{
    EXPECT_EQ(panel::NewSelection(database, {}).proposedName(), u"Selection 1");
    all().add(u"SELECTION 1", u"");
    all().add(u"selection 3", u"");
    EXPECT_EQ(panel::NewSelection(database, {}).proposedName(), u"Selection 2");
    all().add(u"Selection 2", u"");
    EXPECT_EQ(panel::NewSelection(database, {}).proposedName(), u"Selection 4");
}

TEST_F(NewSelectionTest, CountsSheetsAndThoseBelowSubsetsAndPassesOverWhatIsGone)
{
    const panel::NewSelection made(database, {handleOf(ground), handleOf(cover), u"gFFFF"});
    EXPECT_EQ(made.sheetCount(), 4);
    EXPECT_EQ(panel::NewSelection(database, {handleOf(roof)}).sheetCount(), 0);
}

TEST_F(NewSelectionTest, RefusesNamesInItsOrderAndSaysWhy)
{
    const TvString tooLong = TvString(std::u16string(65, u'x'));
    const TvString takenAndBad = u"a:b";
    all().add(u"Print", u"");
    all().add(takenAndBad, u"");
    panel::NewSelection made(database, {handleOf(plan)});
    struct Case {
        TvString name;
        int text, caption;
    };
    for (const Case& each :
         {Case{u"pRINT", 333, 499}, Case{takenAndBad, 333, 499}, Case{u"", 332, 335},
          Case{u" \t ", 332, 335}, Case{tooLong + u"*", 580, 335}, Case{u"a*", 345, 336},
          Case{u"a,b", 345, 336}, Case{u"a=b", 345, 336}, Case{u"`", 345, 336}}) {
        messages.asked.clear();
        EXPECT_FALSE(made.accept(each.name)) << each.name.utf8();
        ASSERT_EQ(messages.asked.size(), 1u) << each.name.utf8();
        EXPECT_EQ(messages.asked[0].text, each.text) << each.name.utf8();
        EXPECT_EQ(messages.asked[0].caption, each.caption) << each.name.utf8();
    }
    EXPECT_EQ(messages.asked[0].arguments.size(), 0u);
    EXPECT_EQ(names(), (std::vector<TvString>{u"Print", takenAndBad}));
}

TEST_F(NewSelectionTest, ATakenNameIsNamed)
{
    all().add(u"Print", u"");
    EXPECT_FALSE(panel::NewSelection(database, {}).accept(u"PRINT"));
    EXPECT_EQ(messages.asked.at(0).arguments, std::vector<TvString>{u"PRINT"});
}

TEST_F(NewSelectionTest, HoldsSubsetsAndSheetsInTheOrderOfTheTree)
{
    panel::NewSelection made(database, {handleOf(cover), u"gFFFF", handleOf(ground)});
    EXPECT_TRUE(made.accept(TvString(std::u16string(64, u'x'))));
    EXPECT_EQ(names(), std::vector<TvString>{TvString(std::u16string(64, u'x'))});
    EXPECT_EQ(membersOf(0), (std::vector<TvString>{handleOf(cover), handleOf(ground)}));
    EXPECT_TRUE(messages.asked.empty());
}

TEST_F(NewSelectionTest, OneThatTheSetDoesNotTakeEndsTheQuestionAllTheSame)
{
    panel::NewSelection made(database, {handleOf(plan)});
    ASSERT_TRUE(database->unlockDb(database, false));
    EXPECT_TRUE(made.accept(u"Print"));
    EXPECT_TRUE(names().empty());
    ASSERT_TRUE(database->lockDb(database));
}

} // namespace
