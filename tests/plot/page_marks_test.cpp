// How things are drawn on a page, and which are not.

#include "page_walk.h"
#include "plot_scene.h"

namespace {

/// Notes what a page draws, in millimetres.
class Notes : public plot::PageSink
{
public:
    struct Stroke {
        plot::Mark mark;
        gs::Box mm;
    };
    void usePlane(const gs::FlatMap& toMm) override { m_plane = toMm; }
    void stroke(const plot::Mark& mark, gs::PathView path) override
    {
        strokes.push_back({mark, {}});
        for (const TvGePoint2d& point : path.points)
            strokes.back().mm.add(m_plane * point);
    }
    void fill(const plot::Mark&, gs::PathView, bool) override {}
    void letters(const plot::Mark&, std::span<const plot::Letter> row, gs::PathView) override
    {
        for (const plot::Letter& letter : row)
            shown.add({letter.toMm.x0, letter.toMm.y0});
    }
    void hiddenText(const plot::Mark&, const gs::PlacedText& text) override
    {
        hidden.push_back(text.text.utf8());
    }

    std::vector<Stroke> strokes;
    gs::Box shown; ///< where letters begin
    std::vector<std::string> hidden;

private:
    gs::FlatMap m_plane;
};

class PageMarks : public testing::Test
{
protected:
    Notes notes(const plot::PageOptions& options = {})
    {
        auto page = plot::makePage(scene.database(), scene.layout, options);
        EXPECT_TRUE(page);
        Notes all;
        if (!page)
            return all;
        EXPECT_TRUE(plot::walkItems(*page, all, nullptr));
        plot::walkHiddenTexts(*page, all);
        return all;
    }
    std::vector<double> widths(const plot::PageOptions& options = {})
    {
        std::vector<double> all;
        for (const Notes::Stroke& stroke : notes(options).strokes)
            all.push_back(stroke.mark.widthMm);
        return all;
    }
    /// A line whose weight has that number in drawings.
    TvDbObjectId weighed(double y, int number)
    {
        const TvDbObjectId id = scene.addTo(scene.paper(), new TvDbLine({20, y, 0}, {100, y, 0}));
        TvDbObjectPointer<TvDbEntity>(id, TvDb::kForWrite)->edit().setInteger("lineweight", number);
        return id;
    }
    void plotFlags(std::int64_t flags)
    {
        scene.set([=](db::RecordEditor& fields) { fields.setInteger("plot_flags", flags); });
    }

    static constexpr int kOneMm = 17, kNoWeight = 0;
    static constexpr std::int64_t kWeights = 0x80, kScaledWeights = 0x40;
    PlotScene scene;
};

TEST_F(PageMarks, WeightsAreMillimetresAndWithoutOneALineIsThin)
{
    weighed(20, kOneMm);
    weighed(40, kNoWeight);

    EXPECT_EQ(widths(), (std::vector<double>{1, 0.05}));
    plotFlags(0);
    EXPECT_EQ(widths(), (std::vector<double>{0.1, 0.1})) << "weights are not plotted";
}

TEST_F(PageMarks, WeightsGrowWithTheScaleOnDemand)
{
    weighed(20, kOneMm);
    scene.set([](db::RecordEditor& fields) {
        fields.setReal("scale_numerator", 1);
        fields.setReal("scale_denominator", 2);
    });

    EXPECT_EQ(widths(), std::vector<double>{1});
    plotFlags(kWeights | kScaledWeights);
    EXPECT_EQ(widths(), std::vector<double>{0.5});
}

TEST_F(PageMarks, InMonochromeAllIsBlack)
{
    const TvDbObjectId line = weighed(20, kOneMm);
    TvDbObjectPointer<TvDbEntity>(line, TvDb::kForWrite)->setLayer(scene.addLayer(u"Red", 1));
    plot::PageOptions options;

    EXPECT_EQ(notes(options).strokes.at(0).mark.rgb, 0xFF0000U);
    options.isMonochrome = true;
    EXPECT_EQ(notes(options).strokes.at(0).mark.rgb, 0U);
}

TEST_F(PageMarks, AStyleTableCountsOnlyWhereItIsUsed)
{
    const TvDbObjectId line = weighed(20, kOneMm);
    TvDbObjectPointer<TvDbEntity>(line, TvDb::kForWrite)->setLayer(scene.addLayer(u"Red", 1));
    scene.set([](db::RecordEditor& fields) { fields.setText("style_sheet", u"monochrome.ctb"); });

    EXPECT_EQ(notes().strokes.at(0).mark.rgb, 0xFF0000U);
    plotFlags(kWeights | 0x20);
    EXPECT_EQ(notes().strokes.at(0).mark.rgb, 0U);
}

TEST_F(PageMarks, LayersThatAreNotPlottedAreLeftOut)
{
    const TvDbObjectId layer = scene.addLayer(u"Help", 7);
    const TvDbObjectId line = weighed(20, kOneMm);
    TvDbObjectPointer<TvDbEntity>(line, TvDb::kForWrite)->setLayer(layer);
    scene.text(u"Help", 50, 50);
    EXPECT_EQ(notes().strokes.size(), 2U);
    TvDbObjectPointer<TvDbLayerTableRecord>(layer, TvDb::kForWrite)->setIsPlottable(false);

    EXPECT_EQ(notes().strokes.size(), 1U) << "the text of strokes alone";
}

TEST_F(PageMarks, TextsOfStrokesAreHiddenTextsWhereTheyAreSeen)
{
    scene.text(u"Here", 50, 50);
    scene.text(u"Far away", 5000, 50);

    EXPECT_EQ(notes().hidden, std::vector<std::string>{"Here"});
}

TEST_F(PageMarks, WhatIsBesideThePaperIsNotDrawn)
{
    scene.line(1000, 1000, 2000, 1000);
    scene.line(20, 20, 30, 20);
    const Notes all = notes();

    ASSERT_EQ(all.strokes.size(), 1U);
    EXPECT_EQ(all.strokes[0].mm, (gs::Box{30, 30, 40, 30}));
}

TEST_F(PageMarks, AWideLineBesideThePaperReachesIntoIt)
{
    const TvDbObjectId line = scene.addTo(
        scene.paper(), new TvDbLine({100, -10.4, 0}, {200, -10.4, 0})); // 0.4 mm below the edge
    EXPECT_EQ(notes().strokes.size(), 0U);
    TvDbObjectPointer<TvDbEntity>(line, TvDb::kForWrite)->edit().setInteger("lineweight", kOneMm);

    EXPECT_EQ(notes().strokes.size(), 1U);
}

TEST_F(PageMarks, OfALineWithoutMeasureOnlyThePartNearThePaperIsDrawn)
{
    scene.line(-1e9, 100, 1e9, 100);
    const Notes all = notes();

    ASSERT_EQ(all.strokes.size(), 1U);
    EXPECT_LT(all.strokes[0].mm.lowX, 0);
    EXPECT_GT(all.strokes[0].mm.highX, 420);
    EXPECT_LT(all.strokes[0].mm.width(), 3000);
}

// The stamp

struct Corner {
    plot::Stamp::Corner corner;
    bool isRight, isUpper;
};

TEST_F(PageMarks, TheStampStandsInItsCorner)
{
    auto page = plot::makePage(scene.database(), scene.layout);
    ASSERT_TRUE(page);
    using Where = plot::Stamp::Corner;
    for (const Corner& each :
         {Corner{Where::LowerLeft, false, false}, Corner{Where::LowerRight, true, false},
          Corner{Where::UpperLeft, false, true}, Corner{Where::UpperRight, true, true}}) {
        plot::Stamp stamp;
        stamp.corner = each.corner;
        stamp.heightMm = 3;
        Notes all;
        plot::walkStamp(*page, stamp, u"House", all);
        ASSERT_FALSE(all.shown.isEmpty());
        EXPECT_NEAR(all.shown.lowY, each.isUpper ? 297 - 2 - 3 : 2, 1e-9);
        if (each.isRight)
            EXPECT_GT(all.shown.lowX, 400);
        else
            EXPECT_NEAR(all.shown.lowX, 2, 1e-9);
        EXPECT_LT(all.shown.highX, 418);
    }
}

TEST_F(PageMarks, AStampThatSaysNothingIsNotDrawn)
{
    auto page = plot::makePage(scene.database(), scene.layout);
    ASSERT_TRUE(page);
    Notes all;
    plot::walkStamp(*page, {}, u"", all);

    EXPECT_TRUE(all.shown.isEmpty());
    EXPECT_TRUE(all.strokes.empty());
}

TEST(StampText, TellsWhatIsWantedAndThere)
{
    const plot::StampFacts facts{u"House", u"A-1", u"Plan", u"plan.dwg", u"Sheet", u"2026-03-31"};
    plot::Stamp stamp;
    EXPECT_EQ(plot::stampText(stamp, facts), u"House | A-1 | Plan | 2026-03-31");
    stamp.hasDrawing = stamp.hasLayout = true;
    stamp.hasSetName = false;
    stamp.note = u"Draft";
    EXPECT_EQ(plot::stampText(stamp, facts), u"A-1 | Plan | plan.dwg | Sheet | 2026-03-31 | Draft");
    stamp.hasNumber = stamp.hasTitle = false;
    EXPECT_EQ(plot::stampText(stamp, {}), u"Draft");
    stamp.note = {};
    EXPECT_EQ(plot::stampText(stamp, {}), u"");
}

} // namespace
