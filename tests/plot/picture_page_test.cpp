// Pictures and colours that pass into each other, on pages.

#include "jpeg_bytes.h"

#include <functional>

#include <db/record_editor.h>
#include <db/tv_db_annotations.h>

#include "gradient_hatch.h"
#include "page_content.h"
#include "plot_scene.h"
#include "svg_painter.h"

namespace {

class PicturePage : public testing::Test
{
protected:
    /// An image of 100 by 100 mm, 10 mm from the edges of the paper.
    void addImage(const std::string& name, const std::string& bytes)
    {
        folder.write(name, bytes);
        auto* file = new TvDbRasterImageDef;
        file->setSourceFileName(folder.file(name));
        ASSERT_EQ(scene.database().addTvDbObject(lastFile, file), TvStatus::Ok);
        file->close();
        addImageOf(lastFile);
    }
    void addImageOf(TvDbObjectId file)
    {
        auto* image = new TvDbRasterImage;
        db::RecordEditor edit = image->edit();
        edit.setPoint("u_vec", {100 / 32.0, 0, 0});
        edit.setPoint("v_vec", {0, 100 / 32.0, 0});
        edit.setPoint("size", {32, 32, 0});
        edit.setInteger("display", 1);
        const TvDbObjectId id = scene.addTo(scene.paper(), image);
        TvDbObjectPointer<TvDbRasterImage>(id, TvDb::kForWrite)->setImageDefId(file);
    }
    plot::PageContent pdf()
    {
        const auto page = plot::makePage(scene.database(), scene.layout, {});
        EXPECT_TRUE(page);
        auto made = plot::pdfContentOf(*page, {}, {}, {}, nullptr);
        EXPECT_TRUE(made);
        return std::move(*made);
    }
    std::string svg(const plot::PageOptions& options = {})
    {
        const auto page = plot::makePage(scene.database(), scene.layout, options);
        EXPECT_TRUE(page);
        return plot::svgOf(*page, {}, {}, {}, nullptr).value_or("");
    }

    /// Red, green and blue at a place in mm from the lower left of the paper.
    using PaperSeen = std::function<std::uint32_t(int x, int y)>;
    /// The layout as another program shows its PDF.
    PaperSeen plotted()
    {
        plot::JobRequest request;
        request.target = folder.file("out.pdf");
        plot::PageOrder order;
        order.content = scene.bytes();
        order.layoutName = u"Plan";
        request.pages.push_back(order);
        plot::JobWatcher watcher;
        EXPECT_TRUE(plot::run(request, watcher).status);
        const std::string path = (folder.path() / "out").string();
        int code = 1;
        const std::string said = printed("qpdf --check " + path + ".pdf", &code);
        EXPECT_EQ(code, 0) << said;
        printed("pdftoppm -scale-to-x 420 -scale-to-y 297 -singlefile " + path + ".pdf " + path);
        const std::string all = folder.read("out.ppm");
        const std::size_t size = std::size_t(420) * 297 * 3;
        EXPECT_GT(all.size(), size);
        return [all, first = all.size() - std::min(size, all.size())](int x, int y) {
            const std::size_t pixel = first + (std::size_t(296 - y) * 420 + std::size_t(x)) * 3;
            std::uint32_t rgb = 0;
            for (std::size_t i = 0; i < 3; ++i)
                rgb = rgb << 8 | static_cast<unsigned char>(all.at(pixel + i));
            return rgb;
        };
    }
    /// Of its page the lowest quarter is drawn, in red: the left half of that hides what is below,
    /// the right one half of it. It is shown in the place of an image.
    void addUnderlay()
    {
        folder.write("plan.pdf",
                     "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
                     "2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
                     "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 72 72]/Contents 4 0 R/Resources"
                     "<</ExtGState<</G<</ca 0.5>>>>>>>>endobj\n"
                     "4 0 obj<</Length 51>>stream\n"
                     "1 0 0 rg 0 0 36 18 re f /G gs 36 0 36 18 re f      \nendstream endobj\n"
                     "trailer<</Root 1 0 R>>\n%%EOF\n");
        auto* file = new TvDbUnderlayDefinition;
        file->setSourceFileName(folder.file("plan.pdf"));
        file->edit().setText("item", u"1");
        ASSERT_EQ(scene.database().addTvDbObject(lastFile, file), TvStatus::Ok);
        file->close();
        const TvDbObjectId id = scene.addTo(scene.paper(), new TvDbUnderlayReference);
        const TvDbObjectPointer<TvDbUnderlayReference> page(id, TvDb::kForWrite);
        db::RecordEditor edit = page->edit();
        edit.setPoint("scale", {100, 100, 100});
        edit.setInteger("flags", 2);
        edit.setHandle("definition", lastFile.handle().value());
    }

    TempFolder folder;
    PlotScene scene;
    TvDbObjectId lastFile;
};

bool has(const std::string& text, const char* part)
{
    return text.find(part) != std::string::npos;
}

std::string pngOf(const gs::Picture& picture)
{
    const std::vector<std::uint8_t> bytes = gs::pngBytes(picture);
    return {bytes.begin(), bytes.end()};
}

TEST_F(PicturePage, APdfHasAJpegAsItIs)
{
    const std::string bytes = jpegBytes(redOverBlue());
    addImage("site.jpg", bytes);
    const plot::PageContent page = pdf();
    ASSERT_EQ(page.images.size(), 1U);
    EXPECT_TRUE(page.images[0].isJpeg);
    EXPECT_EQ(page.images[0].packed, bytes);
}

TEST_F(PicturePage, OtherProgramsShowTheJpegOfAPdf)
{
    if (!hasProgram("pdftoppm") || !hasProgram("qpdf"))
        GTEST_SKIP();
    gs::Picture gray = redOverBlue();
    for (std::uint32_t& pixel : gray.pixels)
        pixel = pixel == 0xFFFF0000 ? 0xFF404040 : 0xFFC0C0C0;
    for (const bool isGray : {false, true}) {
        addImage("site.jpg", jpegBytes(isGray ? gray : redOverBlue(), isGray));
        const PaperSeen at = plotted();
        EXPECT_NEAR(at(60, 85) >> 16, isGray ? 0x40 : 255, 8) << isGray;
        EXPECT_NEAR(at(60, 35) >> 16, isGray ? 0xC0 : 0, 8) << isGray;
    }
}

TEST_F(PicturePage, AnSvgHasAJpegAsItIs)
{
    addImage("site.jpg", jpegBytes(redOverBlue()));
    const std::string page = svg();
    EXPECT_TRUE(has(page, "href=\"data:image/jpeg;base64,/9j/")) << page;
    // Upright, in its place: 100 mm wide, from 110 mm above the lower edge downwards.
    EXPECT_TRUE(has(page, "matrix(10000 0 0 -10000 1000 28700) matrix(1 0 0 -1 0 1)")) << page;
}

TEST_F(PicturePage, AnSvgHasOtherPicturesAsPng)
{
    addImage("site.png", pngOf(redOverBlue()));
    const std::string page = svg();
    EXPECT_TRUE(has(page, "href=\"data:image/png;base64,iVBORw0KGgo")) << page;
}

TEST_F(PicturePage, APictureThatIsShownTwiceStandsInAnSvgOnce)
{
    addImage("site.png", pngOf(redOverBlue()));
    addImageOf(lastFile);
    const std::string page = svg();
    EXPECT_EQ(page.find("<image "), page.rfind("<image "));
    EXPECT_NE(page.find("<use href=\"#i0\""), page.rfind("<use href=\"#i0\""));
}

TEST_F(PicturePage, PagesOfUnderlaysArePlottedWithPaperThatShowsWhatIsBelow)
{
    if (!hasProgram("pdftoppm") || !hasProgram("qpdf"))
        GTEST_SKIP();
    addImage("site.jpg", jpegBytes(redOverBlue())); // blue below 60 mm
    addUnderlay();
    const PaperSeen at = plotted();
    EXPECT_NEAR(at(30, 20) >> 16, 255, 3);
    EXPECT_NEAR(at(30, 20) & 0xFF, 0, 3);
    EXPECT_NEAR(at(80, 20) >> 16, 127, 3);
    EXPECT_NEAR(at(80, 20) & 0xFF, 127, 3);
    EXPECT_NEAR(at(80, 50) >> 16, 0, 3); // nothing is on its paper there
    EXPECT_NEAR(at(80, 50) & 0xFF, 255, 3);
    EXPECT_TRUE(has(svg(), "href=\"data:image/png;base64,iVBORw0KGgo"));
}

TEST_F(PicturePage, AnSvgHasGradients)
{
    scene.addTo(scene.paper(), gradientHatch({}));
    const std::string page = svg();
    EXPECT_TRUE(has(page, "<linearGradient id=\"g0\" gradientUnits=\"userSpaceOnUse\" x1=\"0\" "
                          "y1=\"0\" x2=\"1\" y2=\"0\" gradientTransform=\"matrix(10000 0 0 -10000 "
                          "1000 28700)\"><stop offset=\"0\" stop-color=\"#ff0000\"/><stop "
                          "offset=\"1\" stop-color=\"#0000ff\"/></linearGradient>"))
        << page;
    EXPECT_TRUE(has(page, "fill=\"url(#g0)\""));
}

TEST_F(PicturePage, AnSvgHasRoundGradients)
{
    GradientLook look;
    look.name = u"SPHERICAL";
    scene.addTo(scene.paper(), gradientHatch(look));
    EXPECT_TRUE(has(svg(), "<radialGradient id=\"g0\""));
}

TEST_F(PicturePage, GradientsOfAnSvgHaveTheColoursThatThePageIsPlottedIn)
{
    scene.addTo(scene.paper(), gradientHatch({}));
    plot::PageOptions options;
    options.isMonochrome = true;
    const std::string page = svg(options);
    EXPECT_TRUE(has(page, "<stop offset=\"1\" stop-color=\"#000000\"/>")) << page;
    EXPECT_FALSE(has(page, "#0000ff"));
}

} // namespace
