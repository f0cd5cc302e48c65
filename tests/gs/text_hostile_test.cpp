#include <limits>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "text_samples.h"

namespace {

bool isFinite(const gs::TextShape& shape)
{
    for (const gs::TextPart& part : shape.parts)
        for (const TvGePoint2d& point : part.path.points())
            if (!std::isfinite(point.x) || !std::isfinite(point.y))
                return false;
    return true;
}

// As long as a text of a drawing can be.
std::u16string repeated(std::u16string_view piece, std::size_t units = 65'000)
{
    std::u16string all;
    while (all.size() + piece.size() <= units)
        all += piece;
    return all;
}

TEST(HostileText, MayRepeatAnyCodeForAsLongAsItLikes)
{
    for (const std::u16string_view piece : {u"{",
                                            u"}",
                                            u"{\\C1;",
                                            u"\\P",
                                            u"\\N",
                                            u"\\S",
                                            u"\\S1/2;",
                                            u"\\S/;",
                                            u"^I",
                                            u"\\H2x;a",
                                            u"\\H0.1x;a",
                                            u"\\pi;\\P",
                                            u"\\pt1,2,3,4,5,6,7,8,9;\\P",
                                            u"\\f",
                                            u"\\fx|b1;a",
                                            u"a ",
                                            u"%%",
                                            u"\\U+",
                                            u"\\U+D800",
                                            u"\\M+",
                                            u"\\A1;\\S1/2;",
                                            u"\\L{",
                                            u"\\p",
                                            u"\\",
                                            u"^",
                                            u" ",
                                            u"\\pqj; a ",
                                            u"{\\H1.1x;{\\W1.1x;a",
                                            u"\\C1;a\\C2;b"}) {
        const gs::TextShape shape = mtextShape(repeated(piece), 5);
        EXPECT_TRUE(isFinite(shape)) << TvString(piece).utf8();
        EXPECT_LT(shape.parts.size(), 70'000u);
    }
}

TEST(HostileText, NamesFontsWithoutEnd)
{
    std::u16string all;
    for (char16_t c = 0x100; c < 0x100 + 60; ++c)
        all += std::u16string(u"\\f") + c + u";a";
    EXPECT_EQ(mtextShape(all).runs.size(), 1u);
}

TEST(HostileText, KeepsItsHeightWhenACodeAsksForAnImpossibleOne)
{
    for (const std::u16string_view code :
         {u"\\H0;", u"\\H-1;", u"\\Hnan;", u"\\H1e999;", u"\\Hinf;", u"\\H;", u"\\H1e308x;",
          u"\\H99999999999999999999999999;", u"\\Hx;"}) {
        const gs::TextShape shape = mtextShape(std::u16string(code) + u"H");
        EXPECT_NEAR(shape.extents.height(), 1, 1e-9) << TvString(code).utf8();
    }
    for (const std::u16string_view code :
         {u"\\W0;", u"\\Wnan;", u"\\Q1e300;", u"\\T-5;", u"\\T1e9;", u"\\C-5;", u"\\C9e99;",
          u"\\c1e99;", u"\\A9;", u"\\pi1e300,l-1e300,r1e300,t1e300,se1e300,b1e300;"}) {
        const gs::TextShape shape = mtextShape(std::u16string(code) + u"HI HI", 5);
        EXPECT_TRUE(isFinite(shape)) << TvString(code).utf8();
        EXPECT_FALSE(shape.isEmpty()) << TvString(code).utf8();
    }
}

TEST(HostileText, HasFieldsThatMakeNoSense)
{
    const double bad[] = {std::nan(""), std::numeric_limits<double>::infinity(), -1, 0, 1e300,
                          1e-300};
    for (const double value : bad) {
        for (const char* field : {"rect_width", "line_factor", "rect_height", "bg_scale",
                                  "col_width", "gutter", "height"}) {
            TvDbMText text;
            setMText(text, u"a b\\Nc");
            db::RecordEditor edit = text.edit();
            edit.setReal("col_width", 5);
            edit.setReal("gutter", 1);
            edit.setReal("rect_height", 2);
            edit.setFlag("auto_height", true);
            edit.setInteger("n_heights", 1 << 30);
            edit.setInteger("columns", 1);
            edit.setInteger("bg_flags", 17);
            edit.setReal(field, value);
            EXPECT_TRUE(isFinite(shapeOf(text, testFonts()))) << field << " " << value;
        }
        TvDbMText text;
        setMText(text, u"a");
        text.edit().setPoint("x_dir", {value, value, value});
        text.edit().setPoint("normal", {value, 0, value});
        EXPECT_TRUE(isFinite(shapeOf(text, testFonts()))) << value;
        TvDbFcf tolerance;
        tolerance.setText(TvString(u"a%%vb"));
        tolerance.edit().setPoint("ins_pt", {value, value, 0});
        EXPECT_TRUE(isFinite(shapeOf(tolerance, testFonts()))) << value;
    }
}

TEST(HostileText, MayBeAToleranceWithoutEnd)
{
    TvDbFcf tolerance;
    for (const std::u16string_view piece : {u"%%v", u"a%%v", u"^J", u"a^J", u"\n"}) {
        tolerance.setText(TvString(repeated(piece)));
        EXPECT_TRUE(isFinite(shapeOf(tolerance, testFonts())));
    }
}

// Texts put together from what means something.
std::u16string codes()
{
    static const std::vector<std::u16string> pieces = {
        u"\\",     u"{",   u"}",   u";",     u"%%",   u"^",    u"H",      u"\\H",
        u"2x;",    u"\\S", u"/",   u"#",     u"a",    u" ",    u"\\P",    u"\\p",
        u"i1,",    u"l2,", u"t3,", u"qj",    u"qc",   u"se",   u"\\f",    u"Arial|b1",
        u"\\C1;",  u"^I",  u"\\N", u"\\A1;", u"\\U+", u"00E9", u"\\L",    u"\\l",
        u"\\T",    u"\\Q", u"\\W", u"0.5",   u"-3",   u"1e9",  u"\xD800", u"\xDC00",
        u"\u4E2D", u"\\~", u"%%u", u"%%d",   u"%%065"};
    const auto chosen = *rc::gen::container<std::vector<std::size_t>>(
        rc::gen::inRange<std::size_t>(0, pieces.size()));
    std::u16string all;
    for (const std::size_t piece : chosen)
        all += pieces[piece];
    return all;
}

RC_GTEST_PROP(AnyText, IsDrawnWithFiniteNumbersAndRunsWithinItsExtents, ())
{
    const std::u16string text = codes();
    const double width = *rc::gen::element(0.0, 3.0, 10.0);
    const gs::TextShape shape = mtextShape(text, width);
    RC_ASSERT(isFinite(shape));
    RC_ASSERT(isFinite(lineShape(text)));
    for (const gs::TextRun& run : shape.runs)
        RC_ASSERT(std::isfinite(run.origin.x) && std::isfinite(run.origin.y) &&
                  std::isfinite(run.width) && run.height > 0 && !run.text.empty());
}

} // namespace
