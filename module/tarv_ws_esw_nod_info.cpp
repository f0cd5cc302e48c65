#include "module/tarv_ws_esw_nod_info.h"

#include <ed/palette_set.h>

TarvWsESWNodInfo::TarvWsESWNodInfo() = default;
TarvWsESWNodInfo::TarvWsESWNodInfo(const TarvWsESWNodInfo& other) = default;
TarvWsESWNodInfo& TarvWsESWNodInfo::operator=(const TarvWsESWNodInfo& other) = default;
TarvWsESWNodInfo::~TarvWsESWNodInfo() = default;

TvString TarvWsESWNodInfo::getCommandName() const
{
    return m_commandName;
}

void TarvWsESWNodInfo::setCommandName(const TvString& name)
{
    m_commandName = name;
}

int TarvWsESWNodInfo::getDisplayState() const
{
    return m_displayState;
}

void TarvWsESWNodInfo::setDisplayState(int state)
{
    m_displayState = state;
}

ePaletteDockDir TarvWsESWNodInfo::getOrientationState() const
{
    return m_orientationState;
}

void TarvWsESWNodInfo::setOrientationState(ePaletteDockDir orientation)
{
    m_orientationState = orientation;
}

int TarvWsESWNodInfo::getAutoHideState() const
{
    return m_autoHideState;
}

void TarvWsESWNodInfo::setAutoHideState(int state)
{
    m_autoHideState = state;
}

int TarvWsESWNodInfo::getTransparencyState() const
{
    return m_transparencyState;
}

void TarvWsESWNodInfo::setTransparencyState(int state)
{
    m_transparencyState = state;
}

int TarvWsESWNodInfo::getAllowDockState() const
{
    return m_allowDockState;
}

void TarvWsESWNodInfo::setAllowDockState(int state)
{
    m_allowDockState = state;
}

int TarvWsESWNodInfo::getTransparencyAmount() const
{
    return m_transparencyAmount;
}

void TarvWsESWNodInfo::setTransparencyAmount(int amount)
{
    m_transparencyAmount = amount;
}

int TarvWsESWNodInfo::getX() const
{
    return m_x;
}

void TarvWsESWNodInfo::setX(int x)
{
    m_x = x;
}

int TarvWsESWNodInfo::getY() const
{
    return m_y;
}

void TarvWsESWNodInfo::setY(int y)
{
    m_y = y;
}

int TarvWsESWNodInfo::getHeight() const
{
    return m_height;
}

void TarvWsESWNodInfo::setHeight(int height)
{
    m_height = height;
}

int TarvWsESWNodInfo::getWidth() const
{
    return m_width;
}

void TarvWsESWNodInfo::setWidth(int width)
{
    m_width = width;
}

int TarvWsESWNodInfo::getDockX() const
{
    return m_dockX;
}

void TarvWsESWNodInfo::setDockX(int x)
{
    m_dockX = x;
}

int TarvWsESWNodInfo::getDockY() const
{
    return m_dockY;
}

void TarvWsESWNodInfo::setDockY(int y)
{
    m_dockY = y;
}

int TarvWsESWNodInfo::getDockWidth() const
{
    return m_dockWidth;
}

void TarvWsESWNodInfo::setDockWidth(int width)
{
    m_dockWidth = width;
}

int TarvWsESWNodInfo::getDockHeight() const
{
    return m_dockHeight;
}

void TarvWsESWNodInfo::setDockHeight(int height)
{
    m_dockHeight = height;
}

int TarvWsESWNodInfo::getDockState() const
{
    const auto side = ed::sideOfOrientation(static_cast<int>(m_orientationState));
    return side ? static_cast<int>(*side) : -1;
}

void TarvWsESWNodInfo::setDockState(int bar)
{
    if (const auto side = ed::sideOfBar(bar))
        m_orientationState = static_cast<ePaletteDockDir>(ed::orientationOf(*side));
}
