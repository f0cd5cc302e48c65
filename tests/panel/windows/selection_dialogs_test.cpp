// The dialogs that make and manage selections, and the question about a set that is gone.

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>

#include <core/missing_sheet_set_link_dialog.h>
#include <panel_windows/create_sheet_selection_dlg.h>
#include <panel_windows/sheet_set_manage_dlg.h>

#include "page_scene.h"

namespace {

using Labels = std::vector<std::string>;

class SelectionDialogTest : public PageTest
{
protected:
    TvSmSheetSelections& all() { return *database->getSheetSet()->getSheetSelections(); }
    Labels names()
    {
        Labels found;
        for (const TvSmSheetSelection* each : sm::each(all().getEnumerator()))
            found.push_back(each->getName().utf8());
        return found;
    }
    void addSelections()
    {
        change(database, [](TvSmSheetSet& top) {
            for (const TvChar* name : {u"Print", u"Check", u"Issue"})
                top.getSheetSelections()->add(name, u"");
        });
    }
    /// Does that with the dialog that is about to run.
    template <class Dialog, class Step>
    void whileOpen(Step step)
    {
        QTimer::singleShot(0, qApp, [step] {
            auto* dialog = dynamic_cast<Dialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            step(*dialog);
            if (dialog->isVisible())
                dialog->reject();
        });
    }
    void chooseInMenu(int id)
    {
        menus.choice = id;
        auto* button = dlg->Item<CDropMenuButton>(CSheetSetDlg::kSelections);
        QTest::mouseClick(button, Qt::LeftButton);
    }
    static QListWidget& rowsOf(CTvUiDialog& dialog)
    {
        return *dialog.Item<QListWidget>(CSheetSetManageDlg::kList);
    }
    static Labels shown(CTvUiDialog& dialog)
    {
        Labels words;
        for (int row = 0; row < rowsOf(dialog).count(); ++row)
            words.push_back(rowsOf(dialog).item(row)->text().toStdString());
        return words;
    }
    static void typeName(CTvUiDialog& dialog, const char* name)
    {
        auto* editor = rowsOf(dialog).viewport()->findChild<QLineEdit*>();
        ASSERT_NE(editor, nullptr) << "the name is not being edited";
        editor->setText(QLatin1String(name));
        QTest::keyClick(editor, Qt::Key_Return);
        settle();
    }
    static void press(CTvUiDialog& dialog, int id) { dialog.Item<QPushButton>(id)->click(); }
};

TEST_F(SelectionDialogTest, WhatIsSelectedBecomesASelectionWithOk)
{
    click(plan);
    click(details, Qt::ControlModifier);
    whileOpen<CCreateSheetSelectionDlg>([this](CCreateSheetSelectionDlg& dialog) {
        EXPECT_NE(database->getLockStatus(), 0) << "nobody else changes the set meanwhile";
        EXPECT_EQ(dialog.GetDlgItemText(CCreateSheetSelectionDlg::kName), u"Selection 1");
        EXPECT_TRUE(dialog.GetDlgItemText(CCreateSheetSelectionDlg::kCount).find(u"2") !=
                    TvString::npos);
        dialog.SetDlgItemText(CCreateSheetSelectionDlg::kName, u"a:b");
        press(dialog, text::kIdOk);
        EXPECT_TRUE(dialog.isVisible()) << "a refused name leaves it open";
        dialog.SetDlgItemText(CCreateSheetSelectionDlg::kName, u"Stairs");
        press(dialog, text::kIdOk);
    });
    chooseInMenu(panel::kCreateSelection);
    EXPECT_EQ(messages.numbers(), std::vector<int>{345});
    EXPECT_EQ(names(), Labels{"Stairs"});
    EXPECT_EQ(database->getLockStatus(), 0);
    click(roof);
    chooseInMenu(panel::kFirstDynamic);
    EXPECT_EQ(selectedInView(), (Labels{"1 - Plan", "Details"})) << "and can be applied";
}

TEST_F(SelectionDialogTest, CancelMakesNoSelection)
{
    click(plan);
    whileOpen<CCreateSheetSelectionDlg>(
        [](CCreateSheetSelectionDlg& dialog) { press(dialog, text::kIdCancel); });
    chooseInMenu(panel::kCreateSelection);
    EXPECT_TRUE(names().empty());
    EXPECT_EQ(database->getLockStatus(), 0);
}

TEST_F(SelectionDialogTest, WithNothingSelectedThereIsNothingToMakeASelectionOf)
{
    items().ClearSelection();
    dlg->commands().run(panel::kCreateSelection); // a dialog would wait for ever
    EXPECT_EQ(database->getLockStatus(), 0);
}

TEST_F(SelectionDialogTest, AnotherHoldersLockKeepsBothDialogsAway)
{
    addSelections();
    TvSmSheetSetMgr other;
    TvSmDatabase* copy = other.openDatabase(folder.file("house.dst"), true, 0);
    ASSERT_TRUE(copy->lockDb(copy));
    dlg->commands().run(panel::kCreateSelection);
    dlg->commands().run(panel::kManageSelections);
    EXPECT_TRUE(copy->unlockDb(copy, false));
    other.closeDatabase(copy);
}

TEST_F(SelectionDialogTest, SelectionsAreListedByNameWithTheFirstSelected)
{
    addSelections();
    whileOpen<CSheetSetManageDlg>([](CSheetSetManageDlg& dialog) {
        EXPECT_EQ(shown(dialog), (Labels{"Check", "Issue", "Print"})) << "as in the menu";
        EXPECT_EQ(rowsOf(dialog).currentRow(), 0);
        EXPECT_TRUE(dialog.GetDlgItem(CSheetSetManageDlg::kRename)->isEnabled());
    });
    chooseInMenu(panel::kManageSelections);
}

TEST_F(SelectionDialogTest, F2RenamesAndOkKeepsIt)
{
    addSelections();
    whileOpen<CSheetSetManageDlg>([](CSheetSetManageDlg& dialog) {
        QTest::keyClick(&rowsOf(dialog), Qt::Key_F2);
        typeName(dialog, "Review");
        EXPECT_EQ(shown(dialog), (Labels{"Review", "Issue", "Print"}));
        EXPECT_TRUE(dialog.isVisible()) << "Enter ends the editing alone";
        press(dialog, text::kIdOk);
    });
    chooseInMenu(panel::kManageSelections);
    EXPECT_EQ(names(), (Labels{"Print", "Review", "Issue"}));
}

TEST_F(SelectionDialogTest, ARefusedNameIsSaidOnceAndTheRowKeepsItsOwn)
{
    addSelections();
    whileOpen<CSheetSetManageDlg>([](CSheetSetManageDlg& dialog) {
        rowsOf(dialog).setCurrentRow(1);
        press(dialog, CSheetSetManageDlg::kRename);
        typeName(dialog, "CHECK");
        EXPECT_EQ(shown(dialog), (Labels{"Check", "Issue", "Print"}));
        press(dialog, text::kIdOk);
    });
    chooseInMenu(panel::kManageSelections);
    EXPECT_EQ(messages.numbers(), std::vector<int>{333});
    EXPECT_EQ(names(), (Labels{"Print", "Check", "Issue"}));
}

TEST_F(SelectionDialogTest, ADoubleClickEditsTheName)
{
    addSelections();
    whileOpen<CSheetSetManageDlg>([](CSheetSetManageDlg& dialog) {
        QListWidget& rows = rowsOf(dialog);
        const QPoint third = rows.visualItemRect(rows.item(2)).center();
        QTest::mouseClick(rows.viewport(), Qt::LeftButton, {}, third);
        QTest::mouseDClick(rows.viewport(), Qt::LeftButton, {}, third);
        typeName(dialog, "Plot");
        press(dialog, text::kIdOk);
    });
    chooseInMenu(panel::kManageSelections);
    EXPECT_EQ(names(), (Labels{"Plot", "Check", "Issue"}));
}

TEST_F(SelectionDialogTest, DeleteAsksAndSelectsTheNextUntilTheButtonsHaveNothingLeft)
{
    addSelections();
    messages.answer = TvUserMessages::Answer::Yes;
    whileOpen<CSheetSetManageDlg>([](CSheetSetManageDlg& dialog) {
        QTest::keyClick(&rowsOf(dialog), Qt::Key_Delete);
        EXPECT_EQ(shown(dialog), (Labels{"Issue", "Print"}));
        EXPECT_EQ(rowsOf(dialog).currentRow(), 0);
        press(dialog, CSheetSetManageDlg::kDelete);
        press(dialog, CSheetSetManageDlg::kDelete);
        EXPECT_FALSE(dialog.GetDlgItem(CSheetSetManageDlg::kRename)->isEnabled());
        EXPECT_FALSE(dialog.GetDlgItem(CSheetSetManageDlg::kDelete)->isEnabled());
        press(dialog, text::kIdOk);
    });
    chooseInMenu(panel::kManageSelections);
    EXPECT_EQ(messages.numbers(), (std::vector<int>{582, 582, 582}));
    EXPECT_TRUE(names().empty());
}

TEST_F(SelectionDialogTest, WithNoRowSelectedRenameAndDeleteSaySo)
{
    addSelections();
    whileOpen<CSheetSetManageDlg>([](CSheetSetManageDlg& dialog) {
        rowsOf(dialog).clearSelection();
        QTest::keyClick(&rowsOf(dialog), Qt::Key_F2);
        QTest::keyClick(&rowsOf(dialog), Qt::Key_Delete);
        EXPECT_EQ(shown(dialog).size(), 3u);
    });
    chooseInMenu(panel::kManageSelections);
    EXPECT_EQ(messages.numbers(), (std::vector<int>{583, 583}));
}

TEST_F(SelectionDialogTest, CancelTakesBackWhatWasRenamedAndDeleted)
{
    addSelections();
    messages.answer = TvUserMessages::Answer::Yes;
    whileOpen<CSheetSetManageDlg>([](CSheetSetManageDlg& dialog) {
        QTest::keyClick(&rowsOf(dialog), Qt::Key_Delete);
        QTest::keyClick(&rowsOf(dialog), Qt::Key_F2);
        typeName(dialog, "Other");
        press(dialog, text::kIdCancel);
    });
    chooseInMenu(panel::kManageSelections);
    EXPECT_EQ(names(), (Labels{"Print", "Check", "Issue"}));
    EXPECT_EQ(database->getLockStatus(), 0);
}

class LinkWindowTest : public SelectionDialogTest
{
protected:
    int answered(int button)
    {
        whileOpen<CTvUiDialog>([button](CTvUiDialog& window) {
            EXPECT_EQ(window.GetDlgItemText(49), u"/plans/a.dwg");
            EXPECT_EQ(window.GetDlgItemText(50), u"/sets/gone.dst");
            if (button == 0)
                QTest::keyClick(&window, Qt::Key_Escape);
            else
                press(window, button);
        });
        return CMissingSheetSetLinkDialog(u"/plans/a.dwg", u"/sets/gone.dst").DoModal();
    }
};

TEST_F(LinkWindowTest, OkDropsTheLinkAndAllElseKeepsIt)
{
    EXPECT_EQ(answered(text::kIdOk), 1);
    EXPECT_NE(answered(text::kIdCancel), 1);
    EXPECT_NE(answered(0), 1);
    EXPECT_TRUE(messages.asked.empty()) << "it is a window, no message";
}

} // namespace
