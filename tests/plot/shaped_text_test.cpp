// Texts whose letters join or run from right to left: on paper, and found by who searches.

#include <cstdlib>

#include <db/tv_db_annotations.h>

#include "plot_scene.h"

namespace {

constexpr TvChar kArabic[] = u"\u0645\u0631\u062D\u0628\u0627 \u0628\u0643\u0645 \u0644\u0627";
constexpr TvChar kHebrew[] = u"\u05E9\u05DC\u05D5\u05DD \u05E2\u05D5\u05DC\u05DD";
constexpr TvChar kPointed[] = u"\u05D1\u05BC\u05B0\u05E8\u05B5\u05D0";
constexpr TvChar kMarks[] = u"cafe\u0301 q\u0301x";
constexpr TvChar kTurned[] = u"\u05E9\u05DC\u05D5\u05DD";
constexpr TvChar kMixed[] = u"Plan \u05E9\u05DC\u05D5\u05DD A";
constexpr TvChar kDevanagari[] = u"\u0939\u093F\u0928\u094D\u0926\u0940";

class ShapedPlot : public testing::Test
{
protected:
    /// A line of paragraphs in an outline font.
    void text(const TvString& shown, double y, const TvString& family = u"DejaVu Sans",
              const TvString& marks = u"")
    {
        auto* text = new TvDbMText;
        text->setContents(u"\\f" + family + marks + u";" + shown);
        text->setTextHeight(10);
        text->setLocation({20, y, 0});
        scene.addTo(scene.paper(), text);
    }
    std::string plotted()
    {
        plot::JobRequest request;
        request.target = folder.file("out.pdf");
        plot::PageOrder order;
        order.drawing = u"plan.dwg";
        order.content = scene.bytes();
        order.layoutName = u"Plan";
        request.pages.push_back(order);
        plot::JobWatcher watcher;
        EXPECT_TRUE(plot::run(request, watcher).status);
        if (const char* const keep = std::getenv("KV_KEEP_PDF"))
            std::ofstream(keep, std::ios::binary) << folder.read("out.pdf");
        return (folder.path() / "out.pdf").string();
    }
    /// What a reader finds, the marks of direction that it adds left out.
    std::string found()
    {
        std::string text = printed("pdftotext " + plotted() + " -");
        for (const char* const mark : {"\u200E", "\u200F", "\u202A", "\u202B", "\u202C"})
            for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark))
                text.erase(at, std::char_traits<char>::length(mark));
        return text;
    }

    TempFolder folder;
    PlotScene scene;
};

} // namespace

TEST_F(ShapedPlot, IsFoundAsItReads)
{
    if (!hasProgram("pdftotext"))
        GTEST_SKIP() << "pdftotext reads the file";
    double y = 270;
    for (const TvChar* const line : {kArabic, kHebrew, kPointed})
        text(line, y -= 30);
    const std::string reads = found();
    for (const TvChar* const line : {kArabic, kHebrew, kPointed})
        EXPECT_NE(reads.find(TvString(line).utf8()), std::string::npos)
            << TvString(line).utf8() << " in:\n"
            << reads;
}

// Readers take most of a page's letters to tell which way it runs.
TEST_F(ShapedPlot, IsFoundAsItReadsWhereMostRunsFromLeftToRight)
{
    if (!hasProgram("pdftotext"))
        GTEST_SKIP() << "pdftotext reads the file";
    // The font may not be there.
    if (printed("fc-list :lang=hi family").empty())
        GTEST_SKIP() << "no font has Devanagari";
    double y = 270;
    for (const TvChar* const line : {u"A plan whose title is long", kMarks, kMixed, kDevanagari})
        text(line, y -= 30);
    const std::string reads = found();
    // How blanks are dealt out around a word that runs the other way is the reader's affair.
    for (const TvChar* const line : {kMarks, kTurned, kDevanagari})
        EXPECT_NE(reads.find(TvString(line).utf8()), std::string::npos)
            << TvString(line).utf8() << " in:\n"
            << reads;
}

TEST_F(ShapedPlot, IsFoundAsItReadsInAStyleOfStrokes)
{
    if (!hasProgram("pdftotext"))
        GTEST_SKIP() << "pdftotext reads the file";
    scene.text(kHebrew, 20, 100);
    const std::string reads = found();
    EXPECT_NE(reads.find(TvString(kHebrew).utf8()), std::string::npos) << reads;
}
