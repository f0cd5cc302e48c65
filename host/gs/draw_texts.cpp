#include "drawers.h"

#include <cmath>

#include <db/tv_db_text.h>
#include <gs/text_shape.h>

#include "text_drawing.h"

namespace gs {

namespace {

constexpr std::uint8_t kLettersCover = 100; // of 255, of the line they stand in
constexpr double kMidHeight = 0.7;          // of small letters, by that of capitals

/// What is seen of letters that are too small to read: a bar for each piece of text.
SpacePath barsOf(const TextShape& shape)
{
    SpacePath bars;
    for (const TextRun& run : shape.runs) {
        const TvGeVector2d along = run.direction * run.width,
                           up = run.direction.perpVector() * (run.height * kMidHeight);
        const auto corner = [](const TvGePoint2d& p) { return TvGePoint3d(p.x, p.y, 0); };
        bars.polygon({corner(run.origin), corner(run.origin + along),
                      corner(run.origin + along + up), corner(run.origin + up)});
    }
    return bars;
}

double heightOf(const TextShape& shape)
{
    double height = 0;
    for (const TextRun& run : shape.runs)
        height = std::max(height, run.height);
    return height;
}

void addBackground(Scene& scene, const TextBackground& background, const TvGeMatrix3d& place)
{
    ItemLook look = scene.itemLook();
    if (background.isFilled) {
        look.kind = Item::Kind::Fill;
        look.color =
            background.usesPaperColor ? Color::background() : scene.colorOf(background.color);
        scene.add(look, background.area, place);
    }
    if (background.hasFrame || !background.isFilled) {
        look.kind = Item::Kind::Stroke;
        look.color = scene.look().color;
        scene.add(look, background.area, place);
    }
}

void addRun(Scene& scene, const TextRun& run, const TvGeMatrix3d& map)
{
    const auto flat = [&](const TvGePoint2d& p) {
        const TvGePoint3d there = map * TvGePoint3d(p.x, p.y, 0);
        return TvGePoint2d(there.x, there.y);
    };
    const ItemLook look = scene.itemLook();
    PlacedText text;
    text.text = TvString(run.text);
    text.origin = flat(run.origin);
    text.along = flat(run.origin + run.direction * run.width) - text.origin;
    text.up = flat(run.origin + run.direction.perpVector() * run.height) - text.origin;
    text.layer = look.layer;
    text.clip = look.clip;
    text.handle = look.handle;
    scene.writer().addText(std::move(text));
}

} // namespace

void drawTextShape(Scene& scene, const TextShape& shape)
{
    if (!scene.isShown() || shape.isEmpty())
        return;
    if (shape.background)
        addBackground(scene, *shape.background, shape.placement);
    SpacePath bars = barsOf(shape);
    for (const TextPart& part : shape.parts) {
        ItemLook look = scene.itemLook();
        look.kind = part.isFilled ? Item::Kind::Fill : Item::Kind::Stroke;
        look.color = scene.colorOf(part.color);
        look.detail = static_cast<float>(heightOf(shape) * scene.scaleOf(shape.placement));
        look.coarseAlpha = kLettersCover;
        scene.add(look, part.path, shape.placement, &bars);
        if (&part == &shape.parts.front() && !bars.isEmpty()) {
            // Once for all parts: the others then draw nothing.
            bars.clear();
            bars.moveTo({0, 0, 0});
        }
    }
    for (const TextRun& run : shape.runs)
        addRun(scene, run, scene.frame().map * shape.placement);
}

} // namespace gs

namespace gs::draw {

namespace {

enum : std::int64_t { kNoAttributes = 0, kAllAttributes = 2 }; // ATTMODE

bool isAttributeShown(const Scene& scene, bool isInvisible)
{
    const std::int64_t mode = scene.database().headerRecord().integer("ATTMODE");
    return mode == kAllAttributes || (mode != kNoAttributes && !isInvisible);
}

} // namespace

void text(Scene& scene, const TvDbEntity& entity)
{
    drawTextShape(scene, shapeOf(static_cast<const TvDbText&>(entity), scene.fonts()));
}

void attribute(Scene& scene, const TvDbEntity& entity)
{
    const auto& self = static_cast<const TvDbAttribute&>(entity);
    if (isAttributeShown(scene, self.isInvisible()))
        drawTextShape(scene, shapeOf(self, scene.fonts()));
}

void attributeDefinition(Scene& scene, const TvDbEntity& entity)
{
    const auto& self = static_cast<const TvDbAttributeDefinition&>(entity);
    if (!scene.frame().by) // in no block: it shows which one it is
        drawTextShape(scene, shapeOf(self, self.tag(), scene.fonts()));
    else if (self.isConstant() && isAttributeShown(scene, self.isInvisible()))
        drawTextShape(scene, shapeOf(self, scene.fonts()));
}

void mtext(Scene& scene, const TvDbEntity& entity)
{
    drawTextShape(scene, shapeOf(static_cast<const TvDbMText&>(entity), scene.fonts()));
}

void tolerance(Scene& scene, const TvDbEntity& entity)
{
    drawTextShape(scene, shapeOf(static_cast<const TvDbFcf&>(entity), scene.fonts()));
}

} // namespace gs::draw
