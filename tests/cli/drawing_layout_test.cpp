#include <db/tv_db_dictionary.h>

#include "drawing_scene.h"

// "drawing layout ...": names change, handles stay.

namespace {

using cli::ExitCode;
using Json = nlohmann::ordered_json;
using Names = std::vector<std::string>;

Names layoutNames(const std::string& file)
{
    Names names;
    const Json list = drawingJson({"layout", "list", file});
    for (const Json& layout : list["layouts"])
        names.push_back(layout["name"]);
    return names;
}

TEST(DrawingLayout, IsRenamedInEveryVersionAndKeepsItsHandle)
{
    for (const std::string& name : ownDrawings()) {
        SCOPED_TRACE(name);
        const DrawingFolder folder;
        const std::string file = folder.put(name);
        const Said said = drawing({"layout", "rename", file, "layout1", "Ground floor"});
        EXPECT_EQ(said.code, ExitCode::Ok) << said.err;
        EXPECT_EQ(said.out, "1E  \"Layout1\" -> \"Ground floor\"\n");
        const Json layouts = drawingJson({"layout", "list", file})["layouts"];
        EXPECT_EQ(layouts[1]["name"], "Ground floor");
        EXPECT_EQ(layouts[1]["handle"], "1E");
        EXPECT_EQ(drawing({"check", file}).code, ExitCode::Ok);
    }
}

TEST(DrawingLayout, OfARealDrawingIsRenamedAndNothingElseChanges)
{
    const DrawingFolder folder;
    const std::string file = folder.put("layouts-ac1032.dwg");
    if (file.empty())
        GTEST_SKIP() << "no real drawings at " << drawingsFolder();
    const Json before = drawingJson({"info", file});
    const Json checked = drawingJson({"check", file})["findings"];
    ASSERT_EQ(drawing({"layout", "rename", file, "hatch", "Muster"}).code, ExitCode::Ok);
    EXPECT_EQ(layoutNames(file), (Names{"Model", "Layout1", "Layout2", "text_sample", "layout_size",
                                        "line-types", "curve-ltypes", "Muster"}));
    const Json after = drawingJson({"info", file});
    for (const char* field : {"classes", "blocks", "views", "objects", "layers"})
        EXPECT_EQ(after[field], before[field]) << field;
    EXPECT_EQ(drawingJson({"check", file})["findings"], checked);
}

TEST(DrawingLayout, NamesThatCannotBeAreRefusedWithASentence)
{
    const DrawingFolder folder;
    const std::string file = folder.put("line-ac1032.dwg");
    ASSERT_EQ(drawing({"layout", "add", file, "Second"}).code, ExitCode::Ok);
    const FileState before = stateOf(file);
    const struct {
        std::vector<std::string> line;
        ExitCode code;
        const char* part;
    } rows[] = {
        {{"layout", "rename", file, "Nowhere", "x"}, ExitCode::NoInput, "Model, Layout1, Second"},
        {{"layout", "rename", file, "Layout1", "second"}, ExitCode::Usage, "\"second\" already"},
        {{"layout", "rename", file, "Layout1", "a*b"}, ExitCode::Usage, "\"a*b\" is no name"},
        {{"layout", "rename", file, "Layout1", ""}, ExitCode::Usage, "is no name"},
        {{"layout", "rename", file, "Layout1", "model"}, ExitCode::Usage, "model layout"},
        {{"layout", "rename", file, "Model", "x"}, ExitCode::Usage, "model layout"},
        {{"layout", "remove", file, "Model"}, ExitCode::Usage, "model layout"},
        {{"layout", "remove", file, "Nowhere"}, ExitCode::NoInput, "Nowhere"},
        {{"layout", "add", file, "SECOND"}, ExitCode::Usage, "\"SECOND\" already"},
        {{"layout", "add", file, "a|b"}, ExitCode::Usage, "\"a|b\" is no name"},
        {{"layout", "rename", file, "Layout1"}, ExitCode::Usage, "NEWNAME"},
        {{"layout", "rename"}, ExitCode::Usage, "FILE"},
        {{"layout", "add", file}, ExitCode::Usage, "NAME"},
        {{"layout", "list"}, ExitCode::Usage, "FILE"},
        {{"layout"}, ExitCode::Usage, "list, add, rename, remove"},
        {{"layout", "rename", folder.path("none.dwg"), "a", "b"}, ExitCode::NoInput, "not there"},
    };
    for (const auto& row : rows) {
        const Said said = drawing(row.line);
        EXPECT_EQ(said.code, row.code) << said.err;
        EXPECT_EQ(said.out, "");
        EXPECT_NE(said.err.find(row.part), std::string::npos) << row.part << "\n" << said.err;
    }
    EXPECT_EQ(stateOf(file), before);
}

TEST(DrawingLayout, IsAddedAndRemoved)
{
    for (const std::string& name : ownDrawings()) {
        SCOPED_TRACE(name);
        const DrawingFolder folder;
        const std::string file = folder.put(name);
        const Json added = drawingJson({"layout", "add", file, "First floor"});
        EXPECT_EQ(added["name"], "First floor");
        EXPECT_EQ(layoutNames(file), (Names{"Model", "Layout1", "First floor"}));
        EXPECT_EQ(drawingJson({"layout", "list", file})["layouts"][2]["handle"], added["handle"]);
        EXPECT_EQ(drawing({"check", file}).out, "");
        const Json removed = drawingJson({"layout", "remove", file, "Layout1"});
        EXPECT_EQ(removed["handle"], "1E");
        EXPECT_EQ(layoutNames(file), (Names{"Model", "First floor"}));
        EXPECT_EQ(drawing({"check", file}).out, "");
        const Said last = drawing({"layout", "remove", file, "First floor"});
        EXPECT_EQ(last.code, ExitCode::Usage);
        EXPECT_NE(last.err.find("only paper layout"), std::string::npos) << last.err;
    }
}

TEST(DrawingLayout, ADryRunLeavesBytesAndTimes)
{
    const DrawingFolder folder;
    const std::string file = folder.put("line-ac1024.dwg");
    ASSERT_EQ(drawing({"layout", "add", file, "Second"}).code, ExitCode::Ok);
    const FileState before = stateOf(file);
    for (const std::vector<std::string>& line :
         {std::vector<std::string>{"layout", "rename", file, "Layout1", "New", "-n"},
          {"layout", "add", file, "New", "-n"},
          {"layout", "remove", file, "Layout1", "--dry-run"}}) {
        const Said said = drawing(line);
        EXPECT_EQ(said.code, ExitCode::Ok) << said.err;
        EXPECT_NE(said.out, "");
        EXPECT_EQ(said.err, "Nothing was changed: this was a dry run.\n");
        EXPECT_EQ(stateOf(file), before);
    }
    // The same name again is no change, either.
    EXPECT_EQ(drawing({"layout", "rename", file, "Layout1", "Layout1"}).code, ExitCode::Ok);
    EXPECT_EQ(stateOf(file), before);
}

TEST(DrawingLayout, DocumentsHaveExactlyTheirFields)
{
    const DrawingFolder folder;
    const std::string file = folder.put("line-ac1032.dwg");
    const auto own = [](const Json& document) {
        Names names = fieldsOf(document);
        EXPECT_EQ(Names(names.begin(), names.begin() + 3), (Names{"schema", "ok", "exitCode"}));
        EXPECT_EQ(names.back(), "warnings");
        return Names(names.begin() + 3, names.end() - 1);
    };
    EXPECT_EQ(own(drawingJson({"layout", "list", file})), (Names{"file", "layouts"}));
    EXPECT_EQ(own(drawingJson({"layout", "add", file, "B"})),
              (Names{"file", "handle", "dryRun", "name"}));
    EXPECT_EQ(own(drawingJson({"layout", "rename", file, "B", "C"})),
              (Names{"file", "handle", "dryRun", "from", "to"}));
    EXPECT_EQ(own(drawingJson({"layout", "remove", file, "C"})),
              (Names{"file", "handle", "dryRun", "name", "entities"}));
}

TEST(DrawingLayout, ThatIsASheetIsToldWhenItIsRenamed)
{
    const DrawingFolder folder;
    const std::string file = folder.put("line-ac1032.dwg");
    folder.folder().write("house.dst", "");
    ASSERT_EQ(drawing({"sheetdata", "write", file, "--set", folder.path("house.dst"), "--layout",
                       "Layout1"})
                  .code,
              ExitCode::Ok);
    const Said said = drawing({"layout", "rename", file, "Layout1", "Cellar"});
    EXPECT_EQ(said.code, ExitCode::Ok);
    EXPECT_NE(said.err.find("warning E22937"), std::string::npos) << said.err;
}

TEST(DrawingLayout, ThatIsASheetIsToldWhenItIsRemoved)
{
    const DrawingFolder folder;
    const std::string file = folder.put("line-ac1032.dwg");
    folder.folder().write("house.dst", "");
    ASSERT_EQ(drawing({"layout", "add", file, "Second"}).code, ExitCode::Ok);
    ASSERT_EQ(drawing({"sheetdata", "write", file, "--set", folder.path("house.dst"), "--layout",
                       "Layout1"})
                  .code,
              ExitCode::Ok);
    ASSERT_EQ(drawing({"layout", "add", file, "Third"}).code, ExitCode::Ok);
    EXPECT_EQ(drawing({"layout", "remove", file, "Second"}).err, "");
    const Said said = drawing({"layout", "remove", file, "Layout1"});
    EXPECT_EQ(said.code, ExitCode::Ok);
    EXPECT_NE(said.err.find("warning E22940: The layout \"Layout1\""), std::string::npos)
        << said.err;
    EXPECT_NE(said.err.find("house.dst"), std::string::npos) << said.err;
}

/// "damaged" and a way to learn more, instead of a number that only we know.
void expectDamaged(const Said& said)
{
    EXPECT_EQ(said.code, ExitCode::Damaged) << said.err;
    EXPECT_NE(said.err.find("E22939"), std::string::npos) << said.err;
    EXPECT_NE(said.err.find("kvsheetset drawing check"), std::string::npos) << said.err;
    EXPECT_EQ(said.out, "");
}

TEST(DrawingLayout, OfADrawingWithoutItsLayoutsIsRefusedAsDamaged)
{
    const DrawingFolder folder;
    const std::string file = folder.put("line-ac1032.dwg");
    damage(file, [](TvDbDatabase& database) {
        TvDbObjectPointer<TvDbDictionary>(database.namedObjectsDictionaryId(), TvDb::kForWrite)
            ->remove(u"ACAD_LAYOUT");
    });
    const FileState before = stateOf(file);
    expectDamaged(drawing({"layout", "add", file, "New"}));
    expectDamaged(drawing({"layout", "rename", file, "Layout1", "New"}));
    expectDamaged(drawing({"layout", "remove", file, "Layout1"}));
    EXPECT_EQ(stateOf(file), before);
}

} // namespace
