#pragma once

#include <QPalette>
#include <QProxyStyle>

namespace ui {

/// The looks of controls: the toolkit's plain style in our colours, with a focus that can be seen.
class HostStyle : public QProxyStyle
{
public:
    HostStyle();

    /// The colours of the theme in force.
    QPalette standardPalette() const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* result) const override;
};

} // namespace ui
