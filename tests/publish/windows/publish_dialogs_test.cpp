// The dialogs of publishing, opened by the commands of the page.

#include <QLabel>
#include <QPushButton>
#include <QTimer>

#include <core/publish_options_dialog.h>
#include <publish_windows/edit_subset_and_sheet_publish_dlg.h>
#include <publish_windows/edit_subset_and_sheet_publish_tree_ctrl.h>
#include <publish_windows/tarv_dwf_publish_options_dialg.h>
#include <ui/property_grid.h>

#include "answered_prompts.h"
#include "page_scene.h"

namespace {

using Include = CEditSubsetAndSheetPublishDlg;
using Options = CTarvDWFPublishOptionsDialg;

class PublishDialogTest : public PageTest
{
protected:
    /// Runs the command, and does that with the dialog that it opens.
    template <class Dialog, class Step>
    void run(int id, Step step)
    {
        bool wasOpen = false;
        QTimer::singleShot(0, qApp, [&] {
            auto* dialog = dynamic_cast<Dialog*>(QApplication::activeModalWidget());
            wasOpen = dialog != nullptr;
            if (!dialog)
                return;
            keepPicture(*dialog);
            step(*dialog);
            if (dialog->isVisible())
                dialog->reject();
        });
        dlg->commands().run(id);
        settle();
        EXPECT_TRUE(wasOpen);
    }
    /// For the documentation, when a folder for it is named.
    static void keepPicture(QWidget& dialog)
    {
        const QString folder = qEnvironmentVariable("KV_UI_PICTURES");
        if (!folder.isEmpty())
            dialog.grab().save(folder + QLatin1Char('/') + dialog.windowTitle() +
                               QLatin1String(".png"));
    }
    static void press(CTvUiDialog& dialog, int id) { dialog.Item<QPushButton>(id)->click(); }
    /// The items of a tree with check boxes, from the top: "+ " before what is marked.
    static std::string marks(QTreeView& tree)
    {
        std::string text;
        for (QModelIndex index = tree.model()->index(0, 0); index.isValid();
             index = tree.indexBelow(index)) {
            const bool isChecked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
            text += (isChecked ? "+ " : "- ") + index.data().toString().toStdString() + "\n";
        }
        return text;
    }
    static QModelIndex find(const QTreeView& tree, const char* label)
    {
        const QModelIndexList found = tree.model()->match(
            tree.model()->index(0, 0), Qt::DisplayRole, QString::fromLatin1(label), 1,
            Qt::MatchExactly | Qt::MatchRecursive);
        EXPECT_FALSE(found.isEmpty()) << label;
        return found.isEmpty() ? QModelIndex() : found.front();
    }
    /// With the mouse, on the check box.
    static void clickCheck(QTreeView& tree, const char* label)
    {
        QStyleOptionViewItem option;
        option.initFrom(&tree);
        option.features = QStyleOptionViewItem::HasCheckIndicator;
        option.rect = tree.visualRect(find(tree, label));
        const QRect box =
            tree.style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, &tree);
        QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, box.center());
    }
    TvSmPublishOptions& options() { return *database->getSheetSet()->getPublishOptions(); }
};

constexpr int kInclude = 10, kOptions = 14;

} // namespace

TEST_F(PublishDialogTest, AllSubsetsAndSheetsAreShownOpenWithTheirMarks)
{
    change(database, [this](TvSmSheetSet&) {
        details->setExcludeFromPublish(true);
        cover->setExcludeFromPublish(true);
    });
    dlg->page().expandAll(false);
    run<Include>(kInclude, [&](Include& dialog) {
        EXPECT_EQ(marks(dialog.tree()), "+ House\n+ Ground\n+ 1 - Plan\n- Details\n+ 2 - Stair\n"
                                        "+ 3 - Section\n+ Roof\n- Cover\n");
        EXPECT_EQ(database->getLockStatus() != 0, true);
    });
    EXPECT_EQ(database->getLockStatus(), 0);
}

TEST_F(PublishDialogTest, AClickOnACheckBoxTurnsItOver)
{
    run<Include>(kInclude, [&](Include& dialog) {
        clickCheck(dialog.tree(), "Details");
        EXPECT_EQ(marks(dialog.tree()), "+ House\n+ Ground\n+ 1 - Plan\n- Details\n+ 2 - Stair\n"
                                        "+ 3 - Section\n+ Roof\n+ Cover\n");
        clickCheck(dialog.tree(), "House");
        EXPECT_EQ(marks(dialog.tree()), "- House\n+ Ground\n- 1 - Plan\n- Details\n- 2 - Stair\n"
                                        "- 3 - Section\n+ Roof\n- Cover\n");
        clickCheck(dialog.tree(), "Cover");
        EXPECT_EQ(marks(dialog.tree()), "+ House\n+ Ground\n- 1 - Plan\n- Details\n- 2 - Stair\n"
                                        "- 3 - Section\n+ Roof\n+ Cover\n");
    });
    EXPECT_FALSE(plan->getExcludeFromPublish()) << "cancelled";
}

TEST_F(PublishDialogTest, MarksAreTurnedOverByTheKeyboardToo)
{
    run<Include>(kInclude, [&](Include& dialog) {
        dialog.tree().setFocus();
        QTest::keyClick(&dialog.tree(), Qt::Key_End);
        QTest::keyClick(&dialog.tree(), Qt::Key_Space);
        EXPECT_EQ(marks(dialog.tree()).substr(marks(dialog.tree()).size() - 8), "- Cover\n");
    });
}

TEST_F(PublishDialogTest, WithOkTheMarksAreKept)
{
    run<Include>(kInclude, [&](Include& dialog) {
        clickCheck(dialog.tree(), "Ground");
        clickCheck(dialog.tree(), "Cover");
        press(dialog, text::kIdOk);
    });
    EXPECT_TRUE(ground->getExcludeFromPublish());
    EXPECT_TRUE(cover->getExcludeFromPublish());
    EXPECT_FALSE(plan->getExcludeFromPublish());
    EXPECT_EQ(database->getLockStatus(), 0);
}

TEST_F(PublishDialogTest, NothingIsDraggedOrSelectedInThePage)
{
    click(plan);
    run<Include>(kInclude, [&](Include& dialog) {
        QTreeView& view = dialog.tree();
        const QPoint from = view.visualRect(find(view, "1 - Plan")).center();
        QTest::mousePress(view.viewport(), Qt::LeftButton, {}, from);
        QTest::mouseMove(view.viewport(), from + QPoint(0, 40));
        EXPECT_FALSE(dialog.tree().isDragging());
        QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, from + QPoint(0, 40));
    });
    EXPECT_EQ(selectedInView(), std::vector<std::string>{"1 - Plan"});
}

TEST_F(PublishDialogTest, ThePicturesAreTheLightOnesInBothThemes)
{
    const auto pictures = [this](Include& dialog) {
        std::vector<QImage> all;
        for (const char* label : {"House", "Ground", "1 - Plan"})
            all.push_back(find(dialog.tree(), label)
                              .data(Qt::DecorationRole)
                              .value<QIcon>()
                              .pixmap(16)
                              .toImage());
        return all;
    };
    std::vector<QImage> light, dark;
    ed::setVariable(u"COLORTHEME", std::int16_t(1));
    run<Include>(kInclude, [&](Include& dialog) { light = pictures(dialog); });
    const QImage page = tree()
                            .items()
                            .data(tree().items().index(0, 0), Qt::DecorationRole)
                            .value<QIcon>()
                            .pixmap(16)
                            .toImage();
    EXPECT_EQ(light.front(), page);
    ed::setVariable(u"COLORTHEME", std::int16_t(0));
    ASSERT_EQ(ui::theme(), ui::Theme::Dark);
    run<Include>(kInclude, [&](Include& dialog) { dark = pictures(dialog); });
    EXPECT_EQ(light, dark);
    EXPECT_NE(dark.front(), tree()
                                .items()
                                .data(tree().items().index(0, 0), Qt::DecorationRole)
                                .value<QIcon>()
                                .pixmap(16)
                                .toImage())
        << "the page itself follows";
}

TEST_F(PublishDialogTest, TheFileOfPageSetupsIsAskedForByTheProgramsQuestion)
{
    messages.answer = TvUserMessages::Answer::Ok;
    constexpr int kPageSetups = 58;
    AnsweredPrompts prompts;
    prompts.files = {folder.file("setups.dwt")};
    dlg->commands().run(kPageSetups);
    EXPECT_EQ(database->getSheetSet()->getAltPageSetups()->getFileName(),
              folder.file("setups.dwt"));
}

TEST_F(PublishDialogTest, ALockedSetOpensNoDialog)
{
    ASSERT_TRUE(database->lockDb(database));
    for (const int id : {kInclude, kOptions})
        dlg->commands().run(id); // would wait for ever
    ASSERT_TRUE(database->unlockDb(database, false));
}

TEST_F(PublishDialogTest, OptionsAreShownAndAFileNameIsMade)
{
    change(database, [](TvSmSheetSet& set) { set.getPublishOptions()->setDefaultFileName(u""); });
    run<Options>(kOptions, [&](Options& dialog) {
        EXPECT_EQ(dialog.GetHelpTopic(), TvString(u"SHEETSET_DIA02"));
        EXPECT_EQ(dialog.GetDlgItemText(Options::kSetName), TvString(u"House"));
        EXPECT_EQ(dialog.GetDlgItem(231), &dialog.inspector());
        EXPECT_EQ(dialog.inspector().geometry(), dialog.GetDlgItem(232)->geometry());
        EXPECT_FALSE(dialog.GetDlgItem(232)->isVisible());
        EXPECT_EQ(dialog.inspector().rowCount(), 8);
        EXPECT_TRUE(dialog.inspector().isDialogStyle());
        EXPECT_EQ(dialog.inspector().objectName(), QStringLiteral("KvPropInspector"));
        EXPECT_EQ(options().getDefaultFileName(), TvString(u"House.dwf"));
        EXPECT_EQ(dialog.Item<QLabel>(Options::kPicture)->pixmap().deviceIndependentSize(),
                  QSizeF(32, 32));
        EXPECT_EQ(ed::variable(u"_KV_INSPECTORCONTROLSTYLES"), ed::VariableValue(std::int16_t(2)));
    });
    EXPECT_TRUE(options().getDefaultFileName().isEmpty()) << "rolled back";
    EXPECT_EQ(ed::variable(u"_KV_INSPECTORCONTROLSTYLES"), ed::VariableValue(std::int16_t(0)));
}

TEST_F(PublishDialogTest, OptionsAreKeptWithOk)
{
    run<Options>(kOptions, [&](Options& dialog) {
        EXPECT_TRUE(options().setDwfType(true) && options().setPromptForName(true));
        press(dialog, text::kIdOk);
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_TRUE(options().getDwfType());
    EXPECT_TRUE(options().getPromptForName());
    EXPECT_TRUE(messages.asked.empty());
}

TEST_F(PublishDialogTest, OptionsThatAreWrongKeepTheDialogOpen)
{
    run<Options>(kOptions, [&](Options& dialog) {
        options().setDwfType(true);
        options().setPromptForName(false);
        options().setDefaultFileName(u".dwf");
        press(dialog, text::kIdOk);
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(messages.numbers(), std::vector{332});
        options().setDefaultFileName(TvString(std::u16string(64, u'n')) + u".dwf");
        press(dialog, text::kIdOk);
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_EQ(messages.asked.size(), 1u);
}

TEST_F(PublishDialogTest, OthersCanShowTheOptionsToo)
{
    ASSERT_NE(core::publishOptionsDialog(), nullptr);
    bool isOk = true;
    QTimer::singleShot(0, qApp, [] {
        if (auto* dialog = dynamic_cast<Options*>(QApplication::activeModalWidget()))
            dialog->reject();
    });
    isOk = core::publishOptionsDialog()(nullptr, *database, options());
    EXPECT_FALSE(isOk);
}

TEST_F(PublishDialogTest, TheButtonNamesItsFormat)
{
    const auto tip = [&] {
        return dlg->GetDlgItem(CSheetSetDlg::kPublish)->toolTip().toStdString();
    };
    std::vector<std::string> tips;
    for (const int id : {1, 2, 3}) {
        dlg->commands().run(id);
        settle();
        tips.push_back(tip());
    }
    EXPECT_EQ(tips,
              (std::vector<std::string>{"Publish as PDF, a file a sheet",
                                        "Publish as SVG, a file a sheet", "Publish as one PDF"}));
}
