// Which sets are open, which is shown, and what is remembered.

#include "session_scene.h"

namespace {

using Names = std::vector<std::string>;
using Paths = std::vector<TvString>;

TEST_F(SessionTest, ActivatingTellsThePalettesInOrderAndKeepsWhatTheyRemember)
{
    TvSmDatabase* house = made("house.dst");
    ActivateSheetSet(house);
    EXPECT_EQ(GetCurrentDatabase(), house);
    EXPECT_EQ(GetSessionDatabases(), std::vector{house});
    EXPECT_EQ(host.told,
              (Names{"list switch, keep", "sheet views switch, keep", "model views switch, keep"}));
}

TEST_F(SessionTest, ActivatingTheCurrentOneDoesNothing)
{
    TvSmDatabase* house = made("house.dst");
    ActivateSheetSet(house);
    host.told.clear();
    ActivateSheetSet(house);
    EXPECT_TRUE(host.told.empty());
}

TEST_F(SessionTest, ActivatingNullIsNothing)
{
    TvSmDatabase* house = made("house.dst");
    ActivateSheetSet(house);
    host.told.clear();
    ActivateSheetSet(nullptr);
    EXPECT_EQ(GetCurrentDatabase(), house);
    EXPECT_EQ(GetSessionDatabases(), std::vector{house});
    EXPECT_TRUE(host.told.empty());
}

TEST_F(SessionTest, DatabasesStandInTheOrderOfTheirFirstActivation)
{
    TvSmDatabase* a = made("a.dst");
    TvSmDatabase* b = made("b.dst");
    ActivateSheetSet(b);
    ActivateSheetSet(a);
    ActivateSheetSet(b);
    EXPECT_EQ(GetSessionDatabases(), (std::vector{b, a}));
    EXPECT_EQ(GetCurrentDatabase(), b);
}

TEST_F(SessionTest, PalettesThatWereNotMadeYetAreNotTold)
{
    host.isThere[1] = false;
    ActivateSheetSet(made("a.dst"));
    EXPECT_EQ(host.told, (Names{"list switch, keep", "model views switch, keep"}));
}

TEST_F(SessionTest, ClosingActivatesTheMostRecentlyAddedOfTheRestNotTheOneShownBefore)
{
    TvSmDatabase* a = made("a.dst");
    TvSmDatabase* b = made("b.dst");
    TvSmDatabase* c = made("c.dst");
    for (TvSmDatabase* database : {a, b, c, a})
        ActivateSheetSet(database);
    ActivateSheetSet(b); // a was shown before
    host.told.clear();
    EXPECT_TRUE(CloseCurrentSheetSet());
    EXPECT_EQ(GetCurrentDatabase(), c);
    EXPECT_EQ(GetSessionDatabases(), (std::vector{a, c}));
    EXPECT_EQ(host.told, (Names{"list switch, forget", "sheet views switch, forget",
                                "model views switch, forget"}));
    EXPECT_EQ(manager().findOpenDatabase(folder.file("b.dst")), nullptr);
}

TEST_F(SessionTest, ClosingTheLastOneLeavesNone)
{
    ActivateSheetSet(made("a.dst"));
    EXPECT_TRUE(CloseCurrentSheetSet());
    EXPECT_EQ(GetCurrentDatabase(), nullptr);
    EXPECT_TRUE(GetSessionDatabases().empty());
}

TEST_F(SessionTest, ClosingWithNothingOpenTellsThePalettesAllTheSame)
{
    EXPECT_FALSE(CloseCurrentSheetSet());
    EXPECT_EQ(host.told.size(), 3u);
    EXPECT_EQ(host.told.front(), "list switch, forget");
}

TEST_F(SessionTest, ClosingWithNothingOpenHandsNullToTheManager)
{
    struct Asked : TvSmSheetSetMgr {
        bool closeDatabase(TvSmDatabase* database) override
        {
            closed.push_back(database);
            return TvSmSheetSetMgr::closeDatabase(database);
        }
        std::vector<TvSmDatabase*> closed;
    } asked;
    sm::environment().manager = &asked;
    EXPECT_FALSE(CloseCurrentSheetSet());
    EXPECT_EQ(asked.closed, std::vector<TvSmDatabase*>{nullptr});
}

TEST_F(SessionTest, PalettesAreToldTheCurrentDatabaseBeforeTheClosedOneGoes)
{
    struct Asking : core::SessionHost, core::SheetSetPalette {
        void ShowSheetSetPalette() override {}
        core::SheetSetPalette* palette(Palette) override { return this; }
        void AddDstFileToRecentFileList(const TvString&) override {}
        TvString GetUserLocalApplicationDataTemplatePath() override { return {}; }
        void switchDatabase(bool) override
        {
            current = GetCurrentDatabase();
            wasOpen = manager().findOpenDatabase(path) != nullptr;
        }
        void reloadDatabase() override {}
        void refreshLockState() override {}
        TvSmDatabase* displayedDatabase() const override { return nullptr; }
        ed::PaletteSet* paletteSet() override { return nullptr; }
        TvString GetUserRoamingDataPath() override { return {}; }
        TvString path;
        TvSmDatabase* current = nullptr;
        bool wasOpen = false;
    } asking;
    TvSmDatabase* a = made("a.dst");
    ActivateSheetSet(a);
    ActivateSheetSet(made("b.dst"));
    asking.path = folder.file("b.dst");
    core::setSessionHost(&asking);
    CloseCurrentSheetSet();
    core::setSessionHost(&host);
    EXPECT_EQ(asking.current, a);
    EXPECT_TRUE(asking.wasOpen);
}

TEST_F(SessionTest, TheBackupCopyStandsBesideTheFileAndIsOverwritten)
{
    folder.write("HOUSE.DST", "first");
    MakeBackupCopy(folder.file("HOUSE.DST"));
    EXPECT_EQ(folder.read("HOUSE.ds$"), "first");
    folder.write("HOUSE.DST", "second");
    MakeBackupCopy(folder.file("HOUSE.DST"));
    EXPECT_EQ(folder.read("HOUSE.ds$"), "second");
}

TEST_F(SessionTest, TheBackupCopyIsNeverWrittenThroughALink)
{
    folder.write("house.dst", "content");
    folder.write("keys", "secret");
    std::filesystem::create_symlink("keys", folder.path() / "house.ds$");
    MakeBackupCopy(folder.file("house.dst"));
    EXPECT_EQ(folder.read("keys"), "secret");
    EXPECT_EQ(folder.read("house.ds$"), "content");
    EXPECT_FALSE(std::filesystem::is_symlink(folder.path() / "house.ds$"));
}

TEST_F(SessionTest, ABackupCopyThatFailsIsNobodysConcern)
{
    MakeBackupCopy(folder.file("missing.dst"));
    MakeBackupCopy(u"");
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "missing.ds$"));
}

TEST_F(SessionTest, TheLatestPathIsFirstInTheRecentListAndInTheProgramsOwn)
{
    UpdateRecentList(u"/a.dst", true);
    UpdateRecentList(u"/b.dst", true);
    EXPECT_EQ(recentSheetSets(), (Paths{u"/b.dst", u"/a.dst"}));
    EXPECT_EQ(host.recent, (Paths{u"/a.dst", u"/b.dst"}));
    TvString first;
    EXPECT_TRUE(ReadConfigText(u"UserInterfaceSettings\\SheetSetOpenedRecently\\File0", first));
    EXPECT_EQ(first, u"/b.dst");
}

TEST_F(SessionTest, AnEleventhPathDropsTheOldest)
{
    for (int i = 0; i < 11; ++i)
        UpdateRecentList(TvString().format(u"/%d.dst", i), true);
    const Paths recent = recentSheetSets();
    ASSERT_EQ(recent.size(), 10u);
    EXPECT_EQ(recent.front(), u"/10.dst");
    EXPECT_EQ(recent.back(), u"/1.dst");
    TvString eleventh;
    EXPECT_FALSE(
        ReadConfigText(u"UserInterfaceSettings\\SheetSetOpenedRecently\\File10", eleventh));
}

TEST_F(SessionTest, APathOfOtherLetterCaseLeavesOneEntryAsNowSpelledAtTheFront)
{
    UpdateRecentList(u"/a.dst", true);
    UpdateRecentList(u"/b.dst", true);
    UpdateRecentList(u"/A.DST", true);
    EXPECT_EQ(recentSheetSets(), (Paths{u"/A.DST", u"/b.dst"}));
}

TEST_F(SessionTest, RemovingTakesThePathOutAndTellsNobody)
{
    UpdateRecentList(u"/a.dst", true);
    UpdateRecentList(u"/b.dst", true);
    host.recent.clear();
    UpdateRecentList(u"/B.dst", false);
    EXPECT_EQ(recentSheetSets(), (Paths{u"/a.dst"}));
    EXPECT_TRUE(host.recent.empty());
    UpdateRecentList(u"/a.dst", false);
    EXPECT_TRUE(recentSheetSets().empty());
}

TEST_F(SessionTest, AGapEndsTheRecentListAndWhatIsBehindItGoesWithTheNextWrite)
{
    for (int i = 0; i < 5; ++i)
        UpdateRecentList(TvString().format(u"/%d.dst", i), true);
    RemoveConfigItem(u"UserInterfaceSettings\\SheetSetOpenedRecently\\File3");
    EXPECT_EQ(recentSheetSets(), (Paths{u"/4.dst", u"/3.dst", u"/2.dst"}));
    UpdateRecentList(u"/new.dst", true);
    EXPECT_EQ(recentSheetSets(), (Paths{u"/new.dst", u"/4.dst", u"/3.dst", u"/2.dst"}));
    TvString behind;
    EXPECT_FALSE(ReadConfigText(u"UserInterfaceSettings\\SheetSetOpenedRecently\\File4", behind));
}

TEST_F(SessionTest, AnEmptyRecentTextIsAGapToo)
{
    UpdateRecentList(u"/a.dst", true);
    UpdateRecentList(u"/b.dst", true);
    WriteConfigText(u"UserInterfaceSettings\\SheetSetOpenedRecently\\File0", u"");
    EXPECT_TRUE(recentSheetSets().empty());
}

TEST_F(SessionTest, RefreshingReachesEachPaletteThatIsThere)
{
    host.isThere[2] = false;
    RefreshAllPalettes();
    RefreshLockState();
    EXPECT_EQ(host.told,
              (Names{"list reload", "sheet views reload", "list lock", "sheet views lock"}));
}

TEST_F(SessionTest, WithoutAHostTheSessionWorksAndShowsNothing)
{
    core::setSessionHost(nullptr);
    TvSmDatabase* a = made("a.dst");
    ActivateSheetSet(a);
    RefreshAllPalettes();
    UpdateRecentList(u"/a.dst", true);
    EXPECT_EQ(recentSheetSets(), (Paths{u"/a.dst"}));
    EXPECT_TRUE(CloseCurrentSheetSet());
}

// Settings

TEST_F(SessionTest, SettingsKeepTextsAndIntegersUnderTheirKeys)
{
    EXPECT_TRUE(WriteConfigText(u"Config\\publish\\Format", u"pdf"));
    EXPECT_TRUE(WriteConfigInt(u"Config\\publish\\Copies", 3));
    TvString text;
    int number = 0;
    EXPECT_TRUE(ReadConfigText(u"Config\\publish\\Format", text));
    EXPECT_TRUE(ReadConfigInt(u"Config\\publish\\Copies", number));
    EXPECT_EQ(text, u"pdf");
    EXPECT_EQ(number, 3);
    TarvikConfigValue stored;
    EXPECT_TRUE(config.getValue(4, u"Config\\publish\\Copies", stored)) << "all in one scope";
}

TEST_F(SessionTest, ASettingOfTheOtherKindReadsAsEmptyOrNought)
{
    WriteConfigText(u"K\\text", u"7");
    WriteConfigInt(u"K\\int", 7);
    TvString text = u"before";
    int number = 5;
    EXPECT_TRUE(ReadConfigText(u"K\\int", text));
    EXPECT_TRUE(ReadConfigInt(u"K\\text", number));
    EXPECT_TRUE(text.isEmpty());
    EXPECT_EQ(number, 0);
}

TEST_F(SessionTest, ASettingThatIsMissingLeavesTheAnswerAlone)
{
    TvString text = u"before";
    int number = 5;
    EXPECT_FALSE(ReadConfigText(u"K\\none", text));
    EXPECT_FALSE(ReadConfigInt(u"K\\none", number));
    EXPECT_EQ(text, u"before");
    EXPECT_EQ(number, 5);
}

TEST_F(SessionTest, RemovingASettingTakesAllBelowItAlong)
{
    WriteConfigInt(u"K\\a", 1);
    WriteConfigInt(u"K\\b\\c", 2);
    EXPECT_TRUE(RemoveConfigItem(u"K"));
    int number = 0;
    EXPECT_FALSE(ReadConfigInt(u"K\\b\\c", number));
    EXPECT_FALSE(RemoveConfigItem(u"K"));
}

TEST_F(SessionTest, WithoutAConfigurationNothingIsKept)
{
    tarvSetConfig(nullptr);
    TvString text;
    EXPECT_FALSE(WriteConfigText(u"K", u"x"));
    EXPECT_FALSE(WriteConfigInt(u"K", 1));
    EXPECT_FALSE(ReadConfigText(u"K", text));
    EXPECT_FALSE(RemoveConfigItem(u"K"));
}

} // namespace
