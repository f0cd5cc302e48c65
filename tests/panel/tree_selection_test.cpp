// Several selected items beside the caret.

#include "panel_scene.h"

namespace {

using Labels = std::vector<TvString>;

class TreeSelectionTest : public PanelTest
{
protected:
    void SetUp() override
    {
        PanelTest::SetUp();
        tree.Merge();
        tree.setExpanded(tree.root(), true);
        tree.ExpandAll(true);
    }
};

TEST_F(TreeSelectionTest, ASheetAndItsSubsetAreNotSelectedTogether)
{
    tree.SelectItem(itemOf(plan));
    tree.SelectItem(itemOf(stair));
    tree.ToggleItem(itemOf(ground));
    EXPECT_EQ(selected(), Labels{u"Ground"});
    tree.SelectItem(itemOf(stair));
    EXPECT_EQ(selected(), Labels{u"2 - Stair"});
}

TEST_F(TreeSelectionTest, TheRootIsSelectedAlone)
{
    tree.SelectItem(itemOf(plan));
    tree.SelectItem(tree.root());
    EXPECT_EQ(selected(), Labels{u"House"});
    tree.SelectItem(itemOf(cover));
    EXPECT_EQ(selected(), Labels{u"Cover"});
}

TEST_F(TreeSelectionTest, TogglingTwiceGivesUp)
{
    tree.ToggleItem(itemOf(plan));
    tree.ToggleItem(itemOf(cover));
    EXPECT_EQ(selected(), (Labels{u"1 - Plan", u"Cover"}));
    tree.ToggleItem(itemOf(plan));
    EXPECT_EQ(selected(), Labels{u"Cover"});
    tree.ToggleItem(nullptr);
    tree.SelectItem(nullptr);
    EXPECT_EQ(tree.selectedCount(), 1);
}

TEST_F(TreeSelectionTest, ARangeOverAnOpenSubsetEndsWithTheSheetsBelowIt)
{
    tree.SelectItem(itemOf(cover));
    tree.SelectRange(itemOf(section), itemOf(ground));
    EXPECT_EQ(selected(), (Labels{u"1 - Plan", u"2 - Stair", u"3 - Section"}));
}

TEST_F(TreeSelectionTest, ARangeGoesOverVisibleItemsOnly)
{
    tree.setExpanded(itemOf(ground), false);
    tree.SelectRange(itemOf(ground), itemOf(cover));
    EXPECT_EQ(selected(), (Labels{u"Ground", u"Roof", u"Cover"}));
    tree.SelectRange(nullptr, itemOf(cover));
    EXPECT_EQ(tree.selectedCount(), 3);
}

TEST_F(TreeSelectionTest, IsToldOnceForManyItems)
{
    NotingTree noting(tree);
    tree.SelectRange(tree.root(), itemOf(cover));
    EXPECT_EQ(noting.take(), std::vector<std::string>{"selection"});
    tree.SelectItem(itemOf(cover));
    EXPECT_TRUE(noting.take().empty()) << "nothing changed";
}

TEST_F(TreeSelectionTest, KnowsWhetherASheetIsInIt)
{
    EXPECT_FALSE(tree.SelectionHasSheet());
    tree.SelectItem(itemOf(roof));
    EXPECT_FALSE(tree.SelectionHasSheet());
    tree.SelectItem(itemOf(ground));
    EXPECT_TRUE(tree.SelectionHasSheet()) << "below it";
    tree.selectOnly(itemOf(cover));
    EXPECT_TRUE(tree.SelectionHasSheet());
    tree.selectOnly(tree.root());
    EXPECT_TRUE(tree.SelectionHasSheet());
}

TEST_F(TreeSelectionTest, ARestoredOneGivesTheCaretToTheFirstHandleAndSkipsWhatIsGone)
{
    tree.RestoreSelection({handleOf(plan), handleOf(cover), u"gFFFF"});
    EXPECT_EQ(selected(), (Labels{u"1 - Plan", u"Cover"}));
    const TvString first = std::min(handleOf(plan), handleOf(cover));
    EXPECT_EQ(tree.caret(), tree.itemOf(first));
    EXPECT_EQ(tree.anchor(), tree.itemOf(first));
    tree.RestoreSelection({});
    EXPECT_EQ(tree.selectedCount(), 0);
}

} // namespace
