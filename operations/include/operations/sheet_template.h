#pragma once

#include <base/tv_string.h>

class TvSmSubset;

/// Where the sheets of a subset come from, and where they go. Each is looked for in the subset and
/// then in those above it, up to the set itself.
namespace operations {

/// A layout of a drawing that new sheets are copies of.
struct SheetTemplate {
    TvString layout;  ///< its name
    TvString drawing; ///< path
    friend bool operator==(const SheetTemplate&, const SheetTemplate&) = default;

    /// Both are known; nobody has looked whether they are there.
    bool isComplete() const { return !layout.isEmpty() && !drawing.isEmpty(); }
    /// How a person reads it: "A1(/templates/house.dwt)".
    TvString label() const { return layout + u"(" + drawing + u")"; }
};

/// The template of the nearest one that names layout and drawing both. A template that was
/// installed on another machine is taken from the user's own, if it is there.
/// @return incomplete when there is none.
/// @note asks the disk whether the drawing is there.
SheetTemplate inheritedTemplate(const TvSmSubset& subset);

/// Whether the drawing can be read, and has the layout.
/// @note reads the drawing's map of objects.
bool isThere(const SheetTemplate& which);

/// The folder for new drawings, of the nearest one that names one; empty when there is none. That
/// it is a folder has not been looked at.
TvString newSheetFolder(const TvSmSubset& subset);

} // namespace operations
