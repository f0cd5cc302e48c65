// Every menu of the tree for every kind of item, one and several selected, a locked set and a free
// one, with documents and without.

#include <panel/panel_menus.h>

#include <gtest/gtest.h>

namespace {

/// "21 (22) | P": ids in order, those that are disabled in parentheses; | is a line, P the submenu
/// of publishing.
std::string shown(const ed::Menu& menu)
{
    std::string text;
    for (const ed::MenuEntry& entry : menu.entries) {
        std::string word = entry.isSeparator        ? "|"
                           : !entry.submenu.empty() ? "P"
                                                    : std::to_string(entry.id);
        if (!entry.isSeparator && !entry.isEnabled)
            word = "(" + word + ")";
        text += text.empty() ? word : " " + word;
    }
    return text;
}

struct Row {
    std::uint32_t kind;
    int selected;
    bool isLocked, noDocuments;
    const char* menu;
};

constexpr std::uint32_t kSet = 0, kSubset = 1, kSheet = 2;
constexpr bool kFree = false, kLocked = true, kOpen = false, kNone = true;

// clang-format off
constexpr Row kRows[] = {
    {kSet,    1, kFree,   kOpen, "19 20 | 24 25 26 | 27 33 | P 34 35 | 36 | 37"},
    {kSet,    1, kFree,   kNone, "19 20 | (24) (25) (26) | (27) (33) | (44) (34) (35) | (36) | (37)"},
    {kSet,    1, kLocked, kOpen, "19 20 | (24) (25) (26) | (27) (33) | P (34) (35) | (36) | (37)"},
    {kSet,    1, kLocked, kNone, "19 20 | (24) (25) (26) | (27) (33) | (44) (34) (35) | (36) | (37)"},
    {kSubset, 1, kFree,   kOpen, "24 25 26 | 28 29 30 | P 34 | 36 | 37"},
    {kSubset, 1, kFree,   kNone, "(24) (25) (26) | (28) (29) (30) | (44) (34) | (36) | (37)"},
    {kSubset, 1, kLocked, kOpen, "(24) (25) (26) | (28) (29) (30) | P (34) | (36) | (37)"},
    {kSubset, 1, kLocked, kNone, "(24) (25) (26) | (28) (29) (30) | (44) (34) | (36) | (37)"},
    {kSheet,  1, kFree,   kOpen, "21 22 23 | 24 26 | 31 32 | P 34 | 36 | 37"},
    {kSheet,  1, kFree,   kNone, "21 22 23 | (24) (26) | (31) (32) | (44) (34) | (36) | (37)"},
    {kSheet,  1, kLocked, kOpen, "21 22 23 | (24) (26) | (31) (32) | P (34) | (36) | (37)"},
    {kSheet,  1, kLocked, kNone, "21 22 23 | (24) (26) | (31) (32) | (44) (34) | (36) | (37)"},
    // Of several: whether the set is locked is looked at when the command runs.
    {kSet,    2, kFree,   kOpen, "21 22 | 32 | P 34 | 36"},
    {kSet,    2, kLocked, kNone, "21 22 | 32 | (44) 34 | 36"},
    {kSubset, 2, kFree,   kOpen, "21 22 | 32 | P 34 | 36"},
    {kSubset, 2, kFree,   kNone, "21 22 | 32 | (44) 34 | 36"},
    {kSubset, 3, kLocked, kOpen, "21 22 | 32 | P 34 | 36"},
    {kSubset, 2, kLocked, kNone, "21 22 | 32 | (44) 34 | 36"},
    {kSheet,  2, kFree,   kOpen, "21 22 | 32 | P 34 | 36"},
    {kSheet,  2, kFree,   kNone, "21 22 | 32 | (44) 34 | 36"},
    {kSheet,  3, kLocked, kOpen, "21 22 | 32 | P 34 | 36"},
    {kSheet,  2, kLocked, kNone, "21 22 | 32 | (44) 34 | 36"},
    // With nothing selected the menu is that of one item.
    {kSheet,  0, kFree,   kOpen, "21 22 23 | 24 26 | 31 32 | P 34 | 36 | 37"},
};

struct DrawingRow {
    int selected;
    bool hasDrawing, isOpen;
    const char* menu;
};
constexpr DrawingRow kDrawingRows[] = {
    {1, false, false, "(21) (22) (23) | 24 26 | 31 32 | P (34) | 36 | 37"},
    {1, true,  false, "21 22 23 | 24 26 | 31 32 | P 34 | 36 | 37"},
    {1, true,  true,  "21 (22) 23 | 24 26 | 31 32 | P 34 | 36 | 37"},
    {2, false, false, "(21) (22) | 32 | P (34) | 36"},
    {2, true,  true,  "21 (22) | 32 | P 34 | 36"},
};

constexpr Row kPublishRows[] = {
    {kSet,    1, kFree,   kOpen, "4 5 6 7 (0) | 10 11 12 13 | 58 14 15 16"},
    {kSet,    1, kLocked, kOpen, "4 5 6 7 (0) | (10) 11 12 13 | 58 (14) (15) 16"},
    {kSubset, 1, kFree,   kOpen, "4 5 6 7 (0) | P | 10 11 12 13 | 58 14 15 16"},
    {kSubset, 1, kLocked, kOpen, "4 5 6 7 (0) | P | (10) 11 12 13 | 58 (14) (15) 16"},
    {kSheet,  1, kFree,   kOpen, "4 5 6 7 (0) | P | 10 11 12 13 | 58 14 15 16"},
    {kSheet,  1, kLocked, kOpen, "4 5 6 7 (0) | P | (10) 11 12 13 | 58 (14) (15) 16"},
};
// clang-format on

TEST(MenuTable, TheContextMenuOfEveryKindCountLockAndDocuments)
{
    for (const Row& row : kRows) {
        panel::ContextFacts facts;
        facts.kind = row.kind;
        facts.selected = row.selected;
        facts.isLocked = row.isLocked;
        facts.noDocuments = row.noDocuments;
        EXPECT_EQ(shown(panel::contextMenu(facts, panel::publishMenu({}))), row.menu)
            << "kind " << row.kind << ", " << row.selected << " selected"
            << (row.isLocked ? ", locked" : "") << (row.noDocuments ? ", no documents" : "");
    }
}

TEST(MenuTable, TheContextMenuOfASheetByItsDrawing)
{
    for (const DrawingRow& row : kDrawingRows) {
        panel::ContextFacts facts;
        facts.kind = kSheet;
        facts.selected = row.selected;
        facts.hasDrawing = row.hasDrawing;
        facts.isDrawingOpen = row.isOpen;
        EXPECT_EQ(shown(panel::contextMenu(facts, panel::publishMenu({}))), row.menu);
    }
}

TEST(MenuTable, TheContextMenuWithoutSheetsOutsideTheSetAndWithoutASelectedSheet)
{
    const auto menuOf = [](panel::ContextFacts facts) {
        return shown(panel::contextMenu(facts, panel::publishMenu({})));
    };
    EXPECT_EQ(menuOf({.kind = kSet, .hasSheets = false}),
              "19 20 | 24 25 26 | 27 (33) | P (34) 35 | 36 | 37");
    EXPECT_EQ(menuOf({.kind = kSubset, .hasSheets = false}),
              "24 25 26 | 28 29 30 | P (34) | 36 | 37");
    EXPECT_EQ(menuOf({.kind = kSubset, .isCurrentSheetInSet = false}),
              "24 25 26 | 28 29 30 | P 34 | (36) | 37");
    EXPECT_EQ(menuOf({.kind = kSubset, .selected = 2, .isSheetSelected = false}),
              "21 22 | (32) | P 34 | 36");
    EXPECT_EQ(menuOf({.kind = kSheet, .selected = 2, .isCurrentSheetInSet = false}),
              "21 22 | 32 | P 34 | (36)");
}

TEST(MenuTable, ThePublishMenuOfEveryKindAndLock)
{
    for (const Row& row : kPublishRows) {
        panel::PublishFacts facts;
        facts.kind = row.kind;
        facts.isLocked = row.isLocked;
        EXPECT_EQ(shown(panel::publishMenu(facts)), row.menu)
            << "kind " << row.kind << (row.isLocked ? ", locked" : "");
    }
}

TEST(MenuTable, TheFormatMenuIsDisabledWhileTheSetIsLocked)
{
    EXPECT_EQ(shown(panel::formatMenu(1, false)), "1 2 3");
    EXPECT_EQ(shown(panel::formatMenu(1, true)), "(1) (2) (3)");
}

} // namespace
