// The menu in the title of a palette set: where it is, and how it behaves.
#include "palette_title_bar.h"
#include "td_ui_palette_set_parts.h"
#include "transparency_dialog.h"
#include "ui/menu.h"
#include "ui/qt_text.h"

namespace {

constexpr int kFloatText = 23314, kLeftText = 23315, kRightText = 23316, kTopText = 23317,
              kBottomText = 23318, kAllowText = 23319, kRollupText = 23320,
              kTransparencyText = 23321, kNoneText = 23322, kPercentText = 23323,
              kCloseText = 23324, kOtherText = 23325;

// Of entries. The sides have the numbers of their bars.
constexpr int kAllow = 1, kRollup = 2, kClose = 3, kOther = 4,
              kTransparency = 100; // and the percent
constexpr int kPercents[] = {0, 10, 20, 30, 40, 50, 60, 70, 80};

struct SideText {
    ed::DockSide side;
    int text;
};
constexpr SideText kSides[] = {{ed::DockSide::Floating, kFloatText},
                               {ed::DockSide::Left, kLeftText},
                               {ed::DockSide::Right, kRightText},
                               {ed::DockSide::Top, kTopText},
                               {ed::DockSide::Bottom, kBottomText}};

TvString textOf(int number)
{
    return ui::fromQt(ui::textOf(number));
}

void tick(ed::MenuEntry& entry, bool isTicked, ed::MenuMark mark = ed::MenuMark::Check)
{
    entry.mark = isTicked ? mark : ed::MenuMark::None;
}

} // namespace

ed::Menu CTdUiPaletteSet::Parts::menu() const
{
    ed::Menu menu;
    for (const SideText& row : kSides)
        tick(menu.add(static_cast<int>(row.side), textOf(row.text), isAllowed(row.side)),
             set.side() == row.side, ed::MenuMark::Radio);
    menu.addSeparator();
    tick(menu.add(kAllow, textOf(kAllowText)), mayDock);
    tick(menu.add(kRollup, textOf(kRollupText)), isRollup);
    ed::Menu percents;
    for (const int percent : kPercents) {
        const TvString text =
            percent == 0 ? textOf(kNoneText) : TvString().format(textOf(kPercentText), percent);
        tick(percents.add(kTransparency + percent, text),
             percent == (isTransparent ? transparency : 0), ed::MenuMark::Radio);
    }
    percents.addSeparator();
    percents.add(kOther, textOf(kOtherText));
    menu.addSubmenu(textOf(kTransparencyText), std::move(percents), set.isFloating());
    menu.addSeparator();
    menu.add(kClose, textOf(kCloseText)).icon = u"close";
    return menu;
}

void CTdUiPaletteSet::Parts::showMenu()
{
    const ui::PaletteTitleBar& from = flyoutTitle->isVisible() ? *flyoutTitle : *titleBar;
    chosen(ui::popupMenu(menu(), from.menuPoint(), &set));
}

void CTdUiPaletteSet::Parts::chosen(int id)
{
    if (ed::sideOfBar(id))
        set.RestoreControlBar(id);
    else if (id == kAllow)
        set.AllowDocking(!mayDock);
    else if (id == kRollup)
        set.SetAutoRollup(!isRollup);
    else if (id == kClose)
        set.setShown(false);
    else if (id == kOther)
        askTransparency();
    else if (id >= kTransparency)
        set.SetTransparency(id > kTransparency, id - kTransparency);
}

void CTdUiPaletteSet::Parts::askTransparency()
{
    ui::TransparencyDialog dialog(isTransparent, transparency, &set);
    if (dialog.DoModal() == text::kIdOk)
        set.SetTransparency(dialog.isOn(), dialog.percent());
}
