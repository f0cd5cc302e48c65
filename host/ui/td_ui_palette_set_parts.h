#pragma once

#include <QPointer>
#include <QTimer>

#include <ed/menu.h>

#include "ui/td_ui_palette_set.h"

class QFrame;
class QMainWindow;
class QTabWidget;

namespace ui {
class PaletteStrip;
class PaletteTitleBar;
} // namespace ui

/// What a palette set is made of, and its states:
/// 1. Open: the tabs stand in the body, below the title.
/// 2. Rolled in, docked: the body is the strip, the title takes no room. The tabs stand in the
///    flyout, which covers a part of the frame while it is out.
/// 3. Rolled in, floating: the title alone, with the body below it while it is out.
struct CTdUiPaletteSet::Parts {
    CTdUiPaletteSet& set;
    QPointer<QMainWindow> frame; // not owned
    TvString title;

    // Owned by the toolkit.
    ui::PaletteTitleBar *titleBar = nullptr, *flyoutTitle = nullptr;
    QWidget* body = nullptr;
    QTabWidget* tabs = nullptr;
    ui::PaletteStrip* strip = nullptr;
    QPointer<QFrame> flyout; // owned by us; a child of the frame
    QTimer watch;            // while it is out: whether somebody is still there

    unsigned edges = 15; // ed::DockEdges
    QSize minimum{120, 80};
    bool isRollup = false, isOut = false, isOutByKeys = false;
    bool isMouseIn = false;
    bool isArranging = false; // what moves now is moved by us
    bool isSettling = false;  // what moves now is moved by the frame
    bool isTransparent = false;
    int transparency = 0; // percent
    bool mayDock = true;
    QRect floating, docked; // null: never
    CTdUiPalette* active = nullptr;

    explicit Parts(CTdUiPaletteSet& owner) : set(owner) {}
    void build(const TvString& toolId);
    void arrange();
    void arrangeDocked();
    void giveDockedSize();
    void arrangeFloating();
    void placeFlyout();
    void rollOut(bool byKeys);
    void rollUp();
    bool isSomebodyThere() const;
    void updateOpacity();
    void updateAllowedAreas();
    void updateTabSide();
    void noteGeometry();
    void activePageChanged();
    bool isAllowed(ed::DockSide side) const;
    void dock(ed::DockSide side, const QRect& rect);
    void floatAt(const QRect& rect);
    ed::Menu menu() const;
    void showMenu();
    void chosen(int id);
    void askTransparency();
};
