#include "picture_tone.h"

#include <algorithm>
#include <cmath>

namespace gs {

namespace {

struct Channels {
    int alpha, red, green, blue; ///< the colours are multiplied by alpha

    explicit Channels(std::uint32_t pixel)
        : alpha(static_cast<int>(pixel >> 24)), red(static_cast<int>(pixel >> 16 & 0xFF)),
          green(static_cast<int>(pixel >> 8 & 0xFF)), blue(static_cast<int>(pixel & 0xFF))
    {
    }
    std::uint32_t pixel() const
    {
        const auto part = [this](int value) {
            return static_cast<std::uint32_t>(std::clamp(value, 0, alpha));
        };
        return part(alpha) << 24 | part(red) << 16 | part(green) << 8 | part(blue);
    }
};

int luminance(const Channels& of)
{
    return (of.red * 299 + of.green * 587 + of.blue * 114 + 500) / 1000;
}

} // namespace

void applyTone(Picture& picture, const PictureTone& tone)
{
    if (tone.isPlain())
        return;
    // In 1024ths: contrast moves away from the middle, brightness is added.
    const int slope = static_cast<int>(std::lround(tone.contrast * 1024));
    const int lift = static_cast<int>(
        std::lround((0.5 - tone.contrast * 0.5 + tone.brightness) * 1024)); // of alpha
    for (std::uint32_t& pixel : picture.pixels) {
        Channels parts(pixel);
        if (parts.alpha == 0)
            continue;
        if (tone.isGray)
            parts.red = parts.green = parts.blue = luminance(parts);
        for (int* part : {&parts.red, &parts.green, &parts.blue})
            *part = (*part * slope + parts.alpha * lift + 512) >> 10;
        pixel = parts.pixel();
    }
    picture.jpeg.clear();
}

const Picture& PictureOnDark::of(const Picture& picture)
{
    std::call_once(m_made, [&] { m_picture = turned(picture); });
    return m_picture;
}

Picture turned(const Picture& picture)
{
    Picture result;
    result.width = picture.width;
    result.height = picture.height;
    result.isTransparent = picture.isTransparent;
    result.pixels.reserve(picture.pixels.size());
    for (const std::uint32_t pixel : picture.pixels) {
        Channels parts(pixel);
        const auto [least, most] = std::minmax({parts.red, parts.green, parts.blue});
        const int shift = parts.alpha - least - most;
        parts.red += shift, parts.green += shift, parts.blue += shift;
        result.pixels.push_back(parts.pixel());
    }
    return result;
}

} // namespace gs
