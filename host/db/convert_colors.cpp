#include "convert_colors.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include <db/palette.h>

namespace db {

namespace {

constexpr std::uint32_t kByLayer = 0xC0, kByBlock = 0xC1, kTrue = 0xC2, kIndexed = 0xC3,
                        kNone = 0xC8;
constexpr std::int64_t kIndexByBlock = 0, kIndexByLayer = 256, kIndexNone = 257;

// 24 hues of 15 degrees in five brightnesses, every second colour half-way to white; before them
// the plain colours, behind them greys.
std::array<std::uint32_t, 256> makePalette()
{
    constexpr std::uint32_t kFirst[] = {0x000000, 0xFF0000, 0xFFFF00, 0x00FF00, 0x00FFFF,
                                        0x0000FF, 0xFF00FF, 0xFFFFFF, 0x808080, 0xC0C0C0};
    constexpr std::uint32_t kGreys[] = {0x333333, 0x5B5B5B, 0x848484, 0xADADAD, 0xD6D6D6, 0xFFFFFF};
    constexpr int kTenths[] = {10, 8, 6, 5, 3}; // brightness
    std::array<std::uint32_t, 256> palette{};
    std::copy(std::begin(kFirst), std::end(kFirst), palette.begin());
    std::copy(std::begin(kGreys), std::end(kGreys), palette.begin() + 250);
    for (int at = 10; at < 250; ++at) {
        const int hue = (at - 10) / 10; // in quarters of a sixth of the circle
        const bool isPale = at % 2 != 0;
        const int tenths = kTenths[at % 10 / 2];
        // Full in the sixth around its own colour and the ones beside it, fading in the next.
        const auto channel = [&](int centre) {
            const int away = std::abs((hue - centre + 36) % 24 - 12);
            const int quarters = std::clamp(8 - away, 0, 4);
            const double part = quarters / 4.0;
            const double shown = isPale ? (1 + part) / 2 : part;
            return static_cast<std::uint32_t>(255 * shown * tenths / 10);
        };
        palette[static_cast<std::size_t>(at)] = channel(0) << 16 | channel(8) << 8 | channel(16);
    }
    return palette;
}

const std::array<std::uint32_t, 256>& palette()
{
    static const std::array<std::uint32_t, 256> kPalette = makePalette();
    return kPalette;
}

int distance(std::uint32_t a, std::uint32_t b)
{
    const auto part = [](std::uint32_t rgb, int shift) {
        return static_cast<int>(rgb >> shift & 0xFF);
    };
    int sum = 0;
    for (const int shift : {0, 8, 16}) {
        const int apart = part(a, shift) - part(b, shift);
        sum += apart * apart;
    }
    return sum;
}

} // namespace

std::uint32_t paletteColor(int index)
{
    return index > 0 && index < 256 ? palette()[static_cast<std::size_t>(index)] : 0;
}

int nearestColorIndex(std::uint32_t rgb)
{
    const auto& all = palette();
    const auto nearest =
        std::min_element(all.begin() + 1, all.end(), [&](std::uint32_t a, std::uint32_t b) {
            return distance(a, rgb) < distance(b, rgb);
        });
    return static_cast<int>(nearest - all.begin());
}

std::int32_t wideColor(std::int64_t index)
{
    if (index == kIndexByBlock)
        return static_cast<std::int32_t>(kByBlock << 24);
    if (index == kIndexByLayer)
        return static_cast<std::int32_t>(kByLayer << 24);
    if (index < 0 || index > 255)
        return static_cast<std::int32_t>(kNone << 24);
    return static_cast<std::int32_t>(kIndexed << 24 | static_cast<std::uint32_t>(index));
}

std::int64_t colorIndex(std::int32_t value)
{
    const auto bits = static_cast<std::uint32_t>(value);
    switch (bits >> 24) {
    case kByLayer: return kIndexByLayer;
    case kByBlock: return kIndexByBlock;
    case kTrue: return nearestColorIndex(bits & 0xFFFFFF);
    case kIndexed: return bits & 0xFF;
    default: return kIndexNone;
    }
}

} // namespace db
