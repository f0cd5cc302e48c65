// The dialog of importing layouts, by its widgets.

#include <QCheckBox>
#include <QHeaderView>
#include <QPushButton>
#include <QTreeWidget>

#include <core/settings.h>
#include <operations_windows/import_layout_as_sheet_dialog.h>
#include <ui/qt_text.h>

#include "import_scene.h"
#include "program.h"
#include "scripted_files.h"

namespace {

using Dialog = CImportLayoutAsSheetDialog;
using Lines = std::vector<std::string>;
using Names = std::vector<TvString>;
using Numbers = std::vector<int>;

constexpr const char16_t* kKeys = u"UserInterfaceSettings\\ImportLayoutAsSheetDialog\\";

class ImportDialogTest : public ImportScene
{
protected:
    void SetUp() override
    {
        ImportScene::SetUp();
        ui::setStateStore(&m_state);
        ui::rememberText(u"Theme\\Chosen", u"1");
        m_theme = std::make_unique<ui::ThemeManager>();
        plans = drawing("Plans.dwg", {u"Level 1", u"Level 2"});
        ASSERT_TRUE(house->lockDb(house));
    }
    void TearDown() override
    {
        m_dialog.reset();
        house->unlockDb(house, false);
        m_theme.reset();
        ui::setStateStore(nullptr);
        ImportScene::TearDown();
    }
    /// Shows the dialog, with the drawing in it where one is given.
    template <class Target>
    Dialog& shown(Target* target, const TvString& preset = {}, const Names& layouts = {})
    {
        m_dialog = std::make_unique<Dialog>(nullptr, target);
        m_dialog->SetDrawing(preset);
        m_dialog->SetLayouts(layouts);
        EXPECT_TRUE(m_dialog->Create());
        m_dialog->setResult(-1);
        m_dialog->show();
        QApplication::setActiveWindow(m_dialog.get());
        return *m_dialog;
    }
    void browse(const Names& chosen)
    {
        files.files = chosen;
        press(Dialog::kBrowse);
    }
    void press(int id) { QTest::mouseClick(m_dialog->Item<QPushButton>(id), Qt::LeftButton); }
    QTreeWidget& table() { return *m_dialog->Item<QTreeWidget>(Dialog::kList); }
    void clickHeading(int column)
    {
        QHeaderView& header = *table().header();
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {},
                          {header.sectionViewportPosition(column) + 20, header.height() / 2});
    }
    /// With the mouse, on the box itself.
    void clickBox(int row)
    {
        const QRect cell = table().visualItemRect(table().topLevelItem(row));
        QStyleOptionViewItem option;
        option.initFrom(&table());
        option.rect = cell;
        option.features = QStyleOptionViewItem::HasCheckIndicator;
        const QRect box = table().style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator,
                                                          &option, &table());
        QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, box.center());
    }
    /// "Plans.dwg | Level 1 | Can be imported x" for each row.
    Lines rows()
    {
        Lines lines;
        for (int row = 0; row < table().topLevelItemCount(); ++row) {
            const QTreeWidgetItem& item = *table().topLevelItem(row);
            lines.push_back(item.text(1).toStdString() +
                            (item.checkState(0) == Qt::Checked ? " x" : ""));
        }
        return lines;
    }
    Lines made()
    {
        Lines names;
        for (const TvSmSheet* sheet : m_dialog->GetSheets())
            names.push_back(sheet->getName().utf8());
        return names;
    }
    bool isStored(const char16_t* name)
    {
        int value = 0;
        return ReadConfigInt(TvString(kKeys) + name, value);
    }
    int stored(const char16_t* name)
    {
        int value = -1;
        EXPECT_TRUE(ReadConfigInt(TvString(kKeys) + name, value));
        return value;
    }
    bool isOpen() { return m_dialog->isVisible(); }

    ScriptedFiles files;
    TvString plans;

private:
    TarvikConfig m_state{folder.file("state")};
    std::unique_ptr<ui::ThemeManager> m_theme;
    std::unique_ptr<Dialog> m_dialog;
};

} // namespace

TEST_F(ImportDialogTest, WaitsForTheBrowseButtonWhileNoDrawingIsKnown)
{
    Dialog& dialog = shown(ground);
    EXPECT_TRUE(rows().empty());
    EXPECT_TRUE(messages.asked.empty());
    EXPECT_EQ(dialog.focusWidget(), dialog.GetDlgItem(Dialog::kBrowse));
    EXPECT_EQ(dialog.GetHelpTopic(), u"SHEETSET_DIA04");
    EXPECT_EQ(table().headerItem()->text(0), ui::textOf(400));
    EXPECT_EQ(table().headerItem()->text(1), ui::textOf(401));
    EXPECT_EQ(table().headerItem()->text(2), ui::textOf(402));
    EXPECT_EQ(table().columnWidth(0), 150);
    EXPECT_EQ(table().columnWidth(1), 150);
    EXPECT_EQ(table().columnWidth(2), 300);
    EXPECT_TRUE(dialog.IsDlgButtonChecked(Dialog::kPrefix));
}

TEST_F(ImportDialogTest, BrowsingAsksForSeveralDrawingsAndListsTheirLayouts)
{
    setLayout(cover, plans, handle(plans, u"Level 2"), u"Level 2");
    shown(ground);
    browse({plans, drawing("Roof.dwg", {u"Roof"}, path("gone.dst"))});
    ASSERT_EQ(files.asked.size(), 1u);
    EXPECT_EQ(ui::toQt(files.asked[0].title), ui::textOf(407));
    EXPECT_EQ(files.asked[0].extensions, Names{u"dwg"});
    EXPECT_EQ(files.asked[0].dialogName, u"TvSmImportLayoutDialog");
    EXPECT_TRUE(files.asked[0].mayBeSeveral);
    EXPECT_FALSE(files.asked[0].isForSaving);
    EXPECT_EQ(rows(), (Lines{"Level 1 x", "Level 2", "Roof x"}));
    EXPECT_EQ(table().topLevelItem(0)->text(0), QStringLiteral("Plans.dwg"));
    EXPECT_EQ(table().topLevelItem(0)->text(2), ui::textOf(404));
    EXPECT_EQ(table().topLevelItem(1)->text(2), ui::textOf(406));
    EXPECT_EQ(table().topLevelItem(2)->text(2), ui::textOf(405));
    EXPECT_EQ(table().topLevelItem(0)->toolTip(0), ui::toQt(plans));
    keepPicture(*QApplication::activeWindow(), QStringLiteral("import"));
}

TEST_F(ImportDialogTest, GivingUpTheBrowseKeepsTheList)
{
    shown(ground, plans);
    browse({});
    EXPECT_EQ(rows(), (Lines{"Level 1 x", "Level 2 x"}));
}

TEST_F(ImportDialogTest, ChoosingFilesASecondTimeReplacesTheFirstList)
{
    shown(ground);
    browse({plans});
    browse({drawing("Roof.dwg", {u"Roof"})});
    EXPECT_EQ(rows(), Lines{"Roof x"});
}

TEST_F(ImportDialogTest, OfTwoFilesWithOneUnreadableTheOtherOnesRowsAreThereAfterOneMessage)
{
    folder.write("broken.dwg", "nothing");
    shown(ground);
    browse({path("broken.dwg"), plans});
    EXPECT_EQ(messages.numbers(), Numbers{409});
    EXPECT_EQ(messages.asked[0].caption, 408);
    EXPECT_EQ(rows(), (Lines{"Level 1 x", "Level 2 x"}));
}

TEST_F(ImportDialogTest, AFileWithEmptyPaperAloneIsToldInTheClosingMessage)
{
    shown(ground);
    browse({drawing("empty.dwg", {}), plans});
    EXPECT_EQ(messages.numbers(), Numbers{411});
    EXPECT_EQ(messages.asked[0].caption, 410);
    EXPECT_EQ(messages.asked[0].arguments, Names{TvString(u"\n\t") + path("empty.dwg")});
    EXPECT_EQ(rows(), (Lines{"Level 1 x", "Level 2 x"}));
}

TEST_F(ImportDialogTest, APresetDrawingIsListedAndItsNamedLayoutsAreTicked)
{
    shown(ground, plans, {u"Level 2"});
    EXPECT_EQ(rows(), (Lines{"Level 1", "Level 2 x"}));
    EXPECT_TRUE(messages.asked.empty());
}

TEST_F(ImportDialogTest, APresetLayoutThatTheDrawingLacksIsToldAndTheOthersAreTicked)
{
    shown(ground, plans, {u"level 1", u"Level 2"});
    EXPECT_EQ(messages.numbers(), Numbers{413});
    EXPECT_EQ(messages.asked[0].caption, 412);
    EXPECT_EQ(rows(), (Lines{"Level 1", "Level 2 x"}));
}

TEST_F(ImportDialogTest, OkMakesTheTickedSheetsAndKeepsWidthsAndPrefix)
{
    Dialog& dialog = shown(ground, plans);
    table().setColumnWidth(1, 77);
    clickBox(0);
    EXPECT_EQ(rows(), (Lines{"Level 1", "Level 2 x"}));
    press(text::kIdOk);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(dialog.result(), text::kIdOk);
    EXPECT_EQ(made(), Lines{"Plans - Level 2"});
    EXPECT_EQ(stored(u"Column1"), 150);
    EXPECT_EQ(stored(u"Column2"), 77);
    EXPECT_EQ(stored(u"Column3"), 300);
    EXPECT_EQ(stored(u"Prefix"), 1);
    shown(ground);
    EXPECT_EQ(table().columnWidth(1), 77);
}

TEST_F(ImportDialogTest, WithoutThePrefixASheetIsNamedAsItsLayout)
{
    Dialog& first = shown(ground, plans);
    QTest::mouseClick(first.Item<QCheckBox>(Dialog::kPrefix), Qt::LeftButton, {}, {8, 8});
    press(text::kIdOk);
    EXPECT_EQ(made(), (Lines{"Level 1", "Level 2"}));
    EXPECT_EQ(stored(u"Prefix"), 0);
    EXPECT_FALSE(shown(ground).IsDlgButtonChecked(Dialog::kPrefix));
}

TEST_F(ImportDialogTest, OkWithoutTicksTicksAllThatCanBeAgainAndStaysOpen)
{
    setLayout(cover, plans, handle(plans, u"Level 2"), u"Level 2");
    shown(ground, plans);
    clickBox(0);
    EXPECT_EQ(rows(), (Lines{"Level 1", "Level 2"}));
    press(text::kIdOk);
    EXPECT_EQ(messages.numbers(), Numbers{403});
    EXPECT_EQ(rows(), (Lines{"Level 1 x", "Level 2"}));
    EXPECT_TRUE(isOpen());
    EXPECT_TRUE(made().empty());
    EXPECT_FALSE(isStored(u"Column1"));
}

TEST_F(ImportDialogTest, ARowOfALayoutInUseMayBeTickedAndOkMakesNothingOfIt)
{
    setLayout(cover, plans, handle(plans, u"Level 2"), u"Level 2");
    shown(ground, plans);
    clickBox(0);
    clickBox(1);
    EXPECT_EQ(rows(), (Lines{"Level 1", "Level 2 x"}));
    press(text::kIdOk);
    EXPECT_FALSE(isOpen());
    EXPECT_TRUE(made().empty());
    EXPECT_TRUE(messages.asked.empty());
}

TEST_F(ImportDialogTest, CancelAfterABrowseChangesNothingAndKeepsNoWidths)
{
    Dialog& dialog = shown(ground);
    browse({plans});
    table().setColumnWidth(0, 99);
    press(text::kIdCancel);
    EXPECT_EQ(dialog.result(), text::kIdCancel);
    EXPECT_TRUE(made().empty());
    EXPECT_EQ(childrenOf(ground), Names{u"Cover"});
    for (const char16_t* name : {u"Column1", u"Column2", u"Column3", u"Prefix"})
        EXPECT_FALSE(isStored(name));
}

TEST_F(ImportDialogTest, AListSortedByStatusGivesTheSheetsInThatOrder)
{
    const TvString zone = drawing("Zone.dwg", {u"A"}, path("gone.dst"));
    shown(ground);
    browse({zone, plans});
    EXPECT_EQ(rows(), (Lines{"A x", "Level 1 x", "Level 2 x"}));
    clickHeading(2);
    if (rows().front() == "A x") // an earlier dialog has sorted by it already
        clickHeading(2);
    EXPECT_EQ(rows(), (Lines{"Level 1 x", "Level 2 x", "A x"}));
    EXPECT_EQ(table().header()->sortIndicatorSection(), 2);
    EXPECT_EQ(table().header()->sortIndicatorOrder(), Qt::AscendingOrder);
    QTest::mouseClick(QApplication::activeWindow()->findChild<QCheckBox*>(), Qt::LeftButton, {},
                      {8, 8});
    press(text::kIdOk);
    EXPECT_EQ(made(), (Lines{"Level 1", "Level 2", "A"}));
}

TEST_F(ImportDialogTest, AColumnsDirectionGoesOnTurningInTheNextDialog)
{
    shown(ground, plans);
    clickHeading(1);
    const Lines first = rows();
    shown(ground, plans);
    clickHeading(1);
    EXPECT_EQ(rows(), Lines(first.rbegin(), first.rend()));
    clickHeading(1);
    EXPECT_EQ(rows(), first);
}

TEST_F(ImportDialogTest, SortingKeepsTicksAndSelectionAtTheirRows)
{
    shown(ground, plans);
    clickBox(1);
    table().clearSelection();
    table().topLevelItem(0)->setSelected(true);
    clickHeading(1);
    clickHeading(1);
    clickHeading(1);
    for (int row = 0; row < 2; ++row) {
        const QTreeWidgetItem& item = *table().topLevelItem(row);
        EXPECT_EQ(item.isSelected(), item.text(1) == QLatin1String("Level 1"));
        EXPECT_EQ(item.checkState(0) == Qt::Checked, item.text(1) == QLatin1String("Level 1"));
    }
    press(text::kIdOk);
    EXPECT_EQ(made(), Lines{"Plans - Level 1"}) << "rows and rules stand in one order";
}

TEST_F(ImportDialogTest, ControlASelectsAllRowsFromAnywhereAndTicksNothing)
{
    Dialog& dialog = shown(ground, plans);
    clickBox(0);
    clickBox(1);
    dialog.Item<QCheckBox>(Dialog::kPrefix)->setFocus();
    QTest::keyClick(dialog.Item<QCheckBox>(Dialog::kPrefix), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(table().selectedItems().size(), 2);
    EXPECT_EQ(dialog.focusWidget(), &table());
    EXPECT_EQ(rows(), (Lines{"Level 1", "Level 2"}));
    table().clearSelection();
    QTest::keyClick(&table(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(table().selectedItems().size(), 2);
}

TEST_F(ImportDialogTest, ABoxOfASelectedRowTicksAllSelectedRows)
{
    const TvString three = drawing("three.dwg", {u"A", u"B", u"C"});
    shown(ground, three);
    table().topLevelItem(0)->setSelected(true);
    table().topLevelItem(2)->setSelected(true);
    table().topLevelItem(0)->setCheckState(0, Qt::Unchecked);
    EXPECT_EQ(rows(), (Lines{"A", "B x", "C"}));
}

TEST_F(ImportDialogTest, ForOneSheetATickTakesTheOthersAwayAndOkLeadsItThere)
{
    Dialog& dialog = shown(cover, plans);
    EXPECT_EQ(rows(), (Lines{"Level 1", "Level 2"}));
    EXPECT_EQ(table().selectionMode(), QAbstractItemView::SingleSelection);
    EXPECT_EQ(dialog.windowTitle(), ui::textOf(8844));
    EXPECT_TRUE(dialog.GetDlgItem(Dialog::kPrefix)->isHidden());
    press(text::kIdOk);
    EXPECT_EQ(messages.numbers(), Numbers{403});
    EXPECT_EQ(rows(), (Lines{"Level 1", "Level 2"}));
    clickBox(0);
    clickBox(1);
    EXPECT_EQ(rows(), (Lines{"Level 1", "Level 2 x"}));
    press(text::kIdOk);
    EXPECT_FALSE(isOpen());
    EXPECT_TRUE(made().empty());
    ASSERT_NE(cover->getLayoutReference(), nullptr);
    EXPECT_EQ(cover->getLayoutReference()->getName(), u"Level 2");
    EXPECT_EQ(cover->getName(), u"Cover");
}
