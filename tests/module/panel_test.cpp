// Showing, hiding, keeping and restoring the panel.

#include <ed/system_variables.h>
#include <module/exports.h>
#include <module/palette_host.h>
#include <module/tarv_sheet_set_cuix_manager.h>
#include <module/tarv_ws_esw_nod_info.h>

#include "panel_scene.h"

namespace {

class Panel : public PanelScene
{
protected:
    bool isStateKept() const
    {
        return std::filesystem::exists(folder.path() / "roaming/SheetSetPaletteSet.xml");
    }
    TarvSheetSetCuixManager& cuix() const { return *module::cuixManager(); }
};

TEST_F(Panel, IsMadeAtItsFirstShowingThenPlacedShownAndTold)
{
    type(u"SHEETSET");
    EXPECT_EQ(panel, (Trace{"made", "bar 59421", "shown", "window: shown"}));
    panel.clear();
    type(u"SHEETSET");
    EXPECT_EQ(panel, (Trace{"shown", "window: shown"}));
    EXPECT_TRUE(said.empty());
}

TEST_F(Panel, IsHiddenOnlyOnceItIsThere)
{
    type(u"SHEETSETHIDE");
    EXPECT_TRUE(panel.empty());
    EXPECT_TRUE(said.empty());
    type(u"SHEETSET");
    panel.clear();
    type(u"SHEETSETHIDE");
    EXPECT_EQ(panel, (Trace{"hidden", "window: hidden"}));
}

TEST_F(Panel, ThatCannotBeMadeIsSaid)
{
    core::setSheetSetPanelMaker([] { return std::unique_ptr<core::SheetSetPanel>(); });
    type(u"SHEETSET");
    EXPECT_EQ(said, Trace{"8900 SHEETSET"});
    EXPECT_TRUE(panel.empty()) << "the window is told of what is so";
}

TEST_F(Panel, GoesWithTheModuleAndItsPlaceIsKept)
{
    type(u"SHEETSET");
    app.entryPoint(2, nullptr);
    EXPECT_EQ(panel.back(), "deleted");
    EXPECT_TRUE(isStateKept());
    app.entryPoint(1, nullptr);
    panel.clear();
    type(u"SHEETSET");
    EXPECT_EQ(panel, (Trace{"made", "placed", "shown", "window: shown"}));
}

TEST_F(Panel, ThatWasNeverShownLeavesNoPlace)
{
    app.entryPoint(2, nullptr);
    EXPECT_TRUE(panel.empty());
    EXPECT_FALSE(isStateKept());
}

TEST_F(Panel, OpeningASetShowsItFirst)
{
    manager.closeDatabase(made("a.dst"));
    tarvGetSheetSetInternal()->OpenSheetSetFile(folder.file("a.dst").kwszPtr());
    ASSERT_NE(GetCurrentDatabase(), nullptr);
    EXPECT_EQ(panel, (Trace{"made", "bar 59421", "shown", "window: shown", "recent"}));
    panel.clear();
    CloseSheetSet();
    EXPECT_EQ(panel, (Trace{"hidden", "window: hidden"}));
    EXPECT_EQ(GetCurrentDatabase(), nullptr);
}

TEST_F(Panel, IsToldOfTheVariablesThatItsStatusWorksBy)
{
    ASSERT_TRUE(ed::setVariable(u"SSMPOLLTIME", std::int16_t(90)));
    EXPECT_TRUE(panel.empty()) << "there is none yet";
    type(u"SHEETSET");
    panel.clear();
    ASSERT_TRUE(ed::setVariable(u"SSMPOLLTIME", std::int16_t(120)));
    ASSERT_TRUE(ed::setVariable(u"SSMSHEETSTATUS", std::int16_t(1)));
    EXPECT_EQ(panel, (Trace{"time 120", "mode 1"}));
}

TEST_F(Panel, TakesLayoutsInOnlyOnceItIsThere)
{
    const TvString drawing = u"a.dwg";
    const std::vector<TvString> layouts{u"One", u"Two"};
    ImportLayoutAsSheet(&drawing, &layouts);
    EXPECT_TRUE(panel.empty());
    type(u"SHEETSET");
    panel.clear();
    ImportLayoutAsSheet(nullptr, &layouts);
    ImportLayoutAsSheet(&drawing, nullptr);
    ImportLayoutAsSheet(&drawing, &layouts);
    EXPECT_EQ(panel, Trace{"import a.dwg 2"});
}

// Workspaces

TEST_F(Panel, IsStoredInAWorkspace)
{
    TarvWsESWNodInfo node;
    EXPECT_EQ(cuix().updateFromPalette(node), 1);
    type(u"SHEETSET");
    EXPECT_EQ(cuix().updateFromPalette(node), 1);
    EXPECT_EQ(panel.front(), "update without");
    EXPECT_EQ(panel.back(), "update");
    EXPECT_EQ(cuix().getPalette(), module::paletteHost().paletteSet());
    EXPECT_EQ(GetCuixManager(), &cuix());
}

TEST_F(Panel, FollowsAWorkspaceThatShowsItIntoItsPlace)
{
    TarvWsESWNodInfo node;
    node.setDisplayState(1);
    EXPECT_EQ(cuix().applyToPalette(node, false), 1);
    EXPECT_EQ(panel, (Trace{"made", "bar 59421", "shown", "window: shown", "apply 1 20480 200 0"}));
    panel.clear();
    EXPECT_EQ(cuix().applyToPalette(node, true), 1);
    EXPECT_EQ(panel, (Trace{"shown", "window: shown"})) << "its place is left alone";
}

TEST_F(Panel, FollowsAWorkspaceThatHidesIt)
{
    type(u"SHEETSET");
    panel.clear();
    TarvWsESWNodInfo node;
    node.setDisplayState(0);
    EXPECT_EQ(cuix().applyToPalette(node, false), 1);
    EXPECT_EQ(panel, (Trace{"hidden", "window: hidden", "apply 1 20480 200 0"}));
}

TEST_F(Panel, IsNotMadeForAWorkspaceThatSaysNothingOrHidesIt)
{
    TarvWsESWNodInfo node;
    EXPECT_EQ(cuix().applyToPalette(node, false), 1);
    node.setDisplayState(0);
    EXPECT_EQ(cuix().applyToPalette(node, false), 1);
    EXPECT_TRUE(panel.empty());
    type(u"SHEETSET");
    panel.clear();
    node.setDisplayState(-1);
    EXPECT_EQ(cuix().applyToPalette(node, false), 1);
    EXPECT_EQ(panel, Trace{"apply 1 20480 200 0"}) << "neither shown nor hidden";
}

TEST(WorkspaceNode, BeginsWithoutStates)
{
    const TarvWsESWNodInfo node;
    EXPECT_TRUE(node.getCommandName().isEmpty());
    for (const unsigned state :
         {unsigned(node.getDisplayState()), unsigned(node.getOrientationState()),
          unsigned(node.getAutoHideState()), unsigned(node.getTransparencyState()),
          unsigned(node.getAllowDockState()), unsigned(node.getDockState())})
        EXPECT_EQ(state, 4294967295U);
    for (const int value :
         {node.getTransparencyAmount(), node.getX(), node.getY(), node.getHeight(), node.getWidth(),
          node.getDockX(), node.getDockY(), node.getDockWidth(), node.getDockHeight()})
        EXPECT_EQ(value, 0);
}

TEST(WorkspaceNode, KeepsEachFieldForItself)
{
    TarvWsESWNodInfo node;
    node.setCommandName(u"SHEETSET");
    using Get = int (TarvWsESWNodInfo::*)() const;
    using Set = void (TarvWsESWNodInfo::*)(int);
    const std::pair<Get, Set> fields[] = {
        {&TarvWsESWNodInfo::getDisplayState, &TarvWsESWNodInfo::setDisplayState},
        {&TarvWsESWNodInfo::getAutoHideState, &TarvWsESWNodInfo::setAutoHideState},
        {&TarvWsESWNodInfo::getTransparencyState, &TarvWsESWNodInfo::setTransparencyState},
        {&TarvWsESWNodInfo::getAllowDockState, &TarvWsESWNodInfo::setAllowDockState},
        {&TarvWsESWNodInfo::getTransparencyAmount, &TarvWsESWNodInfo::setTransparencyAmount},
        {&TarvWsESWNodInfo::getX, &TarvWsESWNodInfo::setX},
        {&TarvWsESWNodInfo::getY, &TarvWsESWNodInfo::setY},
        {&TarvWsESWNodInfo::getHeight, &TarvWsESWNodInfo::setHeight},
        {&TarvWsESWNodInfo::getWidth, &TarvWsESWNodInfo::setWidth},
        {&TarvWsESWNodInfo::getDockX, &TarvWsESWNodInfo::setDockX},
        {&TarvWsESWNodInfo::getDockY, &TarvWsESWNodInfo::setDockY},
        {&TarvWsESWNodInfo::getDockWidth, &TarvWsESWNodInfo::setDockWidth},
        {&TarvWsESWNodInfo::getDockHeight, &TarvWsESWNodInfo::setDockHeight},
    };
    int value = 10;
    for (const auto& [get, set] : fields)
        (node.*set)(value++);
    value = 10;
    const TarvWsESWNodInfo copy(node);
    for (const auto& [get, set] : fields)
        EXPECT_EQ((copy.*get)(), value++);
    EXPECT_EQ(copy.getCommandName(), u"SHEETSET");
}

TEST(WorkspaceNode, KnowsItsOrientationAsABarOfTheFrame)
{
    constexpr std::pair<unsigned, int> kBars[] = {
        {1, 59423}, {2, 59420}, {3, 59421}, {4, 59419}, {5, 59422}};
    TarvWsESWNodInfo node;
    for (const auto& [orientation, bar] : kBars) {
        node.setOrientationState(static_cast<ePaletteDockDir>(orientation));
        EXPECT_EQ(node.getDockState(), bar);
        node.setOrientationState(kPaletteDockNone);
        node.setDockState(bar);
        EXPECT_EQ(node.getOrientationState(), orientation);
        node.setDockState(1234);
        EXPECT_EQ(node.getOrientationState(), orientation) << "unknown bars are nothing";
    }
    for (const unsigned odd : {0u, 6u, 59421u}) {
        node.setOrientationState(static_cast<ePaletteDockDir>(odd));
        EXPECT_EQ(node.getDockState(), -1);
    }
}

} // namespace
