#include <numbers>

#include <gtest/gtest.h>

#include "arbitrary_geometry.h"

namespace {

constexpr double kPi = std::numbers::pi;

TEST(Ocs, OfTheZAxisIsTheWorld)
{
    EXPECT_EQ(ge::ocsToWcs({0, 0, 1}), TvGeMatrix3d());
    EXPECT_EQ(ge::ocsToWcs({0, 0, 7}), TvGeMatrix3d());
    EXPECT_EQ(ge::ocsToWcs({0, 0, 0}), TvGeMatrix3d());
}

TEST(Ocs, DownwardsMirrorsX)
{
    EXPECT_TRUE((ge::ocsToWcs({0, 0, -1}) * TvGePoint3d(1, 2, 3)).isEqualTo({-1, 2, -3}));
}

TEST(Ocs, OfTheXAxisHasYAndZInItsPlane)
{
    EXPECT_TRUE((ge::ocsToWcs({1, 0, 0}) * TvGePoint3d(1, 2, 3)).isEqualTo({3, 1, 2}));
}

TEST(Ocs, ChangesItsHelperAtOneSixtyFourth)
{
    const double inside = 1.0 / 64 - 1e-6, outside = 1.0 / 64 + 1e-6;

    const auto near = ge::ocsToWcs({inside, 0, std::sqrt(1 - inside * inside)});
    const auto far = ge::ocsToWcs({outside, 0, std::sqrt(1 - outside * outside)});

    EXPECT_NEAR(near.axis(0).x, 1, 1e-3); // Y x N
    EXPECT_NEAR(far.axis(0).y, 1, 1e-3);  // Z x N
}

RC_GTEST_PROP(OcsLaw, AxesAreOrthonormalAndRightHanded, ())
{
    const auto ocs = ge::ocsToWcs(anyDirection());

    RC_ASSERT(std::fabs(ocs.determinant() - 1) < 1e-12);
    RC_ASSERT(ocs.isUniformScale());
}

RC_GTEST_PROP(OcsLaw, ThereAndBackIsNothing, ())
{
    const TvGeVector3d normal = anyDirection();
    const TvGePoint3d point = anyPoint();

    RC_ASSERT((ge::wcsToOcs(normal) * (ge::ocsToWcs(normal) * point)).isEqualTo(point, kLoose));
}

TEST(BlockTransform, PutsTheBasePointOnTheInsertionPoint)
{
    const ge::BlockPlacement placement{{10, 20, 30}, {2, 3, 4}, 1.25, {0, 0, 1}, {5, 6, 7}};

    EXPECT_TRUE((ge::blockTransform(placement) * placement.base).isEqualTo({10, 20, 30}));
}

TEST(BlockTransform, ScalesThenTurnsThenMoves)
{
    const ge::BlockPlacement placement{{10, 0, 0}, {2, 1, 1}, kPi / 2, {0, 0, 1}, {}};

    EXPECT_TRUE((ge::blockTransform(placement) * TvGePoint3d(1, 0, 0)).isEqualTo({10, 2, 0}));
}

TEST(BlockTransform, InsertionPointIsInObjectCoordinates)
{
    const ge::BlockPlacement placement{{10, 5, 0}, {}, 0, {0, 0, -1}, {}};

    EXPECT_TRUE((ge::blockTransform(placement) * TvGePoint3d()).isEqualTo({-10, 5, 0}));
}

TEST(BlockTransform, OffsetsOfArraysAreTurnedButNotScaled)
{
    const ge::BlockPlacement placement{{0, 0, 0}, {5, 5, 5}, kPi / 2, {0, 0, 1}, {}};

    EXPECT_TRUE((ge::blockTransform(placement, {7, 0}) * TvGePoint3d()).isEqualTo({0, 7, 0}));
}

} // namespace
