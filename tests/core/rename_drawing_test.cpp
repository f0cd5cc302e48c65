// A drawing moves, and its sheets follow; or nothing happens.

#include <core/rename_drawing.h>
#include <db/file_open_info_tip_manager.h>
#include <db/tv_db_database.h>
#include <dwg/dwg_codec.h>
#include <ed/tv_ap_doc_manager.h>
#include <rx/tv_user_messages.h>

#include "session_scene.h"

namespace {

class RenameDrawingTest : public SessionTest
{
protected:
    void SetUp() override
    {
        SessionTest::SetUp();
        database = made("set.dst");
        ActivateSheetSet(database);
        folder.write("old.dwg", "a drawing");
        folder.write("third.dwg", "another");
        sm::ChangeScope change(database);
        for (const char* file : {"old.dwg", "third.dwg", "old.dwg"})
            addSheet(file);
        ASSERT_TRUE(change.commit());
    }
    void addSheet(const char* file)
    {
        auto* sheet = new TvSmSheet;
        auto* layout = new TvSmTvDbLayoutReference;
        TvSmSheetSet* set = database->getSheetSet();
        ASSERT_TRUE(sheet->initNew(set, u""));
        ASSERT_TRUE(layout->initNew(sheet, u""));
        ASSERT_TRUE(sheet->setLayoutReference(layout));
        layout->setFileName(folder.file(file));
        ASSERT_TRUE(set->insertComponentAfter(sheet, nullptr));
    }
    /// The file names of the sheets' drawings, in order of their making.
    std::vector<TvString> drawings() const
    {
        std::vector<TvSmSheet*> sheets;
        KvDbUtil::GetAllSheetsInTheSubSet(database->getSheetSet(), sheets);
        std::vector<TvString> names;
        for (const TvSmSheet* sheet : sheets)
            names.push_back(
                base::PathRules::native().fileNameOf(sheet->getLayoutReference()->getFileName()));
        std::ranges::sort(names, {}, [](const TvString& name) { return name.utf8(); });
        return names;
    }
    bool rename(const char* to = "new.dwg") const
    {
        return RenameDrawingOfSheets(folder.file("old.dwg"), folder.file(to));
    }
    bool isThere(const char* file) const { return std::filesystem::exists(folder.path() / file); }
    void expectNothingDone() const
    {
        EXPECT_EQ(folder.read("old.dwg"), "a drawing");
        EXPECT_EQ(drawings(), m_before);
        EXPECT_EQ(database->getLockStatus(), 0);
    }
    TvSmDatabase* database = nullptr;

private:
    const std::vector<TvString> m_before{u"old.dwg", u"old.dwg", u"third.dwg"};
};

TEST_F(RenameDrawingTest, AllSheetsInItFollow)
{
    EXPECT_TRUE(rename());
    EXPECT_FALSE(isThere("old.dwg"));
    EXPECT_EQ(folder.read("new.dwg"), "a drawing");
    EXPECT_EQ(drawings(), (std::vector<TvString>{u"new.dwg", u"new.dwg", u"third.dwg"}));
    EXPECT_NE(folder.read("set.dst").find("new.dwg"), std::string::npos) << "the change is kept";
    EXPECT_EQ(database->getLockStatus(), 0);
    EXPECT_FALSE(isThere(".old.dwg.lk")) << "nothing is left beside it";
}

TEST_F(RenameDrawingTest, UnderTheCallersLockTheSetIsHisToKeep)
{
    ASSERT_TRUE(database->lockDb(database));
    EXPECT_TRUE(rename());
    EXPECT_EQ(database->getLockStatus(), 1);
    EXPECT_EQ(folder.read("set.dst").find("new.dwg"), std::string::npos);
    ASSERT_TRUE(database->unlockDb(database, true));
    EXPECT_EQ(drawings().front(), u"new.dwg");
}

TEST_F(RenameDrawingTest, ASetThatCannotBeWrittenBringsTheDrawingBack)
{
    ops.failKind(base::FaultyFileOps::Kind::Rename, EIO);
    EXPECT_FALSE(rename());
    ops.reset();
    EXPECT_FALSE(isThere("new.dwg"));
    expectNothingDone();
}

TEST_F(RenameDrawingTest, AnExistingFileIsNeverOverwritten)
{
    EXPECT_FALSE(rename("third.dwg"));
    EXPECT_EQ(folder.read("third.dwg"), "another");
    expectNothingDone();
}

TEST_F(RenameDrawingTest, ADrawingThatSomebodyHasOpenStays)
{
    {
        const TvDbDatabase theirs(false, true);
        ASSERT_TRUE(db::beginUse(theirs, folder.file("old.dwg")));
        EXPECT_FALSE(rename());
        expectNothingDone();
        EXPECT_TRUE(CFileOpenInfoTipManager::IsInfoFileExists(folder.file("old.dwg")));
    }
    EXPECT_TRUE(rename()) << "once it is closed";
}

TEST_F(RenameDrawingTest, ADrawingThatIsOpenHereStaysEvenIfForLookingOnly)
{
    dwg::install();
    TvDbDatabase drawing(true, true);
    ASSERT_EQ(drawing.saveAs(folder.file("real.dwg"), false, 0, nullptr), TvStatus::Ok);
    TvApDocManager documents;
    TvApDocument* document = nullptr;
    ASSERT_EQ(documents.openDocument(folder.file("real.dwg"), true, document), TvStatus::Ok);
    EXPECT_FALSE(RenameDrawingOfSheets(folder.file("real.dwg"), folder.file("new.dwg")));
    documents.closeDocument(document);
    EXPECT_TRUE(RenameDrawingOfSheets(folder.file("real.dwg"), folder.file("new.dwg")));
}

TEST_F(RenameDrawingTest, ADrawingThatIsNotThereOrCannotBeMovedChangesNothing)
{
    EXPECT_FALSE(rename("no such folder/new.dwg"));
    expectNothingDone();
    std::filesystem::remove(folder.path() / "old.dwg");
    EXPECT_FALSE(rename());
    EXPECT_EQ(drawings().front(), u"old.dwg");
    EXPECT_EQ(database->getLockStatus(), 0);
}

TEST_F(RenameDrawingTest, ASetThatIsLockedElsewhereKeepsTheDrawingWhereItIs)
{
    TvSmDatabase other;
    base::EditLock theirs(base::systemFileOps(), base::systemClock(), folder.file("set.dst"));
    ASSERT_TRUE(theirs.take(u"edit"));
    EXPECT_FALSE(rename());
    theirs.release();
    expectNothingDone();
}

TEST_F(RenameDrawingTest, WithoutACurrentSetOrAPathNothingHappens)
{
    EXPECT_FALSE(RenameDrawingOfSheets(u"", folder.file("new.dwg")));
    EXPECT_FALSE(RenameDrawingOfSheets(folder.file("old.dwg"), u""));
    expectNothingDone();
    SetCurrentDatabase(nullptr);
    EXPECT_FALSE(rename());
    EXPECT_TRUE(isThere("old.dwg"));
    SetCurrentDatabase(database);
}

} // namespace
