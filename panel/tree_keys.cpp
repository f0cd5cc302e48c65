#include "panel/tree_keys.h"

#include <algorithm>

namespace panel {

namespace {

using Where = DropPlace::Where;

DropPlace behind(TreeItem* item)
{
    return {item->parent(), Where::After, item};
}

/// In front of @p item: behind what stands before it and stays.
DropPlace inFrontOf(TreeItem* item)
{
    TreeItem* before = item->previousSibling();
    while (before && before->isSelected())
        before = before->previousSibling();
    return before ? behind(before) : DropPlace{item->parent(), Where::First, nullptr};
}

TreeItem* staying(TreeItem* item, TreeItem* (TreeItem::*next)() const)
{
    do
        item = (item->*next)();
    while (item && item->isSelected());
    return item;
}

bool isOpen(const TreeItem& item)
{
    return item.isExpanded() && item.hasChildren();
}

/// Whether the parent of @p item has one, so that there is a place beside it.
bool canLeave(const TreeItem& item)
{
    return item.parent()->parent() != nullptr;
}

DropPlace placeAbove(TreeItem* first)
{
    TreeItem* before = staying(first, &TreeItem::previousSibling);
    if (!before)
        return canLeave(*first) ? inFrontOf(first->parent()) : DropPlace();
    return isOpen(*before) ? behind(before->children().back().get()) : inFrontOf(before);
}

DropPlace placeBelow(TreeItem* last)
{
    TreeItem* next = staying(last, &TreeItem::nextSibling);
    if (!next)
        return canLeave(*last) ? behind(last->parent()) : DropPlace();
    return isOpen(*next) ? DropPlace{next, Where::First, nullptr} : behind(next);
}

DropPlace placeInside(TreeItem* first)
{
    TreeItem* before = staying(first, &TreeItem::previousSibling);
    if (!before || before->kind() != TreeItemData::kSubset)
        return {};
    return {before, Where::Last, nullptr};
}

} // namespace

DropPlace placeForKey(const SheetTree& tree, MoveKey key)
{
    const std::vector<TreeItem*> selected = tree.GetSelectedItems();
    if (selected.empty() || !selected.front()->parent())
        return {};
    switch (key) {
    case MoveKey::Up: return placeAbove(selected.front());
    case MoveKey::Down: return placeBelow(selected.back());
    case MoveKey::Out:
        return canLeave(*selected.front()) ? behind(selected.front()->parent()) : DropPlace();
    case MoveKey::Into: return placeInside(selected.front());
    }
    return {};
}

bool moveByKey(SheetTree& tree, TvSmDatabase* database, MoveKey key)
{
    const DropPlace place = placeForKey(tree, key);
    TreeDrag drag(tree);
    if (!place || !drag.begin(database) || !drag.aim(place))
        return false; // the drag takes its lock back
    const std::set<TvString> selected = tree.GetSelectedHandles();
    const TvString caret = tree.GetItemHandle(tree.caret());
    const TvString parent = place.parent->handle();
    const bool isMoved = drag.drop();
    const SheetTree::Batch batch(tree);
    tree.ClearSelection();
    for (const TvString& handle : selected)
        if (TreeItem* item = tree.itemOf(handle))
            tree.SelectItem(item);
    tree.setCaret(tree.itemOf(caret));
    if (isMoved)
        tree.setExpanded(tree.itemOf(parent), true); // to be seen where they went
    return isMoved;
}

} // namespace panel
