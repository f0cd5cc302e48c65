#pragma once

#include <vector>

#include <base/tv_string.h>

namespace ed {

/// An entry may be ticked, or be the chosen one of several.
enum class MenuMark { None, Check, Radio };

/// One entry of a menu.
struct MenuEntry {
    int id = 0;    ///< what the menu answers; 0 does nothing
    TvString text; ///< shown; & marks the letter that chooses it, && is one &
    bool isEnabled = true;
    MenuMark mark = MenuMark::None;
    bool isSeparator = false;
    TvString icon;                  ///< the name of a picture; empty: none
    std::vector<MenuEntry> submenu; ///< not empty: the entry opens these, its id counts for nothing
};

/// A menu as data: made by rules, drawn by the host.
class Menu
{
public:
    std::vector<MenuEntry> entries;

    /// Each gives the new entry, to be changed further; valid until the next one is added.
    MenuEntry& add(int id, const TvString& text, bool isEnabled = true);
    /// An entry whose text is a name: & in it is one.
    MenuEntry& addName(int id, const TvString& name, bool isEnabled = true);
    MenuEntry& addSubmenu(const TvString& text, Menu&& submenu, bool isEnabled = true);
    void addSeparator();

    /// The entry of that id, submenus too; null when there is none or it is 0.
    MenuEntry* find(int id);
    const MenuEntry* find(int id) const;
};

/// Draws menus: a window, or whoever scripts the choice.
class MenuService
{
public:
    virtual ~MenuService() = default;
    /// Shows it until something is chosen.
    /// @param x, y  of its upper left corner, in pixels of the desktop.
    /// @return the id of the chosen entry; 0 when none was.
    virtual int popup(const Menu& menu, int x, int y) = 0;
};

/// Null: nothing can be shown, and nothing is chosen.
MenuService* menuService();
/// Not owned. Null takes it away.
void setMenuService(MenuService* service);
/// Shows it with the service there is; 0 without one, and for a menu without entries.
int popupMenu(const Menu& menu, int x, int y);

} // namespace ed
