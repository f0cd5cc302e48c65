#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <unordered_map>
#include <vector>

#include <base/tv_string.h>
#include <core/status_pass.h>
#include <sm/tv_sm_object_id.h>

class TvSmComponent;
class TvSmDatabase;
class TvSmSheet;
class TvSmSheetSet;
class TvSmSubset;

/// What stands behind an item: which kind of object, and its handle; never the object itself.
struct TreeItemData {
    enum : std::uint32_t { kSheetSet = 0, kSubset = 1, kSheet = 2 };
    std::uint32_t kind = kSheetSet;
    TvString handle;
};

namespace panel {

class SheetTree;

/// One line of the sheet list. Made, changed and owned by its tree.
class TreeItem
{
public:
    TreeItem* parent() const { return m_parent; } ///< null for the root
    const std::vector<std::unique_ptr<TreeItem>>& children() const { return m_children; }
    bool hasChildren() const { return !m_children.empty(); }
    TreeItem* firstChild() const { return hasChildren() ? m_children.front().get() : nullptr; }
    /// Its place among its siblings, from 0.
    int row() const;
    TreeItem* nextSibling() const;
    TreeItem* previousSibling() const;
    std::uint32_t kind() const { return m_kind; }
    TvString handle() const { return m_id.getHandle(); }
    core::SheetImage image() const { return m_image; }
    bool isExpanded() const { return m_isExpanded; }
    bool isSelected() const { return m_isSelected; }
    /// An ancestor of @p other; not of itself.
    bool isAbove(const TreeItem& other) const;

private:
    friend class SheetTree;
    friend class TreeMerge;
    TreeItem(std::uint32_t kind, TvSmObjectId id, TreeItem* parent);

    std::uint32_t m_kind;
    core::SheetImage m_image;
    bool m_isExpanded = false;
    bool m_isSelected = false;
    bool m_hasLabel = false;
    TvSmObjectId m_id;
    TreeItem* m_parent;
    mutable int m_row = 0; // as far as it is right: see row()
    TvString m_label;      // made when it is first shown
    std::vector<std::unique_ptr<TreeItem>> m_children;
};

/// Whoever shows a tree is told what changes, before and after.
class TreeListener
{
public:
    virtual ~TreeListener() = default;
    virtual void aboutToReset() {}
    virtual void wasReset() {}
    /// @param first, last  rows below @p parent, both included.
    virtual void aboutToInsert(const TreeItem& /*parent*/, int /*first*/, int /*last*/) {}
    virtual void wasInserted() {}
    virtual void aboutToRemove(const TreeItem& /*parent*/, int /*first*/, int /*last*/) {}
    virtual void wasRemoved() {}
    /// Its label or image.
    virtual void itemChanged(const TreeItem& /*item*/) {}
    virtual void expansionChanged(const TreeItem& /*item*/) {}
    /// What is selected, or which item has the caret; once for a change of many.
    virtual void selectionChanged() {}
};

/// The sheet list: a sheet set's subsets and sheets in their order, which of them are open, and
/// which are selected.
///
/// Nothing of the model is kept but kinds and handles: objects are found anew each time, so that no
/// reload can leave a stale pointer here. Items themselves are good until they are removed, and a
/// reload keeps those whose objects are still there. Labels are made when they are shown.
///
/// Selected are several items, beside the one that has the caret. No selected item stands above or
/// below another one, and the root is selected alone.
class SheetTree
{
public:
    using ExpandState = std::map<TvString, bool>; ///< by handle

    SheetTree();
    ~SheetTree();
    SheetTree(const SheetTree&) = delete;
    SheetTree& operator=(const SheetTree&) = delete;

    /// The set that is shown; null: none. Items stay until ClearTree().
    void setDatabase(const TvSmDatabase* database) { m_database = database; }
    const TvSmDatabase* database() const { return m_database; }
    /// Not owned; null takes it away.
    void setListener(TreeListener* listener);

    // Items

    TreeItem* root() const { return m_root.get(); }
    /// Null for what is not in the tree. The empty text is none.
    TreeItem* itemOf(const TvString& handle) const;
    std::size_t count() const { return m_itemByHandle.size(); }

    /// Each answers null for a null object, or one without a handle. The set becomes the root.
    TreeItem* InsertSheetSetItem(const TvSmSheetSet* set);
    TreeItem* InsertSubsetItem(const TvSmSubset* subset, TreeItem* parent);
    /// @param insertAfter  null: at the end.
    TreeItem* InsertSheetItem(const TvSmSheet* sheet, TreeItem* parent,
                              TreeItem* insertAfter = nullptr);
    /// All below @p subset, in the order of its enumerator.
    void AddChildrenToTree(TreeItem* parent, const TvSmSubset* subset);
    /// Removes an item that has no children; the caret goes with it.
    void RemoveItem(TreeItem* item);
    void ClearTree();
    /// Puts an item with all below it elsewhere. Its images and open subsets stay, it is not
    /// selected any more.
    /// @param after  a child of @p parent; null: in front of the first.
    void MoveItem(TreeItem* item, TreeItem* parent, TreeItem* after);
    /// Makes the items those of the database's tree, and tells only what differs: items of objects
    /// that are still there stay, with image, expansion and selection, wherever they stand now.
    /// A new subset is open when it stands at the first level.
    /// @return whether rows came, went or moved.
    /// @note O(items), and nothing of the disk; texts are compared only for rows that were shown.
    bool Merge();

    std::uint32_t GetItemKind(const TreeItem* item) const;
    TvString GetItemHandle(const TreeItem* item) const;
    static TreeItemData dataOf(const TreeItem& item) { return {item.kind(), item.handle()}; }
    /// The object, looked for in the database; null when it is gone.
    TvSmComponent* GetComponent(const TreeItem* item) const;
    /// A sheet's number, " - " behind one, and title; the name of any other.
    const TvString& labelOf(TreeItem& item) const;
    /// The object's label changed.
    void UpdateSheetLabel(TreeItem* item);

    // Images

    /// Nothing when it is gone or has that image.
    void setImage(const TvString& handle, core::SheetImage image);
    /// Of subsets and sheets without a status.
    void ResetStatusImages();

    // Expansion

    void setExpanded(TreeItem* item, bool expanded);
    /// Every item below the root; the root stays.
    void ExpandAll(bool expanded);
    /// Of every item that is no sheet.
    ExpandState GetExpandSnapshot() const;
    /// What the next insertions of sets and subsets follow, while it is in use.
    void SetExpandState(ExpandState state) { m_expandState = std::move(state); }
    void SetUseExpandState(bool use) { m_useExpandState = use; }

    // Selection

    TreeItem* caret() const { return m_caret; }
    void setCaret(TreeItem* item);
    TreeItem* anchor() const { return m_anchorItem; }
    void setAnchor(TreeItem* item) { m_anchorItem = item; }
    /// In the order of the tree, depth first.
    std::vector<TreeItem*> GetSelectedItems() const;
    std::set<TvString> GetSelectedHandles() const;
    int selectedCount() const { return m_selectedCount; }
    /// Adds it; what stands above it, and for a subset what stands below it, is given up. The root
    /// gives all others up.
    void SelectItem(TreeItem* item);
    void ToggleItem(TreeItem* item);
    void ClearSelection();
    /// Only the visible items from one to the other, whichever comes first.
    void SelectRange(TreeItem* a, TreeItem* b);
    /// Caret and selection on this one alone.
    void selectOnly(TreeItem* item);
    /// A selected sheet, or one below a selected item.
    bool SelectionHasSheet() const;
    /// Caret and anchor go to the first of @p handles, all of them are selected. What is gone
    /// selects nothing.
    void RestoreSelection(const std::set<TvString>& handles);

    /// Whether all above it are open.
    static bool isVisible(const TreeItem& item);
    /// The next line that is shown below it; null at the end.
    static TreeItem* nextVisible(const TreeItem* item);

    /// One telling of the selection for all that happens while it lives.
    class Batch;

private:
    friend class TreeMerge;
    TreeItem* insert(std::unique_ptr<TreeItem> item, TreeItem* parent, std::size_t row);
    std::unique_ptr<TreeItem> made(std::uint32_t kind, const TvSmComponent* object,
                                   TreeItem* parent) const;
    void fill(TreeItem& parent, const TvSmSubset& subset);
    void enter(TreeItem& item);
    void leave(TreeItem& item);
    void select(TreeItem& item, bool selected);
    void unselectBelow(TreeItem& item);
    void tellSelection();
    TvString currentLabel(const TreeItem& item) const;

    const TvSmDatabase* m_database = nullptr; // not owned; whoever shows it knows when it closes
    TreeListener* m_listener;                 // not owned; never null
    std::unique_ptr<TreeItem> m_root;
    std::unordered_map<std::uint64_t, TreeItem*> m_itemByHandle;
    ExpandState m_expandState;
    bool m_useExpandState = false;
    TreeItem* m_caret = nullptr;
    TreeItem* m_anchorItem = nullptr;
    int m_selectedCount = 0;
    int m_batches = 0;
    bool m_hasSelectionChanged = false;
};

class SheetTree::Batch
{
public:
    explicit Batch(SheetTree& tree) : m_tree(tree) { ++m_tree.m_batches; }
    ~Batch()
    {
        if (--m_tree.m_batches == 0)
            m_tree.tellSelection();
    }
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;

private:
    SheetTree& m_tree;
};

} // namespace panel
