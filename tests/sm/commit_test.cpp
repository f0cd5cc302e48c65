#include <fcntl.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "event_recorder.h"
#include "sheet_set_builder.h"

// What a commit and a save write, and what they leave alone.

namespace {

using Kind = base::FaultyFileOps::Kind;

class Commit : public SheetSetTest
{
protected:
    Commit()
    {
        TvSmDatabase* made = create();
        addSheet(made->getSheetSet(), u"1", u"One");
        EXPECT_TRUE(made->save(0) && manager.closeDatabase(made));
        db = open();
        set = db->getSheetSet();
        before = content();
    }
    /// One thing is changed and kept.
    bool change(const TvString& description)
    {
        return db->lockDb(db) && set->setDesc(description) && db->unlockDb(db, true);
    }
    /// The set with a category without a name that nobody marked as the default yet.
    TvSmViewCategory* openWithUnmarkedCategory()
    {
        editOutside("    <sheet ", "    <categories>\n      <category handle=\"gF\"/>\n"
                                   "    </categories>\n    <sheet ");
        before = content();
        EXPECT_TRUE(db->load(path()));
        return tvrxCast<TvSmViewCategory>(db->findObject(u"gF"));
    }
    auto timeOfFile() const { return std::filesystem::last_write_time(folder.path() / kName); }

    TvSmDatabase* db;
    TvSmSheetSet* set;
    std::string before;
};

} // namespace

TEST_F(Commit, IsBusyWhileItIsWritten)
{
    bool isBusy = true;
    ASSERT_TRUE(db->lockDb(db) && set->setName(u"x"));
    EXPECT_FALSE(db->isBusy());
    ops.before = [&](int, const auto&) { isBusy = isBusy && db->isBusy() && manager.isBusy(); };
    ASSERT_TRUE(db->unlockDb(db, true));
    ops.before = nullptr;
    EXPECT_TRUE(isBusy);
    EXPECT_FALSE(db->isBusy());
}

TEST_F(Commit, WhatItIsWritingTakesNoChangeAndNoSecondEnd)
{
    int asked = 0;
    ASSERT_TRUE(db->lockDb(db) && set->setName(u"x"));
    ops.before = [&](int, const auto&) {
        if (asked++ > 0)
            return;
        EXPECT_FALSE(set->setName(u"y"));
        EXPECT_FALSE(db->lockDb(db) || db->unlockDb(db, false) || db->save(0) || db->load(path()) ||
                     db->setFileName(folder.file("OTHER.dst")));
    };
    ASSERT_TRUE(db->unlockDb(db, true));
    ops.before = nullptr;
    EXPECT_GT(asked, 1);
    EXPECT_EQ(set->getName(), u"x");
    EXPECT_NE(content().find("name=\"x\""), std::string::npos);
}

TEST_F(Commit, OfNothingMarksNoCategoryAndLeavesTheFileAlone)
{
    TvSmViewCategory* category = openWithUnmarkedCategory();
    ASSERT_EQ(set->getViewCategories()->getDefaultCategory(), category);
    const auto time = timeOfFile();
    ASSERT_TRUE(db->lockDb(db) && db->unlockDb(db, true));
    EXPECT_EQ(content(), before);
    EXPECT_EQ(timeOfFile(), time);
    ASSERT_TRUE(change(u"d"));
    EXPECT_NE(content().find("<category handle=\"gF\" default=\"1\"/>"), std::string::npos);
}

TEST_F(Commit, ThatFailedHasMarkedNoCategory)
{
    TvSmViewCategory* category = openWithUnmarkedCategory();
    ops.failKind(Kind::Rename, EACCES);
    EXPECT_FALSE(change(u"d"));
    ops.reset();
    ASSERT_TRUE(db->lockDb(db) && category->setName(u"Plans"));
    EXPECT_EQ(set->getViewCategories()->getDefaultCategory(), nullptr);
    EXPECT_TRUE(db->unlockDb(db, false));
}

TEST_F(Commit, OfNothingWritesAVanishedFileByteForByte)
{
    std::filesystem::remove(folder.path() / kName);
    for (const std::string& name : neighbours())
        std::filesystem::remove(folder.path() / name);
    ASSERT_TRUE(db->lockDb(db));
    const std::unique_ptr<TvSmSheetView> never(newFor<TvSmSheetView>(set)); // has taken a handle
    ASSERT_TRUE(db->unlockDb(db, true));
    EXPECT_EQ(content(), before);
}

TEST_F(Commit, AndASaveAfterItWriteTheSameBytes)
{
    ASSERT_TRUE(db->lockDb(db));
    addSheet(set, u"2", u"Two");
    ASSERT_TRUE(db->unlockDb(db, true));
    const std::string committed = content();
    ASSERT_TRUE(db->save(0));
    EXPECT_EQ(content(), committed);
}

TEST_F(Commit, UnderANewNameWritesOnce)
{
    ASSERT_TRUE(db->setFileName(folder.file("OTHER.dst")));
    ASSERT_TRUE(db->lockDb(db) && db->unlockDb(db, true));
    ops.reset();
    ASSERT_TRUE(db->lockDb(db) && db->unlockDb(db, true));
    for (const auto& call : ops.trace())
        EXPECT_NE(call.kind, Kind::Rename) << call.path; // no new version is put in place
}

TEST_F(Commit, ASaveThatMeetsAnotherVersionKeepsNoCopyBesideTheFile)
{
    editOutside("One", "Won");
    EXPECT_FALSE(db->save(0));
    EXPECT_EQ(sm::lastStatus(db).failure(), base::Failure::Conflict);
    EXPECT_TRUE(recoveryFiles().empty());
    EXPECT_NE(content().find("Won"), std::string::npos);
}

TEST_F(Commit, TakingTheLockSweepsWhatOthersLeftLongAgo)
{
    const std::string token(32, 'a');
    const std::string fresh(32, 'b');
    for (const std::string& each : {token, fresh})
        folder.write(".PLAN.dst.pend." + each, "left");
    const auto age = [this](const std::string& each, std::time_t seconds) {
        const timespec times[2] = {{seconds, 0}, {seconds, 0}};
        ::utimensat(AT_FDCWD, (folder.path() / (".PLAN.dst.pend." + each)).c_str(), times, 0);
    };
    age(token, 1'700'000'000 - 25 * 3600);
    age(fresh, 1'700'000'000 - 23 * 3600);
    ASSERT_TRUE(db->lockDb(db) && db->unlockDb(db, false));
    EXPECT_FALSE(std::filesystem::exists(folder.path() / (".PLAN.dst.pend." + token)));
    EXPECT_TRUE(std::filesystem::exists(folder.path() / (".PLAN.dst.pend." + fresh)));
}

TEST_F(Commit, WithoutTheEditLockNobodyElsesLockIsSeenAndOursDoesNotNest)
{
    TvSmSheetSetMgr second;
    TvSmDatabase* other = second.openDatabase(path(), true, 0);
    ASSERT_TRUE(other->lockDb(other));
    EXPECT_NE(db->getLockStatus(), 0);
    sm::environment().useEditLock = false;
    EXPECT_EQ(db->getLockStatus(), 0);
    EXPECT_TRUE(db->lockDb(db));
    EXPECT_FALSE(db->lockDb(db));
    EXPECT_TRUE(db->unlockDb(db, false));
    EXPECT_FALSE(db->unlockDb(db, false));
    EXPECT_TRUE(other->unlockDb(other, false));
}

TEST_F(Commit, OfADatabaseThatWasBuiltMakesItOneThatNeedsTheLock)
{
    TvSmDatabase* built = manager.createDatabase(folder.file("BUILT.dst"), TvString(), true);
    ASSERT_TRUE(built->lockDb(built));
    EXPECT_FALSE(built->lockDb(built));
    ASSERT_TRUE(built->getSheetSet()->setName(u"x") && built->unlockDb(built, true));
    EXPECT_FALSE(built->getSheetSet()->setName(u"y"));
    EXPECT_EQ(built->getSheetSet()->getName(), u"x");
}

TEST(ScratchDatabase, WithoutAFileNameCannotBeSavedAndDoesNotNestItsLock)
{
    const SheetSetScene scene;
    TvSmDatabase scratch;
    EXPECT_FALSE(scratch.save(0));
    EXPECT_EQ(sm::lastStatus(&scratch).reason(), base::Reason::DstNoFileName);
    EXPECT_FALSE(scratch.load(TvString()));
    ASSERT_TRUE(scratch.lockDb(&scratch));
    EXPECT_FALSE(scratch.lockDb(&scratch));
    EXPECT_TRUE(scratch.unlockDb(&scratch, false));
}
