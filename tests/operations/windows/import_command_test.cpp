// Importing layouts from the panel: the command, what the host asks for, and the recovery of a
// sheet whose drawing is gone.

#include <QMainWindow>
#include <QPushButton>
#include <QTreeWidget>

#include <operations_windows/import_layout_as_sheet.h>
#include <operations_windows/import_layout_as_sheet_dialog.h>
#include <panel/import_layouts.h>
#include <panel/recover_drawing.h>
#include <panel_windows/sheet_set_palette_set.h>
#include <ui/main_frame.h>

#include "page_scene.h"
#include "program.h"
#include "scripted_files.h"

namespace {

using Dialog = CImportLayoutAsSheetDialog;
using Names = std::vector<TvString>;

class ImportCommandTest : public PageTest
{
protected:
    void SetUp() override
    {
        PageTest::SetUp();
        plans = folder.file("Plans.dwg");
        DrawingMaker().paper(u"A").paper(u"B").saveAs(plans);
    }
    /// Does that with the dialog that is about to run, and then presses the button.
    void inDialog(int button, std::function<void(Dialog&)> step = {})
    {
        whenWaiting([this, button, step] {
            auto* dialog = runningDialog<Dialog>();
            ASSERT_NE(dialog, nullptr);
            ++dialogs;
            if (step)
                step(*dialog);
            dialog->Item<QPushButton>(button)->click();
            if (dialog->isVisible())
                dialog->reject();
        });
    }
    /// As the host asks for it, where the caret is.
    void importPreset(const Names& layouts = {})
    {
        panel::importLayouts(dlg->page(), dlg->commands().GetInsertionPlace(), plans, layouts);
        settle();
    }
    static QTreeWidget& rowsOf(Dialog& dialog) { return *dialog.Item<QTreeWidget>(Dialog::kList); }

    TvString plans;
    int dialogs = 0;
};

} // namespace

TEST_F(ImportCommandTest, OnASubsetTheSheetsGoLastAndTheTreeShowsThem)
{
    click(ground);
    inDialog(text::kIdOk, [this](Dialog&) {
        EXPECT_EQ(database->getLockStatus(), 1) << "nobody else changes the set meanwhile";
    });
    importPreset();
    EXPECT_EQ(dialogs, 1);
    EXPECT_EQ(database->getLockStatus(), 0);
    EXPECT_EQ(childrenOf(ground),
              (Names{u"Plan", u"Details", u"Section", u"Plans - A", u"Plans - B"}));
    EXPECT_NE(rows().find("  3 - Section\n  Plans - A\n  Plans - B\n"), std::string::npos)
        << rows();
    TvSmDatabase onDisk;
    ASSERT_TRUE(onDisk.load(folder.file("house.dst")));
    EXPECT_EQ(KvDbUtil::GetSheetNumsInSubSet(onDisk.getSheetSet()), 6) << "it was written";
}

TEST_F(ImportCommandTest, OnASheetTheSheetsGoRightBehindIt)
{
    click(plan);
    inDialog(text::kIdOk);
    importPreset();
    EXPECT_EQ(childrenOf(ground),
              (Names{u"Plan", u"Plans - A", u"Plans - B", u"Details", u"Section"}));
}

TEST_F(ImportCommandTest, OnALastSheetTheSheetsGoLast)
{
    click(section);
    inDialog(text::kIdOk);
    importPreset({u"B"});
    EXPECT_EQ(childrenOf(ground), (Names{u"Plan", u"Details", u"Section", u"Plans - B"}));
}

TEST_F(ImportCommandTest, ASubsetThatWasEmptyIsOpenedForItsFirstSheets)
{
    dlg->page().tree().setExpanded(at(roof), false);
    click(roof);
    inDialog(text::kIdOk);
    importPreset();
    EXPECT_TRUE(at(roof)->isExpanded());
    EXPECT_EQ(at(roof)->children().size(), 2u);
}

TEST_F(ImportCommandTest, CancelChangesNothingAndFreesTheLock)
{
    const std::string before = folder.read("house.dst");
    click(ground);
    inDialog(text::kIdCancel);
    importPreset();
    EXPECT_EQ(dialogs, 1);
    EXPECT_EQ(database->getLockStatus(), 0);
    EXPECT_EQ(folder.read("house.dst"), before);
    EXPECT_EQ(childrenOf(ground), (Names{u"Plan", u"Details", u"Section"}));
}

TEST_F(ImportCommandTest, NewSheetsCarryThePropertiesThatSheetsHave)
{
    change(database, [](TvSmSheetSet& top) {
        sm::setTextProperty(top.getCustomProperties(), u"Checked by", u"N. N.", 2);
        sm::setTextProperty(top.getCustomProperties(), u"Client", u"Town", 1);
    });
    click(roof);
    inDialog(text::kIdOk);
    importPreset({u"A"});
    const std::vector<TvSmComponent*> made = itemsOf(roof->getSheetEnumerator());
    ASSERT_EQ(made.size(), 1u);
    const auto properties = sm::propertiesOf(made[0]->getCustomProperties());
    ASSERT_EQ(properties.size(), 1u);
    EXPECT_EQ(properties[0].name, u"Checked by");
}

TEST_F(ImportCommandTest, WithoutASelectedItemOrWithTheSetLockedNoDialogComes)
{
    items().ClearSelection();
    items().setCaret(nullptr);
    importPreset(); // a dialog would wait for ever
    click(ground);
    ASSERT_TRUE(database->lockDb(database));
    importPreset();
    EXPECT_EQ(database->getLockStatus(), 1);
    EXPECT_TRUE(database->unlockDb(database, false));
    EXPECT_EQ(dialogs, 0);
}

TEST_F(ImportCommandTest, ALayoutThatTheDrawingLacksIsToldAndTheOtherOneIsTicked)
{
    click(ground);
    inDialog(text::kIdOk, [this](Dialog& dialog) {
        EXPECT_EQ(messages.numbers(), std::vector<int>{413});
        EXPECT_EQ(rowsOf(dialog).topLevelItem(0)->checkState(0), Qt::Unchecked);
        EXPECT_EQ(rowsOf(dialog).topLevelItem(1)->checkState(0), Qt::Checked);
    });
    importPreset({u"gone", u"B"});
    EXPECT_EQ(childrenOf(ground), (Names{u"Plan", u"Details", u"Section", u"Plans - B"}));
}

TEST_F(ImportCommandTest, WhatTheHostAsksOfThePanelGoesWhereItsCaretIs)
{
    QMainWindow frame;
    ui::setMainFrame(&frame);
    const std::unique_ptr<core::SheetSetPanel> shown = panel::makeSheetSetPanel();
    ASSERT_NE(shown, nullptr);
    auto* page =
        dynamic_cast<panel::SheetListPage*>(shown->palette(core::SessionHost::Palette::SheetList));
    ASSERT_NE(page, nullptr);
    host.list = page;
    page->tree().setCaret(nullptr);
    shown->importLayoutsAsSheets(plans, {u"B"}); // a dialog would wait for ever
    page->tree().setCaret(page->tree().itemOf(handleOf(roof)));
    inDialog(text::kIdOk);
    shown->importLayoutsAsSheets(plans, {u"B"});
    settle();
    EXPECT_EQ(dialogs, 1);
    EXPECT_EQ(childrenOf(roof), Names{u"Plans - B"});
    host.list = &dlg->page();
    ui::setMainFrame(nullptr);
}

TEST_F(ImportCommandTest, ItIsTheCommandOfTheMenu)
{
    click(ground);
    inDialog(text::kIdCancel, [](Dialog& dialog) {
        EXPECT_EQ(rowsOf(dialog).topLevelItemCount(), 0) << "the user chooses the drawings";
    });
    EXPECT_TRUE(dlg->commands().run(panel::kImportLayout));
    EXPECT_EQ(dialogs, 1);
}

TEST_F(ImportCommandTest, ASetThatChangedOutsideIsReadAfreshBeforeTheDialogAndIsNotOverwritten)
{
    click(plan);
    changeElsewhere([this](TvSmDatabase& copy) {
        auto* there = inCopy<TvSmSubset>(copy, ground);
        there->removeSubset(inCopy<TvSmSubset>(copy, details)); // the neighbour is gone
        there->setName(u"Renamed");
    });
    inDialog(text::kIdOk);
    importPreset({u"A"});
    EXPECT_EQ(ground->getName(), u"Renamed");
    EXPECT_EQ(childrenOf(ground), (Names{u"Plan", u"Section", u"Plans - A"}));
}

TEST_F(ImportCommandTest, ANeighbourThatSomebodyPutElsewhereIsNoneAnyMoreAndTheSheetsGoLast)
{
    click(plan);
    changeElsewhere([this](TvSmDatabase& copy) {
        auto* neighbour = inCopy<TvSmSubset>(copy, details);
        EXPECT_TRUE(inCopy<TvSmSubset>(copy, roof)->insertComponent(neighbour, nullptr));
    });
    inDialog(text::kIdOk);
    importPreset({u"A"});
    EXPECT_EQ(childrenOf(ground), (Names{u"Plan", u"Section", u"Plans - A"}));
    EXPECT_EQ(childrenOf(roof), Names{u"Details"});
}

TEST_F(ImportCommandTest, AfterOkTheDrawingsAreLookedAt)
{
    click(ground);
    set(u"SSMSHEETSTATUS", 1);
    dlg->page().ResetStatusImages();
    host.list = nullptr; // nobody tells the page that the set was written
    inDialog(text::kIdCancel);
    importPreset();
    finishStatus();
    EXPECT_EQ(at(cover)->image(), core::SheetImage::ImageSheet);
    inDialog(text::kIdOk);
    importPreset();
    finishStatus();
    EXPECT_EQ(at(cover)->image(), core::SheetImage::ImageSheetMissing);
}

TEST_F(ImportCommandTest, ASheetWhoseDrawingIsGoneGetsAnotherLayout)
{
    struct Recovery : ScriptedMessages {
        TaskAnswer showTask(const TaskDialog&) override { return {1002, 0, false, false}; }
    } recovery;
    change(database,
           [&](TvSmSheetSet&) { setLayout(plan, folder.file("gone.dwg"), u"1F", u"Gone"); });
    inDialog(text::kIdCancel);
    panel::RecoverMissingDrawing(plan->getLayoutReference(), 618, 619);
    EXPECT_EQ(plan->getLayoutReference()->getName(), u"Gone");
    EXPECT_EQ(database->getLockStatus(), 0);

    ScriptedFiles files;
    files.files = {plans};
    inDialog(text::kIdOk, [](Dialog& dialog) {
        dialog.Item<QPushButton>(Dialog::kBrowse)->click();
        rowsOf(dialog).topLevelItem(1)->setCheckState(0, Qt::Checked);
    });
    panel::RecoverMissingDrawing(plan->getLayoutReference(), 618, 619);
    tvrxSetUserMessages(&messages);
    EXPECT_EQ(dialogs, 2);
    EXPECT_EQ(plan->getLayoutReference()->getName(), u"B");
    EXPECT_EQ(plan->getLayoutReference()->getFileName(), plans);
    TvSmDatabase onDisk;
    ASSERT_TRUE(onDisk.load(folder.file("house.dst")));
    const auto* written = tvrxCast<TvSmSheet>(onDisk.findObject(handleOf(plan)));
    ASSERT_TRUE(written && written->getLayoutReference());
    EXPECT_EQ(written->getLayoutReference()->getName(), u"B");
}
