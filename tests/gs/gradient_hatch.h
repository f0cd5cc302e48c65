#pragma once

#include <db/record_editor.h>
#include <db/tv_db_annotations.h>

/// How a hatch passes from one colour into another.
struct GradientLook {
    const TvChar* name = u"LINEAR";
    double angle = 0;
    double shift = 0;
    std::int64_t first = 0xC2FF0000, second = 0xC20000FF; // red, blue
    bool isOneColor = false;
    double tint = 0;
};

/// A square of 100 units at the origin.
inline TvDbHatch* gradientHatch(const GradientLook& look)
{
    constexpr double side = 100;
    auto* hatch = new TvDbHatch;
    db::RecordEditor edit = hatch->edit();
    edit.setFlag("solid", true);
    db::ArrayEditor paths = edit.array("paths");
    paths.resize(1);
    paths[0].setInteger("flags", 3);
    paths[0].setFlag("closed", true);
    db::ArrayEditor points = paths[0].array("pts");
    points.resize(4);
    for (std::uint32_t i = 0; i < 4; ++i)
        points[i].setPoint("pt", {i == 1 || i == 2 ? side : 0.0, i > 1 ? side : 0.0, 0});
    edit.setFlag("is_gradient", true);
    edit.setText("grad_name", look.name);
    edit.setReal("grad_angle", look.angle);
    edit.setReal("grad_shift", look.shift);
    edit.setFlag("single_color", look.isOneColor);
    edit.setReal("grad_tint", look.tint);
    db::ArrayEditor colors = edit.array("colors");
    colors.resize(2);
    colors[1].setReal("c_value", 1);
    colors[0].structure("c_color").setInteger("value", static_cast<std::int32_t>(look.first));
    colors[1].structure("c_color").setInteger("value", static_cast<std::int32_t>(look.second));
    return hatch;
}
