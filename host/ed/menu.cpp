#include "ed/menu.h"

namespace ed {

namespace {

MenuService* g_service = nullptr;

MenuEntry* findIn(std::vector<MenuEntry>& entries, int id)
{
    for (MenuEntry& entry : entries) {
        if (!entry.submenu.empty()) {
            if (MenuEntry* found = findIn(entry.submenu, id))
                return found;
        } else if (entry.id == id && !entry.isSeparator) {
            return &entry;
        }
    }
    return nullptr;
}

} // namespace

MenuEntry& Menu::add(int id, const TvString& text, bool isEnabled)
{
    MenuEntry& entry = entries.emplace_back();
    entry.id = id;
    entry.text = text;
    entry.isEnabled = isEnabled;
    return entry;
}

MenuEntry& Menu::addName(int id, const TvString& name, bool isEnabled)
{
    return add(id, name.replaced(u"&", u"&&"), isEnabled);
}

MenuEntry& Menu::addSubmenu(const TvString& text, Menu&& submenu, bool isEnabled)
{
    MenuEntry& entry = add(0, text, isEnabled);
    entry.submenu = std::move(submenu.entries);
    return entry;
}

void Menu::addSeparator()
{
    entries.emplace_back().isSeparator = true;
}

MenuEntry* Menu::find(int id)
{
    return id == 0 ? nullptr : findIn(entries, id);
}

const MenuEntry* Menu::find(int id) const
{
    return const_cast<Menu*>(this)->find(id);
}

MenuService* menuService()
{
    return g_service;
}

void setMenuService(MenuService* service)
{
    g_service = service;
}

int popupMenu(const Menu& menu, int x, int y)
{
    return g_service && !menu.entries.empty() ? g_service->popup(menu, x, y) : 0;
}

} // namespace ed
