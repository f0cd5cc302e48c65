#include "app/workspace_manager.h"

#include <algorithm>

#include <ed/palette_set.h>

namespace app {

namespace {

constexpr int kNotStored = -1;
// The frame's own bits of the edges of a bar.
constexpr int kBarLeft = 0x1000;
constexpr int kBarTop = 0x2000;
constexpr int kBarRight = 0x4000;
constexpr int kBarBottom = 0x8000;
constexpr int kMostTransparent = 90;

unsigned dockEdges(int bars)
{
    unsigned edges = ed::kDockNowhere;
    for (const auto& [bar, edge] : {std::pair(kBarLeft, ed::kDockLeft),
                                    {kBarTop, ed::kDockTop},
                                    {kBarRight, ed::kDockRight},
                                    {kBarBottom, ed::kDockBottom}})
        if (bars & bar)
            edges |= edge;
    return edges;
}

void takeState(int state, bool& out)
{
    if (state != kNotStored)
        out = state != 0;
}

void takeRect(const ed::ScreenRect& rect, ed::ScreenRect& out)
{
    if (!rect.isEmpty())
        out = rect;
}

} // namespace

WorkspaceManager::WorkspaceManager()
{
    tarvSetWSManager(this);
}

WorkspaceManager::~WorkspaceManager()
{
    if (tarvWSManager() == this)
        tarvSetWSManager(nullptr);
}

void WorkspaceManager::updateWsESWNodInfo(ed::PaletteSet* paletteSet, ITarvWsNodInfo& node)
{
    if (!paletteSet)
        return;
    const ed::PalettePlacement place = paletteSet->placement();
    node.setDisplayState(paletteSet->isShown() ? 1 : 0);
    node.setOrientationState(static_cast<ePaletteDockDir>(ed::orientationOf(place.side)));
    node.setAutoHideState(place.isRolledIn ? 1 : 0);
    node.setTransparencyState(place.isTransparent ? 1 : 0);
    node.setTransparencyAmount(place.transparency);
    node.setAllowDockState(place.mayDock ? 1 : 0);
    node.setX(place.floating.x);
    node.setY(place.floating.y);
    node.setWidth(place.floating.width);
    node.setHeight(place.floating.height);
    node.setDockX(place.docked.x);
    node.setDockY(place.docked.y);
    node.setDockWidth(place.docked.width);
    node.setDockHeight(place.docked.height);
}

void WorkspaceManager::applyWsESWNodInfo(ed::PaletteSet* paletteSet, ITarvWsNodInfo& node,
                                         int edges, int standardWidth, int,
                                         const ed::ScreenRect* rect)
{
    if (!paletteSet)
        return;
    paletteSet->EnableDocking(dockEdges(edges));
    ed::PalettePlacement place = paletteSet->placement();
    const auto side = ed::sideOfBar(node.getDockState());
    if (side)
        place.side = *side;
    else if (rect)
        place.side = ed::DockSide::Floating;
    takeState(node.getAutoHideState(), place.isRolledIn);
    takeState(node.getTransparencyState(), place.isTransparent);
    takeState(node.getAllowDockState(), place.mayDock);
    if (node.getTransparencyState() != kNotStored)
        place.transparency = std::clamp(node.getTransparencyAmount(), 0, kMostTransparent);
    if (rect)
        takeRect(*rect, place.floating);
    takeRect({node.getX(), node.getY(), node.getWidth(), node.getHeight()}, place.floating);
    takeRect({node.getDockX(), node.getDockY(), node.getDockWidth(), node.getDockHeight()},
             place.docked);
    if (place.docked.isEmpty())
        place.docked.width = std::max(standardWidth, 0);
    paletteSet->setPlacement(place);
}

} // namespace app
