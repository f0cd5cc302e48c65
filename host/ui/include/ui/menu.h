#pragma once

#include <functional>

#include <QPoint>

#include <ed/menu.h>

class QMenu;
class QWidget;

namespace ui {

/// Shows a menu at a point of the desktop until something is chosen. Arrow keys, Enter, Escape and
/// the marked letters work as in every menu.
/// @return the id of the chosen entry; 0 when none was chosen, or one without an id.
int popupMenu(const ed::Menu& menu, const QPoint& at, QWidget* parent = nullptr);

/// Puts the entries into a menu of the toolkit, for menu bars; what is chosen goes to @p chosen as
/// its id. Separators at the ends, and doubled ones, are left out.
void fillMenu(QMenu& into, const ed::Menu& menu, std::function<void(int)> chosen);

/// The menus of rooms that know no windows.
class MenuWindows : public ed::MenuService
{
public:
    int popup(const ed::Menu& menu, int x, int y) override;
};

} // namespace ui
