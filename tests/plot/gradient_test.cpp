// Areas whose colours pass into each other, on the pages of a PDF.

#include "gradient_hatch.h"
#include "inflate.h"
#include "page_content.h"
#include "plot_scene.h"

namespace {

using Stops = std::vector<std::pair<double, std::uint32_t>>;

constexpr std::uint32_t kRed = 0xFF0000, kBlue = 0x0000FF;

class PdfGradient : public testing::Test
{
protected:
    /// The hatch lies in the lower left of the sheet, 10 mm from the edges of the paper.
    void add(const GradientLook& look) { scene.addTo(scene.paper(), gradientHatch(look)); }

    plot::PageContent content(const plot::PageOptions& options = {})
    {
        const auto page = plot::makePage(scene.database(), scene.layout, options);
        EXPECT_TRUE(page);
        auto made = plot::pdfContentOf(*page, {}, {}, {}, nullptr);
        EXPECT_TRUE(made);
        return std::move(*made);
    }
    static std::string operatorsOf(const plot::PageContent& content)
    {
        return plot::inflated(std::as_bytes(std::span(content.stream)), 1 << 20).value_or("");
    }

    PlotScene scene;
};

TEST_F(PdfGradient, IsAShadingWithinItsArea)
{
    add({});
    const plot::PageContent page = content();

    ASSERT_EQ(page.shadings.size(), 1U);
    EXPECT_FALSE(page.shadings[0].isRound);
    EXPECT_EQ(page.shadings[0].stops, (Stops{{0, kRed}, {1, kBlue}}));
    EXPECT_TRUE(page.images.empty());
    // The area cuts, and the shading's own square of 100 mm lies there.
    const std::string operators = operatorsOf(page);
    EXPECT_NE(operators.find("q\n1000 1000 m\n11000 1000 l\n11000 11000 l\n1000 11000 l\n"),
              std::string::npos)
        << operators;
    EXPECT_NE(operators.find("W* n\n10000 0 0 10000 1000 1000 cm\n/S0 sh Q\n"), std::string::npos)
        << operators;
}

TEST_F(PdfGradient, RoundABallComesFromTheMiddle)
{
    GradientLook look;
    look.name = u"SPHERICAL";
    add(look);
    const plot::PageContent page = content();

    ASSERT_EQ(page.shadings.size(), 1U);
    EXPECT_TRUE(page.shadings[0].isRound);
    EXPECT_EQ(page.shadings[0].stops, (Stops{{0, kBlue}, {1, kRed}}));
}

TEST_F(PdfGradient, HasTheColoursThatThePageIsPlottedIn)
{
    add({});
    plot::PageOptions options;
    options.isMonochrome = true;
    const plot::PageContent page = content(options);

    ASSERT_EQ(page.shadings.size(), 1U);
    EXPECT_EQ(page.shadings[0].stops, (Stops{{0, 0}, {1, 0}}));
}

/// The page of a finished file as another program paints it, a pixel for each millimetre.
class PaintedGradient : public PdfGradient
{
protected:
    void SetUp() override
    {
        if (!hasProgram("pdftoppm") || !hasProgram("qpdf"))
            GTEST_SKIP();
    }
    void paint()
    {
        plot::JobRequest request;
        request.target = folder.file("out.pdf");
        plot::PageOrder order;
        order.content = scene.bytes();
        order.layoutName = u"Plan";
        request.pages.push_back(order);
        plot::JobWatcher watcher;
        ASSERT_TRUE(plot::run(request, watcher).status);
        const std::string path = (folder.path() / "out").string();
        int code = 1;
        const std::string said = printed("qpdf --check " + path + ".pdf", &code);
        EXPECT_EQ(code, 0) << said;
        EXPECT_EQ(printed("pdftoppm -scale-to-x 420 -scale-to-y 297 -singlefile " + path + ".pdf " +
                          path),
                  "");
        const std::string all = folder.read("out.ppm");
        const std::size_t size = std::size_t(kWidth) * kHeight * 3;
        ASSERT_TRUE(all.starts_with("P6\n420 297\n255\n")) << all.substr(0, 20);
        pixels = all.substr(all.size() - size);
    }
    /// In millimetres from the lower left of the hatch: red, green, blue from 0 to 1.
    std::array<double, 3> at(int x, int y) const
    {
        const std::size_t pixel = std::size_t(kHeight - 1 - (y + 10)) * kWidth + x + 10;
        std::array<double, 3> color;
        for (std::size_t i = 0; i < 3; ++i)
            color[i] = static_cast<unsigned char>(pixels.at(pixel * 3 + i)) / 255.0;
        return color;
    }
    void expectBlueness(int x, int y, double blueness) const
    {
        const auto [red, green, blue] = at(x, y);
        EXPECT_NEAR(blue, blueness, 0.05) << x << ", " << y;
        EXPECT_NEAR(red, 1 - blueness, 0.05) << x << ", " << y;
        EXPECT_NEAR(green, 0, 0.05) << x << ", " << y;
    }

    static constexpr int kWidth = 420, kHeight = 297;
    TempFolder folder;
    std::string pixels;
};

TEST_F(PaintedGradient, RunsFromItsFirstColourToItsLast)
{
    add({});
    paint();

    expectBlueness(3, 50, 0.03);
    expectBlueness(25, 10, 0.25);
    expectBlueness(75, 90, 0.75);
    expectBlueness(97, 50, 0.97);
    EXPECT_EQ(at(103, 50), (std::array<double, 3>{1, 1, 1}));
    EXPECT_EQ(at(50, 103), (std::array<double, 3>{1, 1, 1}));
}

TEST_F(PaintedGradient, GoesThereAndBackOnACylinder)
{
    GradientLook look;
    look.name = u"CYLINDER";
    add(look);
    ASSERT_EQ(content().shadings[0].stops.size(), 4U);
    paint();

    expectBlueness(3, 50, 0.06);
    expectBlueness(25, 50, 0.5);
    expectBlueness(50, 50, 1);
    expectBlueness(75, 50, 0.5);
    expectBlueness(97, 50, 0.06);
}

} // namespace
