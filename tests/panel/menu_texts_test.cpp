// Which text stands at which entry.

#include <panel/panel_menus.h>

#include <resources/texts.h>

#include <gtest/gtest.h>

namespace {

struct Row {
    int id;
    int text;
};

constexpr Row kSetRows[] = {{19, 444}, {20, 445}, {24, 449}, {25, 450}, {26, 451}, {27, 452},
                            {33, 458}, {34, 460}, {35, 461}, {36, 462}, {37, 463}};
constexpr Row kSubsetRows[] = {{24, 449}, {25, 450}, {26, 451}, {28, 453}, {29, 454},
                               {30, 455}, {34, 460}, {36, 462}, {37, 463}};
constexpr Row kSheetRows[] = {{21, 446}, {22, 447}, {23, 448}, {24, 449}, {26, 451},
                              {31, 456}, {32, 457}, {34, 460}, {36, 462}, {37, 464}};
constexpr Row kSeveralRows[] = {{21, 446}, {22, 447}, {32, 457}, {34, 460}, {36, 462}};
constexpr Row kPublishRows[] = {{4, 429},  {5, 430},  {6, 431},  {7, 432},  {10, 435}, {11, 436},
                                {12, 437}, {13, 438}, {58, 518}, {14, 439}, {15, 440}, {16, 441}};
constexpr Row kFormatRows[] = {{1, 426}, {2, 427}, {3, 428}};
constexpr Row kBackgroundRows[] = {{47, 476}, {48, 477}, {49, 480}};
constexpr Row kNameTips[] = {{50, 472}, {51, 474}};
constexpr Row kPreviewTips[] = {{52, 469}, {53, 470}, {54, 471}};
constexpr Row kAllTips[] = {{55, 469}, {56, 470}, {57, 471}};

template <std::size_t Count>
void expectTexts(const std::vector<ed::MenuEntry>& entries, const Row (&rows)[Count])
{
    for (const Row& row : rows) {
        const auto entry = std::ranges::find_if(entries, [&](const ed::MenuEntry& each) {
            return each.id == row.id && each.submenu.empty() && !each.isSeparator;
        });
        ASSERT_NE(entry, entries.end()) << row.id;
        EXPECT_EQ(entry->text, TvString(text::find(row.text))) << row.id;
    }
}

const std::vector<ed::MenuEntry>& submenuOf(const ed::Menu& menu, int text)
{
    static const std::vector<ed::MenuEntry> none;
    for (const ed::MenuEntry& entry : menu.entries)
        if (!entry.submenu.empty() && entry.text == TvString(text::find(text)))
            return entry.submenu;
    return none;
}

std::vector<int> idsOf(const std::vector<ed::MenuEntry>& entries)
{
    std::vector<int> ids;
    for (const ed::MenuEntry& entry : entries)
        ids.push_back(entry.id);
    return ids;
}

ed::Menu context(std::uint32_t kind, int selected = 1)
{
    panel::ContextFacts facts;
    facts.kind = kind;
    facts.selected = selected;
    return panel::contextMenu(facts, panel::publishMenu({}));
}

TEST(MenuTexts, OfTheContextMenus)
{
    expectTexts(context(0).entries, kSetRows);
    expectTexts(context(1).entries, kSubsetRows);
    expectTexts(context(2).entries, kSheetRows);
    expectTexts(context(2, 2).entries, kSeveralRows);
    for (const std::uint32_t kind : {0U, 1U, 2U})
        EXPECT_FALSE(submenuOf(context(kind), 459).empty()) << kind;
    EXPECT_FALSE(submenuOf(context(1, 2), 459).empty());
}

TEST(MenuTexts, OfThePublishMenusAndTheirSubmenus)
{
    panel::PublishFacts facts;
    facts.pageSetups = {u"A1"};
    for (const std::uint32_t kind : {0U, 1U, 2U}) {
        facts.kind = kind;
        const ed::Menu menu = panel::publishMenu(facts);
        expectTexts(menu.entries, kPublishRows);
        EXPECT_EQ(submenuOf(menu, 517).size(), 1u);
    }
    EXPECT_TRUE(submenuOf(panel::publishMenu({.kind = 0}), 433).empty());
    EXPECT_EQ(idsOf(submenuOf(panel::publishMenu({.kind = 1}), 433)), (std::vector<int>{41, 40}));
    EXPECT_EQ(idsOf(submenuOf(panel::publishMenu({.kind = 2}), 434)), (std::vector<int>{42, 43}));
}

TEST(MenuTexts, OfTheFormatsAndTheBackground)
{
    expectTexts(panel::formatMenu(1, false).entries, kFormatRows);
    const ed::Menu background = panel::backgroundMenu();
    expectTexts(background.entries, kBackgroundRows);
    const std::vector<ed::MenuEntry>& tips = submenuOf(background, 478);
    expectTexts(tips, kNameTips);
    ed::Menu inner;
    inner.entries = tips;
    expectTexts(submenuOf(inner, 473), kPreviewTips);
    expectTexts(submenuOf(inner, 475), kAllTips);
}

} // namespace
