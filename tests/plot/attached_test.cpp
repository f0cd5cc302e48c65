// Drawings within others, on paper: layers, texts, remarks, and the same bytes from any threads.

#include <db/attached_drawings.h>

#include "attached_scene.h"
#include "plot_scene.h"

namespace {

/// A sheet that shows "ref.dwg" (a line and a text on its layer "Walls") on its paper.
class PlotAttached : public testing::Test
{
protected:
    PlotAttached()
    {
        reference.line({0, 0, 0}, {100, 0, 0}, u"Walls", 1);
        auto* text = new TvDbText;
        text->setTextString(u"Lakeside");
        text->setPosition({10, 10, 0});
        text->setHeight(5);
        reference.add(text);
        reference.save(folder, "ref.dwg");
        scene.addTo(scene.paper(),
                    new TvDbBlockReference({50, 50, 0},
                                           attachDrawing(scene.database(), u"Ref", u"ref.dwg")));
        EXPECT_EQ(scene.database().saveAs(folder.file("plan.dwg")), TvStatus::Ok);
    }
    plot::JobReport plotTo(const char* file, int pages, int jobs,
                           plot::Output output = plot::Output::OnePdf)
    {
        plot::JobRequest request;
        request.output = output;
        request.target = folder.file(file);
        request.jobs = jobs;
        plot::PageOrder order;
        order.drawing = folder.file("plan.dwg");
        order.content = content;
        order.layoutName = u"Plan";
        order.number = u"A-1";
        request.pages.assign(static_cast<std::size_t>(pages), order);
        plot::JobWatcher watcher;
        return plot::run(request, watcher);
    }
    std::string path(const char* name) const { return (folder.path() / name).string(); }

    TempFolder folder;
    AttachedScene reference;
    PlotScene scene;
    std::shared_ptr<const std::vector<std::uint8_t>> content;
};

} // namespace

TEST_F(PlotAttached, IsOnItsOwnLayersAndItsTextsCanBeSearched)
{
    const plot::JobReport report = plotTo("out.pdf", 1, 1);
    ASSERT_TRUE(report.status);
    EXPECT_TRUE(report.pages[0].remarks.empty());
    if (!hasProgram("qpdf") || !hasProgram("pdftotext"))
        GTEST_SKIP() << "qpdf and pdftotext look into the file";
    EXPECT_NE(
        printed("qpdf --qdf --object-streams=disable " + path("out.pdf") + " -").find("Ref|Walls"),
        std::string::npos);
    EXPECT_NE(printed("pdftotext " + path("out.pdf") + " -").find("Lakeside"), std::string::npos);
}

TEST_F(PlotAttached, IsInSvgToo)
{
    ASSERT_TRUE(plotTo("svg", 1, 1, plot::Output::SvgPerSheet).status);
    EXPECT_NE(folder.read("svg/A-1.svg").find("inkscape:label=\"Ref|Walls\""), std::string::npos);
}

TEST_F(PlotAttached, GivesTheSameBytesFromOneThreadAndFromMany)
{
    ASSERT_TRUE(plotTo("one.pdf", 8, 1).status);
    ASSERT_TRUE(plotTo("many.pdf", 8, 4).status);
    EXPECT_EQ(folder.read("one.pdf"), folder.read("many.pdf"));
}

TEST_F(PlotAttached, BeginsAtTheDrawingThatIsBeingEdited)
{
    content = scene.bytes();
    const plot::JobReport report = plotTo("edited.pdf", 1, 1);
    ASSERT_TRUE(report.status);
    EXPECT_TRUE(report.pages[0].remarks.empty());
    content.reset();
    ASSERT_TRUE(plotTo("saved.pdf", 1, 1).status);
    EXPECT_EQ(folder.read("edited.pdf"), folder.read("saved.pdf"));
}

TEST_F(PlotAttached, ThatIsMissingIsRemarkedAndTheSheetIsMade)
{
    std::filesystem::remove(folder.path() / "ref.dwg");
    const plot::JobReport report = plotTo("out.pdf", 2, 2);
    ASSERT_TRUE(report.status);
    EXPECT_EQ(report.failures(), 0U);
    for (const plot::PageOutcome& page : report.pages) {
        ASSERT_EQ(page.remarks.size(), 1U);
        EXPECT_EQ(page.remarks[0].reason(), db::kXrefMissing);
        EXPECT_EQ(page.remarks[0].arguments(), (std::vector<TvString>{u"Ref", u"ref.dwg"}));
    }
    if (!hasProgram("pdftotext"))
        GTEST_SKIP() << "pdftotext reads the file";
    EXPECT_NE(printed("pdftotext " + path("out.pdf") + " -").find("ref.dwg"), std::string::npos);
}

TEST_F(PlotAttached, PagesShareOneReading)
{
    db::AttachedDrawings attached;
    plot::PageOptions options;
    options.attached = &attached;
    for (int i = 0; i < 3; ++i) {
        TvDbDatabase drawing(false, true);
        ASSERT_EQ(drawing.readDwgFile(folder.file("plan.dwg")), TvStatus::Ok);
        const auto page = plot::makePage(drawing, plot::findLayout(drawing, 0, u"Plan"), options);
        ASSERT_TRUE(page);
        EXPECT_FALSE(page->list.items().empty());
    }
    EXPECT_EQ(attached.loads(), 1U);
}
