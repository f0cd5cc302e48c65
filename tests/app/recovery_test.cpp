#include "program_scene.h"

#include <app/drawing_watch.h>
#include <app/recovery.h>
#include <base/kv_file_system.h>
#include <db/tv_db_layout.h>
#include <ed/layouts.h>

namespace {

class RecoveryTest : public testing::Test, protected ProgramFolder
{
protected:
    TvApDocument* open(const char* name)
    {
        TvApDocument* document = nullptr;
        EXPECT_EQ(program.open(folder.file(name), false, document), TvStatus::Ok) << prompts.err;
        watch.watch(document->database());
        return document;
    }
    void change(TvApDocument* document)
    {
        const bool toModel = document->database()->tilemode();
        EXPECT_EQ(ed::setCurrentLayout(*document->database(), toModel ? u"Layout1" : u"Model"),
                  TvStatus::Ok);
    }
    TvString sessions() const { return folder.file("state/sessions"); }
    std::size_t filesOf(const app::RecoveryKeeper& keeper) const
    {
        return KvFileSystem::listFolder(keeper.folder()).size();
    }
    /// As a crash leaves it: nobody holds it, and everything is there.
    std::vector<app::LostSession> afterACrash(const app::RecoveryKeeper& keeper)
    {
        const std::filesystem::path from = base::nativePath(keeper.folder());
        std::filesystem::copy(from, folder.path() / "lost" / "1",
                              std::filesystem::copy_options::recursive);
        return app::lostSessions(folder.file("lost"));
    }
    void SetUp() override { std::filesystem::create_directory(folder.path() / "lost"); }

    NotingPrompts prompts;
    app::Program program{{folders(), &prompts, &prompts}};
    app::DrawingWatch watch;
};

TEST_F(RecoveryTest, ACopyHasTheUnsavedChangesAndTheFileHasNot)
{
    const std::string before = folder.read("a.dwg");
    TvApDocument* document = open("a.dwg");
    change(document);
    app::RecoveryKeeper keeper(sessions());

    ASSERT_TRUE(keeper.keep(program.documents(), watch));

    EXPECT_EQ(folder.read("a.dwg"), before);
    const auto lost = afterACrash(keeper);
    ASSERT_EQ(lost.size(), 1u);
    ASSERT_EQ(lost[0].drawings.size(), 1u);
    EXPECT_EQ(lost[0].drawings[0].file, folder.file("a.dwg"));
    TvDbDatabase copy(false, true);
    ASSERT_EQ(copy.readDwgFile(lost[0].drawings[0].copy), TvStatus::Ok);
    EXPECT_EQ(ed::currentLayoutName(copy), u"Layout1");
}

TEST_F(RecoveryTest, AnUnchangedDrawingIsListedWithoutACopy)
{
    open("a.dwg");
    app::RecoveryKeeper keeper(sessions());
    ASSERT_TRUE(keeper.keep(program.documents(), watch));
    const auto lost = afterACrash(keeper);
    ASSERT_EQ(lost.size(), 1u);
    ASSERT_EQ(lost[0].drawings.size(), 1u);
    EXPECT_TRUE(lost[0].drawings[0].copy.isEmpty());
    EXPECT_TRUE(lost[0].drawings[0].hasFile);
}

TEST_F(RecoveryTest, ANewDrawingIsKeptToo)
{
    TvApDocument* document = program.documents().newDocument();
    watch.watch(document->database());
    change(document);
    app::RecoveryKeeper keeper(sessions());
    ASSERT_TRUE(keeper.keep(program.documents(), watch));
    const auto lost = afterACrash(keeper);
    ASSERT_EQ(lost.at(0).drawings.size(), 1u);
    EXPECT_FALSE(lost[0].drawings[0].hasFile);
    EXPECT_FALSE(lost[0].drawings[0].copy.isEmpty());
}

TEST_F(RecoveryTest, OneCopyOfEachDrawingIsKeptAndItsAge)
{
    TvApDocument* document = open("a.dwg");
    change(document);
    app::RecoveryKeeper keeper(sessions());
    ASSERT_TRUE(keeper.keep(program.documents(), watch));
    const auto first = KvFileSystem::listFolder(keeper.folder());
    ASSERT_TRUE(keeper.keep(program.documents(), watch)); // nothing changed meanwhile
    const auto second = KvFileSystem::listFolder(keeper.folder());
    ASSERT_EQ(first.size(), 3u); // the lock, the list, the copy
    for (std::size_t i = 0; i < first.size(); ++i)
        EXPECT_EQ(first[i].name, second.at(i).name);
    change(document);
    ASSERT_TRUE(keeper.keep(program.documents(), watch));
    EXPECT_EQ(filesOf(keeper), 3u);
    EXPECT_NE(KvFileSystem::listFolder(keeper.folder())[0].name, first[0].name);
}

TEST_F(RecoveryTest, SavingAndClosingTakeTheCopyAway)
{
    TvApDocument* document = open("a.dwg");
    TvApDocument* other = open("b.dwg");
    change(document);
    change(other);
    app::RecoveryKeeper keeper(sessions());
    ASSERT_TRUE(keeper.keep(program.documents(), watch));
    EXPECT_EQ(filesOf(keeper), 4u);
    ASSERT_EQ(program.documents().saveDocument(document), TvStatus::Ok);
    ASSERT_EQ(program.documents().closeDocument(other), TvStatus::Ok);
    ASSERT_TRUE(keeper.keep(program.documents(), watch));
    EXPECT_EQ(filesOf(keeper), 2u);
}

TEST_F(RecoveryTest, AnOrderlyEndLeavesNothing)
{
    change(open("a.dwg"));
    {
        app::RecoveryKeeper keeper(sessions());
        ASSERT_TRUE(keeper.keep(program.documents(), watch));
        EXPECT_TRUE(app::lostSessions(sessions()).empty()) << "it is held";
    }
    EXPECT_TRUE(KvFileSystem::listFolder(sessions()).empty());
}

TEST_F(RecoveryTest, WhatIsLeftIsThereForTheNextStart)
{
    change(open("a.dwg"));
    {
        app::RecoveryKeeper keeper(sessions());
        ASSERT_TRUE(keeper.keep(program.documents(), watch));
        keeper.leave();
    }
    const auto lost = app::lostSessions(sessions());
    ASSERT_EQ(lost.size(), 1u);
    EXPECT_FALSE(lost[0].drawings.at(0).copy.isEmpty());
}

TEST_F(RecoveryTest, ADrawingAtTheSamePlaceInMemoryIsAnotherOne)
{
    app::RecoveryKeeper keeper(sessions());
    for (const char* name : {"a.dwg", "b.dwg", "a.dwg"}) {
        TvApDocument* document = open(name);
        change(document);
        ASSERT_TRUE(keeper.keep(program.documents(), watch));
        const auto lost = afterACrash(keeper);
        ASSERT_EQ(lost.at(0).drawings.size(), 1u);
        TvDbDatabase copy(false, true);
        ASSERT_EQ(copy.readDwgFile(lost[0].drawings[0].copy), TvStatus::Ok);
        EXPECT_EQ(ed::currentLayoutName(copy), u"Layout1");
        app::discard(lost[0]);
        ASSERT_EQ(program.documents().closeDocument(document), TvStatus::Ok);
    }
}

TEST_F(RecoveryTest, OthersCannotLookIntoIt)
{
    app::RecoveryKeeper keeper(sessions());
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(base::nativePath(keeper.folder())).permissions() &
                  (perms::group_all | perms::others_all),
              perms::none);
}

TEST_F(RecoveryTest, DiscardingTakesALostRunAway)
{
    change(open("a.dwg"));
    app::RecoveryKeeper keeper(sessions());
    ASSERT_TRUE(keeper.keep(program.documents(), watch));
    const auto lost = afterACrash(keeper);
    ASSERT_EQ(lost.size(), 1u);
    app::discard(lost[0]);
    EXPECT_TRUE(app::lostSessions(folder.file("lost")).empty());
    EXPECT_EQ(KvFileSystem::listFolder(folder.file("lost")).size(), 0u);
}

TEST_F(RecoveryTest, WhatSomebodyPutThereLeadsNowhere)
{
    folder.write("outside.dwg", "private");
    const auto place = [&](const char* run, const std::string& list) {
        std::filesystem::create_directories(folder.path() / "lost" / run);
        folder.write(std::string("lost/") + run + "/run.lock", "");
        folder.write(std::string("lost/") + run + "/open.json", list);
    };
    place("1", R"({"drawings":[{"file":"/x.dwg","copy":"../../outside.dwg"}]})");
    place("2", R"({"drawings":[7,{"copy":"1.dwg"},{"file":{"a":1},"copy":[]}]})");
    place("3", "no list at all");
    place("4", "[[[");
    for (const app::LostSession& session : app::lostSessions(folder.file("lost")))
        for (const app::LostDrawing& drawing : session.drawings)
            EXPECT_TRUE(drawing.copy.isEmpty());
}

TEST_F(RecoveryTest, WithoutAFolderNothingIsKept)
{
    change(open("a.dwg"));
    app::RecoveryKeeper keeper({});
    EXPECT_TRUE(keeper.keep(program.documents(), watch));
    EXPECT_TRUE(keeper.folder().isEmpty());
}

TEST_F(RecoveryTest, WhatWasRecoveredIsKeptAgainUntilItIsSaved)
{
    TvApDocument* document = open("a.dwg");
    ASSERT_FALSE(document->database()->isModified());
    app::markAsChanged(*document->database());
    EXPECT_TRUE(document->database()->isModified());
    EXPECT_FALSE(document->database()->hasUndo());
    app::RecoveryKeeper keeper(sessions());
    ASSERT_TRUE(keeper.keep(program.documents(), watch));
    EXPECT_EQ(filesOf(keeper), 3u);
}

TEST(DrawingWatch, SwitchingLayoutsChangesNothingThatIsDrawn)
{
    TvDbDatabase drawing;
    app::DrawingWatch watch;
    watch.watch(&drawing);
    const auto all = watch.changes(&drawing), drawn = watch.drawnChanges(&drawing);
    ASSERT_EQ(ed::setCurrentLayout(drawing, u"Layout1"), TvStatus::Ok);
    EXPECT_GT(watch.changes(&drawing), all);
    EXPECT_EQ(watch.drawnChanges(&drawing), drawn);
}

TEST(DrawingWatch, CountsChangesAndUndo)
{
    TvDbDatabase drawing;
    app::DrawingWatch watch;
    watch.watch(&drawing);
    const auto before = watch.changes(&drawing);
    drawing.startUndoRecord();
    ASSERT_EQ(drawing.setTilemode(false), TvStatus::Ok);
    const auto changed = watch.changes(&drawing);
    EXPECT_GT(changed, before);
    watch.forget(&drawing);
    EXPECT_EQ(watch.changes(&drawing), 0u);
}

} // namespace
