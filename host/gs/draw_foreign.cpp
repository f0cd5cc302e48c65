// What other programs and files left in a drawing, and what only they could draw.

#include "drawers.h"

#include <bit>
#include <cmath>
#include <numbers>

#include <db/ge_values.h>
#include <ge/ocs.h>

#include "frames.h"
#include "picture_sources.h"

namespace gs::draw {

namespace {

constexpr std::size_t kOleHeader = 128;

double realAt(std::span<const std::uint8_t> bytes, std::size_t at)
{
    std::uint64_t bits = 0;
    for (std::size_t i = 8; i-- > 0;)
        bits = bits << 8 | bytes[at + i];
    return std::bit_cast<double>(bits);
}

/// The four corners that stand in the header of an embedded object, one after the other around it.
/// Where in it they begin differs: they are told by being a parallelogram.
std::optional<FrameArea> areaOfOle(std::span<const std::uint8_t> bytes)
{
    constexpr std::size_t kNumbers = 12, kLength = kNumbers * sizeof(double);
    constexpr double kFarthest = 1e12, kSmallest = 1e-9;
    for (std::size_t at = 0; at + kLength <= std::min(bytes.size(), kOleHeader); ++at) {
        TvGePoint3d corners[4];
        bool isSound = true;
        for (std::size_t i = 0; i < 4; ++i) {
            corners[i] = {realAt(bytes, at + i * 24), realAt(bytes, at + i * 24 + 8),
                          realAt(bytes, at + i * 24 + 16)};
            for (const double part : {corners[i].x, corners[i].y, corners[i].z})
                isSound = isSound && std::abs(part) < kFarthest &&
                          (part == 0 || std::abs(part) > kSmallest);
        }
        if (!isSound)
            continue;
        // From the upper left one on, clockwise.
        const FrameArea area{corners[3], corners[2] - corners[3], corners[0] - corners[3]};
        const double wide = area.right.length(), tall = area.up.length();
        const double apart = (corners[1] - corners[0] - area.right).length();
        if (wide > kSmallest && tall > kSmallest && apart <= (wide + tall) * kSmallest &&
            area.right.crossProduct(area.up).length() > wide * tall * kSmallest)
            return area;
    }
    return std::nullopt;
}

} // namespace

void oleFrame(Scene& scene, const TvDbEntity& entity)
{
    const std::span<const std::uint8_t> bytes = entity.fields().bytes("data");
    const auto area = areaOfOle(bytes);
    if (!area)
        return;
    const auto picture = scene.pictureOf(entity.handle().value(), [&] {
        return pictureWithin(bytes.subspan(std::min(bytes.size(), kOleHeader)));
    });
    if (!picture) {
        drawNamedFrame(scene, *area, TvString(u"OLE"));
        return;
    }
    scene.path().polygon(area->corners());
    fillWithPicture(scene, *area, picture);
    scene.path().polygon(area->corners());
    scene.stroke();
}

void shape(Scene& scene, const TvDbEntity& entity)
{
    const db::RecordView fields = entity.fields();
    const double size = fields.real("size"), factor = fields.real("width_factor");
    const double slant = std::tan(std::remainder(fields.real("oblique"), std::numbers::pi));
    if (!std::isfinite(size) || !std::isfinite(factor) || !(std::abs(slant) < 10))
        return;
    TvGeMatrix3d form = TvGeMatrix3d::scaling(size);
    form.entry[0][0] = factor * size;
    form.entry[0][1] = slant * size;
    SpacePath& path = scene.path();
    const Path* const known =
        scene.shapes().find(entity.idOf(fields.handle("style")), fields.integer("shape_number"));
    if (known) {
        path.append(*known, 0);
    } else { // its file is not here: a crossed box of its size stands for it
        path.polygon({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}});
        path.moveTo({0, 0, 0});
        path.lineTo({1, 1, 0});
        path.moveTo({0, 1, 0});
        path.lineTo({1, 0, 0});
    }
    scene.stroke(ge::ocsToWcs(db::asVector(fields.point("normal"))) *
                 TvGeMatrix3d::translation(db::asPoint(fields.point("ins_pt")).asVector()) *
                 TvGeMatrix3d::rotation(fields.real("rotation"), TvGeVector3d::zAxis()) * form);
}

void sectionLine(Scene& scene, const TvDbEntity& entity)
{
    const db::ArrayView vertices = entity.fields().array("vertices");
    SpacePath& path = scene.path();
    for (std::uint32_t i = 0; i < vertices.size(); ++i) {
        const TvGePoint3d at = db::asPoint(vertices.point(i));
        i == 0 ? path.moveTo(at) : path.lineTo(at);
    }
    scene.stroke();
}

void light(Scene& scene, const TvDbEntity& entity)
{
    // A lamp of the same size at any scale: a circle and its rays.
    constexpr double kRadius = 0.006, kRay = 0.012; // of the view's height
    constexpr int kRays = 8;
    SpacePath& path = scene.path();
    path.bow({}, {kRadius, 0, 0}, {0, kRadius, 0}, 0, 2 * std::numbers::pi);
    for (int i = 0; i < kRays; ++i) {
        const double angle = 2 * std::numbers::pi * i / kRays;
        const TvGeVector3d way(std::cos(angle), std::sin(angle), 0);
        path.moveTo(TvGePoint3d() + way * kRadius);
        path.lineTo(TvGePoint3d() + way * kRay);
    }
    scene.addMarker(db::asPoint(entity.fields().point("position")));
}

} // namespace gs::draw
