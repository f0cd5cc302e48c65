#include "panel/tree_drag.h"

#include <core/watch_poller.h>
#include <sm/tv_sm_database.h>

namespace panel {

bool TreeDrag::begin(TvSmDatabase* database,
                     const std::function<bool(const TreeItem&)>& canShowItem)
{
    if (isDragging() || !database || database != m_tree.database())
        return false;
    sm::ChangeScope scope(core::answering(database));
    if (!scope)
        return false;
    const std::vector<TreeItem*> items = m_tree.GetSelectedItems();
    if (items.empty() || (canShowItem && !canShowItem(*items.front())))
        return false;
    for (TreeItem* item : items) {
        m_dragItems.push_back(item->handle());
        std::set<TvString>& names =
            item->kind() == TreeItemData::kSheet ? m_dragSheetNames : m_dragSubsetNames;
        names.insert(m_tree.labelOf(*item).toLower());
    }
    m_place = {};
    m_scope = std::move(scope);
    return true;
}

bool TreeDrag::CanDropInto(const TreeItem* target) const
{
    if (!target || m_dragSheetNames.size() + m_dragSubsetNames.size() != m_dragItems.size())
        return false;
    for (const TreeItem* at = target; at; at = at->parent())
        if (at->isSelected())
            return false;
    for (const std::unique_ptr<TreeItem>& child : target->children()) {
        if (child->isSelected())
            continue; // it moves itself
        const std::set<TvString>& names =
            child->kind() == TreeItemData::kSheet ? m_dragSheetNames : m_dragSubsetNames;
        if (!names.empty() && names.contains(m_tree.labelOf(*child).toLower()))
            return false;
    }
    return true;
}

DropPlace TreeDrag::placeAt(const DragPoint& point) const
{
    TreeItem* item = point.item;
    if (!item)
        return {};
    if (item->kind() != TreeItemData::kSheet) {
        const bool isOpen = item->isExpanded() && item->hasChildren();
        if (isOpen || !point.isInLowestPart) {
            const auto where = isOpen ? DropPlace::Where::First : DropPlace::Where::Last;
            return CanDropInto(item) ? DropPlace{item, where, nullptr} : DropPlace{};
        }
    }
    if (item->isSelected() || !CanDropInto(item->parent()))
        return {};
    return {item->parent(), DropPlace::Where::After, item};
}

DragFeedback TreeDrag::track(const DragPoint& point)
{
    setPlace(isDragging() ? placeAt(point) : DropPlace());
    DragFeedback feedback;
    if (!m_place)
        return feedback;
    feedback.cursor = DragFeedback::kArrow;
    const bool isIntoClosed = m_place.where == DropPlace::Where::Last;
    feedback.opensAfterDelay = isIntoClosed;
    if (point.isOnItem)
        (isIntoClosed ? feedback.highlight : feedback.markAfter) = point.item;
    return feedback;
}

void TreeDrag::setPlace(const DropPlace& place)
{
    m_place = place;
    m_parentHandle = m_tree.GetItemHandle(m_place.parent);
    m_afterHandle = m_tree.GetItemHandle(m_place.after);
}

bool TreeDrag::aim(const DropPlace& place)
{
    setPlace(isDragging() && CanDropInto(place.parent) ? place : DropPlace());
    return static_cast<bool>(m_place);
}

TvSmComponent* TreeDrag::objectAt(TreeItem* item) const
{
    return m_tree.GetComponent(item);
}

bool TreeDrag::dropOne(TreeItem& item)
{
    auto* oldOwner = tvrxCast<TvSmSubset>(objectAt(item.parent()));
    auto* newOwner = tvrxCast<TvSmSubset>(objectAt(m_place.parent));
    TvSmComponent* component = objectAt(&item);
    if (!oldOwner || !newOwner || !component)
        return false;
    // Inserting takes it out of its old owner: one that is refused stays there.
    bool isPut = false;
    TreeItem* after = nullptr; // null: in front of the first
    switch (m_place.where) {
    case DropPlace::Where::First:
        isPut = newOwner->insertComponent(component, objectAt(m_place.parent->firstChild()));
        break;
    case DropPlace::Where::After:
        after = m_place.after;
        isPut = newOwner->insertComponentAfter(component, objectAt(after));
        break;
    case DropPlace::Where::Last:
        if (m_place.parent->hasChildren())
            after = m_place.parent->children().back().get();
        isPut = newOwner->insertComponentAfter(component, nullptr);
        break;
    }
    if (!isPut)
        return false;
    component->setOwner(newOwner);
    const bool hadChildren = m_place.parent->hasChildren();
    m_tree.MoveItem(&item, m_place.parent, after);
    if (!hadChildren)
        m_tree.setExpanded(m_place.parent, true);
    return true;
}

bool TreeDrag::drop()
{
    if (!isDragging())
        return false;
    // A tree that was filled anew meanwhile has other items.
    m_place.parent = m_tree.itemOf(m_parentHandle);
    if (m_place.where == DropPlace::Where::After)
        m_place.after = m_tree.itemOf(m_afterHandle);
    const bool isPlaced = m_place.parent && m_tree.database() == m_scope.database() &&
                          (m_place.where != DropPlace::Where::After || m_place.after);
    sm::ChangeScope scope = std::exchange(m_scope, sm::ChangeScope(nullptr));
    if (!isPlaced) {
        end();
        return false;
    }
    {
        const SheetTree::Batch batch(m_tree);
        for (const TvString& handle : m_dragItems) {
            TreeItem* item = m_tree.itemOf(handle);
            if (item && dropOne(*item))
                m_place = {m_place.parent, DropPlace::Where::After, item};
        }
    }
    end();
    const bool isKept = scope.commit();
    if (!isKept)
        m_tree.Merge(); // the set is as before
    return isKept;
}

void TreeDrag::end()
{
    m_dragItems.clear();
    m_dragSheetNames.clear();
    m_dragSubsetNames.clear();
    m_place = {};
    m_parentHandle.setEmpty();
    m_afterHandle.setEmpty();
    m_scrollTicks = 0;
}

int TreeDrag::scrollLines(int y, int top, int bottom, int ticks)
{
    constexpr int kMargin = 10, kPixelsPerTick = 20, kLongestWait = 6;
    int beyond = 0, lines = 0;
    if (y > bottom - kMargin) {
        beyond = y - bottom + kMargin;
        lines = 1;
    } else if (y < top + kMargin) {
        beyond = top - y + kMargin;
        lines = -1;
    }
    const int wait = kLongestWait - beyond / kPixelsPerTick;
    return wait >= 2 && ticks < wait ? 0 : lines;
}

int TreeDrag::scrollTick(int y, int top, int bottom)
{
    ++m_scrollTicks;
    const int lines = isDragging() ? scrollLines(y, top, bottom, m_scrollTicks) : 0;
    if (lines != 0)
        m_scrollTicks = 0;
    return lines;
}

} // namespace panel
