// The templates that come with the program, and the pen that drew them.

#include <sample_maker/templates.h>

#include <filesystem>
#include <fstream>

#include <db/drawing_audit.h>
#include <db/tv_db_block_reference.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>
#include <db/tv_db_viewport.h>
#include <dwg/dwg_codec.h>
#include <gtest/gtest.h>
#include <sample_maker/title_block.h>

#include "temp_folder.h"

namespace {

using Names = std::vector<TvString>;

class SampleTemplates : public testing::Test
{
protected:
    void SetUp() override { dwg::install(); }
    static TvString shipped(const char* name)
    {
        return TvString(std::string_view(std::string(KV_TEMPLATES) + "/" + name));
    }
    static std::string bytesOf(const std::filesystem::path& path)
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static Names paperNames(TvDbDatabase& drawing)
    {
        Names names;
        for (const TvDbObjectId id : db::layoutsInTabOrder(drawing))
            if (const TvDbObjectPointer<TvDbLayout> layout(id); !layout->isModelLayout())
                names.push_back(layout->getLayoutName());
        return names;
    }
    /// Of all papers, in the order of their tabs.
    template <class T>
    static std::vector<std::vector<TvDbObjectId>> onPapers(TvDbDatabase& drawing)
    {
        std::vector<std::vector<TvDbObjectId>> all;
        for (const TvDbObjectId id : db::layoutsInTabOrder(drawing)) {
            const TvDbObjectPointer<TvDbLayout> layout(id);
            if (layout->isModelLayout())
                continue;
            all.emplace_back();
            const TvDbObjectPointer<TvDbBlockTableRecord> block(layout->getBlockTableRecordId());
            for (const TvDbObjectId entity : block->entityIds())
                if (const TvDbObjectPointer<T> wanted(entity); wanted)
                    all.back().push_back(entity);
        }
        return all;
    }

    TempFolder folder;
};

TEST_F(SampleTemplates, AreTheSameBytesWheneverTheyAreMade)
{
    std::filesystem::create_directories(folder.path() / "a");
    std::filesystem::create_directories(folder.path() / "b");
    samples::makeTemplates(folder.file("a"));
    samples::makeTemplates(folder.file("b"));
    for (const char* name : {"ISO sheets.dwt", "Imperial sheets.dwt"}) {
        const std::string made = bytesOf(folder.path() / "a" / name);
        EXPECT_FALSE(made.empty()) << name;
        EXPECT_EQ(made, bytesOf(folder.path() / "b" / name)) << name;
    }
}

TEST_F(SampleTemplates, HaveSheetsOfTheSizesOfBothWorlds)
{
    TvDbDatabase iso(false, true), imperial(false, true);
    ASSERT_EQ(iso.readDwgFile(shipped("ISO sheets.dwt")), TvStatus::Ok);
    ASSERT_EQ(imperial.readDwgFile(shipped("Imperial sheets.dwt")), TvStatus::Ok);
    EXPECT_EQ(paperNames(iso), (Names{u"ISO A1", u"ISO A3", u"ISO A1 Four Views"}));
    EXPECT_EQ(paperNames(imperial), (Names{u"ANSI D", u"ARCH D", u"ARCH D Four Views"}));
    EXPECT_EQ(iso.insunits(), 4);
    EXPECT_EQ(imperial.insunits(), 1);
}

TEST_F(SampleTemplates, PassTheAuditWithoutAFinding)
{
    for (const char* name : {"ISO sheets.dwt", "Imperial sheets.dwt"}) {
        TvDbDatabase drawing(false, true);
        ASSERT_EQ(drawing.readDwgFile(shipped(name)), TvStatus::Ok);
        EXPECT_TRUE(db::auditDrawing(drawing).empty()) << name;
    }
}

TEST_F(SampleTemplates, HaveAWindowOntoTheModelAndATitleBlockWithItsAttributesOnEachSheet)
{
    for (const char* name : {"ISO sheets.dwt", "Imperial sheets.dwt"}) {
        TvDbDatabase drawing(false, true);
        ASSERT_EQ(drawing.readDwgFile(shipped(name)), TvStatus::Ok);
        for (const auto& windows : onPapers<TvDbViewport>(drawing))
            EXPECT_GE(windows.size(), 2u) << name; // the sheet as a whole is the first
        for (const auto& blocks : onPapers<TvDbBlockReference>(drawing)) {
            ASSERT_EQ(blocks.size(), 1u) << name;
            std::set<TvString> tags;
            for (const TvDbObjectId id :
                 TvDbObjectPointer<TvDbBlockReference>(blocks.front())->attributeIds())
                tags.insert(TvDbObjectPointer<TvDbAttribute>(id)->tag());
            for (const TvChar* tag :
                 {samples::tag::kProject, samples::tag::kNumber, samples::tag::kTitle,
                  samples::tag::kDate, samples::tag::kDrawnBy})
                EXPECT_TRUE(tags.contains(tag)) << name << ": " << TvString(tag).utf8();
        }
    }
}

TEST_F(SampleTemplates, APenFillsInWhatItIsGivenAndKeepsOtherTextsOfTheTitleBlock)
{
    samples::Sketch sketch(samples::Units::Millimetres);
    const auto forms = samples::addSheetForms(sketch);
    samples::newSheet(sketch, forms.front(), u"A-101", {{samples::tag::kNumber, u"A-101"}});
    const TvDbObjectId block = onPapers<TvDbBlockReference>(sketch.drawing()).front().front();
    std::map<TvString, TvString> texts;
    for (const TvDbObjectId id : TvDbObjectPointer<TvDbBlockReference>(block)->attributeIds()) {
        const TvDbObjectPointer<TvDbAttribute> attribute(id);
        texts[attribute->tag()] = attribute->textString();
    }
    EXPECT_EQ(texts[samples::tag::kNumber], u"A-101");
    EXPECT_EQ(texts[samples::tag::kScale], u"1:100");
}

TEST_F(SampleTemplates, APenThatIsPutOnALayerThatIsNotThereThrows)
{
    samples::Sketch sketch(samples::Units::Inches);
    EXPECT_THROW(sketch.model().on(u"Walls"), std::runtime_error);
    EXPECT_THROW(sketch.layer(u"Walls", 1, 0.26), std::runtime_error); // no such width
}

} // namespace
