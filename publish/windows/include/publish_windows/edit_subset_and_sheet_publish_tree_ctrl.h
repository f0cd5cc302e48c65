#pragma once

#include <panel_windows/drag_tree_ctrl.h>
#include <publish/publish_checks.h>

/// The sheet list with check boxes: what is marked is published. Nothing can be dragged, selecting
/// means nothing, and there are no tips.
class CEditSubsetAndSheetPublishTreeCtrl : public CDragTreeCtrl
{
public:
    /// @param tree  filled; outlives the window, as do @p checks.
    CEditSubsetAndSheetPublishTreeCtrl(panel::SheetTree& tree, publish::PublishChecks& checks,
                                       QWidget* parent);

protected:
    // What every tree does, and no more.
    void mousePressEvent(QMouseEvent* event) override { QTreeView::mousePressEvent(event); }
    void mouseMoveEvent(QMouseEvent* event) override { QTreeView::mouseMoveEvent(event); }
    void mouseReleaseEvent(QMouseEvent* event) override { QTreeView::mouseReleaseEvent(event); }
    void mouseDoubleClickEvent(QMouseEvent* event) override
    {
        QTreeView::mouseDoubleClickEvent(event);
    }
    void contextMenuEvent(QContextMenuEvent* event) override { QTreeView::contextMenuEvent(event); }
    void keyPressEvent(QKeyEvent* event) override { QTreeView::keyPressEvent(event); }
};
