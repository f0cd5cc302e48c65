// From a command of the panel to what the plot module is handed.

#include <resources/texts.h>

#include "answered_prompts.h"
#include "publish_scene.h"

namespace {

using Titles = std::vector<std::string>;

/// The entry of that number in a menu or below it; null when there is none.
const ed::MenuEntry* entryOf(const std::vector<ed::MenuEntry>& entries, int id)
{
    for (const ed::MenuEntry& entry : entries) {
        if (entry.id == id && !entry.isSeparator && entry.submenu.empty())
            return &entry;
        if (const ed::MenuEntry* found = entryOf(entry.submenu, id))
            return found;
    }
    return nullptr;
}

} // namespace

TEST_F(PublishTest, EachCommandHandsItsKindOver)
{
    select({database->getSheetSet()});
    const std::pair<int, int> kinds[] = {{4, 2}, {5, 3}, {6, 1}, {7, 0}};
    for (const auto& [command, kind] : kinds) {
        EXPECT_EQ(published(command), (Titles{"Plan", "Stair", "Section", "Cover"}));
        const PlotCalls::Publishing& call = calls.published.front();
        EXPECT_EQ(call.request.kind, kind) << command;
        EXPECT_FALSE(call.request.usePageSetup);
        EXPECT_FALSE(call.request.multipleSheets);
        EXPECT_TRUE(call.request.pageSetupName.isEmpty());
        EXPECT_EQ(call.set, database->getSheetSet());
        EXPECT_EQ(call.lockStatus, 0);
    }
}

TEST_F(PublishTest, InReverseOrderTheLastSheetComesFirst)
{
    select({database->getSheetSet()});
    menus.toggleReverseOrder();
    for (const int command : {4, 5, 6, 7})
        EXPECT_EQ(published(command), (Titles{"Cover", "Section", "Stair", "Plan"}));
    commands.run(16);
    ASSERT_EQ(calls.dialogs.size(), 1u);
    EXPECT_EQ(calls.dialogs.front().titles, (Titles{"Plan", "Stair", "Section", "Cover"}))
        << "the dialog is given the order of the tree";
    EXPECT_EQ(calls.dialogs.front().options, database->getSheetSet()->getPublishOptions());
    EXPECT_EQ(calls.dialogs.front().database, database);
}

TEST_F(PublishTest, TheSettingOfTheOrderCountsFromTheFirstMenuOn)
{
    select({ground});
    WriteConfigInt(u"Config\\publish\\PublishReverseOrder", 1);
    EXPECT_EQ(published(4), (Titles{"Plan", "Stair", "Section"}));
    menus.publish();
    EXPECT_EQ(published(4), (Titles{"Section", "Stair", "Plan"}));
}

TEST_F(PublishTest, AnExcludedSheetStaysOut)
{
    exclude(plan);
    select({plan, section});
    EXPECT_EQ(published(6), Titles{"Section"});
}

TEST_F(PublishTest, AnExcludedSubsetKeepsAllBelowItOut)
{
    exclude(ground);
    select({database->getSheetSet()});
    EXPECT_EQ(published(6), Titles{"Cover"});
    select({details, cover});
    EXPECT_EQ(published(6), Titles{"Cover"});
    select({stair});
    EXPECT_EQ(published(6), Titles{}) << "a sheet by itself";
}

TEST_F(PublishTest, WithExcludedSheetsOnlyTheListIsEmptyAndIsHandedOver)
{
    exclude(stair);
    select({details});
    EXPECT_TRUE(page.canPublishSelection());
    EXPECT_EQ(published(4), Titles{});
}

TEST_F(PublishTest, WithoutTheModuleOrItsEntriesNothingHappens)
{
    pageSetups("setups.dwt", {{u"A3", 5}});
    select({database->getSheetSet()});
    menus.publish();
    for (const char* state : {"bare", "nowhere"}) {
        use(state);
        for (const int id : {4, 5, 6, 7, 13, 15, 16, 58, 100})
            EXPECT_TRUE(commands.run(id));
    }
    EXPECT_TRUE(calls.published.empty() && calls.dialogs.empty() && calls.pageSetups.empty() &&
                calls.pdfLocks.empty());
    EXPECT_EQ(calls.stampSettings, 0);
    EXPECT_TRUE(messages.asked.empty());
}

TEST_F(PublishTest, WithoutACurrentSetNothingHappens)
{
    CloseCurrentSheetSet();
    for (const int id : {4, 5, 6, 7, 15, 16, 58})
        commands.run(id);
    EXPECT_TRUE(calls.published.empty() && calls.dialogs.empty() && calls.pdfLocks.empty());
}

TEST_F(PublishTest, AModuleThatIsLoadedAlreadyIsUsedAndStays)
{
    const rx::ModuleLoader::Handle first = rx::moduleLoader()->loaded(u"KvPlotCmds.dll");
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(core::plotCommandsModule().loadedByUs());
    const auto held = rx::moduleLoader()->load(u"KvPlotCmds.dll");
    ASSERT_TRUE(held);
    core::plotCommandsModule().free();
    core::plotCommandsModule().load();
    EXPECT_FALSE(core::plotCommandsModule().loadedByUs());
    select({cover});
    EXPECT_EQ(published(4), Titles{"Cover"});
    core::plotCommandsModule().free();
    EXPECT_NE(rx::moduleLoader()->loaded(u"KvPlotCmds.dll"), nullptr);
    rx::moduleLoader()->free(*held);
}

TEST_F(PublishTest, APageSetupIsHandedOverByItsName)
{
    pageSetups("setups.dwt", {{u"A3 draft", 5}, {u"Window", 4}, {u"All", 1}, {u"View", 3}});
    select({database->getSheetSet()});
    const ed::Menu menu = menus.publish();
    EXPECT_EQ(menus.pageSetupNames(), (std::vector<TvString>{u"A3 draft", u"All"}));
    ASSERT_NE(entryOf(menu.entries, 101), nullptr);
    EXPECT_EQ(entryOf(menu.entries, 101)->text, TvString(u"All"));

    EXPECT_EQ(published(101), (Titles{"Plan", "Stair", "Section", "Cover"}));
    const PublishRequest several = calls.published.front().request;
    EXPECT_TRUE(several.usePageSetup);
    EXPECT_TRUE(several.multipleSheets);
    EXPECT_EQ(several.kind, 0);
    EXPECT_EQ(several.pageSetupName, TvString(u"All"));

    select({cover});
    menus.toggleReverseOrder();
    EXPECT_EQ(published(100), Titles{"Cover"});
    EXPECT_FALSE(calls.published.front().request.multipleSheets);
    select({ground});
    EXPECT_EQ(published(100), (Titles{"Section", "Stair", "Plan"}));
}

TEST_F(PublishTest, PageSetupsComeInTheOrderOfTheDrawing)
{
    pageSetups("setups.dwt", {{u"Zinc", 5}, {u"a3", 1}, {u"Brass", 5}, {u"View", 3}});
    std::vector<TvString> stored;
    {
        TvDbDatabase drawing(false, true);
        ASSERT_EQ(drawing.readDwgFile(folder.file("setups.dwt")), TvStatus::Ok);
        const TvDbObjectPointer<TvDbDictionary> all(drawing.plotSettingsDictionaryId());
        for (const auto& [key, id] : all->entries())
            if (key != u"View")
                stored.push_back(key);
    }
    ASSERT_EQ(stored.size(), 3u);
    select({plan});
    menus.publish();
    EXPECT_EQ(menus.pageSetupNames(), stored);
}

TEST_F(PublishTest, APageSetupIsCalledAsItSaysItself)
{
    pageSetups("setups.dwt", {{u"A3 draft", 5, u"K1"}});
    select({plan});
    menus.publish();
    EXPECT_EQ(menus.pageSetupNames(), std::vector<TvString>{u"A3 draft"});
}

TEST_F(PublishTest, PageSetupsThatCannotReplaceASheetsOwnGiveADisabledMenu)
{
    constexpr int kSubMenu = 517;
    const auto isOffered = [&] {
        select({plan});
        const ed::Menu menu = menus.publish();
        const TvString words(text::find(kSubMenu));
        for (const ed::MenuEntry& entry : menu.entries)
            if (entry.text == words)
                return entry.isEnabled && !entry.submenu.empty();
        ADD_FAILURE() << "no entry";
        return false;
    };
    EXPECT_FALSE(isOffered()) << "no drawing";
    pageSetups("setups.dwt", {{u"Window", 4}, {u"View", 3}, {u"Display", 0}, {u"Limits", 2}});
    EXPECT_FALSE(isOffered());
    pageSetups("more.dwt", {{u"Layout", 5}});
    EXPECT_TRUE(isOffered());
    folder.write("broken.dwt", "no drawing");
    namePageSetups("broken.dwt");
    EXPECT_FALSE(isOffered());
    namePageSetups("missing.dwt");
    EXPECT_FALSE(isOffered());
}

TEST_F(PublishTest, StampSettingsAreThePlotModules)
{
    commands.run(13);
    EXPECT_EQ(calls.stampSettings, 1);
}

TEST_F(PublishTest, PdfOptionsAreEditedUnderTheLockAndKept)
{
    select({plan});
    commands.run(15);
    ASSERT_EQ(calls.pdfLocks.size(), 1u);
    EXPECT_NE(calls.pdfLocks.front(), 0);
    EXPECT_EQ(database->getLockStatus(), 0);
    EXPECT_EQ(database->getSheetSet()->getDesc(), TvString(u"by the plot module"));
}

TEST_F(PublishTest, PdfOptionsWantASelectionAndAFreeSet)
{
    page.tree().ClearSelection();
    commands.run(15);
    select({plan});
    ASSERT_TRUE(database->lockDb(database));
    commands.run(15);
    ASSERT_TRUE(database->unlockDb(database, false));
    EXPECT_TRUE(calls.pdfLocks.empty());
}

TEST_F(PublishTest, PageSetupsOfASetWithoutADrawingAreAskedForUntilThereIsOne)
{
    messages.answer = TvUserMessages::Answer::Ok;
    pageSetups("setups.dwt", {{u"A3", 5}});
    change(database, [](TvSmSheetSet& set) { set.setAltPageSetups(nullptr); });
    int asked = 0;
    publish::setAskForPageSetups([&](TvSmDatabase&) {
        if (++asked == 2)
            namePageSetups("setups.dwt");
        return true;
    });
    commands.run(58);
    EXPECT_EQ(asked, 2);
    ASSERT_EQ(messages.numbers(), (std::vector{524, 524}));
    EXPECT_EQ(messages.asked.front().caption, 511);
    EXPECT_EQ(messages.asked.front().arguments, std::vector<TvString>{TvString()});
    EXPECT_EQ(messages.asked.front().buttons, TvUserMessages::Buttons::OkCancel);
    ASSERT_EQ(calls.pageSetups.size(), 1u);
    EXPECT_EQ(calls.pageSetups.front().setName, TvString(u"House"));
    EXPECT_FALSE(calls.pageSetups.front().isOpen);
}

TEST_F(PublishTest, PageSetupsAreNotAskedForAgainWhenTheUserGaveUpOrTheSetIsLocked)
{
    int asked = 0;
    publish::setAskForPageSetups([&](TvSmDatabase&) { return ++asked > 0; });
    commands.run(58); // the answer is Cancel
    EXPECT_EQ(messages.numbers(), std::vector{524});
    messages.answer = TvUserMessages::Answer::Ok;
    ASSERT_TRUE(database->lockDb(database));
    commands.run(58);
    ASSERT_TRUE(database->unlockDb(database, false));
    EXPECT_EQ(messages.numbers(), (std::vector{524, 524}));
    EXPECT_EQ(asked, 0);
    publish::setAskForPageSetups({});
    commands.run(58);
    EXPECT_TRUE(calls.pageSetups.empty());
}

TEST_F(PublishTest, TheDrawingOfPageSetupsCanBeChosenAsAFile)
{
    messages.answer = TvUserMessages::Answer::Ok;
    pageSetups("setups.dwt", {{u"A3", 5}});
    change(database, [](TvSmSheetSet& set) { set.setAltPageSetups(nullptr); });
    publish::setAskForPageSetups(&publish::choosePageSetups);
    AnsweredPrompts prompts;
    prompts.files = {folder.file("setups.dwt")};
    commands.run(58);
    EXPECT_FALSE(prompts.asked.isForSaving);
    EXPECT_FALSE(prompts.asked.isForFolder);
    EXPECT_EQ(prompts.asked.extensions.front(), TvString(u"dwt"));
    ASSERT_EQ(calls.pageSetups.size(), 1u);
    const TvSmFileReference* kept = database->getSheetSet()->getAltPageSetups();
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(kept->resolveFileName(), folder.file("setups.dwt"));
    EXPECT_EQ(database->getLockStatus(), 0);
    commands.run(58);
    EXPECT_EQ(messages.numbers(), std::vector{524}) << "nothing is asked a second time";
}

TEST_F(PublishTest, WithoutAnybodyToAskForAFileThePageSetupsAreGivenUp)
{
    messages.answer = TvUserMessages::Answer::Ok;
    publish::setAskForPageSetups(&publish::choosePageSetups);
    commands.run(58);
    EXPECT_EQ(messages.numbers(), std::vector{524});
    EXPECT_EQ(database->getSheetSet()->getAltPageSetups(), nullptr);
}

TEST_F(PublishTest, ALockedSetKeepsNoChosenPageSetups)
{
    AnsweredPrompts prompts;
    prompts.files = {folder.file("setups.dwt")};
    ASSERT_TRUE(database->lockDb(database));
    EXPECT_TRUE(publish::choosePageSetups(*database));
    EXPECT_EQ(database->getSheetSet()->getAltPageSetups(), nullptr);
    ASSERT_TRUE(database->unlockDb(database, false));
    prompts.files.clear(); // the user gives up
    EXPECT_TRUE(publish::choosePageSetups(*database));
    EXPECT_EQ(database->getSheetSet()->getAltPageSetups(), nullptr);
}

TEST_F(PublishTest, APageSetupDrawingThatIsNotThereIsTold)
{
    namePageSetups("missing.dwt");
    commands.run(58);
    ASSERT_EQ(messages.numbers(), std::vector{524});
    EXPECT_EQ(messages.asked.front().caption, 511);
    EXPECT_EQ(messages.asked.front().buttons, TvUserMessages::Buttons::Ok);
    EXPECT_TRUE(messages.asked.front().arguments.front().endsWithNoCase(u"missing.dwt"));
    EXPECT_TRUE(calls.pageSetups.empty());
}

TEST_F(PublishTest, APageSetupDrawingThatCannotBeReadIsTold)
{
    folder.write("broken.dwt", "no drawing");
    namePageSetups("broken.dwt");
    commands.run(58);
    ASSERT_EQ(messages.numbers(), std::vector{504});
    EXPECT_EQ(messages.asked.front().caption, 511);
    EXPECT_EQ(messages.asked.front().arguments, std::vector<TvString>{folder.file("broken.dwt")});
    EXPECT_TRUE(calls.pageSetups.empty());
}

TEST_F(PublishTest, APageSetupDrawingThatIsNotOpenIsReadForThePlotModuleAndNotSaved)
{
    pageSetups("setups.dwt", {{u"A3", 5}, {u"Window", 4}});
    const std::string before = folder.read("setups.dwt");
    commands.run(58);
    ASSERT_EQ(calls.pageSetups.size(), 1u);
    EXPECT_FALSE(calls.pageSetups.front().isOpen);
    EXPECT_EQ(calls.pageSetups.front().setName, TvString(u"House"));
    EXPECT_EQ(calls.pageSetups.front().names, (std::vector<TvString>{u"A3", u"Window"}));
    EXPECT_TRUE(folder.read("setups.dwt") == before);
    EXPECT_TRUE(messages.asked.empty());
}

TEST_F(PublishTest, PageSetupsOfAnOpenDrawingAreEditedThere)
{
    pageSetups("setups.dwt", {{u"A3", 5}});
    const TvApDocument* document = opened("setups.dwt");
    commands.run(58); // whatever is answered
    ASSERT_EQ(messages.numbers(), std::vector{526});
    EXPECT_EQ(messages.asked.front().caption, 525);
    EXPECT_EQ(messages.asked.front().arguments, std::vector<TvString>{folder.file("setups.dwt")});
    ASSERT_EQ(calls.pageSetups.size(), 1u);
    EXPECT_TRUE(calls.pageSetups.front().isOpen);
    EXPECT_EQ(calls.pageSetups.front().drawing, document->database());
}

TEST_F(PublishTest, FormatsAreStoredInTheNumberingOfTheSet)
{
    const std::pair<int, long> formats[] = {{1, 0}, {2, 2}, {3, 1}};
    for (const auto& [id, stored] : formats) {
        commands.run(id);
        EXPECT_EQ(page.publishFormat(), id);
        EXPECT_EQ(database->getSheetSet()->getPublishOptions()->getEplotFormat(), stored);
    }
    ASSERT_TRUE(database->lockDb(database));
    commands.run(1);
    ASSERT_TRUE(database->unlockDb(database, false));
    EXPECT_EQ(page.publishFormat(), 1) << "chosen all the same";
    EXPECT_EQ(database->getSheetSet()->getPublishOptions()->getEplotFormat(), 1);
    page.RebuildTree();
    EXPECT_EQ(page.publishFormat(), 3) << "read back";
    change(database, [](TvSmSheetSet& set) { set.getPublishOptions()->setEplotFormat(7); });
    page.RebuildTree();
    EXPECT_EQ(page.publishFormat(), 3) << "an unknown one changes nothing";
}

TEST_F(PublishTest, ASetupWithTheNumberOfAShownSelectionMeansTheSelection)
{
    pageSetups("setups.dwt", {{u"A3", 5}, {u"A4", 5}});
    change(database, [this](TvSmSheetSet& set) {
        EXPECT_TRUE(set.getSheetSelections()->add(u"Some", u"")->add(cover));
    });
    select({plan});
    menus.publish();
    EXPECT_EQ(published(100), Titles{"Plan"});
    menus.selections();
    calls.published.clear();
    commands.run(100);
    EXPECT_TRUE(calls.published.empty());
    EXPECT_EQ(published(101), Titles{"Cover"}) << "which is selected now";
}
