#include <sys/stat.h>
#include <unistd.h>

#include <cli/drawing_session.h>
#include <cli/refusal.h>

#include "drawing_scene.h"

// "drawing copy" and "drawing new": nothing is lost on the way, and a refusal leaves nothing
// behind.

namespace {

using cli::ExitCode;
using Json = nlohmann::ordered_json;

const std::vector<std::string> kVersions = {"AC1015", "AC1018", "AC1021",
                                            "AC1024", "AC1027", "AC1032"};

std::vector<std::string> linesOfEachVersion()
{
    std::vector<std::string> names;
    for (const std::string& name : ownDrawings())
        if (name.starts_with("line"))
            names.push_back(name);
    return names;
}

/// What a copy in the same form shares with its origin; its place and its size may differ.
Json contentOf(const std::string& file)
{
    Json info = drawingJson({"info", file});
    EXPECT_EQ(info["ok"], true) << info;
    for (const char* field : {"file", "bytes"})
        info.erase(field);
    return info;
}

Json findingsOf(const std::string& file)
{
    return drawingJson({"check", file})["findings"];
}

/// Bit for bit, as they stand in the files.
void expectSameObjects(const std::string& a, const std::string& b)
{
    const auto left = dwg::RawDrawing::open(readFile(a));
    const auto right = dwg::RawDrawing::open(readFile(b));
    ASSERT_TRUE(left && right);
    ASSERT_EQ(left->objects().size(), right->objects().size());
    for (const dwg::ObjectLocation& location : left->objects()) {
        const auto one = left->objectBytes(location.handle);
        const auto other = right->objectBytes(location.handle);
        ASSERT_TRUE(one && other) << std::hex << location.handle;
        EXPECT_TRUE(std::equal(one->begin(), one->end(), other->begin(), other->end()))
            << std::hex << location.handle;
    }
}

TEST(DrawingCopy, KeepsEveryObjectBitForBit)
{
    for (const std::string& name : allDrawings()) {
        SCOPED_TRACE(name);
        const DrawingFolder folder;
        const std::string from = folder.put(name);
        const FileState before = stateOf(from);
        const std::string to = folder.path("copy.dwg");
        ASSERT_EQ(drawing({"copy", from, to}).code, ExitCode::Ok);
        expectSameObjects(from, to);
        EXPECT_EQ(contentOf(to), contentOf(from));
        EXPECT_EQ(findingsOf(to), findingsOf(from));
        EXPECT_EQ(stateOf(from), before);
        EXPECT_EQ(folder.names().size(), 2u);
    }
}

/// Counts by class that no version changes.
std::map<std::string, int> drawnIn(const Json& info)
{
    std::map<std::string, int> counts;
    for (const char* name : {"LINE", "CIRCLE", "ARC", "TEXT", "MTEXT", "INSERT", "LAYER", "LAYOUT",
                             "VIEWPORT", "HATCH", "LWPOLYLINE"})
        if (info["classes"].contains(name))
            counts[name] = info["classes"][name];
    return counts;
}

void expectConverted(const std::string& from, const std::string& to, const std::string& as)
{
    const Json before = contentOf(from), after = contentOf(to);
    EXPECT_EQ(after["format"], as == "dxf" ? "dxf" : "dwg");
    EXPECT_EQ(after["version"], as == "dxf" ? before["version"] : Json(as));
    EXPECT_EQ(drawnIn(after), drawnIn(before));
    ASSERT_EQ(after["layouts"].size(), before["layouts"].size());
    for (std::size_t at = 0; at < after["layouts"].size(); ++at)
        for (const char* field : {"name", "handle", "tabOrder", "entities", "empty"})
            EXPECT_EQ(after["layouts"][at][field], before["layouts"][at][field]) << field;
    EXPECT_EQ(after["layers"].size(), before["layers"].size());
    EXPECT_EQ(drawingJson({"check", to})["counts"]["errors"],
              drawingJson({"check", from})["counts"]["errors"]);
}

/// What stands in the way is told, and nothing is left behind.
void expectRefused(const DrawingFolder& folder, const Said& said, std::size_t files)
{
    EXPECT_EQ(said.code, ExitCode::Damaged) << said.err;
    EXPECT_EQ(said.out, "");
    EXPECT_TRUE(said.err.find("E21318") != std::string::npos ||
                said.err.find("E21409") != std::string::npos)
        << said.err;
    EXPECT_NE(said.err.find("In its own format (without --as) the drawing keeps them."),
              std::string::npos)
        << said.err;
    EXPECT_EQ(folder.names().size(), files);
}

TEST(DrawingCopy, GoesFromEachVersionToEveryOther)
{
    for (const std::string& name : linesOfEachVersion())
        for (const std::string& as : kVersions) {
            SCOPED_TRACE(name + " as " + as);
            const DrawingFolder folder;
            const std::string from = folder.put(name), to = folder.path("to.dwg");
            const Json told = drawingJson({"copy", from, to, "--as", as});
            ASSERT_EQ(told["ok"], true) << told;
            EXPECT_EQ(told["converted"], name.find(as.substr(2)) == std::string::npos);
            expectConverted(from, to, as);
        }
}

TEST(DrawingCopy, GoesToTextAndBack)
{
    for (const std::string& name : linesOfEachVersion()) {
        SCOPED_TRACE(name);
        const DrawingFolder folder;
        const std::string from = folder.put(name);
        const std::string text = folder.path("to.dxf"), back = folder.path("back.dwg");
        ASSERT_EQ(drawing({"copy", from, text, "--as", "dxf"}).code, ExitCode::Ok);
        EXPECT_NE(folder.bytes("to.dxf").find("SECTION"), std::string::npos);
        expectConverted(from, text, "dxf");
        ASSERT_EQ(drawing({"copy", text, back}).code, ExitCode::Ok);
        EXPECT_EQ(drawingJson({"info", back})["format"], "dwg");
        EXPECT_EQ(drawnIn(drawingJson({"info", back})), drawnIn(drawingJson({"info", from})));
    }
}

TEST(DrawingCopy, OfARealDrawingIsWholeOrRefusedWithItsClasses)
{
    if (allRealDrawings().empty())
        GTEST_SKIP() << "no real drawings at " << drawingsFolder();
    for (const char* name : {"layouts-ac1032.dwg", "tables-ac1032.dwg", "mixed-ac1018.dwg"}) {
        const DrawingFolder folder;
        const std::string from = folder.put(name);
        for (const char* as : {"AC1015", "AC1027", "dxf"}) {
            SCOPED_TRACE(std::string(name) + " as " + as);
            const std::string to = folder.path(std::string(as) == "dxf" ? "out.dxf" : "out.dwg");
            const Said said = drawing({"copy", from, to, "--as", as});
            if (said.code == ExitCode::Ok)
                expectConverted(from, to, as);
            else
                expectRefused(folder, said, 1);
            std::filesystem::remove(to);
        }
    }
}

TEST(DrawingCopy, TellsHowManyPicturesOfLayoutsHaveNoPlaceInTheNewForm)
{
    const DrawingFolder folder;
    const std::string from = folder.put("layouts-ac1032.dwg"); // eight layouts, each with a picture
    if (from.empty())
        GTEST_SKIP() << "no real drawings at " << drawingsFolder();
    for (const auto& [as, pictures] : {std::pair("AC1027", 0), {"AC1032", 0}, {"dxf", 8}}) {
        const std::string to = folder.path(std::string(as) == "dxf" ? "out.dxf" : "out.dwg");
        const Json told = drawingJson({"copy", from, to, "--as", as, "--overwrite"});
        ASSERT_EQ(told["ok"], true) << told;
        EXPECT_EQ(told["picturesLeftOut"], pictures) << as;
        EXPECT_EQ(told["warnings"].size(), pictures > 0 ? 1u : 0u) << told["warnings"];
    }
    const Said said = drawing({"copy", from, folder.path("again.dxf"), "--as", "dxf"});
    EXPECT_NE(said.err.find("8 left out"), std::string::npos) << said.err;
}

TEST(DrawingCopy, TellsTheClassesThatStandInTheWay)
{
    const DrawingFolder folder;
    const std::string from = folder.put("mixed-ac1032.dwg");
    if (from.empty())
        GTEST_SKIP() << "no real drawings at " << drawingsFolder();
    folder.folder().write("old.dwg", "as it was");
    const Said said =
        drawing({"copy", from, folder.path("old.dwg"), "--as", "AC1018", "--overwrite"});
    expectRefused(folder, said, 2);
    EXPECT_EQ(folder.bytes("old.dwg"), "as it was");
    for (const char* part : {"DIR/mixed-ac1032.dwg: ", "AC1018", "ACAD_EVALUATION_GRAPH",
                             "BLOCKLINEARGRIP", "BLOCKVISIBILITYPARAMETER"})
        EXPECT_NE(folder.generalised(said.err).find(part), std::string::npos) << said.err;
    // A dry run knows it too.
    expectRefused(folder,
                  drawing({"copy", from, folder.path("x.dwg"), "--as", "AC1018", "--dry-run"}), 2);
}

TEST(DrawingCopy, OverwritesWhenAskedToOnly)
{
    const DrawingFolder folder;
    const std::string from = folder.put("line-ac1032.dwg"), to = folder.put("empty-ac1015.dwg");
    const FileState before = stateOf(to);

    const Said refused = drawing({"copy", from, to});
    EXPECT_EQ(refused.code, ExitCode::CannotWrite);
    EXPECT_NE(refused.err.find("--overwrite"), std::string::npos) << refused.err;
    EXPECT_EQ(stateOf(to), before);

    EXPECT_EQ(drawing({"copy", from, to, "--overwrite"}).code, ExitCode::Ok);
    expectSameObjects(from, to);
}

TEST(DrawingCopy, OntoItselfChangesNothingButItsForm)
{
    const DrawingFolder folder;
    const std::string file = folder.put("line-ac1032.dwg");
    const FileState before = stateOf(file);
    EXPECT_EQ(drawing({"copy", file, file}).code, ExitCode::CannotWrite);
    EXPECT_EQ(stateOf(file), before);

    ASSERT_EQ(drawing({"copy", file, file, "--overwrite", "--as", "AC1018"}).code, ExitCode::Ok);
    EXPECT_EQ(drawingJson({"info", file})["version"], "AC1018");
    EXPECT_EQ(drawingJson({"info", file})["classes"]["LINE"], 2);
    EXPECT_EQ(folder.names().size(), 1u);
}

TEST(DrawingCopy, NeedsAFolderThatIsThereAndMayBeWritten)
{
    const DrawingFolder folder;
    const std::string file = folder.put("line-ac1032.dwg");
    const Said missing = drawing({"copy", file, folder.path("none/to.dwg")});
    EXPECT_EQ(missing.code, ExitCode::CannotWrite);
    EXPECT_NE(folder.generalised(missing.err).find("DIR/none"), std::string::npos) << missing.err;
    EXPECT_EQ(drawing({"copy", file, folder.path("none/to.dwg"), "-n"}).code,
              ExitCode::CannotWrite);

    std::filesystem::create_directory(folder.path("closed"));
    ASSERT_EQ(::chmod(folder.path("closed").c_str(), 0555), 0);
    if (::geteuid() != 0) {
        EXPECT_EQ(drawing({"copy", file, folder.path("closed/to.dwg")}).code,
                  ExitCode::CannotWrite);
    }
    ASSERT_EQ(::chmod(folder.path("closed").c_str(), 0755), 0);
}

TEST(DrawingCopy, ADryRunLeavesNothing)
{
    const DrawingFolder folder;
    const std::string file = folder.put("line-ac1032.dwg");
    const FileState before = stateOf(file);
    const Said said = drawing({"copy", file, folder.path("to.dwg"), "--as", "AC1015", "-n"});
    EXPECT_EQ(said.code, ExitCode::Ok);
    EXPECT_EQ(folder.generalised(said.out),
              "DIR/to.dwg: AC1015 (2000), DWG, from AC1032 (2018), DWG\n");
    EXPECT_EQ(said.err, "Nothing was changed: this was a dry run.\n");
    EXPECT_EQ(stateOf(file), before);
    EXPECT_EQ(folder.names().size(), 1u);
}

TEST(DrawingCopy, RefusesWrongUsageBeforeItReads)
{
    const DrawingFolder folder;
    const std::string none = folder.path("none.dwg");
    const std::pair<std::vector<std::string>, const char*> lines[] = {
        {{"copy"}, "FILE"},
        {{"copy", none}, "NEWFILE"},
        {{"copy", none, folder.path("a.dwg"), "--as", "AC1014"}, "AC1014"},
        {{"copy", none, folder.path("a.dwg"), "--as", ""}, ""},
        {{"copy", none, folder.path("a.dwg"), "--as", "dxf"}, "a.dwg"},
        {{"copy", none, folder.path("a.dwg"), "--bs"}, "--bs"},
    };
    for (const auto& [line, part] : lines) {
        const Said said = drawing(line);
        if (*part) {
            EXPECT_EQ(said.code, ExitCode::Usage) << said.err;
        }
        EXPECT_NE(said.err.find(part), std::string::npos) << said.err;
        EXPECT_EQ(said.out, "");
    }
    EXPECT_EQ(drawing({"copy", none, folder.path("a.dwg")}).code, ExitCode::NoInput);
    EXPECT_TRUE(folder.names().empty());
}

TEST(DrawingCopy, HasExactlyTheDocumentedFields)
{
    const DrawingFolder folder;
    const Json told = drawingJson({"copy", folder.put("line-ac1032.dwg"), folder.path("to.dxf")});
    EXPECT_EQ(told["schema"], "kvsheetset.drawing-copy/1");
    EXPECT_EQ(fieldsOf(told), (std::vector<std::string>{"schema", "ok", "exitCode", "file", "to",
                                                        "converted", "picturesLeftOut", "format",
                                                        "version", "dryRun", "warnings"}));
    EXPECT_EQ(told["format"], "dxf");
    EXPECT_EQ(told["version"], "AC1032");
    EXPECT_EQ(told["converted"], true);
}

TEST(DrawingNew, MakesADrawingOfEachVersionThatIsSound)
{
    const DrawingFolder folder;
    for (const std::string& as : kVersions) {
        const std::string file = folder.path(as + ".dwg");
        const Json told = drawingJson({"new", file, "--as", as});
        EXPECT_EQ(fieldsOf(told),
                  (std::vector<std::string>{"schema", "ok", "exitCode", "file", "format", "version",
                                            "dryRun", "warnings"}));
        EXPECT_EQ(told["version"], as);
        EXPECT_EQ(drawingJson({"info", file})["version"], as);
        EXPECT_EQ(findingsOf(file), Json::array()) << as;
    }
    const Said again = drawing({"new", folder.path("AC1015.dwg")});
    EXPECT_EQ(again.code, ExitCode::CannotWrite);
    EXPECT_EQ(drawing({"new", folder.path("page.pdf")}).code, ExitCode::Usage);
    EXPECT_EQ(drawing({"new", folder.path("dry.dwg"), "-n"}).code, ExitCode::Ok);
    EXPECT_FALSE(std::filesystem::exists(folder.path("dry.dwg")));
    EXPECT_EQ(folder.generalised(drawing({"new", folder.path("plain")}).out), "DIR/plain.dwg\n");
}

TEST(DrawingNew, TellsTheNextCommandSoThatAShellTakesIt)
{
    const DrawingFolder folder;
    const std::string before = std::filesystem::current_path().string();
    std::filesystem::current_path(folder.folder().path());
    const std::pair<const char*, const char*> names[] = {
        {"plain", "plain.dwg"},     {"text.dxf", "text.dxf"}, {"two words.dwg", "'two words.dwg'"},
        {"it's", "'it'\\''s.dwg'"}, {"$HOME", "'$HOME.dwg'"}, {"a`b", "'a`b.dwg'"},
    };
    for (const auto& [typed, shown] : names) {
        const Said said = drawing({"new", typed});
        EXPECT_EQ(said.code, ExitCode::Ok) << said.err;
        EXPECT_EQ(said.err, std::string("Next: kvsheetset drawing layout list ") + shown + "\n");
    }
    EXPECT_EQ(drawing({"new", "--", "-n.dwg"}).err,
              "Next: kvsheetset drawing layout list ./-n.dwg\n");
    std::filesystem::current_path(before);
}

TEST(DrawingCopy, TakesTheSameNamesAsANewDrawing)
{
    const DrawingFolder folder;
    const std::string from = folder.put("line-ac1032.dwg");
    for (const char* verb : {"copy", "new"}) {
        std::vector<std::string> line = {verb, folder.path("x.txt")};
        if (line[0] == "copy")
            line.insert(line.begin() + 1, from);
        const Said said = drawing(line);
        EXPECT_EQ(said.code, ExitCode::Usage) << verb;
        EXPECT_NE(said.err.find("E22921: \"x.txt\" is no name for a drawing"), std::string::npos)
            << said.err;
    }
    EXPECT_EQ(folder.names().size(), 1u);
    EXPECT_EQ(drawing({"copy", from, folder.path("plain")}).code, ExitCode::Ok);
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"line-ac1032.dwg", "plain.dwg"}));
}

TEST(DrawingCopy, AdviceFitsWhatIsInTheWay)
{
    const DrawingFolder folder;
    const std::string from = folder.put("line-ac1032.dwg");
    folder.folder().write("empty.dwg", "");
    std::filesystem::create_directory(folder.path("folder.dwg"));
    ASSERT_EQ(::mkfifo(folder.path("pipe.dwg").c_str(), 0600), 0);
    const std::string to = folder.put("empty-ac1015.dwg");
    std::filesystem::create_hard_link(to, folder.path("second.dwg"));
    const std::pair<std::vector<std::string>, const char*> lines[] = {
        {{"info", folder.path("empty.dwg")}, "Check that it is a drawing."},
        {{"info", folder.path("folder.dwg")}, "Name a file, not a folder"},
        {{"info", folder.path("pipe.dwg")}, "Name a file, not a folder"},
        {{"copy", from, to, "--overwrite"}, "delete its other names first"},
        {{"copy", from, to, "--overwrite", "--as", "AC1018"}, "delete its other names first"},
    };
    for (const auto& [line, advice] : lines) {
        const Said said = drawing(line);
        EXPECT_EQ(said.code, ExitCode::Damaged) << said.err;
        EXPECT_NE(said.err.find(advice), std::string::npos) << said.err;
        EXPECT_EQ(said.err.find("newer version of this program"), std::string::npos) << said.err;
    }
}

TEST(DrawingCopy, WhatCannotBeWrittenIsNeverWrongUsage)
{
    const auto codeOf = [](const base::Status& status, cli::Doing doing) {
        try {
            cli::refuseDrawing(status, u"/plan.dwg", doing);
        } catch (const cli::Refusal& refusal) {
            return refusal.exitCode();
        }
    };
    const base::Status object{base::Failure::Usage, base::Reason::DwgObjectDamaged, {u"1E"}};
    const base::Status name{base::Failure::Usage, base::Reason::NotRegularFile, {u"/"}};
    EXPECT_EQ(codeOf(object, cli::Doing::Writing), ExitCode::Damaged);
    EXPECT_EQ(codeOf(name, cli::Doing::Writing), ExitCode::CannotWrite);
    EXPECT_EQ(codeOf(name, cli::Doing::Reading), ExitCode::Usage);
}

} // namespace
