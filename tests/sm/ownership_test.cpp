#include <gtest/gtest.h>

#include "sheet_set_builder.h"

// Whose an object is, and what a rollback makes of it.

namespace {

/// A saved set with a sheet that has a layout, a subset and the lock held.
class Ownership : public SheetSetTest
{
protected:
    Ownership()
    {
        layout = setLayout(sheet, u"a.dwg", u"1F", u"L");
        EXPECT_TRUE(db->save(0) && db->lockDb(db));
    }
    void rollBack() { ASSERT_TRUE(db->unlockDb(db, false)); }

    TvSmDatabase* db = create();
    TvSmSheetSet* set = db->getSheetSet();
    TvSmSheet* sheet = addSheet(set, u"1", u"One");
    TvSmSubset* ground = addSubset(set, u"Ground");
    TvSmTvDbLayoutReference* layout = nullptr;
};

} // namespace

TEST(UnboundObjects, TakeTextsBeforeTheyHaveADatabaseAndAfterItWent)
{
    TvSmSheetView view;
    EXPECT_TRUE(view.setTitle(u"before"));
    {
        TvSmDatabase db;
        ASSERT_TRUE(view.initNew(db.getSheetSet(), TvString()));
        EXPECT_EQ(view.getTitle(), u"before");
        EXPECT_TRUE(view.setTitle(u"bound"));
    }
    EXPECT_TRUE(view.setTitle(u"after"));
    EXPECT_EQ(view.getTitle(), u"after");
}

TEST(UnboundObjects, PartsThatWereAskedForBeforeBelongToTheDatabaseToo)
{
    TvSmDatabase db;
    TvSmViewCategory category;
    TvSmSheet sheet;
    const TvSmPersist* const parts[] = {category.getCalloutBlocks(), category.getCustomProperties(),
                                        sheet.getSheetViews(), sheet.getCustomProperties()};
    for (const TvSmPersist* part : parts)
        EXPECT_EQ(part->database(), nullptr);
    ASSERT_TRUE(category.initNew(db.getSheetSet()->getViewCategories(), TvString()));
    ASSERT_TRUE(sheet.initNew(db.getSheetSet(), TvString()));
    for (const TvSmPersist* part : parts)
        EXPECT_EQ(part->database(), &db);
    EXPECT_TRUE(sm::setTextProperty(sheet.getCustomProperties(), u"a", u"b", 2));
}

TEST_F(Ownership, ARollbackLeavesWhatItsMakerHoldsAlone)
{
    const std::unique_ptr<TvSmSheetView> held(newFor<TvSmSheetView>(sheet->getSheetViews()));
    auto gone = std::unique_ptr<TvSmSheetView>(newFor<TvSmSheetView>(sheet->getSheetViews()));
    ASSERT_TRUE(held->setTitle(u"held") && gone->setTitle(u"gone"));
    gone.reset();
    rollBack();
    EXPECT_EQ(held->getTitle(), u"held");
}

TEST_F(Ownership, WhatTheSetGaveUpUnderTheLockGoesIntoNothingThatAMakerHolds)
{
    const std::unique_ptr<TvSmSheet> held(newFor<TvSmSheet>(set));
    ASSERT_TRUE(sheet->setLayoutReference(nullptr));
    EXPECT_FALSE(held->setLayoutReference(layout));
    rollBack();
    EXPECT_EQ(sheet->getLayoutReference(), layout);
    EXPECT_EQ(held->getLayoutReference(), nullptr);
}

TEST_F(Ownership, ARollbackGivesBackTheOwnerThatWasMeant)
{
    TvSmSheet* made = set->createSheet(u"Made", u"");
    ASSERT_TRUE(db->unlockDb(db, true) && db->lockDb(db));
    ASSERT_TRUE(ground->insertComponent(made, nullptr));
    EXPECT_EQ(made->owner(), ground);
    rollBack();
    EXPECT_EQ(made->owner(), set);
    EXPECT_EQ(childrenOf(ground).size(), 0u);
}

TEST_F(Ownership, ARollbackGivesBackTheOwnerThatSetOwnerChanged)
{
    TvSmSheet* made = set->createSheet(u"Made", u"");
    ASSERT_TRUE(db->unlockDb(db, true) && db->lockDb(db));
    ASSERT_TRUE(made->setOwner(ground));
    EXPECT_EQ(made->owner(), ground);
    rollBack();
    EXPECT_EQ(made->owner(), set);
}

TEST_F(Ownership, TheSameReferenceOnceMoreIsNoChange)
{
    EXPECT_TRUE(sheet->setLayoutReference(layout));
    EXPECT_EQ(layout->owner(), sheet);
    EXPECT_TRUE(db->unlockDb(db, true));
    EXPECT_FALSE(sheet->setLayoutReference(layout)); // nor is it one that nobody may make
}

TEST_F(Ownership, ValuesThatAreSoAlreadyAreNoChange)
{
    ops.reset();
    ASSERT_TRUE(sheet->setExcludeFromPublish(false) && ground->setPromptForTemplate(false));
    ASSERT_TRUE(set->getPublishOptions()->setEplotFormat(0) && sheet->setTitle(u"One"));
    ASSERT_TRUE(set->getPublishOptions()->setDefaultFileName(u""));
    ASSERT_TRUE(db->unlockDb(db, true));
    for (const auto& call : ops.trace())
        EXPECT_NE(call.kind, base::FaultyFileOps::Kind::Rename) << call.path;
}
