#include "ui/theme.h"

#include "theme_state.h"

namespace ui {

namespace {

struct Row {
    ColorRole role;
    QRgb dark, light;
};

// clang-format off
constexpr Row kColors[] = {
    {ColorRole::Window,     0xFF2B2D30, 0xFFF0F1F4},
    {ColorRole::Base,       0xFF1E1F22, 0xFFFFFFFF},
    {ColorRole::Raised,     0xFF393B40, 0xFFE3E5EA},
    {ColorRole::Text,       0xFFDFE1E5, 0xFF1D1F23},
    {ColorRole::DimText,    0xFFA4A8B0, 0xFF565A63},
    {ColorRole::Disabled,   0xFF7B7F87, 0xFF8B8F98},
    {ColorRole::Border,     0xFF1A1B1D, 0xFFCDD0D7},
    {ColorRole::Edge,       0xFF767B85, 0xFF868B95},
    {ColorRole::Accent,     0xFF2F6BE0, 0xFF2459C9},
    {ColorRole::AccentText, 0xFFFFFFFF, 0xFFFFFFFF},
    {ColorRole::Hover,      0xFF43464D, 0xFFD6DEF2},
    {ColorRole::Tip,        0xFF43464D, 0xFFFFFFFF},
    {ColorRole::TipText,    0xFFDFE1E5, 0xFF1D1F23},
    {ColorRole::Link,       0xFF6C9DFF, 0xFF2459C9},
    {ColorRole::Bad,        0xFFFF8A80, 0xFFB3261E},
    {ColorRole::Canvas,     0xFF222428, 0xFF9EA3AD},
    {ColorRole::Ink,        0xFFCED2D9, 0xFF43474F},
    {ColorRole::IconFill,   0xFF3F4248, 0xFFFFFFFF},
    {ColorRole::IconAccent, 0xFF6C9DFF, 0xFF2459C9},
    {ColorRole::IconWarm,   0xFFE3B341, 0xFFB7791F},
    {ColorRole::IconBad,    0xFFFF7B72, 0xFFC62828},
};
// clang-format on
static_assert(std::size(kColors) == static_cast<std::size_t>(ColorRole::Count));

Theme g_theme = Theme::Dark;

} // namespace

Theme theme()
{
    return g_theme;
}

void setTheme(Theme theme)
{
    g_theme = theme;
}

QColor color(ColorRole role)
{
    return color(role, g_theme);
}

QColor color(ColorRole role, Theme theme)
{
    const Row& row = kColors[static_cast<std::size_t>(role)];
    return theme == Theme::Dark ? row.dark : row.light;
}

StyleRecord styleRecord(const TvString& name)
{
    struct Named {
        const TvChar* name;
        ColorRole text, background, line;
    };
    constexpr Named kNamed[] = {
        {u"SheetSetPalette", ColorRole::Text, ColorRole::Base, ColorRole::Bad},
        {u"SheetSetComboBox", ColorRole::Text, ColorRole::Base, ColorRole::Edge},
        {u"SheetSetIconButton", ColorRole::Text, ColorRole::Window, ColorRole::Edge},
    };
    const TvString system = u"SystemFont";
    for (const Named& row : kNamed)
        if (name.compareNoCase(row.name) == 0)
            return {
                color(row.text), color(row.background), color(row.line), system, 0, false, false};
    return {color(ColorRole::Text),
            color(ColorRole::Window),
            color(ColorRole::Edge),
            system,
            0,
            false,
            false};
}

} // namespace ui
