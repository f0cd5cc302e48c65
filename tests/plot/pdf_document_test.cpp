// What a PDF says of itself and holds beside its lines, as other programs read it.

#include "plot_scene.h"

namespace {

class PdfDocument : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!hasProgram("qpdf") || !hasProgram("pdftotext") || !hasProgram("pdfinfo"))
            GTEST_SKIP() << "qpdf, pdftotext and pdfinfo look into the file";
        scene.line(0, 0, 400, 277);
        scene.text(u"Kitchen", 100, 100);
        plot::PageOrder order;
        order.drawing = u"plan.dwg";
        order.layoutName = u"Plan";
        request.pages = {order, order, order};
        request.pages[0].number = u"A-1";
        request.pages[0].title = u"Ground";
        request.pages[1].title = u"Upper";
        request.pages[2].number = u"A-3";
        request.target = folder.file("out.pdf");
    }
    void make()
    {
        const auto bytes = scene.bytes();
        for (plot::PageOrder& page : request.pages)
            page.content = bytes;
        plot::JobWatcher watcher;
        ASSERT_TRUE(plot::run(request, watcher).status);
        int code = 0;
        const std::string said = printed("qpdf --check " + path(), &code);
        EXPECT_EQ(code, 0) << said;
    }
    std::string path() const { return (folder.path() / "out.pdf").string(); }
    /// All objects as text.
    std::string plain()
    {
        make();
        return printed("qpdf --qdf --object-streams=disable " + path() + " -");
    }
    std::string words()
    {
        make();
        return printed("pdftotext " + path() + " -");
    }
    static bool holds(const std::string& text, const char* part)
    {
        return text.find(part) != std::string::npos;
    }

    TempFolder folder;
    PlotScene scene;
    plot::JobRequest request;
};

TEST_F(PdfDocument, TellsWhatItsInfoTellsInBothPlaces)
{
    request.info.title = u"House <A> & B";
    request.info.subject = u"For the town";
    request.info.author = u"N. N.";
    request.info.keywords = u"lake";
    request.info.dateUtc = 1775001540;
    const std::string text = plain();

    for (const char* part : {"House &lt;A&gt; &amp; B</rdf:li>", "For the town</rdf:li>",
                             "N. N.</rdf:li>", "<pdf:Keywords>lake</pdf:Keywords>",
                             "<xmp:CreateDate>2026-03-31T23:59:00Z<", "/DisplayDocTitle true"})
        EXPECT_TRUE(holds(text, part)) << part;
    const std::string info = printed("pdfinfo -isodates " + path());
    for (const char* part :
         {"House <A> & B", "For the town", "N. N.", "lake", "2026-03-31T23:59:00Z"})
        EXPECT_TRUE(holds(info, part)) << part << "\n" << info;
    EXPECT_TRUE(holds(info, "ModDate:         2026-03-31T23:59:00Z")) << info;
}

TEST_F(PdfDocument, WithoutATitleNoneIsShown)
{
    EXPECT_FALSE(holds(plain(), "/DisplayDocTitle"));
}

TEST_F(PdfDocument, SheetsAreLabelledByTheirNumbersAndOthersByTheirPlace)
{
    make();
    const std::string json = printed("qpdf --json --json-key=pagelabels " + path());
    EXPECT_TRUE(holds(json, "\"/P\": \"u:A-1\"")) << json;
    EXPECT_TRUE(holds(json, "\"/S\": \"/D\"")) << json;
    EXPECT_TRUE(holds(json, "\"/St\": 2")) << json;
}

TEST_F(PdfDocument, LinesOfTheOutlineAreNumberAndTitleOrOneOfThem)
{
    make();
    const std::string json = printed("qpdf --json --json-key=outlines " + path());
    for (const char* part :
         {"\"title\": \"A-1 - Ground\"", "\"title\": \"Upper\"", "\"title\": \"A-3\""})
        EXPECT_TRUE(holds(json, part)) << part << "\n" << json;
    EXPECT_TRUE(holds(plain(), "/PageMode /UseOutlines"));
    request.pages.resize(1);
    EXPECT_FALSE(holds(plain(), "/PageMode")) << "of one page";
}

TEST_F(PdfDocument, SubsetsOfAnyDepthAreLinesOfTheOutline)
{
    request.pages[0].subsets = {u"One", u"Two", u"Three", u"Four"};
    make();
    const std::string json = printed("qpdf --json --json-key=outlines " + path());
    for (const char* name : {"\"title\": \"One\"", "\"title\": \"Three\"", "\"title\": \"Four\""})
        EXPECT_TRUE(holds(json, name)) << json;
}

TEST_F(PdfDocument, TheOutlineIsLeftOutOnDemand)
{
    EXPECT_TRUE(holds(plain(), "/Outlines"));
    request.options.hasOutline = false;
    EXPECT_FALSE(holds(plain(), "/Outlines"));
}

TEST_F(PdfDocument, LayersAreOnAtFirstAndAreLeftOutOnDemand)
{
    const std::string layered = plain();
    EXPECT_TRUE(holds(layered, "/Type /OCG"));
    EXPECT_TRUE(holds(layered, "/ON ["));
    EXPECT_TRUE(holds(layered, "BDC"));
    request.options.hasLayers = false;
    const std::string flat = plain();
    EXPECT_FALSE(holds(flat, "/OCG"));
    EXPECT_FALSE(holds(flat, "BDC"));
}

TEST_F(PdfDocument, TextIsLeftOutOnDemandAndItsLinesStay)
{
    EXPECT_TRUE(holds(words(), "Kitchen"));
    request.options.hasText = false;
    EXPECT_FALSE(holds(words(), "Kitchen"));
}

TEST_F(PdfDocument, TheStampIsSeenWithoutTextToo)
{
    request.pages.resize(1);
    request.options.hasText = false;
    const std::string without = plain();
    request.pages[0].stamp = plot::StampFacts{u"House", {}, {}, {}, {}, {}};
    EXPECT_GT(plain().size(), without.size() + 200) << "its outlines";
}

TEST_F(PdfDocument, LinesAreMixedOnDemand)
{
    EXPECT_FALSE(holds(plain(), "/Multiply"));
    request.options.mergesLines = true;
    EXPECT_TRUE(holds(plain(), "/Multiply"));
    EXPECT_TRUE(holds(plain(), "/M gs"));
}

TEST_F(PdfDocument, AVeryLargePageHasALargerUnit)
{
    scene.set([](db::RecordEditor& fields) { fields.setReal("paper_height", 10'000); });
    const std::string text = plain();

    EXPECT_TRUE(holds(text, "/UserUnit 2")) << "of 14400 points at most";
    EXPECT_TRUE(holds(text, "0.500000 0 0 0.500000 0 0 cm"));
    EXPECT_TRUE(holds(text, "595.276")) << "half of 420 mm";
}

TEST_F(PdfDocument, ALinkAroundAnEntityLiesWhereItIs)
{
    const TvDbObjectId line = scene.addTo(scene.paper(), new TvDbLine({20, 30, 0}, {90, 60, 0}));
    request.pages[0].links.push_back({{}, line.handle().value(), 2});
    request.pages[1].links.push_back({{1000, 1000, 2000, 2000}, 0, 2}); // beside the paper
    const std::string text = plain();

    // 10 mm of margin: 30, 40, 100 and 70 mm.
    EXPECT_TRUE(holds(text, "85.039")) << text;
    EXPECT_TRUE(holds(text, "198.425"));
    std::size_t links = 0;
    for (std::size_t at = text.find("/Subtype /Link"); at != std::string::npos;
         at = text.find("/Subtype /Link", at + 1))
        ++links;
    EXPECT_EQ(links, 1U);
}

} // namespace
