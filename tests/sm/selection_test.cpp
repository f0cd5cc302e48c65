#include <gtest/gtest.h>

#include "sheet_set_builder.h"

namespace {

using Components = std::vector<TvSmComponent*>;

class Selections : public SheetSetTest
{
protected:
    Selections()
    {
        sheet = addSheet(set, u"1", u"S");
        subset = addSubset(set, u"D");
        inner = addSheet(subset, u"2", u"T");
        selection = set->getSheetSelections()->add(u"Print", u"on Monday");
    }
    static Components membersOf(const TvSmSheetSelection* selection)
    {
        return itemsOf(selection->getEnumerator());
    }

    TvSmDatabase* db = create();
    TvSmSheetSet* set = db->getSheetSet();
    TvSmSheet *sheet, *inner;
    TvSmSubset* subset;
    TvSmSheetSelection* selection;
};

} // namespace

TEST_F(Selections, ANewOneHasNameAndDescriptionAndNoMembers)
{
    ASSERT_NE(selection, nullptr);
    EXPECT_EQ(selection->getName(), u"Print");
    EXPECT_EQ(selection->getDesc(), u"on Monday");
    EXPECT_TRUE(membersOf(selection).empty());
    EXPECT_EQ(selection->owner(), set->getSheetSelections());
}

TEST_F(Selections, StandInTheOrderOfAddingAndAreRemoved)
{
    TvSmSheetSelection* second = set->getSheetSelections()->add(u"Print", u"same name");
    EXPECT_EQ(itemsOf(set->getSheetSelections()->getEnumerator()),
              (std::vector<TvSmSheetSelection*>{selection, second}));
    EXPECT_TRUE(set->getSheetSelections()->remove(selection));
    EXPECT_FALSE(set->getSheetSelections()->remove(selection));
    EXPECT_FALSE(set->getSheetSelections()->remove(nullptr));
    EXPECT_EQ(itemsOf(set->getSheetSelections()->getEnumerator()),
              std::vector<TvSmSheetSelection*>{second});
    EXPECT_EQ(db->findObject(handleOf(selection)), nullptr);
}

TEST_F(Selections, MembersStandInTheOrderOfAddingOnce)
{
    EXPECT_TRUE(selection->add(inner));
    EXPECT_TRUE(selection->add(sheet));
    EXPECT_TRUE(selection->add(inner));
    EXPECT_EQ(membersOf(selection), (Components{inner, sheet}));
    EXPECT_TRUE(selection->remove(inner));
    EXPECT_FALSE(selection->remove(inner));
    EXPECT_FALSE(selection->remove(nullptr));
    EXPECT_EQ(membersOf(selection), Components{sheet});
}

TEST_F(Selections, NullAndForeignComponentsAreRefused)
{
    TvSmDatabase other;
    EXPECT_FALSE(selection->add(nullptr));
    EXPECT_FALSE(selection->add(addSheet(other.getSheetSet(), u"1", u"foreign")));
    EXPECT_FALSE(selection->remove(addSheet(other.getSheetSet(), u"1", u"foreign")));
    TvSmSheet unbound;
    EXPECT_FALSE(selection->add(&unbound));
    EXPECT_TRUE(membersOf(selection).empty());
}

TEST_F(Selections, LeaveOutARemovedComponentAndShowItAgainWhenItComesBack)
{
    ASSERT_TRUE(selection->add(inner) && selection->add(sheet));
    TvSmSheetView* view = addView(inner, u"V");
    const TvString handle = handleOf(inner);
    ASSERT_TRUE(set->removeSubset(subset));
    EXPECT_EQ(membersOf(selection), Components{sheet});
    ASSERT_TRUE(set->insertComponent(subset, nullptr));
    EXPECT_EQ(membersOf(selection), (Components{inner, sheet}));
    EXPECT_EQ(handleOf(inner), handle);
    EXPECT_EQ(itemsOf(inner->getSheetViews()->getEnumerator()), std::vector<TvSmSheetView*>{view});
}

TEST_F(Selections, ComeBackWithTheComponentAfterACommitWithoutIt)
{
    ASSERT_TRUE(selection->add(inner) && selection->add(sheet) && db->save(0));
    ASSERT_TRUE(db->lockDb(db));
    ASSERT_TRUE(subset->removeSheet(inner));
    ASSERT_TRUE(db->unlockDb(db, true));
    EXPECT_EQ(membersOf(selection), Components{sheet});
    ASSERT_TRUE(db->lockDb(db));
    ASSERT_TRUE(set->insertComponent(inner, nullptr));
    ASSERT_TRUE(db->unlockDb(db, true));
    EXPECT_EQ(membersOf(selection), (Components{inner, sheet}));
    const std::string before = Outline::of(db);
    ASSERT_TRUE(manager.closeDatabase(db));
    ASSERT_TRUE(open());
    EXPECT_EQ(Outline::of(open()), before);
}

TEST_F(Selections, KeepTheirMembersWithoutTheLock)
{
    ASSERT_TRUE(selection->add(sheet) && db->save(0));
    EXPECT_FALSE(selection->remove(sheet));
    EXPECT_FALSE(selection->add(subset));
    EXPECT_EQ(set->getSheetSelections()->add(u"new", u""), nullptr);
    EXPECT_FALSE(set->getSheetSelections()->remove(selection));
    EXPECT_EQ(membersOf(selection), Components{sheet});
}

TEST_F(Selections, TakeOnlyWhatHasAHandle)
{
    EXPECT_FALSE(selection->add(set->getSheetSelections()));
    EXPECT_FALSE(selection->remove(set->getSheetSelections()));
    EXPECT_TRUE(membersOf(selection).empty());
}

TEST_F(Selections, OfWhatIsNotInTheSetNeverReachTheFile)
{
    TvSmSheet* never = set->createSheet(u"never", u"");
    ASSERT_TRUE(selection->add(never) && selection->add(sheet));
    EXPECT_EQ(membersOf(selection), Components{sheet});
    ASSERT_TRUE(db->save(0));
    EXPECT_EQ(content().find('"' + handleOf(never).utf8() + '"'), std::string::npos) << content();
    EXPECT_EQ(content().find("never"), std::string::npos);
}
