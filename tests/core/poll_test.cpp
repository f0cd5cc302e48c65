// What the fast poll notices of the files of open sets.

#include <base/kv_file_system.h>

#include "session_scene.h"

namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;
const Names kReloaded = {"list reload", "sheet views reload", "model views reload"};
const Names kLockShown = {"list lock", "sheet views lock", "model views lock"};

class PollTest : public SessionTest
{
protected:
    void SetUp() override
    {
        SessionTest::SetUp();
        m_cookie = manager().registerEventHandler(&m_handler);
        database = named("a.dst", u"PLAN");
        ActivateSheetSet(database);
        host.told.clear();
    }
    void TearDown() override
    {
        SessionTest::TearDown();
        for (TvSmDatabase* each : others)
            manager().closeDatabase(each);
        EXPECT_TRUE(g_watchTable.empty());
        manager().unregisterEventHandler(m_cookie);
    }
    TvSmDatabase* named(const char* file, const TvString& name)
    {
        TvSmDatabase* set = made(file);
        changeName(set, name);
        g_watchTable.at(set).takeFile();
        return set;
    }
    /// Another version of the file from outside, with another name of the set.
    void replaceOutside(const std::string& name, const char* file = "a.dst") const
    {
        std::string text = folder.read(file);
        const std::size_t at = text.find("PLAN");
        ASSERT_NE(at, std::string::npos) << text;
        folder.write("outside.tmp", text.replace(at, 4, name));
        fs::rename(folder.path() / "outside.tmp", folder.path() / file);
    }
    static TvString nameOf(const TvSmDatabase* set)
    {
        TvString text;
        return set->getSheetSet()->getName(text);
    }
    TvSmDatabase* database = nullptr;
    std::vector<TvSmDatabase*> others; // open, not in the session

private:
    CTvSmSheetSetEventsHandler m_handler{&g_watchTable};
    int m_cookie = -1;
};

TEST_F(PollTest, NothingNewIsNothingDone)
{
    PollWatchTable();
    EXPECT_TRUE(host.told.empty());
}

TEST_F(PollTest, AnOutsideChangeOfTheCurrentSetIsLoadedAndShown)
{
    replaceOutside("OTHER");
    PollWatchTable();
    EXPECT_EQ(nameOf(database), u"OTHER");
    EXPECT_EQ(host.told, kReloaded);
    PollWatchTable();
    EXPECT_EQ(host.told, kReloaded) << "once";
}

TEST_F(PollTest, AnotherFileOfTheSameTimeIsAnOutsideChangeToo)
{
    const auto time = fs::last_write_time(folder.path() / "a.dst");
    replaceOutside("OTHER");
    fs::last_write_time(folder.path() / "a.dst", time);
    PollWatchTable();
    EXPECT_EQ(nameOf(database), u"OTHER");
}

TEST_F(PollTest, AnOutsideChangeOfAnotherSetIsLoadedAndNoConcernOfThePalettes)
{
    TvSmDatabase* other = named("b.dst", u"PLAN");
    others.push_back(other);
    replaceOutside("OTHER", "b.dst");
    PollWatchTable();
    EXPECT_EQ(nameOf(other), u"OTHER");
    EXPECT_TRUE(host.told.empty());
}

TEST_F(PollTest, AFileThatWentIsWrittenAgainFromMemory)
{
    fs::remove(folder.path() / "a.dst");
    PollWatchTable();
    EXPECT_NE(folder.read("a.dst").find("PLAN"), std::string::npos);
    PollWatchTable();
    EXPECT_TRUE(host.told.empty()) << "our own write is no outside change";
}

TEST_F(PollTest, WhatCannotBeWrittenAgainIsTriedOnceAndTakenOverWhenItIsBack)
{
    const std::string text = folder.read("a.dst");
    for (const auto& entry : fs::directory_iterator(folder.path()))
        if (entry.is_regular_file())
            fs::remove(entry);
    ops.failKind(base::FaultyFileOps::Kind::Write, ENOSPC);
    PollWatchTable();
    EXPECT_FALSE(fs::exists(folder.path() / "a.dst"));
    ops.reset();
    PollWatchTable();
    EXPECT_FALSE(fs::exists(folder.path() / "a.dst")) << "not ten times a second";
    folder.write("a.dst", text);
    replaceOutside("BACK");
    PollWatchTable();
    EXPECT_EQ(nameOf(database), u"BACK");
    fs::remove(folder.path() / "a.dst");
    PollWatchTable();
    EXPECT_TRUE(fs::exists(folder.path() / "a.dst")) << "and it can be lost again";
}

TEST_F(PollTest, WhileATransmitRunsAnOutsideChangeWaits)
{
    database->setTransmitting(true);
    replaceOutside("OTHER");
    PollWatchTable();
    EXPECT_EQ(nameOf(database), u"PLAN");
    database->setTransmitting(false);
    PollWatchTable();
    EXPECT_EQ(nameOf(database), u"OTHER");
}

TEST_F(PollTest, ASetThatWasNeverSavedIsNotWritten)
{
    others.push_back(manager().createDatabase(folder.file("new.dst"), u"", true));
    PollWatchTable();
    EXPECT_FALSE(fs::exists(folder.path() / "new.dst"));
}

TEST_F(PollTest, AnotherStatusOfTheLockIsShownOnceAndNothingIsRead)
{
    ASSERT_TRUE(database->lockDb(database));
    PollWatchTable();
    EXPECT_EQ(host.told, kLockShown);
    PollWatchTable();
    EXPECT_EQ(host.told, kLockShown);
    ASSERT_TRUE(database->unlockDb(database, false));
    host.told.clear();
    PollWatchTable();
    EXPECT_EQ(host.told, kLockShown);
}

TEST_F(PollTest, TheLockOfAnotherSetIsNotShown)
{
    TvSmDatabase* other = named("b.dst", u"PLAN");
    others.push_back(other);
    ASSERT_TRUE(other->lockDb(other));
    PollWatchTable();
    EXPECT_TRUE(host.told.empty());
    EXPECT_EQ(g_watchTable.at(other).lockStatus, 1);
    ASSERT_TRUE(other->unlockDb(other, false));
}

TEST_F(PollTest, WhileTheSetIsLockedHereAnOutsideChangeWaits)
{
    ASSERT_TRUE(database->lockDb(database));
    replaceOutside("OTHER");
    PollWatchTable();
    EXPECT_EQ(nameOf(database), u"PLAN");
    ASSERT_TRUE(database->unlockDb(database, false));
    host.told.clear();
    PollWatchTable();
    EXPECT_EQ(nameOf(database), u"OTHER");
    Names told = kLockShown;
    told.insert(told.end(), kReloaded.begin(), kReloaded.end());
    EXPECT_EQ(host.told, told);
}

TEST_F(PollTest, WhatALockHadToReadAfreshIsShownByTheNextPoll)
{
    replaceOutside("OTHER");
    ASSERT_TRUE(database->lockDb(database));
    EXPECT_EQ(nameOf(database), u"OTHER") << "the lock reads afresh";
    ASSERT_TRUE(database->unlockDb(database, false));
    EXPECT_TRUE(host.told.empty()) << "nothing was written: nobody was told";
    PollWatchTable();
    EXPECT_EQ(host.told, kReloaded);
}

TEST_F(PollTest, AFileThatMakesNoSenseChangesNothingAndIsReadOnce)
{
    folder.write("outside.tmp", "no sheet set");
    fs::rename(folder.path() / "outside.tmp", folder.path() / "a.dst");
    PollWatchTable();
    EXPECT_EQ(nameOf(database), u"PLAN");
    EXPECT_TRUE(host.told.empty());
    EXPECT_EQ(g_watchTable.at(database).fileTime,
              KvFileSystem::getModificationTime(folder.file("a.dst")));
}

TEST_F(PollTest, SetsMayCloseWhileTheyArePolled)
{
    struct Closing : core::SheetSetPalette {
        void switchDatabase(bool) override {}
        void reloadDatabase() override
        {
            while (!GetSessionDatabases().empty())
                manager().closeDatabase(GetSessionDatabases().front());
        }
        void refreshLockState() override {}
        TvSmDatabase* displayedDatabase() const override { return GetCurrentDatabase(); }
    } closing;
    for (const char* file : {"b.dst", "c.dst", "d.dst"})
        ActivateSheetSet(named(file, u"PLAN"));
    host.list = &closing;
    for (const char* file : {"a.dst", "b.dst", "c.dst", "d.dst"})
        replaceOutside("OTHER", file);
    PollWatchTable();
    EXPECT_TRUE(g_watchTable.empty());
    EXPECT_TRUE(GetSessionDatabases().empty());
    EXPECT_EQ(GetCurrentDatabase(), nullptr);
}

// Borrowing

TEST_F(PollTest, WhileAWizardBorrowsTheCurrentDatabaseThePalettesStayQuiet)
{
    TvSmDatabase* other = named("b.dst", u"PLAN");
    others.push_back(other);
    {
        const core::BorrowedDatabase borrowed(other);
        EXPECT_EQ(GetCurrentDatabase(), other);
        changeName(other, u"Mine");
        replaceOutside("OTHER");
        PollWatchTable();
        EXPECT_TRUE(host.told.empty()) << "what they show is not what is current";
    }
    EXPECT_EQ(GetCurrentDatabase(), database);
    EXPECT_EQ(host.told, kReloaded) << "what was missed is shown now";
}

TEST_F(PollTest, AWizardThatChangesNothingOfTheFormerSetLeavesThePalettesAlone)
{
    TvSmDatabase* other = named("b.dst", u"PLAN");
    {
        const core::BorrowedDatabase borrowed(other);
        manager().closeDatabase(other);
        EXPECT_EQ(GetCurrentDatabase(), nullptr) << "never a set that is gone";
    }
    EXPECT_EQ(GetCurrentDatabase(), database);
    EXPECT_TRUE(host.told.empty());
}

TEST_F(PollTest, AFormerSetThatClosesMeanwhileDoesNotComeBack)
{
    TvSmDatabase* other = named("b.dst", u"PLAN");
    others.push_back(other);
    {
        const core::BorrowedDatabase borrowed(other);
        manager().closeDatabase(database);
    }
    EXPECT_EQ(GetCurrentDatabase(), nullptr);
    EXPECT_EQ(host.told.front(), "list switch, forget");
}

TEST_F(PollTest, ASetThatSomebodyElseClosesLeavesTheSession)
{
    TvSmDatabase* second = named("b.dst", u"PLAN");
    ActivateSheetSet(second);
    host.told.clear();
    manager().closeDatabase(second);
    EXPECT_EQ(GetCurrentDatabase(), database);
    EXPECT_EQ(GetSessionDatabases(), std::vector{database});
    EXPECT_EQ(host.told.front(), "list switch, forget");
}

} // namespace
