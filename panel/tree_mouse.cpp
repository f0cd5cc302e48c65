#include "panel/tree_mouse.h"

namespace panel {

void TreeMouse::leftDown(TreeItem* item, bool withCtrl, bool withShift)
{
    if (!item)
        return;
    m_isDown = true;
    m_deferred.setEmpty();
    const SheetTree::Batch batch(m_tree);
    if (withCtrl)
        return m_tree.ToggleItem(item);
    if (m_tree.selectedCount() == 0) {
        if (!m_tree.anchor())
            m_tree.setAnchor(item);
        return m_tree.selectOnly(m_tree.anchor());
    }
    if (withShift)
        return m_tree.SelectRange(m_tree.anchor(), item);
    m_tree.setAnchor(item);
    if (item->isSelected())
        m_deferred = item->handle();
    else
        m_tree.selectOnly(item);
}

void TreeMouse::leftUp(bool rightHeld)
{
    m_isDown = false;
    if (rightHeld)
        return;
    if (TreeItem* item = m_tree.itemOf(m_deferred))
        m_tree.selectOnly(item);
    m_deferred.setEmpty();
}

void TreeMouse::rightDown(TreeItem* item, bool withCtrl, bool withShift)
{
    if (!item || withCtrl || withShift)
        return;
    if (item->isSelected())
        m_tree.setCaret(item);
    else
        m_tree.selectOnly(item);
}

} // namespace panel
