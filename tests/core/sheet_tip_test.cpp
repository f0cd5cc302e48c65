// What the tip of an item says.

#include <core/sheet_tip.h>

#include <cstdlib>

#include <db/file_open_info_tip_manager.h>
#include <resources/texts.h>

#include "document_scene.h"

namespace {

using core::TipStyle;

constexpr TipStyle kName{TipStyle::Name, TipStyle::Small};
constexpr TipStyle kPreview{TipStyle::NameAndPreview, TipStyle::Small};
constexpr TipStyle kDetails{TipStyle::NameAndDetails, TipStyle::Small};
constexpr TipStyle kAll{TipStyle::Everything, TipStyle::Small};
constexpr TipStyle kEach[] = {kName, kPreview, kDetails, kAll};

TvString textOf(int number)
{
    return TvString(text::find(number));
}

class SheetTipTest : public DocumentTest
{
protected:
    void SetUp() override
    {
        DocumentTest::SetUp();
        database = made("house.dst");
        ASSERT_TRUE(database->lockDb(database));
        database->getSheetSet()->setName(u"House");
    }
    void TearDown() override
    {
        database->unlockDb(database, false);
        DocumentTest::TearDown();
    }
    TvSmSheet* sheetOf(const TvString& path, const TvString& handle = u"1E")
    {
        TvSmSheet* sheet = addSheet(database->getSheetSet(), u"A-1", u"Plan");
        setLayout(sheet, path, handle, u"A1");
        return sheet;
    }
    core::Tip tipOf(const TvSmPersist* object, TipStyle style)
    {
        core::fillTip(database, handleOf(object), style, drawings, tip);
        return tip;
    }
    /// The lines of a tip that begin like text @p number, without that text.
    std::vector<TvString> rows(const TvString& text, int number)
    {
        const TvString label = textOf(number);
        std::vector<TvString> values;
        for (int at = text.find(label); at != TvString::npos; at = text.find(label, at + 1)) {
            const int from = at + label.length(), end = text.find(u'\n', from);
            values.push_back(text.substr(from, end == TvString::npos ? -1 : end - from));
        }
        return values;
    }
    using Values = std::vector<TvString>;

    TvSmDatabase* database = nullptr;
    DrawingInfoCache drawings;
    core::Tip tip;
};

TEST_F(SheetTipTest, OfNothingIsEmptyAndHasNoPicture)
{
    tip.preview = std::make_shared<db::Preview>();
    core::fillTip(database, u"gFFFF", kAll, drawings, tip);
    EXPECT_EQ(tip.text, u"");
    EXPECT_FALSE(tip.preview);
    core::fillTip(nullptr, u"g1", kAll, drawings, tip);
    EXPECT_EQ(tip.text, u"");
}

TEST_F(SheetTipTest, ASheetWithoutALayoutShowsItsLabelAloneInEveryMode)
{
    const TvSmSheet* sheet = addSheet(database->getSheetSet(), u"A-1", u"Plan");
    const auto former = std::make_shared<db::Preview>();
    tip.preview = former;
    for (const TipStyle style : kEach)
        EXPECT_EQ(tipOf(sheet, style).text, u"A-1 - Plan");
    EXPECT_EQ(tip.preview, former) << "the picture stays as it was";
}

TEST_F(SheetTipTest, ALabelWithoutANumberIsTheTitleAlone)
{
    EXPECT_EQ(core::sheetLabel(*addSheet(database->getSheetSet(), u"", u"Plan")), u"Plan");
}

TEST_F(SheetTipTest, OfASetHasItsTextsAndTheTextPropertiesOfBothKinds)
{
    TvSmSheetSet* set = database->getSheetSet();
    sm::setTextProperty(set->getCustomProperties(), u"Client", u"N. N.", 1);
    sm::setTextProperty(set->getCustomProperties(), u"Checked", u"-", 2);
    sm::setTextProperty(set->getCustomProperties(), u"Hidden", u"no", 0);
    auto* number = newFor<TvSmCustomPropertyValue>(set->getCustomProperties());
    number->setValue(TvVariant(std::int32_t(5)));
    number->setFlags(1);
    set->getCustomProperties()->setProperty(u"Number", number);
    set->setSheetSetText2(u"Two");
    set->setSheetSetText4(u"Four");
    EXPECT_EQ(tipOf(set, kDetails).text, u"House\nClient: N. N.\nChecked: -\n" +
                                             (textOf(565) + u"Two") + textOf(567) + u"Four");
    EXPECT_EQ(tipOf(set, kName).text, u"House");
    EXPECT_EQ(tipOf(set, kPreview).text, u"House") << "and no picture";
    EXPECT_FALSE(tip.preview);
}

TEST_F(SheetTipTest, OfASubsetCountsTheSheetsAtAnyDepth)
{
    TvSmSubset* ground = addSubset(database->getSheetSet(), u"Ground");
    addSheet(addSubset(ground, u"Details"), u"1", u"a");
    addSheet(ground, u"2", u"b");
    EXPECT_EQ(tipOf(ground, kAll).text, u"Ground" + (textOf(550) + u"2"));
    EXPECT_EQ(tipOf(ground, kPreview).text, u"Ground");
}

TEST_F(SheetTipTest, OfAMissingDrawingSaysSoAndLeavesItsFactsOut)
{
    TvSmSheet* sheet = sheetOf(u"/nowhere/plans/a.dwg");
    sheet->setDesc(u"all of it");
    const TvString text = tipOf(sheet, kAll).text;
    EXPECT_EQ(rows(text, 551), Values{textOf(553)});
    EXPECT_EQ(rows(text, 555), Values{u"A-1 - Plan"});
    EXPECT_EQ(rows(text, 556), Values{u"all of it"});
    EXPECT_EQ(rows(text, 557), Values{u"a.dwg  "});
    EXPECT_EQ(rows(text, 558), Values{u"/nowhere/plans  "});
    for (const int absent : {548, 549, 559, 560, 561, 562, 563})
        EXPECT_TRUE(rows(text, absent).empty()) << absent;
    EXPECT_FALSE(tip.preview);
}

TEST_F(SheetTipTest, OfADrawingHasPictureAndDetailsInTheirOrder)
{
    DrawingMaker maker;
    maker.paper(u"A1").paperSize(u"A1", 420, 297, 1).picture(u"A1").savedBy(u"N. N.");
    maker.saveAs(folder.file("a.dwg"));
    const TvSmSheet* sheet = sheetOf(folder.file("a.dwg"), maker.handleOf(u"A1"));
    const TvString text = tipOf(sheet, kAll).text;
    EXPECT_TRUE(tip.preview);
    EXPECT_TRUE(text.startsWith(TvString(u"A-1 - Plan") + core::previewRoom(kAll.size).padding));
    EXPECT_EQ(rows(text, 551), Values{textOf(552)});
    EXPECT_EQ(rows(text, 562), Values{u"N. N."});
    EXPECT_EQ(rows(text, 563), Values{u"420.0 x 297.0"});
    int at = 0;
    for (const int row : {551, 555, 556, 557, 558, 559, 561, 562, 563}) {
        const int next = text.find(textOf(row), at);
        EXPECT_GT(next, at) << row;
        at = next;
    }
    EXPECT_EQ(tipOf(sheet, kDetails).preview, nullptr);
    EXPECT_EQ(tipOf(sheet, kName).text, u"A-1 - Plan");
}

TEST_F(SheetTipTest, APictureAloneIsFollowedByAUnitSoThatItsLineFeedsCount)
{
    DrawingMaker maker;
    maker.paper(u"A1").picture(u"A1").saveAs(folder.file("a.dwg"));
    const TvSmSheet* sheet = sheetOf(folder.file("a.dwg"), maker.handleOf(u"A1"));
    EXPECT_EQ(tipOf(sheet, kPreview).text, u"A-1 - Plan\n1234567890\n\n\n1");
    setLayout(sheetOf(folder.file("a.dwg")), folder.file("a.dwg"), u"FFF", u"gone");
}

TEST_F(SheetTipTest, ADrawingThatMovedWithItsSetShowsBothFolders)
{
    ASSERT_TRUE(database->unlockDb(database, false));
    std::filesystem::create_directory(folder.path() / "old");
    DrawingMaker().paper(u"A1").saveAs(folder.file("old/a.dwg"));
    TvSmDatabase* moved = made("old/set.dst");
    TvString handle;
    change(moved, [&](TvSmSheetSet& set) {
        TvSmSheet* sheet = addSheet(&set, u"A-1", u"Plan");
        setLayout(sheet, folder.file("old/a.dwg"), u"1E", u"A1");
        handle = handleOf(sheet);
    });
    manager().closeDatabase(moved);
    std::filesystem::rename(folder.path() / "old", folder.path() / "new");
    moved = manager().openDatabase(folder.file("new/set.dst"), true, 0);
    ASSERT_TRUE(moved);
    core::fillTip(moved, handle, kDetails, drawings, tip);
    EXPECT_EQ(rows(tip.text, 551), Values{textOf(547) + textOf(552)});
    EXPECT_EQ(rows(tip.text, 549), Values{folder.file("new") + u"  "});
    EXPECT_EQ(rows(tip.text, 548), Values{folder.file("old") + u"  "});
    EXPECT_TRUE(rows(tip.text, 558).empty());
    EXPECT_EQ(rows(tip.text, 559).size(), 1u);
    ASSERT_TRUE(database->lockDb(database));
}

TEST_F(SheetTipTest, OfADrawingInUseNamesWhoHasIt)
{
    DrawingMaker().paper(u"A1").saveAs(folder.file("a.dwg"));
    TvDbDatabase other(false, true);
    ASSERT_TRUE(db::beginUse(other, folder.file("a.dwg")));
    TvString user, machine;
    ASSERT_TRUE(CFileOpenInfoTipManager::GetInfoFromHideFile(folder.file("a.dwg"), user, machine));
    const TvString text = tipOf(sheetOf(folder.file("a.dwg")), kDetails).text;
    EXPECT_EQ(rows(text, 551), Values{TvString().format(textOf(554), user + u" " + machine)});
    EXPECT_EQ(rows(text, 560), Values{user});
    db::endUse(other);
}

TEST_F(SheetTipTest, OfASheetEndsWithItsOwnTextProperties)
{
    TvSmSheet* sheet = sheetOf(u"/nowhere/a.dwg");
    sm::setTextProperty(sheet->getCustomProperties(), u"Checked", u"N. N.", 2);
    sm::setTextProperty(sheet->getCustomProperties(), u"Other", u"no", 1);
    EXPECT_TRUE(tipOf(sheet, kDetails).text.endsWith(u"  \n\nChecked: N. N."));
    EXPECT_EQ(tipOf(sheet, kPreview).text, u"A-1 - Plan");
}

TEST(TipNumbers, SizesAreRoundedToTheNearest)
{
    EXPECT_EQ(core::roundedFileSize(1'048'576), u"1MB");
    EXPECT_EQ(core::roundedFileSize(1'048'575), u"1024KB");
    EXPECT_EQ(core::roundedFileSize(1'536), u"2KB") << "halves away from zero";
    EXPECT_EQ(core::roundedFileSize(1'535), u"1KB");
    EXPECT_EQ(core::roundedFileSize(0), u"0KB");
    EXPECT_EQ(core::roundedFileSize(1'572'864), u"2MB");
}

TEST(TipNumbers, ThousandsAreParted)
{
    EXPECT_EQ(core::withThousands(1'234'567), u"1,234,567");
    EXPECT_EQ(core::withThousands(999), u"999");
    EXPECT_EQ(core::withThousands(1'000), u"1,000");
    EXPECT_EQ(core::withThousands(0), u"0");
    EXPECT_EQ(core::withThousands(-123'456), u"-123,456");
}

TEST(TipParts, OfANameAreTheWholeText)
{
    core::Tip tip{u"a\nb", nullptr};
    EXPECT_EQ(core::tipParts(tip, kName).title, u"a\nb");
    EXPECT_FALSE(core::tipParts(tip, kName).hasLine);
    EXPECT_EQ(core::tipParts(tip, kPreview).title, u"a\nb");
}

TEST(TipParts, OfDetailsArePartedAtTheFirstLine)
{
    const core::TipParts parts = core::tipParts({u"a\nb\nc", nullptr}, kDetails);
    EXPECT_EQ(parts.title, u"a");
    EXPECT_EQ(parts.rest, u"b\nc");
    EXPECT_TRUE(parts.hasLine);
    EXPECT_EQ(core::tipParts({u"a", nullptr}, kAll).rest, u"");
}

TEST(TipParts, LeaveTheDigitsOutAndTheRoomForThePictureIn)
{
    const auto picture = std::make_shared<db::Preview>();
    const TvString padded = TvString(u"a") + core::previewRoom(TipStyle::Small).padding;
    EXPECT_EQ(core::tipParts({padded + u"\nb", picture}, kAll).rest, u"\n\n\nb");
    EXPECT_EQ(core::tipParts({padded + u"1", picture}, kPreview).rest, u"");
}

} // namespace
