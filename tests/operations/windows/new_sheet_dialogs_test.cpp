// The dialogs that make a sheet and choose its template.

#include <QListWidget>

#include <ed/user_prompts.h>
#include <operations_windows/create_new_sheet_dialog.h>
#include <operations_windows/select_template_dialog.h>
#include <operations_windows/tarv_un_supported_char_dlg.h>

#include "dialog_hands.h"
#include "new_sheet_scene.h"
#include "program.h"

namespace {

using Numbers = std::vector<int>;

/// Where somebody wants to look at it: with paths that mean something to him.
void keep(CTvUiDialog& dialog, const char* name, const std::map<int, TvString>& shown)
{
    const QString folder = qEnvironmentVariable("KV_UI_PICTURES");
    if (folder.isEmpty())
        return;
    std::map<int, TvString> former;
    for (const auto& [id, text] : shown) {
        former[id] = dialog.GetDlgItemText(id);
        dialog.SetDlgItemText(id, text);
    }
    dialog.grab().save(folder + QLatin1Char('/') + QLatin1String(name));
    for (const auto& [id, text] : former)
        dialog.SetDlgItemText(id, text);
}

/// The theme and the store that windows stand on.
class NewSheetDialogTest : public NewSheetScene
{
protected:
    void SetUp() override
    {
        NewSheetScene::SetUp();
        ui::setStateStore(&m_state);
        ui::rememberText(u"Theme\\Chosen", u"1");
        m_theme = std::make_unique<ui::ThemeManager>();
        ASSERT_TRUE(house->lockDb(house));
    }
    void TearDown() override
    {
        if (house->getLockStatus() != 0)
            house->unlockDb(house, false);
        m_theme.reset();
        ui::setStateStore(nullptr);
        NewSheetScene::TearDown();
    }

private:
    TarvikConfig m_state{folder.file("state")};
    std::unique_ptr<ui::ThemeManager> m_theme;
};

using Dialog = CCreateNewSheetDialog;

TEST_F(NewSheetDialogTest, FieldsHaveTheirLimitsAndTheLabelsTellFolderAndTemplate)
{
    Dialog dialog(nullptr, ground);
    ASSERT_TRUE(dialog.Create());
    EXPECT_EQ(dialog.Item<QLineEdit>(Dialog::kSheetNumber)->maxLength(), 32);
    EXPECT_EQ(dialog.Item<QLineEdit>(Dialog::kTitle)->maxLength(), 64);
    EXPECT_GT(dialog.Item<QLineEdit>(Dialog::kFileName)->maxLength(), 260);
    EXPECT_EQ(dialog.GetDlgItemText(Dialog::kFolder), path("sheets"));
    EXPECT_EQ(dialog.GetDlgItemText(Dialog::kTemplate), u"A1(" + path("house.dwt") + u")");
    EXPECT_FALSE(dialog.IsDlgButtonChecked(Dialog::kOpen));
    EXPECT_EQ(dialog.GetHelpTopic(), u"SHEETSET_DIA03");
}

TEST_F(NewSheetDialogTest, TheFileNameFollowsNumberAndTitleUntilItIsClicked)
{
    Dialog dialog(nullptr, ground);
    ASSERT_TRUE(dialog.Create());
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    type(dialog, Dialog::kTitle, "Plan");
    EXPECT_EQ(dialog.GetDlgItemText(Dialog::kFileName), u"Plan");
    type(dialog, Dialog::kSheetNumber, "A-01");
    EXPECT_EQ(dialog.GetDlgItemText(Dialog::kFileName), u"A-01 Plan");
    keep(dialog, "dialog-new-sheet.png",
         {{Dialog::kFolder, u"/projects/house/sheets"},
          {Dialog::kTemplate, u"ISO A1(/projects/house/ISO sheets.dwt)"}});
    dialog.Item<QLineEdit>(Dialog::kFileName)->setFocus();
    type(dialog, Dialog::kSheetNumber, "A-02");
    EXPECT_EQ(dialog.GetDlgItemText(Dialog::kFileName), u"A-01 Plan");
}

TEST_F(NewSheetDialogTest, OkMakesDrawingAndSheet)
{
    Dialog dialog(nullptr, ground);
    whenWaiting([&] {
        type(dialog, Dialog::kSheetNumber, "2");
        type(dialog, Dialog::kTitle, "Section");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    EXPECT_EQ(dialog.DoModal(), text::kIdOk);
    ASSERT_TRUE(dialog.GetSheet());
    EXPECT_EQ(dialog.GetSheet()->getTitle(), u"Section");
    EXPECT_EQ(drawings(), std::vector<std::string>{"2 Section.dwg"});
}

TEST_F(NewSheetDialogTest, TheBoxThatOpensTheDrawingStandsAsItWasLeftAtTheLastOk)
{
    Dialog first(nullptr, ground);
    whenWaiting([&] {
        first.CheckDlgButton(Dialog::kOpen, true);
        type(first, Dialog::kTitle, "Section");
        press(first, text::kIdOk);
    });
    EXPECT_EQ(first.DoModal(), text::kIdOk);
    Dialog second(nullptr, ground);
    ASSERT_TRUE(second.Create());
    EXPECT_TRUE(second.IsDlgButtonChecked(Dialog::kOpen));
}

TEST_F(NewSheetDialogTest, ARefusalLeavesItOpenOnTheFieldThatIsWrong)
{
    Dialog dialog(nullptr, ground);
    whenWaiting([&] {
        QApplication::setActiveWindow(&dialog);
        press(dialog, text::kIdOk);
        EXPECT_EQ(dialog.focusWidget(), dialog.GetDlgItem(Dialog::kTitle));
        type(dialog, Dialog::kTitle, "Plan");
        type(dialog, Dialog::kSheetNumber, "1,5");
        whenWaiting([] {
            auto* told = runningDialog<CTarvUnSupportedCharDlg>();
            ASSERT_TRUE(told);
            told->reject();
        });
        press(dialog, text::kIdOk);
        EXPECT_EQ(dialog.focusWidget(), dialog.GetDlgItem(Dialog::kSheetNumber));
        EXPECT_TRUE(dialog.isVisible());
        dialog.reject();
    });
    EXPECT_EQ(dialog.DoModal(), text::kIdCancel);
    EXPECT_EQ(askedNumbers(), Numbers{498});
    EXPECT_EQ(dialog.GetSheet(), nullptr);
    EXPECT_TRUE(drawings().empty());
}

TEST_F(NewSheetDialogTest, WithoutAFolderItIsNeverShown)
{
    std::filesystem::remove(folder.path() / "sheets");
    EXPECT_EQ(Dialog(nullptr, ground).DoModal(), text::kIdCancel);
    EXPECT_EQ(askedNumbers(), Numbers{610});
}

TEST_F(NewSheetDialogTest, ASubsetThatPromptsShowsTheTemplateDialogFirst)
{
    ground->setPromptForTemplate(true);
    Dialog dialog(nullptr, ground);
    whenWaiting([&] {
        auto* choice = runningDialog<CSelectTemplateDialog>();
        ASSERT_TRUE(choice);
        EXPECT_EQ(choice->GetDlgItemText(CSelectTemplateDialog::kPath), u"") << "nothing preset";
        choice->SetDlgItemText(CSelectTemplateDialog::kPath, path("house.dwt"));
        press(*choice, text::kIdOk); // lists the layouts
        choice->Item<QListWidget>(CSelectTemplateDialog::kLayouts)->setCurrentRow(1);
        whenWaiting([&] {
            EXPECT_EQ(dialog.GetDlgItemText(Dialog::kTemplate), u"A3(" + path("house.dwt") + u")");
            dialog.reject();
        });
        press(*choice, text::kIdOk);
    });
    EXPECT_EQ(dialog.DoModal(), text::kIdCancel);
    EXPECT_EQ(ground->getDefaultTemplateLayout(), nullptr);
}

TEST_F(NewSheetDialogTest, ATemplateIsListedWithTheLayoutsThatCanBeChosen)
{
    CSelectTemplateDialog dialog;
    dialog.SetDrawingPath(path("house.dwt"));
    dialog.SetLayoutName(u"details");
    ASSERT_TRUE(dialog.Create());
    dialog.show();
    const auto* list = dialog.Item<QListWidget>(CSelectTemplateDialog::kLayouts);
    EXPECT_EQ(list->count(), 4);
    EXPECT_EQ(list->currentItem()->text(), QStringLiteral("Details"));
    keep(dialog, "dialog-select-template.png",
         {{CSelectTemplateDialog::kPath, u"/projects/house/house.dwt"}});
    whenWaiting([&] { press(dialog, text::kIdOk); });
    EXPECT_EQ(dialog.DoModal(), text::kIdOk);
    EXPECT_EQ(dialog.GetLayoutName(), u"Details");
    EXPECT_EQ(dialog.GetDrawingPath(), path("house.dwt"));
}

TEST_F(NewSheetDialogTest, ADoubleClickOnALayoutChoosesIt)
{
    CSelectTemplateDialog dialog;
    dialog.SetDrawingPath(path("house.dwt"));
    whenWaiting([&] {
        auto* list = dialog.Item<QListWidget>(CSelectTemplateDialog::kLayouts);
        const QPoint details =
            list->visualItemRect(list->findItems(QStringLiteral("Details"), Qt::MatchExactly).at(0))
                .center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, details);
        EXPECT_TRUE(dialog.isVisible());
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, details);
        if (dialog.isVisible())
            dialog.reject();
    });
    EXPECT_EQ(dialog.DoModal(), text::kIdOk);
    EXPECT_EQ(dialog.GetLayoutName(), u"Details");
    EXPECT_TRUE(askedNumbers().empty());
}

TEST_F(NewSheetDialogTest, ATypedDrawingShowsItsLayoutsBeforeOkIsTaken)
{
    CSelectTemplateDialog dialog;
    whenWaiting([&] {
        type(dialog, CSelectTemplateDialog::kPath, path("house.dwt").utf8().c_str());
        press(dialog, text::kIdOk);
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(dialog.Item<QListWidget>(CSelectTemplateDialog::kLayouts)->currentRow(), 0);
        dialog.SetDlgItemText(CSelectTemplateDialog::kPath, path("gone.dwt"));
        press(dialog, text::kIdOk);
        EXPECT_EQ(dialog.Item<QListWidget>(CSelectTemplateDialog::kLayouts)->count(), 0);
        press(dialog, text::kIdCancel);
    });
    EXPECT_EQ(dialog.DoModal(), text::kIdCancel);
    EXPECT_EQ(askedNumbers(), Numbers{515});
}

/// The file dialog, answered.
class AnsweringPrompts : public ed::UserPrompts
{
public:
    AnsweringPrompts() { ed::setUserPrompts(this); }
    ~AnsweringPrompts() override { ed::setUserPrompts(nullptr); }
    int askText(const TvString&, bool, TvString&) override { return ed::kCancelled; }
    int askFiles(const FileQuestion& question, std::vector<TvString>& out) override
    {
        asked = question;
        if (path.isEmpty())
            return ed::kCancelled;
        out = {path};
        return 5100;
    }
    void print(const TvString&) override {}
    void say(int, const std::vector<TvString>&) override {}
    FileQuestion asked;
    TvString path;
};

TEST_F(NewSheetDialogTest, BrowsingAsksForATemplateAndListsIt)
{
    AnsweringPrompts prompts;
    CSelectTemplateDialog dialog;
    ASSERT_TRUE(dialog.Create());
    dialog.show();
    press(dialog, CSelectTemplateDialog::kBrowse);
    EXPECT_EQ(dialog.GetDlgItemText(CSelectTemplateDialog::kPath), u"");
    EXPECT_EQ(prompts.asked.dialogName, u"TvSmSelectTemplateDialog");
    EXPECT_EQ(prompts.asked.extensions, (std::vector<TvString>{u"dwt", u"dwg", u"dws"}));
    prompts.path = path("house.dwt");
    press(dialog, CSelectTemplateDialog::kBrowse);
    EXPECT_EQ(dialog.GetDlgItemText(CSelectTemplateDialog::kPath), path("house.dwt"));
    EXPECT_EQ(dialog.Item<QListWidget>(CSelectTemplateDialog::kLayouts)->count(), 4);
}

} // namespace
