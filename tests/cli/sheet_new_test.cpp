#include <filesystem>

#include <dwg/dwg_codec.h>
#include <operations/new_sheet.h>
#include <sm/tv_sm_sheet_set_mgr.h>

#include "../core/drawing_maker.h"
#include "drawing_scene.h"
#include "tool_scene.h"

// kvsheetset sheet new

namespace {

using cli::ExitCode;

/// The sample set, with a template and a folder for its sheets.
class SheetNew : public testing::Test
{
protected:
    void SetUp() override
    {
        dwg::install();
        std::filesystem::create_directory(sample.folder().path() / "sheets");
        DrawingMaker maker;
        maker.paper(u"A1").paper(u"A3");
        maker.saveAs(sample.folder().file("office.dwt"));
        TvSmSheetSetMgr manager;
        TvSmDatabase* set = manager.openDatabase(sample.file(), true, 0);
        ASSERT_TRUE(set && set->lockDb(set));
        auto folder = std::make_unique<TvSmFileReference>();
        folder->initNew(set->getSheetSet(), {});
        folder->setFileName(sample.folder().file("sheets"));
        ASSERT_TRUE(set->getSheetSet()->setNewSheetLocation(folder.release()));
        ASSERT_TRUE(operations::rememberTemplate(*set->getSheetSet(),
                                                 {u"A1", sample.folder().file("office.dwt")}));
        ASSERT_TRUE(set->unlockDb(set, true));
    }
    Said run(std::vector<std::string> rest)
    {
        rest.insert(rest.begin(), {"sheet", "new", sample.native()});
        return runLine(rest);
    }
    std::string inSheets(const char* name) const
    {
        return (sample.folder().path() / "sheets" / name).string();
    }

    SampleFolder sample;
};

TEST_F(SheetNew, MakesTheDrawingAndTheSheetBesideItsNeighbour)
{
    const Said said = run({"--number", "A-103", "--title", "Attic", "--after", "g4", "--json"});
    ASSERT_EQ(said.code, ExitCode::Ok) << said.err;
    EXPECT_EQ(said.json()["title"], "Attic");
    EXPECT_EQ(said.json()["layout"], "A-103 Attic");
    EXPECT_EQ(said.json()["drawing"], inSheets("A-103 Attic.dwg"));
    EXPECT_EQ(said.json()["parent"]["handle"], "g3");
    EXPECT_NE(sample.tree().find("A-101 - Ground floor"), std::string::npos);
    EXPECT_LT(sample.tree().find("A-103 - Attic"), sample.tree().find("A-102 - First floor"));
    const Said check = runLine({"drawing", "check", inSheets("A-103 Attic.dwg"), "--json"});
    EXPECT_EQ(check.code, ExitCode::Ok) << check.err;
    EXPECT_TRUE(check.json()["findings"].empty()) << check.out;
    const auto data =
        runLine({"drawing", "sheetdata", "show", inSheets("A-103 Attic.dwg"), "--json"}).json();
    EXPECT_EQ(data["sheetData"]["layoutName"], "A-103 Attic") << data.dump();
}

TEST_F(SheetNew, TakesTemplateLayoutAndFileNameThatItIsGiven)
{
    const Said said = run({"--title", "Cover sheet", "--template",
                           (sample.folder().path() / "office.dwt").string(), "--layout", "a3",
                           "--file", "cover.dwg", "--json"});
    ASSERT_EQ(said.code, ExitCode::Ok) << said.err;
    EXPECT_EQ(said.json()["template"]["layout"], "a3");
    EXPECT_EQ(said.json()["parent"]["handle"], "g1");
    EXPECT_TRUE(std::filesystem::exists(inSheets("cover.dwg")));
}

TEST_F(SheetNew, ADryRunWritesNothing)
{
    const std::string before = sample.bytes();
    const Said said = run({"--title", "Attic", "-n", "--json"});
    ASSERT_EQ(said.code, ExitCode::Ok) << said.err;
    EXPECT_EQ(said.json()["dryRun"], true);
    EXPECT_EQ(sample.bytes(), before);
    EXPECT_TRUE(std::filesystem::is_empty(sample.folder().path() / "sheets"));
}

TEST_F(SheetNew, NeverReplacesAFile)
{
    sample.folder().write("sheets/Attic.dwg", "somebody's");
    EXPECT_EQ(run({"--title", "Attic"}).code, ExitCode::CannotWrite);
    EXPECT_EQ(sample.folder().read("sheets/Attic.dwg"), "somebody's");
}

TEST_F(SheetNew, RefusesWithANumberWhatMakesNoSenseAndChangesNothing)
{
    struct Case {
        std::vector<std::string> arguments;
        ExitCode code;
        const char* error;
    };
    const Case cases[] = {
        {{"--title", " "}, ExitCode::Usage, "E24021"},
        {{"--title", "a,b"}, ExitCode::Usage, "E24020"},
        {{"--title", "T", "--number", "1:2"}, ExitCode::Usage, "E24020"},
        {{"--title", "T", "--file", "a/b"}, ExitCode::Usage, "E24020"},
        {{"--title", "T", "--file", " "}, ExitCode::Usage, "E24023"},
        {{"--title", "T", "--file", "nul"}, ExitCode::Usage, "E24024"},
        {{"--title", "Ground floor", "--number", "A-101", "--in", "g3"}, ExitCode::Usage, "E24022"},
        {{"--title", std::string(65, 'a')}, ExitCode::Usage, "E22430"},
        {{"--title", "T", "--template", "x.dwt"}, ExitCode::Usage, "E24028"},
        {{"--title", "T", "--template", "x.dwt", "--layout", "A1"}, ExitCode::NoInput, "E24026"},
        {{"--title", "T", "--in", "g4"}, ExitCode::Usage, "E22"},
    };
    const std::string before = sample.bytes();
    for (const Case& each : cases) {
        const Said said = run(each.arguments);
        EXPECT_EQ(said.code, each.code) << each.error << said.err;
        EXPECT_NE(said.err.find(each.error), std::string::npos) << said.err;
    }
    EXPECT_EQ(sample.bytes(), before);
    EXPECT_TRUE(std::filesystem::is_empty(sample.folder().path() / "sheets"));
}

TEST_F(SheetNew, WithoutTemplateOrFolderItSaysWhatIsMissing)
{
    std::filesystem::remove_all(sample.folder().path() / "sheets");
    EXPECT_NE(run({"--title", "T"}).err.find("E24027"), std::string::npos);
    const SampleFolder bare;
    const Said said = runLine({"sheet", "new", bare.native(), "--title", "T"});
    EXPECT_EQ(said.code, ExitCode::NoInput);
    EXPECT_NE(said.err.find("E24029"), std::string::npos) << said.err;
    EXPECT_NE(said.err.find("--folder"), std::string::npos) << said.err;
}

TEST_F(SheetNew, ASetWithoutFolderAndTemplateGetsThemFromTheLine)
{
    const SampleFolder bare;
    const std::string to = bare.folder().path().string();
    const Said said =
        runLine({"sheet", "new", bare.native(), "--title", "Entrance", "--folder", to, "--template",
                 (sample.folder().path() / "office.dwt").string(), "--layout", "A1", "--json"});
    ASSERT_EQ(said.code, ExitCode::Ok) << said.err;
    EXPECT_EQ(said.json()["drawing"], to + "/Entrance.dwg");
    EXPECT_EQ(run({"--title", "Elsewhere", "--folder", to}).code, ExitCode::Ok)
        << "the set's own is passed over";
    EXPECT_TRUE(std::filesystem::exists(to + "/Elsewhere.dwg"));
    EXPECT_NE(run({"--title", "T", "--folder", to + "/gone"}).err.find("E24027"),
              std::string::npos);
}

} // namespace
