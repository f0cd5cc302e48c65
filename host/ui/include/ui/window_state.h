#pragma once

#include <QList>
#include <QRect>

#include <base/tv_string.h>

class QWidget;
class TarvikConfig;

/// What windows remember from one run to the next: their size and place, the folders of file
/// dialogs. State, not preferences: it may be lost without harm.
namespace ui {

/// @param store  not owned; null: nothing is remembered.
void setStateStore(TarvikConfig* store);
TvString rememberedText(const TvString& key); ///< empty when there is none
void rememberText(const TvString& key, const TvString& text);

/// Keeps the window's rectangle under @p name. An empty name keeps nothing.
void rememberWindow(const QWidget& window, const TvString& name);
/// Puts the window where it was. False, and nothing changed, when nothing is kept or it makes no
/// sense.
bool restoreWindow(QWidget& window, const TvString& name);

/// Moved and shrunk so that all of it can be seen on one of the screens: the one that shows most of
/// it, else the nearest.
/// @param screens  the parts of them that windows may cover; empty: @p wanted as it is.
/// @param least    the size below which it is not shrunk, but for a screen that is smaller.
QRect placedOnScreens(const QRect& wanted, const QSize& least, const QList<QRect>& screens);
/// The parts of today's screens that windows may cover, the first screen first.
QList<QRect> availableScreens();

} // namespace ui
