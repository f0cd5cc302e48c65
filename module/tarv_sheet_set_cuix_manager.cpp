#include "module/tarv_sheet_set_cuix_manager.h"

#include "module/palette_host.h"

namespace {

constexpr int kWorked = 1;
constexpr int kNoState = -1;
constexpr int kHidden = 0;
constexpr int kEdges = 20480;       // left and right, in the frame's bits
constexpr int kStandardWidth = 200; // pixels

} // namespace

int TarvSheetSetCuixManager::updateFromPalette(ITarvWsNodInfo& node)
{
    if (TarvWSManager* workspaces = tarvWSManager())
        workspaces->updateWsESWNodInfo(getPalette(), node);
    return kWorked;
}

int TarvSheetSetCuixManager::applyToPalette(ITarvWsNodInfo& node, bool isShownOnly)
{
    const int state = node.getDisplayState();
    if (state == kHidden)
        module::paletteHost().hidePanel();
    else if (state != kNoState)
        module::paletteHost().showPanel();
    TarvWSManager* workspaces = tarvWSManager();
    if (!isShownOnly && workspaces && getPalette())
        workspaces->applyWsESWNodInfo(getPalette(), node, kEdges, kStandardWidth, 0, nullptr);
    return kWorked;
}

ed::PaletteSet* TarvSheetSetCuixManager::getPalette()
{
    return module::paletteHost().paletteSet();
}
