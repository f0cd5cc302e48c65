#include "drawers.h"

#include <cmath>

#include <db/tv_db_annotations.h>
#include <gs/hatch_shape.h>

namespace gs::draw {

namespace {

constexpr std::size_t kMostPieces = 50'000;
constexpr std::uint8_t kLinesCover = 90; // of 255, where lines are too close to be told apart

/// The smallest distance between lines of one direction; 0 when there are none.
double spacingOf(const TvDbHatch& hatch)
{
    const db::ArrayView lines = hatch.fields().array("lines");
    double smallest = 0;
    for (std::uint32_t i = 0; i < lines.size(); ++i) {
        const double angle = lines[i].real("l_angle");
        const db::Point offset = lines[i].point("l_offset");
        const double apart = std::abs(offset.y * std::cos(angle) - offset.x * std::sin(angle));
        if (apart > 0 && (smallest == 0 || apart < smallest))
            smallest = apart;
    }
    return smallest;
}

Color mean(const Color& a, const Color& b)
{
    if (a.kind != Color::Kind::Given || b.kind != Color::Kind::Given)
        return a.kind == Color::Kind::Given ? b : a;
    const auto half = [](int x, int y) { return static_cast<std::uint8_t>((x + y) / 2); };
    return {Color::Kind::Given, half(a.red, b.red), half(a.green, b.green), half(a.blue, b.blue)};
}

Color gradientColor(const Scene& scene, const Gradient& gradient)
{
    if (gradient.colors.empty())
        return scene.colorOf({});
    const Color first = scene.colorOf(gradient.colors.front().color);
    if (!gradient.isOneColor)
        return mean(first, scene.colorOf(gradient.colors.back().color));
    const auto shade = static_cast<std::uint32_t>(std::clamp(gradient.tint, 0.0, 1.0) * 255);
    return mean(first, Color::given(shade << 16 | shade << 8 | shade));
}

} // namespace

void hatch(Scene& scene, const TvDbEntity& entity)
{
    const auto& self = static_cast<const TvDbHatch&>(entity);
    HatchLimits limits;
    limits.mostPieces = kMostPieces;
    const HatchShape shape = shapeOf(self, limits);
    if (shape.isEmpty() || !scene.isShown())
        return;
    ItemLook area = scene.itemLook();
    area.kind = shape.isEvenOdd ? Item::Kind::EvenOddFill : Item::Kind::Fill;
    if (shape.background.kind != OwnColor::Kind::None) {
        ItemLook behind = area;
        behind.color = scene.colorOf(shape.background);
        scene.add(behind, shape.area, shape.placement);
    }
    switch (shape.kind) {
    case HatchShape::Kind::Solid: scene.add(area, shape.area, shape.placement); break;
    case HatchShape::Kind::Gradient:
        area.color = gradientColor(scene, shape.gradient);
        scene.add(area, shape.area, shape.placement);
        break;
    case HatchShape::Kind::Tint:
        area.alpha = static_cast<std::uint8_t>(area.alpha * std::clamp(shape.coverage, 0.0, 1.0));
        scene.add(area, shape.area, shape.placement);
        break;
    case HatchShape::Kind::Lines: {
        ItemLook lines = scene.itemLook();
        lines.detail = static_cast<float>(spacingOf(self) * scene.scaleOf(shape.placement));
        lines.coarseAlpha = kLinesCover;
        SpacePath whole;
        whole.append(shape.area, 0);
        scene.add(lines, shape.lines, shape.placement, &whole);
        break;
    }
    }
}

} // namespace gs::draw
