// What the tree shows while the user looks for something, and the keys that move items.

#include <QScopedValueRollback>

#include "panel_windows/drag_tree_ctrl.h"

using panel::TreeItem;

/// Opens or closes an item; while something is looked for, in the view alone.
void CDragTreeCtrl::toggle(TreeItem& item)
{
    const QModelIndex index = m_model.indexOf(&item);
    if (isFiltering())
        setExpanded(index, !isExpanded(index));
    else
        m_tree.setExpanded(&item, !item.isExpanded());
}

void CDragTreeCtrl::SetFilter(const TvString& text)
{
    const bool wasFiltering = isFiltering();
    m_filter = text.trimmed();
    m_filterTimer.stop();
    if (isFiltering())
        return applyFilter();
    m_matches = 0;
    if (!wasFiltering || !m_tree.root())
        return;
    const QScopedValueRollback viewAlone(m_isViewAlone, true);
    showAll(*m_tree.root());
    showSelection();
}

void CDragTreeCtrl::applyFilter()
{
    if (!isFiltering() || !m_tree.root())
        return;
    const panel::FilteredTree found = panel::filterTree(m_tree, m_filter);
    m_matches = found.matches;
    scheduleDelayedItemsLayout();
    hideUnfound(*m_tree.root(), found);
    showSelection();
}

void CDragTreeCtrl::hideUnfound(const TreeItem& item, const panel::FilteredTree& found)
{
    const QModelIndex index = m_model.indexOf(&item);
    if (item.hasChildren())
        setExpanded(index, found.opened.contains(&item));
    for (const auto& child : item.children()) {
        const bool isShown = found.shown.contains(child.get());
        setRowHidden(child->row(), index, !isShown);
        if (isShown)
            hideUnfound(*child, found);
    }
}

void CDragTreeCtrl::showAll(const TreeItem& item)
{
    const QModelIndex index = m_model.indexOf(&item);
    if (item.hasChildren())
        setExpanded(index, item.isExpanded());
    for (const auto& child : item.children()) {
        setRowHidden(child->row(), index, false);
        showAll(*child);
    }
}

/// Labels and rows changed: many of them may, and one look is enough for all.
void CDragTreeCtrl::refilterSoon()
{
    if (isFiltering())
        m_filterTimer.start(0, this);
}

/// As the tree selects a range, but without what is hidden.
void CDragTreeCtrl::selectShownRange(TreeItem* from, TreeItem* to)
{
    if (!from || !to)
        return;
    const panel::SheetTree::Batch batch(m_tree);
    m_tree.ClearSelection();
    QModelIndex at = m_model.indexOf(from);
    const QModelIndex end = m_model.indexOf(to);
    const bool isUpward = visualRect(end).top() < visualRect(at).top();
    for (; at.isValid(); at = isUpward ? indexAbove(at) : indexBelow(at)) {
        m_tree.SelectItem(panel::SheetTreeModel::itemAt(at));
        if (at == end)
            break;
    }
}

bool CDragTreeCtrl::moveByArrow(int key)
{
    if (!events.moveWanted)
        return false;
    switch (key) {
    case Qt::Key_Up: events.moveWanted(panel::MoveKey::Up); return true;
    case Qt::Key_Down: events.moveWanted(panel::MoveKey::Down); return true;
    case Qt::Key_Left: events.moveWanted(panel::MoveKey::Out); return true;
    case Qt::Key_Right: events.moveWanted(panel::MoveKey::Into); return true;
    default: return false;
    }
}
