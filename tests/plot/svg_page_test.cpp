// Pages as SVG.

#include <cmath>

#include "plot_scene.h"
#include "svg_painter.h"

namespace {

class SvgPage : public testing::Test
{
protected:
    std::string svg()
    {
        const auto page = plot::makePage(scene.database(), scene.layout);
        EXPECT_TRUE(page);
        return plot::svgOf(*page, order, {}, options, nullptr).value_or("");
    }
    bool holds(const char* part) { return svg().find(part) != std::string::npos; }

    PlotScene scene;
    plot::PageOrder order;
    plot::PdfOptions options;
};

TEST_F(SvgPage, IsCalledAsItsSheet)
{
    order.title = u"Ground & \"more\" <1>";
    EXPECT_TRUE(holds("<title>Ground &amp; &quot;more&quot; &lt;1&gt;</title>"));
    order.number = u"A-1";
    order.title = u"Ground";
    EXPECT_TRUE(holds("<title>A-1 Ground</title>"));
}

TEST_F(SvgPage, LayersAreGroupsAndAreLeftOutOnDemand)
{
    scene.line(10, 10, 100, 10);
    EXPECT_TRUE(holds("inkscape:groupmode=\"layer\" inkscape:label=\"0\""));
    options.hasLayers = false;
    EXPECT_FALSE(holds("inkscape:groupmode"));
}

TEST_F(SvgPage, TextCanBeSearchedWhereItIsPlotted)
{
    scene.text(u"Kitchen", 100, 100);
    scene.text(u"Outside", 5000, 100);
    EXPECT_TRUE(holds(">Kitchen</text>"));
    EXPECT_FALSE(holds(">Outside</text>"));
    options.hasText = false;
    EXPECT_FALSE(holds("<text"));
    options.hasText = true;
    const TvDbObjectId layer = scene.addLayer(u"Help", 7);
    TvDbObjectPointer<TvDbLayerTableRecord>(layer, TvDb::kForWrite)->setIsPlottable(false);
    auto* help = new TvDbText;
    help->setTextString(u"Help");
    help->setPosition({50, 50, 0});
    help->setHeight(5);
    help->setLayer(layer);
    scene.addTo(scene.paper(), help);
    EXPECT_FALSE(holds(">Help</text>"));
    EXPECT_TRUE(holds(">Kitchen</text>"));
}

TEST_F(SvgPage, ATurnedTextIsTurned)
{
    auto* text = new TvDbText;
    text->setTextString(u"Up");
    text->setPosition({50, 50, 0});
    text->setHeight(5);
    text->setRotation(std::acos(0.0));
    scene.addTo(scene.paper(), text);
    EXPECT_TRUE(holds("transform=\"rotate(-90.00 ")) << "as SVG turns";
}

TEST_F(SvgPage, LinesThatLookTheSameShareAnElement)
{
    for (int i = 0; i < 10; ++i)
        scene.line(10, 10 + i, 100, 10 + i);
    const std::string text = svg();
    const std::size_t first = text.find("<path fill=\"none\"");
    ASSERT_NE(first, std::string::npos);
    EXPECT_EQ(text.find("<path fill=\"none\"", first + 1), std::string::npos);
}

TEST_F(SvgPage, TheStampIsDrawn)
{
    const std::size_t without = svg().size();
    order.stamp = plot::StampFacts{u"House", {}, {}, {}, {}, {}};
    EXPECT_GT(svg().size(), without + 200);
}

} // namespace
