// Drags that end otherwise than they were meant to.

#include <panel/tree_drag.h>

#include "panel_scene.h"

namespace {

class DragFailuresTest : public PanelTest
{
protected:
    void SetUp() override
    {
        PanelTest::SetUp();
        tree.Merge();
        tree.setExpanded(tree.root(), true);
        tree.ExpandAll(true);
    }
    bool take(const TvSmPersist* object)
    {
        tree.selectOnly(itemOf(object));
        return drag.begin(database);
    }
    panel::TreeDrag drag{tree};
};

TEST_F(DragFailuresTest, ASetThatCannotBeWrittenShowsItsFormerOrder)
{
    const std::string before = outline();
    const std::string file = folder.read("house.dst");
    ASSERT_TRUE(take(plan));
    drag.track({itemOf(roof), true, false});
    ops.failKind(base::FaultyFileOps::Kind::Write, ENOSPC);
    EXPECT_FALSE(drag.drop());
    ops.reset();
    EXPECT_EQ(outline(), before);
    EXPECT_EQ(plan->owner(), ground);
    EXPECT_EQ(folder.read("house.dst"), file);
    EXPECT_EQ(database->getLockStatus(), 0);
    EXPECT_FALSE(drag.isDragging());
}

TEST_F(DragFailuresTest, TicksAreCountedAnewForEachDrag)
{
    ASSERT_TRUE(take(plan));
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(drag.scrollTick(200, 0, 200), 0);
    drag.drop();
    ASSERT_TRUE(take(plan));
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(drag.scrollTick(200, 0, 200), 0) << i;
    EXPECT_EQ(drag.scrollTick(200, 0, 200), 1);
    drag.drop();
    EXPECT_EQ(drag.scrollTick(500, 0, 200), 0) << "nothing scrolls without a drag";
}

TEST_F(DragFailuresTest, WithoutADragThereIsNoPlaceToAimAt)
{
    EXPECT_FALSE(drag.aim({itemOf(roof), panel::DropPlace::Where::Last, nullptr}));
    EXPECT_FALSE(drag.place());
    ASSERT_TRUE(take(plan));
    EXPECT_TRUE(drag.aim({itemOf(roof), panel::DropPlace::Where::Last, nullptr}));
    EXPECT_FALSE(drag.aim({itemOf(plan), panel::DropPlace::Where::Last, nullptr}));
    EXPECT_FALSE(drag.drop());
}

TEST_F(DragFailuresTest, APlaceWhoseItemIsGoneIsNone)
{
    ASSERT_TRUE(take(cover));
    drag.track({itemOf(plan), true, false});
    ASSERT_TRUE(ground->removeSheet(plan));
    tree.Merge();
    ASSERT_EQ(itemOf(plan), nullptr);
    EXPECT_FALSE(drag.drop());
    EXPECT_EQ(childrenOf(database->getSheetSet()),
              (std::vector<TvString>{u"Ground", u"Roof", u"Cover"}));
}

TEST_F(DragFailuresTest, TheFirstChildOfAnOpenSubsetStaysFirstWhenItIsDroppedOntoIt)
{
    tree.ClearSelection();
    tree.SelectItem(itemOf(plan));
    tree.SelectItem(itemOf(section));
    ASSERT_TRUE(drag.begin(database));
    EXPECT_EQ(drag.track({itemOf(ground), true, false}).cursor, panel::DragFeedback::kArrow);
    ASSERT_TRUE(drag.drop());
    EXPECT_EQ(childrenOf(ground), (std::vector<TvString>{u"Plan", u"Section", u"Details"}));
    EXPECT_EQ(outline(), "House\n Ground\n  1 - Plan\n  3 - Section\n  Details\n   2 - Stair\n"
                         " Roof\n Cover\n");
}

} // namespace
