#include <numbers>

#include <gtest/gtest.h>

#include <ge/arcs.h>

#include "arbitrary_geometry.h"

namespace {

constexpr double kPi = std::numbers::pi;

TEST(Bulge, OfOneIsAHalfCircleToTheRight)
{
    const auto arc = ge::bulgeArc({0, 0}, {2, 0}, 1);

    ASSERT_TRUE(arc);
    EXPECT_TRUE(arc->center.isEqualTo({1, 0}));
    EXPECT_NEAR(arc->radius, 1, 1e-12);
    EXPECT_NEAR(std::fabs(arc->startAngle), kPi, 1e-12); // counter-clockwise: below the chord
    EXPECT_NEAR(arc->endAngle, 0, 1e-12);
}

TEST(Bulge, NegativeIsRunBackwards)
{
    const auto arc = ge::bulgeArc({0, 0}, {2, 0}, -1);

    ASSERT_TRUE(arc);
    EXPECT_NEAR(arc->startAngle, 0, 1e-12);
    EXPECT_NEAR(arc->endAngle, kPi, 1e-12);
}

TEST(Bulge, MakesNoArcOfWhatIsStraight)
{
    EXPECT_FALSE(ge::bulgeArc({0, 0}, {2, 0}, 0));
    EXPECT_FALSE(ge::bulgeArc({1, 1}, {1, 1}, 1));
    EXPECT_FALSE(ge::bulgeArc({0, 0}, {2, 0}, std::nan("")));
    EXPECT_FALSE(ge::bulgeArc({0, 0}, {2, 0}, 1e-320));
}

RC_GTEST_PROP(BulgeLaw, BothEndsLieOnTheArcThatSpansFourTimesItsArcTangent, ())
{
    const TvGePoint2d from{*coordinates(), *coordinates()}, to{*coordinates(), *coordinates()};
    const double bulge = *coordinates(5);
    RC_PRE(std::fabs(bulge) > 0.01 && from.distanceTo(to) > 0.01);

    const auto arc = ge::bulgeArc(from, to, bulge);

    RC_ASSERT(arc.has_value());
    RC_ASSERT(std::fabs(arc->center.distanceTo(from) / arc->radius - 1) < 1e-9);
    RC_ASSERT(std::fabs(arc->center.distanceTo(to) / arc->radius - 1) < 1e-9);
    const double span = std::fmod(arc->endAngle - arc->startAngle + 2 * kPi, 2 * kPi);
    RC_ASSERT(std::fabs(span - 4 * std::atan(std::fabs(bulge))) < 1e-7);
}

TEST(Angles, OnArcsRunCounterClockwise)
{
    EXPECT_TRUE(ge::isAngleOnArc(0, 6, 1));
    EXPECT_TRUE(ge::isAngleOnArc(4 * kPi, -0.5, 0.5));
    EXPECT_FALSE(ge::isAngleOnArc(3, 6, 1));
    EXPECT_TRUE(ge::isAngleOnArc(3, 1, 1)); // the whole circle
}

TEST(Extents, OfAQuarterCircleReachBothAxes)
{
    const TvDbExtents box = ge::arcExtents({1, 1, 5}, 2, 0, kPi / 2, {0, 0, 1});

    EXPECT_TRUE(box.minPoint().isEqualTo({1, 1, 5}));
    EXPECT_TRUE(box.maxPoint().isEqualTo({3, 3, 5}));
}

TEST(Extents, OfAnArcBelowLookDownMirrored)
{
    const TvDbExtents box = ge::arcExtents({1, 1, 0}, 2, 0, kPi / 2, {0, 0, -1});

    EXPECT_TRUE(box.minPoint().isEqualTo({-3, 1, 0}));
    EXPECT_TRUE(box.maxPoint().isEqualTo({-1, 3, 0}));
}

TEST(Extents, OfAWholeEllipse)
{
    const TvDbExtents box = ge::ellipseExtents({1, 2, 0}, {3, 0, 0}, {0, 0, 1}, 0.5, 0, 2 * kPi);

    EXPECT_TRUE(box.minPoint().isEqualTo({-2, 0.5, 0}));
    EXPECT_TRUE(box.maxPoint().isEqualTo({4, 3.5, 0}));
}

RC_GTEST_PROP(ExtentsLaw, OfACurveHoldItsPointsAndNoMore, ())
{
    const TvGePoint3d center = anyPoint();
    const TvGeVector3d u = anyDirection(), v = anyDirection();
    const double start = anyAngle(), span = *coordinates(3) + 3.01;

    const TvDbExtents box = ge::curveExtents(center, u, v, start, start + span);

    TvDbExtents sampled;
    for (int i = 0; i <= 2000; ++i) {
        const double t = start + span * i / 2000;
        const TvGePoint3d point = center + u * std::cos(t) + v * std::sin(t);
        RC_ASSERT(box.contains(point, kLoose));
        sampled.addPoint(point);
    }
    RC_ASSERT((sampled.size() - box.size()).length() < 1e-4);
}

TEST(Extents, AreEmptyUntilAPointIsThere)
{
    TvDbExtents box;
    EXPECT_TRUE(box.isEmpty());
    EXPECT_FALSE(box.contains({}));
    box.addPoint({std::nan(""), 0, 0});
    box.addExtents(TvDbExtents());
    EXPECT_TRUE(box.isEmpty());
    EXPECT_TRUE(box.transformed(TvGeMatrix3d::scaling(2)).isEmpty());

    box.addPoint({1, 2, 3});

    EXPECT_TRUE(box.contains({1, 2, 3}));
    EXPECT_EQ(box.size(), TvGeVector3d());
}

TEST(Extents, MeetWhereTheyTouch)
{
    const TvDbExtents box({0, 0, 0}, {2, 2, 2});

    EXPECT_TRUE(box.intersects({{2, 2, 2}, {3, 3, 3}}));
    EXPECT_FALSE(box.intersects({{2.1, 0, 0}, {3, 3, 3}}));
    EXPECT_FALSE(box.intersects(TvDbExtents()));
}

RC_GTEST_PROP(ExtentsLaw, TransformedBoxesHoldWhatWasInThem, ())
{
    TvDbExtents box(anyPoint(), anyPoint());
    const auto map = TvGeMatrix3d::rotation(anyAngle(), anyDirection(), anyPoint());
    const TvGeVector3d size = box.size();
    const TvGePoint3d inside =
        box.minPoint() + TvGeVector3d(size.x * *coordinates(1) * *coordinates(1), size.y * 0.5, 0);
    RC_PRE(box.contains(inside));

    RC_ASSERT(box.transformed(map).contains(map * inside, kLoose));
}

} // namespace
