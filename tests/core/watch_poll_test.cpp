// What is noticed of sheet sets that others change.

#include <core/watch_poll.h>

#include <base/edit_lock.h>
#include <base/kv_file_system.h>

#include "session_scene.h"

namespace {

using Names = std::vector<std::string>;
const Names kReloaded = {"list reload", "sheet views reload", "model views reload"};
const Names kLockShown = {"list lock", "sheet views lock", "model views lock"};

class WatchPollTest : public SessionTest
{
protected:
    void SetUp() override
    {
        SessionTest::SetUp();
        m_cookie = manager().registerEventHandler(&m_handler);
    }
    void TearDown() override
    {
        for (TvSmDatabase* database : itemsOf(manager().getDatabaseEnumerator()))
            if (database != GetCurrentDatabase())
                manager().closeDatabase(database);
        SessionTest::TearDown();
        manager().unregisterEventHandler(m_cookie);
    }
    TvSmDatabase* current(const char* name)
    {
        TvSmDatabase* database = made(name);
        changeName(database, u"House");
        ActivateSheetSet(database);
        PollWatchTable();
        host.told.clear();
        return database;
    }
    /// The set as another program would write it, later.
    void editOutside(const char* name, const std::string& from, const std::string& to)
    {
        namespace fs = std::filesystem;
        std::string text = folder.read(name);
        const std::size_t at = text.find(from);
        ASSERT_NE(at, std::string::npos) << text;
        folder.write("outside.tmp", text.replace(at, from.size(), to));
        fs::last_write_time(folder.path() / "outside.tmp",
                            fs::last_write_time(folder.path() / name) + std::chrono::seconds(2));
        fs::rename(folder.path() / "outside.tmp", folder.path() / name);
    }
    std::uint64_t timeOf(const char* name) const
    {
        return KvFileSystem::getModificationTime(folder.file(name));
    }

private:
    CTvSmSheetSetEventsHandler m_handler{&g_watchTable};
    int m_cookie = -1;
};

TEST_F(WatchPollTest, AnEmptyTableIsNothing)
{
    PollWatchTable();
    EXPECT_TRUE(host.told.empty());
}

TEST_F(WatchPollTest, WithoutAChangeNothingHappens)
{
    current("a.dst");
    const std::string before = folder.read("a.dst");
    PollWatchTable();
    EXPECT_TRUE(host.told.empty());
    EXPECT_EQ(folder.read("a.dst"), before);
}

TEST_F(WatchPollTest, AChangeFromOutsideIsLoadedOnceAndShown)
{
    TvSmDatabase* database = current("a.dst");
    editOutside("a.dst", "\"House\"", "\"Castle\"");
    PollWatchTable();
    EXPECT_EQ(database->getSheetSet()->getName(), u"Castle");
    EXPECT_EQ(host.told, kReloaded);
    EXPECT_EQ(g_watchTable.at(database).fileTime, timeOf("a.dst"));
    PollWatchTable();
    EXPECT_EQ(host.told, kReloaded);
}

TEST_F(WatchPollTest, AChangeOfAnotherOpenSetIsLoadedAndNotShown)
{
    TvSmDatabase* other = current("b.dst");
    current("a.dst");
    editOutside("b.dst", "\"House\"", "\"Castle\"");
    PollWatchTable();
    EXPECT_EQ(other->getSheetSet()->getName(), u"Castle");
    EXPECT_TRUE(host.told.empty());
}

TEST_F(WatchPollTest, AFileThatIsGoneIsWrittenAgainFromMemory)
{
    TvSmDatabase* database = current("a.dst");
    const std::string before = folder.read("a.dst");
    std::filesystem::remove(folder.path() / "a.dst");
    PollWatchTable();
    EXPECT_EQ(folder.read("a.dst"), before);
    EXPECT_EQ(g_watchTable.at(database).fileTime, timeOf("a.dst"));
    EXPECT_TRUE(host.told.empty()) << "nobody is told";
}

TEST_F(WatchPollTest, WhatALockHasNotCommittedIsNotWrittenWithIt)
{
    TvSmDatabase* database = current("a.dst");
    const std::string before = folder.read("a.dst");
    ASSERT_TRUE(database->lockDb(database));
    database->getSheetSet()->setName(u"Half done");
    std::filesystem::remove(folder.path() / "a.dst");
    PollWatchTable();
    EXPECT_EQ(folder.read("a.dst"), before);
    EXPECT_EQ(database->getSheetSet()->getName(), u"Half done");
    ASSERT_TRUE(database->unlockDb(database, false));
}

TEST_F(WatchPollTest, ASetThatWasNeverSavedHasNoFileAndGetsNone)
{
    TvSmDatabase* database = manager().createDatabase(folder.file("new.dst"), u"", true);
    PollWatchTable();
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "new.dst"));
    EXPECT_TRUE(database->getSheetSet()->setName(u"Still being made"));
}

TEST_F(WatchPollTest, ADeletedSetIsNotBroughtBack)
{
    current("a.dst");
    TvSmDatabase* other = made("b.dst");
    ASSERT_TRUE(other);
    ASSERT_TRUE(sm::deleteSheetSet(manager(), folder.file("b.dst")));
    PollWatchTable();
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "b.dst"));
}

TEST_F(WatchPollTest, ALockThatSomebodyElseTakesChangesWhatIsAllowedAndNoMore)
{
    TvSmDatabase* database = current("a.dst");
    {
        base::EditLock lock(sm::files(), sm::clock(), folder.file("a.dst"));
        ASSERT_TRUE(lock.take(u"elsewhere"));
        PollWatchTable();
        EXPECT_EQ(host.told, kLockShown);
        EXPECT_EQ(g_watchTable.at(database).lockStatus, 2);
        PollWatchTable();
        EXPECT_EQ(host.told, kLockShown);
    }
    PollWatchTable();
    EXPECT_EQ(host.told.size(), 2 * kLockShown.size());
}

TEST_F(WatchPollTest, AChangeWaitsForTheEndOfOurOwnLock)
{
    TvSmDatabase* database = current("a.dst");
    ASSERT_TRUE(database->lockDb(database));
    editOutside("a.dst", "\"House\"", "\"Castle\"");
    PollWatchTable();
    EXPECT_EQ(host.told, kLockShown);
    ASSERT_TRUE(database->unlockDb(database, false));
    PollWatchTable();
    EXPECT_EQ(database->getSheetSet()->getName(), u"Castle");
}

TEST_F(WatchPollTest, ADamagedFileIsTriedOnceAndChangesNothing)
{
    TvSmDatabase* database = current("a.dst");
    editOutside("a.dst", "<", "no set ");
    PollWatchTable();
    EXPECT_EQ(database->getSheetSet()->getName(), u"House");
    EXPECT_EQ(g_watchTable.at(database).fileTime, timeOf("a.dst"));
}

/// Closes every other set as soon as it is told of a change.
class ClosingHost : public NotingHost
{
public:
    core::SheetSetPalette* palette(Palette which) override
    {
        return which == Palette::SheetList ? &m_palette : nullptr;
    }

private:
    class Closing : public core::SheetSetPalette
    {
    public:
        void switchDatabase(bool) override {}
        void refreshLockState() override {}
        TvSmDatabase* displayedDatabase() const override { return GetCurrentDatabase(); }
        void reloadDatabase() override
        {
            TvSmSheetSetMgr* manager = KvDbUtil::tarvGetSheetSetMgr();
            for (TvSmDatabase* database : itemsOf(manager->getDatabaseEnumerator()))
                if (database != GetCurrentDatabase())
                    manager->closeDatabase(database);
        }
    };
    Closing m_palette;
};

TEST_F(WatchPollTest, SetsMayCloseWhileTheTableIsWalked)
{
    for (const char* name : {"1.dst", "2.dst", "3.dst", "4.dst", "5.dst"})
        made(name);
    current("a.dst");
    ClosingHost closing;
    core::setSessionHost(&closing);
    editOutside("a.dst", "\"House\"", "\"Castle\"");
    PollWatchTable();
    EXPECT_EQ(g_watchTable.size(), 1u);
    core::setSessionHost(&host);
}

} // namespace
