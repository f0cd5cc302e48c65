// The page for those who use the keyboard, or hear what is shown; and finding.

#include <QAccessible>
#include <QHelpEvent>
#include <QLineEdit>
#include <QToolTip>

#include "page_scene.h"

namespace {

using Labels = std::vector<std::string>;

class KeyboardTest : public PageTest
{
protected:
    QLineEdit& box() { return *dlg->Item<QLineEdit>(CSheetSetDlg::kFilter); }
    /// The rows that can be seen, from the top.
    Labels seen()
    {
        Labels labels;
        for (QModelIndex at = tree().model()->index(0, 0); at.isValid(); at = tree().indexBelow(at))
            labels.push_back(at.data().toString().toStdString());
        return labels;
    }
    std::string spoken(const TvSmPersist* object)
    {
        return tree()
            .items()
            .indexOf(at(object))
            .data(Qt::AccessibleTextRole)
            .toString()
            .toStdString();
    }
};

TEST_F(KeyboardTest, AltWithArrowsMovesWhatIsSelected)
{
    click(section);
    QTest::keyClick(&tree(), Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(rows(), "House\n Ground\n  1 - Plan\n  3 - Section\n  Details\n Roof\n Cover\n");
    EXPECT_EQ(selectedInView(), Labels{"3 - Section"});
    QTest::keyClick(&tree(), Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(rows(), "House\n Ground\n  1 - Plan\n  Details\n 3 - Section\n Roof\n Cover\n");
    QTest::keyClick(&tree(), Qt::Key_Right, Qt::AltModifier);
    QTest::keyClick(&tree(), Qt::Key_Up, Qt::AltModifier);
    QTest::keyClick(&tree(), Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(rows(), "House\n Ground\n  1 - Plan\n  Details\n  3 - Section\n Roof\n Cover\n");
    EXPECT_TRUE(at(ground)->isExpanded()) << "Alt opens and closes nothing";
}

TEST_F(KeyboardTest, TheMenuKeyShowsTheMenuOfTheItemWithTheCaret)
{
    click(section);
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(3, 3), QPoint(3, 3));
    QApplication::sendEvent(tree().viewport(), &event);
    ASSERT_FALSE(menus.ids.empty());
    EXPECT_EQ(menus.ids.at(0), panel::kOpenSheet);
}

TEST_F(KeyboardTest, F2RenamesASheetAndShowsThePropertiesOfASubset)
{
    std::vector<int> ran;
    for (const int id : {panel::kRenameSheets, panel::kProperties, panel::kRemoveSubset})
        dlg->commands().setHandler(id, [&ran, id](panel::SheetListPage&) { ran.push_back(id); });
    click(section);
    QTest::keyClick(&tree(), Qt::Key_F2);
    click(ground);
    QTest::keyClick(&tree(), Qt::Key_F2);
    QTest::keyClick(&tree(), Qt::Key_Delete);
    EXPECT_EQ(ran,
              (std::vector<int>{panel::kRenameSheets, panel::kProperties, panel::kRemoveSubset}));
}

TEST_F(KeyboardTest, ARowIsReadAloudWithNumberTitleAndStatus)
{
    items().setImage(handleOf(plan), core::SheetImage::ImageSheetMissing);
    items().setImage(handleOf(section), core::SheetImage::ImageSheetInUse);
    items().setImage(handleOf(roof), core::SheetImage::ImageSubsetNoPublish);
    EXPECT_EQ(spoken(plan), "1, Plan, drawing missing");
    EXPECT_EQ(spoken(section), "3, Section, drawing in use");
    EXPECT_EQ(spoken(cover), "Cover");
    EXPECT_EQ(spoken(ground), "Ground, subset");
    EXPECT_EQ(spoken(roof), "Roof, subset, not published");
    EXPECT_EQ(spoken(database->getSheetSet()), "House, sheet set");
}

TEST_F(KeyboardTest, EveryControlHasAName)
{
    for (const int id : {CSheetSetDlg::kSetBox, CSheetSetDlg::kPublish, CSheetSetDlg::kPublishMenu,
                         CSheetSetDlg::kSelections, CSheetSetDlg::kExpand, CSheetSetDlg::kTips,
                         CSheetSetDlg::kRefresh, CSheetSetDlg::kFilter, CSheetSetDlg::kTree})
        EXPECT_FALSE(dlg->GetDlgItem(id)->accessibleName().isEmpty()) << id;
}

TEST_F(KeyboardTest, WhatIsLookedForIsShownWithWhatItStandsIn)
{
    items().setExpanded(at(roof), false);
    click(cover);
    const std::string before = rows();
    const auto open = items().GetExpandSnapshot();
    QTest::keyClicks(&box(), QStringLiteral("stair"));
    EXPECT_EQ(seen(), (Labels{"House", "Ground", "Details", "2 - Stair"}));
    EXPECT_EQ(tree().matches(), 1);
    EXPECT_EQ(items().GetExpandSnapshot(), open) << "what is open in the tree stays";
    EXPECT_EQ(items().caret(), at(cover));
    QTest::keyClick(&box(), Qt::Key_Escape);
    EXPECT_TRUE(box().text().isEmpty());
    EXPECT_EQ(rows(), before);
    EXPECT_EQ(selectedInView(), Labels{"Cover"});
    EXPECT_EQ(items().GetExpandSnapshot(), open);
}

TEST_F(KeyboardTest, OpeningWhileLookingForSomethingLeavesTheTreeAlone)
{
    QTest::keyClicks(&box(), QStringLiteral("details"));
    EXPECT_EQ(seen(), (Labels{"House", "Ground", "Details"}));
    doubleClick(details);
    EXPECT_EQ(seen(), (Labels{"House", "Ground", "Details", "2 - Stair"}));
    EXPECT_FALSE(at(details)->isExpanded());
    box().clear();
    EXPECT_EQ(rows(), "House\n Ground\n  1 - Plan\n  Details\n  3 - Section\n Roof\n Cover\n");
}

TEST_F(KeyboardTest, ARangeWhileLookingForSomethingLeavesOutWhatIsHidden)
{
    change(database, [this](TvSmSheetSet&) { cover->setTitle(u"Plan list"); });
    QTest::keyClicks(&box(), QStringLiteral("plan"));
    ASSERT_EQ(seen(), (Labels{"House", "Ground", "1 - Plan", "Plan list"}));
    click(plan);
    click(cover, Qt::ShiftModifier);
    box().clear();
    EXPECT_EQ(selectedInView(), (Labels{"1 - Plan", "Plan list"}));
}

TEST_F(KeyboardTest, WhatComesWhileLookingForSomethingIsLookedAtToo)
{
    QTest::keyClicks(&box(), QStringLiteral("stair"));
    change(database, [this](TvSmSheetSet&) {
        addSheet(roof, u"9", u"Roof stair");
        addSheet(roof, u"10", u"Chimney");
    });
    settle();
    EXPECT_EQ(seen(),
              (Labels{"House", "Ground", "Details", "2 - Stair", "Roof", "9 - Roof stair"}));
}

TEST_F(KeyboardTest, TheTipOfTheBoxTellsWhoHasTheSet)
{
    const QString file = ui::toQt(database->getFileName());
    EXPECT_EQ(COpenComboBox::tip(), file);
    COpenComboBox shown(nullptr);
    QHelpEvent rest(QEvent::ToolTip, QPoint(1, 1), QPoint(1, 1));
    QApplication::sendEvent(&shown, &rest);
    EXPECT_EQ(QToolTip::text(), file.toHtmlEscaped());
    QToolTip::hideText();
    TvSmSheetSetMgr other;
    TvSmDatabase* copy = other.openDatabase(folder.file("house.dst"), true, 0);
    ASSERT_TRUE(copy->lockDb(copy));
    const base::LockInfo lock = sm::lockInfo(database);
    ASSERT_TRUE(lock.owner);
    EXPECT_TRUE(COpenComboBox::tip().startsWith(file + QLatin1Char('\n')));
    EXPECT_TRUE(COpenComboBox::tip().contains(ui::toQt(lock.owner->user)));
    EXPECT_TRUE(COpenComboBox::tip().contains(ui::toQt(lock.owner->host)));
    EXPECT_TRUE(copy->unlockDb(copy, false));
    other.closeDatabase(copy);
    EXPECT_EQ(COpenComboBox::tip(), file);
    CloseCurrentSheetSet();
    EXPECT_TRUE(COpenComboBox::tip().isEmpty());
}

} // namespace
