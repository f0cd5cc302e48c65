#include <gtest/gtest.h>

#include <gs/flat.h>

#include "shape_painter.h"
#include "text_samples.h"

namespace {

gs::Font& strokes()
{
    return testFonts().find({u"any.shx", false, false, false});
}

TEST(StrokeFont, HasTheLettersOfEuropesLanguages)
{
    for (char32_t c = 0x21; c < 0x180; ++c) {
        if (c >= 0x7F && c <= 0xA0)
            continue;
        const gs::Glyph* glyph = strokes().glyph(c);
        ASSERT_TRUE(glyph) << std::hex << std::uint32_t(c);
        EXPECT_FALSE(glyph->isFilled) << std::hex << std::uint32_t(c);
    }
    for (char32_t c = 0x391; c <= 0x3C9; ++c)
        if (c != 0x3A2) {
            EXPECT_TRUE(strokes().glyph(c)) << std::hex << std::uint32_t(c);
        }
    for (char32_t c = 0x410; c <= 0x451; ++c)
        if (c != 0x450) {
            EXPECT_TRUE(strokes().glyph(c)) << std::hex << std::uint32_t(c);
        }
}

TEST(StrokeFont, DrawsCapitalsAsHighAsTheTextAndDigitsAsWideAsEachOther)
{
    for (const char32_t c : std::u32string(U"ABCDEFGHIJKLMNOPQRSTUVWXYZ\u0416\u03A9")) {
        const gs::Box box = gs::boxOf(strokes().glyph(c)->path);
        EXPECT_NEAR(box.highY, 1, 0.05) << std::uint32_t(c);
        EXPECT_NEAR(box.lowY, 0, 0.06) << std::uint32_t(c);
    }
    for (char32_t c = U'0'; c <= U'9'; ++c)
        EXPECT_EQ(strokes().glyph(c)->advance, strokes().glyph(U'0')->advance);
}

TEST(StrokeFont, PutsAccentsAboveTheMiddleOfTheirLetter)
{
    const gs::Box plain = gs::boxOf(strokes().glyph(U'A')->path);
    const gs::Box accented = gs::boxOf(strokes().glyph(U'\u00C4')->path);
    EXPECT_GT(accented.highY, plain.highY + 0.1);
    EXPECT_EQ(accented.lowX, plain.lowX);
    EXPECT_EQ(strokes().glyph(U'\u00C4')->advance, strokes().glyph(U'A')->advance);
    // The dot makes room for the accent.
    EXPECT_LT(strokes().glyph(U'\u00ED')->path.points().size(),
              strokes().glyph(U'i')->path.points().size());
    // Below: not higher than the letter.
    EXPECT_EQ(gs::boxOf(strokes().glyph(U'\u00C7')->path).highY,
              gs::boxOf(strokes().glyph(U'C')->path).highY);
    EXPECT_LT(gs::boxOf(strokes().glyph(U'\u00C7')->path).lowY, -0.1);
}

TEST(StrokeFont, AccentsOfTheirOwnTakeNoRoom)
{
    EXPECT_EQ(strokes().glyph(U'\u0301')->advance, 0);
}

TEST(StrokeFont, KeepsLettersWithinTheirWidth)
{
    for (char32_t c = 0x21; c < 0x500; ++c)
        if (const gs::Glyph* glyph = strokes().glyph(c); glyph && glyph->advance > 0) {
            const gs::Box box = gs::boxOf(glyph->path);
            EXPECT_GT(box.lowX, -0.2) << std::hex << std::uint32_t(c);
            EXPECT_LT(box.highX, glyph->advance + 0.02) << std::hex << std::uint32_t(c);
            EXPECT_GT(box.lowY, -0.5) << std::hex << std::uint32_t(c);
        }
}

TEST(StrokeFont, HasTheSignsOfTolerancesUnderTheirLetters)
{
    gs::Font& signs = testFonts().find({u"GDT.SHX", false, false, false});
    for (char32_t c = U'a'; c <= U'z'; ++c)
        ASSERT_TRUE(signs.glyph(c)) << std::uint32_t(c);
    EXPECT_NE(signs.glyph(U'j')->path.points().size(), strokes().glyph(U'j')->path.points().size());
    EXPECT_FALSE(signs.glyph(U'5')); // lent by the font of letters
}

void table(const std::string& name, const std::vector<char32_t>& letters, std::u16string font)
{
    constexpr int kColumns = 24;
    const int rows = (static_cast<int>(letters.size()) + kColumns - 1) / kColumns;
    ShapePainter painter({0, -1.0 * rows * 2.2, kColumns * 1.6, 0.6}, 34);
    gs::Font& f = testFonts().find({font, false, false, false});
    for (std::size_t i = 0; i < letters.size(); ++i)
        if (const gs::Glyph* glyph = f.glyph(letters[i])) {
            const double x = static_cast<double>(i % kColumns) * 1.6 + 0.3;
            const double y = -static_cast<double>(i / kColumns) * 2.2 - 1.3;
            painter.stroke(glyph->path, gs::FlatMap::moving(x, y));
        }
    painter.save(name);
}

// For looking at.
TEST(StrokeFont, SampleTable)
{
    if (!std::getenv("KV_SAMPLES"))
        GTEST_SKIP() << "KV_SAMPLES names no folder";
    std::vector<char32_t> letters;
    const auto add = [&](char32_t from, char32_t to) {
        for (char32_t c = from; c <= to; ++c)
            if (strokes().glyph(c))
                letters.push_back(c);
    };
    add(0x21, 0x17F);
    table("stroke_latin", letters, u"x.shx");
    letters.clear();
    add(0x180, 0xFFFF);
    table("stroke_other", letters, u"x.shx");
    letters.clear();
    for (char32_t c = 'a'; c <= 'z'; ++c)
        letters.push_back(c);
    table("stroke_signs", letters, u"gdt.shx");
}

} // namespace
