// Curves by control points and through points, against what they must be.

#include <cmath>

#include <gtest/gtest.h>

#include <db/tv_db_curves.h>

#include "scene_tools.h"

namespace {

/// A point of a cubic piece.
TvGePoint2d at(const TvGePoint2d* p, double t)
{
    const double s = 1 - t;
    return {
        p[0].x * s * s * s + 3 * p[1].x * s * s * t + 3 * p[2].x * s * t * t + p[3].x * t * t * t,
        p[0].y * s * s * s + 3 * p[1].y * s * s * t + 3 * p[2].y * s * t * t + p[3].y * t * t * t};
}

TvDbSpline* throughPoints(const std::vector<db::Point>& points, std::int64_t flags)
{
    auto* spline = new TvDbSpline;
    db::RecordEditor edit = spline->edit();
    edit.setInteger("scenario", 2);
    edit.setInteger("spline_flags", flags);
    edit.setInteger("degree", 3);
    db::ArrayEditor fit = edit.array("fit_pts");
    fit.resize(static_cast<std::uint32_t>(points.size()));
    for (std::uint32_t i = 0; i < fit.size(); ++i)
        fit.setPoint(i, points[i]);
    return spline;
}

} // namespace

TEST(SplineCurve, WithWeightsFollowsACircle)
{
    DrawingScene scene;
    auto* spline = new TvDbSpline;
    db::RecordEditor edit = spline->edit();
    edit.setInteger("scenario", 1);
    edit.setInteger("knot_param", 15);
    edit.setInteger("degree", 2);
    edit.setFlag("weighted", true);
    db::ArrayEditor knots = edit.array("knots");
    knots.resize(6);
    for (std::uint32_t i = 0; i < 6; ++i)
        knots.setReal(i, i < 3 ? 0 : 1);
    const db::Point corners[] = {{5, 0, 0}, {5, 5, 0}, {0, 5, 0}}; // a quarter
    db::ArrayEditor controls = edit.array("ctrl");
    controls.resize(3);
    for (std::uint32_t i = 0; i < 3; ++i) {
        controls[i].setPoint("pt", corners[i]);
        controls[i].setReal("weight", i == 1 ? std::sqrt(0.5) : 1);
    }
    scene.add(spline);
    const gs::DisplayList list = scene.list();
    ASSERT_EQ(list.items().size(), 1u);
    const gs::PathView path = list.path(list.items()[0].path);
    ASSERT_GE(path.points.size(), 4u);
    for (std::size_t i = 0; i + 3 < path.points.size(); i += 3)
        for (const double t : {0.0, 0.3, 0.5, 0.8, 1.0})
            EXPECT_NEAR((at(&path.points[i], t) - TvGePoint2d()).length(), 5, 1e-4);
}

TEST(SplineCurve, GoesThroughItsPointsWithoutCorners)
{
    const std::vector<db::Point> points = {{0, 0, 0}, {3, 4, 0}, {7, 1, 0}, {9, 6, 0}};
    DrawingScene scene;
    scene.add(throughPoints(points, 1));
    const gs::DisplayList list = scene.list();
    const gs::PathView path = list.path(list.items()[0].path);
    ASSERT_EQ(path.points.size(), 10u);
    for (std::size_t i = 0; i < points.size(); ++i) {
        EXPECT_NEAR(path.points[3 * i].x, points[i].x, 1e-9);
        EXPECT_NEAR(path.points[3 * i].y, points[i].y, 1e-9);
    }
    for (const std::size_t joint : {3u, 6u}) {
        const double before = (path.points[joint] - path.points[joint - 1]).angle();
        EXPECT_NEAR(before, (path.points[joint + 1] - path.points[joint]).angle(), 1e-9);
    }
}

TEST(SplineCurve, ClosedOnesAreSmoothWhereTheyClose)
{
    constexpr std::int64_t kThroughPoints = 1, kClosed = 4;
    DrawingScene scene;
    scene.add(throughPoints({{0, 0, 0}, {4, 0, 0}, {5, 3, 0}, {1, 5, 0}, {1e-13, 0, 0}},
                            kThroughPoints | kClosed));
    const gs::DisplayList list = scene.list();
    const gs::PathView path = list.path(list.items()[0].path);
    ASSERT_EQ(path.points.size(), 13u); // the last point is the first one again
    EXPECT_EQ(path.verbs.back(), gs::Path::Verb::Close);
    EXPECT_NEAR((path.points[1] - path.points[0]).angle(),
                (path.points[12] - path.points[11]).angle(), 1e-6);
}
