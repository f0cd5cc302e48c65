#include "drawers.h"

#include <cmath>

#include <db/tv_db_text.h>

#include "text_drawing.h"

namespace gs {

namespace {

constexpr std::uint8_t kLettersCover = 100; // of 255, of the line they stand in
constexpr double kMidHeight = 0.7;          // of small letters, by that of capitals

/// What is seen of letters that are too small to read: a bar for each piece of text.
void addBars(const TextShape& shape, SpacePath& bars)
{
    for (const TextRun& run : shape.runs) {
        const TvGeVector2d along = run.direction * run.width,
                           up = run.direction.perpVector() * (run.height * kMidHeight);
        const auto corner = [](const TvGePoint2d& p) { return TvGePoint3d(p.x, p.y, 0); };
        bars.moveTo(corner(run.origin));
        bars.lineTo(corner(run.origin + along));
        bars.lineTo(corner(run.origin + along + up));
        bars.lineTo(corner(run.origin + up));
        bars.close();
    }
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

void addRun(Scene& scene, TextRun&& run, const TvGeMatrix3d& map)
{
    const auto flat = [&](const TvGePoint2d& p) {
        return scene.writer().seen(map * TvGePoint3d(p.x, p.y, 0));
    };
    const ItemLook look = scene.itemLook();
    PlacedText text;
    text.text = TvString(std::move(run.text));
    text.origin = flat(run.origin);
    text.along = flat(run.origin + run.direction * run.width) - text.origin;
    text.up = flat(run.origin + run.direction.perpVector() * run.height) - text.origin;
    text.layer = look.layer;
    text.clip = look.clip;
    text.handle = look.handle;
    text.isOutlined = run.isOutlined;
    scene.writer().addText(std::move(text));
}

} // namespace

void drawTextShape(Scene& scene, TextShape&& shape)
{
    if (!scene.isShown() || shape.isEmpty())
        return;
    if (shape.background)
        addBackground(scene, *shape.background, shape.placement);
    SpacePath& bars = scene.path();
    addBars(shape, bars);
    const TvGeMatrix3d map = scene.placed(shape.placement);
    const auto detail = static_cast<float>(heightOf(shape) * flatScale(map));
    for (const TextPart& part : shape.parts) {
        ItemLook look = scene.itemLook();
        look.kind = part.isFilled ? Item::Kind::Fill : Item::Kind::Stroke;
        look.color = scene.colorOf(part.color);
        look.detail = detail;
        look.coarseAlpha = kLettersCover;
        if (part.rows.empty())
            scene.writer().add(look, part.path, map, &bars);
        else
            scene.writer().addLetters(look, shape, part, map, &bars);
        if (&part == &shape.parts.front() && !bars.isEmpty()) {
            // Once for all parts: the others then draw nothing.
            bars.clear();
            bars.moveTo({0, 0, 0});
        }
    }
    for (TextRun& run : shape.runs)
        addRun(scene, std::move(run), map);
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
    drawTextShape(scene, textShape(static_cast<const TvDbText&>(entity), scene.textTools()));
}

void attribute(Scene& scene, const TvDbEntity& entity)
{
    const auto& self = static_cast<const TvDbAttribute&>(entity);
    if (isAttributeShown(scene, self.isInvisible()))
        drawTextShape(scene, textShape(self, scene.textTools()));
}

void attributeDefinition(Scene& scene, const TvDbEntity& entity)
{
    const auto& self = static_cast<const TvDbAttributeDefinition&>(entity);
    if (!scene.frame().by) // in no block: it shows which one it is
        drawTextShape(scene, textShape(self, self.tag(), scene.textTools()));
    else if (self.isConstant() && isAttributeShown(scene, self.isInvisible()))
        drawTextShape(scene, textShape(self, scene.textTools()));
}

void mtext(Scene& scene, const TvDbEntity& entity)
{
    drawTextShape(scene, textShape(static_cast<const TvDbMText&>(entity), scene.textTools()));
}

void tolerance(Scene& scene, const TvDbEntity& entity)
{
    drawTextShape(scene, textShape(static_cast<const TvDbFcf&>(entity), scene.textTools()));
}

} // namespace gs::draw
