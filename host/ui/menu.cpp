#include "ui/menu.h"

#include <QActionGroup>
#include <QMenu>

#include "ui/icon.h"
#include "ui/qt_text.h"

namespace ui {

namespace {

void mark(QAction& action, ed::MenuMark mark, QActionGroup& radios)
{
    action.setCheckable(true);
    action.setChecked(true);
    if (mark == ed::MenuMark::Radio)
        radios.addAction(&action);
}

void addEntries(QMenu& into, const std::vector<ed::MenuEntry>& entries,
                const std::function<void(int)>& chosen);

void addSubmenu(QMenu& into, const ed::MenuEntry& entry, const std::function<void(int)>& chosen)
{
    QMenu* submenu = into.addMenu(icon(entry.icon), toQt(entry.text)); // owned by the menu
    submenu->setEnabled(entry.isEnabled);
    addEntries(*submenu, entry.submenu, chosen);
}

void addEntry(QMenu& into, const ed::MenuEntry& entry, QActionGroup& radios,
              const std::function<void(int)>& chosen)
{
    QAction* action = into.addAction(icon(entry.icon), toQt(entry.text)); // owned by the menu
    action->setEnabled(entry.isEnabled);
    if (entry.mark != ed::MenuMark::None)
        mark(*action, entry.mark, radios);
    QObject::connect(action, &QAction::triggered, &into, [chosen, id = entry.id] {
        if (id != 0)
            chosen(id);
    });
}

void addEntries(QMenu& into, const std::vector<ed::MenuEntry>& entries,
                const std::function<void(int)>& chosen)
{
    auto* radios = new QActionGroup(&into); // owned by the menu; marks a radio entry as one
    into.setSeparatorsCollapsible(true);
    for (const ed::MenuEntry& entry : entries) {
        if (entry.isSeparator)
            into.addSeparator();
        else if (!entry.submenu.empty())
            addSubmenu(into, entry, chosen);
        else
            addEntry(into, entry, *radios, chosen);
    }
}

} // namespace

void fillMenu(QMenu& into, const ed::Menu& menu, std::function<void(int)> chosen)
{
    addEntries(into, menu.entries, chosen);
}

int popupMenu(const ed::Menu& menu, const QPoint& at, QWidget* parent)
{
    if (menu.entries.empty())
        return 0;
    int answer = 0;
    QMenu window(parent);
    fillMenu(window, menu, [&answer](int id) { answer = id; });
    window.exec(at);
    return answer;
}

int MenuWindows::popup(const ed::Menu& menu, int x, int y)
{
    return popupMenu(menu, QPoint(x, y));
}

} // namespace ui
