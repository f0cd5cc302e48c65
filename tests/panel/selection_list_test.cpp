// Renaming and deleting the selections of a set.

#include <panel/selection_list.h>

#include "document_scene.h"
#include "panel_scene.h"

namespace {

using Labels = std::vector<TvString>;

class SelectionListTest : public PanelTest
{
protected:
    void SetUp() override
    {
        PanelTest::SetUp();
        ASSERT_TRUE(database->lockDb(database));
        for (const TvChar* name : {u"Print", u"Check", u"Issue"})
            handles.push_back(
                handleOf(database->getSheetSet()->getSheetSelections()->add(name, u"")));
    }
    void TearDown() override
    {
        EXPECT_TRUE(database->unlockDb(database, false));
        PanelTest::TearDown();
    }
    Labels rows(const panel::SelectionList& list)
    {
        Labels names;
        for (int row = 0; row < list.count(); ++row)
            names.push_back(list.nameOf(row));
        return names;
    }

    Labels handles;
    ScriptedMessages messages;
};

TEST_F(SelectionListTest, HasTheSelectionsInTheOrderGivenWithTheFirstSelected)
{
    handles.insert(handles.begin(), u"gFFFF"); // gone
    const panel::SelectionList list(database, handles);
    EXPECT_EQ(rows(list), (Labels{u"Print", u"Check", u"Issue"}));
    EXPECT_EQ(list.selected(), 0);
    EXPECT_TRUE(list.canChange());
    EXPECT_EQ(list.nameOf(-1), u"");
    EXPECT_EQ(list.nameOf(3), u"");
}

TEST_F(SelectionListTest, RefusesNamesInItsOrderAndSaysWhy)
{
    panel::SelectionList list(database, handles);
    const TvString tooLong = TvString(std::u16string(65, u'x'));
    struct Case {
        TvString name;
        int text, caption;
    };
    for (const Case& each : {Case{u"", 332, 335}, Case{u"  ", 332, 335}, Case{u"a:b", 345, 336},
                             Case{u"a,b", 345, 336}, Case{tooLong + u"*", 345, 336},
                             Case{tooLong, 580, 335}, Case{u"CHECK", 333, 499}}) {
        EXPECT_FALSE(list.rename(0, each.name));
        EXPECT_EQ(messages.asked.back().text, each.text) << each.name.utf8();
        EXPECT_EQ(messages.asked.back().caption, each.caption);
    }
    EXPECT_EQ(messages.asked.back().arguments, Labels{u"CHECK"});
    EXPECT_EQ(list.nameOf(0), u"Print");
    EXPECT_FALSE(list.rename(7, u"x"));
    EXPECT_EQ(messages.asked.size(), 7u);
}

TEST_F(SelectionListTest, TakesANameInOtherLettersOfItsOwnAndOneOfSixtyFour)
{
    panel::SelectionList list(database, handles);
    EXPECT_TRUE(list.rename(0, u"PRINT"));
    EXPECT_EQ(list.nameOf(0), u"PRINT");
    EXPECT_TRUE(list.rename(1, TvString(std::u16string(64, u'x'))));
    EXPECT_TRUE(messages.asked.empty());
}

TEST_F(SelectionListTest, DeletesAfterAQuestionAndSelectsTheNextRow)
{
    panel::SelectionList list(database, handles);
    messages.answer = TvUserMessages::Answer::No;
    EXPECT_FALSE(list.removeSelected());
    ASSERT_EQ(messages.asked.size(), 1u);
    EXPECT_EQ(messages.asked[0].text, 582);
    EXPECT_EQ(messages.asked[0].caption, 581);
    EXPECT_EQ(messages.asked[0].arguments, Labels{u"Print"});
    EXPECT_EQ(messages.asked[0].standard, TvUserMessages::Answer::No);
    messages.answer = TvUserMessages::Answer::Yes;
    EXPECT_TRUE(list.removeSelected());
    EXPECT_EQ(rows(list), (Labels{u"Check", u"Issue"}));
    EXPECT_EQ(list.selected(), 0);
    list.select(1);
    EXPECT_TRUE(list.removeSelected());
    EXPECT_EQ(list.selected(), 0) << "it was the last one";
    EXPECT_TRUE(list.removeSelected());
    EXPECT_FALSE(list.selected());
    EXPECT_FALSE(list.canChange());
    EXPECT_TRUE(itemsOf(database->getSheetSet()->getSheetSelections()->getEnumerator()).empty());
}

TEST_F(SelectionListTest, WithoutARowTellsToChooseOne)
{
    panel::SelectionList list(database, handles);
    list.select(std::nullopt);
    EXPECT_FALSE(list.beginRename());
    EXPECT_FALSE(list.removeSelected());
    EXPECT_EQ(messages.numbers(), (std::vector<int>{583, 583}));
    list.select(9);
    EXPECT_FALSE(list.selected());
}

} // namespace
