#include "palette_strip.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyleOption>

#include "ui/theme.h"

namespace ui {

namespace {

constexpr int kPaddingPx = 5;

} // namespace

PaletteStrip::PaletteStrip(QWidget* parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void PaletteStrip::setUpright(bool isUpright)
{
    m_isUpright = isUpright;
    updateGeometry();
    update();
}

int PaletteStrip::thickness() const
{
    return fontMetrics().height() + 2 * kPaddingPx;
}

QSize PaletteStrip::sizeHint() const
{
    const QSize lying(fontMetrics().horizontalAdvance(text()) + 6 * kPaddingPx, thickness());
    return m_isUpright ? lying.transposed() : lying;
}

void PaletteStrip::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(),
                     color(underMouse() || isDown() ? ColorRole::Hover : ColorRole::Raised));
    painter.setPen(color(ColorRole::Border));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    if (hasFocus()) {
        QStyleOptionFocusRect focus;
        focus.initFrom(this);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
    }
    QRect room = rect();
    if (m_isUpright) {
        painter.translate(width(), 0);
        painter.rotate(90);
        room = QRect(0, 0, height(), width());
    }
    room.adjust(2 * kPaddingPx, 0, -2 * kPaddingPx, 0);
    painter.setPen(color(ColorRole::Text));
    painter.drawText(room, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                     fontMetrics().elidedText(text(), Qt::ElideRight, room.width()));
}

void PaletteStrip::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

} // namespace ui
