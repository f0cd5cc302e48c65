#include "panel_windows/drag_tree_ctrl.h"

#include <QHeaderView>
#include <QItemSelection>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOption>

#include <core/session.h>
#include <ui/scroll_bar_ex.h>
#include <ui/theme.h>

#include "sheet_tree_delegate.h"

using panel::TreeItem;

namespace {

constexpr int kImagePx = 16, kArrowPx = 10;
constexpr double kDragOpacity = 0.7;

bool has(Qt::KeyboardModifiers keys, Qt::KeyboardModifier key)
{
    return keys.testFlag(key);
}

} // namespace

CDragTreeCtrl::CDragTreeCtrl(panel::SheetTree& tree, QWidget* parent)
    : QTreeView(parent), m_tree(tree), m_model(tree), m_mouse(tree), m_drag(tree)
{
    setVerticalScrollBar(new CScrollBarEx(Qt::Vertical, this)); // owned by the view, as all below
    setItemDelegate(new panel::SheetTreeDelegate(this));
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setIconSize(QSize(kImagePx, kImagePx));
    setIndentation(kImagePx);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setExpandsOnDoubleClick(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(NoFrame);
    setModel(&m_model);
    setAutoScroll(false); // it would open what the current item is hidden in
    connectModel();
}

void CDragTreeCtrl::connectModel()
{
    m_model.onChanged = [this] {
        viewport()->update();
        refilterSoon();
    };
    m_model.onExpansion = [this](const TreeItem& item) {
        scheduleDelayedItemsLayout(); // many items may follow
        if (!isFiltering())
            setExpanded(m_model.indexOf(&item), item.isExpanded());
    };
    m_model.onInserted = [this](const TreeItem& above, int first, int last) {
        scheduleDelayedItemsLayout();
        refilterSoon();
        if (above.isExpanded())
            setExpanded(m_model.indexOf(&above), true);
        for (int row = first; row <= last; ++row)
            applyExpansion(*above.children()[static_cast<std::size_t>(row)]);
    };
    m_model.onReset = [this] {
        scheduleDelayedItemsLayout();
        refilterSoon();
        if (m_tree.root())
            applyExpansion(*m_tree.root());
        showSelection();
    };
    m_model.onSelection = [this] { showSelection(); };
    connect(this, &QTreeView::expanded, this, [this](const QModelIndex& index) {
        if (!m_isViewAlone && !isFiltering())
            m_tree.setExpanded(panel::SheetTreeModel::itemAt(index), true);
    });
    connect(this, &QTreeView::collapsed, this, [this](const QModelIndex& index) {
        if (!m_isViewAlone && !isFiltering())
            m_tree.setExpanded(panel::SheetTreeModel::itemAt(index), false);
    });
}

CDragTreeCtrl::~CDragTreeCtrl()
{
    m_tips.reset(); // it watches the viewport
    setModel(nullptr);
}

void CDragTreeCtrl::MakeTips(std::unique_ptr<CTarvSheetSetToolTipCtrl> tip)
{
    m_tips = std::make_unique<panel::TreeTips>(*this, std::move(tip));
}

void CDragTreeCtrl::applyExpansion(const TreeItem& item)
{
    if (!item.hasChildren())
        return;
    if (item.isExpanded())
        setExpanded(m_model.indexOf(&item), true);
    for (const auto& child : item.children())
        applyExpansion(*child);
}

/// Neighbours become one range: thousands of sheets are selected as quickly as one.
void CDragTreeCtrl::showSelection()
{
    QItemSelection shown;
    const std::vector<TreeItem*> selected = m_tree.GetSelectedItems();
    for (std::size_t i = 0; i < selected.size();) {
        std::size_t end = i + 1;
        while (end < selected.size() && selected[end]->parent() == selected[i]->parent() &&
               selected[end]->row() == selected[end - 1]->row() + 1)
            ++end;
        shown.append(
            QItemSelectionRange(m_model.indexOf(selected[i]), m_model.indexOf(selected[end - 1])));
        i = end;
    }
    const QModelIndex caret = m_model.indexOf(m_tree.caret());
    const bool hasMoved = caret != currentIndex();
    selectionModel()->setCurrentIndex(caret, QItemSelectionModel::NoUpdate);
    selectionModel()->select(shown, QItemSelectionModel::ClearAndSelect);
    // Not while a set is loaded: the page puts the view back then.
    if (hasMoved && updatesEnabled() && m_tree.caret() &&
        panel::SheetTree::isVisible(*m_tree.caret()))
        scrollTo(caret, EnsureVisible);
}

TreeItem* CDragTreeCtrl::firstVisible() const
{
    return itemUnder(QPoint(0, 0));
}

void CDragTreeCtrl::scrollToTop(const TreeItem* item)
{
    scrollTo(m_model.indexOf(item), PositionAtTop);
}

void CDragTreeCtrl::ensureVisible(const TreeItem* item)
{
    scrollTo(m_model.indexOf(item), EnsureVisible);
}

TreeItem* CDragTreeCtrl::itemUnder(const QPoint& at) const
{
    return panel::SheetTreeModel::itemAt(indexAt(at));
}

/// The item whose arrow stands there; null: none.
TreeItem* CDragTreeCtrl::expandButtonUnder(const QPoint& at) const
{
    TreeItem* item = itemUnder(at);
    const int left = rectOf(item).left();
    return item && item->hasChildren() && at.x() < left && at.x() >= left - indentation() ? item
                                                                                          : nullptr;
}

void CDragTreeCtrl::mousePressEvent(QMouseEvent* event)
{
    const QPoint at = event->position().toPoint();
    if (TreeItem* opened = event->button() == Qt::LeftButton ? expandButtonUnder(at) : nullptr)
        return toggle(*opened);
    TreeItem* item = itemUnder(at);
    if (!item || at.x() < rectOf(item).left())
        return;
    const bool withCtrl = has(event->modifiers(), Qt::ControlModifier);
    const bool withShift = has(event->modifiers(), Qt::ShiftModifier);
    if (event->button() == Qt::RightButton)
        return m_mouse.rightDown(item, withCtrl, withShift);
    if (event->button() != Qt::LeftButton)
        return;
    m_downPoint = at;
    if (isFiltering() && withShift && !withCtrl && m_tree.selectedCount() > 0)
        selectShownRange(m_tree.anchor(), item);
    else
        m_mouse.leftDown(item, withCtrl, withShift);
    if (events.pressed)
        events.pressed();
}

void CDragTreeCtrl::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint at = event->position().toPoint();
    if (m_drag.isDragging())
        return track(at);
    if (!event->buttons().testFlag(Qt::LeftButton))
        QTreeView::mouseMoveEvent(event);
    else if (m_mouse.isDown() && at != m_downPoint)
        beginDrag(at);
}

void CDragTreeCtrl::beginDrag(const QPoint& at)
{
    const auto take = [this](const TreeItem& item) {
        const QRect row = rectOf(&item);
        m_dragImage = row.isEmpty() ? QPixmap() : viewport()->grab(row);
        return true;
    };
    if (!m_drag.begin(GetCurrentDatabase(), take))
        return;
    m_scrollTimer.start(panel::TreeDrag::kScrollMs, this);
    track(at);
}

void CDragTreeCtrl::track(const QPoint& at)
{
    m_expandTimer.stop();
    m_dragPoint = at;
    panel::DragPoint point;
    point.item = viewport()->rect().contains(at) ? itemUnder(at) : nullptr;
    if (point.item) {
        const QRect row = rectOf(point.item);
        const int width =
            sizeHintForIndex(m_model.indexOf(point.item)).width(); // to the label's end
        point.isOnItem = at.x() >= row.left() && at.x() < row.left() + width;
        point.isInLowestPart = at.y() > row.bottom() - panel::DragPoint::kLowestPart;
    }
    m_feedback = m_drag.track(point);
    viewport()->setCursor(m_feedback.cursor == panel::DragFeedback::kNo ? Qt::ForbiddenCursor
                                                                        : Qt::ArrowCursor);
    if (m_feedback.opensAfterDelay)
        m_expandTimer.start(panel::TreeDrag::kExpandMs, this);
    viewport()->update();
}

void CDragTreeCtrl::endDrag()
{
    m_scrollTimer.stop();
    m_expandTimer.stop();
    m_feedback = {};
    m_dragImage = {};
    viewport()->unsetCursor();
    m_drag.drop();
    m_mouse.forgetDeferredClick();
    viewport()->update();
}

void CDragTreeCtrl::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == m_expandTimer.timerId()) {
        m_expandTimer.stop();
        if (TreeItem* item = itemUnder(m_dragPoint))
            isFiltering() ? setExpanded(m_model.indexOf(item), true)
                          : m_tree.setExpanded(item, true);
    } else if (event->timerId() == m_filterTimer.timerId()) {
        m_filterTimer.stop();
        applyFilter();
    } else if (event->timerId() == m_scrollTimer.timerId()) {
        const int lines = m_drag.scrollTick(m_dragPoint.y(), 0, viewport()->height());
        if (lines == 0)
            return;
        QScrollBar* bar = verticalScrollBar();
        bar->setValue(bar->value() + lines * bar->singleStep());
        track(m_dragPoint);
    } else {
        QTreeView::timerEvent(event);
    }
}

void CDragTreeCtrl::mouseReleaseEvent(QMouseEvent* event)
{
    const bool rightHeld = event->buttons().testFlag(Qt::RightButton);
    if (event->button() != Qt::LeftButton || !m_mouse.isDown())
        return;
    if (m_drag.isDragging())
        endDrag();
    m_mouse.leftUp(rightHeld);
    if (events.clicked)
        events.clicked();
}

void CDragTreeCtrl::mouseDoubleClickEvent(QMouseEvent* event)
{
    const QPoint at = event->position().toPoint();
    TreeItem* item = itemUnder(at);
    if (event->button() != Qt::LeftButton || !item)
        return;
    if (TreeItem* opened = expandButtonUnder(at))
        return toggle(*opened);
    const TvString handle = item->handle();
    if (events.doubleClicked &&
        events.doubleClicked(item, has(event->modifiers(), Qt::ControlModifier)))
        return;
    item = m_tree.itemOf(handle); // what a double click does may load the set anew
    if (item && item->hasChildren())
        toggle(*item);
}

void CDragTreeCtrl::contextMenuEvent(QContextMenuEvent* event)
{
    if (!events.menuWanted || m_drag.isDragging())
        return;
    if (event->reason() == QContextMenuEvent::Keyboard) {
        const QRect row = rectOf(m_tree.caret());
        return events.menuWanted(m_tree.caret(), {},
                                 viewport()->mapToGlobal(row.bottomLeft() + QPoint(kImagePx, 0)));
    }
    TreeItem* item = itemUnder(event->pos());
    if (item && event->pos().x() < rectOf(item).left())
        item = nullptr;
    events.menuWanted(item, event->modifiers(), event->globalPos());
}

void CDragTreeCtrl::keyPressEvent(QKeyEvent* event)
{
    if (m_drag.isDragging() || (event->modifiers() == Qt::AltModifier && moveByArrow(event->key())))
        return;
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F2:
    case Qt::Key_Delete:
        if (events.key && event->modifiers() == Qt::NoModifier && events.key(event->key()))
            return;
        break;
    default: break;
    }
    TreeItem* before = m_tree.caret();
    QTreeView::keyPressEvent(event);
    TreeItem* now = panel::SheetTreeModel::itemAt(currentIndex());
    if (now && now != before) {
        if (has(event->modifiers(), Qt::ShiftModifier) && m_tree.anchor()) {
            const panel::SheetTree::Batch batch(m_tree);
            if (isFiltering())
                selectShownRange(m_tree.anchor(), now);
            else
                m_tree.SelectRange(m_tree.anchor(), now);
            m_tree.setCaret(now);
        } else {
            m_tree.setAnchor(now);
            m_tree.selectOnly(now);
        }
        if (events.pressed)
            events.pressed();
    }
    showSelection(); // the toolkit has ideas of its own
}

/// The arrow, to be seen on a selected row as well.
void CDragTreeCtrl::drawBranches(QPainter* painter, const QRect& rect,
                                 const QModelIndex& index) const
{
    if (!m_model.hasChildren(index))
        return;
    QStyleOption option;
    option.initFrom(this);
    const bool isSelected = selectionModel()->isSelected(index);
    option.palette.setColor(
        QPalette::WindowText,
        palette().color(isSelected ? QPalette::HighlightedText : QPalette::Text));
    option.rect = QRect(0, 0, kArrowPx, kArrowPx);
    option.rect.moveCenter(QPoint(rect.right() - indentation() / 2 + 1, rect.center().y()));
    style()->drawPrimitive(isExpanded(index) ? QStyle::PE_IndicatorArrowDown
                                             : QStyle::PE_IndicatorArrowRight,
                           &option, painter, this);
}

void CDragTreeCtrl::paintEvent(QPaintEvent* event)
{
    QTreeView::paintEvent(event);
    if (m_drag.isDragging()) {
        QPainter painter(viewport());
        paintDrag(painter);
    }
}

void CDragTreeCtrl::paintDrag(QPainter& painter) const
{
    const QColor accent = ui::color(ui::ColorRole::Accent);
    if (m_feedback.markAfter) {
        const QRect row = rectOf(m_feedback.markAfter);
        painter.fillRect(QRect(row.left(), row.bottom(), row.width(), 2), accent);
    }
    if (m_feedback.highlight) {
        painter.setPen(accent);
        painter.drawRect(rectOf(m_feedback.highlight).adjusted(0, 0, -1, -1));
    }
    painter.setOpacity(kDragOpacity);
    painter.drawPixmap(m_dragPoint, m_dragImage);
}
