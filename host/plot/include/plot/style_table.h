#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include <base/tv_string.h>

namespace plot {

/// What becomes of lines of one colour on paper.
struct PlotStyle {
    std::optional<std::uint32_t> rgb; ///< nullopt: the object's own colour
    std::optional<float> weightMm;    ///< nullopt: the object's own
    int screenPercent = 100;          ///< 0: white, 100: full colour
    bool isGray = false;              ///< the colour as a shade of grey

    friend bool operator==(const PlotStyle&, const PlotStyle&) = default;
};

/// A table of plot styles by the numbers of the palette.
class StyleTable
{
public:
    /// Everything as it is.
    StyleTable() = default;
    /// Every colour black, or a shade of grey.
    static StyleTable monochrome();
    static StyleTable grayscale();
    /// From the bytes of a table by colours (".ctb"). What is not understood stays as it is.
    /// @return nullopt for what is no such table, or unpacks to more than a few megabytes.
    static std::optional<StyleTable> fromBytes(std::span<const std::byte> bytes);
    /// The table of that name: a file beside @p drawing or in the user's folder of plot styles.
    /// Where there is none of the name, those for black and for grey are known by their usual
    /// names.
    /// @return nullopt when there is none.
    static std::optional<StyleTable> find(const TvString& name, const TvString& drawing);

    /// For an object of the colour @p rgb.
    const PlotStyle& styleOf(std::uint32_t rgb) const;
    /// The colour on paper of an object of the colour @p rgb.
    std::uint32_t plotted(std::uint32_t rgb) const;
    bool isPlain() const { return m_isPlain; }

private:
    bool m_isPlain = true;
    std::array<PlotStyle, 256> m_styles; // by number; number 0 is for what is not in the palette
};

} // namespace plot
