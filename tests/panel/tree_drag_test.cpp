// Moving items of the sheet list by mouse.

#include <panel/tree_drag.h>

#include <base/edit_lock.h>
#include <panel/sheet_list_page.h>

#include "panel_scene.h"

namespace {

using panel::DragFeedback;
using panel::DragPoint;
using panel::DropPlace;
using panel::TreeItem;

class TreeDragTest : public PanelTest
{
protected:
    void SetUp() override
    {
        PanelTest::SetUp();
        tree.Merge();
        tree.setExpanded(tree.root(), true);
        tree.ExpandAll(true);
    }
    bool take(std::initializer_list<const TvSmPersist*> objects)
    {
        tree.ClearSelection();
        for (const TvSmPersist* object : objects)
            tree.SelectItem(itemOf(object));
        return drag.begin(database);
    }
    DragFeedback over(const TvSmPersist* object, bool inLowestPart = false)
    {
        return drag.track({itemOf(object), true, inLowestPart});
    }
    static std::vector<TvString> order(const TvSmSubset* subset) { return childrenOf(subset); }
    std::string content() const { return folder.read("house.dst"); }

    panel::TreeDrag drag{tree};
};

TEST_F(TreeDragTest, OntoAnOpenSubsetPutsTheItemsFirstInIt)
{
    ASSERT_TRUE(take({cover}));
    const DragFeedback feedback = over(ground);
    EXPECT_EQ(feedback.cursor, 32512);
    EXPECT_EQ(feedback.markAfter, itemOf(ground));
    EXPECT_EQ(feedback.highlight, nullptr);
    EXPECT_FALSE(feedback.opensAfterDelay);
    EXPECT_EQ(drag.place().where, DropPlace::Where::First);
    ASSERT_TRUE(drag.drop());
    EXPECT_EQ(order(ground).front(), u"Cover");
    EXPECT_EQ(cover->owner(), ground);
    EXPECT_EQ(itemOf(cover)->parent(), itemOf(ground));
    EXPECT_EQ(itemOf(cover)->row(), 0);
    EXPECT_FALSE(tree.Merge()) << "the tree is that of the set already";
}

TEST_F(TreeDragTest, OntoAClosedSubsetPutsThemLastInItAndOpensItWhenThePointerStays)
{
    tree.setExpanded(itemOf(ground), false);
    ASSERT_TRUE(take({cover}));
    const DragFeedback feedback = over(ground);
    EXPECT_EQ(feedback.highlight, itemOf(ground));
    EXPECT_EQ(feedback.markAfter, nullptr);
    EXPECT_TRUE(feedback.opensAfterDelay);
    EXPECT_EQ(panel::TreeDrag::kExpandMs, 600);
    tree.setExpanded(itemOf(ground), true); // the timer fired; the place stays until it moves
    ASSERT_TRUE(drag.drop());
    EXPECT_EQ(order(ground).back(), u"Cover");
    EXPECT_EQ(itemOf(cover)->row(), 3);
}

TEST_F(TreeDragTest, OnTheLineBelowAClosedSubsetPutsThemBehindIt)
{
    tree.setExpanded(itemOf(ground), false);
    ASSERT_TRUE(take({cover}));
    const DragFeedback feedback = over(ground, true);
    EXPECT_EQ(feedback.markAfter, itemOf(ground));
    EXPECT_FALSE(feedback.opensAfterDelay);
    ASSERT_TRUE(drag.drop());
    EXPECT_EQ(order(database->getSheetSet()),
              (std::vector<TvString>{u"Ground", u"Cover", u"Roof"}));
}

TEST_F(TreeDragTest, OnASheetPutsThemBehindIt)
{
    ASSERT_TRUE(take({cover}));
    EXPECT_EQ(over(plan, true).markAfter, itemOf(plan));
    ASSERT_TRUE(drag.drop());
    EXPECT_EQ(order(ground), (std::vector<TvString>{u"Plan", u"Cover", u"Details", u"Section"}));
}

TEST_F(TreeDragTest, AnEmptySubsetOpensWithItsFirstChild)
{
    tree.setExpanded(itemOf(roof), false);
    ASSERT_TRUE(take({plan, section}));
    over(roof);
    ASSERT_TRUE(drag.drop());
    EXPECT_EQ(order(roof), (std::vector<TvString>{u"Plan", u"Section"}));
    EXPECT_TRUE(itemOf(roof)->isExpanded());
}

TEST_F(TreeDragTest, ItemsOfSeveralSubsetsLandTogetherInTheOrderOfTheTree)
{
    ASSERT_TRUE(take({cover, stair, plan}));
    over(section);
    ASSERT_TRUE(drag.drop());
    EXPECT_EQ(order(ground),
              (std::vector<TvString>{u"Details", u"Section", u"Plan", u"Stair", u"Cover"}));
    EXPECT_EQ(outline(), "House\n Ground\n  Details\n  3 - Section\n  1 - Plan\n  2 - Stair\n"
                         "  Cover\n Roof\n");
}

TEST_F(TreeDragTest, OntoASelectedSheetIsRefused)
{
    ASSERT_TRUE(take({plan}));
    EXPECT_EQ(over(plan).cursor, 32648);
    EXPECT_FALSE(drag.place());
    EXPECT_FALSE(drag.drop());
}

TEST_F(TreeDragTest, NothingGoesBelowItself)
{
    ASSERT_TRUE(take({ground}));
    EXPECT_EQ(over(ground).cursor, 32648);
    EXPECT_EQ(over(details).cursor, 32648);
    EXPECT_EQ(over(stair).cursor, 32648);
    EXPECT_EQ(over(roof).cursor, 32512);
    drag.track({});
    drag.drop();
    ASSERT_TRUE(take({database->getSheetSet()}));
    for (const TvSmPersist* each :
         std::initializer_list<const TvSmPersist*>{database->getSheetSet(), ground, cover, roof})
        EXPECT_FALSE(drag.place()) << (over(each), 0);
    drag.drop();
}

TEST_F(TreeDragTest, AClosedRootHasNoLineBelowIt)
{
    tree.setExpanded(tree.root(), false);
    ASSERT_TRUE(take({plan}));
    EXPECT_EQ(over(database->getSheetSet(), true).cursor, 32648);
    EXPECT_EQ(over(database->getSheetSet(), false).cursor, 32512);
    drag.track({});
    drag.drop();
}

TEST_F(TreeDragTest, ALabelThatTheTargetHasIsRefusedThereButNotAtHome)
{
    change([&](TvSmSheetSet&) {
        addSheet(roof, u"1", u"PLAN");
        addSheet(roof, u"", u"ground");
    });
    tree.Merge();
    ASSERT_TRUE(take({plan}));
    EXPECT_FALSE(drag.CanDropInto(itemOf(roof)));
    EXPECT_TRUE(drag.CanDropInto(itemOf(ground))) << "it is selected, and does not count";
    drag.drop();
    ASSERT_TRUE(take({ground}));
    EXPECT_TRUE(drag.CanDropInto(itemOf(roof))) << "a sheet and a subset may share a label";
    drag.drop();
}

TEST_F(TreeDragTest, TwoItemsOfOneLabelGoNowhere)
{
    TvSmSheet* twin = nullptr;
    change([&](TvSmSheetSet&) { twin = addSheet(roof, u"1", u"plan"); });
    tree.Merge();
    ASSERT_TRUE(take({plan, twin}));
    for (const TvSmPersist* each : std::initializer_list<const TvSmPersist*>{ground, roof, details})
        EXPECT_EQ(over(each).cursor, 32648);
    EXPECT_FALSE(drag.drop());
}

TEST_F(TreeDragTest, ADropBesideAllItemsWritesNothing)
{
    const std::string before = content();
    ASSERT_TRUE(take({plan}));
    over(roof);
    EXPECT_EQ(drag.track({}).cursor, 32648);
    EXPECT_FALSE(drag.drop());
    EXPECT_EQ(content(), before);
    EXPECT_EQ(database->getLockStatus(), 0);
    EXPECT_EQ(order(ground).front(), u"Plan");
}

TEST_F(TreeDragTest, MarksAreShownOnTheItemOnlyAndTheDropDoesNotDependOnThem)
{
    ASSERT_TRUE(take({cover}));
    const DragFeedback feedback = drag.track({itemOf(plan), false, false});
    EXPECT_EQ(feedback.cursor, 32512);
    EXPECT_EQ(feedback.markAfter, nullptr);
    EXPECT_TRUE(drag.drop());
}

TEST_F(TreeDragTest, HoldsTheLockFromItsBeginToItsEnd)
{
    ASSERT_TRUE(take({cover}));
    EXPECT_EQ(database->getLockStatus(), 1);
    EXPECT_FALSE(drag.begin(database));
    EXPECT_TRUE(drag.isDragging());
    over(plan);
    ASSERT_TRUE(drag.drop());
    EXPECT_EQ(database->getLockStatus(), 0);
    EXPECT_FALSE(drag.isDragging());
    EXPECT_FALSE(drag.drop());
}

TEST_F(TreeDragTest, DoesNotBeginWithoutSelectionImageOrLock)
{
    tree.ClearSelection();
    EXPECT_FALSE(drag.begin(database));
    EXPECT_FALSE(drag.begin(nullptr));
    tree.SelectItem(itemOf(plan));
    EXPECT_FALSE(drag.begin(database, [](const TreeItem&) { return false; }));
    EXPECT_EQ(database->getLockStatus(), 0);
    base::EditLock lock(sm::files(), sm::clock(), folder.file("house.dst"));
    ASSERT_TRUE(lock.take(u"elsewhere"));
    EXPECT_FALSE(drag.begin(database));
}

TEST_F(TreeDragTest, WhatIsGoneStaysWhereItIsAndTheOthersGoOn)
{
    ASSERT_TRUE(take({plan, section, cover}));
    ASSERT_TRUE(ground->removeSheet(section));
    over(roof);
    ASSERT_TRUE(drag.drop());
    EXPECT_EQ(order(roof), (std::vector<TvString>{u"Plan", u"Cover"}));
}

TEST_F(TreeDragTest, ATreeThatShowsAnotherSetMeanwhileGivesUp)
{
    ASSERT_TRUE(take({plan}));
    over(roof);
    tree.ClearTree();
    tree.setDatabase(nullptr);
    EXPECT_FALSE(drag.drop());
    EXPECT_EQ(database->getLockStatus(), 0);
    EXPECT_EQ(order(ground).front(), u"Plan");
}

TEST_F(TreeDragTest, ItemsOfAnotherSetWithTheSameHandlesAreNotMeant)
{
    TvSmDatabase* other = made("other.dst");
    ASSERT_TRUE(other->lockDb(other));
    TvSmSubset* subset = addSubset(other->getSheetSet(), u"Subset");
    while (!other->findObject(handleOf(roof)))
        addSheet(subset, u"", u"Sheet");
    ASSERT_TRUE(other->unlockDb(other, true));
    const std::vector<TvString> before = childrenOf(subset);
    ASSERT_TRUE(take({plan}));
    over(ground);
    tree.ClearTree();
    tree.setDatabase(other);
    tree.Merge();
    ASSERT_TRUE(itemOf(ground));
    const std::string shown = outline();
    EXPECT_FALSE(drag.drop());
    EXPECT_EQ(outline(), shown);
    EXPECT_EQ(childrenOf(subset), before);
    EXPECT_EQ(database->getLockStatus(), 0);
    EXPECT_EQ(order(ground).front(), u"Plan");
    tree.ClearTree();
    tree.setDatabase(nullptr);
    manager().closeDatabase(other);
}

TEST(TreeDragScroll, WaitsLessTheFurtherThePointerIsBeyondTheEdge)
{
    using panel::TreeDrag;
    constexpr int kTop = 0, kBottom = 200;
    const auto ticksAt = [](int y) {
        int ticks = 1;
        while (ticks < 100 && TreeDrag::scrollLines(y, kTop, kBottom, ticks) == 0)
            ++ticks;
        return ticks;
    };
    EXPECT_EQ(ticksAt(100), 100) << "never";
    EXPECT_EQ(ticksAt(190), 100) << "the margin's own line is not in it";
    EXPECT_EQ(ticksAt(10), 100);
    EXPECT_EQ(ticksAt(191), 6);
    EXPECT_EQ(ticksAt(200), 6);
    EXPECT_EQ(ticksAt(210), 5);
    EXPECT_EQ(ticksAt(270), 2);
    EXPECT_EQ(ticksAt(289), 2);
    EXPECT_EQ(ticksAt(290), 1) << "a line each tick";
    EXPECT_EQ(ticksAt(-10), 5);
    EXPECT_EQ(TreeDrag::scrollLines(200, kTop, kBottom, 6), 1);
    EXPECT_EQ(TreeDrag::scrollLines(0, kTop, kBottom, 6), -1);
}

TEST_F(TreeDragTest, ScrollTicksAreCountedFromTheLastLine)
{
    ASSERT_TRUE(take({plan}));
    std::vector<int> lines;
    for (int i = 0; i < 12; ++i)
        lines.push_back(drag.scrollTick(200, 0, 200));
    EXPECT_EQ(lines, (std::vector<int>{0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1}));
    drag.drop();
}

/// With the page, whose reload comes with the commit.
TEST_F(TreeDragTest, AfterTheCommitsReloadTheCaretIsSelected)
{
    ActivateSheetSet(database);
    panel::PageWindow window;
    panel::SheetListPage page(window, base::systemClock());
    page.SwitchDatabase(true);
    panel::SheetTree& shown = page.tree();
    shown.selectOnly(shown.itemOf(handleOf(cover)));
    shown.SelectItem(shown.itemOf(handleOf(section)));
    panel::TreeDrag moving(shown);
    ASSERT_TRUE(moving.begin(database));
    moving.track({shown.itemOf(handleOf(roof)), true, false});
    class Host : public NotingHost
    {
    public:
        explicit Host(panel::SheetListPage& shownPage) : m_page(shownPage) {}
        core::SheetSetPalette* palette(Palette which) override
        {
            return which == Palette::SheetList ? &m_page : nullptr;
        }

    private:
        panel::SheetListPage& m_page;
    } reloading(page);
    CTvSmSheetSetEventsHandler handler(&g_watchTable);
    const int cookie = database->registerEventHandler(&handler);
    core::setSessionHost(&reloading);
    EXPECT_TRUE(moving.drop());
    core::setSessionHost(&host);
    database->unregisterEventHandler(cookie);
    ASSERT_EQ(shown.selectedCount(), 1);
    EXPECT_EQ(shown.GetSelectedItems()[0]->handle(), handleOf(cover));
    EXPECT_EQ(shown.caret()->handle(), handleOf(cover));
}

} // namespace
