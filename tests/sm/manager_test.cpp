#include <gtest/gtest.h>

#include <sm/scoped_open.h>

#include "../base/process_support.h"
#include "sheet_set_builder.h"

namespace {

class Manager : public SheetSetTest
{
protected:
    std::vector<TvSmDatabase*> databases() const
    {
        return itemsOf(manager.getDatabaseEnumerator());
    }
    /// A saved and closed set of that name with one sheet, and its text.
    std::string saved(const std::string& name)
    {
        TvSmDatabase* db = manager.createDatabase(folder.file(name), TvString(), true);
        addSheet(db->getSheetSet(), u"1", u"One");
        EXPECT_TRUE(db->getSheetSet()->setName(u"School") && db->save(0));
        EXPECT_TRUE(manager.closeDatabase(db));
        return folder.read(name);
    }
};

} // namespace

TEST_F(Manager, StartsWithNothingOpen)
{
    EXPECT_TRUE(databases().empty());
    EXPECT_FALSE(manager.isBusy());
    EXPECT_EQ(manager.findOpenDatabase(path()), nullptr);
    EXPECT_EQ(manager.findOpenDatabase(TvString()), nullptr);
    EXPECT_FALSE(manager.closeDatabase(nullptr));
}

TEST_F(Manager, CreatingMakesAnEmptySetThatIsOpenButNotOnDisk)
{
    TvSmDatabase* db = create();
    ASSERT_TRUE(db);
    EXPECT_EQ(databases(), std::vector<TvSmDatabase*>{db});
    EXPECT_EQ(db->getFileName(), path());
    EXPECT_EQ(db->getSheetSet()->getName(), u"");
    EXPECT_TRUE(childrenOf(db->getSheetSet()).empty());
    EXPECT_FALSE(isThere());
    EXPECT_TRUE(neighbours().empty());
    TvString version = u"former";
    EXPECT_EQ(db->getVersion(version), db->getVersion());
    EXPECT_EQ(version, u"1.0");
}

TEST_F(Manager, CreatingOverwritesOnlyWhenAsked)
{
    const std::string before = saved(kName);
    EXPECT_EQ(manager.createDatabase(path(), TvString(), false), nullptr);
    EXPECT_EQ(sm::lastStatus(&manager).failure(), base::Failure::Exists);
    EXPECT_EQ(content(), before);
    TvSmDatabase* db = manager.createDatabase(path(), TvString(), true);
    ASSERT_TRUE(db);
    EXPECT_EQ(content(), before); // until the first save
    EXPECT_TRUE(db->save(0));
    EXPECT_EQ(content().find("School"), std::string::npos);
}

TEST_F(Manager, CreatingNeverOverwritesWhatAppearedMeanwhile)
{
    TvSmDatabase* db = create();
    folder.write(kName, "somebody's work");
    EXPECT_FALSE(db->save(0));
    EXPECT_EQ(sm::lastStatus(db).failure(), base::Failure::Conflict);
    EXPECT_EQ(content(), "somebody's work");
}

TEST_F(Manager, CreatingFromATemplateCopiesItAndLeavesItAlone)
{
    const std::string before = saved("TEMPLATE.dst");
    TvSmDatabase* db = manager.createDatabase(path(), folder.file("TEMPLATE.dst"), true);
    ASSERT_TRUE(db);
    EXPECT_EQ(db->getSheetSet()->getName(), u"School");
    EXPECT_EQ(childrenOf(db->getSheetSet()), std::vector<TvString>{u"One"});
    EXPECT_TRUE(db->getSheetSet()->setName(u"Copy"));
    EXPECT_TRUE(db->save(0));
    EXPECT_EQ(folder.read("TEMPLATE.dst"), before);
    EXPECT_NE(content().find("Copy"), std::string::npos);
    EXPECT_EQ(manager.findOpenDatabase(folder.file("TEMPLATE.dst")), nullptr);
}

TEST_F(Manager, CreatingFailsWithoutPathTemplateOrWhenOpenAlready)
{
    EXPECT_EQ(manager.createDatabase(TvString(), TvString(), true), nullptr);
    EXPECT_EQ(manager.createDatabase(path(), folder.file("none.dst"), true), nullptr);
    EXPECT_EQ(sm::lastStatus(&manager).failure(), base::Failure::NotFound);
    folder.write("bad.dst", "no set");
    EXPECT_EQ(manager.createDatabase(path(), folder.file("bad.dst"), true), nullptr);
    EXPECT_EQ(sm::lastStatus(&manager).failure(), base::Failure::Damaged);
    ASSERT_TRUE(create());
    EXPECT_EQ(create(), nullptr);
    EXPECT_EQ(databases().size(), 1u);
}

TEST_F(Manager, OpeningTwiceGivesTheSameDatabase)
{
    saved(kName);
    TvSmDatabase* db = open();
    ASSERT_TRUE(db);
    EXPECT_EQ(open(), db);
    EXPECT_EQ(manager.openDatabase(path(), false, 0), db);
    EXPECT_EQ(manager.findOpenDatabase(path()), db);
    EXPECT_EQ(databases(), std::vector<TvSmDatabase*>{db});
}

TEST_F(Manager, OneFileIsOneDatabaseWhateverItsSpelling)
{
    saved(kName);
    std::filesystem::create_directory(folder.path() / "sub");
    std::filesystem::create_symlink(folder.path() / kName, folder.path() / "link.dst");
    TvSmDatabase* db = open();
    ASSERT_TRUE(db);
    for (const char* spelling : {"sub/../PLAN.dst", "./PLAN.dst", "plan.DST", "link.dst"}) {
        EXPECT_EQ(manager.findOpenDatabase(folder.file(spelling)), db) << spelling;
        EXPECT_EQ(manager.openDatabase(folder.file(spelling), true, 0), db) << spelling;
    }
    // Two files whose names differ in case only are two sets.
    folder.write("plan.dst", content());
    TvSmDatabase* twin = manager.openDatabase(folder.file("plan.dst"), true, 0);
    EXPECT_NE(twin, db);
    EXPECT_EQ(manager.findOpenDatabase(folder.file("plan.dst")), twin);
    EXPECT_EQ(manager.findOpenDatabase(path()), db);
}

TEST_F(Manager, ARelativePathIsSeenFromTheCurrentFolder)
{
    saved(kName);
    const std::filesystem::path former = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    TvSmDatabase* db = manager.openDatabase(TvString(kName), true, 0);
    std::filesystem::current_path(former);
    ASSERT_TRUE(db);
    EXPECT_EQ(manager.findOpenDatabase(path()), db);
}

TEST_F(Manager, AFailedOpenSaysWhyAndOpensNothing)
{
    EXPECT_EQ(open(), nullptr);
    EXPECT_EQ(sm::lastStatus(&manager).failure(), base::Failure::NotFound);
    EXPECT_EQ(manager.openDatabase(TvString(), true, 0), nullptr);
    EXPECT_EQ(manager.openDatabase(folder.file(""), true, 0), nullptr);
    folder.write(kName, "no set");
    EXPECT_EQ(open(), nullptr);
    EXPECT_EQ(sm::lastStatus(&manager).failure(), base::Failure::Damaged);
    EXPECT_TRUE(databases().empty());
    EXPECT_FALSE(manager.isBusy());
    EXPECT_EQ(neighbours().size(), 0u);
    EXPECT_TRUE(sm::lastStatus(static_cast<const TvSmSheetSetMgr*>(nullptr)));
}

TEST_F(Manager, OpeningCreatesNothingBesideTheFile)
{
    saved(kName);
    for (const std::string& name : neighbours())
        std::filesystem::remove(folder.path() / name);
    ASSERT_TRUE(open());
    open()->getLockStatus();
    EXPECT_TRUE(neighbours().empty());
}

TEST_F(Manager, ListsDatabasesInTheOrderOfOpening)
{
    TvSmDatabase* second = manager.createDatabase(folder.file("B.dst"), TvString(), true);
    TvSmDatabase* first = manager.createDatabase(folder.file("A.dst"), TvString(), true);
    const std::unique_ptr<TvSmEnumerator<TvSmDatabase>> walk(manager.getDatabaseEnumerator());
    EXPECT_EQ(walk->next(), second);
    EXPECT_EQ(walk->next(), first);
    EXPECT_EQ(walk->next(), nullptr);
    walk->reset();
    EXPECT_EQ(walk->next(), second);
    EXPECT_TRUE(manager.closeDatabase(second));
    EXPECT_EQ(databases(), std::vector<TvSmDatabase*>{first});
}

TEST_F(Manager, ClosesOnlyWhatIsOpenHere)
{
    TvSmDatabase* db = create();
    TvSmSheetSetMgr other;
    EXPECT_FALSE(other.closeDatabase(db));
    EXPECT_TRUE(manager.closeDatabase(db));
    EXPECT_FALSE(manager.closeDatabase(db));
}

TEST_F(Manager, AQuietLookClosesOnlyWhatItOpened)
{
    saved(kName);
    {
        const sm::ScopedOpen look(&manager, path());
        ASSERT_TRUE(look);
        EXPECT_TRUE(look.openedHere());
        EXPECT_EQ(look.database(), manager.findOpenDatabase(path()));
    }
    EXPECT_EQ(manager.findOpenDatabase(path()), nullptr);
    TvSmDatabase* db = open();
    {
        const sm::ScopedOpen look(&manager, path());
        EXPECT_FALSE(look.openedHere());
        EXPECT_EQ(look.database(), db);
    }
    EXPECT_EQ(manager.findOpenDatabase(path()), db);
    ASSERT_TRUE(manager.closeDatabase(db));
    {
        sm::ScopedOpen look(&manager, path());
        db = look.keepOpen();
    }
    EXPECT_EQ(manager.findOpenDatabase(path()), db);
    EXPECT_FALSE(sm::ScopedOpen(&manager, folder.file("none.dst")));
    EXPECT_FALSE(sm::ScopedOpen(nullptr, path()));
}

TEST_F(Manager, DeletingASetLeavesNothingOfIt)
{
    saved(kName);
    TvSmDatabase* db = open();
    for (const char* name : {"a", "b", "c"})
        ASSERT_TRUE(db->lockDb(db) && db->getSheetSet()->setName(name) && db->unlockDb(db, true));
    EXPECT_FALSE(neighbours().empty());
    EXPECT_TRUE(sm::deleteSheetSet(manager, path()));
    EXPECT_EQ(manager.findOpenDatabase(path()), nullptr);
    EXPECT_FALSE(isThere());
    EXPECT_TRUE(neighbours().empty());
    EXPECT_EQ(open(), nullptr); // nothing heals it back
    TvSmDatabase* fresh = createSaved();
    EXPECT_EQ(fresh->getSheetSet()->getName(), u"");
    ASSERT_TRUE(manager.closeDatabase(fresh));
    ASSERT_TRUE(open());
    EXPECT_EQ(open()->getSheetSet()->getName(), u"");
}

TEST_F(Manager, ASetThatAnotherProcessHoldsIsNotDeletedAndStaysOpen)
{
    saved(kName);
    TvSmDatabase* db = open();
    WaitingChild child([&] {
        auto* theirs = new TvSmSheetSetMgr; // lives as long as the child
        TvSmDatabase* held = theirs->openDatabase(path(), true, 0);
        if (!held || !held->lockDb(held))
            ::_exit(1);
    });
    ASSERT_TRUE(child.isThere());
    EXPECT_EQ(db->getLockStatus(), 2);
    EXPECT_EQ(sm::deleteSheetSet(manager, path()).failure(), base::Failure::Locked);
    EXPECT_TRUE(isThere());
    EXPECT_EQ(manager.findOpenDatabase(path()), db);
    child.kill();
    EXPECT_EQ(db->getLockStatus(), 0);
    EXPECT_TRUE(db->lockDb(db)); // nobody is there any more
}

TEST_F(Manager, AWizardThatIsCancelledLeavesNoFile)
{
    TvSmDatabase* db = create();
    ASSERT_TRUE(db->save(0) && db->lockDb(db));
    addSheet(db->getSheetSet(), u"1", u"One");
    ASSERT_TRUE(db->unlockDb(db, false));
    std::filesystem::remove(folder.path() / kName);
    ASSERT_TRUE(manager.closeDatabase(db));
    EXPECT_FALSE(isThere());
}

TEST_F(Manager, AWizardThatChangesItsMindAboutTheNameMovesTheSet)
{
    TvSmDatabase* db = create();
    ASSERT_TRUE(db->save(0) && db->lockDb(db));
    ASSERT_TRUE(db->getSheetSet()->setName(u"School"));
    ASSERT_TRUE(db->unlockDb(db, true));
    std::filesystem::remove(folder.path() / kName);
    ASSERT_TRUE(db->setFileName(folder.file("OTHER.dst")) && db->save(0));
    ASSERT_TRUE(db->lockDb(db));
    addSheet(db->getSheetSet(), u"1", u"One");
    ASSERT_TRUE(db->unlockDb(db, true));
    EXPECT_FALSE(isThere());
    EXPECT_EQ(manager.findOpenDatabase(path()), nullptr);
    EXPECT_EQ(manager.findOpenDatabase(folder.file("OTHER.dst")), db);
    EXPECT_NE(folder.read("OTHER.dst").find("One"), std::string::npos);
}

TEST_F(Manager, ItsStatusIsThatOfTheLastCall)
{
    saved(kName);
    for (const TvString& path : {TvString(u"http://203.0.113.5/a/../b.dst"), TvString(u"")}) {
        EXPECT_EQ(manager.openDatabase(path, true, 0), nullptr);
        EXPECT_FALSE(sm::lastStatus(&manager));
        if (!path.isEmpty()) {
            EXPECT_EQ(sm::lastStatus(&manager).arguments().at(0), path); // as it was given
        }
        ASSERT_TRUE(open());
        EXPECT_TRUE(sm::lastStatus(&manager));
        ASSERT_TRUE(manager.closeDatabase(open()));
    }
}
