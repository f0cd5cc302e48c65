#pragma once

#include <panel/tree_drag.h>

namespace panel {

/// Where the keyboard moves the selected items.
enum class MoveKey {
    Up,   ///< in front of the one before; into an open subset there, or out of the own one
    Down, ///< behind the next one; into an open subset there, or out of the own one
    Out,  ///< behind the own subset
    Into, ///< to the end of the subset before
};

/// Where the selected items would go: as if they were dragged there. Nothing when there is no such
/// place, or nothing is selected.
DropPlace placeForKey(const SheetTree& tree, MoveKey key);

/// Moves the selected items as one change of the set, by the rules of dragging; they stay
/// selected. Nothing while the set is locked, and where dragging would be refused.
/// @param database  the current one; null is nothing.
/// @return whether the set changed.
bool moveByKey(SheetTree& tree, TvSmDatabase* database, MoveKey key);

} // namespace panel
