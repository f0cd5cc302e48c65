// From sheets and what their set says of publishing to a list of pages.

#include <chrono>

#include <plot/sheet_list.h>

#include "module_scene.h"

namespace {

class SheetList : public ModuleTest
{
protected:
    plot::JobRequest job(plot::OutputKind kind = plot::kOnePdf)
    {
        return plot::jobOf(sheets, *set, kind);
    }
    TvSmPublishOptions& options() { return *set->getPublishOptions(); }
    void storeInt(const TvChar* key, int value)
    {
        m_config.setValue(4, key, TarvikConfigValue::ofInt(value));
    }
    TvString file(const char* name) { return folder.file(name); }
};

TEST_F(SheetList, APageSaysAllThatItsSheetSays)
{
    TvSmSubset* inner = addSubset(addSubset(set, u"Outer"), u"Inner");
    sheets = {addSheet(inner, u"7", u"Deep"), nullptr, addSheet(set, u"", u"Top")};
    setLayout(sheets[0], file("plan.dwg"), u"1F", u"Plan");
    const plot::JobRequest made = job();

    ASSERT_EQ(made.pages.size(), 2U) << "without the null";
    const plot::PageOrder& deep = made.pages[0];
    EXPECT_EQ(deep.number, u"7");
    EXPECT_EQ(deep.title, u"Deep");
    EXPECT_EQ(deep.subsets, (std::vector<TvString>{u"Outer", u"Inner"}));
    EXPECT_EQ(deep.drawing, file("plan.dwg"));
    EXPECT_EQ(deep.layoutName, u"Plan");
    EXPECT_EQ(deep.layoutHandle, 0x1FU);
    EXPECT_FALSE(deep.stamp);
    EXPECT_TRUE(made.pages[1].subsets.empty());
    EXPECT_TRUE(made.pages[1].drawing.isEmpty()) << "it has no layout";
}

TEST_F(SheetList, AMissingDrawingKeepsItsNameForTheMessage)
{
    setLayout(sheets[0], file("gone.dwg"), u"0", u"Plan");

    EXPECT_TRUE(job().pages[0].drawing.endsWithNoCase(u"gone.dwg"));
}

TEST_F(SheetList, TheKindDecidesTheOutput)
{
    EXPECT_EQ(job(plot::kToPrinter).output, plot::Output::OnePdf);
    EXPECT_EQ(job(plot::kOnePdf).output, plot::Output::OnePdf);
    EXPECT_EQ(job(plot::kPdfPerSheet).output, plot::Output::PdfPerSheet);
    EXPECT_EQ(job(plot::kSvgPerSheet).output, plot::Output::SvgPerSheet);
}

TEST_F(SheetList, TheDocumentTellsOfTheSetAndTheDateOfItsFile)
{
    set->setDesc(u"For the town");
    EXPECT_FALSE(job().info.dateUtc) << "there is no file";
    ASSERT_TRUE(database->save(0));
    constexpr std::int64_t kLateOnTheLastOfMarch = 1775001540;
    std::filesystem::last_write_time(folder.path() / kName,
                                     std::chrono::file_clock::from_sys(std::chrono::sys_seconds(
                                         std::chrono::seconds(kLateOnTheLastOfMarch))));

    const plot::DocumentInfo info = job().info;
    EXPECT_EQ(info.title, u"House");
    EXPECT_EQ(info.subject, u"For the town");
    EXPECT_EQ(info.dateUtc, kLateOnTheLastOfMarch);
    plot::setStampWanted(true);
    EXPECT_EQ(job().pages[0].stamp->date, u"2026-03-31");
}

TEST_F(SheetList, TheStampComesWithTheUsersWish)
{
    plot::Stamp stamp;
    stamp.note = u"Draft";
    plot::storeStamp(stamp);
    EXPECT_FALSE(job().pages[0].stamp);
    storeInt(u"Config\\publish\\PublishStamp", 1); // as the panel's menu does
    const plot::JobRequest made = job();

    EXPECT_EQ(made.stamp.note, u"Draft");
    ASSERT_TRUE(made.pages[1].stamp);
    EXPECT_EQ(made.pages[1].stamp->setName, u"House");
    EXPECT_EQ(made.pages[1].stamp->number, u"2");
    EXPECT_EQ(made.pages[1].stamp->title, u"Upper");
    EXPECT_EQ(made.pages[1].stamp->drawing, u"plan.dwg");
    EXPECT_EQ(made.pages[1].stamp->layout, u"Plan");
    EXPECT_TRUE(made.pages[1].stamp->date.isEmpty());
}

TEST_F(SheetList, TheSetsOptionsAndTheUsersMeet)
{
    plot::PdfOptions mine;
    mine.hasLayers = mine.hasText = false;
    plot::storePdfOptions(mine);
    EXPECT_FALSE(job().options.hasLayers);
    EXPECT_FALSE(job().options.hasText);
    EXPECT_FALSE(job().options.mergesLines);
    options().setLayerInfo(true);
    options().setLinesMerge(true);
    EXPECT_TRUE(job().options.hasLayers);
    EXPECT_TRUE(job().options.mergesLines);
}

TEST_F(SheetList, PdfOptionsAreKept)
{
    EXPECT_EQ(plot::storedPdfOptions(), plot::PdfOptions()) << "of a new machine";
    plot::PdfOptions mine;
    mine.hasOutline = false;
    mine.isMonochrome = true;
    plot::storePdfOptions(mine);
    EXPECT_EQ(plot::storedPdfOptions(), mine);
    m_config.setValue(4, u"Config\\publish\\pdf\\Text", TarvikConfigValue::ofText(u"no"));
    EXPECT_EQ(plot::storedPdfOptions(), mine) << "what is no number says nothing";
}

TEST_F(SheetList, OneFileGoesIntoTheOutputFolderUnderItsNameWithAnEndingOfItsOwn)
{
    EXPECT_EQ(plot::targetOf(*set, plot::kOnePdf), file("out/all.pdf"));
    EXPECT_EQ(plot::targetOf(*set, plot::kToPrinter), file("out/all.pdf"));
    options().setDefaultFileName(u"ALL.DWF");
    EXPECT_EQ(plot::fileNameOf(*set), u"ALL");
    for (const TvChar* none : {u"", u"abc", u".dwf"}) {
        options().setDefaultFileName(none);
        EXPECT_EQ(plot::fileNameOf(*set), u"House") << TvString(none).utf8();
    }
    options().setDefaultFileName(u"a/b.dwf");
    EXPECT_EQ(plot::fileNameOf(*set), u"a_b");
}

TEST_F(SheetList, FilesOfSheetsGoIntoTheOutputFolder)
{
    options().setPromptForName(true);
    EXPECT_EQ(plot::targetOf(*set, plot::kPdfPerSheet), file("out"));
    EXPECT_EQ(plot::targetOf(*set, plot::kSvgPerSheet), file("out"));
    EXPECT_TRUE(plot::targetOf(*set, plot::kOnePdf).isEmpty()) << "its name is asked for";
    options().getDefaultOutputdir()->setFileName(file("gone"));
    options().setPromptForName(false);
    EXPECT_TRUE(plot::targetOf(*set, plot::kOnePdf).isEmpty()) << "no such folder";
    EXPECT_TRUE(plot::targetOf(*set, plot::kPdfPerSheet).isEmpty());
}

TEST_F(SheetList, PageSetupsWantADrawingThatIsThere)
{
    plot::JobRequest made = job();
    EXPECT_FALSE(plot::usePageSetup(made, *set, u"A5"));
    auto* setups = newFor<TvSmFileReference>(set);
    ASSERT_TRUE(setups->setFileName(file("gone.dwt")) && set->setAltPageSetups(setups));
    EXPECT_FALSE(plot::usePageSetup(made, *set, u"A5"));
    EXPECT_TRUE(made.setupName.isEmpty());
    setups->setFileName(file("plan.dwg"));
    EXPECT_TRUE(plot::usePageSetup(made, *set, u"A5"));
    EXPECT_EQ(made.setupDrawing, file("plan.dwg"));
    EXPECT_EQ(made.setupName, u"A5");
}

} // namespace
