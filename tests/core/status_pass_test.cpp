// Which images the items of a sheet list show.

#include <core/disk_look.h>
#include <core/status_pass.h>

#include <db/file_open_info_tip_manager.h>
#include <db/tv_db_database.h>

#include "session_scene.h"

namespace {

using core::SheetImage;
using core::StatusPass;

class StatusPassTest : public SessionTest
{
protected:
    void SetUp() override
    {
        SessionTest::SetUp();
        database = made("house.dst");
        set = database->getSheetSet();
        ASSERT_TRUE(database->lockDb(database));
        folder.write("a.dwg", "a drawing as far as its name goes");
        std::filesystem::create_directory(folder.path() / "plans");
    }
    void TearDown() override
    {
        manager().closeDatabase(database);
        SessionTest::TearDown();
    }
    TvSmSheet* sheetOf(TvSmSubset* parent, const char* drawing)
    {
        TvSmSheet* sheet = addSheet(parent, u"1", u"Plan");
        setLayout(sheet, folder.file(drawing), u"1E", u"A1");
        return sheet;
    }
    void place(TvSmSubset* subset, const char* name)
    {
        auto* location = newFor<TvSmFileReference>(subset);
        EXPECT_TRUE(location->setFileName(folder.file(name)) &&
                    subset->setNewSheetLocation(location));
    }
    StatusPass pass()
    {
        return StatusPass(database, [this](const TvString& handle, SheetImage image) {
            order.push_back(handle);
            images[handle] = image;
        });
    }
    SheetImage imageOf(const TvSmPersist* object)
    {
        pass().finish();
        return images.at(handleOf(object));
    }

    TvSmDatabase* database = nullptr;
    TvSmSheetSet* set = nullptr;
    std::map<TvString, SheetImage> images;
    std::vector<TvString> order;
};

TEST_F(StatusPassTest, ASheetShowsWhetherItsDrawingIsThereAndWhoHasIt)
{
    const TvSmSheet* there = sheetOf(set, "a.dwg");
    const TvSmSheet* gone = sheetOf(set, "gone.dwg");
    const TvSmSheet* without = addSheet(set, u"3", u"No layout");
    const TvSmSheet* aFolder = sheetOf(set, "plans");
    EXPECT_EQ(imageOf(there), SheetImage::ImageSheet);
    EXPECT_EQ(imageOf(gone), SheetImage::ImageSheetMissing);
    EXPECT_EQ(imageOf(without), SheetImage::ImageSheetMissing);
    EXPECT_EQ(imageOf(aFolder), SheetImage::ImageSheetMissing);
    EXPECT_FALSE(images.contains(handleOf(set))) << "the set's own never changes";
    TvDbDatabase user(false, true);
    ASSERT_TRUE(db::beginUse(user, folder.file("a.dwg")));
    EXPECT_EQ(imageOf(there), SheetImage::ImageSheetInUse);
    db::endUse(user);
    EXPECT_EQ(imageOf(there), SheetImage::ImageSheet);
}

TEST_F(StatusPassTest, ASubsetIsBadWhenAllItsSheetsAreMissingWhateverItsPlaceSays)
{
    TvSmSubset* ground = addSubset(set, u"Ground");
    place(ground, "plans");
    for (int i = 0; i < 3; ++i)
        sheetOf(ground, "gone.dwg");
    EXPECT_EQ(imageOf(ground), SheetImage::ImageSubsetBad);
    sheetOf(ground, "a.dwg");
    EXPECT_EQ(imageOf(ground), SheetImage::ImageSubset);
    ASSERT_TRUE(ground->setExcludeFromPublish(true));
    EXPECT_EQ(imageOf(ground), SheetImage::ImageSubsetNoPublish);
}

TEST_F(StatusPassTest, ASubsetWithoutSheetsAndWithAGoodPlaceIsInOrder)
{
    TvSmSubset* ground = addSubset(set, u"Ground");
    place(ground, "plans");
    EXPECT_EQ(imageOf(ground), SheetImage::ImageSubset);
}

TEST_F(StatusPassTest, ThePlaceOfTheNextSubsetAboveCounts)
{
    TvSmSubset* ground = addSubset(set, u"Ground");
    TvSmSubset* details = addSubset(addSubset(ground, u"Inner"), u"Details");
    EXPECT_EQ(imageOf(details), SheetImage::ImageSubsetBad) << "no place at all";
    place(set, "plans");
    EXPECT_EQ(imageOf(details), SheetImage::ImageSubset);
    place(ground, "nowhere");
    EXPECT_EQ(imageOf(details), SheetImage::ImageSubsetBad);
    place(details, "plans");
    EXPECT_EQ(imageOf(details), SheetImage::ImageSubset);
    EXPECT_EQ(imageOf(ground), SheetImage::ImageSubsetBad);
}

TEST_F(StatusPassTest, AnEmptyPlaceIsNoPlace)
{
    place(set, "plans");
    TvSmSubset* ground = addSubset(set, u"Ground");
    auto* location = newFor<TvSmFileReference>(ground);
    ASSERT_TRUE(ground->setNewSheetLocation(location));
    EXPECT_EQ(imageOf(ground), SheetImage::ImageSubset);
}

TEST_F(StatusPassTest, SheetsOfInnerSubsetsCountForTheOuterOnes)
{
    place(set, "plans");
    TvSmSubset* ground = addSubset(set, u"Ground");
    TvSmSubset* details = addSubset(ground, u"Details");
    sheetOf(details, "gone.dwg");
    EXPECT_EQ(imageOf(ground), SheetImage::ImageSubsetBad);
    sheetOf(ground, "a.dwg");
    EXPECT_EQ(imageOf(ground), SheetImage::ImageSubset);
    EXPECT_EQ(imageOf(details), SheetImage::ImageSubsetBad);
}

TEST_F(StatusPassTest, EachDrawingIsAskedOnceHoweverManySheetsItHas)
{
    for (int i = 0; i < 50; ++i) {
        sheetOf(set, "a.dwg");
        sheetOf(set, "gone.dwg");
    }
    StatusPass all = pass();
    all.finish();
    EXPECT_EQ(order.size(), 100u);
    EXPECT_EQ(all.drawingsAsked(), 2u);
}

TEST_F(StatusPassTest, TellsSheetsInTheOrderOfTheTreeAndASubsetBehindThem)
{
    TvSmSubset* ground = addSubset(set, u"Ground");
    const TvSmSheet* inner = sheetOf(ground, "a.dwg");
    const TvSmSheet* outer = sheetOf(set, "a.dwg");
    pass().finish();
    EXPECT_EQ(order, (std::vector<TvString>{handleOf(inner), handleOf(ground), handleOf(outer)}));
}

/// A clock on which every look at it takes a millisecond.
class SlowClock : public base::ManualClock
{
public:
    std::int64_t steadyNs() override
    {
        advance(std::chrono::milliseconds(1));
        return ManualClock::steadyNs();
    }
};

TEST_F(StatusPassTest, YieldsWhenItsTimeIsOverAndGoesOnWhereItWas)
{
    for (int i = 0; i < 100; ++i)
        sheetOf(set, "a.dwg");
    SlowClock clock;
    StatusPass all = pass();
    EXPECT_FALSE(all.work(clock, 20, core::DiskLook::kForEver));
    EXPECT_EQ(order.size(), 20u);
    int slices = 1;
    while (!all.work(clock, 20, core::DiskLook::kForEver))
        ++slices;
    EXPECT_EQ(order.size(), 100u);
    EXPECT_EQ(slices, 4);
    EXPECT_TRUE(all.work(clock, 20, core::DiskLook::kForEver));
    EXPECT_EQ(order.size(), 100u) << "it is done";
}

TEST_F(StatusPassTest, WhatWentBetweenTwoStepsKeepsItsImageAndDoesNotCount)
{
    place(set, "plans");
    TvSmSubset* ground = addSubset(set, u"Ground");
    sheetOf(ground, "gone.dwg");
    TvSmSheet* removed = sheetOf(ground, "a.dwg");
    StatusPass all = pass();
    ASSERT_TRUE(all.step());
    ASSERT_TRUE(ground->removeSheet(removed));
    all.finish();
    EXPECT_FALSE(images.contains(handleOf(removed)));
    EXPECT_EQ(images.at(handleOf(ground)), SheetImage::ImageSubsetBad);
}

TEST_F(StatusPassTest, OfNothingIsDone)
{
    StatusPass none(nullptr, {});
    EXPECT_TRUE(none.isDone());
    EXPECT_FALSE(none.step());
}

} // namespace
