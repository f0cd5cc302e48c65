// Jobs that somebody ends before they are done.

#include <algorithm>
#include <filesystem>

#include "page_content.h"
#include "plot_scene.h"

namespace {

namespace fs = std::filesystem;

/// Ends the job when so many pages are done.
struct Impatient : plot::JobWatcher {
    void pageDone(std::size_t, const plot::PageOutcome&) override { ++done; }
    bool isCancelled() override { return done >= most; }
    std::size_t done = 0, most = 2;
};

/// Ends the job while it waits for its first page.
struct Early : plot::JobWatcher {
    void pageDone(std::size_t, const plot::PageOutcome&) override { ++done; }
    bool isCancelled() override { return asked++ > 0; }
    std::size_t asked = 0, done = 0;
};

std::vector<std::string> namesIn(const fs::path& folder)
{
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::ranges::sort(names);
    return names;
}

/// Files without a name stay as long as they are open.
std::size_t openFiles()
{
    return namesIn("/proc/self/fd").size();
}

class CancelledJob : public testing::TestWithParam<int>
{
protected:
    static constexpr std::size_t kPages = 20;

    CancelledJob()
    {
        scene.line(0, 0, 400, 277);
        plot::PageOrder order;
        order.drawing = u"plan.dwg";
        order.content = scene.bytes();
        order.layoutName = u"Plan";
        request.pages.assign(kPages, order);
        for (std::size_t i = 0; i < kPages; ++i)
            request.pages[i].number.format(TvString(u"A-%02d"), static_cast<int>(i));
        request.target = folder.file("out.pdf");
        request.jobs = GetParam();
    }

    /// Nothing of the one PDF is there, and no page is told to be in it.
    void expectNothingMade(const plot::JobReport& report)
    {
        EXPECT_EQ(report.status.failure(), base::Failure::Interrupted);
        EXPECT_TRUE(report.files.empty());
        for (const plot::PageOutcome& page : report.pages)
            EXPECT_TRUE(page.file.isEmpty());
        EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>());
    }

    TempFolder folder;
    PlotScene scene;
    plot::JobRequest request;
};

INSTANTIATE_TEST_SUITE_P(Threads, CancelledJob, testing::Values(1, 4));

TEST_P(CancelledJob, InTheMiddleWritesNothingAndLeavesNothingBehind)
{
    Impatient watcher;
    const std::size_t open = openFiles();
    const plot::JobReport report = plot::run(request, watcher);

    expectNothingMade(report);
    EXPECT_EQ(openFiles(), open);
    EXPECT_EQ(watcher.done, watcher.most);
    EXPECT_TRUE(report.pages[1].status);
    for (std::size_t i = watcher.most; i < kPages; ++i)
        EXPECT_EQ(report.pages[i].status.failure(), base::Failure::Interrupted);
}

TEST_P(CancelledJob, BeforeItsFirstPageWritesNothingAndLeavesNothingBehind)
{
    Early watcher;
    const std::size_t open = openFiles();
    const plot::JobReport report = plot::run(request, watcher);

    expectNothingMade(report);
    EXPECT_EQ(openFiles(), open);
    EXPECT_LE(watcher.done, 1U);
}

TEST_P(CancelledJob, WithTheLastPageDoneWritesNothing)
{
    Impatient watcher;
    watcher.most = kPages;
    expectNothingMade(plot::run(request, watcher));
    EXPECT_EQ(watcher.done, kPages);
}

TEST_P(CancelledJob, LeavesTheFormerFileAsItWas)
{
    Impatient watcher;
    folder.write("out.pdf", "old");
    EXPECT_FALSE(plot::run(request, watcher).status);

    EXPECT_EQ(folder.read("out.pdf"), "old");
    EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"out.pdf"});
}

TEST_P(CancelledJob, KeepsTheFilesOfSheetsThatWereDone)
{
    Impatient watcher;
    request.target = folder.file("sheets");
    for (const plot::Output output : {plot::Output::PdfPerSheet, plot::Output::SvgPerSheet}) {
        fs::remove_all(folder.path() / "sheets");
        watcher.done = 0;
        request.output = output;
        const plot::JobReport report = plot::run(request, watcher);

        EXPECT_EQ(report.status.failure(), base::Failure::Interrupted);
        EXPECT_EQ(report.files.size(), watcher.most);
        const std::string ending = output == plot::Output::PdfPerSheet ? ".pdf" : ".svg";
        EXPECT_EQ(namesIn(folder.path() / "sheets"),
                  (std::vector<std::string>{"A-00" + ending, "A-01" + ending}));
    }
}

TEST(StoppedPage, IsNotMade)
{
    PlotScene scene;
    scene.line(0, 0, 400, 277);
    const auto page = plot::makePage(scene.database(), scene.layout);
    ASSERT_TRUE(page);
    const std::atomic<bool> stop = true, go = false;

    EXPECT_FALSE(plot::pdfContentOf(*page, {}, {}, {}, &stop));
    EXPECT_TRUE(plot::pdfContentOf(*page, {}, {}, {}, &go));
}

} // namespace
