// What the menus know of documents, drawings and locks, and what their shared numbers mean.

#include <ed/layouts.h>
#include <resources/texts.h>

#include "command_scene.h"

namespace {

using panel::PanelMenus;
using Labels = std::vector<TvString>;

class MenuFactsTest : public DocumentTest
{
protected:
    void SetUp() override
    {
        DocumentTest::SetUp();
        set(u"SSMSHEETSTATUS", 0);
        database = made("house.dst");
        DrawingMaker maker;
        maker.paper(u"A1").paper(u"A2").saveAs(folder.file("a.dwg"));
        change(database, [&](TvSmSheetSet& top) {
            plan = addSheet(&top, u"1", u"Plan");
            setLayout(plan, folder.file("a.dwg"), maker.handleOf(u"A1"), u"A1");
            lost = addSheet(&top, u"2", u"Lost");
            setLayout(lost, folder.file("lost.dwg"), u"22", u"A1");
            roof = addSubset(&top, u"Roof");
        });
        ActivateSheetSet(database);
        page.SwitchDatabase(true);
    }
    void TearDown() override
    {
        page.tree().ClearTree();
        page.tree().setDatabase(nullptr);
        DocumentTest::TearDown();
    }
    panel::TreeItem* at(const TvSmPersist* object) { return page.tree().itemOf(handleOf(object)); }
    panel::ContextFacts factsOf(const TvSmPersist* object)
    {
        page.tree().selectOnly(at(object));
        return panel::contextFacts(page.tree(), *at(object));
    }
    bool isEnabled(const ed::Menu& menu, int id)
    {
        ed::Menu copy = menu;
        return copy.find(id) && copy.find(id)->isEnabled;
    }
    ed::Menu menuOf(const TvSmPersist* object)
    {
        page.tree().selectOnly(at(object));
        return menus.context(*at(object));
    }

    TvSmDatabase* database = nullptr;
    TvSmSheet *plan = nullptr, *lost = nullptr;
    TvSmSubset* roof = nullptr;
    panel::PageWindow window;
    panel::SheetListPage page{window, base::systemClock()};
    PanelMenus menus{page};
    NotingProgram program;
    panel::PanelCommands commands{page, menus, program};
};

TEST_F(MenuFactsTest, PublishingStandsInTheMenuOnceADocumentIsOpen)
{
    EXPECT_TRUE(factsOf(plan).noDocuments);
    ed::Menu menu = menuOf(plan);
    ASSERT_TRUE(menu.find(panel::kNoPublish));
    EXPECT_EQ(menu.find(panel::kNoPublish)->text, TvString(text::find(459)));
    EXPECT_FALSE(isEnabled(menu, panel::kNewSheet));
    opened("a.dwg");
    EXPECT_FALSE(factsOf(plan).noDocuments);
    menu = menuOf(plan);
    EXPECT_FALSE(menu.find(panel::kNoPublish));
    EXPECT_TRUE(isEnabled(menu, panel::kNewSheet));
    const auto publish = std::ranges::find_if(
        menu.entries, [](const ed::MenuEntry& entry) { return !entry.submenu.empty(); });
    ASSERT_NE(publish, menu.entries.end());
    EXPECT_EQ(publish->text, TvString(text::find(459)));
}

TEST_F(MenuFactsTest, ADrawingThatIsOpenIsNotOpenedForLookingOnly)
{
    EXPECT_TRUE(factsOf(plan).hasDrawing);
    EXPECT_FALSE(factsOf(plan).isDrawingOpen);
    EXPECT_TRUE(isEnabled(menuOf(plan), panel::kOpenSheetReadOnly));
    opened("a.dwg");
    EXPECT_TRUE(factsOf(plan).isDrawingOpen);
    EXPECT_FALSE(factsOf(lost).isDrawingOpen);
    EXPECT_FALSE(isEnabled(menuOf(plan), panel::kOpenSheetReadOnly));
    EXPECT_TRUE(isEnabled(menuOf(plan), panel::kOpenSheet));
    EXPECT_FALSE(isEnabled(menuOf(lost), panel::kOpenSheet)) << "it is not there";
}

TEST_F(MenuFactsTest, ASheetListIsOfferedWhileTheCurrentLayoutIsASheetOfTheSet)
{
    TvApDocument* document = opened("a.dwg");
    ASSERT_EQ(ed::setCurrentLayout(*document->database(), u"A2"), TvStatus::Ok);
    EXPECT_FALSE(factsOf(plan).isCurrentSheetInSet);
    EXPECT_FALSE(isEnabled(menuOf(roof), panel::kInsertSheetList));
    ASSERT_EQ(ed::setCurrentLayout(*document->database(), u"A1"), TvStatus::Ok);
    EXPECT_TRUE(factsOf(plan).isCurrentSheetInSet);
    EXPECT_TRUE(isEnabled(menuOf(roof), panel::kInsertSheetList));
}

TEST_F(MenuFactsTest, ALockedSetIsNeitherPublishedAnewNorGivenAnotherFormat)
{
    page.tree().selectOnly(at(plan));
    EXPECT_TRUE(isEnabled(menus.publish(), panel::kEditPublishList));
    EXPECT_TRUE(isEnabled(menus.format(), 1));
    ASSERT_TRUE(database->lockDb(database));
    for (const int id : {panel::kEditPublishList, panel::kPublishOptions, panel::kPdfOptions})
        EXPECT_FALSE(isEnabled(menus.publish(), id)) << id;
    EXPECT_TRUE(isEnabled(menus.publish(), panel::kPublishFirst));
    for (const int id : {1, 2, 3})
        EXPECT_FALSE(isEnabled(menus.format(), id)) << id;
    ASSERT_TRUE(database->unlockDb(database, false));
}

TEST_F(MenuFactsTest, WhatCannotBePublishedIsNotOfferedForIt)
{
    page.tree().selectOnly(at(plan));
    EXPECT_TRUE(isEnabled(menus.publish(), panel::kPublishFirst));
    change(database, [this](TvSmSheetSet&) { plan->setExcludeFromPublish(true); });
    EXPECT_FALSE(isEnabled(menus.publish(), panel::kPublishFirst));
    EXPECT_FALSE(isEnabled(menus.publish(), panel::kPublishLast));
    EXPECT_TRUE(isEnabled(menus.publish(), panel::kEditPublishList));
}

TEST_F(MenuFactsTest, AnItemWhoseObjectIsGoneHasNoPublishMenu)
{
    page.tree().selectOnly(at(lost));
    EXPECT_FALSE(menus.publish().entries.empty());
    change(database, [this](TvSmSheetSet& top) { top.removeSheet(lost); });
    EXPECT_TRUE(menus.publish().entries.empty());
}

TEST_F(MenuFactsTest, AModifierBesideTheItemsStillMeansTheBackground)
{
    page.tree().selectOnly(at(plan));
    EXPECT_EQ(menus.itemForClick(nullptr, true, true), nullptr);
}

// Shared numbers

TEST_F(MenuFactsTest, ANumberOfBothMenusIsASelectionAndTheOthersArePageSetups)
{
    change(database, [this](TvSmSheetSet& top) {
        for (const TvChar* name : {u"First", u"Second"})
            top.getSheetSelections()->add(name, u"")->add(plan);
    });
    menus.setPageSetups([](const TvSmDatabase&) { return Labels{u"A1", u"A2", u"A3"}; });
    Labels published;
    commands.setPageSetupHandler(
        [&](panel::SheetListPage&, const TvString& name) { published.push_back(name); });
    page.tree().selectOnly(at(roof));
    const ed::Menu publish = menus.publish();
    ASSERT_EQ(publish.entries[4].submenu.size(), 3u);
    EXPECT_EQ(publish.entries[4].text, TvString(text::find(517)));
    EXPECT_TRUE(commands.run(100));
    EXPECT_EQ(published, Labels{u"A1"}) << "the selections were not shown yet";
    menus.selections();
    menus.publish(); // shown again: the selections' numbers stay theirs
    EXPECT_TRUE(commands.run(100));
    EXPECT_TRUE(commands.run(101));
    EXPECT_EQ(published, Labels{u"A1"});
    EXPECT_TRUE(at(plan)->isSelected()) << "the selection was applied";
    EXPECT_FALSE(at(roof)->isSelected());
    EXPECT_TRUE(commands.run(102));
    EXPECT_EQ(published, (Labels{u"A1", u"A3"}));
    EXPECT_FALSE(commands.run(103)) << "the default handler's";
    change(database, [](TvSmSheetSet& top) {
        for (TvSmSheetSelection* each : itemsOf(top.getSheetSelections()->getEnumerator()))
            top.getSheetSelections()->remove(each);
    });
    menus.selections();
    EXPECT_TRUE(commands.run(101));
    EXPECT_EQ(published, (Labels{u"A1", u"A3", u"A2"})) << "without selections it is theirs again";
}

TEST_F(MenuFactsTest, PageSetupsAreAskedForEachTimeAMenuIsMade)
{
    Labels names{u"A1"};
    menus.setPageSetups([&](const TvSmDatabase& asked) {
        EXPECT_EQ(&asked, database);
        return names;
    });
    page.tree().selectOnly(at(plan));
    EXPECT_TRUE(menus.publish().entries[4].isEnabled);
    names.clear();
    const ed::Menu menu = menus.publish();
    EXPECT_FALSE(menu.entries[4].isEnabled);
    EXPECT_TRUE(menu.entries[4].submenu.empty());
    EXPECT_FALSE(commands.run(100));
}

} // namespace
