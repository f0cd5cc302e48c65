#include <cmath>
#include <limits>
#include <numbers>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "hatch_samples.h"
#include "shape_painter.h"

namespace {

constexpr double kPi = std::numbers::pi;

struct Piece {
    TvGePoint2d from, to;
    double length() const { return from.distanceTo(to); }
};

std::vector<Piece> piecesOf(const gs::Path& path)
{
    std::vector<Piece> pieces;
    for (std::size_t i = 0; i + 1 < path.points().size(); i += 2)
        pieces.push_back({path.points()[i], path.points()[i + 1]});
    return pieces;
}

double totalLength(const gs::HatchShape& shape)
{
    double sum = 0;
    for (const Piece& piece : piecesOf(shape.lines))
        sum += piece.length();
    return sum;
}

TEST(HatchLines, RunThroughTheAreaFromEdgeToEdge)
{
    HatchSample hatch;
    hatch.square({0, 0}, 10).lines(0, {0, 0.5}, {0, 1}, {});
    const gs::HatchShape shape = hatch.shape();

    EXPECT_EQ(shape.kind, gs::HatchShape::Kind::Lines);
    const auto pieces = piecesOf(shape.lines);
    ASSERT_EQ(pieces.size(), 10u);
    for (const Piece& piece : pieces) {
        EXPECT_NEAR(piece.from.x, 0, 1e-9);
        EXPECT_NEAR(piece.to.x, 10, 1e-9);
        EXPECT_NEAR(std::fmod(piece.from.y, 1), 0.5, 1e-9);
    }
}

TEST(HatchLines, CountEachCornerOnce)
{
    // Lines through the corners of squares and of a diamond; each is inside or outside, never both.
    HatchSample square;
    square.square({0, 0}, 10).lines(0, {0, 0}, {0, 1}, {});
    EXPECT_EQ(piecesOf(square.shape().lines).size(), 10u); // its lower edge, not its upper one
    HatchSample diamond;
    diamond.polyline({{{0, 5}}, {{5, 0}}, {{10, 5}}, {{5, 10}}}).lines(0, {0, 0}, {0, 5}, {});
    const auto pieces = piecesOf(diamond.shape().lines);
    ASSERT_EQ(pieces.size(), 1u);
    EXPECT_NEAR(pieces[0].length(), 10, 1e-9);
}

TEST(HatchLines, AreDashedFromTheirOwnBase)
{
    HatchSample hatch;
    hatch.square({0, 0}, 10).lines(0, {1, 0.5}, {0.25, 1}, {2, -1});
    for (const Piece& piece : piecesOf(hatch.shape().lines)) {
        const double row = std::round(piece.from.y - 0.5);
        const double phase = 1 + 0.25 * row;
        if (piece.from.x > 1e-9) {
            EXPECT_NEAR(std::remainder(piece.from.x - phase, 3), 0, 1e-9);
        }
        if (piece.to.x < 10 - 1e-9) {
            EXPECT_NEAR(std::remainder(piece.to.x - phase - 2, 3), 0, 1e-9);
        }
    }
    EXPECT_NEAR(totalLength(hatch.shape()), 100 * 2.0 / 3, 2);
}

TEST(HatchLines, HaveDotsWithoutLength)
{
    HatchSample hatch;
    hatch.square({0, 0}, 10).lines(0, {0.5, 0.5}, {0, 1}, {0, -1});
    const auto pieces = piecesOf(hatch.shape().lines);
    EXPECT_EQ(pieces.size(), 100u);
    for (const Piece& piece : pieces)
        EXPECT_EQ(piece.length(), 0);
}

TEST(HatchLines, AreTurnedByTheirAngle)
{
    HatchSample hatch;
    hatch.square({0, 0}, 10).lines(kPi / 2, {0.5, 0}, {1, 0}, {});
    for (const Piece& piece : piecesOf(hatch.shape().lines)) {
        EXPECT_NEAR(piece.from.x, piece.to.x, 1e-9);
        EXPECT_NEAR(piece.length(), 10, 1e-9);
    }
    EXPECT_NEAR(totalLength(hatch.shape()), 100, 1e-6);
}

TEST(HatchLines, CoverWhatTheStyleFills)
{
    // A square of 12 with one of 8 in it, and one of 4 in that.
    const double filled[] = {144 - 64 + 16, 144 - 64, 144};
    for (int style = 0; style < 3; ++style) {
        HatchSample hatch;
        hatch.style(style).square({0, 0}, 12).square({2, 2}, 8).square({4, 4}, 4);
        hatch.lines(0, {0, 0.05}, {0, 0.1}, {});
        EXPECT_NEAR(totalLength(hatch.shape()) * 0.1, filled[style], 1e-6) << style;
    }
}

TEST(HatchLines, OfADoublePatternCross)
{
    HatchSample hatch;
    hatch.square({0, 0}, 10).lines(0, {0.5, 0.5}, {0, 1}, {});
    hatch.hatch().edit().setFlag("double", true);
    hatch.hatch().edit().setInteger("pattern_type", 0);
    EXPECT_EQ(piecesOf(hatch.shape().lines).size(), 20u);
    hatch.hatch().edit().setInteger("pattern_type", 1);
    EXPECT_EQ(piecesOf(hatch.shape().lines).size(), 10u);
}

TEST(HatchLines, AreATintWhenTheyAreTooDense)
{
    HatchSample hatch;
    hatch.square({0, 0}, 10).lines(0, {0, 0}, {0, 0.1}, {});
    gs::HatchLimits limits;
    limits.smallestSpacing = 0.2;
    const gs::HatchShape tint = hatch.shape(limits);
    EXPECT_EQ(tint.kind, gs::HatchShape::Kind::Tint);
    EXPECT_TRUE(tint.lines.isEmpty());
    EXPECT_GT(tint.coverage, 0.1);
    EXPECT_FALSE(tint.area.isEmpty());
    limits.smallestSpacing = 0.05;
    EXPECT_EQ(hatch.shape(limits).kind, gs::HatchShape::Kind::Lines);
    limits.mostPieces = 20;
    EXPECT_EQ(hatch.shape(limits).kind, gs::HatchShape::Kind::Tint);
}

TEST(HostileHatchLines, AreBounded)
{
    const double nan = std::nan(""), inf = std::numeric_limits<double>::infinity();
    const auto kind = [](double angle, TvGePoint2d base, TvGeVector2d offset,
                         std::initializer_list<double> dashes) {
        HatchSample hatch;
        hatch.square({0, 0}, 10).lines(angle, base, offset, dashes);
        const gs::HatchShape shape = hatch.shape();
        EXPECT_LE(shape.lines.points().size(), 400'002u);
        for (const TvGePoint2d& point : shape.lines.points())
            EXPECT_TRUE(std::isfinite(point.x) && std::isfinite(point.y));
        return shape.kind;
    };
    using Kind = gs::HatchShape::Kind;
    EXPECT_EQ(kind(0, {0, 5}, {0, 0}, {}), Kind::Lines); // one line
    EXPECT_EQ(kind(0, {0, 5}, {1, 0}, {}), Kind::Lines);
    EXPECT_EQ(kind(0, {0, 0}, {0, 1e-9}, {}), Kind::Tint);
    EXPECT_EQ(kind(0, {0, 0}, {0, 1}, {1e-9, -1e-9}), Kind::Tint);
    EXPECT_EQ(kind(0, {0, 0}, {0, 1}, {0, 0, 0}), Kind::Lines); // no gaps
    EXPECT_EQ(kind(0, {1e300, 1e300}, {0, 1}, {1, -1}), Kind::Tint);
    EXPECT_EQ(kind(nan, {0, 0}, {0, 1}, {}), Kind::Lines);
    EXPECT_EQ(kind(0, {0, inf}, {0, 1}, {}), Kind::Lines);
    EXPECT_EQ(kind(0, {0, 0}, {inf, nan}, {}), Kind::Lines);
    EXPECT_EQ(kind(0, {0, 0}, {0, 1}, {nan, -1}), Kind::Lines);
    EXPECT_EQ(kind(1e300, {0, 0}, {0, 1}, {}), Kind::Lines);
    EXPECT_EQ(kind(0, {0, 0}, {1e300, 1}, {1, -1}), Kind::Tint);
}

TEST(HostileHatchLines, GoThroughFortyThousandCorners)
{
    std::vector<HatchSample::Corner> comb;
    for (int i = 0; i < 20'000; ++i) {
        comb.push_back({{i * 1.0, 0}});
        comb.push_back({{i + 0.5, 10}});
    }
    comb.push_back({{20'000, -5}});
    comb.push_back({{0, -5}});
    HatchSample hatch;
    hatch.polyline(comb).lines(0, {0, 0}, {0, 0.9}, {});
    EXPECT_EQ(hatch.shape().kind, gs::HatchShape::Kind::Tint); // more than 200,000 pieces
    HatchSample few;
    few.polyline(comb).lines(0, {0, 0}, {0, 8}, {});
    EXPECT_EQ(few.shape().kind, gs::HatchShape::Kind::Lines);
}

/// Inside by the even-odd rule, and how far from the nearest edge.
bool isInside(const std::vector<HatchSample::Corner>& c, TvGePoint2d p)
{
    bool inside = false;
    for (std::size_t i = 0, k = c.size() - 1; i < c.size(); k = i++)
        if ((c[i].at.y > p.y) != (c[k].at.y > p.y) &&
            p.x < (c[k].at.x - c[i].at.x) * (p.y - c[i].at.y) / (c[k].at.y - c[i].at.y) + c[i].at.x)
            inside = !inside;
    return inside;
}

double distanceToEdges(const std::vector<HatchSample::Corner>& c, TvGePoint2d p)
{
    double nearest = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0, k = c.size() - 1; i < c.size(); k = i++) {
        const TvGeVector2d edge = c[i].at - c[k].at, to = p - c[k].at;
        const double length = edge.dotProduct(edge);
        const double t = length > 0 ? std::clamp(to.dotProduct(edge) / length, 0.0, 1.0) : 0;
        nearest = std::min(nearest, (to - edge * t).length());
    }
    return nearest;
}

double number(double low, double high)
{
    return low + (high - low) * *rc::gen::inRange(0, 1'000'000) / 1e6;
}

RC_GTEST_PROP(HatchLinesLaw, LieInsideAndEndAtEdges, ())
{
    std::vector<HatchSample::Corner> corners;
    const int count = *rc::gen::inRange(3, 12);
    for (int i = 0; i < count; ++i)
        corners.push_back({{number(-10, 10), number(-10, 10)}});
    HatchSample hatch;
    hatch.polyline(corners);
    hatch.lines(number(-4, 4), {number(-5, 5), number(-5, 5)}, {number(-2, 2), number(0.3, 3)}, {});
    const gs::HatchShape shape = hatch.shape();
    RC_PRE(shape.kind == gs::HatchShape::Kind::Lines);
    for (const Piece& piece : piecesOf(shape.lines)) {
        RC_ASSERT(distanceToEdges(corners, piece.from) < 1e-7);
        RC_ASSERT(distanceToEdges(corners, piece.to) < 1e-7);
        for (const double t : {0.25, 0.5, 0.75}) {
            const TvGePoint2d p = piece.from + (piece.to - piece.from) * t;
            RC_ASSERT(isInside(corners, p) || distanceToEdges(corners, p) < 1e-7);
        }
    }
}

RC_GTEST_PROP(HatchLinesLaw, DashesAreThePartOfTheLinesThatThePatternDraws, ())
{
    const double dash = number(0.2, 2), gap = number(0.2, 2), second = number(0.2, 2);
    HatchSample whole, dashedHatch;
    const TvGeVector2d offset(number(-1, 1), number(0.5, 2));
    whole.circle({0, 0}, 40).lines(0.7, {0, 0}, offset, {});
    dashedHatch.circle({0, 0}, 40).lines(0.7, {0, 0}, offset, {dash, -gap, second, -gap});
    const double part = (dash + second) / (dash + second + 2 * gap);
    const double lines = static_cast<double>(piecesOf(whole.shape().lines).size());
    const double drawn = totalLength(dashedHatch.shape()), all = totalLength(whole.shape());
    // Each line may begin and end anywhere in the pattern.
    RC_ASSERT(std::fabs(drawn - all * part) <= lines * (dash + second + 2 * gap));
}

} // namespace
