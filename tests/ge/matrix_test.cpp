#include <numbers>

#include <gtest/gtest.h>

#include "arbitrary_geometry.h"

namespace {

constexpr double kPi = std::numbers::pi;

TEST(Matrix, RotationRunsCounterClockwise)
{
    const auto turn = TvGeMatrix3d::rotation(kPi / 2, TvGeVector3d::zAxis(), {1, 1, 0});

    EXPECT_TRUE((turn * TvGePoint3d(3, 1, 5)).isEqualTo({1, 3, 5}));
}

TEST(Matrix, ScalingKeepsItsCenter)
{
    const auto scale = TvGeMatrix3d::scaling(TvGeScale3d(2, 3, 4), {1, 1, 1});

    EXPECT_TRUE((scale * TvGePoint3d(1, 1, 1)).isEqualTo({1, 1, 1}));
    EXPECT_TRUE((scale * TvGePoint3d(2, 2, 2)).isEqualTo({3, 4, 5}));
}

TEST(Matrix, WhatStandsOnTheRightIsDoneFirst)
{
    const auto moved = TvGeMatrix3d::translation({10, 0, 0});
    const auto doubled = TvGeMatrix3d::scaling(2);

    EXPECT_TRUE((moved * doubled * TvGePoint3d(1, 0, 0)).isEqualTo({12, 0, 0}));
    EXPECT_TRUE((doubled * moved * TvGePoint3d(1, 0, 0)).isEqualTo({22, 0, 0}));
}

TEST(Matrix, DirectionsAreNotMoved)
{
    EXPECT_EQ(TvGeMatrix3d::translation({10, 0, 0}) * TvGeVector3d(1, 2, 3), TvGeVector3d(1, 2, 3));
}

TEST(Matrix, AnAxisWithoutDirectionTurnsNothing)
{
    EXPECT_EQ(TvGeMatrix3d::rotation(1, {}), TvGeMatrix3d());
    EXPECT_EQ(TvGeMatrix3d::mirroring({1, 2, 3}, {}), TvGeMatrix3d());
    EXPECT_EQ(TvGeMatrix3d::rotation(1, {std::nan(""), 0, 1}), TvGeMatrix3d());
}

TEST(Matrix, FlatMapsHaveNoInverse)
{
    EXPECT_FALSE(TvGeMatrix3d::scaling(TvGeScale3d(1, 0, 1)).inverse());
    EXPECT_FALSE(TvGeMatrix3d::scaling(std::nan("")).inverse());
    EXPECT_FALSE(TvGeMatrix3d::scaling(1e-200).inverse());
}

TEST(Matrix, KnowsWhetherCirclesStayCircles)
{
    const auto turned = TvGeMatrix3d::rotation(0.3, {1, 2, 3}) * TvGeMatrix3d::scaling(-2.5);
    EXPECT_TRUE(turned.isUniformScale());
    EXPECT_FALSE((turned * TvGeMatrix3d::scaling(TvGeScale3d(1, 2, 1))).isUniformScale());
    EXPECT_FALSE(TvGeMatrix3d::scaling(0).isUniformScale());
}

RC_GTEST_PROP(MatrixLaw, InverseLeadsBack, ())
{
    const auto map = TvGeMatrix3d::translation(anyPoint().asVector()) *
                     TvGeMatrix3d::rotation(anyAngle(), anyDirection()) *
                     TvGeMatrix3d::scaling(TvGeScale3d(*coordinates(4) + 5, 2, -3));
    const TvGePoint3d point = anyPoint();

    const auto back = map.inverse();

    RC_ASSERT(back.has_value());
    RC_ASSERT((*back * (map * point)).isEqualTo(point, kLoose));
}

RC_GTEST_PROP(MatrixLaw, RotationsKeepLengthsAndHands, ())
{
    const auto turn = TvGeMatrix3d::rotation(anyAngle(), anyDirection(), anyPoint());
    const TvGePoint3d a = anyPoint(), b = anyPoint();

    RC_ASSERT(std::fabs((turn * a).distanceTo(turn * b) - a.distanceTo(b)) < 1e-8);
    RC_ASSERT(std::fabs(turn.determinant() - 1) < 1e-12);
}

RC_GTEST_PROP(MatrixLaw, MirroringTwiceChangesNothing, ())
{
    const auto mirror = TvGeMatrix3d::mirroring(anyPoint(), anyDirection());
    const TvGePoint3d point = anyPoint();

    RC_ASSERT((mirror * (mirror * point)).isEqualTo(point, kLoose));
    RC_ASSERT(std::fabs(mirror.determinant() + 1) < 1e-12);
}

RC_GTEST_PROP(VectorLaw, NormalsAreOfLengthOneAndParallel, ())
{
    const TvGeVector3d v = anyDirection();

    RC_ASSERT(std::fabs(v.normal().length() - 1) < 1e-12);
    RC_ASSERT(v.isParallelTo(v.normal()));
    RC_ASSERT(v.angleTo(-v) > 3.14159);
}

TEST(Vector, WithoutDirectionStaysAsItIs)
{
    EXPECT_EQ(TvGeVector3d().normal(), TvGeVector3d());
    EXPECT_EQ(TvGeVector2d().normal(), TvGeVector2d());
    EXPECT_FALSE(TvGeVector3d().isParallelTo({1, 0, 0}));
    EXPECT_EQ(TvGeVector3d().angleTo({1, 0, 0}), 0);
}

} // namespace
