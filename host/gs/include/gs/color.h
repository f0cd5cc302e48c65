#pragma once

#include <cstdint>

namespace gs {

/// What drawings are shown on.
enum class Background : std::uint8_t {
    Dark,  ///< a dark screen
    Light, ///< a white screen
    Paper, ///< a white sheet, on a desk where the display list knows the sheet's size
};

/// A colour as a drawing has it: given, or what suits the background.
struct Color {
    enum class Kind : std::uint8_t {
        Given,
        Foreground, ///< black on white and white on dark: number 7 of the palette
        Background, ///< what hides what is below
    };
    Kind kind = Kind::Foreground;
    std::uint8_t red = 0, green = 0, blue = 0;

    static Color given(std::uint32_t rgb)
    {
        return {Kind::Given, static_cast<std::uint8_t>(rgb >> 16 & 0xFF),
                static_cast<std::uint8_t>(rgb >> 8 & 0xFF), static_cast<std::uint8_t>(rgb & 0xFF)};
    }
    static Color foreground() { return {}; }
    static Color background() { return {Kind::Background, 0, 0, 0}; }
    friend bool operator==(const Color&, const Color&) = default;
};

/// The colour of the background itself, red in bits 16 to 23.
std::uint32_t rgbOf(Background background);
/// What @p color is on @p background.
std::uint32_t rgbOf(Color color, Background background);
/// Around a sheet of paper.
std::uint32_t deskRgb();

} // namespace gs
