#include <base/kv_file_system.h>
#include <dxf/dxf_codec.h>

#include "host_scene.h"

namespace {

using Names = std::vector<std::string>;

class FileCommandTest : public HostTest
{
protected:
    void change(double scale) { ASSERT_TRUE(ed::setVariable(u"LTSCALE", scale)); }
    double scaleIn(const TvString& file)
    {
        TvDbDatabase database(false, true);
        EXPECT_EQ(database.readDwgFile(file), TvStatus::Ok);
        return database.headerRecord().real("LTSCALE");
    }
    Names open()
    {
        Names names;
        const std::unique_ptr<TvApDocumentIterator> each(manager.newTvApDocumentIterator());
        for (; !each->done(); each->step())
            names.push_back(each->document()->docTitle().utf8());
        return names;
    }
};

TEST_F(FileCommandTest, OpensByATypedNameWithOrWithoutItsExtension)
{
    type(u"OPEN " + path("a.dwg") + u"\nOPEN \"" + path("b") + u"\"\n");
    EXPECT_EQ(open(), (Names{"a.dwg", "b.dwg"}));
    EXPECT_TRUE(said().empty());
    EXPECT_EQ(ed::recentFiles(), (std::vector<TvString>{path("b.dwg"), path("a.dwg")}));
    EXPECT_EQ(recentChanges, 2);
}

TEST_F(FileCommandTest, OpensWhatIsChosenInADialogUnlessFilediaSaysOtherwise)
{
    ed::setVariable(u"FILEDIA", std::int16_t(1));
    prompts.files = {path("a.dwg"), path("b.dwg")};
    type(u"OPEN\n");
    EXPECT_EQ(open(), (Names{"a.dwg", "b.dwg"}));
    EXPECT_EQ(prompts.asked.title, u"Open Drawing");
    EXPECT_TRUE(prompts.asked.mayBeSeveral);
    EXPECT_FALSE(prompts.asked.isForSaving);
    EXPECT_EQ(prompts.asked.extensions, (std::vector<TvString>{u"dwg", u"dxf", u"dwt"}));
    ed::setVariable(u"FILEDIA", std::int16_t(0));
    prompts.asked = {};
    type(u"OPEN ~\n");
    EXPECT_EQ(prompts.asked.title, u"Open Drawing") << "a tilde asks for the dialog all the same";
}

TEST_F(FileCommandTest, WhatCannotBeOpenedIsToldAndTheProgramGoesOn)
{
    folder.write("bad.dwg", {'A', 'C', '1', '0', '3', '2', 0, 1});
    type(u"OPEN " + path("none.dwg") + u"\nOPEN " + path("bad.dwg") + u"\nOPEN " + path("a.dwg") +
         u"\n");
    const std::vector<int> numbers = said();
    ASSERT_EQ(numbers.size(), 4u);
    EXPECT_EQ(numbers[0], 23183);
    EXPECT_EQ(numbers[1], 21001);
    EXPECT_EQ(numbers[2], 23183);
    EXPECT_EQ(open(), Names{"a.dwg"});
    EXPECT_EQ(ed::recentFiles(), std::vector<TvString>{path("a.dwg")});
}

TEST_F(FileCommandTest, ADrawingThatSomebodyEditsIsOpenedForLookingAfterAYes)
{
    TvDbDatabase other(false, true);
    ASSERT_TRUE(db::beginUse(other, path("a.dwg")));
    type(u"OPEN " + path("a.dwg") + u"\n");
    EXPECT_EQ(messages.seen, Names{"23176 a.dwg"});
    EXPECT_TRUE(open().empty()) << "refused";
    messages.answers = {static_cast<int>(TvUserMessages::Answer::Yes)};
    type(u"OPEN " + path("a.dwg") + u"\n");
    ASSERT_EQ(open(), Names{"a.dwg"});
    EXPECT_TRUE(manager.curDocument()->isReadOnly());
    said();
    change(3);
    type(u"SAVE\n");
    EXPECT_EQ(said().front(), 23182);
    EXPECT_NE(scaleIn(path("a.dwg")), 3);
}

TEST_F(FileCommandTest, NewBeginsEmptyOrAsAnotherDrawing)
{
    type(u"NEW\n\nNEW .\n");
    EXPECT_EQ(manager.documentCount(), 2);
    EXPECT_FALSE(manager.curDocument()->isNamedDrawing());
    type(u"OPEN " + path("a.dwg") + u"\nLTSCALE 7\nSAVEAS 2018\n" + path("start.dwg") + u"\nNEW " +
         path("start.dwg") + u"\n");
    EXPECT_EQ(manager.documentCount(), 4);
    EXPECT_FALSE(manager.curDocument()->isNamedDrawing());
    EXPECT_EQ(drawing().headerRecord().real("LTSCALE"), 7);
    EXPECT_FALSE(drawing().isModified());
    said();
    type(u"NEW " + path("none") + u"\n");
    EXPECT_EQ(said().front(), 23183);
    EXPECT_EQ(manager.documentCount(), 4);
}

TEST_F(FileCommandTest, SaveWritesTheDrawingUnderItsName)
{
    type(u"OPEN " + path("a.dwg") + u"\nLTSCALE 4\nQSAVE\n");
    EXPECT_EQ(scaleIn(path("a.dwg")), 4);
    EXPECT_FALSE(drawing().isModified());
    EXPECT_EQ(said(), std::vector<int>{23174});
}

TEST_F(FileCommandTest, SaveAsksForTheNameOfANewDrawing)
{
    prompts.answers = {u"2004", path("made")};
    type(u"NEW .\nLTSCALE 6\nSAVE\n");
    const Names asked = told();
    EXPECT_EQ(asked[0], "word: Enter file format [2000/2004/2007/2010/2013/2018] <2018>: ");
    EXPECT_TRUE(asked[1].starts_with("line: Save drawing as "));
    EXPECT_EQ(scaleIn(path("made.dwg")), 6);
    TvDbDatabase saved(false, true);
    saved.readDwgFile(path("made.dwg"));
    EXPECT_EQ(saved.originalFileVersion(), TvDb::kAc1018);
    EXPECT_EQ(manager.curDocument()->fileName(), path("made.dwg"));
}

TEST_F(FileCommandTest, SaveKeepsTheVersionThatSaveAsChose)
{
    type(u"OPEN " + path("a.dwg") + u"\nSAVEAS 2004\n" + path("old") + u"\nLTSCALE 4\nQSAVE\n");
    EXPECT_EQ(folder.read("old.dwg").substr(0, 6), "AC1018");
    EXPECT_EQ(scaleIn(path("old.dwg")), 4);
    type(u"SAVEAS\n\n" + path("older") + u"\n"); // what is offered first
    EXPECT_EQ(folder.read("older.dwg").substr(0, 6), "AC1018");
}

TEST_F(FileCommandTest, FilesNamedDxfHoldDxfAndStaySoAtASave)
{
    dxf::install();
    const auto isDxf = [&](const char* name) { return folder.read(name).starts_with("  0"); };
    type(u"OPEN " + path("a.dwg") + u"\nSAVEAS 2010\n" + path("text.DXF") + u"\n");
    EXPECT_TRUE(isDxf("text.DXF"));
    type(u"LTSCALE 4\nQSAVE\nCLOSE\n");
    EXPECT_TRUE(isDxf("text.DXF"));
    type(u"OPEN " + path("text.DXF") + u"\nLTSCALE 7\nQSAVE\n");
    EXPECT_TRUE(isDxf("text.DXF"));
    EXPECT_EQ(scaleIn(path("text.DXF")), 7);
    type(u"SAVEAS\n\n" + path("back") + u"\n");
    EXPECT_EQ(folder.read("back.dwg").substr(0, 6), "AC1024");
}

TEST_F(FileCommandTest, WhatIsNoNameOfADrawingIsToldAndNotWritten)
{
    type(u"OPEN " + path("a.dwg") + u"\nSAVEAS\n\n" + path("notes.txt") + u"\n");
    EXPECT_EQ(said(), std::vector{23185});
    EXPECT_FALSE(KvFileSystem::pathFileExists(path("notes.txt")));
    EXPECT_EQ(manager.curDocument()->fileName(), path("a.dwg"));
}

TEST_F(FileCommandTest, SaveAsReplacesAnotherFileOnlyAfterAYes)
{
    const double before = scaleIn(path("b.dwg"));
    type(u"OPEN " + path("a.dwg") + u"\nLTSCALE 5\nSAVEAS\n\n" + path("b.dwg") + u"\n\n");
    EXPECT_EQ(scaleIn(path("b.dwg")), before) << "Enter is No";
    type(u"SAVEAS\n\n" + path("b.dwg") + u"\n"); // nobody answers
    EXPECT_EQ(scaleIn(path("b.dwg")), before);
    type(u"SAVEAS\n\n" + path("b.dwg") + u"\nYes\n");
    EXPECT_EQ(scaleIn(path("b.dwg")), 5);
    EXPECT_EQ(manager.curDocument()->fileName(), path("b.dwg"));
    ed::setVariable(u"FILEDIA", std::int16_t(1));
    prompts.files = {path("a.dwg")};
    type(u"SAVEAS\n");
    EXPECT_EQ(messages.seen, Names{"23173 a.dwg"});
    EXPECT_TRUE(prompts.asked.isForSaving);
    EXPECT_EQ(manager.curDocument()->fileName(), path("b.dwg"));
}

TEST_F(FileCommandTest, WhatCannotBeSavedIsToldAndStays)
{
    type(u"OPEN " + path("a.dwg") + u"\nLTSCALE 5\nSAVEAS\n\n" + path("none/there.dwg") + u"\n");
    EXPECT_EQ(said().front(), 23182);
    EXPECT_TRUE(drawing().isModified());
    EXPECT_EQ(manager.curDocument()->fileName(), path("a.dwg"));
}

TEST_F(FileCommandTest, CloseAsksAboutChangesAndWithoutAnAnswerKeepsThem)
{
    type(u"OPEN " + path("a.dwg") + u"\nCLOSE\n");
    EXPECT_TRUE(open().empty());
    EXPECT_TRUE(messages.seen.empty()) << "there is nothing to ask";
    type(u"OPEN " + path("a.dwg") + u"\nLTSCALE 5\nCLOSE\n");
    EXPECT_EQ(messages.seen, Names{"23177 a.dwg"});
    EXPECT_EQ(open(), Names{"a.dwg"});
    EXPECT_EQ(said(), std::vector<int>{23180});
    tvrxSetUserMessages(nullptr); // nobody at all
    type(u"CLOSE\n");
    EXPECT_EQ(open(), Names{"a.dwg"});
    tvrxSetUserMessages(&messages);
    messages.answers = {kDiscard};
    type(u"CLOSE\n");
    EXPECT_TRUE(open().empty());
    EXPECT_NE(scaleIn(path("a.dwg")), 5);
    messages.answers = {kSave};
    type(u"OPEN " + path("a.dwg") + u"\nLTSCALE 6\nCLOSE\n");
    EXPECT_TRUE(open().empty());
    EXPECT_EQ(scaleIn(path("a.dwg")), 6);
}

TEST_F(FileCommandTest, CloseStaysWhenTheSaveFailsOrTheDrawingIsLocked)
{
    messages.answers = {kSave};
    type(u"NEW .\nLTSCALE 6\nCLOSE\n"); // the name is not told
    EXPECT_EQ(manager.documentCount(), 1);
    type(u"OPEN " + path("a.dwg") + u"\n");
    manager.lockDocument(manager.curDocument());
    said();
    type(u"CLOSE\n");
    EXPECT_EQ(said(), std::vector<int>{23181});
    EXPECT_EQ(manager.documentCount(), 2);
    manager.unlockDocument(manager.curDocument());
}

TEST_F(FileCommandTest, QuitAsksAboutAllAndClosesNoneWhenOneIsKept)
{
    type(u"OPEN " + path("a.dwg") + u"\nLTSCALE 5\nOPEN " + path("b.dwg") + u"\nLTSCALE 6\n");
    messages.answers = {kDiscard, static_cast<int>(TvUserMessages::Answer::Cancel)};
    type(u"QUIT\n");
    EXPECT_EQ(messages.seen, (Names{"23177 a.dwg", "23177 b.dwg"}));
    EXPECT_EQ(open(), (Names{"a.dwg", "b.dwg"}));
    EXPECT_EQ(scaleIn(path("a.dwg")), scaleIn(path("b.dwg")));
    EXPECT_EQ(quits, 0);
    messages.answers = {kSave, kDiscard};
    type(u"EXIT\n");
    EXPECT_TRUE(open().empty());
    EXPECT_EQ(scaleIn(path("a.dwg")), 5);
    EXPECT_NE(scaleIn(path("b.dwg")), 6);
    EXPECT_EQ(quits, 1);
    EXPECT_EQ(reactor.told.back(), "ended QUIT");
}

TEST_F(FileCommandTest, ViewsThatAreOnlyShownAreStoredAtASave)
{
    struct Window : ed::StoredDrawingView {
        void settle(TvDbDatabase& database) override
        {
            ed::View view = *StoredDrawingView::view(ed::currentViewObject(database));
            view.center = {77, 0};
            setView(ed::currentViewObject(database), view);
        }
    } window;
    ed::setDrawingView(&window);
    type(u"OPEN " + path("a.dwg") + u"\nSAVE\n");
    ed::setDrawingView(nullptr);
    TvDbDatabase saved(false, true);
    saved.readDwgFile(path("a.dwg"));
    EXPECT_EQ(ed::drawingView().view(ed::currentViewObject(saved))->center.x, 77);
}

// The list of recent files

TEST_F(FileCommandTest, RecentFilesStandOnceAndTheLatestFirst)
{
    for (const char* name : {"/p/a.dwg", "/p/b.dwg", "/p/A.DWG", "/p/c.dst"})
        ed::addRecentFile(TvString(name));
    AddDstFileToRecentFileList(u"/p/d.dst");
    EXPECT_EQ(ed::recentFiles(),
              (std::vector<TvString>{u"/p/d.dst", u"/p/c.dst", u"/p/A.DWG", u"/p/b.dwg"}));
    ed::removeRecentFile(u"/P/C.dst");
    EXPECT_EQ(ed::recentFiles(), (std::vector<TvString>{u"/p/d.dst", u"/p/A.DWG", u"/p/b.dwg"}));
    const int changes = recentChanges;
    ed::addRecentFile(u"");
    ed::addRecentFile(u"relative.dwg");
    ed::addRecentFile(u"/p/two\nlines.dwg");
    ed::addRecentFile(u"/p/d.dst");
    ed::removeRecentFile(u"/p/unknown.dwg");
    EXPECT_EQ(recentChanges, changes) << "nothing was changed by any of them";
}

TEST_F(FileCommandTest, RecentFilesAreBoundedAndOutliveTheProgram)
{
    for (int i = 0; i < 30; ++i)
        ed::addRecentFile(TvString().format(u"/p/%d.dwg", i));
    ASSERT_EQ(ed::recentFiles().size(), 20u);
    EXPECT_EQ(ed::recentFiles().front(), u"/p/29.dwg");
    EXPECT_EQ(ed::recentFiles().back(), u"/p/10.dwg");
    const std::vector<TvString> before = ed::recentFiles();
    ed::setRecentFilesFolder(path("elsewhere"));
    EXPECT_TRUE(ed::recentFiles().empty());
    ed::setRecentFilesFolder(path("state"));
    EXPECT_EQ(ed::recentFiles(), before);
    EXPECT_TRUE(KvFileSystem::isDirectory(path("state")));
    TarvikConfigValue value;
    EXPECT_FALSE(config.getValue(1, u"RecentFiles\\List", value)) << "it is no preference";
    ed::clearRecentFiles();
    EXPECT_TRUE(ed::recentFiles().empty());
}

} // namespace
