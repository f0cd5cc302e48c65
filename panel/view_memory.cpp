#include "panel/view_memory.h"

namespace panel {

void ViewMemory::remember(const TvString& file, const SheetTree& tree, const TreeItem* firstVisible)
{
    View view{tree.GetExpandSnapshot(), tree.GetSelectedHandles(),
              tree.GetItemHandle(firstVisible)};
    if (tree.caret())
        view.selection.insert(tree.caret()->handle());
    m_views[file] = std::move(view);
}

const ViewMemory::View* ViewMemory::find(const TvString& file) const
{
    const auto view = m_views.find(file);
    return view == m_views.end() ? nullptr : &view->second;
}

} // namespace panel
