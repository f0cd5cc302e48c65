#include "colors.h"

#include <array>

namespace dxf {

namespace {

constexpr std::uint32_t kByLayer = 0xC0, kByBlock = 0xC1, kTrue = 0xC2, kIndexed = 0xC3,
                        kNone = 0xC8;
constexpr std::int64_t kHasName = 1, kHasBook = 2;

std::uint32_t valueOf(const db::RecordView& color)
{
    return static_cast<std::uint32_t>(color.integer("value"));
}

bool hasWideColors(const db::RecordView& color, db::Version version)
{
    return version > db::Version::Ac1015 || color.def()->name == "TC";
}

std::array<std::uint32_t, 256> makePalette()
{
    constexpr std::uint32_t kFirst[] = {0x000000, 0xFF0000, 0xFFFF00, 0x00FF00, 0x00FFFF,
                                        0x0000FF, 0xFF00FF, 0xFFFFFF, 0x808080, 0xC0C0C0};
    constexpr std::uint32_t kGreys[] = {0x333333, 0x5B5B5B, 0x848484, 0xADADAD, 0xD6D6D6, 0xFFFFFF};
    constexpr double kBrightness[] = {1, 0.8, 0.6, 0.5, 0.3};
    std::array<std::uint32_t, 256> palette{};
    std::copy(std::begin(kFirst), std::end(kFirst), palette.begin());
    std::copy(std::begin(kGreys), std::end(kGreys), palette.begin() + 250);
    // 24 hues of 15 degrees; every second colour of a hue half-way to white.
    for (int at = 10; at < 250; ++at) {
        const double hue = (at - 10) / 10 * 0.25; // in sixths of the circle
        const bool isPale = at % 2 != 0;
        const double bright = kBrightness[(at % 10) / 2];
        const auto channel = [&](double turn) {
            double x = hue + turn;
            x -= x >= 6 ? 6 : 0;
            const double full = x < 1 ? x : x < 3 ? 1 : x < 4 ? 4 - x : 0;
            return static_cast<std::uint32_t>((isPale ? (1 + full) / 2 : full) * bright * 255 +
                                              1e-9);
        };
        palette[static_cast<std::size_t>(at)] = channel(2) << 16 | channel(0) << 8 | channel(4);
    }
    return palette;
}

const std::array<std::uint32_t, 256>& palette()
{
    static const auto made = makePalette();
    return made;
}

} // namespace

void setColorIndex(db::RecordEditor& color, std::int64_t index, db::Version version)
{
    index = index < 0 ? -index : index;
    if (!hasWideColors(color, version)) {
        color.setInteger("index", index);
        return;
    }
    const std::uint32_t kind = index == 0     ? kByBlock
                               : index == 256 ? kByLayer
                               : index == 257 ? kNone
                                              : kIndexed;
    const auto low = kind == kIndexed ? static_cast<std::uint32_t>(index & 0xFF) : 0;
    if (!isTrueColor(color)) // that counts, whichever comes first
        color.setInteger("value", kind << 24 | low);
}

void setTrueColor(db::RecordEditor& color, std::int64_t rgb)
{
    color.setInteger("value", kTrue << 24 | (static_cast<std::uint32_t>(rgb) & 0xFFFFFF));
}

void setColorName(db::RecordEditor& color, std::u16string_view name)
{
    const auto cut = name.find(u'$');
    if (cut != name.npos)
        color.setText("book", name.substr(0, cut));
    color.setText("name", cut == name.npos ? name : name.substr(cut + 1));
}

void setWideColor(db::RecordEditor& color, std::int64_t value, db::Version version)
{
    color.setInteger("value", static_cast<std::int32_t>(value));
    if (version > db::Version::Ac1015)
        return;
    const auto bits = static_cast<std::uint32_t>(value);
    color.setInteger("index", bits >> 24 == kByBlock   ? 0
                              : bits >> 24 == kIndexed ? bits & 0xFF
                                                       : 256);
}

std::int64_t colorIndex(const db::RecordView& color, db::Version version)
{
    if (!hasWideColors(color, version))
        return color.integer("index");
    const std::uint32_t value = valueOf(color);
    switch (value >> 24) {
    case kByLayer: return 256;
    case kByBlock: return 0;
    case kTrue: return nearestIndex(value & 0xFFFFFF);
    case kNone: return 257;
    default: return value & 0xFF;
    }
}

bool isTrueColor(const db::RecordView& color)
{
    return valueOf(color) >> 24 == kTrue;
}

std::u16string colorName(const db::RecordView& color)
{
    std::u16string name;
    if (color.integer("flags") & kHasBook)
        name = std::u16string(color.text("book")) + u"$";
    if (color.integer("flags") & kHasName)
        name += color.text("name");
    return name;
}

std::int32_t wideColor(const db::RecordView& color, db::Version version)
{
    if (hasWideColors(color, version))
        return static_cast<std::int32_t>(valueOf(color));
    const std::int64_t index = color.integer("index");
    const std::uint32_t value = index == 256 ? kByLayer << 24
                                : index == 0 ? kByBlock << 24
                                             : kIndexed << 24 | (index & 0xFF);
    return static_cast<std::int32_t>(value);
}

std::uint32_t paletteColor(int index)
{
    return palette()[static_cast<std::size_t>(index) & 0xFF];
}

int nearestIndex(std::uint32_t rgb)
{
    int best = 1;
    int smallest = INT32_MAX;
    for (int at = 1; at < 256; ++at) {
        const std::uint32_t other = paletteColor(at);
        int distance = 0;
        for (const int shift : {16, 8, 0}) {
            const int d =
                static_cast<int>(rgb >> shift & 0xFF) - static_cast<int>(other >> shift & 0xFF);
            distance += d * d;
        }
        if (distance < smallest) {
            smallest = distance;
            best = at;
        }
    }
    return best;
}

} // namespace dxf
