// Borrowing the current database within a borrowing, and what is missed meanwhile; sets that enter
// and leave the watch table.

#include <base/edit_lock.h>

#include "session_scene.h"

namespace {

using Names = std::vector<std::string>;
const Names kReloaded = {"list reload", "sheet views reload", "model views reload"};

class BorrowTest : public SessionTest
{
protected:
    void SetUp() override
    {
        SessionTest::SetUp();
        m_cookie = manager().registerEventHandler(&m_handler);
        shown = made("shown.dst");
        outer = made("outer.dst");
        inner = made("inner.dst");
        ActivateSheetSet(shown);
        host.told.clear();
    }
    void TearDown() override
    {
        SessionTest::TearDown();
        for (TvSmDatabase* each : {outer, inner})
            manager().closeDatabase(each);
        manager().unregisterEventHandler(m_cookie);
    }
    TvSmDatabase *shown = nullptr, *outer = nullptr, *inner = nullptr;

private:
    CTvSmSheetSetEventsHandler m_handler{&g_watchTable};
    int m_cookie = -1;
};

TEST_F(BorrowTest, WhatWasMissedIsNotForgottenWhenAnotherSetChangesToo)
{
    {
        const core::BorrowedDatabase borrowed(outer);
        changeName(shown, u"House");
        changeName(inner, u"Other");
        EXPECT_TRUE(host.told.empty());
    }
    EXPECT_EQ(host.told, kReloaded);
}

TEST_F(BorrowTest, OneWithinAnotherGivesBackToThatOneWhichStillNoticesWhatItMisses)
{
    {
        const core::BorrowedDatabase first(outer);
        {
            const core::BorrowedDatabase second(inner);
            EXPECT_EQ(GetCurrentDatabase(), inner);
        }
        EXPECT_EQ(GetCurrentDatabase(), outer);
        changeName(shown, u"House");
        EXPECT_TRUE(host.told.empty());
    }
    EXPECT_EQ(GetCurrentDatabase(), shown);
    EXPECT_EQ(host.told, kReloaded);
}

TEST_F(BorrowTest, TheSetShownMayCloseWhileTwoAreBorrowed)
{
    {
        const core::BorrowedDatabase first(outer);
        {
            const core::BorrowedDatabase second(inner);
            manager().closeDatabase(shown);
            EXPECT_EQ(GetCurrentDatabase(), inner);
        }
        EXPECT_EQ(GetCurrentDatabase(), outer);
        EXPECT_TRUE(host.told.empty()) << "palettes are told once nothing is borrowed";
    }
    EXPECT_EQ(GetCurrentDatabase(), nullptr);
    EXPECT_EQ(host.told, (Names{"list switch, forget", "sheet views switch, forget",
                                "model views switch, forget"}));
}

TEST_F(BorrowTest, ASetThatIsOpenedWhileSomebodyHasItIsWatchedAsLocked)
{
    manager().closeDatabase(inner);
    base::EditLock theirs(base::systemFileOps(), base::systemClock(), folder.file("inner.dst"));
    ASSERT_TRUE(theirs.take(u"elsewhere"));
    inner = manager().openDatabase(folder.file("inner.dst"), true, 0);
    ASSERT_NE(inner, nullptr);
    EXPECT_NE(inner->getLockStatus(), 0);
    EXPECT_EQ(g_watchTable.at(inner).lockStatus, inner->getLockStatus());
    theirs.release();
}

TEST_F(BorrowTest, ASetThatClosesIsLeftByItsHandler)
{
    const int cookie = g_watchTable.at(inner).cookie;
    CTvSmSheetSetEventsHandler(&g_watchTable).onEvent(SmEventDatabaseClosing, inner);
    EXPECT_FALSE(g_watchTable.contains(inner));
    EXPECT_FALSE(inner->unregisterEventHandler(cookie)) << "nobody hears of it any more";
}

TEST_F(BorrowTest, AnOutsideChangeThatCannotBeReadNowIsTakenOverLater)
{
    {
        TvSmSheetSetMgr other;
        TvSmDatabase* copy = other.openDatabase(folder.file("shown.dst"), true, 0);
        ASSERT_TRUE(copy && copy->lockDb(copy));
        copy->getSheetSet()->setName(u"Other");
        ASSERT_TRUE(copy->unlockDb(copy, true));
        other.closeDatabase(copy);
    }
    ops.failKind(base::FaultyFileOps::Kind::Read, EIO);
    PollWatchTable();
    ops.reset();
    EXPECT_EQ(shown->getSheetSet()->getName(), u"");
    EXPECT_TRUE(host.told.empty());
    PollWatchTable();
    EXPECT_EQ(shown->getSheetSet()->getName(), u"Other");
    EXPECT_EQ(host.told, kReloaded);
}

} // namespace
