#include <numbers>

#include <gtest/gtest.h>

#include "text_samples.h"

namespace {

constexpr double kNear = 1e-9;

/// The text of all runs, one line of the paper each.
std::vector<std::u16string> linesOf(const gs::TextShape& shape)
{
    std::vector<std::u16string> lines;
    double y = std::nan("");
    for (const gs::TextRun& run : shape.runs) {
        if (run.origin.y == y)
            lines.back() += u"|" + run.text;
        else
            lines.push_back(run.text);
        y = run.origin.y;
    }
    return lines;
}

std::u16string shown(std::u16string_view contents)
{
    std::u16string all;
    for (const std::u16string& line : linesOf(mtextShape(contents)))
        all += (all.empty() ? u"" : u"/") + line;
    return all;
}

TEST(MText, ReplacesCodesByTheirCharacters)
{
    const std::pair<std::u16string_view, std::u16string_view> cases[] = {
        {u"a\\Pb", u"a/b"},
        {u"a^Jb", u"a/b"},
        {u"a\nb\r", u"a/b"},
        {u"a^Ib", u"a|b"},
        {u"a\tb", u"a|b"},
        {u"a^Mb^ c^", u"ab^c^"},
        {u"\\\\\\{\\}", u"\\{}"},
        {u"a\\~b", u"a\u00A0b"},
        {u"%%c%%d%%p%%%", u"\u00D8\u00B0\u00B1%"},
        {u"\\U+00E9\\u+00e9", u"\u00E9\u00E9"},
        {u"\\M+182A0", u"\u3042"},
        {u"\\Lx\\l\\Ox\\o\\Kx\\k", u"xxx"},
        {u"{\\C1;a}{\\c255;b}{\\fArial|b1|i0;c}{\\Ftxt.shx|c0;d}", u"abcd"},
        {u"\\H2;a\\H0.5x;b\\W2;c\\Q10;d\\T2;e\\A1;f", u"abcdef"},
        {u"\\pi1,l2,r3,qc,t4,8;a", u"a"},
        {u"%%ua%%u%%Ob%%o", u"ab"},
        {u"\\S1/2;\\S1#2;\\S+1^-2;", u"1/21/2+1/-2"},
        {u"\\S a ^ b ;", u"a/b"},
        {u"\\Splain;", u"plain"},
        {u"\\S1\\/2/3\\;4;", u"1/2/3;4"},
        {u"{a{b}c", u"abc"},
        {u"a}b}}", u"ab"},
        {u"\\Zx", u"Zx"},
        {u"\\H2", u""},
        {u"a\\", u"a\\"},
        {u"", u""},
    };
    for (const auto& [contents, text] : cases)
        EXPECT_EQ(TvString(shown(contents)), TvString(text)) << TvString(contents).utf8();
}

TEST(MText, HangsFromItsPointByAttachment)
{
    using M = TvDbMText;
    const std::u16string_view text = u"HHH\\PH\\PH";
    const auto box = [&](M::AttachmentPoint at, double width = 0) {
        return mtextShape(text, width, 1, at).extents;
    };
    const double high = 1 + 2 * 5.0 / 3;
    EXPECT_NEAR(box(M::kTopLeft).highY, 0, kNear);
    EXPECT_NEAR(box(M::kTopLeft).lowX, 0, kNear);
    EXPECT_NEAR(box(M::kTopLeft).lowY, -high, kNear);
    EXPECT_NEAR(box(M::kMiddleCenter).center().x, 0, kNear);
    EXPECT_NEAR(box(M::kMiddleCenter).center().y, 0, kNear);
    EXPECT_NEAR(box(M::kBottomRight).lowY, 0, kNear);
    EXPECT_NEAR(box(M::kBottomRight).highX, 0, kNear);
    EXPECT_NEAR(box(M::kBottomRight, 30).highX, 0, kNear);
    EXPECT_NEAR(box(M::kTopCenter, 30).center().x, 0, kNear);
}

TEST(MText, BreaksLinesBetweenWordsAtItsWidth)
{
    const double width = inkWidth(u"aaa bbb") + 0.01;
    EXPECT_EQ(linesOf(mtextShape(u"aaa bbb ccc", width)),
              (std::vector<std::u16string>{u"aaa bbb", u"ccc"}));
    EXPECT_EQ(linesOf(mtextShape(u"aaa bbb aaa", width - 0.02)),
              (std::vector<std::u16string>{u"aaa", u"bbb", u"aaa"}));
    EXPECT_EQ(linesOf(mtextShape(u"aaa bbb ccc")), (std::vector<std::u16string>{u"aaa bbb ccc"}));
    // A word that is too wide stands alone; changes of look within a word do not break it.
    EXPECT_EQ(linesOf(mtextShape(u"a bbbbbb{\\C1;bbbbbb} c", width)),
              (std::vector<std::u16string>{u"a", u"bbbbbbbbbbbb", u"c"}));
    EXPECT_EQ(linesOf(mtextShape(u"aaa\\~bbb ccc", width - 0.02)),
              (std::vector<std::u16string>{u"aaa\u00A0bbb", u"ccc"}));
    EXPECT_EQ(linesOf(mtextShape(u"\u4E2D\u6587\u4E2D\u6587", 2)).size(), 2u);
}

TEST(MText, NoLineIsWiderThanItsWidthWhenAllWordsFit)
{
    std::u16string words;
    for (int i = 0; i < 300; ++i)
        words += std::u16string(static_cast<std::size_t>(i * 7 % 9 + 1), u'e') + u" ";
    for (const double width : {8.0, 10.0, 17.3}) {
        const gs::TextShape shape = mtextShape(words, width);
        std::u16string joined;
        for (const gs::TextRun& run : shape.runs) {
            EXPECT_LE(run.width, width + kNear);
            joined += run.text + u" ";
        }
        EXPECT_EQ(joined, words);
    }
}

double stepOf(std::u16string_view contents, double factor, int style)
{
    TvDbMText text;
    setMText(text, contents);
    text.setLineSpacingFactor(factor);
    text.edit().setInteger("line_style", style);
    const gs::TextShape shape = shapeOf(text, testFonts());
    return shape.runs.at(0).origin.y - shape.runs.at(1).origin.y;
}

TEST(MText, SpacesItsLines)
{
    EXPECT_NEAR(stepOf(u"a\\Pb", 1, 1), 5.0 / 3, kNear);
    EXPECT_NEAR(stepOf(u"a\\Pb", 1.5, 1), 2.5, kNear);
    EXPECT_NEAR(stepOf(u"a\\P\\H2;b", 1, 1), 10.0 / 3, kNear);
    EXPECT_NEAR(stepOf(u"a\\P\\H2;b", 1, 2), 5.0 / 3, kNear); // exactly
    EXPECT_NEAR(stepOf(u"a\\P\\pse4;b", 1, 1), 4, kNear);
    EXPECT_NEAR(stepOf(u"a\\P\\psm2;b", 1, 1), 10.0 / 3, kNear);
    EXPECT_NEAR(stepOf(u"a\\P\\psa4;b", 1, 1), 4, kNear);
    EXPECT_NEAR(stepOf(u"a\\P\\Pb", 1, 1), 10.0 / 3, kNear); // an empty line between
    EXPECT_NEAR(stepOf(u"a\\P\\pb2;b", 1, 1), 5.0 / 3 + 2, kNear);
    EXPECT_GT(stepOf(u"a\\P\\S1/2;", 1, 1), 2.5); // a fraction needs more
}

TEST(MText, ChangesTheLookWithinBraces)
{
    const gs::TextShape shape = mtextShape(u"H{\\C1;\\H3;H}H");
    ASSERT_EQ(shape.parts.size(), 2u);
    EXPECT_EQ(shape.parts[0].color, gs::OwnColor());
    EXPECT_EQ(shape.parts[1].color, gs::OwnColor::fromIndex(1));
    EXPECT_NEAR(gs::boxOf(shape.parts[0].path).height(), 1, kNear);
    EXPECT_NEAR(gs::boxOf(shape.parts[1].path).height(), 3, kNear);
    EXPECT_EQ(mtextShape(u"\\c255;H").parts.at(0).color, gs::OwnColor::fromRgb(0xFF0000));
    EXPECT_EQ(mtextShape(u"\\C256;H").parts.at(0).color.kind, gs::OwnColor::Kind::ByLayer);
    EXPECT_TRUE(mtextShape(u"\\fArial;H").parts.at(0).isFilled);
    EXPECT_FALSE(mtextShape(u"{\\fArial;}H").parts.at(0).isFilled);
}

TEST(MText, ScalesLettersByItsCodes)
{
    const double plain = mtextShape(u"HH").extents.width();
    EXPECT_NEAR(mtextShape(u"\\W2;HH").extents.width(), 2 * plain, kNear);
    EXPECT_NEAR(mtextShape(u"\\W2;\\W0.5x;HH").extents.width(), plain, kNear);
    EXPECT_NEAR(mtextShape(u"\\Q45;HH").extents.width(), plain + 1, kNear);
    EXPECT_GT(mtextShape(u"\\T2;HH").extents.width(), plain * 1.3);
    EXPECT_NEAR(mtextShape(u"\\H2x;HH").extents.width(), 2 * plain, kNear);
}

TEST(MText, AlignsItsParagraphs)
{
    const auto left = [](std::u16string_view contents) {
        return mtextShape(contents, 20).runs.at(0).origin.x;
    };
    const double width = mtextShape(u"HH").runs.at(0).width;
    EXPECT_NEAR(left(u"HH"), 0, kNear);
    EXPECT_NEAR(left(u"\\pqr;HH"), 20 - width, kNear);
    EXPECT_NEAR(left(u"\\pqc;HH"), 10 - width / 2, kNear);
    EXPECT_NEAR(left(u"\\pxqc;HH"), 10 - width / 2, kNear);
    EXPECT_NEAR(left(u"\\pl3;HH"), 3, kNear);
    EXPECT_NEAR(left(u"\\pl3,i-2;HH"), 1, kNear);
    EXPECT_NEAR(left(u"\\pr4,qr;HH"), 16 - width, kNear);
    // The indent of the first line is not that of the next.
    const gs::TextShape two = mtextShape(u"\\pi2,l1;HHHHHHHHHHHH HHHHHHHHHHHH", 20);
    EXPECT_NEAR(two.runs.at(0).origin.x, 3, kNear);
    EXPECT_NEAR(two.runs.at(1).origin.x, 1, kNear);
}

TEST(MText, JustifiesAllLinesOfAParagraphButTheLast)
{
    const gs::TextShape shape = mtextShape(u"\\pqj;aa bb cc dd ee ff gg hh ii jj kk ll", 8);
    ASSERT_GT(shape.runs.size(), 2u);
    for (std::size_t i = 0; i + 1 < shape.runs.size(); ++i)
        EXPECT_NEAR(shape.runs[i].width, 8, 1e-6);
    EXPECT_LT(shape.runs.back().width, 8);
}

TEST(MText, GoesToItsTabStops)
{
    const auto second = [](std::u16string_view contents) {
        return mtextShape(contents, 50).runs.at(1);
    };
    EXPECT_NEAR(second(u"a^Ib").origin.x, 4, kNear);
    EXPECT_NEAR(second(u"\\pt7,15;a^Ib").origin.x, 7, kNear);
    EXPECT_NEAR(second(u"\\pxt7,15;aaaaaaaaaaaa^Ib").origin.x, 15, kNear);
    const gs::TextRun right = second(u"\\ptr20;a^Ibbb");
    EXPECT_NEAR(right.origin.x + right.width, 20, kNear);
    const gs::TextRun center = second(u"\\ptc20;a^Ibbb");
    EXPECT_NEAR(center.origin.x + center.width / 2, 20, kNear);
    EXPECT_NEAR(second(u"\\pi-3,l3,t3;1.^IHH").origin.x, 3, kNear); // a list
}

TEST(MText, StacksFractions)
{
    const gs::Box fraction = mtextShape(u"\\S1/2;").extents;
    EXPECT_NEAR(fraction.height(), 2.6, 0.01);
    const gs::TextShape middle = mtextShape(u"\\A1;H\\S1/2;");
    EXPECT_NEAR(middle.extents.center().y, -1.3, 0.01); // the middle of the line is that of both
    // A line between the two for a fraction, none for tolerances.
    EXPECT_EQ(mtextShape(u"\\S1/1;").parts.at(0).path.points().size(),
              mtextShape(u"\\S1^1;").parts.at(0).path.points().size() + 2);
    EXPECT_NEAR(mtextShape(u"\\S1#1;").extents.height(), 2, 0.01);
    EXPECT_LT(mtextShape(u"\\S111#222;").extents.width(), inkWidth(u"111222") + 0.3);
}

TEST(MText, PutsSmallLettersWhereItIsToldToBesideLargeOnes)
{
    const auto low = [](std::u16string_view code) {
        const gs::TextShape shape = mtextShape(u"\\H3;H{\\H1;\\C1;" + std::u16string(code) + u"H}");
        return gs::boxOf(shape.parts.at(1).path).lowY + 3; // above the baseline
    };
    EXPECT_NEAR(low(u"\\A0;"), 0, kNear);
    EXPECT_NEAR(low(u"\\A1;"), 1, kNear);
    EXPECT_NEAR(low(u"\\A2;"), 2, kNear);
}

TEST(MText, DrawsLinesAtItsLettersInOneGo)
{
    // Between pieces of one look, too, but not behind the last letter.
    const gs::TextShape shape = mtextShape(u"\\LHH HH\\l");
    gs::Box lines;
    for (const TvGePoint2d& point : shape.parts.at(0).path.points())
        if (point.y < -1.1)
            lines.add(point);
    EXPECT_NEAR(lines.lowX, 0, kNear);
    EXPECT_NEAR(lines.highX, shape.runs.at(0).width, kNear);
    EXPECT_NEAR(lines.highX, shape.extents.highX, kNear);
}

TEST(MText, FillsColumnsFromLeftToRight)
{
    TvDbMText text;
    setMText(text, u"a\\Pb\\Pc\\Pd\\Pe", 100);
    db::RecordEditor edit = text.edit();
    edit.setReal("col_width", 10);
    edit.setReal("gutter", 2);
    edit.setReal("rect_height", 1 + 5.0 / 3 + 0.01);
    edit.setInteger("n_heights", 3);
    edit.setFlag("auto_height", true);
    edit.setInteger("columns", 2);
    const auto lefts = [&] {
        std::vector<double> x;
        for (const gs::TextRun& run : shapeOf(text, testFonts()).runs)
            x.push_back(run.origin.x);
        return x;
    };
    EXPECT_EQ(lefts(), (std::vector<double>{0, 0, 12, 12, 24}));
    edit.setFlag("reversed", true);
    EXPECT_EQ(lefts(), (std::vector<double>{24, 24, 12, 12, 0}));
    edit.setFlag("reversed", false);
    edit.setInteger("columns", 1);
    edit.setInteger("n_heights", 2);
    EXPECT_EQ(lefts(), (std::vector<double>{0, 0, 12, 12, 12})); // the last one takes the rest
    text.setContents(TvString(u"a\\Nb\\Pc"));
    EXPECT_EQ(lefts(), (std::vector<double>{0, 12, 12}));
}

TEST(MText, FillsColumnsOfTheirOwnHeights)
{
    TvDbMText text;
    setMText(text, u"a\\Pb\\Pc\\Pd\\Pe", 100);
    db::RecordEditor edit = text.edit();
    edit.setReal("col_width", 10);
    edit.setReal("gutter", 2);
    db::ArrayEditor heights = edit.array("heights");
    heights.resize(3);
    const auto lefts = [&](double first, double second) {
        heights.setReal(0, first);
        heights.setReal(1, second);
        edit.setInteger("columns", 2);
        std::vector<double> x;
        for (const gs::TextRun& run : shapeOf(text, testFonts()).runs)
            x.push_back(run.origin.x);
        return x;
    };
    EXPECT_EQ(lefts(1, 3), (std::vector<double>{0, 12, 12, 24, 24}));
    EXPECT_EQ(lefts(-3, -1), (std::vector<double>{0, 0, 12, 24, 24}));
    EXPECT_EQ(lefts(0, 1), (std::vector<double>{0, 0, 0, 0, 0}));
}

TEST(MText, HasABackgroundAroundItsFrame)
{
    TvDbMText text;
    setMText(text, u"HH", 10);
    EXPECT_FALSE(shapeOf(text, testFonts()).background);
    db::RecordEditor edit = text.edit();
    edit.setReal("bg_scale", 1.25);
    edit.setInteger("bg_flags", 3);
    const auto background = shapeOf(text, testFonts()).background;
    ASSERT_TRUE(background);
    EXPECT_TRUE(background->usesPaperColor);
    const gs::Box box = gs::boxOf(background->area);
    EXPECT_NEAR(box.lowX, -0.25, kNear);
    EXPECT_NEAR(box.highX, 10.25, kNear);
    EXPECT_NEAR(box.highY, 0.25, kNear);
    EXPECT_NEAR(box.lowY, -1.25, kNear);
    edit.setInteger("bg_flags", 16);
    EXPECT_TRUE(shapeOf(text, testFonts()).background->hasFrame);
    EXPECT_FALSE(shapeOf(text, testFonts()).background->isFilled);
}

TEST(MText, LiesInThePlaneOfItsDirectionAndNormal)
{
    TvDbMText text;
    setMText(text, u"H");
    text.setLocation({1, 2, 3});
    text.setDirection({0, 5, 0});
    const gs::TextShape shape = shapeOf(text, testFonts());
    EXPECT_TRUE((shape.placement * TvGePoint3d()).isEqualTo({1, 2, 3}));
    EXPECT_TRUE((shape.placement * TvGePoint3d(1, 0, 0)).isEqualTo({1, 3, 3}));
    EXPECT_TRUE((shape.placement * TvGePoint3d(0, 1, 0)).isEqualTo({0, 2, 3}));
    text.setDirection({0, 0, 1}); // no direction in its plane
    EXPECT_FALSE(shapeOf(text, testFonts()).isEmpty());
}

TEST(MText, OfALeaderIsDrawnWithTheLeadersLook)
{
    TvDbMLeader leader;
    EXPECT_TRUE(shapeOf(leader, testFonts()).isEmpty());
    db::RecordEditor context = leader.edit().structure("ctx");
    context.setFlag("has_text", true);
    context.setText("text", u"H\\PH");
    context.setReal("text_height", 2);
    context.setPoint("location", {4, 5, 0});
    context.setPoint("direction", {1, 0, 0});
    context.setPoint("normal", {0, 0, 1});
    const gs::TextShape shape = shapeOf(leader, testFonts());
    ASSERT_EQ(shape.runs.size(), 2u);
    EXPECT_NEAR(shape.extents.highY, 0, kNear);
    EXPECT_NEAR(shape.extents.lowY, -2 - 10.0 / 3, kNear);
    EXPECT_TRUE((shape.placement * TvGePoint3d()).isEqualTo({4, 5, 0}));
}

TEST(Tolerance, DrawsACellForEachPart)
{
    TvDbFcf tolerance;
    tolerance.setText(TvString(u"{\\Fgdt;j}%%v0.5%%v%%vA^J%%vB"));
    tolerance.setLocation({7, 8, 0});
    const gs::TextShape shape = shapeOf(tolerance, testFonts());

    ASSERT_EQ(shape.runs.size(), 4u);
    EXPECT_EQ(shape.runs[1].text, u"0.5");
    EXPECT_LT(shape.runs[3].origin.y, shape.runs[0].origin.y);
    EXPECT_NEAR(shape.extents.lowX, 0, kNear);
    EXPECT_NEAR(shape.extents.highY, 0.18, kNear); // half of the height with its gaps
    EXPECT_NEAR(shape.extents.lowY, -0.54, kNear);
    EXPECT_TRUE((shape.placement * TvGePoint3d()).isEqualTo({7, 8, 0}));
}

TEST(MText, RunsDownwardsFromTheRightToTheLeft)
{
    TvDbMText text;
    text.setTextHeight(3);
    db::RecordEditor edit = text.edit();
    edit.setInteger("flow", 3);
    edit.setInteger("attachment", 1);
    text.setContents(TvString(u"ABC\\PDE"));
    const gs::TextShape shape = gs::shapeOf(text, testFonts());
    ASSERT_EQ(shape.runs.size(), 2U);
    EXPECT_EQ(shape.runs[0].text, u"ABC");
    EXPECT_EQ(shape.runs[1].text, u"DE");
    EXPECT_NEAR(shape.runs[0].direction.y, -1, kNear);
    EXPECT_NEAR(shape.runs[0].width, 2 * 4.5 + 3, kNear); // a step of half as much again
    EXPECT_NEAR(shape.runs[0].origin.x - shape.runs[1].origin.x, 5, kNear);
    EXPECT_NEAR(shape.extents.highY, 0, 0.1);
    EXPECT_NEAR(shape.extents.lowY, -12, 0.1);
    EXPECT_GE(shape.extents.lowX, -0.1);
}

TEST(MText, DownwardsEndsAColumnAtItsHeight)
{
    TvDbMText text;
    text.setTextHeight(2);
    db::RecordEditor edit = text.edit();
    edit.setInteger("flow", 3);
    edit.setReal("rect_height", 6.5);
    text.setContents(TvString(u"ABCDE"));
    const gs::TextShape shape = gs::shapeOf(text, testFonts());
    ASSERT_EQ(shape.runs.size(), 3U);
    EXPECT_EQ(shape.runs[0].text, u"AB");
    EXPECT_EQ(shape.runs[2].text, u"E");
}

} // namespace
