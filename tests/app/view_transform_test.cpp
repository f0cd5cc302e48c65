#include <limits>

#include <gtest/gtest.h>

#include <app/view_transform.h>

namespace {

using app::ScreenPoint;
using app::ViewTransform;

constexpr double kClose = 1e-9;

TEST(ViewTransform, TheMiddleOfTheWindowIsTheMiddleOfTheView)
{
    const ViewTransform view({10, 20}, 100, 800, 400);
    EXPECT_EQ(view.toScreen({10, 20}), (ScreenPoint{400, 200}));
    EXPECT_EQ(view.toScreen({10, 70}), (ScreenPoint{400, 0}));
    EXPECT_NEAR(view.toPlan({0, 0}).x, 10 - 100, kClose);
    EXPECT_NEAR(view.toPlan({0, 0}).y, 70, kClose);
}

TEST(ViewTransform, ZoomingKeepsThePointUnderTheCursor)
{
    ViewTransform view({10, 20}, 100, 800, 400);
    const ScreenPoint cursor{123, 45};
    const TvGePoint2d before = view.toPlan(cursor);
    for (const double factor : {1.2, 7.0, 0.01}) {
        view.zoomAt(cursor, factor);
        EXPECT_NEAR(view.toPlan(cursor).x, before.x, 1e-6) << factor;
        EXPECT_NEAR(view.toPlan(cursor).y, before.y, 1e-6) << factor;
    }
}

TEST(ViewTransform, ZoomingStopsWhereNumbersEnd)
{
    ViewTransform view({1e6, 0}, 100, 800, 400);
    for (int i = 0; i < 1000; ++i)
        view.zoomAt({1, 1}, 10);
    EXPECT_GT(view.planHeight(), 0);
    EXPECT_LT(view.toPlan({0, 0}).x, view.toPlan({800, 0}).x);
    for (int i = 0; i < 1000; ++i)
        view.zoomAt({1, 1}, 0.1);
    EXPECT_TRUE(std::isfinite(view.planHeight()));
    EXPECT_TRUE(std::isfinite(view.center().x));
    for (const double bad : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN(),
                             std::numeric_limits<double>::infinity()}) {
        const ViewTransform before = view;
        view.zoomAt({1, 1}, bad);
        EXPECT_EQ(view, before) << bad;
    }
}

TEST(ViewTransform, PanningMovesWhatIsShown)
{
    ViewTransform view({0, 0}, 100, 200, 100);
    view.panBy(10, 5);
    EXPECT_EQ(view.toScreen({0, 0}), (ScreenPoint{110, 55}));
}

TEST(ViewTransform, AWindowFillsTheView)
{
    ViewTransform view({0, 0}, 100, 200, 100);
    const TvGePoint2d low = view.toPlan({20, 40}), high = view.toPlan({60, 30});
    view.zoomWindow({60, 40}, {20, 30});
    EXPECT_NEAR(view.toScreen(low).x, 0, kClose);
    EXPECT_NEAR(view.toScreen(high).x, 200, kClose);
    const ViewTransform before = view;
    view.zoomWindow({5, 5}, {6, 50});
    EXPECT_EQ(view, before);
}

TEST(ViewTransform, FittingShowsAllWithAMargin)
{
    ViewTransform view({0, 0}, 1, 200, 100);
    view.fit({0, 0}, {400, 10});
    EXPECT_GE(view.toScreen({0, 0}).x, 0);
    EXPECT_LE(view.toScreen({400, 10}).x, 200);
    EXPECT_LT(view.toScreen({0, 0}).x, 10);
    const ViewTransform before = view;
    view.fit({0, 0}, {std::numeric_limits<double>::infinity(), 1});
    EXPECT_EQ(view, before);
    view.fit({3, 3}, {3, 3});
    EXPECT_EQ(view.center(), TvGePoint2d(3, 3));
}

TEST(ViewTransform, ResizingKeepsTheScale)
{
    ViewTransform view({5, 5}, 100, 200, 100);
    const double scale = view.scale();
    view.resize(300, 333);
    EXPECT_NEAR(view.scale(), scale, kClose);
    EXPECT_EQ(view.center(), TvGePoint2d(5, 5));
}

TEST(ViewTransform, APictureOfAnotherViewLiesWhereItsPointsAre)
{
    const ViewTransform made({0, 0}, 100, 200, 100);
    ViewTransform now = made;
    now.panBy(13, -7);
    now.zoomAt({50, 60}, 1.7);
    const app::PictureShift shift = app::shiftOf(made, now);
    const TvGePoint2d plan{12, -30};
    const ScreenPoint then = made.toScreen(plan), here = now.toScreen(plan);
    EXPECT_NEAR(then.x * shift.scale + shift.dx, here.x, 1e-6);
    EXPECT_NEAR(then.y * shift.scale + shift.dy, here.y, 1e-6);
}

TEST(ViewTransform, BackAndForthWithTheWheelEndsWhereItBegan)
{
    EXPECT_NEAR(app::wheelFactor(120) * app::wheelFactor(-120), 1, kClose);
    EXPECT_NEAR(app::wheelFactor(15) * app::wheelFactor(105), app::kWheelStep, kClose);
}

} // namespace
