// Entries for what is open; our own writes are no outside changes.

#include <base/kv_file_system.h>

#include "session_scene.h"

namespace {

using Names = std::vector<std::string>;
const Names kReloaded = {"list reload", "sheet views reload", "model views reload"};

class WatchTableTest : public SessionTest
{
protected:
    void SetUp() override
    {
        SessionTest::SetUp();
        m_cookie = manager().registerEventHandler(&m_handler);
    }
    void TearDown() override
    {
        SessionTest::TearDown();
        manager().unregisterEventHandler(m_cookie);
        EXPECT_TRUE(g_watchTable.empty());
    }
    /// Sets the file's time back, as if it were older.
    void age(const char* name) const
    {
        namespace fs = std::filesystem;
        fs::last_write_time(folder.path() / name,
                            fs::last_write_time(folder.path() / name) - std::chrono::hours(1));
    }
    std::uint64_t timeOf(const char* name) const
    {
        return KvFileSystem::getModificationTime(folder.file(name));
    }

private:
    CTvSmSheetSetEventsHandler m_handler{&g_watchTable};
    int m_cookie = -1;
};

TEST_F(WatchTableTest, AnOpenedSetHasAnEntryWithItsTimeAndLockUntilItCloses)
{
    made("a.dst");
    manager().closeDatabase(manager().findOpenDatabase(folder.file("a.dst")));
    EXPECT_TRUE(g_watchTable.empty());
    TvSmDatabase* database = manager().openDatabase(folder.file("a.dst"), true, 0);
    ASSERT_TRUE(g_watchTable.contains(database));
    const core::WatchEntry& entry = g_watchTable.at(database);
    EXPECT_EQ(entry.database, database);
    EXPECT_EQ(entry.lockStatus, 0);
    EXPECT_NE(entry.cookie, -1);
    EXPECT_EQ(entry.fileTime, timeOf("a.dst"));
    manager().closeDatabase(database);
    EXPECT_TRUE(g_watchTable.empty());
}

TEST_F(WatchTableTest, TheTimeOfAFileThatIsNotThereIsNought)
{
    TvSmDatabase* database = manager().createDatabase(folder.file("new.dst"), u"", true);
    EXPECT_EQ(g_watchTable.at(database).fileTime, 0u);
    manager().closeDatabase(database);
}

TEST_F(WatchTableTest, ACommitOfTheCurrentSetTakesTheTimeOverAndReloadsThePalettes)
{
    TvSmDatabase* database = made("a.dst");
    ActivateSheetSet(database);
    host.told.clear();
    age("a.dst");
    g_watchTable.at(database).fileTime = 1;
    changeName(database, u"House");
    EXPECT_EQ(g_watchTable.at(database).fileTime, timeOf("a.dst"));
    EXPECT_EQ(host.told, kReloaded);
}

TEST_F(WatchTableTest, ARollbackRefreshesNothing)
{
    TvSmDatabase* database = made("a.dst");
    ActivateSheetSet(database);
    host.told.clear();
    g_watchTable.at(database).fileTime = 1;
    changeName(database, u"House", false);
    EXPECT_EQ(g_watchTable.at(database).fileTime, 1u);
    EXPECT_TRUE(host.told.empty());
}

TEST_F(WatchTableTest, ACommitOfAnotherSetIsNoConcernOfThePalettes)
{
    TvSmDatabase* other = made("b.dst");
    ActivateSheetSet(other);
    TvSmDatabase* database = made("a.dst");
    ActivateSheetSet(database);
    host.told.clear();
    g_watchTable.at(other).fileTime = 1;
    changeName(other, u"House");
    EXPECT_EQ(g_watchTable.at(other).fileTime, 1u);
    EXPECT_TRUE(host.told.empty());
    // The mark of the write went with it: a rollback once it is current refreshes nothing.
    ActivateSheetSet(other);
    host.told.clear();
    changeName(other, u"Home", false);
    EXPECT_TRUE(host.told.empty());
}

TEST_F(WatchTableTest, WhatIsNoDatabaseAndUnknownEventsDoNothing)
{
    CTvSmSheetSetEventsHandler handler(&g_watchTable);
    TvSmSheet sheet;
    handler.onEvent(SmEventDatabaseOpened, &sheet);
    handler.onEvent(SmEventDatabaseOpened, nullptr);
    EXPECT_TRUE(g_watchTable.empty());
    TvSmDatabase* database = made("a.dst");
    ActivateSheetSet(database);
    host.told.clear();
    for (const int code : {0, 15, 18, 19, 22})
        g_watchTable.at(database).handler->onEvent(code, database);
    g_watchTable.at(database).handler->onEvent(SmEventLockEnded, database);
    EXPECT_TRUE(host.told.empty());
}

TEST_F(WatchTableTest, ASetThatIsOpenedAgainKeepsItsEntry)
{
    TvSmDatabase* database = made("a.dst");
    const int cookie = g_watchTable.at(database).cookie;
    g_watchTable.at(database).handler->onEvent(SmEventDatabaseOpened, database);
    EXPECT_EQ(g_watchTable.size(), 1u);
    EXPECT_EQ(g_watchTable.at(database).cookie, cookie);
    ActivateSheetSet(database);
    host.told.clear();
    changeName(database, u"House");
    EXPECT_EQ(host.told, kReloaded) << "once";
}

} // namespace
