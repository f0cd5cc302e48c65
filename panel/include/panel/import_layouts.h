#pragma once

#include <functional>
#include <vector>

#include <panel/panel_commands.h>

namespace panel {

/// Lets the user make sheets of layouts, at @p place.
/// @param drawing  the one whose layouts are offered; empty: the user chooses.
/// @param layouts  the names of those that are to be ticked; empty: all that can be.
using ImportLayouts =
    std::function<void(SheetListPage& page, const InsertionPlace& place, const TvString& drawing,
                       const std::vector<TvString>& layouts)>;
/// Supplied by the room that imports layouts; without it that is said to be not available.
void setImportLayouts(ImportLayouts import);

/// Imports where the caret is, or nothing when it is nowhere.
void importLayouts(SheetListPage& page, const InsertionPlace& place, const TvString& drawing,
                   const std::vector<TvString>& layouts);

} // namespace panel
