#include <gtest/gtest.h>

#include <gs/exact_text_measure.h>
#include <gs/flat.h>

#include "text_samples.h"

namespace {

const gs::Glyph& letter(std::u16string_view name, char32_t c, bool isFamily = false,
                        bool isBold = false, bool isItalic = false)
{
    gs::Font& font = testFonts().find({std::u16string(name), isFamily, isBold, isItalic});
    return testFonts().glyph(font, c);
}

TEST(Fonts, PlayAllStrokeFontsByOne)
{
    for (const std::u16string_view name : {u"txt", u"romans.shx", u"C:\\fonts\\ISOCP.SHX", u""}) {
        EXPECT_EQ(&letter(name, U'A'), &letter(u"simplex.shx", U'A'));
        EXPECT_FALSE(letter(name, U'A').isFilled);
    }
}

TEST(Fonts, FindOutlinesByTheNameOfAFileOrFamily)
{
    EXPECT_TRUE(letter(u"arial.ttf", U'A').isFilled);
    EXPECT_TRUE(letter(u"Arial.TTF", U'A').isFilled);
    EXPECT_TRUE(letter(u"Arial", U'A', true).isFilled);
    EXPECT_FALSE(letter(u"Arial", U'A', false).isFilled); // no ending: a stroke font
    EXPECT_EQ(&letter(u"arial.ttf", U'A'), &letter(u"c:/windows/fonts/ARIAL.ttf", U'A'));
}

TEST(Fonts, PutTheNearestOneInPlaceOfOneThatIsNotThere)
{
    EXPECT_TRUE(letter(u"no such family at all", U'A', true).isFilled);
    EXPECT_NE(letter(u"DejaVu Serif", U'A', true).path.points().size(),
              letter(u"DejaVu Sans", U'A', true).path.points().size());
}

TEST(Fonts, AreAsWideAsTheWidespreadFontThatTheyStandInFor)
{
    const auto meanWidth = [](std::u16string_view family) {
        double sum = 0;
        for (char32_t c = U'a'; c <= U'z'; ++c)
            sum += letter(family, c, true).advance;
        return sum / 26;
    };
    EXPECT_NEAR(meanWidth(u"Arial"), 0.683, 0.03);
    EXPECT_NEAR(meanWidth(u"times new roman"), 0.693, 0.03);
    // A font that is there keeps its own.
    EXPECT_GT(meanWidth(u"DejaVu Sans"), 0.72);
}

TEST(Fonts, ScaleOutlinesSoThatCapitalsAreAsHighAsTheText)
{
    for (const std::u16string_view name : {u"DejaVu Sans", u"DejaVu Serif", u"DejaVu Sans Mono"}) {
        const gs::Box box = gs::boxOf(letter(name, U'H', true).path);
        EXPECT_NEAR(box.highY, 1, 0.01);
        EXPECT_NEAR(box.lowY, 0, 0.01);
    }
}

TEST(Fonts, MakeLettersBoldOrItalic)
{
    const gs::Glyph& plain = letter(u"DejaVu Sans", U'H', true);
    EXPECT_GT(letter(u"DejaVu Sans", U'H', true, true).advance, plain.advance);
    const gs::Box upright = gs::boxOf(plain.path);
    const gs::Box italic = gs::boxOf(letter(u"DejaVu Sans", U'H', true, false, true).path);
    EXPECT_GT(italic.width(), upright.width() + 0.1);
    EXPECT_EQ(&letter(u"arialbd.ttf", U'H'), &letter(u"Arial", U'H', true, true));
}

TEST(Fonts, BorrowWhatAStrokeFontLacks)
{
    const gs::Glyph& forAll = letter(u"txt.shx", U'\u2200');
    EXPECT_TRUE(forAll.isFilled);
    EXPECT_FALSE(forAll.path.isEmpty());
}

TEST(Fonts, ShowABoxForWhatNobodyHas)
{
    const gs::Glyph& nobodys = letter(u"txt.shx", U'\U0010FFFD');
    EXPECT_EQ(nobodys.path.points().size(), 4u);
    EXPECT_GT(nobodys.advance, 0);
    EXPECT_EQ(&nobodys, &letter(u"Arial", U'\U0010FFFC', true));
}

TEST(Fonts, TakeAnyNameWithoutOpeningIt)
{
    for (const std::u16string& name :
         {std::u16string(100'000, u'x') + u".ttf", std::u16string(u"/etc/passwd.ttf"),
          std::u16string(u"\\\\host\\share\\f.ttf"), std::u16string(u"a:b=c-\\,.ttf"),
          std::u16string(u"\xD800.ttf"), std::u16string(u"x\0y.ttf", 7), std::u16string(u".ttf")})
        EXPECT_GT(letter(name, U'A').advance, 0);
    gs::Fonts many;
    for (int i = 0; i < 700; ++i) {
        gs::Font& font = many.find(
            {u"family" + std::u16string(static_cast<std::size_t>(i), u'a'), true, false, false});
        ASSERT_GT(many.glyph(font, U'A').advance, 0);
        if (i > 20)
            i += 40; // what counts is the length of the names
    }
}

TEST(ExactTextMeasure, TellsTheWidthThatIsDrawn)
{
    gs::ExactTextMeasure measure(testFonts());
    db::TextLook look;
    look.font = TvString(u"txt.shx");
    look.height = 2.5;
    look.widthFactor = 0.8;

    const double width = measure.width(u"Hall", look);

    TvDbText text;
    setText(text, u"Hall", 2.5);
    text.setWidthFactor(0.8);
    EXPECT_NEAR(width, shapeOf(text, testFonts()).runs.at(0).width, 1e-9);
    EXPECT_NEAR(width, shapeOf(text, testFonts()).extents.highX, 1e-6); // "l" ends at its right
    db::setTextMeasure(&measure);
    EXPECT_NEAR(text.textWidth(), width, 1e-9);
    db::setTextMeasure(nullptr);
}

} // namespace
