#pragma once

#include <span>

#include <app/words.h>

namespace app {

/// What a menu's entry does in the window itself, without a command.
enum class WindowAction {
    None, ///< it runs its command
    ZoomIn,
    ZoomOut,
    ZoomExtents,
    ZoomWindow,
    NextLayout,
    PreviousLayout,
    NextDrawing,
    PreviousDrawing,
    FocusCommandLine,
    RecentFiles, ///< a submenu
    Theme,
    About,
};

/// One entry of the window's menus. Described once: menus, tool bar, keys and their page in the
/// documentation follow from it.
struct MenuRow {
    Word menu;            ///< the menu that it stands in
    Word label;           ///< 0: a separator
    const char* icon;     ///< null: none
    const char* keys;     ///< as the toolkit writes them; null: none
    const TvChar* action; ///< what is typed for it; null: the window's own
    WindowAction own = WindowAction::None;
    bool isOnToolBar = false;
};

constexpr Word kSeparator = Word(0);

std::span<const MenuRow> menuRows();

} // namespace app
