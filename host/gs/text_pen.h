#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "gs/text_shape.h"
#include "text_tools.h"

namespace gs {

// Heights and places beyond these are nobody's drawing, and numbers near them lose their digits.
constexpr double kSmallestHeight = 1e-9, kLargestHeight = 1e12, kFarthestPlace = 1e15;
// Letters that one object draws; the rest is left out.
constexpr std::size_t kMostLetters = 100'000;

bool isDrawableHeight(double height);
/// Not finite, zero or too large: @p otherwise.
double soundFactor(double factor, double otherwise = 1);
/// The tangent of an oblique angle (radians); at most that of 85 degrees.
double slantOf(double oblique);
bool isSound(const TvGeMatrix3d& placement);

/// How letters look.
struct LetterLook {
    Font* font = nullptr; // not owned; its Fonts'
    double height = 0;
    double widthFactor = 1;
    double slant = 0;    ///< of a letter 1 high
    double tracking = 1; ///< factor of the advance
    OwnColor color;
    bool isUnderlined = false;
    bool isOverlined = false;
    bool isStruck = false;

    friend bool operator==(const LetterLook&, const LetterLook&) = default;
};

/// How far letters reach. At the end of a line the gap does not count.
struct LetterWidth {
    double advance = 0;
    double gap = 0;

    double ink() const { return advance - gap; }
};

/// Writes letters and lines into a shape.
class TextPen
{
public:
    TextPen(TextShape& shape, TextTools& tools) : m_shape(shape), m_tools(tools) {}

    LetterWidth width(std::u32string_view text, const LetterLook& look);
    LetterWidth width(std::span<const ShapedLetter> letters, const LetterLook& look) const;
    /// The letters of a stretch as they stand from left to right.
    std::vector<ShapedLetter> shaped(const TextStretch& stretch, const LetterLook& look);
    /// Those of a line, if its letters change one another; else there are none.
    std::vector<ShapedLetter> shapedLine(std::u32string_view text, const LetterLook& look);
    /// The way of the pen from one letter to the next, in drawing units. Tracking does not part
    /// what is joined, nor a letter from its marks.
    static double step(const ShapedLetter& letter, const LetterLook& look)
    {
        return letter.advance * look.height * look.widthFactor *
               (isTracked(letter) ? look.tracking : 1);
    }
    /// Writes @p text from @p at on, and the lines at it; not its run.
    /// @param frame  from the plane in which the text is written along x to that of the shape.
    void write(std::u32string_view text, const LetterLook& look, TvGePoint2d at,
               const FlatMap& frame);
    /// One letter, without lines; @p at is the left end of its baseline.
    void letter(const Glyph& glyph, const LetterLook& look, TvGePoint2d at, const FlatMap& frame);
    void line(TvGePoint2d from, TvGePoint2d to, OwnColor color, const FlatMap& frame);
    void stroke(const Path& path, OwnColor color, const FlatMap& frame);
    /// The letters of write(), without lines.
    void letters(std::u32string_view text, const LetterLook& look, TvGePoint2d at,
                 const FlatMap& frame);
    void letters(std::span<const ShapedLetter> text, const LetterLook& look, TvGePoint2d at,
                 const FlatMap& frame);
    /// The lines of write(): from @p at, which is on the baseline, to x = @p end.
    void linesAt(const LetterLook& look, TvGePoint2d at, double end, const FlatMap& frame);
    /// For searching; @p width along x.
    void run(std::u32string_view text, TvGePoint2d at, double height, double width,
             const FlatMap& frame);

    const Glyph& glyph(const LetterLook& look, char32_t character)
    {
        return m_tools.glyph(*look.font, character);
    }

private:
    TextPart& part(bool isFilled, OwnColor color);
    static bool isTracked(const ShapedLetter& letter)
    {
        return letter.endsGroup && !letter.isJoined;
    }
    void row(std::u32string_view text, const LetterLook& look, TvGePoint2d at,
             const FlatMap& frame);
    void row(std::span<const ShapedLetter> text, const LetterLook& look, TvGePoint2d at,
             const FlatMap& frame);

    TextShape& m_shape;
    TextTools& m_tools;
    bool m_hasStrokes = false; // letters since the last run that are of no outline font
};

/// Measures parts and background; call it when all is written.
void measureExtents(TextShape& shape);

} // namespace gs
