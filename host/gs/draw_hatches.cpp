#include "drawers.h"

#include <cmath>

#include <db/tv_db_annotations.h>
#include <gs/hatch_shape.h>

#include "gradient_fill.h"

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
        if (auto filling = fillingOf(shape.gradient, shape.area, scene); filling) {
            area.color = meanColor(*filling);
            area.filling =
                scene.writer().addFilling(std::move(*filling), scene.placed(shape.placement));
        }
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
