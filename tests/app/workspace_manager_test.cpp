#include <app/workspace_manager.h>
#include <ed/palette_set.h>

namespace {

/// What a workspace stores, nothing at first.
class Node : public ITarvWsNodInfo
{
public:
    TvString getCommandName() const override { return {}; }
    void setCommandName(const TvString&) override {}
    ePaletteDockDir getOrientationState() const override { return m_orientation; }
    void setOrientationState(ePaletteDockDir orientation) override { m_orientation = orientation; }
    int getDockState() const override
    {
        const auto side = ed::sideOfOrientation(static_cast<int>(m_orientation));
        return side ? static_cast<int>(*side) : -1;
    }
    void setDockState(int) override {}

#define NUMBER(Name, initial)                                                                      \
    int get##Name() const override                                                                 \
    {                                                                                              \
        return m_##Name;                                                                           \
    }                                                                                              \
    void set##Name(int value) override                                                             \
    {                                                                                              \
        m_##Name = value;                                                                          \
    }                                                                                              \
    int m_##Name = initial;
    NUMBER(DisplayState, -1)
    NUMBER(AutoHideState, -1)
    NUMBER(TransparencyState, -1)
    NUMBER(AllowDockState, -1)
    NUMBER(TransparencyAmount, 0)
    NUMBER(X, 0)
    NUMBER(Y, 0)
    NUMBER(Height, 0)
    NUMBER(Width, 0)
    NUMBER(DockX, 0)
    NUMBER(DockY, 0)
    NUMBER(DockWidth, 0)
    NUMBER(DockHeight, 0)
#undef NUMBER

private:
    ePaletteDockDir m_orientation = kPaletteDockNone;
};

class Palettes : public ed::PaletteSet
{
public:
    bool isShown() const override { return shown; }
    void setShown(bool isShown) override { shown = isShown; }
    bool isRolledUp() const override { return false; }
    void EnableDocking(unsigned at) override { edges = at; }
    void RestoreControlBar(int, const ed::ScreenRect*) override {}
    ed::PalettePlacement placement() const override { return place; }
    void setPlacement(const ed::PalettePlacement& to) override { place = to; }

    ed::PalettePlacement place;
    unsigned edges = 0;
    bool shown = true;
};

class WorkspaceManagerTest : public testing::Test
{
protected:
    static constexpr int kLeftAndRight = 20480;
    app::WorkspaceManager manager;
    Palettes palettes;
    Node node;
};

TEST_F(WorkspaceManagerTest, StandsInItsPlaceWhileItLives)
{
    EXPECT_EQ(tarvWSManager(), &manager);
    {
        const app::WorkspaceManager other;
        EXPECT_EQ(tarvWSManager(), &other);
    }
    EXPECT_EQ(tarvWSManager(), nullptr);
}

TEST_F(WorkspaceManagerTest, APlaceComesBackAsItWas)
{
    const ed::PalettePlacement place = {.side = ed::DockSide::Left,
                                        .isRolledIn = true,
                                        .isTransparent = true,
                                        .transparency = 40,
                                        .mayDock = false,
                                        .floating = {10, 20, 300, 400},
                                        .docked = {0, 50, 250, 700}};
    palettes.place = place;
    manager.updateWsESWNodInfo(&palettes, node);
    EXPECT_EQ(node.getDisplayState(), 1);
    EXPECT_EQ(node.getOrientationState(), kPaletteDockLeft);
    palettes.place = {};
    manager.applyWsESWNodInfo(&palettes, node, kLeftAndRight, 200, 0, nullptr);
    EXPECT_EQ(palettes.place, place);
    EXPECT_EQ(palettes.edges, static_cast<unsigned>(ed::kDockLeft | ed::kDockRight));
}

TEST_F(WorkspaceManagerTest, HiddenPalettesAreStoredAsHidden)
{
    palettes.shown = false;
    manager.updateWsESWNodInfo(&palettes, node);
    EXPECT_EQ(node.getDisplayState(), 0);
}

TEST_F(WorkspaceManagerTest, WhatIsNotStoredStaysAndTheWidthIsTheStandardOne)
{
    palettes.place.side = ed::DockSide::Left;
    palettes.place.isRolledIn = true;
    palettes.place.transparency = 30;
    manager.applyWsESWNodInfo(&palettes, node, kLeftAndRight, 200, 0, nullptr);
    EXPECT_EQ(palettes.place.side, ed::DockSide::Left);
    EXPECT_TRUE(palettes.place.isRolledIn);
    EXPECT_EQ(palettes.place.transparency, 30);
    EXPECT_EQ(palettes.place.docked.width, 200);
}

TEST_F(WorkspaceManagerTest, WithNothingStoredItFloatsWhereItIsToldTo)
{
    const ed::ScreenRect rect = {5, 6, 70, 80};
    manager.applyWsESWNodInfo(&palettes, node, kLeftAndRight, 200, 0, &rect);
    EXPECT_EQ(palettes.place.side, ed::DockSide::Floating);
    EXPECT_EQ(palettes.place.floating, rect);
}

TEST_F(WorkspaceManagerTest, TransparencyStaysInItsRange)
{
    node.setTransparencyState(1);
    node.setTransparencyAmount(4000);
    manager.applyWsESWNodInfo(&palettes, node, kLeftAndRight, 200, 0, nullptr);
    EXPECT_EQ(palettes.place.transparency, 90);
}

TEST_F(WorkspaceManagerTest, NoPaletteSetIsNothing)
{
    manager.updateWsESWNodInfo(nullptr, node);
    manager.applyWsESWNodInfo(nullptr, node, kLeftAndRight, 200, 0, nullptr);
    EXPECT_EQ(node.getDisplayState(), -1);
}

} // namespace
