#pragma once

#include <functional>
#include <set>
#include <vector>

#include <panel/sheet_tree.h>
#include <sm/change_scope.h>

namespace panel {

/// The place that a drop would have.
struct DropPlace {
    enum class Where { First, After, Last };

    TreeItem* parent = nullptr; ///< null: no drop
    Where where = Where::Last;
    TreeItem* after = nullptr; ///< for After

    explicit operator bool() const { return parent != nullptr; }
};

/// What the pointer is on.
struct DragPoint {
    TreeItem* item = nullptr;             ///< the row under it; null: none
    bool isOnItem = false;                ///< on icon, label or state icon, not beside them
    bool isInLowestPart = false;          ///< in the lowest kLowestPart pixels of the row
    static constexpr int kLowestPart = 4; ///< pixels
};

/// What is to be shown while the pointer stands there.
struct DragFeedback {
    /// Numbers of the system's cursors.
    enum Cursor { kArrow = 32512, kNo = 32648 };

    Cursor cursor = kNo;
    TreeItem* markAfter = nullptr; ///< a line below this item
    TreeItem* highlight = nullptr; ///< this item as the target
    /// The item under the pointer is closed: it opens when the pointer stays.
    bool opensAfterDelay = false;
};

/// Moving the selected items of the sheet list by mouse. One change of the set: it is locked when
/// the drag begins, and the drop commits it or takes it back.
class TreeDrag
{
public:
    static constexpr int kExpandTimer = 1, kExpandMs = 600;
    static constexpr int kScrollTimer = 2, kScrollMs = 40;

    explicit TreeDrag(SheetTree& tree) : m_tree(tree) {}

    /// Locks the set and takes the selected items up.
    /// @param database     the current one; null, a locked one and an empty selection refuse.
    /// @param canShowItem  makes the image of the first item; what answers false refuses.
    /// @return false: nothing is locked, and nothing is to be shown.
    bool begin(TvSmDatabase* database,
               const std::function<bool(const TreeItem&)>& canShowItem = {});
    bool isDragging() const { return static_cast<bool>(m_scope); }

    /// The pointer moved, or the tree below it.
    DragFeedback track(const DragPoint& point);
    /// Whether what is dragged may become children of @p target: no two of it, and none of it and
    /// of what stays there, may have one label (sheets among sheets, in any case), and nothing
    /// goes below itself.
    bool CanDropInto(const TreeItem* target) const;
    const DropPlace& place() const { return m_place; }
    /// Takes a place that nobody points at. False, and no place, where it is refused.
    bool aim(const DropPlace& place);

    /// Puts the items where track() found a place, in their order, and keeps the change; without a
    /// place it is taken back. Items of objects that are gone stay.
    /// @return whether the set changed; the tree has been merged then by whoever hears of commits.
    bool drop();

    /// Lines to scroll at the @p ticks-th tick since the last one, the pointer being at @p y in a
    /// tree from @p top to @p bottom, in pixels: -1 is up, 1 is down, 0 none yet.
    static int scrollLines(int y, int top, int bottom, int ticks);
    /// One tick of the scroll timer; the same, counting for itself.
    int scrollTick(int y, int top, int bottom);

private:
    DropPlace placeAt(const DragPoint& point) const;
    void setPlace(const DropPlace& place);
    bool dropOne(TreeItem& item);
    TvSmComponent* objectAt(TreeItem* item) const;
    void end();

    SheetTree& m_tree;
    sm::ChangeScope m_scope{nullptr};
    std::vector<TvString> m_dragItems;    // handles, in the order of the tree
    std::set<TvString> m_dragSheetNames;  // lower-case labels
    std::set<TvString> m_dragSubsetNames; // the same, of all that are no sheets
    DropPlace m_place;                    // its items are looked for again at the drop
    TvString m_parentHandle, m_afterHandle;
    int m_scrollTicks = 0;
};

} // namespace panel
