// What happens when a drawing opens.

#include <core/auto_open_reactor.h>

#include <core/sheet_data.h>
#include <core/tv_sm_db_reactor.h>

#include "document_scene.h"

namespace {

constexpr int kForget = 350; // the question

class AutoOpenTest : public DocumentTest
{
protected:
    void SetUp() override
    {
        DocumentTest::SetUp();
        reactor = std::make_unique<TvEdAutoOpenSheetSetReactor>();
        DrawingMaker maker;
        maker.paper(u"A1").paper(u"A2");
        first = maker.handleOf(u"A1");
        second = maker.handleOf(u"A2");
        maker.saveAs(folder.file("a.dwg"));
    }
    void TearDown() override
    {
        reactor.reset();
        DocumentTest::TearDown();
    }
    /// A set with one sheet on a layout of a.dwg, closed again.
    TvString setWithSheet(const char* name, const TvString& handle, const char* drawing = "a.dwg")
    {
        TvSmDatabase* database = made(name);
        change(database, [&](TvSmSheetSet& set) {
            setLayout(addSheet(addSubset(&set, u"Ground"), u"1", u"Plan"), folder.file(drawing),
                      handle, u"A1");
        });
        manager().closeDatabase(database);
        return folder.file(name);
    }
    /// Makes a.dwg name a set.
    void link(const TvString& sheetSet, const char* drawing = "a.dwg")
    {
        TvDbDatabase scratch(false, true);
        ASSERT_EQ(scratch.readDwgFile(folder.file(drawing)), TvStatus::Ok);
        ASSERT_TRUE(WriteSheetData(&scratch, {first, u"A1", folder.file(drawing), sheetSet}));
        ASSERT_EQ(scratch.saveAs(folder.file(drawing)), TvStatus::Ok);
    }
    static core::SheetData dataOf(TvApDocument* document)
    {
        return core::readSheetData(*document->database());
    }

    std::unique_ptr<TvEdAutoOpenSheetSetReactor> reactor;
    TvString first, second; // layouts
};

TEST_F(AutoOpenTest, ASheetOfAnOpenSetIsToldItsSetWhichIsShown)
{
    const TvString path = setWithSheet("house.dst", second);
    TvSmDatabase* database = manager().openDatabase(path, true, 0);
    TvApDocument* document = opened("a.dwg");
    EXPECT_EQ(GetCurrentDatabase(), database);
    const core::SheetData data = dataOf(document);
    EXPECT_EQ(data.texts.handle, second);
    EXPECT_EQ(data.texts.layoutName, u"A2");
    EXPECT_EQ(data.texts.drawingName, folder.file("a.dwg"));
    EXPECT_EQ(data.texts.sheetSetFile, path);
    EXPECT_FALSE(document->database()->hasUndo()) << "no part of the user's history";
    EXPECT_EQ(host.told.front(), "show");
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "house.ds$")) << "it was open";
}

TEST_F(AutoOpenTest, TheSetThatTheDrawingNamesOpensWithoutABackupCopy)
{
    link(setWithSheet("house.dst", first));
    opened("a.dwg");
    ASSERT_TRUE(GetCurrentDatabase());
    EXPECT_EQ(GetCurrentDatabase()->getFileName(), folder.file("house.dst"));
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "house.ds$"));
    EXPECT_TRUE(messages.asked.empty());
}

TEST_F(AutoOpenTest, TheFirstOpenSetThatListsTheDrawingWins)
{
    TvSmDatabase* one = manager().openDatabase(setWithSheet("one.dst", first), true, 0);
    manager().openDatabase(setWithSheet("two.dst", second), true, 0);
    opened("a.dwg");
    EXPECT_EQ(GetCurrentDatabase(), one);
    EXPECT_EQ(GetSessionDatabases().size(), 1u);
}

TEST_F(AutoOpenTest, WithoutLocatingNoSetOpensAndTheRecordStays)
{
    link(setWithSheet("house.dst", u"FFF"));
    for (const TvChar* variable : {u"SSLOCATE", u"SSMAUTOOPEN"}) {
        set(variable, 0);
        TvApDocument* document = opened("a.dwg");
        EXPECT_FALSE(GetCurrentDatabase());
        EXPECT_TRUE(dataOf(document).isThere);
        EXPECT_FALSE(document->database()->isModified());
        documents().closeDocument(document);
        set(variable, 1);
    }
}

TEST_F(AutoOpenTest, ADrawingWithoutAPopulatedLayoutIsLeftAloneThoughItNamesASet)
{
    DrawingMaker().saveAs(folder.file("empty.dwg"));
    link(setWithSheet("house.dst", u"FFF"), "empty.dwg");
    TvApDocument* document = opened("empty.dwg");
    EXPECT_TRUE(dataOf(document).isThere);
    EXPECT_FALSE(GetCurrentDatabase());
    EXPECT_TRUE(openDatabases().empty());
}

TEST_F(AutoOpenTest, ADrawingForgetsAnOpenSetThatDoesNotListItAndNoUndoBringsThatBack)
{
    const TvString path = setWithSheet("house.dst", first, "other.dwg");
    link(path);
    manager().openDatabase(path, true, 0);
    TvApDocument* document = opened("a.dwg");
    EXPECT_FALSE(dataOf(document).isThere);
    EXPECT_FALSE(document->database()->hasUndo());
    EXPECT_NE(document->database()->undo(), TvStatus::Ok);
    EXPECT_FALSE(GetCurrentDatabase());
}

TEST_F(AutoOpenTest, ADrawingForgetsASetOnDiskThatDoesNotListItAndTheSetIsClosedAgain)
{
    link(setWithSheet("house.dst", first, "other.dwg"));
    TvApDocument* document = opened("a.dwg");
    EXPECT_FALSE(dataOf(document).isThere);
    EXPECT_FALSE(GetCurrentDatabase());
    EXPECT_TRUE(openDatabases().empty());
    EXPECT_TRUE(messages.asked.empty());
}

TEST_F(AutoOpenTest, ALinkThatLeadsNowhereIsDroppedWhenTheUserSaysSo)
{
    link(folder.file("gone.dst"));
    messages.answer = TvUserMessages::Answer::Yes;
    TvApDocument* document = opened("a.dwg");
    EXPECT_EQ(messages.numbers(), std::vector<int>{kForget});
    EXPECT_FALSE(dataOf(document).isThere);
    EXPECT_FALSE(GetCurrentDatabase());
}

TEST_F(AutoOpenTest, AnyOtherAnswerKeepsTheLinkAndItIsAskedAgain)
{
    link(folder.file("gone.dst"));
    messages.answer = TvUserMessages::Answer::No;
    TvApDocument* document = opened("a.dwg");
    EXPECT_TRUE(dataOf(document).isThere);
    documents().closeDocument(document);
    opened("a.dwg");
    EXPECT_EQ(messages.numbers(), (std::vector<int>{kForget, kForget}));
}

TEST_F(AutoOpenTest, NothingOpensNothing)
{
    reactor->endDwgOpen(nullptr, nullptr);
    reactor->endDwgOpen(u"a.dwg", nullptr);
    TvDbDatabase drawing(true, true);
    reactor->endDwgOpen(nullptr, &drawing);
    EXPECT_TRUE(host.told.empty());
}

TEST_F(AutoOpenTest, ViewsOfAnOpenedDrawingAreWatchedUntilItCloses)
{
    TvApDocument* document = opened("a.dwg");
    g_viewsDirty = false;
    DrawingMaker(*document->database()).view(u"Front", u"A1");
    EXPECT_TRUE(g_viewsDirty);
    reactor->documentClosing(document->database());
    g_viewsDirty = false;
    DrawingMaker(*document->database()).view(u"Back", u"A1");
    EXPECT_FALSE(g_viewsDirty);
    reactor->documentClosing(nullptr);
}

TEST_F(AutoOpenTest, TheReactorLeavesOpenDrawingsWhenItGoes)
{
    TvApDocument* document = opened("a.dwg");
    reactor.reset();
    g_viewsDirty = false;
    DrawingMaker(*document->database()).view(u"Front", u"A1");
    EXPECT_FALSE(g_viewsDirty);
}

TEST_F(AutoOpenTest, AnotherThemeIsToldToThePalettesThatAreThere)
{
    host.isThere[1] = false;
    reactor->sysVarChanged(u"colortheme");
    EXPECT_EQ(host.told, (std::vector<std::string>{"list style", "model views style"}));
    reactor->sysVarChanged(u"ORTHOMODE");
    reactor->sysVarChanged(nullptr);
    EXPECT_EQ(host.told.size(), 2u);
}

TEST_F(AutoOpenTest, TheSheetIsFoundInTheOrderOfTheTreeAndOnlyBelowTheSubset)
{
    TvSmDatabase* database = made("tree.dst");
    TvSmSubset* ground = nullptr;
    change(database, [&](TvSmSheetSet& set) {
        ground = addSubset(&set, u"Ground");
        TvSmSubset* details = addSubset(ground, u"Details");
        setLayout(addSheet(details, u"0", u"gone"), folder.file("a.dwg"), u"FFF", u"A0");
        setLayout(addSheet(details, u"1", u"a"), folder.file("A.DWG"), second, u"A2");
        setLayout(addSheet(&set, u"2", u"b"), folder.file("a.dwg"), first, u"A1");
        setLayout(addSheet(details, u"3", u"c"), folder.file("a.dwg"), second, u"A2");
    });
    const std::vector<core::PaperLayout> layouts = {{u"A1", TvDbHandle(first.view())},
                                                    {u"A2", TvDbHandle(second.view())}};
    core::PaperLayout match;
    EXPECT_TRUE(
        FindSheetForOpeningDrawing(database->getSheetSet(), folder.file("a.dwg"), layouts, match));
    EXPECT_EQ(match.name, u"A2");
    match = {};
    EXPECT_FALSE(
        FindSheetForOpeningDrawing(ground, folder.file("a.dwg"), {layouts.front()}, match));
    EXPECT_EQ(match.name, u"");
    EXPECT_FALSE(FindSheetForOpeningDrawing(nullptr, folder.file("a.dwg"), layouts, match));
}

} // namespace
