#include "panel/sheet_tree.h"

#include <core/sheet_tip.h>
#include <sm/tv_sm_database.h>

namespace panel {

namespace {

using core::SheetImage;

TreeListener g_nobody;

std::uint64_t keyOf(const TvSmObjectId& id)
{
    return sm::handleNumber(id.getHandle().view());
}

SheetImage plainImage(std::uint32_t kind)
{
    switch (kind) {
    case TreeItemData::kSubset: return SheetImage::ImageSubset;
    case TreeItemData::kSheet: return SheetImage::ImageSheet;
    default: return SheetImage::ImageSet;
    }
}

template <class Visit>
void forEachBelow(const TreeItem& item, Visit&& visit)
{
    for (const std::unique_ptr<TreeItem>& child : item.children()) {
        visit(*child);
        forEachBelow(*child, visit);
    }
}

} // namespace

// TreeItem

TreeItem::TreeItem(std::uint32_t kind, TvSmObjectId id, TreeItem* parent)
    : m_kind(kind), m_image(plainImage(kind)), m_id(id), m_parent(parent)
{
}

int TreeItem::row() const
{
    if (!m_parent)
        return 0;
    const auto& siblings = m_parent->m_children;
    const auto at = static_cast<std::size_t>(m_row);
    if (at >= siblings.size() || siblings[at].get() != this)
        for (std::size_t i = 0; i < siblings.size(); ++i) // once after a change among them
            siblings[i]->m_row = static_cast<int>(i);
    return m_row;
}

TreeItem* TreeItem::nextSibling() const
{
    const auto next = static_cast<std::size_t>(row()) + 1;
    return m_parent && next < m_parent->m_children.size() ? m_parent->m_children[next].get()
                                                          : nullptr;
}

TreeItem* TreeItem::previousSibling() const
{
    const int at = row();
    return m_parent && at > 0 ? m_parent->m_children[static_cast<std::size_t>(at) - 1].get()
                              : nullptr;
}

bool TreeItem::isAbove(const TreeItem& other) const
{
    for (const TreeItem* at = other.m_parent; at; at = at->m_parent)
        if (at == this)
            return true;
    return false;
}

// Items

SheetTree::SheetTree() : m_listener(&g_nobody) {}
SheetTree::~SheetTree() = default;

void SheetTree::setListener(TreeListener* listener)
{
    m_listener = listener ? listener : &g_nobody;
}

TreeItem* SheetTree::itemOf(const TvString& handle) const
{
    const auto found = m_itemByHandle.find(sm::handleNumber(handle.view()));
    return found == m_itemByHandle.end() ? nullptr : found->second;
}

std::unique_ptr<TreeItem> SheetTree::made(std::uint32_t kind, const TvSmComponent* object,
                                          TreeItem* parent) const
{
    if (!object || object->objectId().isNull())
        return nullptr;
    std::unique_ptr<TreeItem> item(new TreeItem(kind, object->objectId(), parent));
    if (m_useExpandState && kind != TreeItemData::kSheet)
        if (const auto state = m_expandState.find(item->handle()); state != m_expandState.end())
            item->m_isExpanded = state->second;
    return item;
}

void SheetTree::enter(TreeItem& item)
{
    m_itemByHandle[keyOf(item.m_id)] = &item;
    m_selectedCount += item.m_isSelected;
    for (const std::unique_ptr<TreeItem>& child : item.m_children)
        enter(*child);
}

void SheetTree::leave(TreeItem& item)
{
    const auto entry = m_itemByHandle.find(keyOf(item.m_id));
    if (entry != m_itemByHandle.end() && entry->second == &item)
        m_itemByHandle.erase(entry);
    if (item.m_isSelected) {
        --m_selectedCount;
        m_hasSelectionChanged = true;
    }
    if (m_caret == &item) {
        m_caret = nullptr;
        m_hasSelectionChanged = true;
    }
    if (m_anchorItem == &item)
        m_anchorItem = nullptr;
    for (const std::unique_ptr<TreeItem>& child : item.m_children)
        leave(*child);
}

TreeItem* SheetTree::insert(std::unique_ptr<TreeItem> item, TreeItem* parent, std::size_t row)
{
    TreeItem* inserted = item.get();
    m_listener->aboutToInsert(*parent, static_cast<int>(row), static_cast<int>(row));
    inserted->m_parent = parent;
    inserted->m_row = static_cast<int>(row);
    parent->m_children.insert(parent->m_children.begin() + static_cast<std::ptrdiff_t>(row),
                              std::move(item));
    enter(*inserted);
    m_listener->wasInserted();
    return inserted;
}

TreeItem* SheetTree::InsertSheetSetItem(const TvSmSheetSet* set)
{
    std::unique_ptr<TreeItem> item = made(TreeItemData::kSheetSet, set, nullptr);
    if (!item)
        return nullptr;
    ClearTree();
    m_listener->aboutToReset();
    m_root = std::move(item);
    enter(*m_root);
    m_listener->wasReset();
    return m_root.get();
}

TreeItem* SheetTree::InsertSubsetItem(const TvSmSubset* subset, TreeItem* parent)
{
    std::unique_ptr<TreeItem> item = parent ? made(TreeItemData::kSubset, subset, parent) : nullptr;
    return item ? insert(std::move(item), parent, parent->m_children.size()) : nullptr;
}

TreeItem* SheetTree::InsertSheetItem(const TvSmSheet* sheet, TreeItem* parent,
                                     TreeItem* insertAfter)
{
    std::unique_ptr<TreeItem> item = parent ? made(TreeItemData::kSheet, sheet, parent) : nullptr;
    if (!item)
        return nullptr;
    const std::size_t row = insertAfter && insertAfter->m_parent == parent
                                ? static_cast<std::size_t>(insertAfter->row()) + 1
                                : parent->m_children.size();
    return insert(std::move(item), parent, row);
}

void SheetTree::fill(TreeItem& parent, const TvSmSubset& subset)
{
    for (const TvSmComponent* child : sm::each(subset.getSheetEnumerator())) {
        const auto* below =
            child->isA() == TvSmSheet::desc() ? nullptr : tvrxCast<TvSmSubset>(child);
        std::unique_ptr<TreeItem> item =
            made(below ? TreeItemData::kSubset : TreeItemData::kSheet, child, &parent);
        if (!item)
            continue;
        item->m_row = static_cast<int>(parent.m_children.size());
        if (below)
            fill(*item, *below);
        parent.m_children.push_back(std::move(item));
    }
}

void SheetTree::AddChildrenToTree(TreeItem* parent, const TvSmSubset* subset)
{
    if (!parent || !subset)
        return;
    // Made apart, and told at once.
    TreeItem apart(parent->m_kind, parent->m_id, nullptr);
    fill(apart, *subset);
    if (!apart.hasChildren())
        return;
    const int first = static_cast<int>(parent->m_children.size());
    const int last = first + static_cast<int>(apart.m_children.size()) - 1;
    m_listener->aboutToInsert(*parent, first, last);
    std::size_t count = m_itemByHandle.size();
    forEachBelow(apart, [&count](const TreeItem&) { ++count; });
    m_itemByHandle.reserve(count);
    for (std::unique_ptr<TreeItem>& child : apart.m_children) {
        child->m_parent = parent;
        enter(*child);
        parent->m_children.push_back(std::move(child));
    }
    m_listener->wasInserted();
}

void SheetTree::RemoveItem(TreeItem* item)
{
    if (!item || item->hasChildren())
        return;
    if (item == m_root.get())
        return ClearTree();
    const Batch batch(*this);
    TreeItem& parent = *item->m_parent;
    const int row = item->row();
    m_listener->aboutToRemove(parent, row, row);
    leave(*item);
    parent.m_children.erase(parent.m_children.begin() + row);
    m_listener->wasRemoved();
}

void SheetTree::ClearTree()
{
    if (!m_root)
        return;
    m_listener->aboutToReset();
    m_root.reset();
    m_itemByHandle.clear();
    m_caret = m_anchorItem = nullptr;
    m_selectedCount = 0;
    m_listener->wasReset();
}

void SheetTree::MoveItem(TreeItem* item, TreeItem* parent, TreeItem* after)
{
    if (!item || !parent || !item->m_parent || item == parent || item->isAbove(*parent) ||
        after == item)
        return;
    const Batch batch(*this);
    TreeItem *const caret = m_caret, *const anchor = m_anchorItem;
    select(*item, false);
    TreeItem& former = *item->m_parent;
    const int row = item->row();
    m_listener->aboutToRemove(former, row, row);
    leave(*item);
    std::unique_ptr<TreeItem> moved = std::move(former.m_children[static_cast<std::size_t>(row)]);
    former.m_children.erase(former.m_children.begin() + row);
    m_listener->wasRemoved();
    const std::size_t place =
        after && after->m_parent == parent ? static_cast<std::size_t>(after->row()) + 1 : 0;
    insert(std::move(moved), parent, place);
    m_caret = caret;
    m_anchorItem = anchor;
}

std::uint32_t SheetTree::GetItemKind(const TreeItem* item) const
{
    return item ? item->m_kind : static_cast<std::uint32_t>(TreeItemData::kSheetSet);
}

TvString SheetTree::GetItemHandle(const TreeItem* item) const
{
    return item ? item->handle() : TvString();
}

TvSmComponent* SheetTree::GetComponent(const TreeItem* item) const
{
    return item && m_database ? tvrxCast<TvSmComponent>(m_database->findObject(item->handle()))
                              : nullptr;
}

TvString SheetTree::currentLabel(const TreeItem& item) const
{
    const TvSmComponent* object = GetComponent(&item);
    if (!object)
        return item.m_label;
    const auto* sheet = tvrxCast<TvSmSheet>(object);
    return sheet ? core::sheetLabel(*sheet) : object->getName();
}

const TvString& SheetTree::labelOf(TreeItem& item) const
{
    if (!item.m_hasLabel) {
        item.m_label = currentLabel(item);
        item.m_hasLabel = true;
    }
    return item.m_label;
}

void SheetTree::UpdateSheetLabel(TreeItem* item)
{
    if (!item || !item->m_hasLabel)
        return;
    if (TvString label = currentLabel(*item); label != item->m_label) {
        item->m_label = std::move(label);
        m_listener->itemChanged(*item);
    }
}

// Images

void SheetTree::setImage(const TvString& handle, core::SheetImage image)
{
    TreeItem* item = itemOf(handle);
    if (!item || item->m_image == image)
        return;
    item->m_image = image;
    m_listener->itemChanged(*item);
}

void SheetTree::ResetStatusImages()
{
    if (!m_root)
        return;
    forEachBelow(*m_root, [this](TreeItem& item) {
        if (item.m_image == plainImage(item.m_kind))
            return;
        item.m_image = plainImage(item.m_kind);
        m_listener->itemChanged(item);
    });
}

// Expansion

void SheetTree::setExpanded(TreeItem* item, bool expanded)
{
    if (!item || item->m_isExpanded == expanded || item->m_kind == TreeItemData::kSheet)
        return;
    item->m_isExpanded = expanded;
    m_listener->expansionChanged(*item);
}

void SheetTree::ExpandAll(bool expanded)
{
    if (m_root)
        forEachBelow(*m_root, [&](TreeItem& item) { setExpanded(&item, expanded); });
}

SheetTree::ExpandState SheetTree::GetExpandSnapshot() const
{
    ExpandState state;
    if (!m_root)
        return state;
    state[m_root->handle()] = m_root->m_isExpanded;
    forEachBelow(*m_root, [&](const TreeItem& item) {
        if (item.m_kind != TreeItemData::kSheet)
            state[item.handle()] = item.m_isExpanded;
    });
    return state;
}

bool SheetTree::isVisible(const TreeItem& item)
{
    for (const TreeItem* at = item.m_parent; at; at = at->m_parent)
        if (!at->m_isExpanded)
            return false;
    return true;
}

TreeItem* SheetTree::nextVisible(const TreeItem* item)
{
    if (!item)
        return nullptr;
    if (item->m_isExpanded && item->hasChildren())
        return item->firstChild();
    for (; item; item = item->m_parent)
        if (TreeItem* next = item->nextSibling())
            return next;
    return nullptr;
}

} // namespace panel
