#include <gtest/gtest.h>

#include "shape_painter.h"
#include "text_samples.h"

#include <gs/linetype.h>

namespace {

TEST(LinetypeSample, ShowsDashesCornersCurvesAndTexts)
{
    ShapePainter painter({-1, -1, 45, 20}, 26);
    gs::LinePattern dashDot;
    dashDot.dashes = {{1, {}}, {-0.4, {}}, {0, {}}, {-0.4, {}}};
    gs::Path corners;
    corners.moveTo({0, 0}), corners.lineTo({10, 0}), corners.lineTo({10, 3.3}),
        corners.lineTo({4, 6}), corners.close();
    painter.stroke(dashed(corners, dashDot, {}, nullptr).lines);
    gs::DashOptions anew;
    anew.continuesOverCorners = false;
    painter.stroke(dashed(corners, dashDot, anew, nullptr).lines, gs::FlatMap::moving(14, 0));

    gs::LinePattern gas;
    gas.dashes = {{2, {}}, {-0.8, {}}, {-1.2, {}}};
    gs::LinePattern::Text text;
    text.text = u"GAS";
    text.font.name = u"txt";
    text.height = 0.4;
    text.offset = {-0.6, -0.2};
    text.staysReadable = true;
    gas.dashes[1].texts.push_back(text);
    gs::Path wave;
    wave.moveTo({0, 12});
    wave.curveTo({10, 25}, {15, 0}, {25, 14});
    wave.curveTo({28, 19}, {20, 20}, {22, 10});
    const gs::DashedPath out = dashed(wave, gas, {}, &testFonts());
    painter.stroke(out.lines);
    for (const gs::TextPart& part : out.texts)
        painter.stroke(part.path);
    painter.save("linetypes");
    EXPECT_FALSE(out.isWhole);
}

} // namespace
