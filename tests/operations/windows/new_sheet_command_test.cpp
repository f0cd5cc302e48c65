// The panel's command that makes a sheet: where that goes, and what the panel shows afterwards.

#include <core/settings.h>
#include <operations_windows/create_new_sheet_dialog.h>
#include <panel/panel_commands.h>

#include "dialog_hands.h"
#include "new_sheet_scene.h"
#include "page_scene.h"
#include "program.h"

namespace {

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
        whenWaiting([title] {
            auto* dialog = runningDialog<CCreateNewSheetDialog>();
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
    host.list = nullptr; // nobody tells the page that the set was written
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
    whenWaiting([] {
        auto* dialog = runningDialog<CCreateNewSheetDialog>();
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
