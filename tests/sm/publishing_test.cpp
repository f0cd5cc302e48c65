#include <sm/publishing.h>

#include <gtest/gtest.h>

#include "sheet_set_builder.h"

namespace {

using Sheets = std::vector<TvSmSheet*>;

/// set: s1, outer (o1, inner (i1, i2)), s2
class Publishing : public testing::Test
{
protected:
    Publishing()
    {
        s1 = addSheet(set, u"", u"s1");
        outer = addSubset(set, u"outer");
        s2 = addSheet(set, u"", u"s2");
        o1 = addSheet(outer, u"", u"o1");
        inner = addSubset(outer, u"inner");
        i1 = addSheet(inner, u"", u"i1");
        i2 = addSheet(inner, u"", u"i2");
    }
    static Sheets collected(const TvSmSubset* subset, bool skipOwnTest)
    {
        Sheets out;
        CollectPublishableSheets(subset, out, skipOwnTest);
        return out;
    }

    TvSmDatabase db;
    TvSmSheetSet* set = db.getSheetSet();
    TvSmSubset *outer, *inner;
    TvSmSheet *s1, *s2, *o1, *i1, *i2;
};

} // namespace

TEST_F(Publishing, NullIsNeverPublishable)
{
    EXPECT_FALSE(IsSubsetPublishable(nullptr));
    EXPECT_FALSE(IsComponentPublishable(nullptr));
    EXPECT_FALSE(SubsetHasSheets(nullptr));
    EXPECT_TRUE(collected(nullptr, true).empty());
    EXPECT_TRUE(collected(nullptr, false).empty());
}

TEST_F(Publishing, ASubsetIsUnlessItOrOneAboveItIsExcluded)
{
    EXPECT_TRUE(IsSubsetPublishable(outer));
    EXPECT_TRUE(IsSubsetPublishable(inner));
    ASSERT_TRUE(outer->setExcludeFromPublish(true));
    EXPECT_FALSE(IsSubsetPublishable(outer));
    EXPECT_FALSE(IsSubsetPublishable(inner));
    ASSERT_TRUE(outer->setExcludeFromPublish(false) && inner->setExcludeFromPublish(true));
    EXPECT_TRUE(IsSubsetPublishable(outer));
    EXPECT_FALSE(IsSubsetPublishable(inner));
}

TEST_F(Publishing, TheFlagOfTheSetItselfMeansNothing)
{
    ASSERT_TRUE(set->setExcludeFromPublish(true));
    EXPECT_TRUE(IsSubsetPublishable(outer));
    EXPECT_TRUE(IsComponentPublishable(set));
    EXPECT_TRUE(IsComponentPublishable(s1));
    EXPECT_TRUE(IsComponentPublishable(i1));
    EXPECT_EQ(collected(set, true), (Sheets{s1, o1, i1, i2, s2}));
}

TEST_F(Publishing, TheSetAsASubsetHasNoSetAboveIt)
{
    EXPECT_FALSE(IsSubsetPublishable(set));
    EXPECT_TRUE(collected(set, false).empty());
}

TEST_F(Publishing, ASubsetThatStandsNowhereIsNot)
{
    ASSERT_TRUE(set->removeSubset(outer));
    EXPECT_FALSE(IsSubsetPublishable(outer));
    EXPECT_FALSE(IsSubsetPublishable(inner));
    EXPECT_TRUE(collected(outer, false).empty());
    EXPECT_EQ(collected(outer, true), Sheets{o1});
}

TEST_F(Publishing, ASheetIsUnlessItOrASubsetAboveIsExcluded)
{
    EXPECT_TRUE(IsComponentPublishable(i1));
    ASSERT_TRUE(i1->setExcludeFromPublish(true));
    EXPECT_FALSE(IsComponentPublishable(i1));
    EXPECT_TRUE(IsComponentPublishable(i2));
    ASSERT_TRUE(outer->setExcludeFromPublish(true));
    EXPECT_FALSE(IsComponentPublishable(i2));
    EXPECT_TRUE(IsComponentPublishable(s1));
    ASSERT_TRUE(s1->setExcludeFromPublish(true));
    EXPECT_FALSE(IsComponentPublishable(s1));
}

TEST_F(Publishing, ASheetWithoutOwnerIs)
{
    ASSERT_TRUE(set->removeSheet(s1));
    EXPECT_EQ(s1->owner(), nullptr);
    EXPECT_TRUE(IsComponentPublishable(s1));
}

TEST_F(Publishing, SetAndSubsetNeedASheetThatIs)
{
    EXPECT_TRUE(IsComponentPublishable(set));
    EXPECT_TRUE(IsComponentPublishable(outer));
    for (TvSmSheet* sheet : {o1, i1, i2})
        ASSERT_TRUE(sheet->setExcludeFromPublish(true));
    EXPECT_FALSE(IsComponentPublishable(outer));
    EXPECT_FALSE(IsComponentPublishable(inner));
    EXPECT_TRUE(IsComponentPublishable(set));
    for (TvSmSheet* sheet : {s1, s2})
        ASSERT_TRUE(sheet->setExcludeFromPublish(true));
    EXPECT_FALSE(IsComponentPublishable(set));
    EXPECT_FALSE(IsComponentPublishable(addSubset(set, u"empty")));
}

TEST_F(Publishing, ASubsetThatIsExcludedIsNotWhateverItHolds)
{
    ASSERT_TRUE(inner->setExcludeFromPublish(true));
    EXPECT_FALSE(IsComponentPublishable(inner));
    EXPECT_FALSE(IsComponentPublishable(i1));
    EXPECT_TRUE(IsComponentPublishable(outer));
    ASSERT_TRUE(inner->setExcludeFromPublish(false) && outer->setExcludeFromPublish(true));
    EXPECT_FALSE(IsComponentPublishable(outer));
    EXPECT_FALSE(IsComponentPublishable(inner)); // excluded from above
}

TEST_F(Publishing, WhatIsNeitherSetSubsetNorSheetIsNot)
{
    EXPECT_FALSE(IsComponentPublishable(addView(s1, u"view")));
    EXPECT_FALSE(IsComponentPublishable(set->getPublishOptions()));
}

TEST_F(Publishing, CollectingKeepsTheOrderOfTheTreeAndLeavesOutTheExcluded)
{
    EXPECT_EQ(collected(set, true), (Sheets{s1, o1, i1, i2, s2}));
    EXPECT_EQ(collected(outer, false), (Sheets{o1, i1, i2}));
    ASSERT_TRUE(i1->setExcludeFromPublish(true) && s2->setExcludeFromPublish(true));
    EXPECT_EQ(collected(set, true), (Sheets{s1, o1, i2}));
    ASSERT_TRUE(inner->setExcludeFromPublish(true));
    EXPECT_EQ(collected(set, true), (Sheets{s1, o1}));
}

TEST_F(Publishing, SkippingTheOwnTestStillAsksEachSubsetBelow)
{
    ASSERT_TRUE(outer->setExcludeFromPublish(true));
    EXPECT_TRUE(collected(outer, false).empty());
    EXPECT_EQ(collected(outer, true), Sheets{o1});
    EXPECT_EQ(collected(inner, true), (Sheets{i1, i2}));
}

TEST_F(Publishing, CollectingAppends)
{
    Sheets out{s2};
    CollectPublishableSheets(inner, out, false);
    EXPECT_EQ(out, (Sheets{s2, i1, i2}));
}

TEST_F(Publishing, ASelectionGivesItsSheetsInItsOrderEvenTwice)
{
    Sheets out;
    EXPECT_TRUE(CollectSelectedPublishableSheets({i2, outer, s1}, out));
    EXPECT_EQ(out, (Sheets{i2, o1, i1, i2, s1}));
    out.clear();
    ASSERT_TRUE(outer->setExcludeFromPublish(true));
    EXPECT_TRUE(CollectSelectedPublishableSheets({i2, outer, s1, nullptr}, out));
    EXPECT_EQ(out, Sheets{s1});
}

TEST_F(Publishing, ASetInTheSelectionIsTheWholeResult)
{
    Sheets out;
    EXPECT_TRUE(CollectSelectedPublishableSheets({i2, set, s1}, out));
    EXPECT_EQ(out, (Sheets{s1, o1, i1, i2, s2}));
}

TEST_F(Publishing, AnEmptySelectionIsRefused)
{
    Sheets out;
    EXPECT_FALSE(CollectSelectedPublishableSheets({}, out));
    EXPECT_TRUE(out.empty());
}

TEST_F(Publishing, SubsetHasSheetsLooksAtAnyDepth)
{
    EXPECT_TRUE(SubsetHasSheets(set));
    EXPECT_TRUE(SubsetHasSheets(outer));
    ASSERT_TRUE(outer->removeSheet(o1));
    EXPECT_TRUE(SubsetHasSheets(outer));
    ASSERT_TRUE(inner->removeSheet(i1) && inner->removeSheet(i2));
    EXPECT_FALSE(SubsetHasSheets(outer));
    ASSERT_TRUE(inner->insertComponent(i1, nullptr) && i1->setExcludeFromPublish(true));
    EXPECT_TRUE(SubsetHasSheets(outer));
}
