// What stands in the menus, where, and when it is enabled.

#include <algorithm>
#include <array>
#include <span>

#include <core/tip_style.h>
#include <resources/texts.h>

#include "panel/panel_menus.h"

namespace panel {

namespace {

constexpr int kLine = 0, kPublishMenu = -1;
constexpr int kPublishText = 459, kPageSetupText = 517;
constexpr int kSubsetIncludeText = 433, kSheetIncludeText = 434;
constexpr int kTipsText = 478, kPreviewTips = 473, kAllTips = 475;
constexpr int kSheetProperties = 464; // of a set and a subset: 463

struct Row {
    int id;
    int text;
};

// In the order of their numbers; what has two texts is told apart by its menu.
// clang-format off
constexpr Row kTexts[] = {
    {1, 426}, {2, 427}, {3, 428},
    {4, 429}, {5, 430}, {6, 431}, {7, 432}, {10, 435}, {11, 436}, {12, 437}, {13, 438}, {14, 439}, {15, 440},
    {16, 441}, {17, 442}, {18, 443},
    {19, 444}, {20, 445}, {21, 446}, {22, 447}, {23, 448}, {24, 449}, {25, 450}, {26, 451}, {27, 452}, {28, 453},
    {29, 454}, {30, 455}, {31, 456}, {32, 457}, {33, 458}, {34, 460}, {35, 461}, {36, 462}, {37, 463},
    {40, 466}, {41, 465}, {42, 467}, {43, 468}, {44, 459},
    {47, 476}, {48, 477}, {49, 480},
    {50, 472}, {51, 474}, {52, 469}, {53, 470}, {54, 471}, {55, 469}, {56, 470}, {57, 471},
    {58, 518},
};

constexpr int kSetMenu[] = {19, 20, kLine, 24, 25, 26, kLine, 27, 33, kLine, kPublishMenu, 34, 35, kLine, 36, kLine, 37};
constexpr int kSubsetMenu[] = {24, 25, 26, kLine, 28, 29, 30, kLine, kPublishMenu, 34, kLine, 36, kLine, 37};
constexpr int kSheetMenu[] = {21, 22, 23, kLine, 24, 26, kLine, 31, 32, kLine, kPublishMenu, 34, kLine, 36, kLine, 37};
constexpr int kSeveralMenu[] = {21, 22, kLine, 32, kLine, kPublishMenu, 34, kLine, 36};

// Entries that need a document and an unlocked set.
constexpr int kChanging[] = {24, 26, 33, 34, 36, 37};
constexpr int kChangingSet[] = {25, 27, 35};
constexpr int kChangingSubset[] = {25, 28, 29, 30};
constexpr int kChangingSheet[] = {31, 32};
// clang-format on

std::span<const int> rowsFor(const ContextFacts& facts)
{
    if (facts.selected > 1)
        return kSeveralMenu;
    switch (facts.kind) {
    case TreeItemData::kSheetSet: return kSetMenu;
    case TreeItemData::kSubset: return kSubsetMenu;
    default: return kSheetMenu;
    }
}

std::span<const int> changingFor(std::uint32_t kind)
{
    switch (kind) {
    case TreeItemData::kSheetSet: return kChangingSet;
    case TreeItemData::kSubset: return kChangingSubset;
    default: return kChangingSheet;
    }
}

void disable(ed::Menu& menu, std::span<const int> ids)
{
    for (const int id : ids)
        if (ed::MenuEntry* entry = menu.find(id))
            entry->isEnabled = false;
}

ed::MenuEntry& add(ed::Menu& menu, int id)
{
    return menu.add(id, commandText(id));
}

/// Of one item.
void applyFacts(ed::Menu& menu, const ContextFacts& facts)
{
    if (facts.noDocuments || facts.isLocked) {
        disable(menu, kChanging);
        disable(menu, changingFor(facts.kind));
    } else if (!facts.isCurrentSheetInSet) {
        disable(menu, std::array{int(kInsertSheetList)});
    }
    if (facts.kind != TreeItemData::kSheet) {
        if (!facts.hasSheets)
            disable(menu, std::array{int(kArchive), int(kTransmit)});
    } else if (!facts.hasDrawing) {
        disable(menu, std::array{int(kOpenSheet), int(kOpenSheetReadOnly), int(kExploreSheet),
                                 int(kTransmit)});
    } else if (facts.isDrawingOpen) {
        disable(menu, std::array{int(kOpenSheetReadOnly)});
    }
}

/// Of several items, with one that the menu is about.
void applyFactsOfSeveral(ed::Menu& menu, const ContextFacts& facts)
{
    if (facts.kind == TreeItemData::kSheet) {
        if (!facts.hasDrawing)
            disable(menu, std::array{int(kOpenSheet), int(kOpenSheetReadOnly), int(kTransmit)});
        else if (facts.isDrawingOpen)
            disable(menu, std::array{int(kOpenSheetReadOnly)});
    }
    if (!facts.isSheetSelected)
        disable(menu, std::array{int(kRemoveSheets)});
    if (!facts.isCurrentSheetInSet)
        disable(menu, std::array{int(kInsertSheetList)});
}

ed::Menu choiceOf(int chosen, std::initializer_list<int> ids)
{
    ed::Menu menu;
    for (const int id : ids)
        add(menu, id).mark = id == chosen ? ed::MenuMark::Check : ed::MenuMark::None;
    return menu;
}

ed::Menu tipStyles()
{
    const core::TipStyle::Mode mode = core::tipStyle().mode;
    const auto markOf = [mode](core::TipStyle::Mode each) {
        return each == mode ? ed::MenuMark::Check : ed::MenuMark::None;
    };
    ed::Menu menu;
    add(menu, 50).mark = markOf(core::TipStyle::Name);
    menu.addSubmenu(text::find(kPreviewTips), choiceOf(0, {52, 53, 54})).mark =
        markOf(core::TipStyle::NameAndPreview);
    add(menu, 51).mark = markOf(core::TipStyle::NameAndDetails);
    menu.addSubmenu(text::find(kAllTips), choiceOf(0, {55, 56, 57})).mark =
        markOf(core::TipStyle::Everything);
    return menu;
}

} // namespace

const char16_t* commandText(int id)
{
    const auto row = std::ranges::find(kTexts, id, &Row::id);
    return row == std::end(kTexts) ? nullptr : text::find(row->text);
}

ed::Menu contextMenu(const ContextFacts& facts, ed::Menu&& publish)
{
    ed::Menu menu;
    for (const int id : rowsFor(facts)) {
        if (id == kLine)
            menu.addSeparator();
        else if (id != kPublishMenu)
            add(menu, id);
        else if (facts.noDocuments)
            add(menu, kNoPublish).isEnabled = false;
        else
            menu.addSubmenu(text::find(kPublishText), std::move(publish));
    }
    if (facts.kind == TreeItemData::kSheet && facts.selected <= 1)
        menu.find(kProperties)->text = text::find(kSheetProperties);
    if (facts.selected > 1)
        applyFactsOfSeveral(menu, facts);
    else
        applyFacts(menu, facts);
    return menu;
}

ed::Menu publishMenu(const PublishFacts& facts)
{
    ed::Menu menu;
    for (int id = kPublishFirst; id <= kPublishLast; ++id)
        add(menu, id).isEnabled = facts.isPublishable;
    ed::Menu setups;
    int id = kFirstDynamic;
    for (const TvString& name : facts.pageSetups)
        setups.addName(id++, name);
    menu.addSubmenu(text::find(kPageSetupText), std::move(setups),
                    facts.isPublishable && !facts.pageSetups.empty());
    menu.addSeparator();
    if (facts.kind == TreeItemData::kSubset) {
        menu.addSubmenu(text::find(kSubsetIncludeText),
                        choiceOf(facts.isIncluded ? kIncludeSubset : kExcludeSubset, {41, 40}));
        menu.addSeparator();
    } else if (facts.kind == TreeItemData::kSheet) {
        menu.addSubmenu(text::find(kSheetIncludeText),
                        choiceOf(facts.isIncluded ? kIncludeSheet : kExcludeSheet, {42, 43}));
        menu.addSeparator();
    }
    add(menu, 10);
    add(menu, 11).mark = facts.reverseOrder ? ed::MenuMark::Check : ed::MenuMark::None;
    add(menu, 12).mark = facts.stamp ? ed::MenuMark::Check : ed::MenuMark::None;
    add(menu, 13);
    menu.addSeparator();
    for (const int each : {58, 14, 15, 16})
        add(menu, each);
    if (facts.isLocked) {
        disable(menu, std::array{10, 14, 15});
        // The line behind the page setups, and so nothing: including stays possible.
        constexpr std::size_t kGreyed = 5;
        if (facts.kind != TreeItemData::kSheetSet)
            menu.entries[kGreyed].isEnabled = false;
    }
    return menu;
}

ed::Menu formatMenu(int format, bool isLocked)
{
    ed::Menu menu;
    for (int id = kFirstFormat; id <= kLastFormat; ++id) {
        ed::MenuEntry& entry = add(menu, id);
        entry.isEnabled = !isLocked;
        entry.mark = id == format ? ed::MenuMark::Radio : ed::MenuMark::None;
    }
    return menu;
}

ed::Menu backgroundMenu()
{
    ed::Menu menu;
    add(menu, kExpandAll);
    add(menu, kCollapseAll);
    menu.addSeparator();
    menu.addSubmenu(text::find(kTipsText), tipStyles());
    menu.addSeparator();
    add(menu, kHidePanel);
    return menu;
}

} // namespace panel
