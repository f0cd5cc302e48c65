#pragma once

#include <memory>

#include <QColor>
#include <QFont>

#include <base/tv_string.h>

/// How the program looks: dark or light, by the system variable COLORTHEME.
///
/// A widget that keeps colours or pictures of its own makes them anew at QEvent::PaletteChange,
/// which each theme switch sends to every widget; pictures of ui::icon() follow by themselves.
namespace ui {

/// As the variable counts them. Numbers are forever.
enum class Theme : int { Dark = 0, Light = 1 };

/// What a colour is for.
enum class ColorRole {
    Window, ///< behind controls
    Base,   ///< behind lists and texts to be edited
    Raised, ///< buttons, headers, tabs that are not chosen
    Text,
    DimText,    ///< hints and what stands beside the matter; still readable
    Disabled,   ///< text of what cannot be used
    Border,     ///< between areas
    Edge,       ///< around controls
    Accent,     ///< chosen, focused, default
    AccentText, ///< on Accent
    Hover,      ///< behind what the mouse is over
    Tip,
    TipText,
    Link,
    Bad,      ///< what is missing or wrong, as text
    Canvas,   ///< around a drawing's paper
    Ink,      ///< lines of icons
    IconFill, ///< areas of icons
    IconAccent,
    IconWarm,
    IconBad,
    Count,
};

/// The theme in force.
Theme theme();
QColor color(ColorRole role);
QColor color(ColorRole role, Theme theme);

/// How a kind of window looks, by the name of its record: "SheetSetPalette", "SheetSetComboBox",
/// "SheetSetIconButton". Any other name gives the looks of controls in general.
struct StyleRecord {
    QColor text, background;
    QColor line;       ///< also of labels whose matter is missing
    TvString faceName; ///< "SystemFont": the system's
    int heightPx = 0;  ///< 0: the system's
    bool isItalic = false, isUnderlined = false;
};
StyleRecord styleRecord(const TvString& name);

/// Dresses the application and keeps it in step with COLORTHEME. One in a process, from the start
/// of the windows to their end; the editor, when there is one, tells it of changes.
class ThemeManager
{
public:
    /// At the very first start the variable is set as the desktop likes it.
    /// @pre the QApplication is there; the configuration and the state store are set.
    ThemeManager();
    ~ThemeManager();
    ThemeManager(const ThemeManager&) = delete;
    ThemeManager& operator=(const ThemeManager&) = delete;

    /// Dresses the application as the variable says now.
    void update();

private:
    class Reactor;
    std::unique_ptr<Reactor> m_reactor;
};

} // namespace ui
