#pragma once

#include <map>
#include <optional>
#include <set>

#include <panel/sheet_tree.h>

namespace panel {

/// How each sheet set was shown last, by the path of its file (letter for letter) and the handles
/// of its objects: neither is ever given to another. Lives as long as the page; never stored.
class ViewMemory
{
public:
    struct View {
        SheetTree::ExpandState expanded;
        std::set<TvString> selection; ///< the one with the caret among them
        TvString firstVisible;        ///< empty when nothing is shown
    };

    /// Takes the view of @p tree, in the place of the former one.
    /// @param firstVisible  the item at the top of what is scrolled; may be null.
    void remember(const TvString& file, const SheetTree& tree, const TreeItem* firstVisible);
    void forget(const TvString& file) { m_views.erase(file); }
    /// Null when it was not shown yet; good until it is remembered or forgotten again.
    const View* find(const TvString& file) const;

private:
    std::map<TvString, View> m_views;
};

} // namespace panel
