#pragma once

#include <memory>

#include <QDockWidget>

#include <ed/palette_set.h>

class CTdUiPalette;
class QMainWindow;

/// A window of palettes, a tab for each: docked at an edge of the frame or floating.
///
/// Rolled in, it is a strip at its edge (docked) or its title (floating), and opens while the mouse
/// or the keyboard is in it. Nobody sees it before Show(); closing it hides it.
class CTdUiPaletteSet : public QDockWidget, public ed::PaletteSet
{
public:
    /// @param toolId  names its place among those that the frame remembers; not empty.
    /// @param frame   where it docks; not owned, outlives us; null: it floats always.
    CTdUiPaletteSet(const TvString& title, const TvString& toolId, QMainWindow* frame);
    ~CTdUiPaletteSet() override;

    void SetTitle(const TvString& title);
    TvString GetTitle() const;
    /// Below which no user makes its palettes, in pixels.
    void SetMinimumSize(int width, int height);

    /// @return the palette's index; -1, and the palette stays the caller's, for null and for one
    ///         that is in a set already. Owned from here on.
    int AddPalette(CTdUiPalette* palette);
    int GetPaletteCount() const;
    CTdUiPalette* GetPalette(int index) const; ///< null when there is none
    CTdUiPalette* GetActivePalette() const;    ///< null when there is none
    bool SetActivePalette(int index);

    void SetAutoRollup(bool isOn);
    bool GetAutoRollup() const;
    /// Opens or rolls in one that rolls in by itself; anything else is nothing.
    void RollOut();
    void RollUp();
    /// @param percent  0 (cannot be seen through) to 90.
    void SetTransparency(bool isOn, int percent);
    void AllowDocking(bool mayDock);

    // ed::PaletteSet
    bool isShown() const override;
    void setShown(bool shown) override;
    bool isRolledUp() const override;
    void EnableDocking(unsigned edges) override;
    void RestoreControlBar(int bar, const ed::ScreenRect* rect = nullptr) override;
    ed::PalettePlacement placement() const override;
    void setPlacement(const ed::PalettePlacement& placement) override;

    /// Where it docks now, or Floating.
    ed::DockSide side() const;

    /// It was shown or hidden, by whomever.
    virtual void OnShown(bool shown);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    friend class CTdUiPalette;
    struct Parts;
    std::unique_ptr<Parts> m_parts;
};
