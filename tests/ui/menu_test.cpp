#include <QMenu>

#include <ui/menu.h>

#include "program.h"

namespace {

class MenuTest : public Program
{
protected:
    ed::Menu m_menu;

    MenuTest()
    {
        m_menu.add(1, u"&Open…").icon = u"open";
        m_menu.addName(3, u"Town & Hall").mark = ed::MenuMark::Check;
        m_menu.addSeparator();
        m_menu.add(4, u"&Greyed", false);
        ed::Menu recent;
        recent.add(10, u"&First");
        recent.add(11, u"&Second").mark = ed::MenuMark::Radio;
        m_menu.addSubmenu(u"&Recent", std::move(recent));
        m_menu.add(0, u"&Nothing");
        m_menu.add(49, u"&Close").icon = u"close";
    }
    /// What the menu answers to keys.
    int pressing(std::vector<Qt::Key> keys)
    {
        whenWaiting([keys = std::move(keys)] {
            for (const Qt::Key key : keys)
                if (QWidget* popup = QApplication::activePopupWidget())
                    QTest::keyClick(popup, key);
            while (QWidget* popup = QApplication::activePopupWidget())
                popup->close();
        });
        return ui::popupMenu(m_menu, QPoint(20, 20));
    }
};

} // namespace

TEST_F(MenuTest, AnswersTheIdOfTheChosenEntry)
{
    EXPECT_EQ(pressing({Qt::Key_Down, Qt::Key_Return}), 1);
    EXPECT_EQ(pressing({Qt::Key_Up, Qt::Key_Return}), 49);
    EXPECT_EQ(pressing({Qt::Key_Down, Qt::Key_Down, Qt::Key_Return}), 3);
}

TEST_F(MenuTest, LettersChoose)
{
    EXPECT_EQ(pressing({Qt::Key_C}), 49);
    EXPECT_EQ(pressing({Qt::Key_R, Qt::Key_S}), 11);
}

TEST_F(MenuTest, EscapeGreyAndEmptyEntriesChooseNothing)
{
    EXPECT_EQ(pressing({Qt::Key_Down, Qt::Key_Escape}), 0);
    EXPECT_EQ(pressing({Qt::Key_G}), 0);
    EXPECT_EQ(pressing({Qt::Key_N}), 0);
    EXPECT_EQ(ui::popupMenu(ed::Menu(), QPoint(0, 0)), 0);
}

TEST_F(MenuTest, TheMouseChooses)
{
    whenWaiting([] {
        auto* popup = dynamic_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_TRUE(popup);
        QTest::mouseClick(popup, Qt::LeftButton, {},
                          popup->actionGeometry(popup->actions().last()).center());
    });
    EXPECT_EQ(ui::popupMenu(m_menu, QPoint(20, 20)), 49);
}

TEST_F(MenuTest, ShowsWhatTheEntriesSay)
{
    QMenu menu;
    ui::fillMenu(menu, m_menu, [](int) {});
    const QList<QAction*> actions = menu.actions();
    ASSERT_EQ(actions.size(), 7);
    EXPECT_EQ(actions[1]->text(), QStringLiteral("Town && Hall"));
    EXPECT_TRUE(actions[1]->isChecked());
    EXPECT_FALSE(actions[0]->isChecked());
    EXPECT_TRUE(actions[2]->isSeparator());
    EXPECT_FALSE(actions[3]->isEnabled());
    ASSERT_TRUE(actions[4]->menu());
    EXPECT_TRUE(actions[4]->menu()->actions()[1]->isChecked());
    EXPECT_FALSE(actions[0]->icon().isNull());
    EXPECT_TRUE(actions[3]->icon().isNull());
}

TEST_F(MenuTest, IsTheServiceOfRoomsWithoutWindows)
{
    ui::MenuWindows windows;
    ed::setMenuService(&windows);
    whenWaiting([] { QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_O); });
    EXPECT_EQ(ed::popupMenu(m_menu, 10, 10), 1);
    ed::setMenuService(nullptr);
}

TEST_F(MenuTest, LooksWellInBothThemes)
{
    for (const ui::Theme theme : {ui::Theme::Dark, ui::Theme::Light}) {
        switchTo(theme);
        whenWaiting([theme] {
            QWidget* popup = QApplication::activePopupWidget();
            ASSERT_TRUE(popup);
            QTest::keyClick(popup, Qt::Key_Down);
            keepPicture(*popup, QStringLiteral("menu-%1").arg(static_cast<int>(theme)));
            popup->close();
        });
        EXPECT_EQ(ui::popupMenu(m_menu, QPoint(20, 20)), 0);
    }
}
