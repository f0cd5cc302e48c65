#pragma once

#include <unordered_map>

#include "operators.h"
#include "page_content.h"

namespace plot {

/// Writes a page as the operators of a PDF.
///
/// Lengths are whole numbers of hundredths of a millimetre: finer than any printer, and short.
class PdfPainter : public PageSink
{
public:
    PdfPainter(const Page& page, const PdfOptions& options, PageContent& content);

    void usePlane(const gs::FlatMap& toMm) override;
    void stroke(const Mark& mark, gs::PathView path) override;
    void fill(const Mark& mark, gs::PathView path, bool isEvenOdd) override;
    void letters(const Mark& mark, std::span<const Letter> letters, gs::PathView outline) override;
    void hiddenText(const Mark& mark, const gs::PlacedText& text) override;

    /// Ends what is open. Nothing comes after it.
    std::string_view finish();

private:
    /// Place on paper, in hundredths of a millimetre.
    struct Spot {
        std::int32_t x = 0, y = 0;
        friend bool operator==(const Spot&, const Spot&) = default;
    };
    /// What the operators so far have set. -1: not set.
    struct State {
        std::int64_t strokeRgb = -1, fillRgb = -1;
        std::int32_t width = -1;
        int alpha = 255;
        int isWide = -1;
    };

    Spot spot(const TvGePoint2d& point) const
    {
        const TvGePoint2d at = m_plane * point;
        return {static_cast<std::int32_t>(std::lrint(at.x)),
                static_cast<std::int32_t>(std::lrint(at.y))};
    }
    void flush();
    void usePlace(const Mark& mark);
    void useLayer(std::uint32_t layer);
    void useClip(std::uint32_t clip);
    void addClip(std::uint32_t clip);
    void useStroke(const Mark& mark);
    void useFill(const Mark& mark);
    void useAlpha(std::uint8_t alpha);
    void color(std::uint32_t rgb, const char* gray, const char* full);
    /// True when the path is a rectangle along the axes, which was written.
    bool traceRectangle(gs::PathView path);
    void traceStroke(gs::PathView path, bool joins);
    void traceFill(gs::PathView path);
    /// Fills @p path with what @p mark says; false when there is nothing to fill with.
    bool fillWith(const Mark& mark, gs::PathView path, bool isEvenOdd);
    std::int32_t imageFor(const gs::Picture& picture);
    std::int32_t shadingFor(const Mark& mark);
    void curve(Spot a, Spot b, Spot to);
    std::size_t fontFor(const Letter& letter);
    /// All of one look; @p font is what was chosen last.
    void writeLetters(std::span<const Letter> letters, std::optional<std::size_t>& font);
    /// Letters that stand for characters together; which ones, is written unseen beside them.
    void writeGroup(std::span<const Letter> letters, std::optional<std::size_t>& font);
    void writeUnseen(std::u16string_view text);
    /// Letters from @p first on that stand on one line, as one text. @return the one behind them.
    std::size_t writeLine(std::span<const Letter> letters, std::size_t first);
    double blankOf(std::size_t font);
    void writeCode(std::string& codes, std::uint16_t code);
    void textMatrix(const gs::FlatMap& map);

    const Page& m_page;
    const PdfOptions& m_options;
    PageContent& m_content;
    Operators m_out;
    gs::FlatMap m_plane; // to hundredths of a millimetre
    State m_state, m_outer;
    std::uint32_t m_clip = Mark::kWholePaper;
    std::uint32_t m_layer = Mark::kNoLayer;
    bool m_isLayerOpen = false;
    bool m_isHidden = false; // hidden texts are being written
    int m_pending = 0;       // pieces of a path that is not stroked yet
    std::optional<Spot> m_pen;
    std::unordered_map<std::uint32_t, std::size_t> m_layerNames;
    std::unordered_map<const gs::Picture*, std::int32_t> m_imageNames;
};

} // namespace plot
