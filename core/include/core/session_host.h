#pragma once

#include <base/tv_string.h>

class TvSmDatabase;

namespace ed {
class PaletteSet;
}

namespace core {

/// One of the three palettes, as the session knows it.
class SheetSetPalette
{
public:
    virtual ~SheetSetPalette() = default;
    /// Another set is the current one, which the palette asks for itself.
    /// @param keepState  false: what was remembered of the former set's display is forgotten.
    virtual void switchDatabase(bool keepState) = 0;
    /// The content of the current set changed.
    virtual void reloadDatabase() = 0;
    /// Somebody locked or released the current set.
    virtual void refreshLockState() = 0;
    /// What it shows, as of its last switch; null when nothing.
    virtual TvSmDatabase* displayedDatabase() const = 0;
    /// The program's theme is another one.
    virtual void updateUiStyle() {}
};

/// What the session asks of the program that it runs in. The rooms above supply it; a session
/// without one works, and shows nothing.
class SessionHost
{
public:
    enum class Palette { SheetList, SheetViews, ModelViews };

    virtual ~SessionHost() = default;
    /// Makes the palettes at their first use, and shows them.
    virtual void ShowSheetSetPalette() = 0;
    /// Null while that palette was not made yet.
    virtual SheetSetPalette* palette(Palette which) = 0;
    /// The window that holds the palettes; null while it was not made yet.
    virtual ed::PaletteSet* paletteSet() = 0;
    /// The program's own list of recent files takes a sheet set in.
    virtual void AddDstFileToRecentFileList(const TvString& path) = 0;
    /// The folder of the user's own templates; empty when there is none.
    virtual TvString GetUserLocalApplicationDataTemplatePath() = 0;
    /// The folder of what goes with the user from machine to machine; empty when there is none.
    virtual TvString GetUserRoamingDataPath() = 0;
};

SessionHost* sessionHost();
/// Not owned; null takes it away.
void setSessionHost(SessionHost* host);

} // namespace core
