#pragma once

#include <QBasicTimer>
#include <QTreeView>

#include <panel/tree_drag.h>
#include <panel/tree_filter.h>
#include <panel/tree_keys.h>
#include <panel/tree_mouse.h>
#include <panel_windows/sheet_tree_model.h>
#include <panel_windows/tree_tips.h>

/// The tree of a sheet set. Which items are selected, and what may be dropped where, is the matter
/// of the rules; this shows it, and tells them where the mouse is.
///
/// The keyboard does what it does in every tree; Shift with the arrows selects a range.
class CDragTreeCtrl : public QTreeView
{
public:
    /// @param tree  not owned; outlives the window.
    CDragTreeCtrl(panel::SheetTree& tree, QWidget* parent);
    ~CDragTreeCtrl() override;

    /// What the page is told; an empty function: nobody.
    struct Events {
        std::function<void()> pressed; ///< the left button went down on an item
        std::function<void()> clicked; ///< and came up
        /// @param item  null: beside the items. @param at  of the desktop.
        std::function<void(panel::TreeItem* item, Qt::KeyboardModifiers keys, const QPoint& at)>
            menuWanted;
        /// @return whether that was all.
        std::function<bool(panel::TreeItem* item, bool withCtrl)> doubleClicked;
        /// Enter, F2 or Delete on the item with the caret. @return whether it meant something.
        std::function<bool(int key)> key;
        /// Alt and an arrow: the selected items are to be moved.
        std::function<void(panel::MoveKey key)> moveWanted;
    };
    Events events;

    panel::SheetTree& tree() { return m_tree; }
    const panel::SheetTreeModel& items() const { return m_model; }
    /// The item at the top; null when there is none.
    panel::TreeItem* firstVisible() const;
    void scrollToTop(const panel::TreeItem* item);
    void ensureVisible(const panel::TreeItem* item);
    /// The row's rectangle from its icon on, in the viewport; empty when it is not shown.
    QRect rectOf(const panel::TreeItem* item) const { return visualRect(m_model.indexOf(item)); }
    /// The row under a point of the viewport; null: none.
    panel::TreeItem* itemUnder(const QPoint& at) const;
    bool isDragging() const { return m_drag.isDragging(); }
    /// Shows what was found alone, with what it stands in; what is open and selected in the tree
    /// stays as it is, and is shown again with an empty text.
    void SetFilter(const TvString& text);
    bool isFiltering() const { return !m_filter.isEmpty(); }
    /// How many items were found.
    int matches() const { return m_matches; }
    /// Tips with details show when the mouse rests on an item; a tree that was given none has none.
    void MakeTips(std::unique_ptr<CTarvSheetSetToolTipCtrl> tip);
    /// Null when there are none.
    panel::TreeTips* tips() { return m_tips.get(); }

protected:
    panel::SheetTreeModel& shownItems() { return m_model; }
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void drawBranches(QPainter* painter, const QRect& rect,
                      const QModelIndex& index) const override;
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    panel::TreeItem* expandButtonUnder(const QPoint& at) const;
    void connectModel();
    void applyExpansion(const panel::TreeItem& item);
    void toggle(panel::TreeItem& item);
    void applyFilter();
    void hideUnfound(const panel::TreeItem& item, const panel::FilteredTree& found);
    void showAll(const panel::TreeItem& item);
    void refilterSoon();
    void selectShownRange(panel::TreeItem* from, panel::TreeItem* to);
    bool moveByArrow(int key);
    void showSelection();
    void beginDrag(const QPoint& at);
    void track(const QPoint& at);
    void endDrag();
    void paintDrag(QPainter& painter) const;

    panel::SheetTree& m_tree;
    panel::SheetTreeModel m_model;
    panel::TreeMouse m_mouse;
    panel::TreeDrag m_drag;
    panel::DragFeedback m_feedback;
    QPoint m_downPoint, m_dragPoint;
    QPixmap m_dragImage;
    QBasicTimer m_expandTimer, m_scrollTimer, m_filterTimer;
    TvString m_filter; // empty: everything is shown
    int m_matches = 0;
    bool m_isViewAlone = false; // what the view opens and closes now is not the tree's matter
    std::unique_ptr<panel::TreeTips> m_tips;
};
