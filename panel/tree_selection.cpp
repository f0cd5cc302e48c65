// Several selected items beside the one with the caret:
// 1. no selected item stands above or below another selected one;
// 2. the root is selected alone.

#include "panel/sheet_tree.h"

namespace panel {

namespace {

/// Depth first; a visit that answers false leaves out what is below.
template <class Visit>
void walk(TreeItem& item, Visit&& visit)
{
    if (!visit(item))
        return;
    for (const std::unique_ptr<TreeItem>& child : item.children())
        walk(*child, visit);
}

bool hasSheet(const TreeItem& item)
{
    if (item.kind() == TreeItemData::kSheet)
        return true;
    for (const std::unique_ptr<TreeItem>& child : item.children())
        if (hasSheet(*child))
            return true;
    return false;
}

/// Whether @p a is shown above @p b.
bool isBefore(const TreeItem* a, const TreeItem* b)
{
    const auto rowsOf = [](const TreeItem* item) {
        std::vector<int> rows;
        for (; item->parent(); item = item->parent())
            rows.insert(rows.begin(), item->row());
        return rows;
    };
    return rowsOf(a) < rowsOf(b);
}

} // namespace

void SheetTree::tellSelection()
{
    if (m_batches == 0 && std::exchange(m_hasSelectionChanged, false))
        m_listener->selectionChanged();
}

void SheetTree::select(TreeItem& item, bool selected)
{
    if (item.m_isSelected == selected)
        return;
    item.m_isSelected = selected;
    m_selectedCount += selected ? 1 : -1;
    m_hasSelectionChanged = true;
}

void SheetTree::unselectBelow(TreeItem& item)
{
    for (const std::unique_ptr<TreeItem>& child : item.m_children)
        walk(*child, [this](TreeItem& each) {
            select(each, false);
            return true;
        });
}

void SheetTree::setCaret(TreeItem* item)
{
    if (m_caret == item)
        return;
    m_caret = item;
    m_hasSelectionChanged = true;
    tellSelection();
}

void SheetTree::SelectItem(TreeItem* item)
{
    if (!item)
        return;
    const Batch batch(*this);
    if (item == m_root.get())
        ClearSelection();
    for (TreeItem* above = item->m_parent; above; above = above->m_parent)
        select(*above, false);
    if (item->m_kind == TreeItemData::kSubset && m_selectedCount > 0)
        unselectBelow(*item);
    select(*item, true);
}

void SheetTree::ToggleItem(TreeItem* item)
{
    if (!item)
        return;
    if (!item->m_isSelected)
        return SelectItem(item);
    select(*item, false);
    tellSelection();
}

void SheetTree::ClearSelection()
{
    const Batch batch(*this);
    for (TreeItem* item : GetSelectedItems())
        select(*item, false);
}

void SheetTree::SelectRange(TreeItem* a, TreeItem* b)
{
    if (!a || !b)
        return;
    const Batch batch(*this);
    TreeItem* first = isBefore(b, a) ? b : a;
    TreeItem* last = first == a ? b : a;
    ClearSelection();
    for (TreeItem* item = first; item; item = nextVisible(item)) {
        SelectItem(item);
        if (item == last)
            return;
    }
}

void SheetTree::selectOnly(TreeItem* item)
{
    const Batch batch(*this);
    ClearSelection();
    setCaret(item);
    SelectItem(item);
}

std::vector<TreeItem*> SheetTree::GetSelectedItems() const
{
    std::vector<TreeItem*> items;
    if (m_root && m_selectedCount > 0)
        walk(*m_root, [&](TreeItem& item) {
            if (item.m_isSelected)
                items.push_back(&item);
            return std::ssize(items) < m_selectedCount;
        });
    return items;
}

std::set<TvString> SheetTree::GetSelectedHandles() const
{
    std::set<TvString> handles;
    for (const TreeItem* item : GetSelectedItems())
        handles.insert(item->handle());
    return handles;
}

bool SheetTree::SelectionHasSheet() const
{
    for (const TreeItem* item : GetSelectedItems())
        if (hasSheet(*item))
            return true;
    return false;
}

void SheetTree::RestoreSelection(const std::set<TvString>& handles)
{
    const Batch batch(*this);
    for (TreeItem* item : GetSelectedItems())
        if (!handles.contains(item->handle()))
            select(*item, false);
    if (handles.empty())
        return;
    if (TreeItem* first = itemOf(*handles.begin())) {
        setCaret(first);
        m_anchorItem = first;
    }
    for (const TvString& handle : handles)
        if (TreeItem* item = itemOf(handle))
            select(*item, true);
}

} // namespace panel
