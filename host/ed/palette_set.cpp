#include "ed/palette_set.h"

#include <charconv>
#include <iterator>

namespace ed {

namespace {

// As stored: names are forever.
constexpr TvChar kOrientation[] = u"Orientation";
constexpr TvChar kRolledIn[] = u"AutoHide";
constexpr TvChar kTransparent[] = u"Transparent";
constexpr TvChar kTransparency[] = u"Transparency";
constexpr TvChar kMayDock[] = u"AllowDocking";
constexpr TvChar kActive[] = u"ActivePalette";

struct SideNumber {
    DockSide side;
    int orientation;
};
constexpr SideNumber kSides[] = {{DockSide::Floating, 1},
                                 {DockSide::Left, 2},
                                 {DockSide::Right, 3},
                                 {DockSide::Top, 4},
                                 {DockSide::Bottom, 5}};

constexpr int kMostTransparent = 90; // percent: less could not be found again
constexpr int kFarthest = 100000;    // pixels: beyond any desktop
constexpr int kMostPalettes = 1000;

void write(StateElement& element, const TvString& name, int value)
{
    element.setAttribute(name, TvString().format(u"%d", value));
}

std::optional<int> numberIn(const StateElement& element, const TvString& name, int low, int high)
{
    const std::optional<TvString> text = element.attribute(name);
    if (!text)
        return std::nullopt;
    const std::string digits = text->utf8();
    int value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    const bool isNumber = error == std::errc() && end == digits.data() + digits.size();
    return isNumber && value >= low && value <= high ? std::optional(value) : std::nullopt;
}

void readFlag(const StateElement& element, const TvString& name, bool& flag)
{
    if (const auto value = numberIn(element, name, 0, 1))
        flag = *value == 1;
}

void writeRect(StateElement& element, const TvString& before, const ScreenRect& rect)
{
    write(element, before + u"X", rect.x);
    write(element, before + u"Y", rect.y);
    write(element, before + u"Width", rect.width);
    write(element, before + u"Height", rect.height);
}

/// A rectangle counts as a whole, or not at all.
void readRect(const StateElement& element, const TvString& before, ScreenRect& rect)
{
    const auto x = numberIn(element, before + u"X", -kFarthest, kFarthest);
    const auto y = numberIn(element, before + u"Y", -kFarthest, kFarthest);
    const auto width = numberIn(element, before + u"Width", 1, kFarthest);
    const auto height = numberIn(element, before + u"Height", 1, kFarthest);
    if (x && y && width && height)
        rect = {*x, *y, *width, *height};
}

} // namespace

int orientationOf(DockSide side)
{
    for (const SideNumber& row : kSides)
        if (row.side == side)
            return row.orientation;
    return 1;
}

std::optional<DockSide> sideOfOrientation(int orientation)
{
    for (const SideNumber& row : kSides)
        if (row.orientation == orientation)
            return row.side;
    return std::nullopt;
}

std::optional<DockSide> sideOfBar(int bar)
{
    for (const SideNumber& row : kSides)
        if (static_cast<int>(row.side) == bar)
            return row.side;
    return std::nullopt;
}

void savePlacement(const PalettePlacement& placement, StateElement& element)
{
    write(element, kOrientation, orientationOf(placement.side));
    write(element, kRolledIn, placement.isRolledIn);
    write(element, kTransparent, placement.isTransparent);
    write(element, kTransparency, placement.transparency);
    write(element, kMayDock, placement.mayDock);
    writeRect(element, u"", placement.floating);
    writeRect(element, u"Dock", placement.docked);
    write(element, kActive, placement.activePalette);
}

PalettePlacement readPlacement(const StateElement& element, const PalettePlacement& standard)
{
    PalettePlacement placement = standard;
    if (const auto orientation = numberIn(element, kOrientation, 1, std::size(kSides)))
        placement.side = *sideOfOrientation(*orientation);
    readFlag(element, kRolledIn, placement.isRolledIn);
    readFlag(element, kTransparent, placement.isTransparent);
    if (const auto percent = numberIn(element, kTransparency, 0, kMostTransparent))
        placement.transparency = *percent;
    readFlag(element, kMayDock, placement.mayDock);
    readRect(element, u"", placement.floating);
    readRect(element, u"Dock", placement.docked);
    if (const auto active = numberIn(element, kActive, 0, kMostPalettes))
        placement.activePalette = *active;
    return placement;
}

void PaletteSet::Save(StateElement& element) const
{
    savePlacement(placement(), element);
}

void PaletteSet::Restore(const StateElement& element)
{
    setPlacement(readPlacement(element, placement()));
}

} // namespace ed
