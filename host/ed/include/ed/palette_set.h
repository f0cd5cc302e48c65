#pragma once

#include <optional>

#include <base/tv_string.h>

namespace ed {

/// Where a palette set is, by the frame's numbers of its bars.
enum class DockSide : int {
    Top = 59419,
    Left = 59420,
    Right = 59421,
    Bottom = 59422,
    Floating = 59423
};

/// Edges at which a palette set may dock, to be put together by |.
enum DockEdges : unsigned {
    kDockNowhere = 0,
    kDockLeft = 1,
    kDockRight = 2,
    kDockTop = 4,
    kDockBottom = 8
};

/// In pixels of the desktop, as the window system counts them.
struct ScreenRect {
    int x = 0, y = 0, width = 0, height = 0;

    bool isEmpty() const { return width <= 0 || height <= 0; }
    friend bool operator==(const ScreenRect&, const ScreenRect&) = default;
};

/// The place and the manner of a palette set: what is kept from one run to the next.
struct PalettePlacement {
    DockSide side = DockSide::Right;
    bool isRolledIn = false;    ///< shows its strip or title only, until the mouse comes
    bool isTransparent = false; ///< while it floats and the mouse is elsewhere
    int transparency = 0;       ///< percent, 0 to 90
    bool mayDock = true;
    ScreenRect floating; ///< empty: never floated
    ScreenRect docked;   ///< empty: never docked; its size counts
    int activePalette = 0;

    friend bool operator==(const PalettePlacement&, const PalettePlacement&) = default;
};

/// The attributes of one element of a palette state file.
class StateElement
{
public:
    virtual ~StateElement() = default;
    /// nullopt when the element has no such attribute.
    virtual std::optional<TvString> attribute(const TvString& name) const = 0;
    /// Adds or replaces it.
    virtual void setAttribute(const TvString& name, const TvString& value) = 0;
};

/// Writes it into the element; other attributes stay.
void savePlacement(const PalettePlacement& placement, StateElement& element);
/// Reads what the element says, as far as it makes sense: what is missing, no number or out of
/// range stays as it is in @p standard. Whether the place can be seen on today's screens is the
/// window's matter.
PalettePlacement readPlacement(const StateElement& element, const PalettePlacement& standard = {});

/// The number 1 to 5 by which workspaces keep a side: floating, left, right, top, bottom.
int orientationOf(DockSide side);
/// nullopt for any other number.
std::optional<DockSide> sideOfOrientation(int orientation);
/// nullopt for a number that is no bar's.
std::optional<DockSide> sideOfBar(int bar);

/// A window that docks at the edges of the frame or floats, with a tab for each of its palettes; as
/// those know it who keep and restore it without knowing windows.
class PaletteSet
{
public:
    virtual ~PaletteSet() = default;

    virtual bool isShown() const = 0;
    virtual void setShown(bool shown) = 0;
    /// Whether only its strip or title shows at this moment.
    virtual bool isRolledUp() const = 0;
    /// @param edges  DockEdges; kDockNowhere lets it float only.
    virtual void EnableDocking(unsigned edges) = 0;
    /// Docks or floats it. An unknown @p bar is ignored.
    /// @param bar   a number of DockSide.
    /// @param rect  where and how large; null: as it was there before.
    virtual void RestoreControlBar(int bar, const ScreenRect* rect = nullptr) = 0;

    virtual PalettePlacement placement() const = 0;
    /// Puts it there, as far as today's screens and edges allow; it is not shown or hidden by this.
    virtual void setPlacement(const PalettePlacement& placement) = 0;
    void Save(StateElement& element) const;
    void Restore(const StateElement& element);
};

} // namespace ed
