// Which set the page shows, and what of its display is remembered.

#include <panel/sheet_list_page.h>

#include <ed/system_variables.h>
#include <panel/tree_mouse.h>

#include "blocking_files.h"
#include "panel_scene.h"

namespace {

using Labels = std::vector<TvString>;
using Names = std::vector<std::string>;

class NotingWindow : public panel::PageWindow
{
public:
    void suspendPainting() override { told.push_back("still"); }
    void resumePainting() override { told.push_back("paint"); }
    void enableControls(bool enabled) override { told.push_back(enabled ? "enable" : "disable"); }
    void redrawSetBox() override { told.push_back("box"); }
    void showPublishFormat(int format) override
    {
        told.push_back("format " + std::to_string(format));
    }
    panel::TreeItem* firstVisible() const override { return top; }
    void scrollToTop(panel::TreeItem* item) override { scrolledTo = item; }
    void startTimer(int id, int) override { told.push_back("start " + std::to_string(id)); }
    void stopTimer(int id) override { told.push_back("stop " + std::to_string(id)); }
    void wantIdleTime() override { told.push_back("idle"); }
    bool has(const char* what) const { return std::ranges::find(told, what) != told.end(); }

    Names told;
    panel::TreeItem* top = nullptr;
    panel::TreeItem* scrolledTo = nullptr;
};

class SheetListPageTest : public PanelTest
{
protected:
    void SetUp() override
    {
        PanelTest::SetUp();
        status(0);
    }
    static void status(std::int16_t mode) { EXPECT_TRUE(ed::setVariable(u"SSMSHEETSTATUS", mode)); }
    /// As the session makes a set the current one.
    void show(TvSmDatabase* shown, bool remember = true)
    {
        SetCurrentDatabase(shown);
        page.SwitchDatabase(remember);
    }
    panel::TreeItem* at(const TvSmPersist* object) { return list.itemOf(handleOf(object)); }
    Labels selectedLabels()
    {
        Labels labels;
        for (panel::TreeItem* item : list.GetSelectedItems())
            labels.push_back(list.labelOf(*item));
        return labels;
    }

    base::ManualClock clock;
    NotingWindow window;
    panel::SheetListPage page{window, clock};
    panel::SheetTree& list = page.tree();
};

TEST_F(SheetListPageTest, WithoutASetEverythingIsDisabledAndEmpty)
{
    EXPECT_EQ(window.told, Names{"disable"});
    show(nullptr);
    EXPECT_EQ(window.told, (Names{"disable", "still", "disable", "paint", "box"}));
    EXPECT_EQ(list.root(), nullptr);
    EXPECT_EQ(page.GetSelectedComponent(), nullptr);
    page.ReloadDatabase();
    page.SelectNextSheet();
    page.UpdateStatusImages();
    EXPECT_EQ(list.root(), nullptr);
}

TEST_F(SheetListPageTest, AFirstDisplayOpensTheRootAndTheFirstLevelAndSelectsTheRoot)
{
    show(database);
    EXPECT_TRUE(list.root()->isExpanded());
    EXPECT_TRUE(at(ground)->isExpanded());
    EXPECT_TRUE(at(roof)->isExpanded());
    EXPECT_FALSE(at(details)->isExpanded());
    EXPECT_EQ(selectedLabels(), Labels{u"House"});
    EXPECT_EQ(list.caret(), list.root());
    EXPECT_EQ(list.anchor(), list.root());
    EXPECT_TRUE(window.has("enable"));
}

TEST_F(SheetListPageTest, OfASetWithoutSubsetsTheSheetsHangBelowTheOpenRoot)
{
    TvSmDatabase* flat = made("flat.dst");
    ASSERT_TRUE(flat->lockDb(flat));
    flat->getSheetSet()->setName(u"Flat");
    const TvSmSheet* first = addSheet(flat->getSheetSet(), u"1", u"Plan");
    addSheet(flat->getSheetSet(), u"2", u"Section");
    ASSERT_TRUE(flat->unlockDb(flat, true));
    show(flat);
    EXPECT_EQ(outlineOf(list, list.root()), "Flat\n 1 - Plan\n 2 - Section\n");
    EXPECT_TRUE(list.root()->isExpanded());
    EXPECT_EQ(list.itemOf(handleOf(first))->parent(), list.root());
    EXPECT_EQ(selectedLabels(), Labels{u"Flat"});
    show(nullptr, false);
    manager().closeDatabase(flat);
}

TEST_F(SheetListPageTest, ASetThatIsShownAgainLooksAsItDid)
{
    TvSmDatabase* other = made("other.dst");
    show(database);
    list.setExpanded(at(ground), false);
    list.setExpanded(at(details), true);
    list.selectOnly(at(cover));
    window.top = at(roof);
    show(other);
    window.top = nullptr;
    show(database);
    EXPECT_FALSE(at(ground)->isExpanded());
    EXPECT_TRUE(at(details)->isExpanded());
    EXPECT_TRUE(at(roof)->isExpanded());
    EXPECT_EQ(selectedLabels(), Labels{u"Cover"});
    EXPECT_EQ(list.caret(), at(cover));
    EXPECT_EQ(window.scrolledTo, at(roof));
    manager().closeDatabase(other);
}

TEST_F(SheetListPageTest, AClosedSetIsForgotten)
{
    show(database);
    list.setExpanded(at(ground), false);
    show(nullptr, false);
    EXPECT_EQ(page.memory().find(database->getFileName()), nullptr);
    show(database);
    EXPECT_TRUE(at(ground)->isExpanded());
}

TEST_F(SheetListPageTest, FilesThatDifferInCaseAreRememberedApart)
{
    panel::ViewMemory memory;
    list.setDatabase(database);
    list.Merge();
    memory.remember(u"/plans/a.dst", list, nullptr);
    EXPECT_TRUE(memory.find(u"/plans/a.dst"));
    EXPECT_FALSE(memory.find(u"/plans/A.dst"));
}

TEST_F(SheetListPageTest, TheMemoryOfASelectionHasTheCaretAmongIt)
{
    panel::ViewMemory memory;
    list.setDatabase(database);
    list.Merge();
    list.SelectItem(at(plan));
    list.setCaret(at(roof));
    memory.remember(u"a", list, at(cover));
    EXPECT_EQ(memory.find(u"a")->selection, (std::set<TvString>{handleOf(plan), handleOf(roof)}));
    EXPECT_EQ(memory.find(u"a")->firstVisible, handleOf(cover));
    EXPECT_EQ(memory.find(u"a")->expanded.size(), 4u) << "sheets have nothing to open";
}

TEST_F(SheetListPageTest, ANewSubsetIsOpenAtTheFirstLevelAndOneDeeperIsNot)
{
    show(database);
    TvSmSubset *first = nullptr, *deeper = nullptr;
    change([&](TvSmSheetSet& top) {
        first = addSubset(&top, u"First");
        deeper = addSubset(ground, u"Deeper");
    });
    page.ReloadDatabase();
    EXPECT_TRUE(at(first)->isExpanded());
    EXPECT_FALSE(at(deeper)->isExpanded());
    show(nullptr);
    show(database);
    EXPECT_TRUE(at(first)->isExpanded());
    EXPECT_FALSE(at(deeper)->isExpanded());
}

TEST_F(SheetListPageTest, AReloadTellsOnlyWhatDiffersAndKeepsTheView)
{
    show(database);
    list.selectOnly(at(plan));
    for (panel::TreeItem* item : {at(plan), at(cover)})
        list.labelOf(*item);
    NotingTree noting(list);
    change([&](TvSmSheetSet&) { plan->setNumber(u"0"); });
    page.ReloadDatabase();
    EXPECT_EQ(noting.told, Names{"item " + name(plan)});
    EXPECT_EQ(selectedLabels(), Labels{u"0 - Plan"});
    EXPECT_EQ(window.told.back(), "box");
}

TEST_F(SheetListPageTest, AReloadWithoutThisSetChangesNothing)
{
    show(database);
    window.told.clear();
    SetCurrentDatabase(nullptr);
    page.ReloadDatabase();
    EXPECT_EQ(page.displayedDatabase(), database);
    EXPECT_TRUE(list.root());
}

TEST_F(SheetListPageTest, ThePublishFormatIsReadWithTheTree)
{
    for (const auto& [stored, shown] : {std::pair{0, 1}, {1, 3}, {2, 2}}) {
        change([stored = stored](TvSmSheetSet& set) {
            set.getPublishOptions()->setEplotFormat(stored);
        });
        show(database);
        EXPECT_EQ(page.publishFormat(), shown);
    }
    change([](TvSmSheetSet& set) { set.getPublishOptions()->setEplotFormat(9); });
    page.ReloadDatabase();
    EXPECT_EQ(page.publishFormat(), 2) << "what is none leaves it";
}

TEST_F(SheetListPageTest, SelectedObjectsAreInTheOrderOfTheTreeAndNullWhenTheyAreGone)
{
    show(database);
    list.ClearSelection();
    for (const TvSmPersist* each : std::initializer_list<const TvSmPersist*>{cover, stair, plan})
        list.SelectItem(at(each));
    list.setCaret(at(stair));
    EXPECT_EQ(page.GetSelectedComponent(), stair);
    change([&](TvSmSheetSet&) { details->removeSheet(stair); });
    std::vector<TvSmComponent*> objects;
    page.GetSelectedComponents(objects);
    EXPECT_EQ(objects, (std::vector<TvSmComponent*>{plan, nullptr, cover}));
    EXPECT_EQ(page.GetSelectedComponent(), nullptr);
    std::vector<TvSmSheet*> sheets;
    page.GetSelectedSheets(sheets);
    EXPECT_EQ(sheets, (std::vector<TvSmSheet*>{plan, cover}));
}

TEST_F(SheetListPageTest, SelectedSheetsAreThoseBelowSubsetsAndTheWholeSet)
{
    change([&](TvSmSheetSet&) { stair->setExcludeFromPublish(true); });
    show(database);
    std::vector<TvSmSheet*> sheets;
    page.GetSelectedSheets(sheets);
    EXPECT_EQ(sheets.size(), 4u);
    list.selectOnly(at(ground));
    sheets.clear();
    page.GetSelectedSheets(sheets);
    EXPECT_EQ(sheets, (std::vector<TvSmSheet*>{plan, stair, section})) << "excluded ones too";
}

TEST_F(SheetListPageTest, TheNextSheetIsLookedForAmongItsSiblingsOnly)
{
    show(database);
    list.selectOnly(at(plan));
    page.SelectNextSheet();
    EXPECT_EQ(selectedLabels(), Labels{u"3 - Section"}) << "over the subset";
    page.SelectNextSheet();
    EXPECT_EQ(list.caret(), at(section));
    page.SelectPreviousSheet();
    EXPECT_EQ(selectedLabels(), Labels{u"1 - Plan"});
    page.SelectPreviousSheet();
    EXPECT_EQ(list.caret(), at(plan));
}

TEST_F(SheetListPageTest, StatusImagesFollowTheVariableAndLongPassesWaitForIdleTime)
{
    show(database);
    EXPECT_EQ(at(plan)->image(), core::SheetImage::ImageSheet);
    status(1);
    page.RebuildTree();
    EXPECT_EQ(at(plan)->image(), core::SheetImage::ImageSheetMissing);
    EXPECT_EQ(at(ground)->image(), core::SheetImage::ImageSubsetBad);
    page.statusTimer().SetSheetStatusMode(0);
    EXPECT_EQ(at(plan)->image(), core::SheetImage::ImageSheet);
    EXPECT_EQ(at(ground)->image(), core::SheetImage::ImageSubset);
    EXPECT_FALSE(window.has("idle")) << "a small set is done at once";
}

/// Each look at it takes as long as a slice.
class SlowClock : public base::ManualClock
{
public:
    std::int64_t steadyNs() override
    {
        advance(std::chrono::milliseconds(core::StatusPass::kSliceMs));
        return ManualClock::steadyNs();
    }
};

TEST_F(SheetListPageTest, APassGoesOnInIdleTimeUntilTheTreeChanges)
{
    SlowClock slow;
    panel::SheetListPage slowPage(window, slow);
    SetCurrentDatabase(database);
    slowPage.SwitchDatabase(true);
    slowPage.UpdateStatusImages();
    EXPECT_TRUE(window.has("idle"));
    EXPECT_FALSE(slowPage.workOnStatus());
    slowPage.SwitchDatabase(true);
    EXPECT_TRUE(slowPage.workOnStatus()) << "it was given up";
    slowPage.UpdateStatusImages();
    int slices = 0;
    while (!slowPage.workOnStatus())
        ++slices;
    EXPECT_EQ(slowPage.tree().itemOf(handleOf(cover))->image(),
              core::SheetImage::ImageSheetMissing);
    EXPECT_EQ(slices, 5) << "seven items, the first of them at once, the last ends it";
}

TEST_F(SheetListPageTest, APassThatTheUserAskedForGoesOnAfterAReload)
{
    SlowClock slow;
    panel::SheetListPage slowPage(window, slow);
    SetCurrentDatabase(database);
    slowPage.SwitchDatabase(true);
    slowPage.UpdateStatusImages();
    change([&](TvSmSheetSet&) { ground->removeSheet(section); });
    slowPage.ReloadDatabase();
    EXPECT_FALSE(slowPage.workOnStatus());
    while (!slowPage.workOnStatus()) {
    }
    EXPECT_EQ(slowPage.tree().itemOf(handleOf(cover))->image(),
              core::SheetImage::ImageSheetMissing);
}

TEST_F(SheetListPageTest, WhileAFolderDoesNotAnswerThePageAsksNothingAndGoesOn)
{
    change([this](TvSmSheetSet&) { setLayout(cover, folder.file("cover.dwg"), u"1E", u"A1"); });
    folder.write("cover.dwg", "a drawing as far as its name goes");
    BlockingFiles away(std::this_thread::get_id());
    panel::SheetListPage patient(window, clock, away);
    SetCurrentDatabase(database);
    patient.SwitchDatabase(true);
    patient.tree().setImage(handleOf(cover), core::SheetImage::ImageSheetMissing);
    for (int i = 0; i < 10; ++i)
        patient.UpdateStatusImages();
    away.waitForQuestion();
    EXPECT_TRUE(window.has("idle"));
    EXPECT_FALSE(patient.workOnStatus());
    EXPECT_EQ(away.askedByForbidden(), 0) << "the thread of the windows never asks the disk";
    EXPECT_EQ(away.asked(), 1) << "and those who wait do not pile up";
    EXPECT_EQ(patient.tree().itemOf(handleOf(cover))->image(), core::SheetImage::ImageSheetMissing);
    away.answer();
    while (!patient.workOnStatus()) {
    }
    EXPECT_EQ(patient.tree().itemOf(handleOf(cover))->image(), core::SheetImage::ImageSheet);
}

TEST_F(SheetListPageTest, TheTimerStopsBeforeARebuildAndStartsBehindIt)
{
    status(2);
    show(database);
    EXPECT_TRUE(page.statusTimer().isRunning());
    window.told.clear();
    page.RebuildTree();
    EXPECT_EQ(window.told.front(), "stop 258");
    EXPECT_TRUE(window.has("start 258"));
}

TEST_F(SheetListPageTest, AllBelowTheRootOpensAndCloses)
{
    show(database);
    page.expandAll(false);
    EXPECT_TRUE(page.isCollapsed());
    EXPECT_FALSE(at(ground)->isExpanded());
    EXPECT_TRUE(list.root()->isExpanded());
    page.expandAll(true);
    EXPECT_FALSE(page.isCollapsed());
    EXPECT_TRUE(at(details)->isExpanded());
}

// Mouse buttons

class TreeMouseTest : public SheetListPageTest
{
protected:
    void SetUp() override
    {
        SheetListPageTest::SetUp();
        show(database);
        list.ExpandAll(true);
        list.selectOnly(at(plan));
        list.setAnchor(at(plan));
    }
    void click(const TvSmPersist* object, bool withCtrl = false, bool withShift = false)
    {
        mouse.leftDown(at(object), withCtrl, withShift);
        mouse.leftUp(false);
    }
    panel::TreeMouse mouse{list};
};

TEST_F(TreeMouseTest, AClickSelectsAlone)
{
    click(cover);
    EXPECT_EQ(selectedLabels(), Labels{u"Cover"});
    EXPECT_EQ(list.caret(), at(cover));
    EXPECT_EQ(list.anchor(), at(cover));
    click(nullptr);
    EXPECT_EQ(selectedLabels(), Labels{u"Cover"});
}

TEST_F(TreeMouseTest, CtrlAddsAndTakesAway)
{
    click(cover, true);
    EXPECT_EQ(selectedLabels(), (Labels{u"1 - Plan", u"Cover"}));
    click(plan, true);
    EXPECT_EQ(selectedLabels(), Labels{u"Cover"});
    EXPECT_EQ(list.anchor(), at(plan)) << "ranges begin where they did";
}

TEST_F(TreeMouseTest, ShiftSelectsARangeFromTheOriginWhichStays)
{
    click(section, false, true);
    EXPECT_EQ(selectedLabels(), (Labels{u"1 - Plan", u"2 - Stair", u"3 - Section"}));
    click(stair, false, true);
    EXPECT_EQ(selectedLabels(), (Labels{u"1 - Plan", u"2 - Stair"}));
    EXPECT_EQ(list.anchor(), at(plan));
}

TEST_F(TreeMouseTest, APressOnASelectedItemWaitsForTheButtonToComeUp)
{
    click(cover, true);
    mouse.leftDown(at(cover), false, false);
    EXPECT_EQ(list.selectedCount(), 2) << "it could become a drag";
    mouse.leftUp(false);
    EXPECT_EQ(selectedLabels(), Labels{u"Cover"});
}

TEST_F(TreeMouseTest, ADropOrTheOtherButtonLeavesTheSelection)
{
    click(cover, true);
    mouse.leftDown(at(cover), false, false);
    mouse.leftUp(true);
    EXPECT_EQ(list.selectedCount(), 2);
    mouse.leftDown(at(cover), false, false);
    mouse.forgetDeferredClick();
    mouse.leftUp(false);
    EXPECT_EQ(list.selectedCount(), 2);
}

TEST_F(TreeMouseTest, WithNothingSelectedAClickBringsTheOriginBack)
{
    click(plan, true);
    ASSERT_EQ(list.selectedCount(), 0);
    click(cover);
    EXPECT_EQ(selectedLabels(), Labels{u"1 - Plan"});
    click(plan, true);
    list.setAnchor(nullptr);
    click(cover);
    EXPECT_EQ(selectedLabels(), Labels{u"Cover"}) << "there was none";
}

TEST_F(TreeMouseTest, TheRightButtonKeepsASelectionThatItIsIn)
{
    click(cover, true);
    mouse.rightDown(at(cover), false, false);
    EXPECT_EQ(list.selectedCount(), 2);
    EXPECT_EQ(list.caret(), at(cover));
    mouse.rightDown(at(section), false, false);
    EXPECT_EQ(selectedLabels(), Labels{u"3 - Section"});
    mouse.rightDown(at(cover), true, false);
    mouse.rightDown(at(cover), false, true);
    mouse.rightDown(nullptr, false, false);
    EXPECT_EQ(selectedLabels(), Labels{u"3 - Section"});
}

} // namespace
