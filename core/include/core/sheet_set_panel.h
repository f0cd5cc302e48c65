#pragma once

#include <functional>
#include <memory>

#include <base/tv_string.h>
#include <core/session_host.h>

namespace core {

/// The palette set with its three palettes, as those know it who show and hide it.
class SheetSetPanel
{
public:
    virtual ~SheetSetPanel() = default;
    /// Docking is enabled, and the palettes are in.
    virtual ed::PaletteSet& paletteSet() = 0;
    /// Null for one that there is not.
    virtual SheetSetPalette* palette(SessionHost::Palette which) = 0;
    /// SSMPOLLTIME has another value.
    virtual void setPollTime(short seconds) = 0;
    /// SSMSHEETSTATUS has another value.
    virtual void setSheetStatusMode(short mode) = 0;
    /// Layouts of a drawing become sheets where the tree's selection is; nothing without one.
    virtual void importLayoutsAsSheets(const TvString& drawing,
                                       const std::vector<TvString>& layouts) = 0;
};

using SheetSetPanelMaker = std::function<std::unique_ptr<SheetSetPanel>()>;

/// Supplied by the room that has the windows; an empty function takes it away.
void setSheetSetPanelMaker(SheetSetPanelMaker make);
/// Empty: no panel can be made.
const SheetSetPanelMaker& sheetSetPanelMaker();

} // namespace core
