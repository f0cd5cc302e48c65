#include <chrono>
#include <map>

#include <db/convert.h>

#include "drawing_scene.h"

// What "drawing info" tells, held against what is known of each real drawing.

namespace {

using cli::ExitCode;
using Json = nlohmann::ordered_json;
using Facts = nlohmann::json;

/// Expected texts are as stored: characters that an 8-bit text lacks are written as escapes.
std::string textOf(const Facts& stored)
{
    const TvString text(stored.get<std::string>());
    return TvString(db::withoutEscapes(text.view())).utf8();
}

/// [julian day, milliseconds] as ISO 8601.
std::string timeOf(const Facts& time)
{
    constexpr int kJulianEpoch = 2440588; // 1970-01-01
    const std::chrono::sys_days day{std::chrono::days(time[0].get<int>() - kJulianEpoch)};
    const std::chrono::year_month_day date(day);
    const int seconds = time[1].get<int>() / 1000;
    char text[32];
    std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ", int(date.year()),
                  unsigned(date.month()), unsigned(date.day()), seconds / 3600, seconds / 60 % 60,
                  seconds % 60);
    return text;
}

void expectTime(const Json& actual, const Facts& expected)
{
    // A time that nobody set is day 0.
    EXPECT_EQ(actual, expected[0] == 0 ? Json() : Json(timeOf(expected)));
}

void expectHead(const Json& info, const Facts& expected)
{
    EXPECT_EQ(info["format"], "dwg");
    EXPECT_EQ(info["version"], expected["version"]);
    EXPECT_EQ(info["bytes"], expected["file_size"]);
    EXPECT_EQ(info["objects"], expected["objects"]);
    EXPECT_EQ(info["highestHandle"], expected["highest_handle"]);
    EXPECT_EQ(info["nextHandle"], expected["handseed"]);
    EXPECT_EQ(info["raw"], expected["objects_without_field_table"]);
    EXPECT_EQ(info["damaged"], 0);
    expectTime(info["created"], expected["created"]);
    expectTime(info["changed"], expected["updated"]);
    for (const auto& [name, value] : info["variables"].items())
        if (expected.contains(name)) {
            EXPECT_EQ(value, expected[name]) << name;
        }
}

void expectClasses(const Json& info, const Facts& expected)
{
    using Counts = std::map<std::string, int>;
    EXPECT_EQ(info["classes"].get<Counts>(), expected["counts"].get<Counts>());
    int raw = 0;
    for (const auto& [name, count] : info["rawClasses"].items()) {
        EXPECT_LE(count.get<int>(), expected["counts"][name].get<int>()) << name;
        raw += count.get<int>();
    }
    EXPECT_EQ(raw, info["raw"]);
}

void expectLayouts(const Json& info, const Facts& expected)
{
    ASSERT_EQ(info["layouts"].size(), expected["layouts"].size());
    for (std::size_t at = 0; at < info["layouts"].size(); ++at) {
        const Json& layout = info["layouts"][at];
        const Facts& facts = expected["layouts"][at];
        SCOPED_TRACE(facts["name"]);
        EXPECT_EQ(layout["name"], textOf(facts["name"]));
        EXPECT_EQ(layout["handle"], facts["handle"]);
        EXPECT_EQ(layout["tabOrder"], facts["tab_order"]);
        EXPECT_EQ(layout["model"], facts["name"] == "Model");
        EXPECT_EQ(layout["block"], facts["block_record"]);
        EXPECT_EQ(layout["blockName"].get<std::string>().substr(0, 7),
                  facts["block_name"].get<std::string>().substr(0, 7));
        EXPECT_EQ(layout["entities"], facts["entities"]);
        EXPECT_EQ(layout["paper"]["name"], textOf(facts["paper_size"]));
        EXPECT_NEAR(layout["paper"]["widthMm"].get<double>(), facts["paper_mm"][0], 1e-9);
        EXPECT_NEAR(layout["paper"]["heightMm"].get<double>(), facts["paper_mm"][1], 1e-9);
        EXPECT_EQ(layout["limits"].get<std::vector<double>>(),
                  facts["limits"].get<std::vector<double>>());
        EXPECT_EQ(layout["printer"], textOf(facts["plotter"]));
        EXPECT_EQ(layout["styleSheet"], textOf(facts["style_sheet"]));
        EXPECT_EQ(layout["pageSetup"], textOf(facts["page_setup"]));
        std::vector<std::string> viewports;
        for (const Json& viewport : layout["viewports"])
            viewports.push_back(viewport["handle"]);
        EXPECT_EQ(viewports, facts["viewports"].get<std::vector<std::string>>());
    }
}

void expectViewports(const Json& info, const Facts& expected)
{
    std::map<std::string, Json> viewports;
    for (const Json& layout : info["layouts"])
        for (const Json& viewport : layout["viewports"])
            viewports[viewport["handle"]] = viewport;
    for (const Facts& facts : expected["viewports"]) {
        SCOPED_TRACE(facts["handle"]);
        const Json& viewport = viewports[facts["handle"]];
        if (viewport.is_null()) // of a block that no layout has
            continue;
        EXPECT_EQ(viewport["center"][0], facts["center"][0]);
        EXPECT_EQ(viewport["center"][1], facts["center"][1]);
        EXPECT_EQ(viewport["width"], facts["width"]);
        EXPECT_EQ(viewport["height"], facts["height"]);
        EXPECT_EQ(viewport["viewHeight"], facts["view_height"]);
        EXPECT_EQ(viewport["viewCenter"][0], facts["view_center"][0]);
        EXPECT_EQ(viewport["viewCenter"][1], facts["view_center"][1]);
        if (facts.contains("status")) {
            EXPECT_EQ(viewport["status"], facts["status"]);
        }
    }
}

void expectViews(const Json& info, const Facts& expected)
{
    ASSERT_EQ(info["views"].size(), expected["views"].size());
    for (std::size_t at = 0; at < info["views"].size(); ++at) {
        const Facts& facts = expected["views"][at];
        EXPECT_EQ(info["views"][at]["name"], textOf(facts["name"]));
        EXPECT_EQ(info["views"][at]["handle"], facts["handle"]);
        EXPECT_EQ(info["views"][at]["width"], facts["width"]);
        EXPECT_EQ(info["views"][at]["height"], facts["height"]);
    }
}

void expectBlocks(const Json& info, const Facts& expected)
{
    std::map<std::string, Json> blocks;
    for (const Json& block : info["blocks"])
        blocks[block["handle"]] = block;
    EXPECT_EQ(blocks.size(), expected["blocks"].size());
    std::size_t xrefs = 0;
    for (const Facts& facts : expected["blocks"]) {
        SCOPED_TRACE(facts["handle"]);
        const Json& block = blocks[facts["handle"]];
        ASSERT_FALSE(block.is_null());
        EXPECT_EQ(block["entities"], facts["entities"]);
        EXPECT_EQ(block["description"], textOf(facts["description"]));
        EXPECT_EQ(block["layout"].is_null() ? "0" : block["layout"].get<std::string>(),
                  facts["layout"].is_null() ? "0" : facts["layout"].get<std::string>());
        EXPECT_EQ(block["anonymous"], facts["anonymous"] == 1);
        EXPECT_EQ(block["attributes"], facts["has_attdefs"] == 1);
        EXPECT_EQ(block["xref"], facts["is_xref"] == 1);
        EXPECT_EQ(block["path"].is_null() ? "" : block["path"].get<std::string>(),
                  textOf(facts["xref_path"]));
        // Stored without their numbers.
        if (!textOf(facts["name"]).starts_with('*')) {
            EXPECT_EQ(block["name"], textOf(facts["name"]));
        }
        xrefs += facts["is_xref"] == 1;
    }
    EXPECT_EQ(info["xrefs"].size(), xrefs);
}

void expectTables(const Json& info, const Facts& expected)
{
    const std::pair<const char*, const char*> tables[] = {{"layers", "layers"},
                                                          {"textStyles", "text_styles"},
                                                          {"linetypes", "linetypes"},
                                                          {"dimensionStyles", "dimension_styles"},
                                                          {"applications", "application_ids"}};
    using Record = std::pair<std::string, std::string>;
    for (const auto& [ours, theirs] : tables) {
        std::multiset<Record> actual, wanted;
        for (const Json& record : info[ours])
            actual.emplace(record["handle"], record["name"]);
        for (const Facts& record : expected[theirs])
            wanted.emplace(record[1], textOf(record[0]));
        EXPECT_EQ(actual, wanted) << ours;
    }
}

void expectSummary(const Json& info, const Facts& expected)
{
    const Facts& facts = expected["summary"];
    if (facts.is_null())
        return;
    const std::pair<const char*, const char*> texts[] = {{"title", "title"},
                                                         {"subject", "subject"},
                                                         {"author", "author"},
                                                         {"keywords", "keywords"},
                                                         {"comments", "comments"},
                                                         {"lastSavedBy", "last saved by"},
                                                         {"revisionNumber", "revision number"},
                                                         {"hyperlinkBase", "hyperlink base"}};
    const Json& summary = info["summary"];
    for (const auto& [ours, theirs] : texts)
        EXPECT_EQ(summary[ours], textOf(facts[theirs])) << ours;
    expectTime(summary["created"], facts["created"]);
    expectTime(summary["modified"], facts["modified"]);
    const Facts& editing = facts["total editing time"];
    EXPECT_NEAR(summary["editingSeconds"].get<double>(),
                editing[0].get<double>() * 86400 + editing[1].get<double>() / 1000, 1e-6);
    ASSERT_EQ(summary["custom"].size(), facts["custom"].size());
    for (std::size_t at = 0; at < facts["custom"].size(); ++at) {
        EXPECT_EQ(summary["custom"][at]["name"], textOf(facts["custom"][at][0]));
        EXPECT_EQ(summary["custom"][at]["value"], textOf(facts["custom"][at][1]));
    }
}

TEST(DrawingInfo, TellsOfEveryRealDrawingWhatIsInIt)
{
    const auto drawings = realDrawings("");
    if (drawings.empty())
        GTEST_SKIP() << "no real drawings at " << drawingsFolder();
    const DrawingFolder folder;
    for (const auto& [name, expected] : drawings) {
        SCOPED_TRACE(name);
        const Json info = drawingJson({"info", folder.put(name)});
        ASSERT_EQ(info["ok"], true) << info;
        expectHead(info, expected);
        expectClasses(info, expected);
        expectLayouts(info, expected);
        expectViewports(info, expected);
        expectViews(info, expected);
        expectBlocks(info, expected);
        expectTables(info, expected);
        expectSummary(info, expected);
        EXPECT_TRUE(info["sheetData"].is_null());
    }
}

TEST(DrawingInfo, TellsOfOurOwnDrawingsInEveryVersion)
{
    const DrawingFolder folder;
    for (const std::string& name : ownDrawings()) {
        SCOPED_TRACE(name);
        const bool hasLines = name.starts_with("line");
        const Json info = drawingJson({"info", folder.put(name)});
        EXPECT_EQ(info["version"], "AC" + name.substr(name.find("ac") + 2, 4));
        ASSERT_EQ(info["layouts"].size(), 2u);
        EXPECT_EQ(info["layouts"][0]["name"], "Model");
        EXPECT_EQ(info["layouts"][0]["handle"], "22");
        EXPECT_EQ(info["layouts"][0]["empty"], !hasLines);
        EXPECT_EQ(info["layouts"][1]["name"], "Layout1");
        EXPECT_EQ(info["layouts"][1]["handle"], "1E");
        EXPECT_EQ(info["layouts"][1]["empty"], true);
        EXPECT_EQ(info["classes"].contains("LINE"), hasLines);
        EXPECT_EQ(info["raw"], 0);
    }
}

TEST(DrawingInfo, HasExactlyTheDocumentedFields)
{
    using Names = std::vector<std::string>;
    const DrawingFolder folder;
    const Json info = drawingJson({"info", folder.put("line-ac1032.dwg")});
    EXPECT_EQ(info["schema"], "kvsheetset.drawing-info/1");
    EXPECT_EQ(fieldsOf(info),
              (Names{"schema",       "ok",        "exitCode",   "file",          "bytes",
                     "format",       "version",   "objects",    "highestHandle", "nextHandle",
                     "raw",          "damaged",   "created",    "changed",       "editingSeconds",
                     "preview",      "variables", "layouts",    "views",         "blocks",
                     "xrefs",        "layers",    "textStyles", "linetypes",     "dimensionStyles",
                     "applications", "summary",   "sheetData",  "classes",       "rawClasses",
                     "warnings"}));
    EXPECT_EQ(
        fieldsOf(info["layouts"][0]),
        (Names{"handle", "name", "tabOrder", "model", "block", "blockName", "entities", "empty",
               "viewports", "paper", "limits", "printer", "pageSetup", "styleSheet", "thumbnail"}));
    EXPECT_EQ(fieldsOf(info["layouts"][0]["paper"]),
              (Names{"name", "widthMm", "heightMm", "units"}));
    EXPECT_EQ(fieldsOf(info["blocks"][0]),
              (Names{"handle", "name", "description", "entities", "references", "layout",
                     "anonymous", "attributes", "xref", "overlay", "path", "thumbnail"}));
    EXPECT_EQ(fieldsOf(info["summary"]),
              (Names{"title", "subject", "author", "keywords", "comments", "lastSavedBy",
                     "revisionNumber", "hyperlinkBase", "editingSeconds", "created", "modified",
                     "custom"}));
}

TEST(DrawingInfo, ShowsADrawingToAPerson)
{
    const DrawingFolder folder;
    const Said said = drawing({"info", folder.put("line-ac1015.dwg")});
    EXPECT_EQ(said.err, "");
    EXPECT_EQ(folder.generalised(said.out), "File     DIR/line-ac1015.dwg\n"
                                            "Size     3446 bytes\n"
                                            "Format   AC1015 (2000), DWG\n"
                                            "Created  2023-02-24 00:00:00 UTC\n"
                                            "Changed  2023-02-24 00:00:00 UTC\n"
                                            "Objects  36, the highest handle is 2F\n"
                                            "Picture  none\n"
                                            "\n"
                                            "Layouts:\n"
                                            "  22  Model    objects: 2  no paper\n"
                                            "  1E  Layout1  empty       no paper\n"
                                            "\n"
                                            "Drawn objects:\n"
                                            "  2  BLOCK\n"
                                            "  2  ENDBLK\n"
                                            "  2  LINE\n"
                                            "\n"
                                            "Other objects:\n"
                                            "  1  ACDBDICTIONARYWDFLT\n"
                                            "  1  ACDBPLACEHOLDER\n"
                                            "  1  APPID\n"
                                            "  1  APPID_CONTROL\n"
                                            "  1  BLOCK_CONTROL\n"
                                            "  2  BLOCK_HEADER\n"
                                            "  5  DICTIONARY\n"
                                            "  1  DIMSTYLE\n"
                                            "  1  DIMSTYLE_CONTROL\n"
                                            "  1  LAYER\n"
                                            "  1  LAYER_CONTROL\n"
                                            "  2  LAYOUT\n"
                                            "  3  LTYPE\n"
                                            "  1  LTYPE_CONTROL\n"
                                            "  1  MLINESTYLE\n"
                                            "  1  STYLE\n"
                                            "  1  STYLE_CONTROL\n"
                                            "  1  UCS_CONTROL\n"
                                            "  1  VIEW_CONTROL\n"
                                            "  1  VPENT_HDR_CONTROL\n"
                                            "  1  VPORT\n"
                                            "  1  VPORT_CONTROL\n");
}

TEST(DrawingInfo, ShowsPaperInItsUnitsAndCommentsByLines)
{
    const DrawingFolder folder;
    const std::string file = folder.put("layouts-ac1032.dwg");
    if (file.empty())
        GTEST_SKIP() << "no real drawings at " << drawingsFolder();
    const std::string out = drawing({"info", file}).out;
    for (const char* part :
         {"\nComments  A longer comment line for tests:\n          second line of the comment\n",
          "\n  59   Layout1       objects: 13  8.5 x 11 in         Letter_(8.50_x_11.00_Inches)\n",
          "\n  5E   Layout2       objects: 2   297 x 210 mm        ISO_A4_(297.00_x_210.00_MM)\n",
          "\nProperties:\n  Project number  1234\n"})
        EXPECT_NE(out.find(part), std::string::npos) << part << "\n" << out;
}

TEST(DrawingInfo, RefusesWhatItCannotRead)
{
    const DrawingFolder folder;
    const std::string file = folder.put("line-ac1032.dwg");
    const Said none = drawing({"info", folder.path("none.dwg")});
    EXPECT_EQ(none.code, ExitCode::NoInput);
    EXPECT_EQ(none.out, "");
    EXPECT_NE(none.err.find("is not there"), std::string::npos) << none.err;

    folder.folder().write("half.dwg", folder.bytes("line-ac1032.dwg").substr(0, 200));
    folder.folder().write("text.dwg", "no drawing at all");
    folder.folder().write("nothing.dwg", "");
    folder.folder().write("text.dxf", "once upon a time\n");
    for (const char* name : {"half.dwg", "text.dwg", "nothing.dwg", "text.dxf"}) {
        const Said said = drawing({"info", folder.path(name)});
        EXPECT_EQ(said.code, ExitCode::Damaged) << name << said.err;
        EXPECT_EQ(said.out, "") << name;
        EXPECT_NE(folder.generalised(said.err).find(std::string("DIR/") + name), std::string::npos)
            << said.err;
        const Json json = drawingJson({"info", folder.path(name)});
        EXPECT_EQ(json["ok"], false);
        EXPECT_EQ(json["exitCode"], 7);
        EXPECT_EQ(fieldsOf(json["error"]), (std::vector<std::string>{"code", "message", "advice"}));
    }
    EXPECT_EQ(drawing({"info", folder.folder().path().string()}).code, ExitCode::Damaged);
    EXPECT_EQ(drawing({"info"}).code, ExitCode::Usage);
    EXPECT_EQ(drawing({"info", file, file}).code, ExitCode::Usage);
}

} // namespace
