#include "gs/hatch_shape.h"

#include <algorithm>
#include <numbers>

#include <db/ge_values.h>
#include <db/resbuf.h>
#include <ge/ocs.h>

#include "hatch_lines.h"

namespace gs {

namespace {

constexpr std::uint32_t kMostFamilies = 200, kMostDashes = 200;
constexpr std::int64_t kUserPattern = 0; // "pattern_type"
// Of the area between two lines, as much as a tint shows for each whole line.
constexpr double kTintOfLine = 0.35;

IslandStyle styleOf(const db::RecordView& fields)
{
    switch (fields.integer("style")) {
    case 1: return IslandStyle::OuterOnly;
    case 2: return IslandStyle::Ignore;
    default: return IslandStyle::Normal;
    }
}

std::vector<PatternLines> patternOf(const db::RecordView& fields)
{
    std::vector<PatternLines> pattern;
    const db::ArrayView lines = fields.array("lines");
    for (std::uint32_t i = 0; i < std::min(lines.size(), kMostFamilies); ++i) {
        PatternLines family;
        family.angle = lines[i].real("l_angle");
        family.base = db::asPoint2d(lines[i].point("l_base"));
        const TvGePoint2d offset = db::asPoint2d(lines[i].point("l_offset"));
        family.offset = {offset.x, offset.y};
        const db::ArrayView dashes = lines[i].array("dashes");
        for (std::uint32_t k = 0; k < std::min(dashes.size(), kMostDashes); ++k)
            family.dashes.push_back(dashes.real(k));
        pattern.push_back(std::move(family));
    }
    // The second direction of a double pattern is sometimes left to the reader.
    if (pattern.size() == 1 && fields.flag("double") &&
        fields.integer("pattern_type") == kUserPattern) {
        PatternLines turned = pattern.front();
        turned.angle += std::numbers::pi / 2;
        turned.offset = turned.offset.perpVector();
        pattern.push_back(std::move(turned));
    }
    return pattern;
}

double coverageOf(const std::vector<PatternLines>& pattern)
{
    double open = 1;
    for (const PatternLines& family : pattern) {
        double drawn = 0, all = 0;
        for (const double dash : family.dashes) {
            drawn += std::max(dash, 0.0);
            all += std::abs(dash);
        }
        open *= 1 - kTintOfLine * (all > 0 ? drawn / all : 1);
    }
    const double coverage = 1 - open;
    return coverage >= 0.1 ? std::min(coverage, 0.9) : 0.1;
}

void addLines(const db::RecordView& fields, const std::vector<HatchLoop>& loops, IslandStyle style,
              const HatchLimits& limits, HatchShape& shape)
{
    const std::vector<PatternLines> pattern = patternOf(fields);
    shape.kind = HatchShape::Kind::Lines;
    std::size_t pieces = 0;
    for (const PatternLines& family : pattern)
        if (!clipLines(family, loops, style, limits, shape.lines, pieces)) {
            shape.kind = HatchShape::Kind::Tint;
            shape.lines.clear();
            shape.coverage = coverageOf(pattern);
            return;
        }
}

Gradient gradientOf(const db::RecordView& fields)
{
    Gradient gradient;
    gradient.name = fields.text("grad_name");
    const double angle = fields.real("grad_angle");
    gradient.angle = std::isfinite(angle) ? angle : 0;
    gradient.isCentered = fields.real("grad_shift") == 0;
    gradient.isOneColor = fields.flag("single_color");
    const double tint = fields.real("grad_tint");
    gradient.tint = tint >= 0 && tint <= 1 ? tint : 0;
    const db::ArrayView colors = fields.array("colors");
    for (std::uint32_t i = 0; i < std::min(colors.size(), 16u); ++i) {
        const double at = colors[i].real("c_value");
        gradient.colors.push_back(
            {at >= 0 && at <= 1 ? at : 0,
             OwnColor::fromRecord(colors[i].structure("c_color").integer("value"))});
    }
    return gradient;
}

/// Kept in extended data, not in the hatch.
OwnColor backgroundOf(const TvDbHatch& hatch)
{
    constexpr int kLong = 1071;
    const TvResbufPtr chain(hatch.xData(TvString(u"HATCHBACKGROUNDCOLOR")));
    for (const resbuf* item = chain.get(); item; item = item->rbnext)
        if (item->restype == kLong)
            return OwnColor::fromRecord(item->resval.rlong);
    return {};
}

} // namespace

HatchShape shapeOf(const TvDbHatch& hatch, const HatchLimits& limits)
{
    HatchShape shape;
    const db::RecordView fields = hatch.fields();
    const double elevation = hatch.elevation();
    shape.placement = ge::ocsToWcs(hatch.normal()) *
                      TvGeMatrix3d::translation({0, 0, std::isfinite(elevation) ? elevation : 0});
    const std::vector<HatchLoop> loops = hatchLoops(fields);
    const IslandStyle style = styleOf(fields);
    HatchArea area = hatchArea(loops, style);
    shape.area = std::move(area.path);
    shape.isEvenOdd = area.isEvenOdd;
    shape.extents = boxOf(shape.area);
    shape.background = backgroundOf(hatch);
    if (fields.flag("is_gradient")) {
        shape.kind = HatchShape::Kind::Gradient;
        shape.gradient = gradientOf(fields);
    } else if (!hatch.isSolidFill()) {
        addLines(fields, loops, style, limits, shape);
    }
    return shape;
}

} // namespace gs
