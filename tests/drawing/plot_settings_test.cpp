// How layouts are put on paper.

#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>

#include "real_drawing.h"

namespace {

/// A sheet of 200 by 100 mm with another margin on each side.
void setSheet(db::RecordEditor fields)
{
    fields.setReal("paper_width", 200);
    fields.setReal("paper_height", 100);
    fields.setReal("margin_left", 1);
    fields.setReal("margin_bottom", 2);
    fields.setReal("margin_right", 3);
    fields.setReal("margin_top", 4);
    fields.setInteger("paper_units", TvDbPlotSettings::kMillimeters);
    fields.setPoint("plot_origin", {});
}

void expectArea(const TvDbLayout& layout, const db::Point& low, const db::Point& high)
{
    db::Point a, b;
    ASSERT_EQ(layout.getPaperArea(a, b), TvStatus::Ok);
    EXPECT_NEAR(a.x, low.x, 1e-9);
    EXPECT_NEAR(a.y, low.y, 1e-9);
    EXPECT_NEAR(b.x, high.x, 1e-9);
    EXPECT_NEAR(b.y, high.y, 1e-9);
}

class PlotSettingsTest : public testing::TestWithParam<std::string>
{
protected:
    PlotSettingsTest() : drawing(openBytes(minimalDrawing("line-" + GetParam() + ".dwg"))) {}
    TvDbObjectId layout() const { return db::layoutsInTabOrder(*drawing)[1]; }
    std::unique_ptr<TvDbDatabase> drawing;
};
INSTANTIATE_TEST_SUITE_P(Versions, PlotSettingsTest, testing::ValuesIn(versionNames()),
                         [](const auto& version) { return version.param; });

} // namespace

TEST(PlotSettings, PaperLiesAroundThePrintableAreaAsItIsTurned)
{
    TvDbLayout layout;
    setSheet(layout.edit());
    double width = 0, height = 0;
    ASSERT_EQ(layout.getPlotPaperSize(width, height), TvStatus::Ok);
    EXPECT_EQ(width, 200);
    EXPECT_EQ(height, 100);
    expectArea(layout, {-1, -2}, {199, 98});
    layout.edit().setInteger("rotation", TvDbPlotSettings::k90degrees);
    EXPECT_EQ(layout.plotRotation(), TvDbPlotSettings::k90degrees);
    expectArea(layout, {-4, -1}, {96, 199});
    layout.edit().setInteger("rotation", TvDbPlotSettings::k180degrees);
    expectArea(layout, {-3, -4}, {197, 96});
    layout.edit().setInteger("rotation", TvDbPlotSettings::k270degrees);
    expectArea(layout, {-2, -3}, {98, 197});
}

TEST(PlotSettings, PaperIsMeasuredInTheUnitsAndTheScaleOfTheLayout)
{
    TvDbLayout layout;
    setSheet(layout.edit());
    layout.edit().setInteger("paper_units", TvDbPlotSettings::kInches);
    EXPECT_EQ(layout.plotPaperUnits(), TvDbPlotSettings::kInches);
    expectArea(layout, {-1 / 25.4, -2 / 25.4}, {199 / 25.4, 98 / 25.4});
    double width = 0, height = 0;
    layout.getPlotPaperSize(width, height);
    EXPECT_EQ(width, 200) << "millimetres, whatever the units";
    layout.edit().setInteger("paper_units", TvDbPlotSettings::kMillimeters);
    layout.edit().setInteger("plot_flags", 0);
    layout.edit().setReal("scale_numerator", 1);
    layout.edit().setReal("scale_denominator", 2);
    double numerator = 0, denominator = 0;
    EXPECT_EQ(layout.getCustomPrintScale(numerator, denominator), 0.5);
    EXPECT_EQ(denominator, 2);
    expectArea(layout, {-2, -4}, {398, 196});
}

TEST(PlotSettings, WithoutAPaperTheLimitsAreTheSheet)
{
    TvDbLayout layout;
    layout.edit().setPoint("limmin", {1, 2});
    layout.edit().setPoint("limmax", {30, 40});
    double width = 0, height = 0;
    EXPECT_EQ(layout.getPlotPaperSize(width, height), TvStatus::NotApplicable);
    expectArea(layout, {1, 2}, {30, 40});
    layout.edit().setPoint("limmax", {1, 2});
    db::Point low, high;
    EXPECT_EQ(layout.getPaperArea(low, high), TvStatus::NotApplicable);
}

TEST(PlotSettings, WhatNoOneKnowsIsTheUsual)
{
    TvDbLayout layout;
    layout.edit().setInteger("paper_units", 9);
    layout.edit().setInteger("plot_type", 9);
    layout.edit().setInteger("rotation", 7);
    layout.edit().setInteger("plot_flags", 0);
    layout.edit().setReal("scale_denominator", 0);
    EXPECT_EQ(layout.plotPaperUnits(), TvDbPlotSettings::kMillimeters);
    EXPECT_EQ(layout.plotType(), TvDbPlotSettings::kLayout);
    EXPECT_EQ(layout.plotRotation(), TvDbPlotSettings::k270degrees);
    double numerator = 0, denominator = 0;
    EXPECT_EQ(layout.getCustomPrintScale(numerator, denominator), 1);
    EXPECT_FALSE(layout.isModelType());
}

TEST_P(PlotSettingsTest, AreTakenOverButForNameAndPlace)
{
    TvDbPlotSettings setup;
    {
        db::RecordEditor fields = setup.edit();
        setSheet(fields);
        fields.setText("page_setup_name", u"My setup");
        fields.setText("plotter_config", u"Printer");
        fields.setText("paper_size_name", u"Paper");
        fields.setText("style_sheet", u"mono.ctb");
        fields.setInteger("rotation", 1);
        fields.setInteger("plot_type", TvDbPlotSettings::kWindow);
        fields.setPoint("window_ll", {1, 2});
        fields.setPoint("window_ur", {3, 4});
        fields.setPoint("plot_origin", {5, 6});
    }
    const TvDbObjectId id = layout();
    const TvString name = TvDbObjectPointer<TvDbLayout>(id)->getLayoutName();
    const TvDbObjectId block = TvDbObjectPointer<TvDbLayout>(id)->getBlockTableRecordId();
    EXPECT_EQ(TvDbObjectPointer<TvDbLayout>(id)->copyFrom(setup), TvStatus::NotOpenForWrite);
    ASSERT_EQ(TvDbObjectPointer<TvDbLayout>(id, TvDb::kForWrite)->copyFrom(setup), TvStatus::Ok);
    const auto read = savedAndRead(*drawing);
    ASSERT_TRUE(read);
    const TvDbObjectPointer<TvDbLayout> taken(read->find(id.handle().value()));
    EXPECT_EQ(taken->getLayoutName(), name);
    EXPECT_EQ(taken->getBlockTableRecordId().handle(), block.handle());
    EXPECT_EQ(taken->getPlotSettingsName(), u"My setup");
    EXPECT_EQ(taken->getPlotCfgName(), u"Printer");
    EXPECT_EQ(taken->getCanonicalMediaName(), u"Paper");
    EXPECT_EQ(taken->getCurrentStyleSheet(), u"mono.ctb");
    EXPECT_EQ(taken->plotRotation(), TvDbPlotSettings::k90degrees);
    EXPECT_EQ(taken->plotType(), TvDbPlotSettings::kWindow);
    double a = 0, b = 0, c = 0, d = 0;
    taken->getPlotWindowArea(a, b, c, d);
    EXPECT_EQ((std::vector{a, b, c, d}), (std::vector<double>{1, 2, 3, 4}));
    taken->getPlotPaperMargins(a, b, c, d);
    EXPECT_EQ((std::vector{a, b, c, d}), (std::vector<double>{1, 2, 3, 4}));
    taken->getPlotOrigin(a, b);
    EXPECT_EQ((std::vector{a, b}), (std::vector<double>{5, 6}));
    EXPECT_FALSE(taken->isModelType());
}

TEST(PlotSettings, OfRealModelLayoutsAreOfTheModelType)
{
    forEachDrawing(".dwg", [](TvDbDatabase& drawing, const nlohmann::json&) {
        for (const TvDbObjectId id : db::layoutsInTabOrder(drawing)) {
            const TvDbObjectPointer<TvDbLayout> layout(id);
            EXPECT_EQ(layout->isModelType(), layout->isModelLayout())
                << layout->getLayoutName().utf8();
        }
    });
}

// --- the pictures of blocks

TEST(BlockPreviews, OfRealDrawingsAreWholePictures)
{
    int pictures = 0;
    forEachDrawing("mixed", [&](TvDbDatabase& drawing, const nlohmann::json&) {
        const TvDbObjectPointer<TvDbBlockTable> blocks(
            drawing.symbolTableId(TvDb::SymbolTable::Block));
        for (const TvDbObjectId id : blocks->recordIds()) {
            const TvDbObjectPointer<TvDbBlockTableRecord> block(id);
            const db::Preview picture = block->previewIcon();
            const bool hasBytes = !block->fields().bytes("preview").empty();
            EXPECT_EQ(picture.kind != db::Preview::Kind::None, hasBytes);
            if (!hasBytes)
                continue;
            ++pictures;
            EXPECT_EQ(picture.kind, db::Preview::Kind::Bmp);
            EXPECT_EQ(picture.bytes[0], 40) << "from its info header on";
        }
    });
    if (!realDrawings("mixed").empty()) {
        EXPECT_GT(pictures, 0);
    }
}

TEST(BlockPreviews, OfOtherBytesAreNone)
{
    TvDbBlockTableRecord block;
    EXPECT_EQ(block.previewIcon().kind, db::Preview::Kind::None);
    const std::uint8_t odd[] = {40, 0, 0, 0};
    block.edit().setBytes("preview", odd);
    EXPECT_EQ(block.previewIcon().kind, db::Preview::Kind::None) << "nothing behind the size";
}
