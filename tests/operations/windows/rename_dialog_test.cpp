// The dialog that renames a sheet, through its own controls.

#include <operations_windows/tarv_text_length_dlg.h>
#include <operations_windows/tarv_un_supported_char_dlg.h>
#include <ui/qt_text.h>

#include "rename_dialog_scene.h"

using operations::RenameOptions;
using Dlg = CRenameAndRenumberDwgDlg;

namespace {

class RenameDialogTest : public RenameDialogScene
{
protected:
    void TearDown() override
    {
        m_dialog.reset();
        RenameDialogScene::TearDown();
    }
    Dlg& dialog(TvSmSheet* sheet)
    {
        m_dialog = std::make_unique<Dlg>(sheet, database);
        EXPECT_TRUE(m_dialog->Create());
        m_dialog->show();
        return *m_dialog;
    }
    /// Which of the checks, the two edits that follow and the walk buttons can be used.
    static std::string usable(const Dlg& dlg)
    {
        std::string all;
        for (int id = Dlg::kRenameLayout; id <= Dlg::kNextButton; ++id)
            all += dlg.GetDlgItem(id)->isEnabled() ? '1' : '0';
        for (const int id : {Dlg::kLayoutEdit, Dlg::kFileEdit})
            all += !edit(dlg, id)->isEnabled() ? '0' : edit(dlg, id)->isReadOnly() ? 'r' : 'w';
        return all;
    }
    /// Presses OK; the kind of window that came up and was closed then, by its number.
    int okAndTold(Dlg& dlg)
    {
        int told = 0;
        whenWaiting([&] {
            if (auto* text = runningDialog<CTarvTextLengthDlg>())
                told = CTarvTextLengthDlg::kNumber, text->reject();
            else if (auto* chars = runningDialog<CTarvUnSupportedCharDlg>())
                told = CTarvUnSupportedCharDlg::kNumber, chars->reject();
        });
        press(dlg, text::kIdOk);
        QApplication::processEvents();
        return told;
    }

private:
    std::unique_ptr<Dlg> m_dialog;
};

TEST_F(RenameDialogTest, ShowsTheSheetAndItsDrawingAndWhatCanBeChanged)
{
    const Dlg& dlg = dialog(plan);
    EXPECT_EQ(texts(dlg), "1|Plan|A1|plan.dwg");
    EXPECT_EQ(edit(dlg, Dlg::kFolderEdit)->text().toStdString(), folder.path().string());
    EXPECT_TRUE(edit(dlg, Dlg::kFolderEdit)->isReadOnly());
    EXPECT_EQ(usable(dlg), "101001ww");
    EXPECT_TRUE(dlg.Item<QPushButton>(Dlg::kNextButton)->isDefault());
    EXPECT_EQ(dlg.focusWidget(), dlg.GetDlgItem(Dlg::kNextButton));
    EXPECT_EQ(dlg.GetHelpTopic(), u"SHEETSET_DIA08");
    keepPicture(*dialog(stair).window(), QStringLiteral("dialog-66"));
}

TEST_F(RenameDialogTest, WithoutANextSheetOkIsTheDefault)
{
    const Dlg& dlg = dialog(stair);
    EXPECT_EQ(usable(dlg), "101010ww") << "a subset stands behind it";
    EXPECT_TRUE(dlg.Item<QPushButton>(text::kIdOk)->isDefault());
}

TEST_F(RenameDialogTest, WithBothPrefixesBothNamesFollowWhatIsTyped)
{
    RenameOptions{true, true, true, true}.store();
    const Dlg& dlg = dialog(plan);
    EXPECT_EQ(texts(dlg), "1|Plan|1 Plan|1 Plan.dwg") << "from the start";
    EXPECT_EQ(usable(dlg), "111101rr");
    type(dlg, Dlg::kNumberEdit, "12");
    EXPECT_EQ(texts(dlg), "12|Plan|12 Plan|12 Plan.dwg");
    edit(dlg, Dlg::kNumberEdit)->clear();
    EXPECT_EQ(texts(dlg), "|Plan| Plan| Plan.dwg");
    QTest::keyClick(edit(dlg, Dlg::kTitleEdit), Qt::Key_S);
    EXPECT_EQ(texts(dlg), "|Plans|Plans|Plans.dwg");
    keepPicture(*dlg.window(), QStringLiteral("dialog-66-follows"));
}

TEST_F(RenameDialogTest, UsingACheckAlsoTakesTheBlankAway)
{
    RenameOptions{true, true, true, true}.store();
    const Dlg& dlg = dialog(plan);
    edit(dlg, Dlg::kNumberEdit)->clear();
    press(dlg, Dlg::kLayoutPrefix);
    EXPECT_EQ(texts(dlg), "|Plan|Plan|Plan.dwg");
    EXPECT_EQ(usable(dlg), "111101rr");
}

TEST_F(RenameDialogTest, ANameThatFollowsNothingAnyMoreIsWhatItWas)
{
    const Dlg& dlg = dialog(plan);
    press(dlg, Dlg::kRenameLayout);
    press(dlg, Dlg::kRenameDrawing);
    EXPECT_EQ(texts(dlg), "1|Plan|Plan|Plan.dwg");
    press(dlg, Dlg::kDrawingPrefix);
    EXPECT_EQ(texts(dlg), "1|Plan|Plan|1 Plan.dwg");
    press(dlg, Dlg::kRenameLayout);
    press(dlg, Dlg::kRenameDrawing);
    EXPECT_EQ(texts(dlg), "1|Plan|A1|plan.dwg");
    EXPECT_EQ(usable(dlg), "101001ww");
}

TEST_F(RenameDialogTest, AMissingDrawingLeavesNumberAndTitle)
{
    std::filesystem::remove(folder.path() / "plan.dwg");
    RenameOptions{true, true, true, true}.store();
    Dlg& dlg = dialog(stair);
    EXPECT_EQ(texts(dlg), "2|Stair|old name|plan.dwg") << "what the set knows";
    EXPECT_EQ(usable(dlg), "00001000");
    type(dlg, Dlg::kTitleEdit, "Steps");
    EXPECT_EQ(texts(dlg), "2|Steps|old name|plan.dwg");
    press(dlg, text::kIdOk);
    EXPECT_EQ(dlg.result(), text::kIdOk);
    EXPECT_EQ(stair->getTitle(), u"Steps");
}

TEST_F(RenameDialogTest, AMissingLayoutLeavesTheFile)
{
    plan->getLayoutReference()->setHandle(u"FFFF");
    const Dlg& dlg = dialog(plan);
    EXPECT_EQ(texts(dlg), "1|Plan||plan.dwg");
    EXPECT_EQ(usable(dlg), "0010010w");
}

TEST_F(RenameDialogTest, ADrawingThatIsOpenHereLeavesTheLayout)
{
    opened("plan.dwg");
    EXPECT_EQ(usable(dialog(plan)), "100001w0");
}

TEST_F(RenameDialogTest, ADrawingThatSomebodyElseHasOpenLeavesNeither)
{
    const Held held(folder.file("plan.dwg"));
    RenameOptions{true, true, true, true}.store();
    Dlg& dlg = dialog(plan);
    EXPECT_EQ(texts(dlg), "1|Plan|A1|plan.dwg");
    EXPECT_EQ(usable(dlg), "00000100");
    type(dlg, Dlg::kNumberEdit, "7");
    press(dlg, text::kIdOk);
    EXPECT_EQ(plan->getNumber(), u"7");
}

TEST_F(RenameDialogTest, RefusalsAreToldAndTheDialogStays)
{
    Dlg& dlg = dialog(plan);
    type(dlg, Dlg::kTitleEdit, "  ");
    EXPECT_EQ(okAndTold(dlg), 118);
    type(dlg, Dlg::kTitleEdit, "a:b");
    EXPECT_EQ(okAndTold(dlg), 119);
    type(dlg, Dlg::kTitleEdit, "Plan");
    type(dlg, Dlg::kLayoutEdit, "a, b");
    EXPECT_EQ(okAndTold(dlg), 119);
    type(dlg, Dlg::kLayoutEdit, "model");
    EXPECT_EQ(okAndTold(dlg), 0);
    type(dlg, Dlg::kFileEdit, "section");
    EXPECT_EQ(okAndTold(dlg), 0);
    EXPECT_EQ(messages.numbers(), (std::vector<int>{616, 617}));
    EXPECT_TRUE(dlg.isVisible());
    EXPECT_EQ(plan->getTitle(), u"Plan");
}

TEST_F(RenameDialogTest, ADrawingThatWentMeanwhileIsShownAsMissing)
{
    Dlg& dlg = dialog(stair);
    std::filesystem::remove(folder.path() / "plan.dwg");
    type(dlg, Dlg::kFileEdit, "new.dwg");
    press(dlg, text::kIdOk);
    EXPECT_EQ(messages.numbers(), std::vector<int>{482});
    EXPECT_EQ(texts(dlg), "2|Stair|old name|plan.dwg");
    EXPECT_EQ(usable(dlg), "00001000");
    EXPECT_TRUE(dlg.isVisible());
}

TEST_F(RenameDialogTest, OkAppliesAllFourFields)
{
    Dlg& dlg = dialog(plan);
    type(dlg, Dlg::kNumberEdit, "9");
    type(dlg, Dlg::kTitleEdit, "Ground, all");
    type(dlg, Dlg::kLayoutEdit, "G");
    type(dlg, Dlg::kFileEdit, "ground");
    press(dlg, text::kIdOk);
    EXPECT_FALSE(dlg.isVisible());
    EXPECT_EQ(fileOf(stair), u"ground.dwg") << "the other sheet of the drawing follows";
    EXPECT_EQ(layoutOnDisk(plan), u"G");
    EXPECT_EQ(plan->getTitle(), u"Ground, all");
}

TEST_F(RenameDialogTest, AWalkButtonAppliesAndLeavesEvenWhenThatWasRefused)
{
    Dlg& dlg = dialog(plan);
    type(dlg, Dlg::kFileEdit, "section.dwg");
    press(dlg, Dlg::kNextButton);
    EXPECT_EQ(dlg.result(), Dlg::kNext);
    EXPECT_FALSE(dlg.isVisible());
    EXPECT_EQ(messages.numbers(), std::vector<int>{617});
    Dlg& back = dialog(stair);
    type(back, Dlg::kNumberEdit, "8");
    press(back, Dlg::kPreviousButton);
    EXPECT_EQ(back.result(), Dlg::kPrevious);
    EXPECT_EQ(stair->getNumber(), u"8");
}

TEST_F(RenameDialogTest, LongTextsCannotBeTypedAndALongerOneThatIsThereStays)
{
    const std::string longText(80, 'n');
    plan->setTitle(TvString(std::string_view(longText)));
    const Dlg& dlg = dialog(plan);
    EXPECT_EQ(edit(dlg, Dlg::kTitleEdit)->text().toStdString(), longText);
    type(dlg, Dlg::kNumberEdit, longText.c_str());
    EXPECT_EQ(edit(dlg, Dlg::kNumberEdit)->text().size(), 32);
}

TEST_F(RenameDialogTest, WithoutASheetThereIsNothingToAccept)
{
    Dlg dlg(nullptr, nullptr);
    ASSERT_TRUE(dlg.Create());
    EXPECT_FALSE(dlg.GetDlgItem(text::kIdOk)->isEnabled());
    EXPECT_FALSE(dlg.ApplyChanges());
}

} // namespace
