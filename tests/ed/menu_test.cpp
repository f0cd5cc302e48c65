#include <ed/menu.h>

namespace {

class Scripted : public ed::MenuService
{
public:
    int shown = 0;
    Scripted() { ed::setMenuService(this); }
    ~Scripted() override { ed::setMenuService(nullptr); }
    int popup(const ed::Menu& menu, int x, int y) override
    {
        ++shown;
        return menu.entries.front().id + x + y;
    }
};

} // namespace

TEST(Menu, ANameIsShownAsItIs)
{
    ed::Menu menu;
    EXPECT_EQ(menu.addName(3, u"Bread & Butter").text, u"Bread && Butter");
    EXPECT_EQ(menu.add(4, u"&Open").text, u"&Open");
}

TEST(Menu, FindsEntriesInSubmenus)
{
    ed::Menu inner;
    inner.add(7, u"Seven", false);
    ed::Menu menu;
    menu.add(1, u"One");
    menu.addSeparator();
    menu.addSubmenu(u"More", std::move(inner));
    ASSERT_TRUE(menu.find(7));
    EXPECT_FALSE(menu.find(7)->isEnabled);
    EXPECT_TRUE(menu.find(1)->isEnabled);
    EXPECT_FALSE(menu.find(0));
    EXPECT_FALSE(menu.find(8));
}

TEST(Menu, IsShownByTheServiceThereIs)
{
    ed::Menu menu;
    EXPECT_EQ(ed::popupMenu(menu, 1, 2), 0);
    menu.add(100, u"A");
    EXPECT_EQ(ed::popupMenu(menu, 1, 2), 0);
    Scripted service;
    EXPECT_EQ(ed::popupMenu(menu, 1, 2), 103);
    EXPECT_EQ(ed::popupMenu(ed::Menu(), 1, 2), 0);
    EXPECT_EQ(service.shown, 1);
}
