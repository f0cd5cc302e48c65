#pragma once

#include <operations/import_layouts.h>

#include <cli/console.h>

class TvSmSheet;

namespace cli {

/// The layouts of drawings as their tabs stand, judged for a set; stops when the user asks for it.
/// @param set  the one that gets the sheets; counts as open.
operations::LoadedLayouts layoutsFor(const TvSmDatabase& set, const std::vector<TvString>& drawings,
                                     Console& console);

/// Warns about each drawing that cannot be read. @return whether there is one.
bool warnOfUnreadable(const operations::LoadedLayouts& loaded, Console& console);
/// Refuses as the first drawing that cannot be read demands; nothing when all can be.
void refuseIfUnreadable(const operations::LoadedLayouts& loaded);
/// Warns about a layout that is in use.
void warnOfUse(const operations::LayoutRow& row, Console& console);

/// { "handle", "name", "drawing", "layout", "layoutHandle" }
Json jsonOfImported(const TvSmSheet& sheet);
/// { "drawing", "layout", "layoutHandle" } of each layout in use.
Json jsonOfUsed(const std::vector<operations::LayoutRow>& rows);

} // namespace cli
