#pragma once

#include <core/sheet_set_panel.h>

namespace module {

/// What the session asks for, as this module answers it: the panel, made at its first showing and
/// gone at the unload, and the program's folders.
class PaletteHost : public core::SessionHost
{
public:
    /// Nothing while no panel can be made; see showPanel().
    void ShowSheetSetPalette() override { showPanel(); }
    core::SheetSetPalette* palette(Palette which) override;
    ed::PaletteSet* paletteSet() override;
    void AddDstFileToRecentFileList(const TvString& path) override;
    TvString GetUserLocalApplicationDataTemplatePath() override;
    TvString GetUserRoamingDataPath() override;

    /// Null while it was not made.
    core::SheetSetPanel* panel() const { return m_panel.get(); }
    /// Shows the panel, makes it and restores its place at first, and tells the program's window.
    /// @return false when there is none and none can be made.
    bool showPanel();
    /// Hides it, and tells the program's window. False when there is none.
    bool hidePanel();
    /// Keeps its place for the next run, and deletes it. Nothing when there is none.
    void DestroyPalette();

private:
    std::unique_ptr<core::SheetSetPanel> m_panel;
};

/// The one of this module.
PaletteHost& paletteHost();

} // namespace module
