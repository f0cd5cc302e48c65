#pragma once

#include <unordered_set>

#include <panel/sheet_tree.h>

namespace panel {

/// What of a sheet list is shown while the user looks for something. The tree itself stays as it
/// is: what is open and selected in it comes back when the search ends.
struct FilteredTree {
    std::unordered_set<const TreeItem*> shown;
    /// Subsets that are open so that what was found below them is seen.
    std::unordered_set<const TreeItem*> opened;
    int matches = 0;
};

/// Shown are the items that have all the words of @p text, in any case, each of them anywhere in
/// number, title or name, description and properties; and what they stand in. What is in a subset
/// that was found can be seen by opening it.
/// @param text  blanks stand between words.
/// @note O(items) and their properties.
FilteredTree filterTree(const SheetTree& tree, const TvString& text);

} // namespace panel
