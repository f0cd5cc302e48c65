// The items of the sheet list, and what is told when they change.

#include <random>

#include "panel_scene.h"

namespace {

using core::SheetImage;
using panel::TreeItem;
using Names = std::vector<std::string>;

constexpr char kOutline[] = "House\n"
                            " Ground\n"
                            "  1 - Plan\n"
                            "  Details\n"
                            "   2 - Stair\n"
                            "  3 - Section\n"
                            " Roof\n"
                            " Cover\n";

class SheetTreeTest : public PanelTest
{
protected:
    void SetUp() override
    {
        PanelTest::SetUp();
        tree.Merge();
    }
};

TEST_F(SheetTreeTest, ShowsTheOrderOfTheSetWithSubsetsAndSheetsMixed)
{
    EXPECT_EQ(outline(), kOutline);
    EXPECT_EQ(tree.count(), 8u);
}

TEST_F(SheetTreeTest, ALabelIsNumberAndTitleOrTheTitleAlone)
{
    EXPECT_EQ(tree.labelOf(*itemOf(plan)), u"1 - Plan");
    EXPECT_EQ(tree.labelOf(*itemOf(cover)), u"Cover");
}

TEST_F(SheetTreeTest, ItemsHaveKindHandleAndPlainImage)
{
    const TreeItemData set = tree.dataOf(*tree.root());
    EXPECT_EQ(set.kind, 0u);
    EXPECT_EQ(set.handle, handleOf(database->getSheetSet()));
    EXPECT_EQ(tree.GetItemKind(itemOf(ground)), 1u);
    EXPECT_EQ(tree.GetItemKind(itemOf(plan)), 2u);
    EXPECT_EQ(tree.GetItemHandle(itemOf(plan)), handleOf(plan));
    EXPECT_EQ(tree.root()->image(), SheetImage::ImageSet);
    EXPECT_EQ(itemOf(ground)->image(), SheetImage::ImageSubset);
    EXPECT_EQ(itemOf(plan)->image(), SheetImage::ImageSheet);
}

TEST_F(SheetTreeTest, OfNothingAnswersNothing)
{
    EXPECT_EQ(tree.InsertSheetSetItem(nullptr), nullptr);
    EXPECT_EQ(tree.InsertSubsetItem(nullptr, tree.root()), nullptr);
    EXPECT_EQ(tree.InsertSubsetItem(ground, nullptr), nullptr);
    EXPECT_EQ(tree.InsertSheetItem(nullptr, tree.root()), nullptr);
    const TvSmSheet unbound;
    EXPECT_EQ(tree.InsertSheetItem(&unbound, tree.root()), nullptr) << "it has no handle";
    EXPECT_EQ(tree.itemOf(u""), nullptr);
    EXPECT_EQ(tree.GetComponent(nullptr), nullptr);
    EXPECT_EQ(tree.GetItemHandle(nullptr), u"");
    tree.AddChildrenToTree(nullptr, nullptr);
    tree.RemoveItem(nullptr);
    tree.RemoveItem(itemOf(ground));                         // has children
    tree.MoveItem(itemOf(ground), itemOf(details), nullptr); // below itself
    EXPECT_EQ(outline(), kOutline);
}

TEST_F(SheetTreeTest, ObjectsAreFoundAnewAndNullWhenTheyAreGone)
{
    EXPECT_EQ(tree.GetComponent(itemOf(plan)), plan);
    const TreeItem* item = itemOf(plan);
    change([&](TvSmSheetSet&) { ground->removeSheet(plan); });
    EXPECT_EQ(tree.GetComponent(item), nullptr);
}

TEST_F(SheetTreeTest, AMergeWithoutAChangeTellsNothing)
{
    outline(); // every label was shown
    NotingTree noting(tree);
    EXPECT_FALSE(tree.Merge());
    EXPECT_EQ(noting.told, Names{});
}

TEST_F(SheetTreeTest, AChangedLabelTellsItsRowAloneIfItWasShown)
{
    tree.labelOf(*itemOf(plan));
    NotingTree noting(tree);
    change([&](TvSmSheetSet&) {
        plan->setTitle(u"Ground plan");
        stair->setTitle(u"Stairs");
    });
    EXPECT_FALSE(tree.Merge());
    EXPECT_EQ(noting.told, Names{"item " + name(plan)});
    EXPECT_EQ(tree.labelOf(*itemOf(plan)), u"1 - Ground plan");
    EXPECT_EQ(tree.labelOf(*itemOf(stair)), u"2 - Stairs");
}

TEST_F(SheetTreeTest, ANewSheetAndARemovedOneTellTheirRows)
{
    NotingTree noting(tree);
    TvSmSheet* made = nullptr;
    change([&](TvSmSheetSet&) {
        made = ground->createSheet(u"New", u"");
        ground->insertComponentAfter(made, plan);
        details->removeSheet(stair);
    });
    EXPECT_TRUE(tree.Merge());
    EXPECT_EQ(noting.told,
              (Names{"insert " + name(ground) + " 1-1", "remove " + name(details) + " 0-0"}));
    EXPECT_EQ(tree.itemOf(handleOf(stair)), nullptr);
    EXPECT_EQ(itemOf(made)->row(), 1);
    EXPECT_EQ(itemOf(section)->row(), 3);
}

TEST_F(SheetTreeTest, AMovedItemStaysTheSameWithItsImageAndWhatIsOpen)
{
    TreeItem* item = itemOf(details);
    tree.setExpanded(item, true);
    tree.setImage(handleOf(details), SheetImage::ImageSubsetBad);
    tree.SelectItem(itemOf(stair));
    tree.setCaret(itemOf(stair));
    NotingTree noting(tree);
    change([&](TvSmSheetSet&) {
        ground->removeSubset(details);
        roof->insertComponent(details, nullptr);
        details->setOwner(roof);
    });
    EXPECT_TRUE(tree.Merge());
    EXPECT_EQ(noting.told,
              (Names{"remove " + name(ground) + " 1-1", "insert " + name(roof) + " 0-0"}));
    EXPECT_EQ(itemOf(details), item);
    EXPECT_EQ(item->parent(), itemOf(roof));
    EXPECT_TRUE(item->isExpanded());
    EXPECT_EQ(item->image(), SheetImage::ImageSubsetBad);
    EXPECT_EQ(selected(), std::vector<TvString>{u"2 - Stair"});
    EXPECT_EQ(tree.caret(), itemOf(stair));
}

TEST_F(SheetTreeTest, AnItemThatMovesUpOutOfWhatGoesIsKept)
{
    TreeItem* item = itemOf(stair);
    NotingTree noting(tree);
    change([&](TvSmSheetSet& top) {
        top.removeSubset(ground);
        details->removeSheet(stair);
        top.insertComponent(stair, roof);
        stair->setOwner(&top);
    });
    EXPECT_TRUE(tree.Merge());
    EXPECT_EQ(itemOf(stair), item);
    EXPECT_EQ(outline(), "House\n 2 - Stair\n Roof\n Cover\n");
    EXPECT_EQ(tree.count(), 4u);
}

TEST_F(SheetTreeTest, ParentAndChildMayChangePlaces)
{
    TreeItem *outer = itemOf(ground), *inner = itemOf(details);
    NotingTree noting(tree);
    change([&](TvSmSheetSet& top) {
        ground->removeSubset(details);
        top.removeSubset(ground);
        top.insertComponent(details, roof);
        details->setOwner(&top);
        details->insertComponent(ground, nullptr);
        ground->setOwner(details);
    });
    EXPECT_TRUE(tree.Merge());
    EXPECT_EQ(itemOf(ground), outer);
    EXPECT_EQ(itemOf(details), inner);
    EXPECT_EQ(outline(), "House\n Details\n  2 - Stair\n  Ground\n   1 - Plan\n   3 - Section\n"
                         " Roof\n Cover\n");
}

TEST_F(SheetTreeTest, OneSheetMovedAmongManyTellsOneRemovalAndOneInsertion)
{
    std::vector<TvSmSheet*> many;
    change([&](TvSmSheetSet&) {
        for (int i = 0; i < 100; ++i)
            many.push_back(addSheet(roof, TvString().format(u"%d", i), u"Sheet"));
    });
    tree.Merge();
    NotingTree noting(tree);
    change([&](TvSmSheetSet&) {
        roof->removeSheet(many.front());
        roof->insertComponentAfter(many.front(), nullptr);
    });
    EXPECT_TRUE(tree.Merge());
    EXPECT_EQ(noting.told,
              (Names{"remove " + name(roof) + " 0-0", "insert " + name(roof) + " 99-99"}));
}

TEST_F(SheetTreeTest, ANewSubsetIsOpenAtTheFirstLevelOnly)
{
    TvSmSubset *first = nullptr, *deeper = nullptr;
    change([&](TvSmSheetSet& top) {
        first = addSubset(&top, u"First");
        deeper = addSubset(first, u"Deeper");
    });
    tree.Merge();
    EXPECT_TRUE(itemOf(first)->isExpanded());
    EXPECT_FALSE(itemOf(deeper)->isExpanded());
}

TEST_F(SheetTreeTest, WhatGoesTakesCaretAnchorAndSelectionAlong)
{
    tree.selectOnly(itemOf(stair));
    tree.setAnchor(itemOf(stair));
    NotingTree noting(tree);
    change([&](TvSmSheetSet&) { ground->removeSubset(details); });
    tree.Merge();
    EXPECT_EQ(noting.told, (Names{"remove " + name(ground) + " 1-1", "selection"}));
    EXPECT_EQ(tree.caret(), nullptr);
    EXPECT_EQ(tree.anchor(), nullptr);
    EXPECT_EQ(tree.selectedCount(), 0);
}

TEST_F(SheetTreeTest, OfAnotherSetIsMadeAnew)
{
    NotingTree noting(tree);
    TvSmDatabase* other = made("other.dst");
    ASSERT_TRUE(other->lockDb(other));
    other->getSheetSet()->setName(u"Other");
    ASSERT_TRUE(other->unlockDb(other, true));
    tree.ClearTree();
    tree.setDatabase(other);
    tree.Merge();
    EXPECT_EQ(outline(), "Other\n");
    EXPECT_EQ(noting.told.front(), "reset");
    tree.ClearTree();
    tree.setDatabase(nullptr);
    EXPECT_FALSE(tree.Merge());
    manager().closeDatabase(other);
}

TEST_F(SheetTreeTest, WhateverChangesAMergeEndsWithTheTreeOfTheSet)
{
    std::mt19937 random(20261121);
    const auto pick = [&](auto& from) { return from[random() % from.size()]; };
    NotingTree noting(tree);
    std::vector<TvSmSubset*> subsets = {database->getSheetSet(), ground, details, roof};
    std::vector<TvSmComponent*> all = {ground, details, roof, plan, stair, section, cover};
    for (int round = 0; round < 200; ++round) {
        change([&](TvSmSheetSet&) {
            for (int i = 0; i < 4; ++i) {
                TvSmSubset* target = pick(subsets);
                TvSmComponent* moved = pick(all);
                target->insertComponentAfter(moved, nullptr); // refused below itself
                if (random() % 4 == 0)
                    all.push_back(addSheet(pick(subsets), u"", u"Sheet"));
                if (random() % 8 == 0) {
                    subsets.push_back(addSubset(pick(subsets), u"Subset"));
                    all.push_back(subsets.back());
                }
            }
        });
        tree.Merge();
        const std::string merged = outline();
        panel::SheetTree fresh;
        fresh.setDatabase(database);
        fresh.Merge();
        ASSERT_EQ(merged, outlineOf(fresh, fresh.root())) << round;
        ASSERT_EQ(tree.count(), fresh.count());
    }
}

TEST_F(SheetTreeTest, StatusImagesAreToldOnceAndReset)
{
    NotingTree noting(tree);
    tree.setImage(handleOf(plan), SheetImage::ImageSheetMissing);
    tree.setImage(handleOf(plan), SheetImage::ImageSheetMissing);
    tree.setImage(u"gFFFF", SheetImage::ImageSheetMissing);
    EXPECT_EQ(noting.take(), Names{"item " + name(plan)});
    tree.ResetStatusImages();
    EXPECT_EQ(noting.take(), Names{"item " + name(plan)});
    EXPECT_EQ(itemOf(plan)->image(), SheetImage::ImageSheet);
}

TEST_F(SheetTreeTest, AllBelowTheRootOpenAndClose)
{
    tree.ExpandAll(true);
    EXPECT_FALSE(tree.root()->isExpanded());
    for (const TvSmPersist* each : {ground, details, roof})
        EXPECT_TRUE(itemOf(each)->isExpanded());
    EXPECT_FALSE(itemOf(plan)->isExpanded()) << "there is nothing to open";
    tree.ExpandAll(false);
    EXPECT_FALSE(itemOf(details)->isExpanded());
}

TEST_F(SheetTreeTest, AMovedItemKeepsItsChildrenAndIsNotSelected)
{
    tree.selectOnly(itemOf(details));
    tree.MoveItem(itemOf(details), tree.root(), itemOf(ground));
    EXPECT_EQ(outline(), "House\n Ground\n  1 - Plan\n  3 - Section\n Details\n  2 - Stair\n"
                         " Roof\n Cover\n");
    EXPECT_EQ(tree.caret(), itemOf(details));
    EXPECT_EQ(tree.selectedCount(), 0);
    tree.MoveItem(itemOf(cover), tree.root(), nullptr);
    EXPECT_EQ(itemOf(cover)->row(), 0);
}

} // namespace
