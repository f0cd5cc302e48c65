// "sheet import" and "new --from": sheets from layouts that are there.

#include <algorithm>

#include <core/sheet_data.h>
#include <db/tv_db_curves.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>

#include "drawing_scene.h"

namespace {

using cli::ExitCode;
using Json = nlohmann::ordered_json;
using Names = std::vector<std::string>;

class SheetImport : public testing::Test
{
protected:
    void SetUp() override
    {
        set = folder.path("house.dst");
        ASSERT_EQ(runLine({"new", set}).code, ExitCode::Ok);
    }
    /// One of our drawings with a line on each of these layouts, which are new.
    std::string drawingWith(const std::string& name, const Names& layouts,
                            const std::string& sheetSet = {})
    {
        std::filesystem::create_directories(std::filesystem::path(folder.path(name)).parent_path());
        const std::string path = folder.put("empty-ac1032.dwg", name);
        damage(path, [&](TvDbDatabase& database) {
            for (const std::string& layout : layouts)
                addPaper(database, TvString(layout.c_str()));
            if (!sheetSet.empty()) {
                EXPECT_TRUE(WriteSheetData(&database, {u"1", u"", base::pathFromNative(path),
                                                       base::pathFromNative(sheetSet)}));
            }
        });
        return path;
    }
    static void addPaper(TvDbDatabase& database, const TvString& name)
    {
        TvDbObjectId id, ignored;
        ASSERT_EQ(db::addLayout(database, name, id), TvStatus::Ok);
        const TvDbObjectPointer<TvDbLayout> layout(id);
        const TvDbObjectPointer<TvDbBlockTableRecord> block(layout->getBlockTableRecordId(),
                                                            TvDb::kForWrite);
        auto* line = new TvDbLine({0, 0, 0}, {10, 0, 0});
        ASSERT_EQ(block->appendTvDbEntity(ignored, line), TvStatus::Ok);
        line->close();
    }
    Said runImport(std::vector<std::string> rest)
    {
        rest.insert(rest.begin(), {"sheet", "import", set});
        return runLine(rest);
    }
    Json importJson(std::vector<std::string> rest)
    {
        rest.push_back("--json");
        return runImport(std::move(rest)).json();
    }
    static Names namesOf(const Json& list)
    {
        Names names;
        for (const Json& each : list)
            names.push_back(each["name"]);
        return names;
    }
    /// "1 Plans - A" of all sheets below, in tree order, with their subsets.
    static void appendSheets(const Json& node, const std::string& place, Names& names)
    {
        for (const Json& child : node["children"])
            if (child["kind"] == "sheet")
                names.push_back(place + child["number"].get<std::string>() + " " +
                                child["title"].get<std::string>());
            else
                appendSheets(child, place + child["name"].get<std::string>() + "/", names);
    }
    static Names sheetsOf(const std::string& file)
    {
        Names names;
        appendSheets(runLine({"tree", file, "--json"}).json()["root"], "", names);
        return names;
    }
    static Names codesOf(const Json& document)
    {
        Names codes;
        for (const Json& warning : document["warnings"])
            codes.push_back(warning["code"]);
        return codes;
    }

    const DrawingFolder folder;
    std::string set;
};

} // namespace

TEST_F(SheetImport, MakesASheetOfEachLayoutWithContentInTheOrderOfTabs)
{
    const std::string b = drawingWith("b.dwg", {"Zebra", "Ape"});
    const std::string a = drawingWith("a.dwg", {"A"});
    const Said said = runImport({b, a});
    EXPECT_EQ(said.code, ExitCode::Ok) << said.err;
    EXPECT_EQ(sheetsOf(set), (Names{" b - Zebra", " b - Ape", " a - A"}));
    EXPECT_EQ(said.out, "g3  b - Zebra\ng5  b - Ape\ng7  a - A\n");
    const Said info = runLine({"check", set, "--drawings"});
    EXPECT_EQ(info.code, ExitCode::Ok) << info.out;
}

TEST_F(SheetImport, TellsWhatItMadeAsADocument)
{
    const std::string plans = drawingWith("Plans.dwg", {"Level 1"});
    const Json document = importJson({plans});
    EXPECT_EQ(document["schema"], "kvsheetset.sheet-import/1");
    EXPECT_EQ(document["parent"]["kind"], "sheetSet");
    ASSERT_EQ(document["sheets"].size(), 1u);
    const Json& sheet = document["sheets"][0];
    EXPECT_EQ(fieldsOf(sheet), (Names{"handle", "name", "drawing", "layout", "layoutHandle"}));
    EXPECT_EQ(sheet["name"], "Plans - Level 1");
    EXPECT_EQ(sheet["drawing"], plans);
    EXPECT_EQ(sheet["layout"], "Level 1");
    EXPECT_TRUE(document["inUse"].empty());
    EXPECT_FALSE(document["dryRun"]);
}

TEST_F(SheetImport, TakesNamedLayoutsIntoASubsetWithoutThePrefix)
{
    const std::string plans = drawingWith("Plans.dwg", {"Level 1", "Level 2", "Level 3"});
    ASSERT_EQ(runLine({"subset", "add", set, "Ground"}).out, "g3\n");
    const Said said = runImport(
        {"--layout", "level 3", plans, "--layout", "Level 1", "--in", "g3", "--no-prefix"});
    EXPECT_EQ(said.code, ExitCode::Ok) << said.err;
    EXPECT_EQ(sheetsOf(set), (Names{"Ground/ Level 1", "Ground/ Level 3"}));
}

TEST_F(SheetImport, LeavesOutWhatIsASheetAlreadyAndSaysSo)
{
    const std::string plans = drawingWith("Plans.dwg", {"Level 1", "Level 2"});
    ASSERT_EQ(runImport({plans, "--layout", "Level 1"}).code, ExitCode::Ok);
    const Json again = importJson({plans, "--all"});
    EXPECT_EQ(again["exitCode"], 0);
    EXPECT_EQ(namesOf(again["sheets"]), Names{"Plans - Level 2"});
    ASSERT_EQ(again["inUse"].size(), 1u);
    EXPECT_EQ(again["inUse"][0]["layout"], "Level 1");
    EXPECT_EQ(codesOf(again), Names{"E24130"});
    const std::string before = folder.bytes("house.dst");
    const Said none = runImport({plans});
    EXPECT_EQ(none.code, ExitCode::NoInput);
    EXPECT_NE(none.err.find("E24133"), std::string::npos) << none.err;
    EXPECT_EQ(folder.bytes("house.dst"), before);
}

TEST_F(SheetImport, LeavesOutWhatTheSetThatTheDrawingNamesHas)
{
    const std::string other = folder.path("other.dst");
    const std::string plans = drawingWith("Plans.dwg", {"Level 1", "Level 2"}, other);
    ASSERT_EQ(runLine({"new", other}).code, ExitCode::Ok);
    ASSERT_EQ(runLine({"sheet", "import", other, plans, "--layout", "Level 2"}).code, ExitCode::Ok);
    const Json document = importJson({plans});
    EXPECT_EQ(namesOf(document["sheets"]), Names{"Plans - Level 1"});
    EXPECT_EQ(codesOf(document), Names{"E24130"});
}

TEST_F(SheetImport, AskedForALayoutThatIsMissingOrInUseItDoesTheRestWithStatusOne)
{
    const std::string plans = drawingWith("Plans.dwg", {"Level 1", "Level 2", "Level 3"});
    ASSERT_EQ(runImport({plans, "--layout", "Level 1"}).code, ExitCode::Ok);
    const Json missing = importJson({plans, "--layout", "Level 2", "--layout", "Level 9"});
    EXPECT_EQ(missing["exitCode"], 1);
    EXPECT_EQ(codesOf(missing), Names{"E24132"});
    const Json used = importJson({plans, "--layout", "Level 1", "--layout", "Level 3"});
    EXPECT_EQ(used["exitCode"], 1);
    EXPECT_EQ(codesOf(used), Names{"E24130"});
    EXPECT_EQ(sheetsOf(set).size(), 3u);
}

TEST_F(SheetImport, ADrawingThatCannotBeReadIsToldAndTheOthersAreTaken)
{
    folder.folder().write("broken.dwg", "AC1032 and nothing else");
    const std::string empty = folder.put("empty-ac1032.dwg", "bare.dwg");
    const std::string plans = drawingWith("Plans.dwg", {"Level 1"});
    const Json document =
        importJson({folder.path("gone.dwg"), folder.path("broken.dwg"), empty, plans});
    EXPECT_EQ(document["exitCode"], 1);
    EXPECT_EQ(namesOf(document["sheets"]), Names{"Plans - Level 1"});
    ASSERT_EQ(document["warnings"].size(), 3u);
    EXPECT_EQ(codesOf(document)[2], "E24131");
    for (const int at : {0, 1}) {
        const std::string words = document["warnings"][static_cast<std::size_t>(at)]["message"];
        EXPECT_NE(words.find(at == 0 ? "gone.dwg" : "broken.dwg"), std::string::npos) << words;
    }
}

TEST_F(SheetImport, AloneADrawingThatCannotBeReadRefusesAsItIs)
{
    folder.folder().write("broken.dwg", "AC1032 and nothing else");
    const std::string before = folder.bytes("house.dst");
    EXPECT_EQ(runImport({folder.path("gone.dwg")}).code, ExitCode::NoInput);
    EXPECT_EQ(runImport({folder.path("broken.dwg")}).code, ExitCode::Damaged);
    EXPECT_EQ(folder.bytes("house.dst"), before);
}

TEST_F(SheetImport, TheSameDrawingTwiceIsOne)
{
    const std::string plans = drawingWith("Plans.dwg", {"Level 1"});
    EXPECT_EQ(runImport({plans, plans}).code, ExitCode::Ok);
    EXPECT_EQ(sheetsOf(set).size(), 1u);
}

TEST_F(SheetImport, GivesSheetsThePropertiesThatSheetsHave)
{
    const std::string plans = drawingWith("Plans.dwg", {"Level 1"});
    ASSERT_EQ(runLine({"prop", "set", set, "g1", "Checked=N. N.", "--for", "sheets"}).code,
              ExitCode::Ok);
    ASSERT_EQ(runLine({"prop", "set", set, "g1", "Client=Town", "--for", "set"}).code,
              ExitCode::Ok);
    const std::string handle = importJson({plans})["sheets"][0]["handle"];
    const Json list = runLine({"prop", "list", set, handle, "--json"}).json()["properties"];
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0]["name"], "Checked");
    EXPECT_EQ(list[0]["value"], "N. N.");
    EXPECT_EQ(list[0]["scope"], "sheet");
}

TEST_F(SheetImport, InADryRunTellsTheSameAndWritesNothing)
{
    const std::string plans = drawingWith("Plans.dwg", {"Level 1", "Level 2"});
    ASSERT_EQ(runImport({plans, "--layout", "Level 1"}).code, ExitCode::Ok);
    const std::string before = folder.bytes("house.dst");
    const Json document = importJson({plans, "--dry-run"});
    EXPECT_EQ(namesOf(document["sheets"]), Names{"Plans - Level 2"});
    EXPECT_EQ(document["inUse"].size(), 1u);
    EXPECT_TRUE(document["dryRun"]);
    EXPECT_EQ(folder.bytes("house.dst"), before);
}

TEST_F(SheetImport, RefusesWrongUsageBeforeAnythingIsLocked)
{
    const std::string plans = drawingWith("Plans.dwg", {"Level 1"});
    EXPECT_EQ(runImport({}).code, ExitCode::Usage);
    EXPECT_EQ(runImport({plans, "--all", "--layout", "A"}).code, ExitCode::Usage);
    EXPECT_EQ(runImport({plans, "--in", "x"}).code, ExitCode::Usage);
    EXPECT_EQ(runImport({plans, "--in", "g9"}).code, ExitCode::NoInput);
    EXPECT_TRUE(sheetsOf(set).empty());
}

TEST_F(SheetImport, OfRealDrawingsTakesTheLayoutsThatHoldEntities)
{
    Names drawings, expected;
    for (const auto& [name, facts] : realDrawings("")) {
        drawings.push_back(folder.put(name));
        std::vector<std::pair<int, std::string>> tabs;
        for (const auto& layout : facts["layouts"])
            if (layout["name"] != "Model" && layout["entities"] > 0)
                tabs.emplace_back(layout["tab_order"], layout["name"]);
        std::ranges::stable_sort(tabs);
        for (const auto& tab : tabs)
            expected.push_back(name.substr(0, name.size() - 4) + " - " + tab.second);
    }
    if (drawings.empty())
        GTEST_SKIP() << "no drawings in " << drawingsFolder();
    const Json document = importJson(drawings);
    EXPECT_EQ(document["exitCode"], 0) << document["warnings"].dump(1);
    EXPECT_EQ(namesOf(document["sheets"]), expected);
}

class NewFromFolder : public SheetImport
{
protected:
    Said make(std::vector<std::string> rest)
    {
        rest.insert(rest.begin(), {"new", made, "--from", folder.path("plans")});
        return runLine(rest);
    }
    const std::string made = folder.path("made.dst");
};

TEST_F(NewFromFolder, SheetsAreNumberedInNaturalOrder)
{
    drawingWith("plans/a10.dwg", {"A"});
    drawingWith("plans/a9.dwg", {"Zebra", "Ape"});
    drawingWith("plans/sub/b.dwg", {"B"});
    const Said said = make({});
    EXPECT_EQ(said.code, ExitCode::Ok) << said.err;
    EXPECT_EQ(sheetsOf(made), (Names{"1 a9 - Zebra", "2 a9 - Ape", "3 a10 - A", "4 b - B"}));
    EXPECT_NE(said.err.find("Sheets: 4."), std::string::npos) << said.err;
    EXPECT_EQ(runLine({"check", made, "--drawings"}).code, ExitCode::Ok);
}

TEST_F(NewFromFolder, FoldersBecomeSubsetsOnDemandAndNamesGoWithoutPrefix)
{
    drawingWith("plans/cover.dwg", {"Cover"});
    drawingWith("plans/Ground/a.dwg", {"A"});
    drawingWith("plans/Ground/Details/d.dwg", {"D"});
    const Json document = make({"--subsets", "--no-prefix", "--json"}).json();
    EXPECT_EQ(document["sheets"], 3);
    EXPECT_EQ(document["subsets"], 2);
    EXPECT_EQ(document["from"], folder.path("plans"));
    EXPECT_EQ(sheetsOf(made), (Names{"1 Cover", "Ground/2 A", "Ground/Details/3 D"}));
}

TEST_F(NewFromFolder, ADamagedDrawingIsToldAndLeftOutWithStatusOne)
{
    drawingWith("plans/a.dwg", {"A"});
    folder.folder().write("plans/broken.dwg", "AC1032 and nothing else");
    folder.put("empty-ac1032.dwg", "plans/bare.dwg");
    const Json document = make({"--json"}).json();
    EXPECT_EQ(document["exitCode"], 1);
    EXPECT_EQ(codesOf(document).size(), 1u) << "a drawing without sheets is no news";
    EXPECT_EQ(sheetsOf(made), Names{"1 a - A"});
}

TEST_F(NewFromFolder, WithoutALayoutToTakeNoSetIsMade)
{
    EXPECT_EQ(make({}).code, ExitCode::NoInput) << "no such folder";
    std::filesystem::create_directory(folder.path("plans"));
    EXPECT_EQ(make({}).code, ExitCode::NoInput);
    folder.put("empty-ac1032.dwg", "plans/bare.dwg");
    const Said said = make({});
    EXPECT_EQ(said.code, ExitCode::NoInput);
    EXPECT_NE(said.err.find("E24136"), std::string::npos) << said.err;
    folder.folder().write("plans/broken.dwg", "AC1032 and nothing else");
    EXPECT_EQ(make({}).code, ExitCode::Damaged);
    EXPECT_FALSE(std::filesystem::exists(made));
}

TEST_F(NewFromFolder, InADryRunTellsAndMakesNothing)
{
    drawingWith("plans/a.dwg", {"A"});
    const Json document = make({"--dry-run", "--json"}).json();
    EXPECT_EQ(document["sheets"], 1);
    EXPECT_FALSE(std::filesystem::exists(made));
}

TEST_F(NewFromFolder, OptionsOfAFolderNeedOne)
{
    for (const char* option : {"--subsets", "--prefix", "--no-prefix"}) {
        const Said said = runLine({"new", made, option});
        EXPECT_EQ(said.code, ExitCode::Usage) << option;
        EXPECT_NE(said.err.find("E24137"), std::string::npos) << said.err;
    }
    EXPECT_EQ(make({"--prefix", "--no-prefix"}).code, ExitCode::Usage);
    EXPECT_FALSE(std::filesystem::exists(made));
}

TEST_F(NewFromFolder, OfTheRealDrawingsHasAllLayoutsWithContent)
{
    std::size_t expected = 0;
    std::filesystem::create_directory(folder.path("plans"));
    for (const auto& [name, facts] : realDrawings("")) {
        folder.put(name, "plans/" + name);
        for (const auto& layout : facts["layouts"])
            expected += layout["name"] != "Model" && layout["entities"] > 0;
    }
    if (expected == 0)
        GTEST_SKIP() << "no drawings in " << drawingsFolder();
    const Json document = make({"--json"}).json();
    EXPECT_EQ(document["exitCode"], 0) << document["warnings"].dump(1);
    EXPECT_EQ(document["sheets"], expected);
}
