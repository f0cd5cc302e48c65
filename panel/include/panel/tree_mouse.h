#pragma once

#include <panel/sheet_tree.h>

namespace panel {

/// What the mouse buttons do to the selection. The window finds the item under the pointer; what
/// becomes of a press that moves on is a matter of the drag.
class TreeMouse
{
public:
    explicit TreeMouse(SheetTree& tree) : m_tree(tree) {}

    /// While nothing is selected a press brings the origin of ranges back, not the item under it.
    /// @param item  on whose icon, label or state icon it went down; null is nothing.
    void leftDown(TreeItem* item, bool withCtrl, bool withShift);
    /// A press on a selected item, which selected nothing yet so that several items could be
    /// dragged, selects it alone. @param rightHeld  the other button is down: it stays.
    void leftUp(bool rightHeld);
    /// A drag or drop used the press up.
    void forgetDeferredClick() { m_deferred.setEmpty(); }
    bool isDown() const { return m_isDown; }

    /// With Ctrl or Shift nothing changes.
    void rightDown(TreeItem* item, bool withCtrl, bool withShift);

private:
    SheetTree& m_tree;
    bool m_isDown = false;
    TvString m_deferred; // handle: a reload may come before the button is up
};

} // namespace panel
