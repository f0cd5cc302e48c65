#include <gtest/gtest.h>

#include "hatch_samples.h"
#include "shape_painter.h"

namespace {

TEST(HatchSample, ShowsStylesEdgesAndPatterns)
{
    ShapePainter painter({-1, -1, 45, 25}, 26);
    for (int style = 0; style < 3; ++style) {
        HatchSample nested;
        nested.style(style);
        nested.circle({5, 5}, 5).square({2, 2}, 6).circle({5, 5}, 2);
        nested.lines(0.785, {0, 0}, {-0.25, 0.25}, {});
        painter.paint(nested.shape(), gs::FlatMap::moving(style * 11.0, 0));
        HatchSample filled;
        filled.style(style);
        filled.circle({5, 5}, 5).square({2, 2}, 6).circle({5, 5}, 2);
        filled.solid();
        painter.paint(filled.shape(), gs::FlatMap::moving(style * 11.0, 12));
    }
    HatchSample bricks;
    bricks.square({0, 0}, 10);
    bricks.lines(0, {0, 0}, {0, 1}, {});
    bricks.lines(1.5707963267948966, {0, 0}, {1, 1}, {1, -1});
    bricks.lines(0.4, {0, 0}, {0.3, 0.5}, {0, -0.2});
    painter.paint(bricks.shape(), gs::FlatMap::moving(33, 0));
    HatchSample shield;
    shield.shield({38, 17}, 5);
    shield.lines(0, {0, 0}, {0.1, 0.4}, {0.7, -0.3, 0, -0.3});
    painter.paint(shield.shape());
    painter.save("hatches");
    EXPECT_TRUE(painter.isInked({38, 17.2}) || !shield.shape().lines.isEmpty());
}

} // namespace
