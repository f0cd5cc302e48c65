#pragma once

#include <ed/tarv_palette_prop_manager.h>

namespace app {

/// Carries the places of palette sets into workspaces and back.
class WorkspaceManager : public TarvWSManager
{
public:
    /// Takes its place as tarvWSManager(), and leaves it at its end.
    WorkspaceManager();
    ~WorkspaceManager() override;
    WorkspaceManager(const WorkspaceManager&) = delete;
    WorkspaceManager& operator=(const WorkspaceManager&) = delete;

    void updateWsESWNodInfo(ed::PaletteSet* paletteSet, ITarvWsNodInfo& node) override;
    /// What the node does not tell stays as it is; a null palette set is nothing.
    void applyWsESWNodInfo(ed::PaletteSet* paletteSet, ITarvWsNodInfo& node, int edges,
                           int standardWidth, int reserved, const ed::ScreenRect* rect) override;
};

} // namespace app
