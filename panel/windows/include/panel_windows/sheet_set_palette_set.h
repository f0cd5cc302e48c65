#pragma once

#include <QTimer>

#include <core/sheet_set_panel.h>
#include <core/watch_poller.h>
#include <ui/td_ui_palette.h>
#include <ui/td_ui_palette_set.h>

class CSheetSetDlg;

/// The palette of the sheet list.
class CTarvSheetSetPalette : public CTdUiPalette
{
public:
    /// @param set  that will hold it; not owned; outlives it.
    explicit CTarvSheetSetPalette(const CTdUiPaletteSet& set);
    CSheetSetDlg& page() { return *m_page; }

private:
    CSheetSetDlg* m_page; // owned by the toolkit
};

/// A palette that has nothing to show yet, and says what it will be for.
class CEmptyPalette : public CTdUiPalette
{
public:
    CEmptyPalette(int title, int words);
};
class CTarvSheetViewsPalette : public CEmptyPalette
{
public:
    CTarvSheetViewsPalette();
};
class CTarvModelViewsPalette : public CEmptyPalette
{
public:
    CTarvModelViewsPalette();
};

/// The window of sheet sets: docks left and right, and watches the files of open sets.
class CTarvSheetSetPaletteSet : public CTdUiPaletteSet
{
public:
    static constexpr int kWatchMs = 100;

    /// With its three palettes.
    explicit CTarvSheetSetPaletteSet(QMainWindow* frame);

    CTarvSheetSetPalette& sheetList() { return *m_sheetList; }
    void OnShown(bool shown) override;

private:
    CTarvSheetSetPalette* m_sheetList; // owned by the set
    core::WatchPoller m_poller;
    QTimer m_watch;
};

namespace panel {

/// Makes the palette set in the program's frame; what is open in the session shows at once. Null
/// in a process without windows.
std::unique_ptr<core::SheetSetPanel> makeSheetSetPanel();

} // namespace panel
