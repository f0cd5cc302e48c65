#pragma once

#include <resources/dialogs.h>

class QWidget;

namespace ui {

/// The usual window of a row; owned by @p parent. Its text, its tab stop and its state are set.
QWidget* makeControl(const text::ControlTemplate& row, QWidget* parent);

} // namespace ui
