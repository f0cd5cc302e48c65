// Pictures and colours that pass into each other, on pages.

#include "jpeg_bytes.h"

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
        printed("pdftoppm -scale-to-x 420 -scale-to-y 297 -singlefile " + path + ".pdf " + path);
        const std::string all = folder.read("out.ppm");
        const std::size_t size = std::size_t(420) * 297 * 3;
        ASSERT_GT(all.size(), size);
        const auto at = [&](int x, int y) { // from the lower left of the paper
            return static_cast<unsigned char>(
                all[all.size() - size + (std::size_t(296 - y) * 420 + std::size_t(x)) * 3]);
        };
        EXPECT_NEAR(at(60, 85), isGray ? 0x40 : 255, 8) << isGray;
        EXPECT_NEAR(at(60, 35), isGray ? 0xC0 : 0, 8) << isGray;
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
