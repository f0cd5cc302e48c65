#pragma once

#include <base/tv_string.h>

namespace ed {
class PaletteSet;
struct ScreenRect;
} // namespace ed

/// Where a palette set is, as a workspace stores it (ed::orientationOf). Numbers are forever.
enum ePaletteDockDir : unsigned {
    kPaletteDockFloat = 1,
    kPaletteDockLeft = 2,
    kPaletteDockRight = 3,
    kPaletteDockTop = 4,
    kPaletteDockBottom = 5,
    kPaletteDockNone = 4294967295U, ///< nothing is stored
};

/// What a workspace stores of one palette set. States are -1 while nothing is stored.
class ITarvWsNodInfo
{
public:
    virtual ~ITarvWsNodInfo() = default;
    /// The command that shows the palette set.
    virtual TvString getCommandName() const = 0;
    virtual void setCommandName(const TvString& name) = 0;
    /// 0 hidden, another number shown.
    virtual int getDisplayState() const = 0;
    virtual void setDisplayState(int state) = 0;
    virtual ePaletteDockDir getOrientationState() const = 0;
    virtual void setOrientationState(ePaletteDockDir orientation) = 0;
    virtual int getAutoHideState() const = 0;
    virtual void setAutoHideState(int state) = 0;
    virtual int getTransparencyState() const = 0;
    virtual void setTransparencyState(int state) = 0;
    virtual int getAllowDockState() const = 0;
    virtual void setAllowDockState(int state) = 0;
    virtual int getTransparencyAmount() const = 0;
    virtual void setTransparencyAmount(int amount) = 0;
    virtual int getX() const = 0;
    virtual void setX(int x) = 0;
    virtual int getY() const = 0;
    virtual void setY(int y) = 0;
    virtual int getHeight() const = 0;
    virtual void setHeight(int height) = 0;
    virtual int getWidth() const = 0;
    virtual void setWidth(int width) = 0;
    virtual int getDockX() const = 0;
    virtual void setDockX(int x) = 0;
    virtual int getDockY() const = 0;
    virtual void setDockY(int y) = 0;
    virtual int getDockWidth() const = 0;
    virtual void setDockWidth(int width) = 0;
    virtual int getDockHeight() const = 0;
    virtual void setDockHeight(int height) = 0;
    /// The orientation as the frame's number of a bar (ed::DockSide), or -1.
    virtual int getDockState() const = 0;
    /// Numbers that are no bar's are nothing.
    virtual void setDockState(int bar) = 0;
};

/// What keeps a palette set's place in the workspaces that the user switches between. A module
/// implements it for its own palette set; the host asks for it by the module's export.
class ITarvPalettePropManager
{
public:
    virtual ~ITarvPalettePropManager() = default;
    /// Stores what the palette set looks like now. 1.
    virtual int updateFromPalette(ITarvWsNodInfo& node) = 0;
    /// Shows or hides the palette set as stored, and puts it in its place.
    /// @param isShownOnly  its place is left alone. 1.
    virtual int applyToPalette(ITarvWsNodInfo& node, bool isShownOnly) = 0;
    /// Null while there is none.
    virtual ed::PaletteSet* getPalette() = 0;
};

/// Carries places between palette sets and workspaces; the program's window supplies it.
class TarvWSManager
{
public:
    virtual ~TarvWSManager() = default;
    /// @param paletteSet  may be null: nothing is stored.
    virtual void updateWsESWNodInfo(ed::PaletteSet* paletteSet, ITarvWsNodInfo& node) = 0;
    /// @param edges          at which it may dock, in the frame's own bits.
    /// @param standardWidth  where none is stored.
    /// @param reserved       0.
    /// @param rect           where it floats when nothing is stored; may be null.
    virtual void applyWsESWNodInfo(ed::PaletteSet* paletteSet, ITarvWsNodInfo& node, int edges,
                                   int standardWidth, int reserved, const ed::ScreenRect* rect) = 0;
};

/// Null before the program made one.
TarvWSManager* tarvWSManager();
/// Not owned. Null takes it away.
void tarvSetWSManager(TarvWSManager* manager);

/// The program's main window, as modules tell it what they do.
class TarvikMainAppService
{
public:
    virtual ~TarvikMainAppService() = default;
    /// The palette set of sheet sets was shown or hidden: the mark in the menu follows.
    virtual void setSheetSetPaletteState(bool isShown) = 0;
    /// The program's own list of recent files takes a sheet set in.
    virtual void AddDstFileToRecentFileList(const TvString& path) = 0;
    /// Where templates of the user's own lie; empty when there is no such folder.
    virtual TvString GetUserLocalApplicationDataTemplatePath() = 0;
    /// Where files of the user's own lie that go with him from machine to machine; empty when
    /// there is no such folder.
    virtual TvString GetUserRoamingDataPath() = 0;
};

/// Null before the program made one.
TarvikMainAppService* tarvikMainAppService();
/// Not owned. Null takes it away.
void tarvSetMainAppService(TarvikMainAppService* service);
