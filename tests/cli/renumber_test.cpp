// Renaming and renumbering from the command line.

#include <operations/rename_apply.h>
#include <sheet_set_builder.h>
#include <sm/environment.h>

#include "../core/drawing_maker.h"
#include "tool_scene.h"
#include <dwg/dwg_codec.h>

namespace {

/// Plan and Stair in one drawing, Section in another, a subset with Cover, which was never drawn.
class RenumberToolTest : public testing::Test
{
protected:
    void SetUp() override
    {
        dwg::install();
        DrawingMaker maker;
        maker.paper(u"A1").paper(u"A2").saveAs(m_folder.file("plan.dwg"));
        DrawingMaker other;
        other.paper(u"B1").saveAs(m_folder.file("section.dwg"));
        TvSmSheetSetMgr manager;
        TvSmDatabase* db = manager.createDatabase(file(), u"", true);
        TvSmSheet* plan = addSheet(db->getSheetSet(), u"1", u"Plan");
        TvSmSheet* stair = addSheet(db->getSheetSet(), u"2", u"Stair");
        TvSmSheet* section = addSheet(db->getSheetSet(), u"3", u"Section");
        setLayout(plan, m_folder.file("plan.dwg"), maker.handleOf(u"A1"), u"A1");
        setLayout(stair, m_folder.file("plan.dwg"), maker.handleOf(u"A2"), u"A2");
        setLayout(section, m_folder.file("section.dwg"), other.handleOf(u"B1"), u"B1");
        TvSmSubset* covers = addSubset(db->getSheetSet(), u"Covers");
        addSheet(covers, u"9", u"Cover");
        ASSERT_TRUE(db->save(0));
        m_plan = base::nativePath(handleOf(plan));
        m_subset = base::nativePath(handleOf(covers));
    }
    TvString file() const { return m_folder.file("house.dst"); }
    std::string native() const { return base::nativePath(file()); }
    Said run(std::vector<std::string> line) const
    {
        line.insert(line.begin() + (line[0] == "sheet" ? 2 : 1), native());
        return runLine(line);
    }
    bool isThere(const char* name) const { return std::filesystem::exists(m_folder.path() / name); }
    std::string set() const { return m_folder.read("house.dst"); }

    TempFolder m_folder;
    std::string m_plan, m_subset;
};

TEST_F(RenumberToolTest, ADryRunShowsEveryEffectAndChangesNothing)
{
    const std::string before = set();
    const Said said =
        run({"renumber", "--first", "A-10", "--rename-layouts", "--rename-files", "--dry-run"});
    EXPECT_EQ(said.code, cli::ExitCode::Ok) << said.err;
    for (const char* effect : {"1 > A-10", "A2 > A-11 Stair", "plan.dwg > A-10 Plan.dwg",
                               "section.dwg > A-12 Section.dwg", "9 > A-13"})
        EXPECT_NE(said.out.find(effect), std::string::npos) << effect << "\n" << said.out;
    EXPECT_EQ(set(), before);
    EXPECT_TRUE(isThere("plan.dwg"));
    EXPECT_FALSE(isThere(".house.dst.rename"));
}

TEST_F(RenumberToolTest, RenumbersAndTakesItBack)
{
    EXPECT_EQ(run({"renumber", "--first", "A-10", "--rename-layouts", "--rename-files"}).code,
              cli::ExitCode::Ok);
    EXPECT_TRUE(isThere("A-10 Plan.dwg") && isThere("A-12 Section.dwg"));
    EXPECT_FALSE(isThere("plan.dwg") || isThere(".house.dst.rename"));
    EXPECT_NE(set().find("A-12"), std::string::npos);
    EXPECT_EQ(run({"renumber", "--undo"}).code, cli::ExitCode::Ok);
    EXPECT_TRUE(isThere("plan.dwg") && isThere("section.dwg"));
    EXPECT_FALSE(isThere("A-10 Plan.dwg"));
    EXPECT_EQ(set().find("A-1"), std::string::npos);
}

TEST_F(RenumberToolTest, OneSubsetOnlyAndWithASteps)
{
    const Said said =
        run({"renumber", "--in", m_subset, "--first", "001", "--step", "5", "--json"});
    ASSERT_EQ(said.code, cli::ExitCode::Ok);
    ASSERT_EQ(said.json()["sheets"].size(), 1u);
    EXPECT_EQ(said.json()["sheets"][0]["number"]["to"], "001");
    EXPECT_EQ(said.json()["schema"], "kvsheetset.renumber/1");
    EXPECT_EQ(said.json()["clashes"], 0);
}

TEST_F(RenumberToolTest, WhatStandsInTheWayIsShownAndNothingIsRenamed)
{
    m_folder.write("1 Plan.dwg", "somebody's");
    const std::string before = set();
    const Said said = run({"renumber", "--first", "1", "--rename-files", "--json"});
    EXPECT_EQ(said.code, cli::ExitCode::CheckFailed);
    EXPECT_EQ(said.json()["drawings"][0]["clash"], "fileExists");
    EXPECT_EQ(said.json()["clashes"], 1);
    EXPECT_EQ(said.json()["error"]["code"], "E24304");
    EXPECT_EQ(set(), before);
    EXPECT_TRUE(isThere("plan.dwg"));
}

TEST_F(RenumberToolTest, ASheetIsRenamedWithItsLayoutAndDrawing)
{
    EXPECT_EQ(run({"sheet", "rename", m_plan, "--number", "", "--title", "Ground", "--layout",
                   "Ground", "--file", "ground"})
                  .code,
              cli::ExitCode::Ok);
    EXPECT_TRUE(isThere("ground.dwg"));
    TvDbDatabase drawing(false, true);
    ASSERT_EQ(drawing.readDwgFile(m_folder.file("ground.dwg")), TvStatus::Ok);
    EXPECT_FALSE(DrawingMaker(drawing).layout(u"Ground").isNull());
    EXPECT_EQ(run({"sheet", "rename", m_plan, "--layout", "A2"}).code, cli::ExitCode::CheckFailed);
}

TEST_F(RenumberToolTest, AnEmptyNameIsShownAsOne)
{
    const Said said = run({"sheet", "rename", m_plan, "--number", "", "-n"});
    EXPECT_NE(said.out.find("1 > \"\""), std::string::npos) << said.out;
}

TEST_F(RenumberToolTest, NoDrawingIsHiddenByItsNewName)
{
    for (const char* name : {"", ".dwg"}) {
        EXPECT_EQ(run({"sheet", "rename", m_plan, "--file", name}).code,
                  cli::ExitCode::CheckFailed);
        EXPECT_TRUE(isThere("plan.dwg"));
    }
}

TEST_F(RenumberToolTest, WrongUsageIsRefusedBeforeTheSetIsOpened)
{
    for (const std::vector<std::string>& line :
         std::vector<std::vector<std::string>>{{"renumber"},
                                               {"renumber", "--first", "1", "--undo"},
                                               {"renumber", "--first", "A"},
                                               {"renumber", "--first", "1", "--step", "0"},
                                               {"sheet", "rename", m_plan},
                                               {"sheet", "rename", m_subset, "--title", "x"}})
        EXPECT_EQ(run(line).code, cli::ExitCode::Usage) << line.back();
    EXPECT_EQ(run({"renumber", "--undo"}).code, cli::ExitCode::NoInput);
    EXPECT_EQ(run({"renumber", "--recover"}).code, cli::ExitCode::Ok);
}

TEST_F(RenumberToolTest, AnyVerbLooksAfterARenameThatWasBrokenOff)
{
    for (const bool isReading : {true, false}) {
        operations::RenameJournal journal;
        journal.token = base::newToken();
        journal.stage = operations::RenameStage::Leaving;
        journal.drawings.push_back(
            {m_folder.file("plan.dwg"), m_folder.file("new.dwg"), false, {}});
        ASSERT_TRUE(
            operations::writeJournal(sm::files(), operations::renameJournalPath(file()), journal));
        std::filesystem::rename(m_folder.path() / "plan.dwg", journal.stagedPath(0));
        const Said said = isReading ? run({"tree"}) : run({"renumber", "--recover"});
        EXPECT_EQ(said.code, cli::ExitCode::Ok);
        EXPECT_NE(said.err.find("24311"), std::string::npos) << said.err;
        EXPECT_TRUE(isThere("plan.dwg"));
        EXPECT_FALSE(isThere(".house.dst.rename"));
    }
}

} // namespace
