// What stands in the menus, and when it is enabled.

#include <panel/panel_menus.h>

#include <core/settings.h>
#include <core/tip_style.h>
#include <resources/texts.h>

#include "document_scene.h"
#include "panel_scene.h"

namespace {

using panel::ContextFacts;
using panel::PublishFacts;

/// Ids in order; 0 is a line, -1 a submenu.
std::vector<int> idsOf(const ed::Menu& menu)
{
    std::vector<int> ids;
    for (const ed::MenuEntry& entry : menu.entries)
        ids.push_back(entry.isSeparator ? 0 : entry.submenu.empty() ? entry.id : -1);
    return ids;
}

std::vector<int> disabledIn(const ed::Menu& menu)
{
    std::vector<int> ids;
    for (const ed::MenuEntry& entry : menu.entries)
        if (!entry.isEnabled)
            ids.push_back(entry.id);
    return ids;
}

std::vector<int> markedIn(const std::vector<ed::MenuEntry>& entries)
{
    std::vector<int> ids;
    for (const ed::MenuEntry& entry : entries)
        if (entry.mark != ed::MenuMark::None)
            ids.push_back(entry.id);
    return ids;
}

ed::Menu context(const ContextFacts& facts)
{
    return panel::contextMenu(facts, panel::publishMenu({}));
}

using Ids = std::vector<int>;
constexpr std::uint32_t kSet = 0, kSubset = 1, kSheet = 2;

} // namespace

TEST(ContextMenu, HasTheEntriesOfItsKindInOrder)
{
    EXPECT_EQ(idsOf(context({.kind = kSet})),
              (Ids{19, 20, 0, 24, 25, 26, 0, 27, 33, 0, -1, 34, 35, 0, 36, 0, 37}));
    EXPECT_EQ(idsOf(context({.kind = kSubset})),
              (Ids{24, 25, 26, 0, 28, 29, 30, 0, -1, 34, 0, 36, 0, 37}));
    EXPECT_EQ(idsOf(context({.kind = kSheet})),
              (Ids{21, 22, 23, 0, 24, 26, 0, 31, 32, 0, -1, 34, 0, 36, 0, 37}));
}

TEST(ContextMenu, OfSeveralItemsHasNoProperties)
{
    for (const std::uint32_t kind : {kSet, kSubset, kSheet})
        EXPECT_EQ(idsOf(context({.kind = kind, .selected = 2})),
                  (Ids{21, 22, 0, 32, 0, -1, 34, 0, 36}));
}

TEST(ContextMenu, IsAllEnabledWhereEverythingIsThere)
{
    for (const std::uint32_t kind : {kSet, kSubset, kSheet}) {
        EXPECT_EQ(disabledIn(context({.kind = kind})), Ids{});
        EXPECT_EQ(disabledIn(context({.kind = kind, .selected = 3})), Ids{});
    }
}

TEST(ContextMenu, OfALockedSetOffersNothingThatChangesIt)
{
    EXPECT_EQ(disabledIn(context({.kind = kSet, .isLocked = true})),
              (Ids{24, 25, 26, 27, 33, 34, 35, 36, 37}));
    EXPECT_EQ(disabledIn(context({.kind = kSubset, .isLocked = true})),
              (Ids{24, 25, 26, 28, 29, 30, 34, 36, 37}));
    EXPECT_EQ(disabledIn(context({.kind = kSheet, .isLocked = true})),
              (Ids{24, 26, 31, 32, 34, 36, 37}));
}

TEST(ContextMenu, WithoutDocumentsHasAPlaceholderForPublishing)
{
    const ed::Menu menu = context({.kind = kSubset, .noDocuments = true});
    EXPECT_EQ(disabledIn(menu), (Ids{24, 25, 26, 28, 29, 30, 44, 34, 36, 37}));
    EXPECT_EQ(idsOf(menu)[8], 44);
    EXPECT_EQ(disabledIn(context({.kind = kSheet, .selected = 2, .noDocuments = true})), Ids{44});
}

TEST(ContextMenu, ASheetListNeedsASheetOfTheSetInTheEditor)
{
    EXPECT_EQ(disabledIn(context({.kind = kSet, .isCurrentSheetInSet = false})), Ids{36});
    EXPECT_EQ(disabledIn(context({.kind = kSheet, .selected = 2, .isCurrentSheetInSet = false})),
              Ids{36});
}

TEST(ContextMenu, ASheetIsOpenedWhenItsDrawingIsThereAndReadOnlyWhenItIsNotOpen)
{
    EXPECT_EQ(disabledIn(context({.kind = kSheet, .hasDrawing = false})), (Ids{21, 22, 23, 34}));
    EXPECT_EQ(disabledIn(context({.kind = kSheet, .isDrawingOpen = true})), Ids{22});
    EXPECT_EQ(disabledIn(context({.kind = kSheet, .selected = 2, .hasDrawing = false})),
              (Ids{21, 22, 34}));
    EXPECT_EQ(disabledIn(context({.kind = kSheet, .selected = 2, .isDrawingOpen = true})), Ids{22});
    EXPECT_EQ(disabledIn(context({.kind = kSubset, .selected = 2, .hasDrawing = false})), Ids{})
        << "only the item of the menu counts";
}

TEST(ContextMenu, WithoutSheetsNothingIsArchivedOrSent)
{
    EXPECT_EQ(disabledIn(context({.kind = kSet, .hasSheets = false})), (Ids{33, 34}));
    EXPECT_EQ(disabledIn(context({.kind = kSubset, .hasSheets = false})), Ids{34});
}

TEST(ContextMenu, SheetsAreRemovedWhenOneIsSelected)
{
    EXPECT_EQ(disabledIn(context({.kind = kSubset, .selected = 2, .isSheetSelected = false})),
              Ids{32});
}

TEST(PublishMenu, HasTheEntriesOfItsKindInOrder)
{
    EXPECT_EQ(idsOf(panel::publishMenu({.kind = kSet})),
              (Ids{4, 5, 6, 7, 0, 0, 10, 11, 12, 13, 0, 58, 14, 15, 16}))
        << "without page setups their entry is plain";
    PublishFacts facts{.kind = kSubset};
    facts.pageSetups = {u"A1", u"A & B"};
    const ed::Menu menu = panel::publishMenu(facts);
    EXPECT_EQ(idsOf(menu), (Ids{4, 5, 6, 7, -1, 0, -1, 0, 10, 11, 12, 13, 0, 58, 14, 15, 16}));
    EXPECT_EQ(menu.entries[4].submenu[1].id, 101);
    EXPECT_EQ(menu.entries[4].submenu[1].text, u"A && B");
    EXPECT_FALSE(panel::publishMenu({.kind = kSet}).entries[4].isEnabled);
}

TEST(PublishMenu, IncludesAndExcludes)
{
    const auto included = [](std::uint32_t kind, bool isIncluded) {
        return panel::publishMenu({.kind = kind, .isIncluded = isIncluded}).entries[6].submenu;
    };
    EXPECT_EQ(included(kSubset, true)[0].id, 41);
    EXPECT_EQ(included(kSubset, true)[1].id, 40);
    EXPECT_EQ(markedIn(included(kSubset, true)), Ids{41});
    EXPECT_EQ(markedIn(included(kSubset, false)), Ids{40});
    EXPECT_EQ(included(kSheet, true)[0].id, 42);
    EXPECT_EQ(markedIn(included(kSheet, true)), Ids{42});
    EXPECT_EQ(markedIn(included(kSheet, false)), Ids{43});
}

TEST(PublishMenu, OfWhatCannotBePublishedDoesNotPublish)
{
    PublishFacts facts{.kind = kSet, .isPublishable = false};
    facts.pageSetups = {u"A1"};
    const ed::Menu menu = panel::publishMenu(facts);
    for (int i = 0; i < 5; ++i)
        EXPECT_FALSE(menu.entries[static_cast<std::size_t>(i)].isEnabled);
    EXPECT_TRUE(menu.find(10)->isEnabled);
}

TEST(PublishMenu, OfALockedSetGreysTheLineBehindThePageSetupsSoThatIncludingStays)
{
    const ed::Menu menu = panel::publishMenu({.kind = kSheet, .isLocked = true});
    EXPECT_TRUE(menu.entries[5].isSeparator);
    EXPECT_FALSE(menu.entries[5].isEnabled);
    EXPECT_TRUE(menu.entries[6].isEnabled);
    for (const int id : {10, 14, 15})
        EXPECT_FALSE(menu.find(id)->isEnabled);
    for (const int id : {4, 11, 12, 13, 16, 58})
        EXPECT_TRUE(menu.find(id)->isEnabled);
    EXPECT_TRUE(panel::publishMenu({.kind = kSet, .isLocked = true}).entries[5].isEnabled);
}

TEST(PublishMenu, ChecksReverseOrderAndStamp)
{
    EXPECT_EQ(markedIn(panel::publishMenu({.reverseOrder = true}).entries), Ids{11});
    EXPECT_EQ(markedIn(panel::publishMenu({.stamp = true}).entries), Ids{12});
}

TEST(FormatMenu, HasTheFormatAsTheChosenOne)
{
    const ed::Menu menu = panel::formatMenu(2, false);
    EXPECT_EQ(idsOf(menu), (Ids{1, 2, 3}));
    EXPECT_EQ(menu.entries[1].mark, ed::MenuMark::Radio);
    EXPECT_EQ(markedIn(menu.entries), Ids{2});
    EXPECT_EQ(disabledIn(panel::formatMenu(1, true)), (Ids{1, 2, 3}));
}

TEST(BackgroundMenu, ChecksTheModeOfTheTips)
{
    core::resetTipStyle();
    const ed::Menu menu = panel::backgroundMenu();
    EXPECT_EQ(idsOf(menu), (Ids{47, 48, 0, -1, 0, 49}));
    const auto& tips = menu.entries[3].submenu;
    ASSERT_EQ(tips.size(), 4u);
    EXPECT_EQ(tips[0].id, 50);
    EXPECT_EQ(tips[1].submenu[0].id, 52);
    EXPECT_EQ(tips[1].submenu[2].id, 54);
    EXPECT_EQ(tips[2].id, 51);
    EXPECT_EQ(tips[3].submenu[0].id, 55);
    const auto checked = [] {
        const std::vector<ed::MenuEntry> entries = panel::backgroundMenu().entries[3].submenu;
        for (std::size_t i = 0; i < entries.size(); ++i)
            if (entries[i].mark == ed::MenuMark::Check)
                return static_cast<int>(i);
        return -1;
    };
    EXPECT_EQ(checked(), 3);
    constexpr int kAt[] = {0, 2, 1, 1, 1, 3, 3, 3};
    for (int style = 0; style < 8; ++style) {
        core::chooseTipStyle(style);
        EXPECT_EQ(checked(), kAt[style]);
    }
    core::resetTipStyle();
}

TEST(PanelMenuTexts, EveryEntryHasOne)
{
    for (const ed::Menu& menu : {context({.kind = kSet}), context({.kind = kSubset}),
                                 context({.kind = kSheet}), panel::publishMenu({.kind = kSubset}),
                                 panel::formatMenu(1, false), panel::backgroundMenu()})
        for (const ed::MenuEntry& entry : menu.entries)
            EXPECT_NE(entry.text.isEmpty(), !entry.isSeparator) << entry.id;
    EXPECT_EQ(panel::commandText(38), nullptr);
    EXPECT_EQ(context({.kind = kSheet}).find(37)->text, TvString(text::find(464)));
    EXPECT_EQ(context({.kind = kSet}).find(37)->text, TvString(text::find(463)));
}

class PanelMenusTest : public PanelTest
{
protected:
    void SetUp() override
    {
        PanelTest::SetUp();
        SetCurrentDatabase(database);
        page.SwitchDatabase(true);
    }
    panel::TreeItem* at(const TvSmPersist* object) { return page.tree().itemOf(handleOf(object)); }

    panel::PageWindow window;
    panel::SheetListPage page{window, base::systemClock()};
    panel::PanelMenus menus{page};
};

TEST_F(PanelMenusTest, CtrlAndShiftMeanTheItemWithTheCaret)
{
    page.tree().setCaret(at(plan));
    EXPECT_EQ(menus.itemForClick(at(cover), false, false), at(cover));
    EXPECT_EQ(menus.itemForClick(at(cover), true, false), at(plan));
    EXPECT_EQ(menus.itemForClick(at(cover), false, true), at(plan));
    EXPECT_EQ(menus.itemForClick(nullptr, true, false), nullptr);
    page.tree().setCaret(nullptr);
    EXPECT_EQ(menus.itemForClick(at(cover), true, false), nullptr);
}

TEST_F(PanelMenusTest, FactsAreThoseOfTheItemAndItsSet)
{
    page.tree().selectOnly(at(roof));
    ContextFacts facts = panel::contextFacts(page.tree(), *at(roof));
    EXPECT_EQ(facts.kind, kSubset);
    EXPECT_EQ(facts.selected, 1);
    EXPECT_TRUE(facts.noDocuments);
    EXPECT_FALSE(facts.hasSheets);
    EXPECT_FALSE(facts.isLocked);
    EXPECT_FALSE(facts.isSheetSelected);
    EXPECT_TRUE(panel::contextFacts(page.tree(), *at(ground)).hasSheets);
    page.tree().SelectItem(at(cover));
    ASSERT_TRUE(database->lockDb(database));
    facts = panel::contextFacts(page.tree(), *at(cover));
    EXPECT_TRUE(facts.isLocked);
    EXPECT_TRUE(facts.isSheetSelected);
    EXPECT_FALSE(facts.hasDrawing);
    ASSERT_TRUE(database->unlockDb(database, false));
}

TEST_F(PanelMenusTest, SelectionsAreSortedByNameAndTheLaterOfTwoWins)
{
    TvString later;
    change([&](TvSmSheetSet& set) {
        set.getSheetSelections()->add(u"b", u"");
        set.getSheetSelections()->add(u"Plans & more", u"");
        set.getSheetSelections()->add(u"A", u"");
        later = handleOf(set.getSheetSelections()->add(u"B", u""));
    });
    const ed::Menu menu = menus.selections();
    EXPECT_EQ(idsOf(menu), (Ids{100, 101, 102, 0, 17, 18}));
    EXPECT_EQ(menu.entries[0].text, u"A");
    EXPECT_EQ(menu.entries[1].text, u"B");
    EXPECT_EQ(menu.entries[2].text, u"Plans && more");
    EXPECT_EQ(menus.selectionOf(101), later);
    EXPECT_EQ(menus.dynamicOf(102), panel::PanelMenus::Dynamic::Selection);
    EXPECT_EQ(menus.dynamicOf(103), panel::PanelMenus::Dynamic::Nothing);
    EXPECT_EQ(menus.dynamicOf(99), panel::PanelMenus::Dynamic::Nothing);
    EXPECT_EQ(menus.selectionOf(103), u"");
}

TEST_F(PanelMenusTest, WithoutSelectionsThereAreNoneToManageAndALockedSetTakesNone)
{
    EXPECT_EQ(idsOf(menus.selections()), (Ids{17, 18}));
    EXPECT_EQ(disabledIn(menus.selections()), Ids{17});
    ASSERT_TRUE(database->lockDb(database));
    EXPECT_EQ(disabledIn(menus.selections()), (Ids{17, 18}));
    ASSERT_TRUE(database->unlockDb(database, false));
}

TEST_F(PanelMenusTest, PublishMarksAreReadWhenTheMenuIsBuilt)
{
    EXPECT_FALSE(menus.reverseOrder());
    WriteConfigInt(u"Config\\publish\\PublishReverseOrder", 1);
    EXPECT_FALSE(menus.reverseOrder()) << "not before";
    const ed::Menu menu = menus.publish();
    EXPECT_TRUE(menus.reverseOrder());
    EXPECT_EQ(markedIn(menu.entries), Ids{11});
    menus.toggleStamp();
    menus.toggleReverseOrder();
    int stamp = 0, reverse = 1;
    ReadConfigInt(u"Config\\publish\\PublishStamp", stamp);
    ReadConfigInt(u"Config\\publish\\PublishReverseOrder", reverse);
    EXPECT_EQ(stamp, 1);
    EXPECT_EQ(reverse, 0);
    page.tree().setCaret(nullptr);
    EXPECT_TRUE(menus.publish().entries.empty());
}

TEST_F(PanelMenusTest, IncludingShowsTheItemsOwnState)
{
    change([&](TvSmSheetSet&) {
        ground->setExcludeFromPublish(true);
        cover->setExcludeFromPublish(true);
    });
    page.ReloadDatabase();
    const auto includedAt = [&](const TvSmPersist* object) {
        page.tree().selectOnly(at(object));
        return markedIn(menus.publish().entries[6].submenu);
    };
    EXPECT_EQ(includedAt(ground), Ids{40});
    EXPECT_EQ(includedAt(details), Ids{40}) << "it cannot be published below that";
    EXPECT_EQ(includedAt(roof), Ids{41});
    EXPECT_EQ(includedAt(cover), Ids{43});
    EXPECT_EQ(includedAt(plan), Ids{42});
}
