#include <gtest/gtest.h>

#include "sheet_set_builder.h"

namespace {

using References = std::vector<TvSmFileReference*>;

class ReferenceTest : public SheetSetTest
{
protected:
    void reopen()
    {
        ASSERT_TRUE(db->save(0));
        ASSERT_TRUE(manager.closeDatabase(db));
        db = open();
        ASSERT_TRUE(db);
        set = db->getSheetSet();
    }
    TvSmViewCategory* categoryNamed(const TvString& name) const
    {
        for (TvSmViewCategory* each : sm::each(set->getViewCategories()->getEnumerator()))
            if (each->getName() == name)
                return each;
        return nullptr;
    }

    TvSmDatabase* db = create();
    TvSmSheetSet* set = db->getSheetSet();
};

} // namespace

TEST_F(ReferenceTest, KeepsPathHandleAndNameAsGiven)
{
    TvSmSheet* sheet = addSheet(set, u"1", u"S");
    setLayout(sheet, u"C:\\plans\\a.dwg", u"1aF", u"Layout 1");
    const TvSmTvDbLayoutReference* layout = sheet->getLayoutReference();
    TvString out;
    EXPECT_EQ(layout->getFileName(out), u"C:\\plans\\a.dwg");
    EXPECT_EQ(out, layout->getFileName());
    EXPECT_EQ(layout->getHandle(out), u"1aF");
    EXPECT_EQ(out, layout->getHandle());
    EXPECT_EQ(layout->getName(out), u"Layout 1");
    EXPECT_EQ(out, layout->getName());
    EXPECT_EQ(layout->getStoredPath(), u"C:\\plans\\a.dwg");
}

TEST_F(ReferenceTest, EachSlotIsNullUntilSetAndIsDroppedByNull)
{
    TvSmSheet* sheet = addSheet(set, u"1", u"S");
    TvSmSheetView* view = addView(sheet, u"V");
    auto* layout = newFor<TvSmTvDbLayoutReference>(sheet);
    EXPECT_EQ(sheet->getLayoutReference(), nullptr);
    EXPECT_TRUE(sheet->setLayoutReference(layout));
    EXPECT_EQ(sheet->getLayoutReference(), layout);
    EXPECT_EQ(layout->owner(), sheet);
    EXPECT_EQ(db->findObject(handleOf(layout)), layout);
    EXPECT_TRUE(sheet->setLayoutReference(nullptr));
    EXPECT_EQ(sheet->getLayoutReference(), nullptr);
    EXPECT_EQ(db->findObject(handleOf(layout)), nullptr);

    auto* viewReference = newFor<TvSmTvDbViewReference>(view);
    EXPECT_EQ(view->getViewReference(), nullptr);
    EXPECT_TRUE(view->setViewReference(viewReference));
    EXPECT_EQ(view->getViewReference(), viewReference);
    EXPECT_TRUE(view->setViewReference(nullptr));
    EXPECT_EQ(view->getViewReference(), nullptr);

    auto* location = newFor<TvSmFileReference>(set);
    EXPECT_EQ(set->getNewSheetLocation(), nullptr);
    EXPECT_TRUE(set->setNewSheetLocation(location));
    EXPECT_EQ(set->getNewSheetLocation(), location);
    EXPECT_TRUE(set->setNewSheetLocation(nullptr));
    EXPECT_EQ(set->getNewSheetLocation(), nullptr);

    auto* layoutTemplate = newFor<TvSmTvDbLayoutReference>(set);
    EXPECT_EQ(set->getDefaultTemplateLayout(), nullptr);
    EXPECT_TRUE(set->setDefaultTemplateLayout(layoutTemplate));
    EXPECT_EQ(set->getDefaultTemplateLayout(), layoutTemplate);
    EXPECT_TRUE(set->setDefaultTemplateLayout(nullptr));
    EXPECT_EQ(set->getDefaultTemplateLayout(), nullptr);

    auto* setups = newFor<TvSmFileReference>(set);
    EXPECT_EQ(set->getAltPageSetups(), nullptr);
    EXPECT_TRUE(set->setAltPageSetups(setups));
    EXPECT_EQ(set->getAltPageSetups(), setups);
    EXPECT_TRUE(set->setAltPageSetups(nullptr));
    EXPECT_EQ(set->getAltPageSetups(), nullptr);

    auto* label = newFor<TvSmTvDbBlockRecordReference>(set);
    EXPECT_EQ(set->getDefaultLabelBlock(), nullptr);
    EXPECT_TRUE(set->setDefaultLabelBlock(label));
    EXPECT_EQ(set->getDefaultLabelBlock(), label);
    EXPECT_TRUE(set->setDefaultLabelBlock(nullptr));
    EXPECT_EQ(set->getDefaultLabelBlock(), nullptr);
}

TEST_F(ReferenceTest, OneThatIsSetElsewhereIsNotSharedByTwoSlots)
{
    TvSmSheet* first = addSheet(set, u"1", u"S");
    TvSmSheet* second = addSheet(set, u"2", u"T");
    auto* layout = setLayout(first, u"a.dwg", u"1", u"L");
    EXPECT_FALSE(second->setLayoutReference(layout));
    EXPECT_EQ(second->getLayoutReference(), nullptr);
    EXPECT_TRUE(first->setLayoutReference(nullptr));
    EXPECT_TRUE(second->setLayoutReference(layout));
    EXPECT_EQ(layout->owner(), second);
}

TEST_F(ReferenceTest, OfAnotherDatabaseOrWithoutOneIsRefused)
{
    TvSmSheet* sheet = addSheet(set, u"1", u"S");
    TvSmDatabase other;
    std::unique_ptr<TvSmTvDbLayoutReference> foreign(
        newFor<TvSmTvDbLayoutReference>(other.getSheetSet()));
    EXPECT_FALSE(sheet->setLayoutReference(foreign.get()));
    TvSmTvDbLayoutReference unbound;
    EXPECT_FALSE(sheet->setLayoutReference(&unbound));
    EXPECT_EQ(sheet->getLayoutReference(), nullptr);
    EXPECT_FALSE(set->getResourceLocations()->add(foreign.get()));
    EXPECT_FALSE(set->getResourceLocations()->add(&unbound));
}

TEST_F(ReferenceTest, AListKeepsTheOrderOfAdding)
{
    TvSmReferenceCollection* list = set->getResourceLocations();
    EXPECT_TRUE(itemsOf(list->getEnumerator()).empty());
    auto* first = newFor<TvSmFileReference>(list);
    auto* second = newFor<TvSmFileReference>(list);
    EXPECT_TRUE(list->add(second));
    EXPECT_TRUE(list->add(first));
    EXPECT_TRUE(list->add(second)); // stays where it is
    EXPECT_EQ(itemsOf(list->getEnumerator()), (References{second, first}));
    EXPECT_TRUE(list->remove(second));
    EXPECT_FALSE(list->remove(second));
    EXPECT_FALSE(list->remove(nullptr));
    EXPECT_FALSE(list->add(nullptr));
    EXPECT_EQ(itemsOf(list->getEnumerator()), References{first});
    EXPECT_EQ(db->findObject(handleOf(second)), nullptr);
    EXPECT_TRUE(list->add(second));
    EXPECT_EQ(itemsOf(list->getEnumerator()), (References{first, second}));
}

TEST_F(ReferenceTest, ACategoryPointsAtTheSetsCalloutsThroughSaveAndLoad)
{
    auto* shared = addBlock(set->getCalloutBlocks(), u"Bubble");
    addBlock(set->getCalloutBlocks(), u"Arrow");
    for (const char* name : {"Plans", "Sections"})
        ASSERT_TRUE(addCategory(set, name)->getCalloutBlocks()->add(shared));
    EXPECT_EQ(shared->owner(), set->getCalloutBlocks());
    const TvString handle = handleOf(shared);
    for (int round = 0; round < 2; ++round) {
        reopen();
        const References callouts = itemsOf(set->getCalloutBlocks()->getEnumerator());
        ASSERT_EQ(callouts.size(), 2u);
        EXPECT_EQ(handleOf(callouts[0]), handle);
        for (const char* name : {"Plans", "Sections"})
            EXPECT_EQ(itemsOf(categoryNamed(name)->getCalloutBlocks()->getEnumerator()),
                      References{callouts[0]});
    }
}

TEST_F(ReferenceTest, RemovalFromTheSetRemovesFromTheCategories)
{
    auto* shared = addBlock(set->getCalloutBlocks(), u"Bubble");
    auto* other = addBlock(set->getCalloutBlocks(), u"Arrow");
    TvSmViewCategory* plans = addCategory(set, u"Plans");
    ASSERT_TRUE(plans->getCalloutBlocks()->add(shared));
    ASSERT_TRUE(plans->getCalloutBlocks()->add(other));
    reopen();
    const References callouts = itemsOf(set->getCalloutBlocks()->getEnumerator());
    plans = categoryNamed(u"Plans");
    ASSERT_TRUE(db->lockDb(db));
    EXPECT_TRUE(set->getCalloutBlocks()->remove(callouts[0]));
    EXPECT_EQ(itemsOf(plans->getCalloutBlocks()->getEnumerator()), References{callouts[1]});
    ASSERT_TRUE(db->unlockDb(db, false));
    EXPECT_EQ(itemsOf(plans->getCalloutBlocks()->getEnumerator()), callouts);
    ASSERT_TRUE(db->lockDb(db));
    EXPECT_TRUE(set->getCalloutBlocks()->remove(callouts[0]));
    ASSERT_TRUE(db->unlockDb(db, true));
    reopen();
    EXPECT_EQ(itemsOf(categoryNamed(u"Plans")->getCalloutBlocks()->getEnumerator()).size(), 1u);
}

TEST_F(ReferenceTest, RemovalFromACategoryLeavesTheSetsOwn)
{
    auto* shared = addBlock(set->getCalloutBlocks(), u"Bubble");
    TvSmViewCategory* plans = addCategory(set, u"Plans");
    ASSERT_TRUE(plans->getCalloutBlocks()->add(shared));
    EXPECT_TRUE(plans->getCalloutBlocks()->remove(shared));
    EXPECT_EQ(itemsOf(set->getCalloutBlocks()->getEnumerator()), References{shared});
    EXPECT_EQ(db->findObject(handleOf(shared)), shared);
    EXPECT_TRUE(itemsOf(plans->getCalloutBlocks()->getEnumerator()).empty());
}

TEST_F(ReferenceTest, RemovalFromOneCategoryLeavesTheOthers)
{
    auto* block = addBlock(set->getCalloutBlocks(), u"B");
    TvSmReferenceCollection* one = addCategory(set, u"One")->getCalloutBlocks();
    TvSmReferenceCollection* two = addCategory(set, u"Two")->getCalloutBlocks();
    ASSERT_TRUE(one->add(block) && two->add(block) && one->remove(block));
    EXPECT_TRUE(itemsOf(one->getEnumerator()).empty());
    EXPECT_EQ(itemsOf(two->getEnumerator()), std::vector<TvSmFileReference*>{block});
}

TEST_F(ReferenceTest, WhatTheSetRemovedDoesNotComeBackToTheCategories)
{
    auto* block = addBlock(set->getCalloutBlocks(), u"B");
    TvSmReferenceCollection* one = addCategory(set, u"One")->getCalloutBlocks();
    ASSERT_TRUE(one->add(block) && set->getCalloutBlocks()->remove(block));
    ASSERT_TRUE(set->getCalloutBlocks()->add(block));
    EXPECT_TRUE(itemsOf(one->getEnumerator()).empty());
}

TEST_F(ReferenceTest, ACategorysOwnCalloutIsInOtherCategoriesWhileItIsThere)
{
    TvSmViewCategory* category = addCategory(set, u"One");
    auto* block = addBlock(category->getCalloutBlocks(), u"B");
    TvSmReferenceCollection* two = addCategory(set, u"Two")->getCalloutBlocks();
    ASSERT_TRUE(two->add(block));
    EXPECT_EQ(block->owner(), category->getCalloutBlocks());
    EXPECT_EQ(itemsOf(two->getEnumerator()), std::vector<TvSmFileReference*>{block});
    ASSERT_TRUE(set->getViewCategories()->remove(category));
    EXPECT_TRUE(itemsOf(two->getEnumerator()).empty());
    EXPECT_EQ(itemsOf(category->getCalloutBlocks()->getEnumerator()),
              std::vector<TvSmFileReference*>{block});
    ASSERT_TRUE(set->getViewCategories()->add(category, 0));
    EXPECT_EQ(itemsOf(two->getEnumerator()), std::vector<TvSmFileReference*>{block});
}

TEST_F(ReferenceTest, TheSetTakesOverWhatACategoryHadFirst)
{
    TvSmViewCategory* plans = addCategory(set, u"Plans");
    auto* block = addBlock(plans->getCalloutBlocks(), u"Bubble");
    EXPECT_EQ(block->owner(), plans->getCalloutBlocks());
    EXPECT_TRUE(set->getCalloutBlocks()->add(block));
    EXPECT_EQ(block->owner(), set->getCalloutBlocks());
    reopen();
    plans = categoryNamed(u"Plans");
    EXPECT_EQ(itemsOf(plans->getCalloutBlocks()->getEnumerator()),
              itemsOf(set->getCalloutBlocks()->getEnumerator()));
}

TEST_F(ReferenceTest, ACategorysOwnCalloutGoesThroughAFile)
{
    addBlock(addCategory(set, u"Plans")->getCalloutBlocks(), u"Bubble");
    const std::string before = Outline::of(db);
    reopen();
    EXPECT_NE(before.find("Bubble"), std::string::npos);
    EXPECT_EQ(itemsOf(categoryNamed(u"Plans")->getCalloutBlocks()->getEnumerator()).size(), 1u);
    EXPECT_TRUE(itemsOf(set->getCalloutBlocks()->getEnumerator()).empty());
}

TEST_F(ReferenceTest, ListsKeepTheClassOfEachReference)
{
    TvSmReferenceCollection* list = set->getResourceLocations();
    ASSERT_TRUE(list->add(newFor<TvSmFileReference>(list)));
    ASSERT_TRUE(list->add(newFor<TvSmDbObjectReference>(list)));
    ASSERT_TRUE(list->add(newFor<TvSmTvDbLayoutReference>(list)));
    ASSERT_TRUE(list->add(newFor<TvSmTvDbViewReference>(list)));
    ASSERT_TRUE(list->add(newFor<TvSmTvDbBlockRecordReference>(list)));
    reopen();
    std::vector<const TvRxClass*> classes;
    for (const TvSmFileReference* each : sm::each(set->getResourceLocations()->getEnumerator()))
        classes.push_back(each->isA());
    EXPECT_EQ(classes, (std::vector<const TvRxClass*>{
                           TvSmFileReference::desc(), TvSmDbObjectReference::desc(),
                           TvSmTvDbLayoutReference::desc(), TvSmTvDbViewReference::desc(),
                           TvSmTvDbBlockRecordReference::desc()}));
}

TEST_F(ReferenceTest, TheResolvedPathLivesOnWhenANewOneIsSet)
{
    folder.write("a.dwg", "");
    auto* reference = newFor<TvSmFileReference>(set);
    ASSERT_TRUE(reference->setFileName(folder.file("a.dwg")) && set->setAltPageSetups(reference));
    const TvString& resolved = reference->getResolvedPath();
    EXPECT_EQ(resolved, u"");
    EXPECT_EQ(reference->resolveFileName(), folder.file("a.dwg"));
    EXPECT_EQ(reference->getResolvedPath(), folder.file("a.dwg"));
    const TvString& last = reference->getResolvedPath();
    ASSERT_TRUE(reference->setFileName(u"b.dwg"));
    EXPECT_EQ(last, reference->getResolvedPath());
    EXPECT_EQ(last, u"");
}
