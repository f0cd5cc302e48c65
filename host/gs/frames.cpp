#include "frames.h"

#include <cmath>

#include <gs/picture.h>

#include "text_codes.h"
#include "text_drawing.h"
#include "text_pen.h"

namespace gs {

namespace {

constexpr double kTallest = 0.1; // letters, of the frame's height
constexpr double kWidest = 0.9;  // the name, of the frame's width
constexpr std::size_t kLongestName = 256;

std::u32string lettersOf(const TvString& name)
{
    std::u32string letters;
    std::u16string_view rest = name.view();
    while (!rest.empty() && letters.size() < kLongestName)
        letters += takeCharacter(rest);
    return letters;
}

/// The colour that all pixels make together.
Color meanOf(const Picture& picture)
{
    constexpr std::size_t kSamples = 4096;
    const std::size_t step = std::max<std::size_t>(picture.pixels.size() / kSamples, 1);
    std::uint64_t red = 0, green = 0, blue = 0, count = 0;
    for (std::size_t i = 0; i < picture.pixels.size(); i += step, ++count) {
        const std::uint32_t pixel = picture.pixels[i];
        const std::uint32_t paper = picture.isTransparent ? 255 - (pixel >> 24) : 0;
        red += (pixel >> 16 & 0xFF) + paper;
        green += (pixel >> 8 & 0xFF) + paper;
        blue += (pixel & 0xFF) + paper;
    }
    const auto mean = [count](std::uint64_t sum) {
        return static_cast<std::uint32_t>(std::min<std::uint64_t>(sum / count, 255));
    };
    return Color::given(mean(red) << 16 | mean(green) << 8 | mean(blue));
}

} // namespace

void drawName(Scene& scene, const TvGeMatrix3d& place, const TvString& name, double height)
{
    const std::u32string letters = lettersOf(name);
    if (!scene.isShown() || letters.empty() || !isDrawableHeight(height) || !isSound(place))
        return;
    TextShape shape;
    shape.keepsLetters = true;
    shape.placement = place;
    TextPen pen(shape, scene.textTools());
    LetterLook look;
    look.font = &scene.fonts().find({});
    look.height = height;
    pen.write(letters, look, {}, {});
    pen.run(letters, {}, height, pen.width(letters, look).ink(), {});
    drawTextShape(scene, std::move(shape));
}

void drawNamedFrame(Scene& scene, const FrameArea& area, const TvString& name)
{
    scene.path().polygon(area.corners());
    scene.stroke();
    const double width = area.right.length(), height = area.up.length();
    const std::u32string letters = lettersOf(name);
    if (!scene.isShown() || letters.empty() || !(width > 0) || !(height > 0))
        return;
    TextShape shape;
    shape.keepsLetters = true;
    shape.placement = TvGeMatrix3d::coordinateSystem(area.origin, area.right * (1 / width),
                                                     area.up * (1 / height),
                                                     area.right.crossProduct(area.up).normal());
    TextPen pen(shape, scene.textTools());
    LetterLook look;
    look.font = &scene.fonts().find({});
    look.height = height * kTallest;
    const double wide = pen.width(letters, look).ink();
    if (wide > width * kWidest)
        look.height *= width * kWidest / wide;
    if (!isDrawableHeight(look.height) || !isSound(shape.placement))
        return;
    const double ink = pen.width(letters, look).ink();
    const TvGePoint2d at{(width - ink) / 2, (height - look.height) / 2};
    pen.write(letters, look, at, {});
    pen.run(letters, at, look.height, ink, {});
    drawTextShape(scene, std::move(shape));
}

void fillWithPicture(Scene& scene, const FrameArea& area,
                     const std::shared_ptr<const Picture>& picture, const PictureLook& shown)
{
    if (!picture || picture->isEmpty() || !scene.isShown())
        return;
    ItemLook look = scene.itemLook();
    look.kind = Item::Kind::EvenOddFill;
    look.color = meanOf(*picture);
    look.alpha = static_cast<std::uint8_t>(look.alpha * (1 - std::clamp(shown.fade, 0.0, 1.0)));
    if (shown.clip != Item::kNoClip)
        look.clip = shown.clip;
    Filling filling;
    filling.picture = picture;
    filling.turnsOnDark = shown.turnsOnDark;
    filling.stops = {{0, look.color}};
    // Seen from the side, heights count: its square is placed in space.
    const TvGeMatrix3d& map = scene.frame().map;
    const TvGeMatrix3d square = TvGeMatrix3d::coordinateSystem(area.origin, area.right, area.up,
                                                               area.right.crossProduct(area.up));
    look.filling = scene.writer().addFilling(std::move(filling), map * square);
    scene.writer().add(look, scene.lastPath(), map);
}

void addPictureFrame(Scene& scene, const TvString& name, const FrameArea& area)
{
    const auto seen = [&](const TvGePoint3d& point) {
        return scene.writer().seen(scene.frame().map * point);
    };
    const ItemLook look = scene.itemLook();
    PictureFrame frame;
    frame.fileName = name;
    frame.origin = seen(area.origin);
    frame.right = seen(area.origin + area.right) - frame.origin;
    frame.up = seen(area.origin + area.up) - frame.origin;
    frame.layer = look.layer;
    frame.clip = look.clip;
    frame.handle = look.handle;
    scene.writer().addPicture(std::move(frame));
}

} // namespace gs
