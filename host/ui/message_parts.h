#pragma once

#include <span>

#include <QIcon>
#include <QString>

#include <rx/tv_user_messages.h>

/// What message boxes and task dialogs have in common.
namespace ui {

constexpr int kOkText = 23300, kCancelText = 23301, kYesText = 23302, kNoText = 23303;

/// The text of that number; the program's name for 0 and for a number without text.
QString titleOf(int number);
/// A null icon for Icon::None.
QIcon pictureOf(TvUserMessages::Icon icon);
/// With what would make a window larger than the screen shortened in its middle, and with control
/// characters and marks of direction made visible.
std::vector<TvString> shortened(std::span<const TvString> arguments);

} // namespace ui
