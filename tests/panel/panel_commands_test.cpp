// What the page's commands do.

#include <base/edit_lock.h>
#include <core/tip_style.h>
#include <ed/command_line.h>
#include <ed/layouts.h>
#include <ed/user_prompts.h>
#include <panel/handler_installer.h>
#include <panel/open_sheets.h>
#include <panel/recover_drawing.h>

#include "command_scene.h"

namespace {

using Ids = std::vector<int>;
using Labels = std::vector<TvString>;

class NotingPrompts : public ed::UserPrompts
{
public:
    NotingPrompts() { ed::setUserPrompts(this); }
    ~NotingPrompts() override { ed::setUserPrompts(nullptr); }
    int askText(const TvString&, bool, TvString&) override { return ed::kCancelled; }
    int askFiles(const FileQuestion&, std::vector<TvString>&) override { return ed::kCancelled; }
    void print(const TvString&) override {}
    void say(int text, const std::vector<TvString>& arguments) override
    {
        said.push_back(text);
        what = arguments;
    }
    Ids said;
    Labels what;
};

class PanelCommandsTest : public CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        change(database, [this](TvSmSheetSet& top) {
            top.setName(u"House");
            ground = addSubset(&top, u"Ground");
            plan = addSheet(ground, u"1", u"Plan");
            details = addSubset(ground, u"Details");
            stair = addSheet(details, u"2", u"Stair");
            section = addSheet(ground, u"3", u"Section");
            roof = addSubset(&top, u"Roof");
            cover = addSheet(&top, u"", u"Cover");
        });
        show();
    }
    Labels selectedLabels()
    {
        Labels labels;
        for (panel::TreeItem* item : page.tree().GetSelectedItems())
            labels.push_back(page.tree().labelOf(*item));
        return labels;
    }
    /// A drawing with two papers, for a sheet.
    void drawingFor(TvSmSheet* sheet, const char* name, const TvChar* layout = u"A1")
    {
        DrawingMaker maker;
        maker.paper(u"A1").paper(u"A2").saveAs(folder.file(name));
        change(database, [&](TvSmSheetSet&) {
            setLayout(sheet, folder.file(name), maker.handleOf(layout), layout);
        });
    }

    TvSmSubset *ground = nullptr, *details = nullptr, *roof = nullptr;
    TvSmSheet *plan = nullptr, *stair = nullptr, *section = nullptr, *cover = nullptr;
    NotingPrompts prompts;
};

TEST_F(PanelCommandsTest, AnInstallerPutsItsHandlersIntoPagesMadeFromThenOnUntilItGoes)
{
    std::vector<std::string> order;
    const auto installs = [&](const char* name) {
        return [&order, name](panel::PanelCommands& made) {
            made.setHandler(panel::kNewSheet,
                            [&order, name](panel::SheetListPage&) { order.push_back(name); });
        };
    };
    const auto runIn = [&](panel::PanelCommands& made) {
        order.clear();
        made.run(panel::kNewSheet);
        return order;
    };
    {
        const panel::HandlerInstaller nothing({});
        const panel::HandlerInstaller first(installs("first"));
        const panel::HandlerInstaller second(installs("second"));
        panel::PanelCommands made{page, menus, program};
        EXPECT_EQ(runIn(made), (std::vector<std::string>{"second"})); // the later one won
        EXPECT_TRUE(runIn(commands).empty()) << "a page that was there already";
    }
    panel::PanelCommands later{page, menus, program};
    EXPECT_TRUE(runIn(later).empty()) << "the installers are gone";
}

TEST_F(PanelCommandsTest, ANumberThatIsNoneGoesToTheDefaultHandler)
{
    for (const int id : {0, -1, 8, 9, 38, 39, 44, 45, 46, 59, 99, 100, 5000})
        EXPECT_FALSE(commands.run(id)) << id;
    EXPECT_TRUE(prompts.said.empty());
    EXPECT_STREQ(panel::PanelCommands::nameOf(24), "OnNewSheet");
    EXPECT_EQ(panel::PanelCommands::nameOf(44), nullptr);
}

TEST_F(PanelCommandsTest, WhatNobodyPutInSaysThatItIsNotAvailableYet)
{
    EXPECT_TRUE(commands.run(24));
    EXPECT_EQ(prompts.said, Ids{8900});
    EXPECT_EQ(prompts.what, Labels{u"New Sheet"});
    int runs = 0;
    commands.setHandler(24, [&](panel::SheetListPage&) { ++runs; });
    EXPECT_TRUE(commands.run(24));
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(prompts.said.size(), 1u);
}

TEST_F(PanelCommandsTest, AFormatIsKeptInTheSetUnlessItIsLocked)
{
    constexpr long kStored[] = {0, 2, 1};
    for (int id = 1; id <= 3; ++id) {
        commands.run(id);
        EXPECT_EQ(database->getSheetSet()->getPublishOptions()->getEplotFormat(), kStored[id - 1]);
        EXPECT_EQ(page.publishFormat(), id);
    }
    ASSERT_TRUE(database->lockDb(database));
    commands.run(1);
    EXPECT_EQ(page.publishFormat(), 1);
    EXPECT_EQ(database->getSheetSet()->getPublishOptions()->getEplotFormat(), 1);
    ASSERT_TRUE(database->unlockDb(database, false));
}

TEST_F(PanelCommandsTest, RemovingSeveralRemovesTheSheetsOnly)
{
    select({plan, cover, details});
    answers.answer = TvUserMessages::Answer::Ok;
    commands.run(32);
    ASSERT_EQ(answers.asked.size(), 1u);
    EXPECT_EQ(answers.asked[0].text, 347);
    EXPECT_EQ(answers.asked[0].caption, 346);
    EXPECT_EQ(answers.asked[0].arguments, (Labels{u"2", u"House"}));
    EXPECT_EQ(childrenOf(database->getSheetSet()), (Labels{u"Ground", u"Roof"}));
    EXPECT_EQ(childrenOf(ground), (Labels{u"Details", u"Section"}));
    EXPECT_EQ(at(plan), nullptr);
    EXPECT_TRUE(at(details));
    EXPECT_EQ(page.tree().caret(), at(details)) << "the next one";
    EXPECT_EQ(page.tree().anchor(), at(details));
    EXPECT_EQ(database->getLockStatus(), 0);
}

TEST_F(PanelCommandsTest, RemovingOneSheetNamesItAndCancelKeepsIt)
{
    select({plan});
    answers.answer = TvUserMessages::Answer::Cancel;
    const std::string before = folder.read("house.dst");
    commands.run(32);
    EXPECT_EQ(answers.asked[0].arguments[0], u"1 - Plan");
    EXPECT_EQ(folder.read("house.dst"), before);
    EXPECT_EQ(database->getLockStatus(), 0);
    select({roof});
    commands.run(32);
    EXPECT_EQ(answers.asked.size(), 1u) << "no sheet, no question";
}

TEST_F(PanelCommandsTest, NothingIsRemovedFromALockedSet)
{
    base::EditLock lock(sm::files(), sm::clock(), folder.file("house.dst"));
    ASSERT_TRUE(lock.take(u"elsewhere"));
    answers.answer = TvUserMessages::Answer::Ok;
    select({plan});
    commands.run(32);
    select({roof});
    commands.run(29);
    EXPECT_TRUE(answers.asked.empty());
    EXPECT_EQ(childrenOf(database->getSheetSet()).size(), 3u);
}

TEST_F(PanelCommandsTest, AnEmptySubsetGoesWithoutAQuestion)
{
    select({roof});
    commands.run(29);
    EXPECT_TRUE(answers.asked.empty());
    EXPECT_EQ(childrenOf(database->getSheetSet()), (Labels{u"Ground", u"Cover"}));
    EXPECT_EQ(page.tree().caret(), at(cover));
}

TEST_F(PanelCommandsTest, ASubsetWithContentIsAskedAboutAndGoesWithAllOfIt)
{
    select({ground});
    answers.answer = TvUserMessages::Answer::Cancel;
    commands.run(29);
    EXPECT_EQ(answers.numbers(), Ids{587});
    EXPECT_TRUE(at(ground));
    answers.answer = TvUserMessages::Answer::Ok;
    commands.run(29);
    EXPECT_EQ(childrenOf(database->getSheetSet()), (Labels{u"Roof", u"Cover"}));
    EXPECT_EQ(at(stair), nullptr);
    EXPECT_EQ(page.tree().count(), 3u);
    select({cover});
    commands.run(29);
    EXPECT_EQ(answers.asked.size(), 2u) << "a sheet is no subset";
}

TEST_F(PanelCommandsTest, IncludingAndExcludingWorkOnAllSelectedOfTheKind)
{
    select({details, roof, plan});
    commands.run(40);
    EXPECT_TRUE(details->getExcludeFromPublish());
    EXPECT_TRUE(roof->getExcludeFromPublish());
    EXPECT_FALSE(plan->getExcludeFromPublish());
    commands.run(43);
    EXPECT_TRUE(plan->getExcludeFromPublish());
    commands.run(41);
    EXPECT_FALSE(details->getExcludeFromPublish());
    EXPECT_TRUE(plan->getExcludeFromPublish());
    commands.run(42);
    EXPECT_FALSE(plan->getExcludeFromPublish());
    EXPECT_EQ(database->getLockStatus(), 0);
}

TEST_F(PanelCommandsTest, ASelectionIsAppliedByItsHandleAfterAReload)
{
    change(database, [&](TvSmSheetSet& top) {
        TvSmSheetSelection* selection = top.getSheetSelections()->add(u"Print", u"");
        selection->add(stair);
        selection->add(cover);
    });
    page.tree().setExpanded(at(details), false);
    menus.selections();
    change(database, [&](TvSmSheetSet&) { cover->setTitle(u"Front"); });
    EXPECT_TRUE(commands.run(100));
    EXPECT_EQ(selectedLabels(), (Labels{u"2 - Stair", u"Front"}));
    EXPECT_TRUE(at(details)->isExpanded());
    change(database, [&](TvSmSheetSet& top) {
        top.getSheetSelections()->remove(
            itemsOf(top.getSheetSelections()->getEnumerator()).front());
    });
    page.tree().selectOnly(at(plan));
    EXPECT_TRUE(commands.run(100)) << "the menu showed it";
    EXPECT_EQ(selectedLabels(), Labels{u"1 - Plan"}) << "it is gone";
    menus.selections();
    EXPECT_FALSE(commands.run(100));
}

TEST_F(PanelCommandsTest, FilesAreShownWhereTheyLie)
{
    drawingFor(plan, "a.dwg");
    commands.run(20);
    select({plan});
    commands.run(23);
    select({cover}); // without a layout
    commands.run(23);
    select({ground});
    commands.run(23);
    EXPECT_EQ(program.explored, (Labels{folder.file("house.dst"), folder.file("a.dwg")}));
}

TEST_F(PanelCommandsTest, ThePanelHidesOpensAndClosesAllAndTakesATipStyle)
{
    commands.run(49);
    EXPECT_EQ(program.hidden, 1);
    commands.run(48);
    EXPECT_FALSE(at(ground)->isExpanded());
    commands.run(47);
    EXPECT_TRUE(at(details)->isExpanded());
    for (int id = 50; id <= 57; ++id) {
        commands.run(id);
        core::TipStyle wanted = core::tipStyle();
        core::applyTipStyle(id - 50, wanted);
        EXPECT_EQ(core::tipStyle(), wanted);
    }
    EXPECT_EQ(program.tips, 8);
    core::resetTipStyle();
}

TEST_F(PanelCommandsTest, ClosingShowsTheSetThatIsLeft)
{
    commands.run(19);
    EXPECT_EQ(GetCurrentDatabase(), nullptr);
    EXPECT_EQ(page.tree().root(), nullptr);
    commands.run(20);
    commands.run(32);
    commands.run(1);
    EXPECT_TRUE(program.explored.empty());
}

TEST_F(PanelCommandsTest, ANewSheetGoesBehindASheetOrToTheEndOfASubset)
{
    select({plan});
    panel::InsertionPlace place = commands.GetInsertionPlace();
    EXPECT_EQ(place.parent, at(ground));
    EXPECT_EQ(place.after, at(plan));
    EXPECT_EQ(place.before, details);
    select({section});
    EXPECT_EQ(commands.GetInsertionPlace().before, nullptr);
    select({roof});
    place = commands.GetInsertionPlace();
    EXPECT_EQ(place.parent, at(roof));
    EXPECT_EQ(place.after, nullptr);
    EXPECT_EQ(place.before, nullptr);
    page.tree().setCaret(nullptr);
    EXPECT_EQ(commands.GetInsertionPlace().parent, nullptr);
}

TEST_F(PanelCommandsTest, ASheetListIsAskedForWithAllSelectedHandles)
{
    ed::CommandLine line;
    select({plan, cover});
    commands.run(36);
    EXPECT_EQ(panel::PanelCommands::sheetListHandles(), (Labels{handleOf(plan), handleOf(cover)}));
    EXPECT_FALSE(line.isIdle()) << "the command was posted";
    line.work();
    EXPECT_EQ(prompts.what, Labels{u"_SmInsertToc"}) << "which nobody registered here";
    panel::PanelCommands::sheetListHandles().clear();
}

// Opening sheets

TEST_F(PanelCommandsTest, ASheetOpensWithItsLayoutAndIsShownWhenItIsOpenAlready)
{
    drawingFor(plan, "a.dwg");
    drawingFor(stair, "b.dwg");
    select({plan, stair, roof});
    commands.run(21);
    ASSERT_EQ(documents().documentCount(), 2);
    TvApDocument* first = documents().documentOf(folder.file("a.dwg"));
    ASSERT_TRUE(first);
    EXPECT_EQ(ed::currentLayoutName(*first->database()), u"A1");
    EXPECT_EQ(documents().mdiActiveDocument(), documents().documentOf(folder.file("b.dwg")));
    EXPECT_EQ(first->lockCount(), 0);
    ASSERT_EQ(ed::setCurrentLayout(*first->database(), u"A2"), TvStatus::Ok);
    EXPECT_TRUE(commands.OpenSheetByDoubleClick(at(plan), false));
    EXPECT_EQ(documents().documentCount(), 2);
    EXPECT_EQ(documents().mdiActiveDocument(), first);
    EXPECT_EQ(ed::currentLayoutName(*first->database()), u"A1");
    EXPECT_TRUE(answers.tasks.empty());
}

TEST_F(PanelCommandsTest, ADoubleClickOpensASheetOnlyAndNotWithCtrl)
{
    drawingFor(plan, "a.dwg");
    EXPECT_FALSE(commands.OpenSheetByDoubleClick(at(plan), true));
    EXPECT_FALSE(commands.OpenSheetByDoubleClick(at(ground), false));
    EXPECT_FALSE(commands.OpenSheetByDoubleClick(nullptr, false));
    EXPECT_EQ(documents().documentCount(), 0);
}

TEST_F(PanelCommandsTest, ReadOnlyOpeningOpensForLookingOnly)
{
    drawingFor(plan, "a.dwg");
    select({plan});
    commands.run(22);
    ASSERT_EQ(documents().documentCount(), 1);
    EXPECT_TRUE(documents().mdiActiveDocument()->isReadOnly());
    EXPECT_EQ(ed::currentLayoutName(*documents().mdiActiveDocument()->database()), u"A1");
}

TEST_F(PanelCommandsTest, WhileACommandRunsNothingOpensButTheStatusIsRefreshed)
{
    drawingFor(plan, "a.dwg");
    set(u"SSMSHEETSTATUS", 1);
    const TvApDocManager::CommandContext running(documents());
    int refreshes = 0;
    EXPECT_TRUE(panel::openSheets(database, {handleOf(plan)}, [&] { ++refreshes; }));
    EXPECT_EQ(refreshes, 1);
    EXPECT_EQ(documents().documentCount(), 0);
}

TEST_F(PanelCommandsTest, AMissingDrawingIsRecoveredAndTheNextSheetOpens)
{
    drawingFor(plan, "a.dwg");
    drawingFor(stair, "b.dwg");
    std::filesystem::remove(folder.path() / "a.dwg");
    select({plan, stair});
    commands.run(21);
    ASSERT_EQ(answers.tasks.size(), 1u);
    const TvUserMessages::TaskDialog& task = answers.tasks[0];
    EXPECT_EQ(task.title[0].number, 618);
    EXPECT_EQ(task.instruction.number, 619);
    EXPECT_EQ(task.instruction.arguments, Labels{folder.file("a.dwg")});
    ASSERT_EQ(task.commands.size(), 2u);
    EXPECT_EQ(task.commands[0].result, 1001);
    EXPECT_EQ(task.commands[0].text.number, 620);
    EXPECT_EQ(task.commands[0].text.arguments, (Labels{u"1 - Plan", u"House"}));
    EXPECT_EQ(task.commands[1].result, 1002);
    EXPECT_EQ(task.commands[1].text.number, 621);
    EXPECT_EQ(task.commands[1].text.arguments, Labels{u"1 - Plan"});
    EXPECT_EQ(task.standard, 1001);
    EXPECT_EQ(documents().documentCount(), 1);
    EXPECT_TRUE(at(plan)) << "it was cancelled";
}

TEST_F(PanelCommandsTest, AnOpenDrawingWithoutTheLayoutIsRecoveredAndANewlyOpenedOneIsNot)
{
    drawingFor(plan, "a.dwg");
    change(database, [&](TvSmSheetSet&) {
        plan->getLayoutReference()->setName(u"gone");
        plan->getLayoutReference()->setHandle(u"FFFF");
    });
    select({plan});
    commands.run(21);
    EXPECT_EQ(documents().documentCount(), 1);
    EXPECT_TRUE(answers.tasks.empty());
    commands.run(21);
    ASSERT_EQ(answers.tasks.size(), 1u);
    EXPECT_EQ(answers.tasks[0].title[0].number, 622);
    EXPECT_EQ(answers.tasks[0].instruction.number, 623);
}

TEST_F(PanelCommandsTest, ARecoveryRemovesTheSheetAfterAnotherQuestion)
{
    drawingFor(plan, "a.dwg");
    answers.task = 1001;
    answers.answer = TvUserMessages::Answer::Cancel;
    panel::RecoverMissingDrawing(plan->getLayoutReference(), 618, 619);
    EXPECT_EQ(answers.numbers(), Ids{347});
    EXPECT_TRUE(at(plan));
    EXPECT_EQ(database->getLockStatus(), 0);
    answers.answer = TvUserMessages::Answer::Ok;
    panel::RecoverMissingDrawing(plan->getLayoutReference(), 618, 619);
    EXPECT_EQ(at(plan), nullptr);
    panel::RecoverMissingDrawing(nullptr, 618, 619);
    EXPECT_EQ(answers.tasks.size(), 2u);
}

TEST_F(PanelCommandsTest, ARecoveryChangesNothingInALockedSet)
{
    drawingFor(plan, "a.dwg");
    answers.task = 1001;
    answers.answer = TvUserMessages::Answer::Ok;
    ASSERT_TRUE(database->lockDb(database));
    panel::RecoverMissingDrawing(plan->getLayoutReference(), 618, 619);
    EXPECT_TRUE(answers.asked.empty());
    EXPECT_EQ(database->getLockStatus(), 1);
    ASSERT_TRUE(database->unlockDb(database, false));
}

TEST_F(PanelCommandsTest, ARecoveryByAnotherLayoutIsARoomsAbove)
{
    drawingFor(plan, "a.dwg");
    answers.task = 1002;
    panel::RecoverMissingDrawing(plan->getLayoutReference(), 618, 619);
    EXPECT_EQ(prompts.said, Ids{8900});
    bool isKept = false;
    panel::setReplaceLayout([&](TvSmDatabase&, TvSmSheet& sheet) {
        sheet.setTitle(u"Replaced");
        return isKept;
    });
    panel::RecoverMissingDrawing(plan->getLayoutReference(), 618, 619);
    EXPECT_EQ(plan->getTitle(), u"Plan");
    isKept = true;
    panel::RecoverMissingDrawing(plan->getLayoutReference(), 618, 619);
    EXPECT_EQ(plan->getTitle(), u"Replaced");
    EXPECT_EQ(database->getLockStatus(), 0);
}

} // namespace
