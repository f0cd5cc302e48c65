#include "panel_windows/panel_buttons.h"

#include <QKeyEvent>
#include <QStyleOptionToolButton>
#include <QStylePainter>

#include <ui/icon.h>
#include <ui/theme.h>

namespace {

constexpr int kRoomPx = 4, kChevronPx = 10;

} // namespace

CIconButton::CIconButton(QWidget* parent) : QToolButton(parent)
{
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
    setIconSize(QSize(16, 16));
}

void CIconButton::setLook(const char16_t* name, const QString& words)
{
    setIcon(ui::icon(TvString(name)));
    setToolTip(words);
    setAccessibleName(words);
}

CDropMenuButton::CDropMenuButton(Opens opens, QWidget* parent) : CIconButton(parent), m_opens(opens)
{
}

void CDropMenuButton::openMenu()
{
    if (onMenu)
        onMenu(mapToGlobal(rect().bottomLeft() + QPoint(0, 1)));
}

/// The picture, and an arrow beside it; what the arrow opens alone is set off while the mouse is
/// there.
void CDropMenuButton::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    QStyleOptionToolButton option;
    initStyleOption(&option);
    const bool isLively = isEnabled() && (underMouse() || isDown());
    if (isLively)
        painter.drawPrimitive(QStyle::PE_PanelButtonTool, option);
    const int arrow = width() - kArrowPx;
    if (isLively && m_opens == Opens::ByArrow)
        painter.fillRect(QRect(arrow, kRoomPx, 1, height() - 2 * kRoomPx),
                         ui::color(ui::ColorRole::Edge));
    const QIcon::Mode mode = isEnabled() ? QIcon::Normal : QIcon::Disabled;
    QRect place(QPoint(), iconSize());
    place.moveCenter(QPoint((arrow + kRoomPx) / 2, rect().center().y()));
    icon().paint(&painter, place, Qt::AlignCenter, mode);
    QRect chevron(0, 0, kChevronPx, kChevronPx);
    chevron.moveCenter(QPoint(arrow + kArrowPx / 2, rect().center().y()));
    ui::icon(TvString(u"chevron-down")).paint(&painter, chevron, Qt::AlignCenter, mode);
    if (hasFocus())
        painter.drawPrimitive(QStyle::PE_FrameFocusRect, option);
}

void CDropMenuButton::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton &&
        (m_opens == Opens::Always || event->position().x() >= width() - kArrowPx))
        openMenu();
    else
        CIconButton::mousePressEvent(event);
}

void CDropMenuButton::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    const bool isPress = key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter;
    if (key == Qt::Key_Down || key == Qt::Key_F4 || (isPress && m_opens == Opens::Always))
        openMenu();
    else
        CIconButton::keyPressEvent(event);
}

void CStaticBar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(QRect(0, height() / 2, width(), 1), ui::color(ui::ColorRole::Border));
}
