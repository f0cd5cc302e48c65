#pragma once

#include <QApplication>
#include <QTest>

#include <ed/menu.h>
#include <panel_windows/drag_tree_ctrl.h>
#include <panel_windows/open_combo_box.h>
#include <panel_windows/panel_buttons.h>
#include <panel_windows/sheet_set_dlg.h>
#include <ui/qt_text.h>
#include <ui/theme.h>
#include <ui/window_state.h>

#include "document_scene.h"
#include "house_sheets.h"

/// Notes the menus that are shown, and chooses what the test prepared.
class ScriptedMenus : public ed::MenuService
{
public:
    ScriptedMenus() { ed::setMenuService(this); }
    ~ScriptedMenus() override { ed::setMenuService(nullptr); }
    int popup(const ed::Menu& menu, int, int) override
    {
        ids.clear();
        for (const ed::MenuEntry& entry : menu.entries)
            if (!entry.isSeparator)
                ids.push_back(entry.id);
        return std::exchange(choice, 0);
    }
    std::vector<int> ids; ///< of the last one, without separators
    int choice = 0;
};

/// The page in a window, with a set that has a drawing for some of its sheets.
class PageTest : public DocumentTest, protected HouseSheets
{
protected:
    void SetUp() override
    {
        DocumentTest::SetUp();
        ui::setStateStore(&m_state);
        ui::rememberText(u"Theme\\Chosen", u"1");
        m_theme = std::make_unique<ui::ThemeManager>();
        m_cookie = manager().registerEventHandler(&m_events);
        set(u"SSMSHEETSTATUS", 0);
        database = made("house.dst");
        change(database, [this](TvSmSheetSet& top) { makeSheets(top); });
        holder = std::make_unique<QWidget>();
        dlg = new CSheetSetDlg([] { return true; });
        ASSERT_TRUE(dlg->CreateIn(holder.get()));
        holder->resize(260, 420);
        holder->show();
        host.list = &dlg->page();
        ActivateSheetSet(database);
        settle();
    }
    void TearDown() override
    {
        DocumentTest::TearDown();
        host.list = nullptr;
        holder.reset();
        manager().unregisterEventHandler(m_cookie);
        m_theme.reset();
        ui::setStateStore(nullptr);
    }

    static void settle()
    {
        for (int i = 0; i < 3; ++i)
            QApplication::processEvents();
    }
    /// The look at all drawings, which waits for the disk.
    void finishStatus()
    {
        while (!dlg->page().workOnStatus())
            settle();
    }
    CDragTreeCtrl& tree() { return dlg->tree(); }
    panel::SheetTree& items() { return dlg->page().tree(); }
    panel::TreeItem* at(const TvSmPersist* object) { return items().itemOf(handleOf(object)); }
    QPoint pointOf(const TvSmPersist* object)
    {
        const QRect row = tree().rectOf(at(object));
        EXPECT_FALSE(row.isEmpty());
        return {row.left() + 30, row.center().y()};
    }
    void click(const TvSmPersist* object, Qt::KeyboardModifiers keys = {})
    {
        QTest::mouseClick(tree().viewport(), Qt::LeftButton, keys, pointOf(object));
    }
    /// With the button, as the window system tells it.
    void rightClick(const QPoint& point, Qt::KeyboardModifiers keys = {})
    {
        QTest::mouseClick(tree().viewport(), Qt::RightButton, keys, point);
        QContextMenuEvent menu(QContextMenuEvent::Mouse, point,
                               tree().viewport()->mapToGlobal(point), keys);
        QApplication::sendEvent(tree().viewport(), &menu);
    }
    void doubleClick(const TvSmPersist* object)
    {
        QTest::mouseDClick(tree().viewport(), Qt::LeftButton, {}, pointOf(object));
    }
    /// The rows that the view shows, from the top, indented by blanks.
    std::string rows()
    {
        std::string text;
        QModelIndex index = tree().model()->index(0, 0);
        for (; index.isValid(); index = tree().indexBelow(index)) {
            for (QModelIndex above = index.parent(); above.isValid(); above = above.parent())
                text += ' ';
            text += index.data().toString().toStdString() + "\n";
        }
        return text;
    }
    std::vector<std::string> selectedInView()
    {
        std::vector<std::string> labels;
        for (const QModelIndex& index : tree().selectionModel()->selectedIndexes())
            labels.push_back(index.data().toString().toStdString());
        std::ranges::sort(labels);
        return labels;
    }
    /// Writes the set's file as another process does.
    template <class Change>
    void changeElsewhere(Change make)
    {
        TvSmSheetSetMgr other;
        TvSmDatabase* copy = other.openDatabase(folder.file("house.dst"), true, 0);
        ASSERT_NE(copy, nullptr);
        ASSERT_TRUE(copy->lockDb(copy));
        make(*copy);
        ASSERT_TRUE(copy->unlockDb(copy, true));
        other.closeDatabase(copy);
    }
    template <class T>
    T* inCopy(TvSmDatabase& copy, const TvSmPersist* object)
    {
        return tvrxCast<T>(copy.findObject(handleOf(object)));
    }
    /// A drawing with two papers, for a sheet.
    void drawingFor(TvSmSheet* sheet, const char* name)
    {
        DrawingMaker maker;
        maker.paper(u"A1").paper(u"A2").saveAs(folder.file(name));
        change(database, [&](TvSmSheetSet&) {
            setLayout(sheet, folder.file(name), maker.handleOf(u"A1"), u"A1");
        });
    }

    ScriptedMenus menus;
    TvSmDatabase* database = nullptr;
    std::unique_ptr<QWidget> holder;
    CSheetSetDlg* dlg = nullptr; // the holder's

private:
    TarvikConfig m_state{folder.file("state")};
    std::unique_ptr<ui::ThemeManager> m_theme;
    CTvSmSheetSetEventsHandler m_events{&g_watchTable};
    int m_cookie = -1;
};
