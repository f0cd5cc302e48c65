// Names of files, and files that cannot be written.

#include <filesystem>

#include <db/tv_db_dictionary.h>
#include <plot/reasons.h>

#include "plot_scene.h"

namespace {

namespace fs = std::filesystem;

class JobFiles : public testing::Test
{
protected:
    JobFiles()
    {
        scene.line(0, 0, 400, 277);
        plot::PageOrder order;
        order.drawing = u"plan.dwg";
        order.content = scene.bytes();
        order.layoutName = u"Plan";
        order.number = u"A-1";
        order.title = u"Ground";
        request.pages = {order, order};
        request.pages[1].number = u"A-2";
        request.output = plot::Output::SvgPerSheet;
        request.target = folder.file("sheets");
    }
    plot::JobReport run()
    {
        plot::JobWatcher watcher;
        return plot::run(request, watcher);
    }
    bool isThere(const char* name) { return fs::is_regular_file(folder.path() / "sheets" / name); }

    TempFolder folder;
    PlotScene scene;
    plot::JobRequest request;
};

TEST_F(JobFiles, ASheetMayHaveAFileNameOfItsOwn)
{
    request.pages[0].fileName = u"first";
    EXPECT_EQ(run().files, (std::vector<TvString>{folder.file("sheets/first.svg"),
                                                  folder.file("sheets/A-2 Ground.svg")}));
}

TEST_F(JobFiles, MonochromeReachesThePages)
{
    const TvDbObjectId line = scene.addTo(scene.paper(), new TvDbLine({20, 30, 0}, {90, 60, 0}));
    TvDbObjectPointer<TvDbEntity>(line, TvDb::kForWrite)->setLayer(scene.addLayer(u"Red", 1));
    for (plot::PageOrder& page : request.pages)
        page.content = scene.bytes();
    const auto isRed = [&] {
        run();
        return folder.read("sheets/A-1 Ground.svg").find("stroke=\"#ff0000\"") != std::string::npos;
    };
    EXPECT_TRUE(isRed());
    request.options.isMonochrome = true;
    EXPECT_FALSE(isRed());
}

TEST_F(JobFiles, APageSetupOfADrawingReachesThePages)
{
    PlotScene setups;
    {
        const TvDbObjectPointer<TvDbDictionary> all(setups.database().plotSettingsDictionaryId(),
                                                    TvDb::kForWrite);
        auto* setup = new TvDbPlotSettings; // which says no name of its own
        setup->edit().setReal("paper_width", 210);
        setup->edit().setReal("paper_height", 148);
        setup->edit().setInteger("plot_type", TvDbPlotSettings::kLayout);
        TvDbObjectId id;
        ASSERT_EQ(all->setAt(u"Draft", setup, id), TvStatus::Ok);
        setup->close();
    }
    ASSERT_EQ(setups.database().saveAs(folder.file("setups.dwg")), TvStatus::Ok);
    request.setupDrawing = folder.file("setups.dwg");
    request.setupName = u"draft";
    ASSERT_TRUE(run().status);
    EXPECT_NE(folder.read("sheets/A-2 Ground.svg").find("width=\"210.00mm\""), std::string::npos);
    request.setupDrawing = folder.file("gone.dwg");
    const plot::JobReport report = run();
    EXPECT_FALSE(report.status);
    EXPECT_TRUE(report.files.empty());
}

TEST_F(JobFiles, ADamagedDrawingSaysMoreThanThatItIsMissing)
{
    folder.write("plan.dwg", "no drawing");
    request.pages[0].content = nullptr;
    request.pages[0].drawing = folder.file("plan.dwg");
    request.pages[1].content = nullptr;
    request.pages[1].drawing = folder.file("gone.dwg");
    const plot::JobReport report = run();

    EXPECT_EQ(report.pages[1].status.failure(), base::Failure::NotFound);
    EXPECT_FALSE(report.pages[0].status);
    EXPECT_NE(report.pages[0].status.reason(), report.pages[1].status.reason());
}

TEST_F(JobFiles, AJobWithoutPagesIsWrong)
{
    request.pages.clear();
    const plot::JobReport report = run();

    EXPECT_EQ(report.status.failure(), base::Failure::Usage);
    EXPECT_EQ(report.status.reason(), plot::kNothingMade);
    EXPECT_FALSE(fs::exists(folder.path() / "sheets"));
}

TEST_F(JobFiles, AFolderThatCannotBeMadeEndsTheJob)
{
    folder.write("sheets", "a file");
    const plot::JobReport report = run();

    EXPECT_EQ(report.status.failure(), base::Failure::Unreachable);
    EXPECT_EQ(report.status.arguments(), std::vector<TvString>{request.target});
    EXPECT_EQ(folder.read("sheets"), "a file");
}

TEST_F(JobFiles, OneFileThatCannotBeWrittenDoesNotKeepTheOthersAway)
{
    for (const plot::Output output : {plot::Output::SvgPerSheet, plot::Output::PdfPerSheet}) {
        request.output = output;
        const std::string ending = output == plot::Output::SvgPerSheet ? ".svg" : ".pdf";
        fs::create_directories(folder.path() / "sheets" / ("A-1 Ground" + ending) / "in the way");
        const plot::JobReport report = run();

        EXPECT_TRUE(report.status);
        EXPECT_FALSE(report.pages[0].status);
        EXPECT_TRUE(report.pages[0].file.isEmpty());
        EXPECT_TRUE(report.pages[1].status);
        EXPECT_EQ(report.files.size(), 1U);
        EXPECT_TRUE(isThere(("A-2 Ground" + ending).c_str()));
    }
}

TEST_F(JobFiles, AOnePdfThatCannotBeWrittenHoldsNoPage)
{
    request.output = plot::Output::OnePdf;
    request.target = folder.file("gone/out.pdf");
    const plot::JobReport report = run();

    EXPECT_FALSE(report.status);
    EXPECT_TRUE(report.files.empty());
    for (const plot::PageOutcome& page : report.pages)
        EXPECT_TRUE(page.file.isEmpty());
}

TEST_F(JobFiles, WhenAllFailTheFirstReasonIsThatOfTheJob)
{
    for (const TvChar* name : {u"No", u"None"})
        request.pages[name == std::u16string_view(u"None")].layoutName = name;
    const plot::JobReport report = run();

    EXPECT_EQ(report.status.reason(), plot::kLayoutMissing);
    EXPECT_EQ(report.status.arguments().front(), u"No");
}

TEST_F(JobFiles, ThePdfOfASheetIsCalledAsTheSheet)
{
    if (!hasProgram("pdfinfo"))
        GTEST_SKIP();
    request.output = plot::Output::PdfPerSheet;
    request.info.title = u"House";
    request.pages[1].title = {};
    ASSERT_TRUE(run().status);
    const auto title = [&](const char* name) {
        const std::string said =
            printed("pdfinfo '" + (folder.path() / "sheets" / name).string() + "' | grep Title");
        return said.substr(said.find_last_of(' ') + 1);
    };
    EXPECT_EQ(title("A-1 Ground.pdf"), "Ground\n");
    EXPECT_EQ(title("A-2.pdf"), "House\n") << "the set's, without one of its own";
}

TEST_F(JobFiles, ManyJobsAskedForAreTakenForAsManyAsAreAllowed)
{
    for (const int jobs : {-1, 0, 1000}) {
        request.jobs = jobs;
        EXPECT_EQ(run().files.size(), 2U) << jobs;
    }
}

TEST(PlotFileName, IsNeitherTooLongNorEndsBadly)
{
    EXPECT_EQ(plot::fileNameFor(u"A", TvString(std::u16string(300, u'x'))).length(), 120);
    EXPECT_EQ(plot::fileNameFor(u"A", u"end. . ."), u"A end");
    EXPECT_EQ(plot::fileNameFor(u" A ", u""), u"A");
    EXPECT_EQ(plot::fileNameFor(u"A\t1", u"\n"), u"A_1 _");
    EXPECT_EQ(plot::fileNameFor(u"...", u""), u"sheet");
}

} // namespace
