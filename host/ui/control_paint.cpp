#include "control_paint.h"

#include "ui/theme.h"

namespace ui {

namespace {

constexpr double kRadiusPx = 3, kFocusWidthPx = 2;

bool has(const QStyleOption& option, QStyle::StateFlag flag)
{
    return option.state & flag;
}

QColor edgeOf(const QStyleOption& option)
{
    if (!has(option, QStyle::State_Enabled))
        return color(theme() == Theme::Dark ? ColorRole::Raised : ColorRole::Border);
    return color(has(option, QStyle::State_HasFocus) ? ColorRole::IconAccent : ColorRole::Edge);
}

/// On whole pixels, so that lines are sharp.
QRectF sharp(const QRect& rect)
{
    return QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5);
}

void paintBox(QPainter& painter, const QRect& rect, const QColor& edge, const QColor& fill,
              double width = 1)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(edge, width));
    painter.setBrush(fill);
    painter.drawRoundedRect(sharp(rect), kRadiusPx, kRadiusPx);
    painter.restore();
}

QColor markFill(const QStyleOption& option, bool isSet)
{
    if (!has(option, QStyle::State_Enabled))
        return color(isSet ? ColorRole::Raised : ColorRole::Window);
    if (isSet)
        return color(ColorRole::Accent);
    return color(has(option, QStyle::State_MouseOver) ? ColorRole::Hover : ColorRole::Base);
}

QColor markInk(const QStyleOption& option)
{
    return color(has(option, QStyle::State_Enabled) ? ColorRole::AccentText : ColorRole::Disabled);
}

QRect squareIn(const QRect& rect)
{
    const int side = std::min(rect.width(), rect.height());
    QRect square(0, 0, side, side);
    square.moveCenter(rect.center());
    return square;
}

void paintArrow(QPainter& painter, const QRect& room, const QColor& ink)
{
    const QPointF middle = QRectF(room).center();
    const double half = 3.5;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(ink, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(
        QPolygonF({middle + QPointF(-half, -half / 2), middle + QPointF(0, half / 2),
                   middle + QPointF(half, -half / 2)}));
    painter.restore();
}

} // namespace

void paintFocus(QPainter& painter, const QRect& rect)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color(ColorRole::IconAccent), kFocusWidthPx));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect).adjusted(1, 1, -1, -1), kRadiusPx, kRadiusPx);
    painter.restore();
}

void paintFrame(QPainter& painter, const QStyleOption& option)
{
    const bool isFocused =
        has(option, QStyle::State_HasFocus) && has(option, QStyle::State_Enabled);
    paintBox(painter, option.rect, edgeOf(option), Qt::transparent, isFocused ? 1.6 : 1);
}

void paintButton(QPainter& painter, const QStyleOption& option)
{
    const bool isEnabled = has(option, QStyle::State_Enabled);
    const bool isDown = has(option, QStyle::State_Sunken) || has(option, QStyle::State_On);
    const bool isUnderMouse = has(option, QStyle::State_MouseOver);
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(&option);
    const bool isDefault = button && (button->features & QStyleOptionButton::DefaultButton);
    const ColorRole fill = !isEnabled               ? ColorRole::Window
                           : isDown || isUnderMouse ? ColorRole::Hover
                                                    : ColorRole::Raised;
    const QColor edge = isEnabled && isDefault ? color(ColorRole::IconAccent) : edgeOf(option);
    paintBox(painter, option.rect, edge, color(fill), isEnabled && isDefault ? 1.6 : 1);
}

void paintCheck(QPainter& painter, const QStyleOption& option)
{
    const QRect box = squareIn(option.rect);
    const bool isOn = has(option, QStyle::State_On), isHalf = has(option, QStyle::State_NoChange);
    paintBox(painter, box, edgeOf(option), markFill(option, isOn || isHalf));
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(markInk(option), 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const auto at = [&](double x, double y) {
        return QPointF(box.x() + x * box.width(), box.y() + y * box.height());
    };
    if (isHalf)
        painter.drawLine(at(0.27, 0.5), at(0.73, 0.5));
    else if (isOn)
        painter.drawPolyline(QPolygonF({at(0.25, 0.52), at(0.43, 0.7), at(0.75, 0.3)}));
    painter.restore();
}

void paintRadio(QPainter& painter, const QStyleOption& option)
{
    const QRect box = squareIn(option.rect);
    const bool isOn = has(option, QStyle::State_On);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(edgeOf(option));
    painter.setBrush(markFill(option, isOn));
    painter.drawEllipse(sharp(box));
    if (isOn) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(markInk(option));
        const double radius = box.width() * 0.2;
        painter.drawEllipse(QRectF(box).center(), radius, radius);
    }
    painter.restore();
}

void paintCombo(QPainter& painter, const QStyleOptionComboBox& option, const QRect& arrow)
{
    const bool isEnabled = has(option, QStyle::State_Enabled);
    if (option.editable) {
        painter.fillRect(option.rect.adjusted(1, 1, -1, -1),
                         color(isEnabled ? ColorRole::Base : ColorRole::Window));
        paintFrame(painter, option);
    } else {
        paintButton(painter, option);
    }
    paintArrow(painter, arrow, color(isEnabled ? ColorRole::Text : ColorRole::Disabled));
}

} // namespace ui
