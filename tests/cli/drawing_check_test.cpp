#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>

#include "drawing_scene.h"

// "drawing check": quiet about sound drawings, exit code 6 for damaged ones.

namespace {

using cli::ExitCode;
using Json = nlohmann::ordered_json;

Json findingsOf(const std::string& file)
{
    Json report = drawingJson({"check", file});
    return report.contains("findings") ? report["findings"] : Json::array();
}

TEST(DrawingCheck, FindsNothingWrongWithOurOwnDrawings)
{
    const DrawingFolder folder;
    for (const std::string& name : ownDrawings()) {
        const Said said = drawing({"check", folder.put(name)});
        EXPECT_EQ(said.code, ExitCode::Ok) << name;
        EXPECT_EQ(said.out, "") << name;
        EXPECT_EQ(folder.generalised(said.err),
                  "DIR/" + name + ": errors: 0, warnings: 0, notes: 0. Nothing was changed.\n");
    }
}

TEST(DrawingCheck, FindsNoErrorsInRealDrawingsButThoseThatAreKnown)
{
    if (allRealDrawings().empty())
        GTEST_SKIP() << "no real drawings at " << drawingsFolder();
    const DrawingFolder folder;
    for (const std::string& name : allRealDrawings()) {
        SCOPED_TRACE(name);
        const std::string file = folder.put(name);
        const FileState before = stateOf(file);
        const Json report = drawingJson({"check", file});
        EXPECT_EQ(stateOf(file), before);
        // One drawing has entities of two blocks that are gone.
        const bool isImperfect = name == "mixed-ac1032.dwg";
        EXPECT_EQ(report["exitCode"], isImperfect ? 6 : 0);
        EXPECT_EQ(report["counts"]["errors"], isImperfect ? 10 : 0);
        for (const Json& finding : report["findings"])
            if (finding["severity"] == "error") {
                const std::string message = finding["message"];
                EXPECT_EQ(finding["code"], "D10") << message;
                EXPECT_TRUE(message == "Its owner D13 is not there." ||
                            message == "Its owner D3C is not there.")
                    << message;
            }
    }
}

TEST(DrawingCheck, HasExactlyTheDocumentedFieldsAndErrorsFirst)
{
    const DrawingFolder folder;
    const std::string file = folder.put("line-ac1032.dwg");
    damage(file, [](TvDbDatabase& database) {
        TvDbObjectPointer<TvDbObject>(database.find(0x2E), TvDb::kForWrite)
            ->edit()
            .setHandle("layer", 0x2F);
    });
    const Json report = drawingJson({"check", file});
    EXPECT_EQ(report["schema"], "kvsheetset.drawing-check/1");
    EXPECT_EQ(report["exitCode"], 6);
    EXPECT_EQ(fieldsOf(report), (std::vector<std::string>{"schema", "ok", "exitCode", "file",
                                                          "counts", "findings", "warnings"}));
    EXPECT_EQ(fieldsOf(report["counts"]),
              (std::vector<std::string>{"errors", "warnings", "notes"}));
    ASSERT_FALSE(report["findings"].empty());
    EXPECT_EQ(fieldsOf(report["findings"][0]),
              (std::vector<std::string>{"code", "severity", "handle", "class", "message"}));
    EXPECT_EQ(report["findings"][0]["severity"], "error");
    EXPECT_EQ(report["findings"][0]["code"], "D33");
    EXPECT_EQ(report["findings"][0]["handle"], "2E");
    EXPECT_EQ(report["findings"][0]["class"], "LINE");
}

TEST(DrawingCheck, ShowsFindingsInColumns)
{
    const DrawingFolder folder;
    const std::string file = folder.put("line-ac1027.dwg");
    damage(file, [](TvDbDatabase& database) {
        TvDbObjectPointer<TvDbObject>(database.find(0x2E), TvDb::kForWrite)
            ->edit()
            .setHandle("layer", 0x2F);
    });
    const Said said = drawing({"check", file});
    EXPECT_EQ(said.code, ExitCode::CheckFailed);
    EXPECT_EQ(said.out, "error  D33  2E  LINE  Its layer 2F is not there.\n");
    EXPECT_EQ(folder.generalised(said.err),
              "DIR/line-ac1027.dwg: errors: 1, warnings: 0, notes: 0. Nothing was changed.\n");
}

TEST(DrawingCheck, FindsDamageInEveryVersionAndInText)
{
    for (const std::string& name : ownDrawings()) {
        if (!name.starts_with("line"))
            continue;
        SCOPED_TRACE(name);
        const DrawingFolder folder;
        const std::string file = folder.put(name), text = folder.path("text.dxf");
        ASSERT_EQ(drawing({"copy", file, text}).code, ExitCode::Ok);
        EXPECT_EQ(drawing({"check", text}).code, ExitCode::Ok);
        damage(file, [](TvDbDatabase& database) {
            TvDbObjectPointer<TvDbObject>(database.find(0x2E), TvDb::kForWrite)
                ->edit()
                .setHandle("layer", 0x2F);
        });
        EXPECT_EQ(drawing({"check", file}).code, ExitCode::CheckFailed);
    }
}

TEST(DrawingCheck, TellsWrongChecksums)
{
    const DrawingFolder folder;
    folder.put("line-ac1015.dwg");
    // Somewhere in the objects: only their checksums tell.
    int found = 0;
    for (std::size_t at = 0x600; at < 0xB00; at += 0x80) {
        std::string bytes = folder.bytes("line-ac1015.dwg");
        bytes[at] = static_cast<char>(bytes[at] ^ 0x10);
        folder.folder().write("wrong.dwg", bytes);
        const cli::ExitCode code = drawing({"check", folder.path("wrong.dwg")}).code;
        EXPECT_TRUE(code == ExitCode::Ok || code == ExitCode::CheckFailed ||
                    code == ExitCode::Damaged)
            << at << " " << static_cast<int>(code);
        found += code == ExitCode::CheckFailed;
    }
    EXPECT_GT(found, 5);
}

TEST(DrawingCheck, RefusesWrongUsageAndWhatItCannotRead)
{
    const DrawingFolder folder;
    EXPECT_EQ(drawing({"check"}).code, ExitCode::Usage);
    EXPECT_EQ(drawing({"check", folder.path("none.dwg")}).code, ExitCode::NoInput);
    folder.folder().write("text.dwg", "no drawing at all");
    const Said said = drawing({"check", folder.path("text.dwg")});
    EXPECT_EQ(said.code, ExitCode::Damaged);
    EXPECT_NE(said.err.find("E21301"), std::string::npos) << said.err;
}

TEST(DrawingCheck, SentencesOfDamagedFilesAreWholeSentences)
{
    const DrawingFolder folder;
    folder.put("line-ac1015.dwg");
    std::size_t found = 0;
    for (std::size_t at = 0x600; at < 0xB00; at += 0x100) {
        std::string bytes = folder.bytes("line-ac1015.dwg");
        bytes[at] = static_cast<char>(bytes[at] ^ 0x10);
        folder.folder().write("wrong.dwg", bytes);
        const Json findings = findingsOf(folder.path("wrong.dwg"));
        for (const Json& finding : findings) {
            if (finding["code"] != "D01")
                continue;
            ++found;
            const std::string message = finding["message"];
            EXPECT_TRUE(message.starts_with("The ") || message.starts_with("In the ")) << message;
            EXPECT_TRUE(message.ends_with('.')) << message;
        }
    }
    EXPECT_GE(found, 5u);
}

} // namespace
