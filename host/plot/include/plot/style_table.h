#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include <base/tv_string.h>

namespace plot {

/// What becomes of lines of one colour, or of one named style, on paper.
struct PlotStyle {
    std::optional<std::uint32_t> rgb; ///< nullopt: the object's own colour
    std::optional<float> weightMm;    ///< nullopt: the object's own
    int screenPercent = 100;          ///< 0: white, 100: full colour
    bool isGray = false;              ///< the colour as a shade of grey

    friend bool operator==(const PlotStyle&, const PlotStyle&) = default;
    /// The colour on paper of an object of the colour @p rgb.
    std::uint32_t plotted(std::uint32_t rgb) const;
};

/// A table of plot styles by the numbers of the palette, or by names.
class StyleTable
{
public:
    /// Everything as it is.
    StyleTable() = default;
    /// Every colour black, or a shade of grey.
    static StyleTable monochrome();
    static StyleTable grayscale();
    /// From the bytes of a table by colours (".ctb") or by names (".stb"). What is not understood
    /// stays as it is.
    /// @return nullopt for what is no such table, or unpacks to more than a few megabytes.
    static std::optional<StyleTable> fromBytes(std::span<const std::byte> bytes);
    /// The table of that name: a file beside @p drawing or in the user's folder of plot styles.
    /// Where there is none of the name, those for black and for grey are known by their usual
    /// names.
    /// @return nullopt when there is none.
    static std::optional<StyleTable> find(const TvString& name, const TvString& drawing);

    /// For an object of the colour @p rgb; of a table by names: everything as it is.
    const PlotStyle& styleOf(std::uint32_t rgb) const;
    /// For objects whose style has the name @p name: as it is when the table has none of the name;
    /// null when the table goes by colours.
    const PlotStyle* named(const TvString& name) const;
    /// The colour on paper of an object of the colour @p rgb, by its colour.
    std::uint32_t plotted(std::uint32_t rgb) const { return styleOf(rgb).plotted(rgb); }
    bool isPlain() const { return m_isPlain; }

private:
    bool m_isPlain = true, m_goesByNames = false;
    std::vector<std::pair<TvString, PlotStyle>> m_named;
    std::array<PlotStyle, 256> m_styles; // by number; number 0 is for what is not in the palette
};

} // namespace plot
