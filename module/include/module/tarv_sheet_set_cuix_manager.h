#pragma once

#include <ed/tarv_palette_prop_manager.h>

/// Keeps the place of the palette set of sheet sets in the user's workspaces.
class TarvSheetSetCuixManager : public ITarvPalettePropManager
{
public:
    int updateFromPalette(ITarvWsNodInfo& node) override;
    /// Without a state in the node, only a palette set that is there gets a place.
    int applyToPalette(ITarvWsNodInfo& node, bool isShownOnly) override;
    ed::PaletteSet* getPalette() override;
};
