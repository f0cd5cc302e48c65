#pragma once

#include <plot/page.h>
#include <plot/stamp.h>

namespace plot {

/// How a thing is drawn on paper.
struct Mark {
    static constexpr std::uint32_t kNoLayer = 0xFFFFFFFF;
    /// No clip at all; gs::Item::kNoClip stands for that of the page.
    static constexpr std::uint32_t kWholePaper = 0xFFFFFFFE;

    std::uint32_t layer = kNoLayer;         ///< among the list's
    std::uint32_t clip = gs::Item::kNoClip; ///< among the list's
    std::uint32_t rgb = 0;
    std::uint8_t alpha = 255;
    double widthMm = 0;                   ///< of a stroke
    bool isWide = false;                  ///< a stroke with square corners and no caps
    const gs::Filling* filling = nullptr; ///< of a fill with many colours; not owned
    const PlotStyle* style = nullptr;     ///< by name; null: by colours. Not owned
};

/// The colour on paper of a part of what @p mark draws.
inline std::uint32_t plottedPart(const Page& page, const Mark& mark, const gs::Color& color)
{
    const std::uint32_t rgb = gs::rgbOf(color, gs::Background::Paper);
    return mark.style ? mark.style->plotted(rgb) : page.styles.plotted(rgb);
}

/// A letter of an outline font.
struct Letter {
    const gs::FontFace* face = nullptr; // not owned
    char32_t character = 0;             ///< 0: a form, as gs::Glyph has them
    std::uint16_t form = 0;
    std::u16string_view text; ///< of a form; of the list, or of the fonts
    double advance = 0;
    gs::PathView outline; ///< capitals are 1 high; none of blanks
    gs::FlatMap toMm;
};

/// Takes what is on a page, in the order in which it is drawn. Paths are in a plane of their own.
class PageSink
{
public:
    virtual ~PageSink() = default;
    /// From the plane of the paths that follow to millimetres on the page.
    virtual void usePlane(const gs::FlatMap& toMm) = 0;
    virtual void stroke(const Mark& mark, gs::PathView path) = 0;
    virtual void fill(const Mark& mark, gs::PathView path, bool isEvenOdd) = 0;
    /// @param outline  of all letters together, in the plane of the paths.
    virtual void letters(const Mark& mark, std::span<const Letter> letters,
                         gs::PathView outline) = 0;
    /// A text that was drawn as strokes, for who searches: nothing is to be seen of it.
    virtual void hiddenText(const Mark& mark, const gs::PlacedText& text) = 0;
};

/// Hands all that is drawn on @p page to @p sink. False when @p stop was set meanwhile: it is not
/// complete then.
bool walkItems(const Page& page, PageSink& sink, const std::atomic<bool>* stop);
/// The line of a stamp, at its corner of the paper.
void walkStamp(const Page& page, const Stamp& stamp, const TvString& text, PageSink& sink);
/// The texts that were drawn as strokes.
void walkHiddenTexts(const Page& page, PageSink& sink);

} // namespace plot
