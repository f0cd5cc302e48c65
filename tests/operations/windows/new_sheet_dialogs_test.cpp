// The dialogs that make a sheet and choose its template, and the panel's command.

#include <QCheckBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include <ed/user_prompts.h>
#include <operations_windows/create_new_sheet_dialog.h>
#include <operations_windows/select_template_dialog.h>
#include <operations_windows/tarv_un_supported_char_dlg.h>
#include <panel/panel_commands.h>

#include "new_sheet_scene.h"
#include "page_scene.h"

namespace {

using Numbers = std::vector<int>;

void whenRunning(std::function<void()> step)
{
    QTimer::singleShot(0, qApp, std::move(step));
}

template <class T>
T* running()
{
    return dynamic_cast<T*>(QApplication::activeModalWidget());
}

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

void type(CTvUiDialog& dialog, int id, const char* text)
{
    auto* edit = dialog.Item<QLineEdit>(id);
    edit->setFocus();
    edit->clear();
    QTest::keyClicks(edit, QString::fromLatin1(text));
}

void press(CTvUiDialog& dialog, int id)
{
    QTest::mouseClick(dialog.Item<QPushButton>(id), Qt::LeftButton);
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
    whenRunning([&] {
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
    whenRunning([&] {
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
    whenRunning([&] {
        QApplication::setActiveWindow(&dialog);
        press(dialog, text::kIdOk);
        EXPECT_EQ(dialog.focusWidget(), dialog.GetDlgItem(Dialog::kTitle));
        type(dialog, Dialog::kTitle, "Plan");
        type(dialog, Dialog::kSheetNumber, "1,5");
        whenRunning([] {
            auto* told = running<CTarvUnSupportedCharDlg>();
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
    whenRunning([&] {
        auto* choice = running<CSelectTemplateDialog>();
        ASSERT_TRUE(choice);
        EXPECT_EQ(choice->GetDlgItemText(CSelectTemplateDialog::kPath), u"") << "nothing preset";
        choice->SetDlgItemText(CSelectTemplateDialog::kPath, path("house.dwt"));
        press(*choice, text::kIdOk); // lists the layouts
        choice->Item<QListWidget>(CSelectTemplateDialog::kLayouts)->setCurrentRow(1);
        whenRunning([&] {
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
    whenRunning([&] { press(dialog, text::kIdOk); });
    EXPECT_EQ(dialog.DoModal(), text::kIdOk);
    EXPECT_EQ(dialog.GetLayoutName(), u"Details");
    EXPECT_EQ(dialog.GetDrawingPath(), path("house.dwt"));
}

TEST_F(NewSheetDialogTest, ADoubleClickOnALayoutChoosesIt)
{
    CSelectTemplateDialog dialog;
    dialog.SetDrawingPath(path("house.dwt"));
    whenRunning([&] {
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
    whenRunning([&] {
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

// --- the panel's command

class NewSheetCommandTest : public PageTest
{
protected:
    void SetUp() override
    {
        PageTest::SetUp();
        std::filesystem::create_directory(folder.path() / "sheets");
        DrawingMaker maker;
        maker.paper(u"A1");
        maker.saveAs(folder.file("house.dwt"));
        change(database, [this](TvSmSheetSet& top) {
            NewSheetScene::setTemplate(top, folder.file("house.dwt"), u"A1");
            NewSheetScene::setFolder(top, folder.file("sheets"));
        });
        settle();
    }
    /// Runs the command with the caret there, and OK for a sheet of that title, or Cancel.
    void newSheetAt(const TvSmPersist* caret, const char* title)
    {
        items().setCaret(at(caret));
        whenRunning([title] {
            auto* dialog = running<CCreateNewSheetDialog>();
            ASSERT_TRUE(dialog);
            if (!title)
                return dialog->reject();
            type(*dialog, CCreateNewSheetDialog::kTitle, title);
            press(*dialog, text::kIdOk);
        });
        dlg->commands().run(panel::kNewSheet);
        settle();
    }
};

TEST_F(NewSheetCommandTest, WithASheetAsTheCaretTheNewOneLandsRightBehindIt)
{
    newSheetAt(plan, "Mezzanine");
    EXPECT_EQ(childrenOf(ground),
              (std::vector<TvString>{u"Plan", u"Mezzanine", u"Details", u"Section"}));
    EXPECT_EQ(database->getLockStatus(), 0);
    EXPECT_FALSE(documents().documentOf(folder.file("sheets/Mezzanine.dwg")))
        << "nobody asked for that";
    newSheetAt(section, "Last");
    EXPECT_EQ(childrenOf(ground).back(), u"Last");
}

TEST_F(NewSheetCommandTest, WithASubsetAsTheCaretItLandsAtItsEndAndAnEmptyOneOpens)
{
    newSheetAt(roof, "Ridge");
    EXPECT_EQ(childrenOf(roof), std::vector<TvString>{u"Ridge"});
    EXPECT_TRUE(at(roof)->isExpanded());
    newSheetAt(database->getSheetSet(), "Index");
    EXPECT_EQ(childrenOf(database->getSheetSet()).back(), u"Index");
    TvSmSheetSetMgr other;
    TvSmDatabase* written = other.openDatabase(folder.file("house.dst"), true, 0);
    ASSERT_TRUE(written);
    EXPECT_EQ(childrenOf(written->getSheetSet()).back(), u"Index") << "on disk, too";
}

TEST_F(NewSheetCommandTest, CancelLeavesTheSetAsItWasAndFree)
{
    const std::string before = Outline::of(database);
    newSheetAt(ground, nullptr);
    EXPECT_EQ(Outline::of(database), before);
    EXPECT_EQ(database->getLockStatus(), 0);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path() / "sheets"));
}

TEST_F(NewSheetCommandTest, TheCaretIsWhereTheNextRangeBegins)
{
    items().ClearSelection(); // what is selected would begin it, once the set is read again
    items().setAnchor(at(cover));
    newSheetAt(plan, nullptr);
    EXPECT_EQ(items().anchor(), at(cover)) << "nothing was made";
    newSheetAt(plan, "Mezzanine");
    EXPECT_EQ(items().anchor(), at(plan));
}

TEST_F(NewSheetCommandTest, ANeighbourThatSomebodyPutElsewhereIsNoneAnyMoreAndTheSheetGoesLast)
{
    changeElsewhere([this](TvSmDatabase& copy) {
        auto* neighbour = inCopy<TvSmSubset>(copy, details);
        EXPECT_TRUE(inCopy<TvSmSubset>(copy, roof)->insertComponent(neighbour, nullptr));
    });
    newSheetAt(plan, "Mezzanine");
    EXPECT_EQ(childrenOf(ground), (std::vector<TvString>{u"Plan", u"Section", u"Mezzanine"}));
    EXPECT_EQ(childrenOf(roof), std::vector<TvString>{u"Details"});
}

TEST_F(NewSheetCommandTest, TheTreeShowsTheNewSheetAndTheDrawingsAreLookedAt)
{
    set(u"SSMSHEETSTATUS", 1);
    dlg->page().ResetStatusImages();
    newSheetAt(plan, nullptr);
    finishStatus();
    EXPECT_EQ(at(cover)->image(), core::SheetImage::ImageSheet) << "nothing was made";
    newSheetAt(plan, "Mezzanine");
    EXPECT_NE(rows().find("  1 - Plan\n  Mezzanine\n"), std::string::npos) << rows();
    dlg->page().ResetStatusImages();
    host.list = nullptr; // nobody tells the page that the set was written
    newSheetAt(plan, "Loft");
    finishStatus();
    EXPECT_EQ(at(cover)->image(), core::SheetImage::ImageSheetMissing);
}

TEST_F(NewSheetCommandTest, WithoutADocumentManagerTheSheetIsMadeAndNothingIsOpened)
{
    WriteConfigInt(u"UserInterfaceSettings\\CreateNewSheetDialog\\OpenInEditor", 1);
    closeDocuments();
    newSheetAt(ground, "Attic");
    EXPECT_EQ(childrenOf(ground).back(), u"Attic");
    EXPECT_EQ(database->getLockStatus(), 0);
}

TEST_F(NewSheetCommandTest, TheDrawingIsOpenedAfterwardsIfTheUserWantsThat)
{
    items().setCaret(at(ground));
    whenRunning([] {
        auto* dialog = running<CCreateNewSheetDialog>();
        ASSERT_TRUE(dialog);
        type(*dialog, CCreateNewSheetDialog::kTitle, "Attic");
        dialog->CheckDlgButton(CCreateNewSheetDialog::kOpen, true);
        press(*dialog, text::kIdOk);
    });
    dlg->commands().run(panel::kNewSheet);
    settle();
    EXPECT_TRUE(documents().documentOf(folder.file("sheets/Attic.dwg")));
}

} // namespace
