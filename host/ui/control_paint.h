#pragma once

#include <QPainter>
#include <QStyleOption>

/// How the parts of controls are painted, in the colours of the theme: with edges that can be seen
/// on dark ground too.
namespace ui {

void paintFocus(QPainter& painter, const QRect& rect);
/// Around an edit, a list or an area.
void paintFrame(QPainter& painter, const QStyleOption& option);
void paintButton(QPainter& painter, const QStyleOption& option);
/// A check box without its text; half set is a bar.
void paintCheck(QPainter& painter, const QStyleOption& option);
void paintRadio(QPainter& painter, const QStyleOption& option);
/// The box of a combo box with its arrow, without its text.
void paintCombo(QPainter& painter, const QStyleOptionComboBox& option, const QRect& arrow);

} // namespace ui
