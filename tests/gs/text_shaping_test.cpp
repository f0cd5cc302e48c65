// Letters that join, reorder, carry marks or run from right to left.

#include <algorithm>
#include <numeric>

#include <gtest/gtest.h>

#include <gs/exact_text_measure.h>
#include <gs/flat.h>

#include "text_samples.h"

namespace {

gs::Font& font(std::u16string_view family = u"DejaVu Sans")
{
    return testFonts().find({std::u16string(family), true, false, false});
}

gs::Font& strokes()
{
    return testFonts().find({u"txt.shx", false, false, false});
}

std::vector<gs::ShapedLetter> line(std::u32string_view text, gs::Font& with = font())
{
    return testFonts().line(with, text);
}

/// Which characters the letters stand for, from left to right.
std::vector<std::uint32_t> order(const std::vector<gs::ShapedLetter>& letters)
{
    std::vector<std::uint32_t> characters;
    for (const gs::ShapedLetter& letter : letters)
        characters.push_back(letter.character);
    return characters;
}

double advance(const std::vector<gs::ShapedLetter>& letters)
{
    return std::accumulate(letters.begin(), letters.end(), 0.0,
                           [](double sum, const auto& l) { return sum + l.advance; });
}

bool isSameOutline(const gs::Glyph& a, const gs::Glyph& b)
{
    const auto p = a.path.points(), q = b.path.points();
    return std::equal(p.begin(), p.end(), q.begin(), q.end());
}

/// Around what is of a colour of the palette.
gs::Box boxOf(const gs::TextShape& shape, std::uint32_t color)
{
    gs::Box box;
    for (const gs::TextPart& part : shape.parts)
        if (part.color.value == color)
            box.addBox(gs::boxOf(part.path));
    return box;
}

using Order = std::vector<std::uint32_t>;

TEST(ShapedText, JoinsArabicLettersWithTheirNeighbours)
{
    const gs::Glyph& alone = testFonts().glyph(font(), U'\u0628');
    const auto letters = line(U"\u0628\u0628\u0628");
    ASSERT_EQ(letters.size(), 3U);
    EXPECT_EQ(order(letters), (Order{2, 1, 0}));
    for (const gs::ShapedLetter& letter : letters) {
        EXPECT_FALSE(isSameOutline(*letter.glyph, alone));
        EXPECT_EQ(letter.glyph->text, u"\u0628");
        EXPECT_EQ(letter.glyph->character, U'\0');
        EXPECT_NE(letter.glyph->form, 0);
        EXPECT_TRUE(letter.isJoined);
    }
    EXPECT_NE(letters[0].glyph->form, letters[1].glyph->form);
    EXPECT_NE(letters[1].glyph->form, letters[2].glyph->form);
    // One by one they are as they are in the table.
    EXPECT_EQ(line(U"\u0628").at(0).glyph, &alone);
}

TEST(ShapedText, WritesTwoArabicLettersAsOneWhereTheScriptDoes)
{
    const auto letters = line(U"\u0644\u0627");
    ASSERT_EQ(letters.size(), 1U);
    EXPECT_EQ(letters[0].glyph->text, u"\u0644\u0627");
}

TEST(ShapedText, RunsFromRightToLeftWhereItsScriptDoes)
{
    EXPECT_EQ(order(line(U"\u05D0\u05D1\u05D2")), (Order{2, 1, 0}));
    // A number within keeps its order, and so does what stands before in another script.
    EXPECT_EQ(order(line(U"A \u05D0\u05D1 12 \u05D2")), (Order{0, 1, 8, 7, 5, 6, 4, 3, 2}));
    EXPECT_EQ(order(line(U"\u05D0 A")), (Order{2, 1, 0}));
    EXPECT_EQ(order(line(U"\u05D0 ABC")), (Order{2, 3, 4, 1, 0}));
}

TEST(ShapedText, TurnsBracketsWithTheDirection)
{
    for (gs::Font* const with : {&font(), &strokes()}) {
        const auto letters = line(U"(\u05D0)", *with);
        EXPECT_EQ(order(letters), (Order{2, 1, 0}));
        EXPECT_TRUE(isSameOutline(*letters.at(0).glyph, testFonts().glyph(*with, U'(')));
        EXPECT_TRUE(isSameOutline(*letters.at(2).glyph, testFonts().glyph(*with, U')')));
    }
}

TEST(ShapedText, PutsMarksOverTheirLetters)
{
    const auto letters = line(U"q\u0301");
    ASSERT_EQ(letters.size(), 2U);
    const gs::Box base = gs::boxOf(letters[0].glyph->path);
    gs::Box mark = gs::boxOf(letters[1].glyph->path);
    const double x = letters[0].advance + letters[1].x;
    EXPECT_NEAR(mark.center().x + x, base.center().x, 0.15);
    EXPECT_GT(mark.lowY + letters[1].y, base.highY - 0.02);
    EXPECT_DOUBLE_EQ(letters[1].advance, 0);
    EXPECT_FALSE(letters[0].endsGroup);
    EXPECT_TRUE(letters[1].endsGroup);
}

TEST(ShapedText, TakesALetterAndItsAccentForTheAccentedLetter)
{
    for (gs::Font* const with : {&font(), &strokes()}) {
        const auto letters = line(U"e\u0301", *with);
        ASSERT_EQ(letters.size(), 1U);
        EXPECT_TRUE(isSameOutline(*letters[0].glyph, testFonts().glyph(*with, U'\u00E9')));
    }
}

TEST(ShapedText, SetsStrokesWithAccentsThatNoCharacterHas)
{
    const auto letters = line(U"H\u0301", strokes());
    ASSERT_EQ(letters.size(), 2U);
    EXPECT_EQ(letters[0].glyph, &testFonts().glyph(strokes(), U'H'));
    EXPECT_FALSE(letters[1].glyph->isFilled);
    EXPECT_GT(letters[1].y, 1);
    const gs::Box mark = gs::boxOf(letters[1].glyph->path);
    EXPECT_NEAR(letters[0].advance + letters[1].x + mark.center().x,
                gs::boxOf(letters[0].glyph->path).center().x, 0.1);
}

TEST(ShapedText, LeavesPlainLettersAsTheyAreOneByOne)
{
    constexpr std::u32string_view kPlain = U"AV fi To";
    const auto check = [&](const std::vector<gs::ShapedLetter>& letters) {
        ASSERT_GE(letters.size(), kPlain.size());
        for (std::size_t i = 0; i < kPlain.size(); ++i) {
            EXPECT_EQ(letters[i].glyph, &testFonts().glyph(font(), kPlain[i])) << i;
            EXPECT_NEAR(letters[i].advance, letters[i].glyph->advance, 1e-9) << i;
        }
    };
    check(line(kPlain));
    check(line(U"AV fi To q\u0301"));
}

TEST(ShapedText, IsLentAsAWholeByAFontThatHasIt)
{
    const auto lent = line(U"A\u0628\u0628", strokes());
    const auto own = line(U"\u0628\u0628");
    ASSERT_EQ(lent.size(), 3U);
    EXPECT_EQ(lent[0].glyph, &testFonts().glyph(strokes(), U'A'));
    EXPECT_EQ(lent[1].glyph->text, own[0].glyph->text);
    EXPECT_TRUE(isSameOutline(*lent[1].glyph, *own[0].glyph));
    EXPECT_TRUE(isSameOutline(*lent[2].glyph, *own[1].glyph));
}

TEST(ShapedText, ShowsBoxesForWhatNobodyHas)
{
    const auto letters = line(U"\u05D0\U0010FFFD");
    ASSERT_EQ(letters.size(), 2U);
    const bool isBoxFirst = letters[0].character == 1;
    EXPECT_EQ(letters[isBoxFirst ? 0 : 1].glyph, &testFonts().glyph(font(), U'\U0010FFFD'));
}

TEST(ShapedText, ShowsNothingOfMarksOfDirection)
{
    for (gs::Font* const with : {&font(), &strokes()}) {
        const auto letters = line(U"A\u200E\u200B\u202AB\u202C", *with);
        EXPECT_EQ(order(letters), (Order{0, 4}));
        EXPECT_EQ(letters.at(0).glyph, &testFonts().glyph(*with, U'A')); // not a form
    }
}

TEST(ShapedText, ReordersDevanagari)
{
    gs::Font& lohit = font(u"Lohit Devanagari");
    const gs::Glyph& ka = testFonts().glyph(lohit, U'\u0915');
    if (!ka.face || ka.face->name.find("Lohit") == std::string::npos)
        GTEST_SKIP() << "the font is not there";
    const auto letters = line(U"\u0915\u093F", lohit); // the sign is written before its letter
    ASSERT_EQ(letters.size(), 2U);
    EXPECT_TRUE(isSameOutline(*letters[1].glyph, ka));
    EXPECT_EQ(letters[0].glyph->text, u"\u0915\u093F");
    EXPECT_EQ(letters[1].glyph->text, u"");
    EXPECT_LT(line(U"\u0915\u094D\u0937", lohit).size(), 3U); // they become one
}

TEST(ShapedText, IsMeasuredAsItIsDrawn)
{
    gs::ExactTextMeasure own(testFonts()), shared;
    db::TextLook look;
    look.font = TvString(u"DejaVu Sans");
    look.isFamily = true;
    look.height = 2;
    look.widthFactor = 0.5;
    constexpr std::u16string_view kWord = u"\u0628\u0628\u0628";
    const double width = own.width(kWord, look);

    EXPECT_NEAR(width, advance(line(U"\u0628\u0628\u0628")), 1e-9);
    EXPECT_NEAR(shared.width(kWord, look), width, 1e-9);
    const gs::Glyph& alone = testFonts().glyph(font(), U'\u0628');
    EXPECT_GT(std::abs(width - 3 * alone.advance), 0.1);
    const gs::TextShape shape = mtextShape(u"\\fDejaVu Sans;\\W0.5;\\H2;\u0628\u0628\u0628");
    EXPECT_NEAR(shape.runs.at(0).width, width, 1e-9);
    EXPECT_NEAR(shape.extents.width(), width, 0.3);
}

TEST(ShapedText, IsKeptAsItReads)
{
    EXPECT_EQ(lineShape(u"A \u05D0\u05D1 (1)").runs.at(0).text, u"A \u05D0\u05D1 (1)");
    EXPECT_EQ(mtextShape(u"A \u05D0\u05D1 (1)").runs.at(0).text, u"A \u05D0\u05D1 (1)");
}

TEST(ShapedText, IsUnderlinedWhereItStands)
{
    // The first letter of the word stands on the right.
    const gs::TextShape shape = lineShape(u"%%u\u05D0%%u\u05D1\u05D2");
    const auto isLine = [](const gs::TextPart& part) { return !part.isFilled; };
    const auto part = std::find_if(shape.parts.begin(), shape.parts.end(), isLine);
    ASSERT_NE(part, shape.parts.end());
    const auto points = part->path.points();
    ASSERT_EQ(points.size(), 2U);
    EXPECT_NEAR(points[1].x, shape.runs.at(0).width, 1e-9);
    EXPECT_GT(points[0].x, shape.runs.at(0).width / 2);
}

TEST(ShapedParagraphs, WriteWordsFromRightToLeft)
{
    const gs::TextShape shape = mtextShape(u"\\C1;\u05D0\u05D1 \\C2;\u05D2\u05D3");
    EXPECT_GT(boxOf(shape, 1).lowX, boxOf(shape, 2).highX);
    // Within a line that runs the other way they do, too.
    const gs::TextShape within = mtextShape(u"\\C3;AB \\C1;\u05D0\u05D1 \\C2;\u05D2\u05D3");
    EXPECT_LT(boxOf(within, 3).highX, boxOf(within, 2).lowX);
    EXPECT_LT(boxOf(within, 2).highX, boxOf(within, 1).lowX);
}

TEST(ShapedParagraphs, TakeWordsApartWhereTheyRunBothWays)
{
    // "12" behind the letters is on their left.
    const gs::TextShape shape = mtextShape(u"\\fDejaVu Sans;\\C1;\u05D0\u05D1\\C2;12");
    EXPECT_GT(boxOf(shape, 1).lowX, boxOf(shape, 2).highX - 0.05);
    const gs::TextShape same = mtextShape(u"\\fDejaVu Sans;\u05D0\u05D112");
    EXPECT_NEAR(same.runs.at(0).width, shape.runs.at(0).width, 1e-9);
}

TEST(ShapedParagraphs, BreakLinesInTheOrderOfReading)
{
    const gs::TextShape shape = mtextShape(u"\u05D0\u05D0\u05D0 \u05D1\u05D1\u05D1", 4);
    ASSERT_EQ(shape.runs.size(), 2U);
    EXPECT_EQ(shape.runs[0].text, u"\u05D0\u05D0\u05D0");
    EXPECT_EQ(shape.runs[1].text, u"\u05D1\u05D1\u05D1");
    EXPECT_GT(shape.runs[0].origin.y, shape.runs[1].origin.y);
}

TEST(ShapedParagraphs, JustifyTheLastLineWhereItBegins)
{
    const auto lastLeft = [](std::u16string_view text) {
        return mtextShape(std::u16string(u"\\pqj;") + std::u16string(text), 10)
            .runs.back()
            .origin.x;
    };
    EXPECT_NEAR(lastLeft(u"AB"), 0, 1e-9);
    EXPECT_GT(lastLeft(u"\u05D0\u05D1"), 5);
}

TEST(ShapedParagraphs, JoinLettersOverAChangeOfColor)
{
    const gs::TextShape whole = mtextShape(u"\\fDejaVu Sans;\u0628\u0628");
    const gs::TextShape colored = mtextShape(u"\\fDejaVu Sans;\\C1;\u0628\\C2;\u0628");
    ASSERT_EQ(colored.parts.size(), 2U);
    EXPECT_NEAR(colored.runs.at(0).width, whole.runs.at(0).width, 1e-9);
    EXPECT_EQ(colored.parts[0].path.points().size() + colored.parts[1].path.points().size(),
              whole.parts[0].path.points().size());
    // A space between them parts them.
    EXPECT_GT(mtextShape(u"\\fDejaVu Sans;\u0628 \u0628").runs.at(0).width,
              whole.runs.at(0).width + 1);
}

TEST(ShapedParagraphs, AreNotTornApartByTracking)
{
    const auto width = [](std::u16string_view text) {
        return mtextShape(std::u16string(u"\\fDejaVu Sans;") + std::u16string(text)).extents;
    };
    EXPECT_NEAR(width(u"\\T2;\u0628\u0628").width(), width(u"\u0628\u0628").width(), 1e-9);
    EXPECT_GT(width(u"\\T2;\u05D0\u05D1").width(), width(u"\u05D0\u05D1").width() + 0.3);
    // A mark stays over its letter: nothing is beside it.
    EXPECT_NEAR(width(u"\\T2;q\u0301").width(), width(u"q\u0301").width(), 1e-9);
}

TEST(ShapedParagraphs, SlantMarksWithTheirLetters)
{
    const auto points = [](double oblique) {
        TvDbText text;
        setText(text, u"H\u0301");
        text.setOblique(oblique);
        const gs::TextShape shape = shapeOf(text, testFonts());
        std::vector<TvGePoint2d> all;
        for (const TvGePoint2d& point : shape.parts.at(0).path.points())
            all.push_back(point);
        return all;
    };
    const auto upright = points(0), slanted = points(0.5);
    ASSERT_EQ(upright.size(), slanted.size());
    double top = 0;
    for (std::size_t i = 0; i < upright.size(); ++i) {
        EXPECT_NEAR(slanted[i].x, upright[i].x + std::tan(0.5) * upright[i].y, 1e-9);
        EXPECT_NEAR(slanted[i].y, upright[i].y, 1e-9);
        top = std::max(top, upright[i].y);
    }
    EXPECT_GT(top, 1.1); // the mark
}

TEST(HostileShapedText, IsDrawnWithoutEndlessWork)
{
    std::u16string deep;
    for (int i = 0; i < 5'000; ++i)
        deep += i % 2 ? u"\u202B\u05D0" : u"\u202Aa";
    const auto repeated = [](std::u16string_view piece) {
        std::u16string all;
        while (all.size() < 15'000)
            all += piece;
        return all;
    };
    for (const std::u16string& text :
         {deep, repeated(u"\u0628"), repeated(u"a\u05D0"), repeated(u"\u0301"),
          repeated(u"\u2067\u05D0"), repeated(u"\u0915\u094D"), repeated(u"\u200D"),
          repeated(u"\u0644\u0627 "), repeated(u"\\C1;\u0628\\C2;\u0628"),
          repeated(u"\u05D0\\S\u05D0/1;"), repeated(u"\u2028\u05D0"), repeated(u"\xD800\u05D0"),
          repeated(u"\U0010FFFD\u0301")}) {
        for (const gs::TextShape& shape : {lineShape(text), mtextShape(text, 30)}) {
            for (const gs::TextPart& part : shape.parts)
                for (const TvGePoint2d& point : part.path.points())
                    ASSERT_TRUE(std::isfinite(point.x) && std::isfinite(point.y));
        }
    }
}

} // namespace
