#include <cmath>

#include <gtest/gtest.h>

#include "hatch_samples.h"
#include "shape_painter.h"

namespace {

bool isFilled(const gs::HatchShape& shape, TvGePoint2d place)
{
    ShapePainter painter({place.x - 0.01, place.y - 0.01, place.x + 0.01, place.y + 0.01}, 150);
    painter.paint(shape);
    return painter.isInked(place);
}

TEST(HatchArea, FollowsEdgesOfAllKinds)
{
    HatchSample hatch;
    hatch.solid().shield({0, 0}, 4);
    const gs::HatchShape shape = hatch.shape();

    EXPECT_EQ(shape.kind, gs::HatchShape::Kind::Solid);
    EXPECT_TRUE(isFilled(shape, {0, 3.9}));
    EXPECT_FALSE(isFilled(shape, {0, 4.1}));
    EXPECT_TRUE(isFilled(shape, {5.9, 2})); // the arc, which bulges to the right
    EXPECT_FALSE(isFilled(shape, {6.1, 2}));
    EXPECT_TRUE(isFilled(shape, {-4.9, 2})); // half an ellipse, to the left
    EXPECT_FALSE(isFilled(shape, {-5.1, 2}));
    EXPECT_TRUE(isFilled(shape, {0, -4.4})); // 3/4 of the way down to the handles
    EXPECT_FALSE(isFilled(shape, {0, -4.6}));
    EXPECT_NEAR(shape.extents.highY, 4, 1e-9);
}

TEST(HatchArea, FollowsBulges)
{
    HatchSample hatch;
    hatch.solid().polyline({{{0, 0}, 1}, {{4, 0}, -1}});
    const gs::HatchShape moon = hatch.shape(); // out below, back the same way
    EXPECT_FALSE(isFilled(moon, {2, 1}));
    HatchSample round;
    round.solid().circle({2, 2}, 2);
    EXPECT_TRUE(isFilled(round.shape(), {3.4, 3.4}));
    EXPECT_FALSE(isFilled(round.shape(), {3.5, 3.5}));
    HatchSample negative;
    negative.solid().polyline({{{0, 0}, -1}, {{4, 0}, 0}});
    EXPECT_TRUE(isFilled(negative.shape(), {2, 1.9}));
    EXPECT_FALSE(isFilled(negative.shape(), {2, -0.1}));
    HatchSample corner; // goes on from where the arc ends
    corner.solid().polyline({{{0, 0}, -1}, {{4, 0}, 0}, {{4, -4}, 0}});
    EXPECT_TRUE(isFilled(corner.shape(), {3, -1}));
    EXPECT_TRUE(isFilled(corner.shape(), {2, 1.9}));
}

TEST(HatchArea, LeavesIslandsOutByStyle)
{
    const bool expected[3][3] = {{true, false, true}, {true, false, false}, {true, true, true}};
    for (int style = 0; style < 3; ++style)
        for (const bool isReversed : {false, true}) {
            HatchSample hatch;
            hatch.solid().style(style).square({0, 0}, 12).circle({6, 6}, 4);
            if (isReversed)
                hatch.polyline({{{5, 5}}, {{5, 7}}, {{7, 7}}, {{7, 5}}});
            else
                hatch.square({5, 5}, 2);
            const gs::HatchShape shape = hatch.shape();
            EXPECT_EQ(isFilled(shape, {1, 1}), expected[style][0]) << style;
            EXPECT_EQ(isFilled(shape, {3, 6}), expected[style][1]) << style;
            EXPECT_EQ(isFilled(shape, {6, 6}), expected[style][2]) << style;
        }
}

TEST(HatchArea, TurnsRoundCirclesThatRunBackwardsWhenAllIsFilled)
{
    HatchSample hatch;
    hatch.solid().style(2).circle({0, 0}, 5).polyline({{{-2, 0}, -1}, {{2, 0}, -1}});
    EXPECT_TRUE(isFilled(hatch.shape(), {0, 1}));
    EXPECT_FALSE(hatch.shape().isEvenOdd);
}

TEST(HatchArea, TurnsEdgesThatAreStoredAgainstTheirLoop)
{
    HatchSample hatch;
    hatch.solid().shield({0, 0}, 4);
    db::RecordEditor line = hatch.hatch().edit().array("paths")[0].array("segs")[2];
    // The spline from left to right: its ends are those of its neighbours the other way round.
    db::ArrayEditor points = line.array("ctrl");
    points[0].setPoint("pt", {-4, 0, 0});
    points[1].setPoint("pt", {-4, -6, 0});
    points[2].setPoint("pt", {4, -6, 0});
    points[3].setPoint("pt", {4, 0, 0});
    EXPECT_TRUE(isFilled(hatch.shape(), {0, -4.4}));
    EXPECT_TRUE(isFilled(hatch.shape(), {3, 0.5}));
}

TEST(HatchArea, LiesAtItsElevationInItsPlane)
{
    HatchSample hatch;
    hatch.solid().square({1, 2}, 2);
    hatch.hatch().setElevation(7);
    hatch.hatch().setNormal({0, 0, -1});
    const TvGePoint3d at = hatch.shape().placement * TvGePoint3d(1, 2, 0);
    EXPECT_TRUE(at.isEqualTo({-1, 2, -7}));
}

TEST(HatchArea, TellsItsGradient)
{
    HatchSample hatch;
    hatch.solid().square({0, 0}, 2);
    db::RecordEditor edit = hatch.hatch().edit();
    edit.setFlag("is_gradient", true);
    edit.setText("grad_name", u"INVLINEAR");
    edit.setReal("grad_angle", 0.5);
    edit.setReal("grad_shift", 1);
    db::ArrayEditor colors = edit.array("colors");
    colors.resize(2);
    colors[1].setReal("c_value", 1);
    colors[0].structure("c_color").setInteger("value", static_cast<std::int32_t>(0xC2FF0000));
    colors[1].structure("c_color").setInteger("value", static_cast<std::int32_t>(0xC3000005));
    const gs::HatchShape shape = hatch.shape();

    EXPECT_EQ(shape.kind, gs::HatchShape::Kind::Gradient);
    EXPECT_EQ(shape.gradient.name, u"INVLINEAR");
    EXPECT_EQ(shape.gradient.angle, 0.5);
    EXPECT_FALSE(shape.gradient.isCentered);
    ASSERT_EQ(shape.gradient.colors.size(), 2u);
    EXPECT_EQ(shape.gradient.colors[0].color, gs::OwnColor::fromRgb(0xFF0000));
    EXPECT_EQ(shape.gradient.colors[1].color, gs::OwnColor::fromIndex(5));
    EXPECT_EQ(shape.gradient.colors[1].at, 1);
}

TEST(HostileHatchArea, LeavesOutLoopsThatMakeNoSense)
{
    const double bad[] = {std::nan(""), 1e300, -1e300};
    for (const double value : bad) {
        HatchSample hatch;
        hatch.solid().square({0, 0}, 2).polyline({{{value, 0}}, {{1, 1}}, {{0, 1}}});
        const gs::HatchShape shape = hatch.shape();
        EXPECT_NEAR(shape.extents.highX, 2, 1e-9) << value;
        for (const char* field : {"radius", "start_angle", "end_angle", "ratio"}) {
            HatchSample edges;
            edges.solid().shield({0, 0}, 2);
            db::ArrayEditor segments = edges.hatch().edit().array("paths")[0].array("segs");
            segments[1].setReal(field, value);
            segments[3].setReal(field, value);
            const gs::HatchShape taken = edges.shape();
            for (const TvGePoint2d& point : taken.area.points())
                EXPECT_TRUE(std::isfinite(point.x)) << field << value;
        }
    }
    HatchSample bulges;
    bulges.solid().polyline({{{0, 0}, std::nan("")}, {{2, 0}, 1e300}, {{2, 2}, 1e-300}});
    EXPECT_FALSE(bulges.shape().isEmpty());
    EXPECT_TRUE(HatchSample().solid().polyline({}).shape().isEmpty());
    EXPECT_TRUE(HatchSample().solid().shape().isEmpty());
}

TEST(HostileHatchArea, TakesSplinesThatMakeNoSenseByTheirPoints)
{
    for (const int degree : {-1, 0, 1, 4, 1000}) {
        HatchSample hatch;
        hatch.solid().shield({0, 0}, 4);
        hatch.hatch().edit().array("paths")[0].array("segs")[2].setInteger("degree", degree);
        EXPECT_NEAR(hatch.shape().extents.lowY, -6, 1e-9) << degree; // its handles
    }
    HatchSample weights;
    weights.solid().shield({0, 0}, 4);
    db::RecordEditor spline = weights.hatch().edit().array("paths")[0].array("segs")[2];
    spline.setFlag("rational", true);
    for (std::uint32_t i = 0; i < 4; ++i)
        spline.array("ctrl")[i].setReal("weight", i % 2 ? -1 : std::nan(""));
    EXPECT_TRUE(isFilled(weights.shape(), {0, -4.4}));
}

TEST(HatchArea, LeavesNoCircleOutWhereThereAreThousands)
{
    HatchSample hatch;
    hatch.square({-1, -1}, 3002).lines(0, {0, 0.5}, {0, 100}, {});
    for (int i = 0; i < 3000; ++i)
        hatch.circle({i + 0.5, 0.5}, 0.4);
    const gs::HatchShape shape = hatch.shape();
    EXPECT_NEAR(shape.lines.points()[2].x, 0.9, 1e-9); // between the first two
    double drawn = 0; // on the line through all of them, the first one
    for (std::size_t i = 0; i + 1 < shape.lines.points().size(); i += 2)
        if (std::abs(shape.lines.points()[i].y - 0.5) < 0.1)
            drawn += shape.lines.points()[i + 1].x - shape.lines.points()[i].x;
    EXPECT_NEAR(drawn, 3002 - 3000 * 0.8, 0.1);
}

TEST(HostileHatchArea, HasTenThousandLoops)
{
    HatchSample hatch;
    hatch.style(1).solid();
    db::ArrayEditor paths = hatch.hatch().edit().array("paths");
    paths.resize(10'000);
    for (std::uint32_t i = 0; i < 10'000; ++i) {
        db::RecordEditor path = paths[i];
        path.setInteger("flags", 3);
        db::ArrayEditor points = path.array("pts");
        points.resize(3);
        points[1].setPoint("pt", {1.0 + i, 0, 0});
        points[2].setPoint("pt", {0, 1.0 + i, 0});
    }
    EXPECT_FALSE(hatch.shape().isEmpty());
}

} // namespace
