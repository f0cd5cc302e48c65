#include "ui/scroll_bar_ex.h"

#include <algorithm>

#include <QMouseEvent>
#include <QPainter>

#include "ui/theme.h"

namespace {

constexpr int kThicknessPx = 9, kShortestPx = 20, kPaddingPx = 2;

} // namespace

CScrollBarEx::CScrollBarEx(Qt::Orientation orientation, QWidget* parent)
    : QScrollBar(orientation, parent)
{
    setAttribute(Qt::WA_Hover);
}

QSize CScrollBarEx::sizeHint() const
{
    return orientation() == Qt::Vertical ? QSize(kThicknessPx, 4 * kShortestPx)
                                         : QSize(4 * kShortestPx, kThicknessPx);
}

int CScrollBarEx::along(const QPoint& point) const
{
    return orientation() == Qt::Vertical ? point.y() : point.x();
}

int CScrollBarEx::length() const
{
    return orientation() == Qt::Vertical ? height() : width();
}

QRect CScrollBarEx::handle() const
{
    const qint64 span = qint64(maximum()) - minimum();
    const int room = length();
    if (span <= 0)
        return {};
    const int size = std::clamp(static_cast<int>(room * qint64(pageStep()) / (span + pageStep())),
                                std::min(kShortestPx, room), room);
    const int start =
        static_cast<int>((room - size) * (qint64(sliderPosition()) - minimum()) / span);
    return orientation() == Qt::Vertical ? QRect(0, start, width(), size)
                                         : QRect(start, 0, size, height());
}

void CScrollBarEx::paintEvent(QPaintEvent*)
{
    using ui::ColorRole;
    QPainter painter(this);
    painter.fillRect(rect(), ui::color(ColorRole::Base));
    QRect grip = handle();
    if (grip.isNull())
        return;
    grip.adjust(kPaddingPx, kPaddingPx, -kPaddingPx, -kPaddingPx);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ui::color(underMouse() || m_grip >= 0 ? ColorRole::Text : ColorRole::Edge));
    const double radius = std::min(grip.width(), grip.height()) / 2.0;
    painter.drawRoundedRect(grip, radius, radius);
}

void CScrollBarEx::mousePressEvent(QMouseEvent* event)
{
    const QRect grip = handle();
    if (event->button() != Qt::LeftButton || grip.isNull())
        return;
    const int at = along(event->position().toPoint());
    if (grip.contains(event->position().toPoint())) {
        m_grip = at - along(grip.topLeft());
        setSliderDown(true);
    } else {
        triggerAction(at < along(grip.topLeft()) ? SliderPageStepSub : SliderPageStepAdd);
    }
}

void CScrollBarEx::mouseMoveEvent(QMouseEvent* event)
{
    if (m_grip < 0)
        return;
    const QRect grip = handle();
    const int size = orientation() == Qt::Vertical ? grip.height() : grip.width();
    const int room = std::max(1, length() - size);
    const qint64 start = std::clamp(along(event->position().toPoint()) - m_grip, 0, room);
    const qint64 span = qint64(maximum()) - minimum();
    setSliderPosition(static_cast<int>(minimum() + (start * span + room / 2) / room));
}

void CScrollBarEx::mouseReleaseEvent(QMouseEvent*)
{
    m_grip = -1;
    setSliderDown(false);
    update();
}
