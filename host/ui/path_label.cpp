#include "ui/path_label.h"

#include <QPainter>
#include <QStyle>

namespace ui {

QSize PathLabel::minimumSizeHint() const
{
    return {0, fontMetrics().height()};
}

void PathLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, width());
    style()->drawItemText(&painter, rect(), static_cast<int>(alignment()) | Qt::TextSingleLine,
                          palette(), isEnabled(), shown, QPalette::WindowText);
}

void PathLabel::resizeEvent(QResizeEvent* event)
{
    setToolTip(fontMetrics().horizontalAdvance(text()) > width() ? text().toHtmlEscaped()
                                                                 : QString());
    QLabel::resizeEvent(event);
}

} // namespace ui
