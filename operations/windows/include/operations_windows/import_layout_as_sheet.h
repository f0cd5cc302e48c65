#pragma once

#include <vector>

#include <panel/panel_commands.h>

/// Lets the user choose layouts of drawings, and makes sheets of them in the subset of
/// @p place.parent, in front of @p place.before, in one change. They get the custom properties that
/// the set has for sheets.
///
/// Nothing when the item is no subset or gone, when the set is locked, and when the user gives up.
/// The tree follows the change.
/// @param place    its items are not used after the set is locked.
/// @param drawing  the one that is listed at first; empty: none, the user chooses.
/// @param layouts  which of its layouts are ticked at first; empty: all that can be.
void ImportLayoutAsSheetInto(panel::SheetListPage& page, const panel::InsertionPlace& place,
                             const TvString& drawing, const std::vector<TvString>& layouts);
/// The same under its other name.
inline void ImportLayoutAsSheetCommand(panel::SheetListPage& page,
                                       const panel::InsertionPlace& place, const TvString& drawing,
                                       const std::vector<TvString>& layouts)
{
    ImportLayoutAsSheetInto(page, place, drawing, layouts);
}

namespace operations {

/// Lets the user choose another layout for a sheet, under the lock that the caller holds.
/// @return whether he did; then the change is to be kept.
bool chooseOtherLayout(TvSmSheet& sheet);

} // namespace operations
