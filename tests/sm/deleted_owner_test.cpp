#include <gtest/gtest.h>

#include "sheet_set_builder.h"

// A maker deletes an object that was never added. What he had put into it is the database's, stays
// valid, and has no owner any more: it can be put in elsewhere.

namespace {

class DeletedOwner : public SheetSetTest
{
protected:
    TvSmDatabase* db = create();
    TvSmSheetSet* set = db->getSheetSet();

    template <class T>
    std::unique_ptr<T> make(TvSmPersist* owner)
    {
        return std::unique_ptr<T>(newFor<T>(owner));
    }
};

} // namespace

TEST_F(DeletedOwner, LeavesItsProperties)
{
    auto view = make<TvSmSheetView>(set);
    auto* value = newFor<TvSmCustomPropertyValue>(view.get());
    ASSERT_TRUE(view->getCustomProperties()->setProperty(u"p", value));
    view.reset();
    EXPECT_EQ(value->owner(), nullptr);
    EXPECT_TRUE(set->getCustomProperties()->setProperty(u"p", value));
    EXPECT_EQ(db->findObject(handleOf(value)), value);
}

TEST_F(DeletedOwner, LeavesAViewsReference)
{
    auto view = make<TvSmSheetView>(set);
    auto* reference = newFor<TvSmTvDbViewReference>(view.get());
    ASSERT_TRUE(view->setViewReference(reference));
    view.reset();
    EXPECT_EQ(reference->owner(), nullptr);
    TvSmSheetView* other = addView(addSheet(set, u"1", u"One"), u"v");
    EXPECT_TRUE(other->setViewReference(reference));
    EXPECT_EQ(db->findObject(handleOf(reference)), reference);
}

TEST_F(DeletedOwner, LeavesASheetsLayoutAndViews)
{
    auto sheet = make<TvSmSheet>(set);
    auto* layout = setLayout(sheet.get(), u"a.dwg", u"1", u"L");
    TvSmSheetView* view = addView(sheet.get(), u"v");
    sheet.reset();
    EXPECT_EQ(layout->owner(), nullptr);
    EXPECT_EQ(view->owner(), nullptr);
    TvSmSheet* other = addSheet(set, u"1", u"One");
    EXPECT_TRUE(other->setLayoutReference(layout));
    EXPECT_TRUE(other->getSheetViews()->add(view));
    EXPECT_EQ(db->findObject(handleOf(view)), view);
}

TEST_F(DeletedOwner, LeavesASubsetsReferencesAndChildren)
{
    auto subset = make<TvSmSubset>(set);
    auto* location = newFor<TvSmFileReference>(subset.get());
    auto* layout = newFor<TvSmTvDbLayoutReference>(subset.get());
    ASSERT_TRUE(subset->setNewSheetLocation(location) && subset->setDefaultTemplateLayout(layout));
    TvSmSheet* first = addSheet(subset.get(), u"1", u"One");
    TvSmSheet* second = addSheet(subset.get(), u"2", u"Two");
    subset.reset();
    for (const TvSmPersist* left : std::initializer_list<TvSmPersist*>{location, layout, first})
        EXPECT_EQ(left->owner(), nullptr);
    EXPECT_TRUE(set->setNewSheetLocation(location) && set->setDefaultTemplateLayout(layout));
    ASSERT_TRUE(set->insertComponent(second, nullptr) && set->insertComponent(first, nullptr));
    EXPECT_EQ(childrenOf(set), (std::vector<TvString>{u"Two", u"One"}));
}

TEST_F(DeletedOwner, LeavesACategorysOwnCalloutsAndNothingOfTheSets)
{
    auto* shared = addBlock(set->getCalloutBlocks(), u"Shared");
    auto category = make<TvSmViewCategory>(set->getViewCategories());
    auto* own = addBlock(category->getCalloutBlocks(), u"Own");
    ASSERT_TRUE(category->getCalloutBlocks()->add(shared));
    category.reset();
    EXPECT_EQ(own->owner(), nullptr);
    EXPECT_EQ(shared->owner(), set->getCalloutBlocks());
    EXPECT_TRUE(set->getCalloutBlocks()->add(own));
    EXPECT_EQ(itemsOf(set->getCalloutBlocks()->getEnumerator()),
              (std::vector<TvSmFileReference*>{shared, own}));
}
