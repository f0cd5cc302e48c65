// Moving what is selected by keys.

#include <panel/tree_keys.h>

#include "panel_scene.h"

namespace {

using Labels = std::vector<TvString>;
using panel::MoveKey;

class TreeKeysTest : public PanelTest
{
protected:
    void SetUp() override
    {
        PanelTest::SetUp();
        tree.Merge();
        tree.setExpanded(tree.root(), true);
        tree.setExpanded(itemOf(ground), true);
    }
    bool move(MoveKey key) { return panel::moveByKey(tree, database, key); }
    /// The lines of the set, without its own, as they are stored.
    std::string stored()
    {
        panel::SheetTree fresh;
        fresh.setDatabase(database);
        fresh.Merge();
        const std::string all = outlineOf(fresh, fresh.root());
        return all.substr(all.find('\n') + 1);
    }
};

constexpr char kStart[] =
    " Ground\n  1 - Plan\n  Details\n   2 - Stair\n  3 - Section\n Roof\n Cover\n";

TEST_F(TreeKeysTest, UpAndDownGoPastAClosedSubset)
{
    tree.selectOnly(itemOf(section));
    ASSERT_TRUE(move(MoveKey::Up));
    EXPECT_EQ(stored(),
              " Ground\n  1 - Plan\n  3 - Section\n  Details\n   2 - Stair\n Roof\n Cover\n");
    ASSERT_TRUE(move(MoveKey::Up));
    EXPECT_EQ(stored(),
              " Ground\n  3 - Section\n  1 - Plan\n  Details\n   2 - Stair\n Roof\n Cover\n");
    ASSERT_TRUE(move(MoveKey::Down));
    ASSERT_TRUE(move(MoveKey::Down));
    EXPECT_EQ(stored(), kStart);
    EXPECT_EQ(selected(), Labels{u"3 - Section"}) << "it stays selected all the time";
    EXPECT_EQ(tree.caret(), itemOf(section));
    EXPECT_EQ(database->getLockStatus(), 0);
}

TEST_F(TreeKeysTest, UpAndDownGoIntoAnOpenSubsetAndOutAtItsEnds)
{
    tree.setExpanded(itemOf(details), true);
    tree.selectOnly(itemOf(section));
    ASSERT_TRUE(move(MoveKey::Up));
    EXPECT_EQ(stored(),
              " Ground\n  1 - Plan\n  Details\n   2 - Stair\n   3 - Section\n Roof\n Cover\n");
    ASSERT_TRUE(move(MoveKey::Up));
    ASSERT_TRUE(move(MoveKey::Up));
    EXPECT_EQ(stored(),
              " Ground\n  1 - Plan\n  3 - Section\n  Details\n   2 - Stair\n Roof\n Cover\n");
    ASSERT_TRUE(move(MoveKey::Down));
    EXPECT_EQ(stored(),
              " Ground\n  1 - Plan\n  Details\n   3 - Section\n   2 - Stair\n Roof\n Cover\n");
    ASSERT_TRUE(move(MoveKey::Down));
    ASSERT_TRUE(move(MoveKey::Down));
    ASSERT_TRUE(move(MoveKey::Down));
    EXPECT_EQ(stored(),
              " Ground\n  1 - Plan\n  Details\n   2 - Stair\n 3 - Section\n Roof\n Cover\n");
}

TEST_F(TreeKeysTest, OutGoesBehindTheOwnSubsetAndIntoToTheEndOfTheOneBefore)
{
    tree.selectOnly(itemOf(stair));
    ASSERT_TRUE(move(MoveKey::Out));
    EXPECT_EQ(stored(),
              " Ground\n  1 - Plan\n  Details\n  2 - Stair\n  3 - Section\n Roof\n Cover\n");
    ASSERT_TRUE(move(MoveKey::Into));
    EXPECT_EQ(stored(), kStart);
    EXPECT_TRUE(itemOf(details)->isExpanded()) << "to be seen where it went";
    tree.selectOnly(itemOf(cover));
    ASSERT_TRUE(move(MoveKey::Into));
    EXPECT_EQ(itemOf(cover)->parent(), itemOf(roof));
}

TEST_F(TreeKeysTest, AtTheEndsAndWithTheRootNothingMoves)
{
    tree.selectOnly(itemOf(ground));
    EXPECT_FALSE(move(MoveKey::Up));
    EXPECT_FALSE(move(MoveKey::Out));
    EXPECT_FALSE(move(MoveKey::Into)) << "nothing stands before it";
    tree.selectOnly(itemOf(cover));
    EXPECT_FALSE(move(MoveKey::Down));
    tree.selectOnly(itemOf(section));
    tree.selectOnly(tree.root());
    for (const MoveKey key : {MoveKey::Up, MoveKey::Down, MoveKey::Out, MoveKey::Into})
        EXPECT_FALSE(move(key));
    tree.ClearSelection();
    EXPECT_FALSE(move(MoveKey::Up));
    EXPECT_EQ(stored(), kStart);
    EXPECT_EQ(database->getLockStatus(), 0);
}

TEST_F(TreeKeysTest, SeveralMoveTogetherAndKeepTheirOrder)
{
    tree.selectOnly(itemOf(plan));
    tree.SelectItem(itemOf(section));
    ASSERT_TRUE(move(MoveKey::Out));
    EXPECT_EQ(stored(),
              " Ground\n  Details\n   2 - Stair\n 1 - Plan\n 3 - Section\n Roof\n Cover\n");
    EXPECT_EQ(selected(), (Labels{u"1 - Plan", u"3 - Section"}));
    ASSERT_TRUE(move(MoveKey::Down));
    EXPECT_EQ(stored(),
              " Ground\n  Details\n   2 - Stair\n Roof\n 1 - Plan\n 3 - Section\n Cover\n");
}

TEST_F(TreeKeysTest, WhereALabelIsThereAlreadyNothingMoves)
{
    change([this](TvSmSheetSet& top) { addSheet(&top, u"2", u"STAIR"); });
    tree.Merge();
    tree.selectOnly(itemOf(stair));
    ASSERT_TRUE(move(MoveKey::Out));
    EXPECT_FALSE(move(MoveKey::Out)) << "as dragging refuses it";
    EXPECT_EQ(itemOf(stair)->parent(), itemOf(ground));
    EXPECT_EQ(database->getLockStatus(), 0);
}

TEST_F(TreeKeysTest, ALockedSetStaysAsItIs)
{
    tree.selectOnly(itemOf(section));
    TvSmSheetSetMgr other;
    TvSmDatabase* copy = other.openDatabase(folder.file("house.dst"), true, 0);
    ASSERT_TRUE(copy->lockDb(copy));
    EXPECT_FALSE(move(MoveKey::Up));
    EXPECT_TRUE(copy->unlockDb(copy, false));
    other.closeDatabase(copy);
    EXPECT_FALSE(panel::moveByKey(tree, nullptr, MoveKey::Up));
    EXPECT_EQ(stored(), kStart);
}

} // namespace
