#include "panel_windows/tree_tips.h"

#include <QCursor>
#include <QMouseEvent>

#include "panel_windows/drag_tree_ctrl.h"

namespace panel {

TreeTips::TreeTips(CDragTreeCtrl& tree, std::unique_ptr<CTarvSheetSetToolTipCtrl> tip)
    : m_tree(tree), m_tip(std::move(tip))
{
    m_tip->SetOwnerWnd(&tree);
    m_rest.setSingleShot(true);
    m_stay.setSingleShot(true);
    connect(&m_rest, &QTimer::timeout, this, [this] { mouseRests(); });
    connect(&m_stay, &QTimer::timeout, this, [this] { hide(); });
    tree.viewport()->setMouseTracking(true);
    tree.viewport()->installEventFilter(this);
    tree.installEventFilter(this); // its keys
}

void TreeTips::SetShowTips(bool showTips)
{
    m_showTips = showTips;
    m_hovered.setEmpty();
    m_isDue = false;
    hide();
}

void TreeTips::hide()
{
    m_rest.stop();
    m_stay.stop();
    m_tip->hide();
}

void TreeTips::mouseIsOn(const TreeItem* item)
{
    const TvString handle = item ? item->handle() : TvString();
    if (handle != m_hovered) {
        hide();
        m_hovered = handle;
        m_isDue = item != nullptr;
        m_tip->SetHandle(handle);
    }
    if (m_isDue)
        m_rest.start(kRestMs);
}

void TreeTips::mouseRests()
{
    m_isDue = false;
    if (!m_tree.isVisible() || !m_tip->Update(QCursor::pos()))
        return;
    m_stay.start(kStayMs);
}

bool TreeTips::eventFilter(QObject* watched, QEvent* event)
{
    if (!m_showTips)
        return QObject::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::MouseMove: {
        const auto* move = static_cast<QMouseEvent*>(event);
        if (move->buttons() == Qt::NoButton)
            mouseIsOn(m_tree.itemUnder(move->position().toPoint()));
        break;
    }
    case QEvent::Leave: mouseIsOn(nullptr); break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::Hide:
    case QEvent::WindowDeactivate:
        m_isDue = false;
        hide();
        break;
    default: break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace panel
