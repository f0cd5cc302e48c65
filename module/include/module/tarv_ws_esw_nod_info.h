#pragma once

#include <ed/tarv_palette_prop_manager.h>

/// What a workspace stores of the palette set of sheet sets. Other modules make and copy it, too.
class __attribute__((visibility("default"))) TarvWsESWNodInfo : public ITarvWsNodInfo
{
public:
    TarvWsESWNodInfo();
    TarvWsESWNodInfo(const TarvWsESWNodInfo& other);
    TarvWsESWNodInfo& operator=(const TarvWsESWNodInfo& other);
    ~TarvWsESWNodInfo() override;

    TvString getCommandName() const override;
    void setCommandName(const TvString& name) override;
    int getDisplayState() const override;
    void setDisplayState(int state) override;
    ePaletteDockDir getOrientationState() const override;
    void setOrientationState(ePaletteDockDir orientation) override;
    int getAutoHideState() const override;
    void setAutoHideState(int state) override;
    int getTransparencyState() const override;
    void setTransparencyState(int state) override;
    int getAllowDockState() const override;
    void setAllowDockState(int state) override;
    int getTransparencyAmount() const override;
    void setTransparencyAmount(int amount) override;
    int getX() const override;
    void setX(int x) override;
    int getY() const override;
    void setY(int y) override;
    int getHeight() const override;
    void setHeight(int height) override;
    int getWidth() const override;
    void setWidth(int width) override;
    int getDockX() const override;
    void setDockX(int x) override;
    int getDockY() const override;
    void setDockY(int y) override;
    int getDockWidth() const override;
    void setDockWidth(int width) override;
    int getDockHeight() const override;
    void setDockHeight(int height) override;
    int getDockState() const override;
    void setDockState(int bar) override;

private:
    TvString m_commandName;
    int m_displayState = -1;
    ePaletteDockDir m_orientationState = kPaletteDockNone;
    int m_autoHideState = -1;
    int m_transparencyState = -1;
    int m_allowDockState = -1;
    int m_transparencyAmount = 0;
    int m_x = 0, m_y = 0;
    int m_height = 0, m_width = 0;
    int m_dockX = 0, m_dockY = 0;
    int m_dockWidth = 0, m_dockHeight = 0;
};
