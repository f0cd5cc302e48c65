#include <gtest/gtest.h>

#include "sheet_set_builder.h"

namespace {

using Views = std::vector<TvSmSheetView*>;

class ViewCategories : public SheetSetTest
{
protected:
    ViewCategories()
    {
        first = addSheet(set, u"1", u"S");
        second = addSheet(set, u"2", u"T");
    }
    static Views viewsOf(const TvSmSheet* sheet)
    {
        return itemsOf(sheet->getSheetViews()->getEnumerator());
    }
    static Views viewsIn(const TvSmViewCategory* category)
    {
        return itemsOf(category->getSheetViewEnumerator());
    }
    void reopen()
    {
        ASSERT_TRUE(manager.closeDatabase(db));
        db = open();
        ASSERT_TRUE(db);
        set = db->getSheetSet();
    }
    TvSmViewCategory* categoryAt(std::size_t index) const
    {
        return itemsOf(set->getViewCategories()->getEnumerator()).at(index);
    }

    TvSmDatabase* db = create();
    TvSmSheetSet* set = db->getSheetSet();
    TvSmSheet *first, *second;
};

} // namespace

TEST_F(ViewCategories, ASheetsViewsStandInTheOrderOfAdding)
{
    EXPECT_TRUE(viewsOf(first).empty());
    TvSmSheetView* a = addView(first, u"a");
    TvSmSheetView* b = addView(first, u"b");
    EXPECT_TRUE(first->getSheetViews()->add(a)); // stays where it is
    EXPECT_EQ(viewsOf(first), (Views{a, b}));
    EXPECT_EQ(a->owner(), first->getSheetViews());
    EXPECT_EQ(first->getSheetViews()->owner(), first);
}

TEST_F(ViewCategories, AViewThatIsAddedToAnotherSheetMovesThere)
{
    TvSmSheetView* view = addView(first, u"a");
    EXPECT_TRUE(second->getSheetViews()->add(view));
    EXPECT_TRUE(viewsOf(first).empty());
    EXPECT_EQ(viewsOf(second), Views{view});
    EXPECT_EQ(view->owner(), second->getSheetViews());
}

TEST_F(ViewCategories, ARemovedViewIsGoneUntilItIsAddedAgain)
{
    TvSmSheetView* view = addView(first, u"a");
    EXPECT_FALSE(second->getSheetViews()->remove(view));
    EXPECT_TRUE(first->getSheetViews()->remove(view));
    EXPECT_FALSE(first->getSheetViews()->remove(view));
    EXPECT_FALSE(first->getSheetViews()->remove(nullptr));
    EXPECT_FALSE(first->getSheetViews()->add(nullptr));
    EXPECT_EQ(db->findObject(handleOf(view)), nullptr);
    EXPECT_TRUE(first->getSheetViews()->add(view));
    EXPECT_EQ(db->findObject(handleOf(view)), view);
}

TEST_F(ViewCategories, ViewTextsAreKept)
{
    TvSmSheetView* view = addView(first, u"a");
    ASSERT_TRUE(view->setNumber(u"7") && view->setTitle(u"North") && view->setName(u"n"));
    TvString out;
    EXPECT_EQ(view->getNumber(out), u"7");
    EXPECT_EQ(out, u"7");
    EXPECT_EQ(view->getTitle(out), u"North");
    EXPECT_EQ(out, u"North");
    EXPECT_EQ(view->getName(out), u"n");
}

TEST_F(ViewCategories, ACategoryGivesItsViewsInTheOrderOfTheSheets)
{
    TvSmViewCategory* plans = addCategory(set, u"Plans");
    TvSmSheetView* late = addView(second, u"b", plans);
    TvSmSheetView* early = addView(first, u"a", plans);
    addView(first, u"none");
    EXPECT_EQ(early->getCategory(), plans);
    EXPECT_EQ(viewsIn(plans), (Views{early, late}));
    ASSERT_TRUE(set->insertComponent(second, first));
    EXPECT_EQ(viewsIn(plans), (Views{late, early}));
    ASSERT_TRUE(late->setCategory(nullptr));
    EXPECT_EQ(late->getCategory(), nullptr);
    EXPECT_EQ(viewsIn(plans), Views{early});
    ASSERT_TRUE(set->removeSheet(first));
    EXPECT_TRUE(viewsIn(plans).empty());
}

TEST_F(ViewCategories, ACategoryOfAnotherDatabaseIsRefused)
{
    TvSmViewCategory* plans = addCategory(set, u"Plans");
    TvSmSheetView* view = addView(first, u"a", plans);
    TvSmDatabase other;
    EXPECT_FALSE(view->setCategory(addCategory(other.getSheetSet(), u"foreign")));
    EXPECT_EQ(view->getCategory(), plans);
    std::unique_ptr<TvSmViewCategory> foreign(newFor<TvSmViewCategory>(other.getSheetSet()));
    EXPECT_FALSE(set->getViewCategories()->add(foreign.get(), 0));
}

TEST_F(ViewCategories, CategoriesStandInTheOrderOfAdding)
{
    EXPECT_TRUE(itemsOf(set->getViewCategories()->getEnumerator()).empty());
    TvSmViewCategory* plans = addCategory(set, u"Plans");
    TvSmViewCategory* details = addCategory(set, u"Details");
    EXPECT_TRUE(set->getViewCategories()->add(plans, 0));
    EXPECT_FALSE(set->getViewCategories()->add(nullptr, 0));
    EXPECT_EQ(itemsOf(set->getViewCategories()->getEnumerator()),
              (std::vector<TvSmViewCategory*>{plans, details}));
}

TEST_F(ViewCategories, ARemovedCategoryLeavesItsViewsWithoutOneUntilItComesBack)
{
    TvSmViewCategory* plans = addCategory(set, u"Plans");
    TvSmSheetView* view = addView(first, u"a", plans);
    EXPECT_TRUE(set->getViewCategories()->remove(plans));
    EXPECT_FALSE(set->getViewCategories()->remove(plans));
    EXPECT_FALSE(set->getViewCategories()->remove(nullptr));
    EXPECT_EQ(view->getCategory(), nullptr);
    EXPECT_EQ(db->findObject(handleOf(plans)), nullptr);
    EXPECT_TRUE(set->getViewCategories()->add(plans, 0));
    EXPECT_EQ(view->getCategory(), plans);
    EXPECT_EQ(viewsIn(plans), Views{view});
}

TEST_F(ViewCategories, AFreshSetHasNoDefaultCategory)
{
    EXPECT_EQ(set->getViewCategories()->getDefaultCategory(), nullptr);
    addCategory(set, u"Plans");
    EXPECT_EQ(set->getViewCategories()->getDefaultCategory(), nullptr);
}

TEST_F(ViewCategories, TheFirstWithoutANameIsTheDefaultAndTakesViewsWithoutCategory)
{
    TvSmViewCategory* plans = addCategory(set, u"Plans");
    TvSmViewCategory* unnamed = addCategory(set, u"");
    addCategory(set, u"");
    EXPECT_EQ(set->getViewCategories()->getDefaultCategory(), unnamed);
    TvSmSheetView* view = addView(first, u"a");
    TvSmSheetView* own = addView(first, u"b", plans);
    EXPECT_EQ(viewsIn(unnamed), Views{view});
    EXPECT_EQ(viewsIn(plans), Views{own});
    EXPECT_EQ(view->getCategory(), nullptr);
}

TEST_F(ViewCategories, ARenameAfterACommitKeepsTheDefault)
{
    addCategory(set, u"Plans");
    addCategory(set, u"");
    ASSERT_TRUE(db->save(0));
    ASSERT_TRUE(db->lockDb(db));
    ASSERT_TRUE(categoryAt(1)->setName(u"Others") && categoryAt(0)->setName(u""));
    ASSERT_TRUE(db->unlockDb(db, true));
    EXPECT_EQ(set->getViewCategories()->getDefaultCategory(), categoryAt(1));
    reopen();
    EXPECT_EQ(set->getViewCategories()->getDefaultCategory(), categoryAt(1));
    EXPECT_EQ(categoryAt(1)->getName(), u"Others");
}

TEST_F(ViewCategories, ACommitUnderTheLockMarksTheDefaultToo)
{
    ASSERT_TRUE(db->save(0));
    ASSERT_TRUE(db->lockDb(db));
    addCategory(set, u"");
    ASSERT_TRUE(db->unlockDb(db, true));
    reopen();
    ASSERT_TRUE(db->lockDb(db));
    ASSERT_TRUE(categoryAt(0)->setName(u"Others"));
    ASSERT_TRUE(db->unlockDb(db, true));
    EXPECT_EQ(set->getViewCategories()->getDefaultCategory(), categoryAt(0));
}

TEST_F(ViewCategories, ARenameBeforeAnyCommitTakesTheDefaultAway)
{
    addCategory(set, u"");
    ASSERT_TRUE(categoryAt(0)->setName(u"Others"));
    EXPECT_EQ(set->getViewCategories()->getDefaultCategory(), nullptr);
}

TEST_F(ViewCategories, ViewsAndCategoriesGoThroughAFile)
{
    TvSmViewCategory* plans = addCategory(set, u"Plans");
    addView(first, u"a", plans);
    addView(first, u"b");
    addView(second, u"c", plans);
    ASSERT_TRUE(db->save(0));
    const std::string before = Outline::of(db);
    reopen();
    EXPECT_EQ(Outline::of(db), before);
    EXPECT_EQ(viewsIn(categoryAt(0)).size(), 2u);
}
