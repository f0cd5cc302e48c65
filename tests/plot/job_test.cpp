// Lists of layouts become files.

#include <filesystem>

#include <plot/reasons.h>

#include "plot_scene.h"

namespace {

namespace fs = std::filesystem;

/// Notes what it is told.
struct Watcher : plot::JobWatcher {
    void pageDone(std::size_t page, const plot::PageOutcome&) override { done.push_back(page); }
    std::vector<std::size_t> done;
};

plot::PageOrder orderOf(PlotScene& scene, const TvChar* number, const TvChar* title)
{
    plot::PageOrder order;
    order.drawing = u"plan.dwg";
    order.content = scene.bytes();
    order.layoutName = u"Plan";
    order.number = number;
    order.title = title;
    return order;
}

class PlotJob : public testing::Test
{
protected:
    PlotJob()
    {
        scene.line(0, 0, 400, 277);
        scene.text(u"Ground floor", 100, 100);
        request.target = folder.file("out.pdf");
        request.info.title = u"House <A> & B";
        request.info.author = u"Nobody";
    }
    void addPages(int count)
    {
        const plot::PageOrder first = orderOf(scene, u"", u"");
        for (int i = 1; i <= count; ++i) {
            request.pages.push_back(first);
            request.pages.back().number.format(TvString(u"A-%03d"), i);
            request.pages.back().title.format(TvString(u"Sheet %d"), i);
            request.pages.back().subsets = {u"Architect", i % 2 ? u"Odd" : u"Even"};
        }
    }
    plot::JobReport run() { return plot::run(request, watcher); }
    std::string path(const char* name) { return (folder.path() / name).string(); }

    TempFolder folder;
    PlotScene scene;
    plot::JobRequest request;
    Watcher watcher;
};

TEST_F(PlotJob, OnePdfHoldsAllPagesInOrderAndIsSound)
{
    addPages(3);
    const plot::JobReport report = run();

    ASSERT_TRUE(report.status);
    EXPECT_EQ(report.failures(), 0U);
    EXPECT_EQ(watcher.done, (std::vector<std::size_t>{0, 1, 2}));
    EXPECT_EQ(report.files, std::vector<TvString>{request.target});
    EXPECT_TRUE(folder.read("out.pdf").starts_with("%PDF-1."));
    if (hasProgram("qpdf")) {
        int code = 0;
        const std::string said = printed("qpdf --check " + path("out.pdf"), &code);
        EXPECT_EQ(code, 0) << said;
    }
    if (hasProgram("pdfinfo")) {
        const std::string info = printed("pdfinfo " + path("out.pdf"));
        EXPECT_NE(info.find("Pages:           3"), std::string::npos) << info;
        EXPECT_NE(info.find("House <A> & B"), std::string::npos) << info;
        EXPECT_NE(info.find("1190.55 x 841.89 pts"), std::string::npos) << info;
        EXPECT_EQ(info.find("CreationDate"), std::string::npos) << info;
    }
}

TEST_F(PlotJob, TextOfStrokesCanBeFound)
{
    addPages(1);
    ASSERT_TRUE(run().status);
    if (!hasProgram("pdftotext"))
        GTEST_SKIP();

    EXPECT_NE(printed("pdftotext " + path("out.pdf") + " -").find("Ground floor"),
              std::string::npos);
}

TEST_F(PlotJob, TheBytesAreTheSameEachTimeAndForAnyNumberOfJobs)
{
    addPages(7);
    ASSERT_TRUE(run().status);
    const std::string first = folder.read("out.pdf");
    request.jobs = 2;
    ASSERT_TRUE(run().status);
    EXPECT_EQ(folder.read("out.pdf"), first);
}

TEST_F(PlotJob, APageThatFailsIsToldAndTheOthersAreMade)
{
    addPages(3);
    request.pages[1].layoutName = u"Nowhere";
    const plot::JobReport report = run();

    ASSERT_TRUE(report.status);
    EXPECT_EQ(report.failures(), 1U);
    EXPECT_EQ(report.pages[1].status.reason(), plot::kLayoutMissing);
    EXPECT_TRUE(report.pages[1].file.isEmpty());
    EXPECT_TRUE(report.pages[2].status);
}

TEST_F(PlotJob, WhenAllPagesFailNothingIsWritten)
{
    addPages(1);
    request.pages[0].content = nullptr;
    request.pages[0].drawing = folder.file("missing.dwg");
    folder.write("out.pdf", "old");
    const plot::JobReport report = run();

    EXPECT_FALSE(report.status);
    EXPECT_EQ(folder.read("out.pdf"), "old");
}

TEST_F(PlotJob, AFileForEachSheetHasItsNumberAndTitleForAName)
{
    addPages(2);
    request.pages[1].number = u"A/2";
    request.output = plot::Output::PdfPerSheet;
    request.target = folder.file("sheets");
    const plot::JobReport report = run();

    ASSERT_TRUE(report.status);
    EXPECT_TRUE(fs::exists(folder.path() / "sheets" / "A-001 Sheet 1.pdf"));
    EXPECT_TRUE(fs::exists(folder.path() / "sheets" / "A_2 Sheet 2.pdf"));
}

TEST_F(PlotJob, SheetsOfOneNameDoNotReplaceEachOther)
{
    addPages(2);
    request.pages[1].number = request.pages[0].number;
    request.pages[1].title = u"SHEET 1";
    request.output = plot::Output::SvgPerSheet;
    request.target = folder.file("sheets");
    const plot::JobReport report = run();

    ASSERT_EQ(report.files.size(), 2U);
    EXPECT_TRUE(fs::exists(folder.path() / "sheets" / "A-001 SHEET 1 (2).svg"));
    const std::string svg = folder.read("sheets/A-001 Sheet 1.svg");
    EXPECT_NE(svg.find("width=\"420.00mm\""), std::string::npos);
    EXPECT_NE(svg.find("Ground floor</text>"), std::string::npos);
}

TEST_F(PlotJob, LinksLeadToPages)
{
    addPages(2);
    request.pages[0].links.push_back({{10, 10, 50, 20}, 0, 1});
    request.pages[0].links.push_back({{10, 10, 50, 20}, 0, 99}); // no such page
    ASSERT_TRUE(run().status);
    if (!hasProgram("qpdf"))
        GTEST_SKIP();

    const std::string json = printed("qpdf --qdf --object-streams=disable " + path("out.pdf") +
                                     " - | grep -a -c /Subtype./Link");
    EXPECT_EQ(json, "1\n");
}

TEST_F(PlotJob, LinksToPagesThatFailedAreLeftOut)
{
    addPages(3);
    request.pages[0].links.push_back({{10, 10, 50, 20}, 0, 1});
    request.pages[0].links.push_back({{10, 30, 50, 40}, 0, 2});
    request.pages[1].layoutName = u"Nowhere";
    ASSERT_TRUE(run().status);
    if (!hasProgram("qpdf"))
        GTEST_SKIP();

    const std::string plain = "qpdf --qdf --object-streams=disable " + path("out.pdf") + " - ";
    EXPECT_EQ(printed(plain + "| grep -a -c /Subtype./Link"), "1\n");
}

TEST_F(PlotJob, MorePagesThanANodeHoldsStandInTheirOrder)
{
    addPages(130);
    ASSERT_TRUE(run().status);
    if (!hasProgram("qpdf") || !hasProgram("pdfinfo"))
        GTEST_SKIP();

    int code = 0;
    const std::string said = printed("qpdf --check " + path("out.pdf"), &code);
    EXPECT_EQ(code, 0) << said;
    EXPECT_NE(printed("pdfinfo " + path("out.pdf")).find("Pages:           130"),
              std::string::npos);
    const std::string json =
        printed("qpdf --json --json-key=pagelabels --json-key=outlines " + path("out.pdf"));
    EXPECT_NE(json.find("\"/P\": \"u:A-130\""), std::string::npos) << json;
    EXPECT_NE(json.find("\"title\": \"A-129 - Sheet 129\""), std::string::npos) << json;
    EXPECT_NE(json.find("\"destpageposfrom1\": 130"), std::string::npos) << json;
}

TEST_F(PlotJob, SheetsAreLinesBelowTheirSubsets)
{
    addPages(4);
    request.pages[3].subsets.clear();
    ASSERT_TRUE(run().status);
    if (!hasProgram("pdftohtml"))
        GTEST_SKIP();

    const std::string xml =
        printed("pdftohtml -xml -i -stdout " + path("out.pdf") + " | sed -n '/<outline>/,$p'");
    EXPECT_EQ(xml, "<outline>\n<item page=\"1\">Architect</item>\n<outline>\n"
                   "<item page=\"1\">Odd</item>\n<outline>\n"
                   "<item page=\"1\">A-001 - Sheet 1</item>\n"
                   "<item page=\"3\">A-003 - Sheet 3</item>\n</outline>\n"
                   "<item page=\"2\">Even</item>\n<outline>\n"
                   "<item page=\"2\">A-002 - Sheet 2</item>\n</outline>\n</outline>\n"
                   "<item page=\"4\">A-004 - Sheet 4</item>\n</outline>\n</pdf2xml>\n");
}

TEST_F(PlotJob, TheStampStandsOnThePage)
{
    addPages(1);
    request.pages[0].stamp = plot::StampFacts();
    request.pages[0].stamp->setName = u"House";
    request.pages[0].stamp->date = u"2026-01-02";
    ASSERT_TRUE(run().status);
    if (!hasProgram("pdftotext"))
        GTEST_SKIP();

    EXPECT_NE(printed("pdftotext " + path("out.pdf") + " -").find("House | 2026-01-02"),
              std::string::npos);
}

TEST_F(PlotJob, AnUnknownPageSetupFailsTheJob)
{
    addPages(1);
    ASSERT_EQ(scene.database().saveAs(folder.file("setups.dwg")), TvStatus::Ok);
    request.setupDrawing = folder.file("setups.dwg");
    request.setupName = u"Draft";

    EXPECT_EQ(run().status.reason(), plot::kSetupMissing);
}

TEST(PlotFileName, IsOneThatAnyFileMayHave)
{
    EXPECT_EQ(plot::fileNameFor(u"A:1", u"x/y"), u"A_1 x_y");
    EXPECT_EQ(plot::fileNameFor(u"", u""), u"sheet");
    EXPECT_EQ(plot::fileNameFor(u"CON", u""), u"sheet CON");
}

} // namespace
