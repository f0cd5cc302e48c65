#include <base/kv_file_system.h>

#include <gtest/gtest.h>

#include "kill_at_syscall.h"
#include "sheet_set_builder.h"

namespace {

/// A set with one reference, in a folder that can be moved.
class Resolving : public SheetSetTest
{
protected:
    Resolving() { std::filesystem::create_directories(folder.path() / "old" / "drawings"); }
    TvString setPath(const std::string& where) const { return folder.file(where + "/PLAN.dst"); }
    /// A saved and closed set in the folder "old" whose one reference is @p stored.
    void saveWith(const TvString& stored)
    {
        TvSmDatabase* db = manager.createDatabase(setPath("old"), TvString(), true);
        ASSERT_TRUE(db);
        auto* made = newFor<TvSmFileReference>(db->getSheetSet());
        ASSERT_TRUE(made->setFileName(stored) && db->getSheetSet()->setAltPageSetups(made));
        ASSERT_TRUE(db->save(0) && manager.closeDatabase(db));
    }
    TvSmFileReference* openedIn(const std::string& where)
    {
        TvSmDatabase* db = manager.openDatabase(setPath(where), true, 0);
        return db ? db->getSheetSet()->getAltPageSetups() : nullptr;
    }
    void touch(const std::string& name) const { folder.write(name, ""); }
    void move(const std::string& from, const std::string& to) const
    {
        std::filesystem::rename(folder.path() / from, folder.path() / to);
    }
};

/// A reference of a scratch database that has a file name.
struct Loose {
    explicit Loose(const TvString& setFile, const TvString& stored)
    {
        db.setFileName(setFile);
        reference = newFor<TvSmFileReference>(db.getSheetSet());
        EXPECT_TRUE(reference->setFileName(stored) &&
                    db.getSheetSet()->setAltPageSetups(reference));
    }
    TvSmDatabase db;
    TvSmFileReference* reference;
};

} // namespace

TEST_F(Resolving, AnAbsolutePathThatIsThereIsTheAnswer)
{
    touch("old/drawings/a.dwg");
    const Loose loose(setPath("old"), folder.file("old/drawings/a.dwg"));
    TvString out = u"former";
    EXPECT_EQ(loose.reference->resolveFileName(out), folder.file("old/drawings/a.dwg"));
    EXPECT_EQ(out, folder.file("old/drawings/a.dwg"));
    EXPECT_EQ(loose.reference->getResolvedPath(), out);
}

TEST_F(Resolving, WhatIsNotThereGivesAnEmptyText)
{
    const Loose loose(setPath("old"), folder.file("old/drawings/a.dwg"));
    TvString out = u"former";
    EXPECT_EQ(loose.reference->resolveFileName(out), u"");
    EXPECT_EQ(out, u"");
    EXPECT_EQ(Loose(setPath("old"), TvString()).reference->resolveFileName(), u"");
}

TEST_F(Resolving, AFolderIsSomethingThatIsThere)
{
    const Loose loose(setPath("old"), u"drawings");
    EXPECT_EQ(loose.reference->resolveFileName(), folder.file("old/drawings"));
}

TEST_F(Resolving, ARelativePathIsSeenFromTheSet)
{
    touch("old/drawings/a.dwg");
    touch("old/b.dwg");
    for (const char* stored :
         {"drawings/a.dwg", "drawings\\a.dwg", ".\\drawings/./a.dwg", "..\\old\\drawings\\a.dwg"})
        EXPECT_EQ(Loose(setPath("old"), stored).reference->resolveFileName(),
                  folder.file("old/drawings/a.dwg"))
            << stored;
    EXPECT_EQ(Loose(setPath("old"), u"b.dwg").reference->resolveFileName(),
              folder.file("old/b.dwg"));
    EXPECT_EQ(Loose(TvString(), u"b.dwg").reference->resolveFileName(), u"");
}

TEST_F(Resolving, ARelativePathIsNeverSeenFromTheCurrentFolder)
{
    touch("a.dwg");
    const std::filesystem::path former = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    EXPECT_EQ(Loose(setPath("old"), u"a.dwg").reference->resolveFileName(), u"");
    std::filesystem::current_path(former);
}

TEST_F(Resolving, AProjectThatMovedAsAWholeStillResolves)
{
    touch("old/drawings/a.dwg");
    saveWith(folder.file("old/drawings/a.dwg"));
    move("old", "new");
    TvSmFileReference* reference = openedIn("new");
    ASSERT_TRUE(reference);
    EXPECT_EQ(reference->getFileName(), folder.file("old/drawings/a.dwg"));
    EXPECT_EQ(reference->resolveFileName(), folder.file("new/drawings/a.dwg"));
    // A save there keeps what leads to the drawing, and so does another move.
    TvSmDatabase* db = reference->database();
    ASSERT_TRUE(db->save(0) && manager.closeDatabase(db));
    move("new", "third");
    ASSERT_TRUE(openedIn("third"));
    EXPECT_EQ(openedIn("third")->resolveFileName(), folder.file("third/drawings/a.dwg"));
}

TEST_F(Resolving, ASetThatMovedAloneStillResolvesByTheStoredPath)
{
    touch("old/drawings/a.dwg");
    saveWith(folder.file("old/drawings/a.dwg"));
    std::filesystem::create_directories(folder.path() / "far" / "away");
    move("old/PLAN.dst", "far/away/PLAN.dst");
    ASSERT_TRUE(openedIn("far/away"));
    EXPECT_EQ(openedIn("far/away")->resolveFileName(), folder.file("old/drawings/a.dwg"));
    // The next save works the relative path out anew: the whole folder may now move again.
    TvSmDatabase* db = openedIn("far/away")->database();
    ASSERT_TRUE(db->save(0));
    EXPECT_NE(folder.read("far/away/PLAN.dst").find("../../old/drawings/a.dwg"), std::string::npos);
}

TEST_F(Resolving, TheStoredPathComesBeforeTheRelativeOne)
{
    touch("old/drawings/a.dwg");
    saveWith(folder.file("old/drawings/a.dwg"));
    std::filesystem::create_directory(folder.path() / "new");
    std::filesystem::copy(folder.path() / "old", folder.path() / "new",
                          std::filesystem::copy_options::recursive);
    ASSERT_TRUE(openedIn("new"));
    EXPECT_EQ(openedIn("new")->resolveFileName(), folder.file("old/drawings/a.dwg"));
    std::filesystem::remove(folder.path() / "old/drawings/a.dwg");
    EXPECT_EQ(openedIn("new")->resolveFileName(), folder.file("new/drawings/a.dwg"));
}

TEST_F(Resolving, TheRelativePathComesBeforeTheStoredOneSeenFromTheSet)
{
    touch("old/drawings/a.dwg");
    touch("old/drawings/b.dwg");
    folder.write("old/PLAN.dst",
                 "<sheetSetFile version=\"1.0\" nextHandle=\"g9\"><sheetSet handle=\"g1\">"
                 "<pageSetups handle=\"g3\" path=\"drawings\\b.dwg\" relative=\"drawings/a.dwg\"/>"
                 "</sheetSet></sheetSetFile>");
    ASSERT_TRUE(openedIn("old"));
    EXPECT_EQ(openedIn("old")->resolveFileName(), folder.file("old/drawings/a.dwg"));
    std::filesystem::remove(folder.path() / "old/drawings/a.dwg");
    EXPECT_EQ(openedIn("old")->resolveFileName(), folder.file("old/drawings/b.dwg"));
}

TEST_F(Resolving, ANewPathForgetsTheRelativeOne)
{
    touch("old/drawings/a.dwg");
    saveWith(folder.file("old/drawings/a.dwg"));
    TvSmFileReference* reference = openedIn("old");
    TvSmDatabase* db = reference->database();
    ASSERT_TRUE(db->lockDb(db));
    ASSERT_TRUE(reference->setFileName(u"gone.dwg"));
    EXPECT_EQ(reference->resolveFileName(), u"");
    ASSERT_TRUE(db->unlockDb(db, false));
    EXPECT_EQ(reference->resolveFileName(), folder.file("old/drawings/a.dwg"));
}

TEST_F(Resolving, BackslashesOfAnotherSystemAreUnderstoodInTheRelativePath)
{
    touch("old/drawings/a.dwg");
    folder.write("old/PLAN.dst",
                 "<sheetSetFile version=\"1.0\" nextHandle=\"g9\"><sheetSet handle=\"g1\">"
                 "<pageSetups handle=\"g3\" path=\"C:\\plans\\a.dwg\" "
                 "relative=\"drawings\\a.dwg\"/></sheetSet></sheetSetFile>");
    ASSERT_TRUE(openedIn("old"));
    EXPECT_EQ(openedIn("old")->resolveFileName(), folder.file("old/drawings/a.dwg"));
}

TEST_F(Resolving, AFileWhoseNameHoldsABackslashIsFound)
{
    touch("old/a\\b.dwg");
    EXPECT_EQ(Loose(setPath("old"), folder.file("old/a\\b.dwg")).reference->resolveFileName(),
              folder.file("old/a\\b.dwg"));
}

TEST_F(Resolving, NothingIsExpandedInAPath)
{
    touch("old/a.dwg");
    for (const char* stored : {"~/a.dwg", "$HOME/a.dwg", "%TEMP%\\a.dwg", "C:a.dwg", "file:a.dwg"})
        EXPECT_EQ(Loose(setPath("old"), stored).reference->resolveFileName(), u"") << stored;
}

TEST_F(Resolving, NetworkHostsAndUrlsAreNotEvenAskedFor)
{
    const Loose warm(setPath("old"), u"warm.dwg");
    EXPECT_EQ(warm.reference->resolveFileName(), u"");
    const KillOutcome idle = runKilledAt(0, [] { return 0; });
    if (idle.end == KillOutcome::End::NotPermitted)
        GTEST_SKIP() << textOf(idle);
    const KillOutcome local =
        runKilledAt(0, [&] { return warm.reference->resolveFileName().isEmpty() ? 0 : 1; });
    EXPECT_GT(local.calls, idle.calls); // so that a touch would be seen
    for (const char* stored :
         {"\\\\203.0.113.5\\share\\x.dwg", "\\\\?\\UNC\\host\\share\\x.dwg", "\\\\.\\pipe\\x",
          "http://203.0.113.5/x.dwg", "file://203.0.113.5/x.dwg", "smb://host/x.dwg"}) {
        const Loose loose(setPath("old"), stored);
        const KillOutcome asked =
            runKilledAt(0, [&] { return loose.reference->resolveFileName().isEmpty() ? 0 : 1; });
        EXPECT_EQ(asked.exitCode, 0) << stored;
        EXPECT_EQ(asked.calls, idle.calls) << stored;
    }
}

TEST_F(Resolving, ARelativePathToAHostIsNotFollowed)
{
    folder.write("old/PLAN.dst",
                 "<sheetSetFile version=\"1.0\" nextHandle=\"g9\"><sheetSet handle=\"g1\">"
                 "<pageSetups handle=\"g3\" path=\"x.dwg\" "
                 "relative=\"\\\\203.0.113.5\\share\\x.dwg\"/></sheetSet></sheetSetFile>");
    ASSERT_TRUE(openedIn("old"));
    EXPECT_EQ(openedIn("old")->resolveFileName(), u"");
}

TEST_F(Resolving, BackslashesAndDetoursOfAnAbsolutePathAreUnderstood)
{
    touch("old/drawings/a.dwg");
    const TvString full = folder.file("old/drawings/a.dwg");
    const Loose backslash(setPath("old"), folder.file("old") + u"\\drawings\\a.dwg");
    EXPECT_TRUE(KvFileSystem::isSameFile(backslash.reference->resolveFileName(), full));
    const Loose detour(setPath("old"), folder.file("old/none/../drawings/a.dwg"));
    EXPECT_EQ(detour.reference->resolveFileName(), full);
}

TEST_F(Resolving, AUrlOrADriveIsNoFolderBesideTheSet)
{
    std::filesystem::create_directories(folder.path() / "old" / "http:" / "203.0.113.5");
    touch("old/http:/203.0.113.5/a.dwg");
    touch("old/C:a.dwg");
    for (const char* stored : {"http://203.0.113.5/a.dwg", "C:a.dwg"}) {
        const Loose loose(setPath("old"), stored);
        EXPECT_EQ(loose.reference->resolveFileName(), u"") << stored;
    }
}
