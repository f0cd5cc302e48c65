#include <cmath>
#include <limits>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <gs/linetype.h>

#include "text_samples.h"

namespace {

gs::LinePattern patternOf(std::initializer_list<double> lengths)
{
    gs::LinePattern pattern;
    for (const double length : lengths)
        pattern.dashes.push_back({length, {}});
    return pattern;
}

gs::Path lineTo(TvGePoint2d end)
{
    gs::Path path;
    path.moveTo({0, 0});
    path.lineTo(end);
    return path;
}

/// The length of each dash.
std::vector<double> lengthsOf(const gs::Path& path)
{
    std::vector<double> lengths;
    std::size_t point = 0;
    for (const gs::Path::Verb verb : path.verbs()) {
        if (verb == gs::Path::Verb::Move)
            lengths.push_back(0);
        else
            lengths.back() += path.points()[point].distanceTo(path.points()[point - 1]);
        ++point;
    }
    return lengths;
}

std::vector<double> cut(const gs::Path& path, const gs::LinePattern& pattern,
                        const gs::DashOptions& options = {})
{
    return lengthsOf(dashed(path, pattern, options, nullptr).lines);
}

void expectNear(const std::vector<double>& found, const std::vector<double>& expected)
{
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i)
        EXPECT_NEAR(found[i], expected[i], 1e-9) << i;
}

TEST(Dashes, BeginAndEndALineWithHalfADashAndHalfTheRest)
{
    expectNear(cut(lineTo({12, 0}), patternOf({2, -1})), {1, 2, 2, 2, 1});
    expectNear(cut(lineTo({13, 0}), patternOf({2, -1})), {1.5, 2, 2, 2, 1.5});
    expectNear(cut(lineTo({0, 3}), patternOf({2, -1})), {1, 1});
}

TEST(Dashes, AreDotsWhereThePatternHasNoLength)
{
    expectNear(cut(lineTo({10, 0}), patternOf({2, -1, 0, -2})), {1, 0, 2, 0, 1});
}

TEST(Dashes, BeginWithThePatternWhenThatBeginsWithoutADash)
{
    expectNear(cut(lineTo({5, 0}), patternOf({0, -1})), {0, 0, 0, 0, 0});
    expectNear(cut(lineTo({6, 0}), patternOf({-1, 2})), {2, 2});
}

TEST(Dashes, AreScaled)
{
    gs::DashOptions options;
    options.scale = 2;
    expectNear(cut(lineTo({12, 0}), patternOf({2, -1}), options), {2, 4, 2});
}

TEST(Dashes, LeaveShortLinesWhole)
{
    expectNear(cut(lineTo({2.9, 0}), patternOf({2, -1})), {2.9});
    expectNear(cut(lineTo({0, 0}), patternOf({2, -1})), {0});
}

TEST(Dashes, RunOverCornersOrBeginAnewBehindThem)
{
    gs::Path corner;
    corner.moveTo({0, 0});
    corner.lineTo({4.5, 0});
    corner.lineTo({4.5, 4.5});
    expectNear(cut(corner, patternOf({2, -1})), {1, 2, 2, 1});
    gs::DashOptions anew;
    anew.continuesOverCorners = false;
    expectNear(cut(corner, patternOf({2, -1}), anew), {1.75, 1.75, 1.75, 1.75});
}

TEST(Dashes, BendWithTheirLine)
{
    gs::Path corner;
    corner.moveTo({0, 0});
    corner.lineTo({5, 0});
    corner.lineTo({5, 4});
    const gs::Path lines = dashed(corner, patternOf({2, -1}), {}, nullptr).lines;
    // 1, gap 1, 2 (2 to 4), gap to 5, from 5 upwards
    EXPECT_TRUE(lines.points()[4].isEqualTo({5, 0}));
    EXPECT_TRUE(lines.points()[5].isEqualTo({5, 2}));
    gs::Path closed = corner;
    closed.close();
    EXPECT_TRUE(
        dashed(closed, patternOf({2, -1}), {}, nullptr).lines.points().back().isEqualTo({0, 0}));
}

TEST(Dashes, FollowCurvesByTheirLength)
{
    constexpr double kHandle = 0.5522847498 * 10;
    gs::Path quarter;
    quarter.moveTo({10, 0});
    quarter.curveTo({10, kHandle}, {kHandle, 10}, {0, 10});
    const gs::DashedPath out = dashed(quarter, patternOf({1, -1}), {}, nullptr);
    const auto lengths = lengthsOf(out.lines);
    EXPECT_EQ(lengths.size(), 8u); // 15.7 long
    for (std::size_t i = 1; i + 1 < lengths.size(); ++i)
        EXPECT_NEAR(lengths[i], 1, 1e-9);
    for (const TvGePoint2d& point : out.lines.points())
        EXPECT_NEAR(std::hypot(point.x, point.y), 10, 0.01);
}

TEST(Dashes, OfAnArcOfSeveralCurvesDoNotBeginAnew)
{
    gs::Path curves;
    curves.moveTo({0, 0});
    curves.curveTo({1, 0}, {2, 0}, {3.5, 0});
    curves.curveTo({4, 0}, {5, 0}, {7, 0});
    gs::DashOptions anew;
    anew.continuesOverCorners = false;
    EXPECT_EQ(cut(curves, patternOf({2, -1}), anew).size(), 3u);
}

TEST(Dashes, KeepSubpathsApart)
{
    gs::Path two = lineTo({3, 0});
    two.moveTo({100, 0});
    two.lineTo({103, 0});
    expectNear(cut(two, patternOf({2, -1})), {1, 1, 1, 1});
}

TEST(Dashes, WriteTextsIntoTheLine)
{
    gs::LinePattern gas = patternOf({4, -2, -2});
    gs::LinePattern::Text text;
    text.text = u"H";
    text.height = 1;
    text.offset = {-0.5, -0.5};
    gas.dashes[1].texts.push_back(text);
    const gs::DashedPath out = dashed(lineTo({16, 0}), gas, {}, &testFonts());
    ASSERT_EQ(out.texts.size(), 1u);
    const gs::Box box = gs::boxOf(out.texts[0].path);
    EXPECT_NEAR(box.lowX, 3.5, 1e-9); // half a dash, the gap, back by the offset
    EXPECT_NEAR(box.lowY, -0.5, 1e-9);
    EXPECT_NEAR(box.highY, 0.5, 1e-9);
    EXPECT_TRUE(dashed(lineTo({16, 0}), gas, {}, nullptr).texts.empty());

    // Along a line to the left it stands on its head, unless it is told not to.
    const auto low = [&](bool staysReadable, bool isUpright) {
        gas.dashes[1].texts[0].staysReadable = staysReadable;
        gas.dashes[1].texts[0].isUpright = isUpright;
        gas.dashes[1].texts[0].text = u"L";
        const gs::DashedPath back = dashed(lineTo({-8, 0}), gas, {}, &testFonts());
        return back.texts.at(0).path.points().at(0); // the upper end of the stem
    };
    EXPECT_NEAR(low(false, false).y, -0.5, 1e-9);
    EXPECT_NEAR(low(true, false).y, 0.5, 1e-9);
    EXPECT_GT(low(false, true).y, 0.5);
}

TEST(Dashes, LeaveALineWholeWhenThereIsNothingToCutOrTooMuch)
{
    const gs::Path line = lineTo({1000, 0});
    const auto isWhole = [&](const gs::LinePattern& pattern, double scale) {
        gs::DashOptions options;
        options.scale = scale;
        const gs::DashedPath out = dashed(line, pattern, options, nullptr);
        if (out.isWhole) {
            EXPECT_EQ(out.lines.points().size(), 2u);
        }
        return out.isWhole;
    };
    const double nan = std::nan(""), inf = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(isWhole({}, 1));
    EXPECT_TRUE(isWhole(patternOf({1}), 1));
    EXPECT_TRUE(isWhole(patternOf({1, 1}), 1));
    EXPECT_TRUE(isWhole(patternOf({0}), 1));
    EXPECT_TRUE(isWhole(patternOf({nan, -1}), 1));
    EXPECT_TRUE(isWhole(patternOf({inf, -1}), 1));
    EXPECT_TRUE(isWhole(patternOf({1, -1}), 0));
    EXPECT_TRUE(isWhole(patternOf({1, -1}), -1));
    EXPECT_TRUE(isWhole(patternOf({1, -1}), nan));
    EXPECT_TRUE(isWhole(patternOf({1, -1}), 1e-6));
    EXPECT_FALSE(isWhole(patternOf({1, -1}), 1));
    EXPECT_TRUE(dashed({}, patternOf({1, -1}), {}, nullptr).lines.isEmpty());
    EXPECT_TRUE(dashed(lineTo({nan, 0}), patternOf({1, -1}), {}, nullptr).isWhole);
    EXPECT_TRUE(dashed(lineTo({1e300, 1e300}), patternOf({1, -1}), {}, nullptr).isWhole);
}

TEST(Linetypes, OfNoRecordAreContinuous)
{
    EXPECT_TRUE(gs::patternOf(TvDbObjectId()).isContinuous());
}

double number(double low, double high)
{
    return low + (high - low) * *rc::gen::inRange(0, 1'000'000) / 1e6;
}

RC_GTEST_PROP(DashesLaw, AddUpToThePartOfTheLineThatThePatternDraws, ())
{
    const double dash = number(0.1, 3), gap = number(0.1, 3), second = number(0.1, 3);
    const gs::LinePattern pattern = patternOf({dash, -gap, second, -gap});
    gs::Path path;
    path.moveTo({0, 0});
    const int corners = *rc::gen::inRange(1, 6);
    double length = 0;
    TvGePoint2d at;
    for (int i = 0; i < corners; ++i) {
        const TvGePoint2d next{number(-50, 50), number(-50, 50)};
        length += at.distanceTo(next);
        path.lineTo(next);
        at = next;
    }
    const double period = dash + second + 2 * gap;
    RC_PRE(length > period);
    double drawn = 0;
    for (const double one : cut(path, pattern))
        drawn += one;
    // Whole patterns lose their gaps; what is left over is drawn.
    RC_ASSERT(std::fabs(length - std::floor(length / period) * 2 * gap - drawn) < 1e-6);
}

} // namespace
