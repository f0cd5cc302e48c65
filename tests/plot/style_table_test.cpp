#include <gtest/gtest.h>

#include <db/palette.h>
#include <db/record_editor.h>
#include <db/tv_db_dictionary.h>
#include <plot/style_table.h>

#include "inflate.h"
#include "page_walk.h"
#include "plot_scene.h"

namespace {

class Placeholder : public TvDbObject
{
public:
    Placeholder() : TvDbObject("PLACEHOLDER") {}
};

std::string tableOf(const std::string& text, const std::string& kind = "CTBVER1")
{
    std::string bytes = "PIAFILEVERSION_2.0," + kind + ",compress\r\npmzlibcodec";
    bytes.resize(60, '\0');
    return bytes + plot::deflated(text, 6);
}

std::optional<plot::StyleTable> read(const std::string& bytes)
{
    return plot::StyleTable::fromBytes(std::as_bytes(std::span(bytes)));
}

TEST(StyleTable, GivesColoursAndWeightsByNumberOfColour)
{
    const auto table = read(tableOf("plot_style{\n 0{\n  name=\"Color_1\n  color=255\n"
                                    "  lineweight=2\n  screen=50\n }\n 1{\n  color=-1\n }\n}\n"
                                    "custom_lineweight_table{\n 0=0.0\n 1=0.35\n}\n"));
    ASSERT_TRUE(table);
    const std::uint32_t red = db::paletteColor(1), yellow = db::paletteColor(2);

    EXPECT_EQ(table->plotted(red), 0x8080FFU); // half of blue
    EXPECT_FLOAT_EQ(table->styleOf(red).weightMm.value_or(0), 0.35F);
    EXPECT_EQ(table->plotted(yellow), yellow);
    EXPECT_EQ(table->plotted(0x123456), 0x123456U); // no number of the palette
}

const char* const kNamed =
    "plot_style{\n 0{\n  name=\"Normal\n  color=-1\n }\n 1{\n  name=\"Thin red\n"
    "  color=-1023475712\n  mode_color=16711680\n  lineweight=2\n  screen=50\n }\n}\n"
    "custom_lineweight_table{\n 0=0.0\n 1=0.35\n}\n";

TEST(StyleTable, GivesColoursAndWeightsByName)
{
    const auto table = read(tableOf(kNamed, "STBVER1"));
    ASSERT_TRUE(table);
    const plot::PlotStyle* const thin = table->named(u"THIN RED");
    ASSERT_NE(thin, nullptr);
    EXPECT_EQ(thin->plotted(0x123456), 0xFF8080U); // half of red
    EXPECT_FLOAT_EQ(thin->weightMm.value_or(0), 0.35F);
    EXPECT_EQ(table->named(u"Normal")->plotted(0x123456), 0x123456U);
    EXPECT_EQ(*table->named(u"nobody's"), plot::PlotStyle());
    EXPECT_EQ(table->plotted(db::paletteColor(2)), db::paletteColor(2)); // colours say nothing
    EXPECT_EQ(plot::StyleTable().named(u"Normal"), nullptr);
}

/// Notes how lines are drawn.
class StrokeNotes : public plot::PageSink
{
public:
    void usePlane(const gs::FlatMap&) override {}
    void stroke(const plot::Mark& mark, gs::PathView) override { marks.push_back(mark); }
    void fill(const plot::Mark&, gs::PathView, bool) override {}
    void letters(const plot::Mark&, std::span<const plot::Letter>, gs::PathView) override {}
    void hiddenText(const plot::Mark&, const gs::PlacedText&) override {}

    std::vector<plot::Mark> marks;
};

TEST(StyleTable, ObjectsArePlottedByTheNamesOfTheirStylesOrTheirLayers)
{
    PlotScene scene;
    TvDbDatabase& database = scene.database();
    const TvDbObjectPointer<TvDbDictionary> root(database.namedObjectsDictionaryId(),
                                                 TvDb::kForNotify);
    TvDbObjectId names, style;
    ASSERT_EQ(root->getAt(TvString(u"ACAD_PLOTSTYLENAME"), names), TvStatus::Ok);
    auto* placeholder = new Placeholder;
    ASSERT_EQ(TvDbObjectPointer<TvDbDictionary>(names, TvDb::kForWrite)
                  ->setAt(TvString(u"Thin red"), placeholder, style),
              TvStatus::Ok);
    placeholder->close();
    db::RecordEditor header = database.editHeader();
    header.setInteger("FLAGS", database.headerRecord().integer("FLAGS") & ~std::int64_t(0x2000));
    scene.line(20, 20, 100, 20); // of the layer's style, which is the usual one
    const TvDbObjectId own = scene.addTo(scene.paper(), new TvDbLine({20, 40, 0}, {100, 40, 0}));
    {
        TvDbObjectPointer<TvDbEntity> line(own, TvDb::kForWrite);
        line->edit().setInteger("plotstyle_flags", 3);
        line->edit().setHandle("plotstyle", style.handle().value());
    }
    const TvDbObjectId layer = scene.addLayer(u"THIN", 7);
    TvDbObjectPointer<TvDbObject>(layer, TvDb::kForWrite)
        ->edit()
        .setHandle("plotstyle", style.handle().value());
    const TvDbObjectId onLayer =
        scene.addTo(scene.paper(), new TvDbLine({20, 60, 0}, {100, 60, 0}));
    TvDbObjectPointer<TvDbEntity>(onLayer, TvDb::kForWrite)->setLayer(layer);

    auto page = plot::makePage(database, scene.layout, {});
    ASSERT_TRUE(page);
    page->styles = read(tableOf(kNamed, "STBVER1")).value_or(plot::StyleTable());
    page->plotsWeights = true;
    StrokeNotes notes;
    plot::walkItems(*page, notes, nullptr);
    ASSERT_EQ(notes.marks.size(), 3U);
    EXPECT_EQ(notes.marks[0].rgb, 0U);
    EXPECT_EQ(notes.marks[1].rgb, 0xFF8080U);
    EXPECT_NEAR(notes.marks[1].widthMm, 0.35, 1e-6);
    EXPECT_EQ(notes.marks[2].rgb, 0xFF8080U);
}

TEST(StyleTable, WhatIsNoTableIsRefused)
{
    EXPECT_FALSE(read(""));
    EXPECT_FALSE(read(std::string(200, 'x')));
    std::string cut = tableOf("plot_style{\n 0{\n");
    cut.resize(cut.size() - 4);
    EXPECT_FALSE(read(cut));
}

TEST(StyleTable, ATableThatUnpacksWithoutEndIsRefused)
{
    EXPECT_FALSE(read(tableOf(std::string(std::size_t(32) << 20, 'a'))));
}

TEST(StyleTable, BlackIsKnownByItsUsualName)
{
    const auto table = plot::StyleTable::find(u"MONOCHROME.ctb", u"/nowhere/plan.dwg");
    ASSERT_TRUE(table);
    EXPECT_EQ(table->plotted(0x123456), 0U);
    EXPECT_FALSE(plot::StyleTable::find(u"other.ctb", u"/nowhere/plan.dwg"));
}

} // namespace
