#include <nlohmann/json.hpp>

#include "drawing_tools.h"
#include "independent_program.h"
#include "object_writer.h"
#include "temp_folder.h"
#include "text_coding.h"
#include "told_objects.h"

namespace {

/// Drawings that another program made, once for all tests.
class IndependentDrawings : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_folder = new TempFolder;
        s_isMissing = runScript("make_drawings.py", {s_folder->path()}).isMissing();
    }
    static void TearDownTestSuite() { delete s_folder; }
    void SetUp() override
    {
        if (s_isMissing)
            GTEST_SKIP() << "python3-ezdxf is not installed";
    }
    static std::vector<std::filesystem::path> drawings()
    {
        std::vector<std::filesystem::path> found;
        for (const auto& entry : std::filesystem::directory_iterator(s_folder->path()))
            if (entry.path().extension() == ".dxf")
                found.push_back(entry.path());
        std::sort(found.begin(), found.end());
        EXPECT_EQ(found.size(), 7u);
        return found;
    }
    static OpenFile open(const std::filesystem::path& path)
    {
        const std::vector<std::uint8_t> bytes = readFile(path);
        return openDxf({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }
    static nlohmann::json factsOf(std::filesystem::path path)
    {
        return nlohmann::json::parse(std::ifstream(path.replace_extension(".json")));
    }
    static const std::filesystem::path& folder() { return s_folder->path(); }

private:
    static inline TempFolder* s_folder = nullptr; // owned; while the tests run
    static inline bool s_isMissing = false;
};

/// A fact as text; the other program leaves the escapes of old versions as they are.
std::u16string textOf(const nlohmann::json& fact)
{
    return dxf::TextCoding::resolved(base::utf16FromUtf8(fact.get<std::string>()));
}

/// What the record has against the facts, by the name of the fact; empty when nothing.
std::string objection(const db::DrawingFile& file, const db::Record& record,
                      const nlohmann::json& facts)
{
    for (const char* text : {"text", "tag"})
        if (facts.contains(text) && record.has(text) && record.text(text) != textOf(facts[text]))
            return text;
    for (const char* real : {"height", "radius"})
        if (facts.contains(real) && record.has(real) && record.real(real) != facts[real])
            return real;
    if (facts.contains("layer") && record.has("layer") && record.classDef()->isEntity() &&
        recordOf(file, record.handle("layer")).text("name") != textOf(facts["layer"]))
        return "layer";
    if (facts.contains("ltscale") && record.real("ltype_scale") != facts["ltscale"])
        return "ltscale";
    return {};
}

TEST_F(IndependentDrawings, AreReadWithEveryObject)
{
    for (const auto& path : drawings()) {
        SCOPED_TRACE(path.filename());
        const OpenFile file = open(path);
        ASSERT_TRUE(file);
        const nlohmann::json facts = factsOf(path);
        EXPECT_TRUE(file->check().empty());

        for (const auto& [handle, object] : facts["objects"].items()) {
            const std::uint64_t number = std::stoull(handle, nullptr, 16);
            const auto kind = file->kind(number);
            ASSERT_TRUE(kind) << handle << " " << object;
            if (object["type"] == "TABLE")
                continue;
            ASSERT_TRUE(kind->classDef) << handle << " " << object;
            EXPECT_EQ(dxf::fileName(*kind->classDef), object["type"]) << handle;
            if (!dxf::hasForm(*kind->classDef, file->version()))
                continue;
            EXPECT_EQ(objection(*file, recordOf(*file, number), object), "") << object;
        }
    }
}

TEST_F(IndependentDrawings, HaveTheirLayoutsAndBlocks)
{
    for (const auto& path : drawings()) {
        const OpenFile file = open(path);
        ASSERT_TRUE(file);
        std::set<std::string> layouts, expected;
        for (const std::uint64_t handle : handlesOf(*file, "LAYOUT")) {
            const db::Record layout = recordOf(*file, handle);
            layouts.insert(base::utf8FromUtf16(layout.text("name")));
            const db::Record block = recordOf(*file, layout.handle("block_record"));
            EXPECT_EQ(block.handle("layout"), handle);
        }
        const nlohmann::json facts = factsOf(path);
        for (const auto& name : facts["layouts"])
            expected.insert(name.get<std::string>());
        EXPECT_EQ(layouts, expected) << path;
    }
}

TEST_F(IndependentDrawings, KeepDataThatHangsOnObjects)
{
    const std::u16string umlauts = u"Größe Übung äöüß";
    for (const auto& path : drawings()) {
        if (path.stem() == "small")
            continue;
        SCOPED_TRACE(path.filename());
        const OpenFile file = open(path);
        ASSERT_TRUE(file);
        int extended = 0, filed = 0;
        for (const std::uint64_t handle : handlesOf(*file, "LINE")) {
            const db::Record line = recordOf(*file, handle);
            const db::ArrayView groups = line.array("eed");
            if (groups.isEmpty())
                continue;
            const db::ArrayView items = groups[0].array("items");
            ASSERT_EQ(items.size(), 8u);
            EXPECT_EQ(items[0].text("text"), umlauts);
            EXPECT_EQ(items[6].handle("handle"), handle);
            ++extended;
            const db::Record dictionary = recordOf(*file, line.handle("xdict"));
            ASSERT_EQ(dictionary.array("keys").text(0), u"DATEN");
            const db::Record data = recordOf(*file, dictionary.array("values").handle(0));
            const db::ArrayView content = data.structure("content").array("items");
            ASSERT_EQ(content.size(), 6u);
            EXPECT_EQ(content[0].text("text"), umlauts);
            EXPECT_EQ(content[5].handle("handle"), handle);
            ++filed;
        }
        EXPECT_EQ(extended, 1);
        EXPECT_EQ(filed, 1);
    }
}

TEST_F(IndependentDrawings, LoseNothingWhenWrittenAgain)
{
    std::vector<std::filesystem::path> written;
    for (const auto& path : drawings()) {
        SCOPED_TRACE(path.filename());
        const OpenFile file = open(path);
        ASSERT_TRUE(file);
        Edit edit(*file);
        edit.header(); // changed: it is written anew
        for (const std::uint64_t handle : file->handles())
            if (const auto kind = file->kind(handle);
                kind->classDef && dxf::hasForm(*kind->classDef, file->version()))
                edit.change(handle); // and so is every object

        const OpenFile back = edit.written(file->version());

        ASSERT_TRUE(back);
        EXPECT_EQ(lostBetween(*file, *back, {}), std::vector<std::string>());
        written.push_back(folder() / (path.stem().string() + "-again.out"));
        std::ofstream(written.back(), std::ios::binary) << edit.text;
    }
    const ScriptRun run = runScript("audit_drawing.py", written);
    EXPECT_EQ(run.exitCode, 0) << run.output;
}

TEST_F(IndependentDrawings, BecomeDrawingsOfBitsWithoutLoss)
{
    for (const auto& path : drawings()) {
        SCOPED_TRACE(path.filename());
        const OpenFile file = open(path);
        ASSERT_TRUE(file);
        Edit edit(*file);
        std::set<std::uint64_t> away = takeUntoldAway(*file, edit);
        for (const auto& [handle, dictionary] : edit.changed())
            away.insert(handle); // has fewer entries

        const OpenFile drawing = edit.writtenAsDwg(file->version());

        ASSERT_TRUE(drawing);
        EXPECT_EQ(lostBetween(*file, *drawing, away), std::vector<std::string>());
    }
}

} // namespace
