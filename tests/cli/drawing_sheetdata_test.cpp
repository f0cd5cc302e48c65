#include "drawing_scene.h"
#include "tool_process.h"

// "drawing sheetdata ...": the whole life of what a drawing keeps of its sheet set, each step a
// process of its own; and drawings that others use.

namespace {

using Json = nlohmann::ordered_json;
using Names = std::vector<std::string>;

Ran toolOnDrawing(std::vector<std::string> line)
{
    line.insert(line.begin(), "drawing");
    return runTool(std::move(line));
}

Json documentOf(std::vector<std::string> line)
{
    line.push_back("--json");
    return Json::parse(toolOnDrawing(std::move(line)).out);
}

/// Of the newest version a real one, where it is there.
std::vector<std::string> oneOfEachVersion()
{
    const std::string real = allRealDrawings().empty() ? "line-ac" : "layouts-ac";
    return {"line-ac1015.dwg", "line-ac1018.dwg", "line-ac1021.dwg",
            "line-ac1024.dwg", "line-ac1027.dwg", real + "1032.dwg"};
}

TEST(DrawingSheetData, LivesOnDiskInEveryVersion)
{
    for (const std::string& name : oneOfEachVersion()) {
        SCOPED_TRACE(name);
        const DrawingFolder folder;
        const std::string file = folder.put(name);
        folder.folder().write("house.dst", "");
        const std::string set = folder.path("house.dst");
        const Json before = documentOf({"info", file});
        const Json findings = documentOf({"check", file})["findings"];
        const Names write = {"sheetdata", "write", file, "--set", set, "--layout", "layout1"};
        EXPECT_TRUE(documentOf({"sheetdata", "show", file})["sheetData"].is_null());

        const Ran written = toolOnDrawing(write);
        ASSERT_EQ(written.code, 0) << written.err;
        EXPECT_EQ(written.err, "");
        const Json data = documentOf({"sheetdata", "show", file})["sheetData"];
        EXPECT_EQ(data["layoutHandle"], before["layouts"][1]["handle"]);
        EXPECT_EQ(data["layoutName"], "Layout1");
        EXPECT_EQ(data["drawing"], file);
        EXPECT_EQ(data["sheetSet"], set);
        EXPECT_EQ(data["updateCount"], 1);
        EXPECT_EQ(documentOf({"info", file})["sheetData"], data);
        EXPECT_EQ(documentOf({"check", file})["findings"], findings);

        // The same once more is no change: neither bytes nor time.
        const FileState state = stateOf(file);
        const Ran again = toolOnDrawing(write);
        EXPECT_EQ(again.code, 0);
        EXPECT_EQ(again.err, "Nothing to change: all is so already.\n");
        EXPECT_EQ(stateOf(file), state);

        // Another set is a patch.
        folder.folder().write("other.dst", "");
        const Json patched = documentOf(
            {"sheetdata", "write", file, "--set", folder.path("other.dst"), "--layout", "Layout1"});
        EXPECT_EQ(patched["changed"], true);
        const Json after = documentOf({"sheetdata", "show", file})["sheetData"];
        EXPECT_EQ(after["sheetSet"], folder.path("other.dst"));
        EXPECT_EQ(after["updateCount"], 2);
        EXPECT_EQ(after, patched["sheetData"]);

        EXPECT_EQ(documentOf({"sheetdata", "remove", file})["removed"], after);
        EXPECT_TRUE(documentOf({"sheetdata", "show", file})["sheetData"].is_null());
        EXPECT_EQ(documentOf({"info", file})["classes"], before["classes"]);
        EXPECT_EQ(documentOf({"check", file})["findings"], findings);
        const FileState removed = stateOf(file);
        EXPECT_EQ(toolOnDrawing({"sheetdata", "remove", file}).code, 0);
        EXPECT_EQ(stateOf(file), removed);
    }
}

TEST(DrawingSheetData, TakesTheLayoutByItsHandle)
{
    const DrawingFolder folder;
    const std::string file = folder.put("line-ac1032.dwg");
    folder.folder().write("house.dst", "");
    const Said said =
        drawing({"sheetdata", "write", file, "--set", folder.path("house.dst"), "--handle", "1e"});
    EXPECT_EQ(said.code, cli::ExitCode::Ok) << said.err;
    const std::string shown = drawing({"sheetdata", "show", file}).out;
    EXPECT_EQ(folder.generalised(shown).rfind("Sheet set  DIR/house.dst\n"
                                              "Layout     1E  Layout1\n"
                                              "Changes    1, the last one at ",
                                              0),
              0u)
        << shown;
}

TEST(DrawingSheetData, DocumentsHaveExactlyTheirFields)
{
    const DrawingFolder folder;
    const std::string file = folder.put("line-ac1032.dwg");
    const Names data = {"layoutHandle", "layoutName",  "drawing",   "sheetSet",
                        "version",      "updateCount", "updateTime"};
    const Json written = drawingJson(
        {"sheetdata", "write", file, "--set", folder.path("none.dst"), "--layout", "Layout1"});
    EXPECT_EQ(written["schema"], "kvsheetset.drawing-sheetdata-write/1");
    EXPECT_EQ(fieldsOf(written), (Names{"schema", "ok", "exitCode", "file", "sheetData", "changed",
                                        "dryRun", "warnings"}));
    EXPECT_EQ(fieldsOf(written["sheetData"]), data);
    // A set that is not there is worth a warning.
    EXPECT_EQ(written["warnings"][0]["code"], "E22936");
    EXPECT_EQ(fieldsOf(drawingJson({"sheetdata", "show", file})),
              (Names{"schema", "ok", "exitCode", "file", "sheetData", "warnings"}));
    EXPECT_EQ(
        fieldsOf(drawingJson({"sheetdata", "remove", file})),
        (Names{"schema", "ok", "exitCode", "file", "removed", "changed", "dryRun", "warnings"}));
}

TEST(DrawingSheetData, ADryRunLeavesBytesAndTimes)
{
    const DrawingFolder folder;
    const std::string file = folder.put("line-ac1018.dwg");
    folder.folder().write("house.dst", "");
    Names write = {"sheetdata", "write",  file, "--set", folder.path("house.dst"),
                   "--layout",  "Layout1"};
    const FileState before = stateOf(file);
    Names dry = write;
    dry.push_back("-n");
    EXPECT_EQ(drawingJson(dry)["changed"], true);
    EXPECT_EQ(stateOf(file), before);
    ASSERT_EQ(drawing(write).code, cli::ExitCode::Ok);
    const FileState written = stateOf(file);
    EXPECT_EQ(drawing({"sheetdata", "remove", file, "--dry-run"}).code, cli::ExitCode::Ok);
    EXPECT_EQ(stateOf(file), written);
}

TEST(DrawingSheetData, RefusesWrongUsageWithASentence)
{
    const DrawingFolder folder;
    const std::string file = folder.put("line-ac1032.dwg");
    const FileState before = stateOf(file);
    const std::string set = folder.path("house.dst");
    const struct {
        Names line;
        cli::ExitCode code;
        const char* part;
    } rows[] = {
        {{"write", file, "--set", set}, cli::ExitCode::Usage, "--layout NAME or --handle"},
        {{"write", file, "--layout", "Layout1"}, cli::ExitCode::Usage, "--set"},
        {{"write", file, "--set", "x.dwg", "--layout", "a"}, cli::ExitCode::Usage, "\".dst\""},
        {{"write", file, "--set", set, "--layout", "Layout1", "--handle", "1E"},
         cli::ExitCode::Usage,
         "--handle"},
        {{"write", file, "--set", set, "--handle", "xyz"}, cli::ExitCode::Usage, "\"xyz\""},
        {{"write", file, "--set", set, "--handle", "1F"}, cli::ExitCode::NoInput, "no layout"},
        {{"write", file, "--set", set, "--layout", "Attic"}, cli::ExitCode::NoInput, "Attic"},
        {{"show"}, cli::ExitCode::Usage, "FILE"},
        {{"remove"}, cli::ExitCode::Usage, "FILE"},
        {{"show", folder.path("none.dwg")}, cli::ExitCode::NoInput, "not there"},
        {{"remove", folder.path("none.dwg")}, cli::ExitCode::NoInput, "not there"},
    };
    for (const auto& row : rows) {
        Names line = row.line;
        line.insert(line.begin(), "sheetdata");
        const Said said = drawing(line);
        EXPECT_EQ(said.code, row.code) << said.err;
        EXPECT_EQ(said.out, "");
        EXPECT_NE(said.err.find(row.part), std::string::npos) << row.part << "\n" << said.err;
    }
    EXPECT_EQ(stateOf(file), before);
}

TEST(DrawingInUse, ElsewhereIsNotChanged)
{
    const DrawingFolder folder;
    const std::string file = folder.put("line-ac1032.dwg");
    LockHolder holder(base::pathFromNative(file));
    ASSERT_TRUE(holder.isHolding());
    const FileState before = stateOf(file);
    const Ran ran = toolOnDrawing({"layout", "rename", file, "Layout1", "Cellar"});
    EXPECT_EQ(ran.code, 4) << ran.err;
    EXPECT_EQ(ran.out, "");
    EXPECT_NE(ran.err.find("--lock-wait"), std::string::npos) << ran.err;
    EXPECT_EQ(stateOf(file), before);
    // Looking is free.
    EXPECT_EQ(toolOnDrawing({"info", file}).code, 0);
    EXPECT_EQ(toolOnDrawing({"copy", file, folder.path("copy.dwg")}).code, 0);
    EXPECT_EQ(toolOnDrawing({"copy", folder.path("copy.dwg"), file, "--overwrite"}).code, 4);

    // Whoever waits comes through when the other one is done.
    Process waiting(
        toolLine({"drawing", "layout", "rename", file, "Layout1", "Cellar", "--lock-wait", "120"}));
    ASSERT_TRUE(waiting.waitForError("Waiting: "));
    holder.release();
    EXPECT_EQ(waiting.wait().code, 0);
    EXPECT_EQ(documentOf({"layout", "list", file})["layouts"][1]["name"], "Cellar");
}

} // namespace
