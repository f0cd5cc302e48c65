#include "text_pen.h"

#include <algorithm>
#include <numbers>

#include "text_codes.h"
#include "text_directions.h"

namespace gs {

namespace {

// Of the height: where the lines at letters run.
constexpr double kUnderline = -0.22, kOverline = 1.22, kStrike = 0.45;
// A look that changes with every letter must not make as many parts, nor be searched for long.
constexpr std::size_t kPartsToSearch = 8;
// Of the height: letters nearer than this to where their row leads stand in it.
constexpr double kSamePlace = 1e-9;

/// Where a letter is drawn when the pen is @p at. Slanted text leans its marks, too.
TvGePoint2d placed(const ShapedLetter& letter, const LetterLook& look, TvGePoint2d at)
{
    return {at.x + (letter.x * look.widthFactor + letter.y * look.slant) * look.height,
            at.y + letter.y * look.height};
}

} // namespace

bool isDrawableHeight(double height)
{
    return height >= kSmallestHeight && height <= kLargestHeight;
}

double soundFactor(double factor, double otherwise)
{
    const double size = std::abs(factor);
    return size >= 1e-4 && size <= 1e4 ? factor : otherwise;
}

double slantOf(double oblique)
{
    if (!std::isfinite(oblique))
        return 0;
    constexpr double kSteepest = 85 * std::numbers::pi / 180;
    return std::tan(
        std::clamp(std::remainder(oblique, 2 * std::numbers::pi), -kSteepest, kSteepest));
}

bool isSound(const TvGeMatrix3d& placement)
{
    for (const auto& row : placement.entry)
        for (const double entry : row)
            if (!(std::abs(entry) <= kFarthestPlace))
                return false;
    return true;
}

LetterWidth TextPen::width(std::u32string_view text, const LetterLook& look)
{
    if (isChangedByNeighbours(text))
        return width(m_tools.fonts.line(*look.font, text), look);
    LetterWidth width;
    for (const char32_t character : text) {
        const Glyph& g = glyph(look, character);
        width.advance += g.advance * look.tracking;
        width.gap = g.gap + g.advance * (look.tracking - 1);
    }
    const double unit = look.height * look.widthFactor;
    return {width.advance * unit, width.gap * unit};
}

LetterWidth TextPen::width(std::span<const ShapedLetter> letters, const LetterLook& look) const
{
    LetterWidth width;
    for (const ShapedLetter& letter : letters) {
        width.advance += step(letter, look);
        if (letter.advance == 0)
            continue; // a mark
        const double added = isTracked(letter) ? letter.advance * (look.tracking - 1) : 0;
        width.gap = (letter.glyph->gap + added) * look.height * look.widthFactor;
    }
    return width;
}

std::vector<ShapedLetter> TextPen::shaped(const TextStretch& stretch, const LetterLook& look)
{
    std::vector<ShapedLetter> letters;
    m_tools.fonts.shape(*look.font, stretch, letters);
    return letters;
}

std::vector<ShapedLetter> TextPen::shapedLine(std::u32string_view text, const LetterLook& look)
{
    return isChangedByNeighbours(text) ? m_tools.fonts.line(*look.font, text)
                                       : std::vector<ShapedLetter>();
}

void TextPen::write(std::u32string_view text, const LetterLook& look, TvGePoint2d at,
                    const FlatMap& frame)
{
    letters(text, look, at, frame);
    if (look.isUnderlined || look.isOverlined || look.isStruck)
        linesAt(look, at, at.x + width(text, look).ink(), frame);
}

void TextPen::letters(std::u32string_view text, const LetterLook& look, TvGePoint2d at,
                      const FlatMap& frame)
{
    if (isChangedByNeighbours(text))
        return letters(m_tools.fonts.line(*look.font, text), look, at, frame);
    if (m_shape.keepsLetters) {
        row(text, look, at, frame);
        return;
    }
    const double unit = look.height * look.widthFactor * look.tracking;
    for (const char32_t character : text) {
        const Glyph& g = glyph(look, character);
        letter(g, look, at, frame);
        at.x += g.advance * unit;
    }
}

/// The same, without their outlines. Letters of one font are of one row, borrowed ones of others.
void TextPen::row(std::u32string_view text, const LetterLook& look, TvGePoint2d at,
                  const FlatMap& frame)
{
    const double x = look.height * look.widthFactor;
    const std::size_t first = m_shape.letters.size();
    m_shape.letters.resize(first + text.size());
    const Glyph** const to = m_shape.letters.data() + first;
    LetterRow* row = nullptr; // that the last letter is in
    bool isFilled = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const Glyph& g = glyph(look, text[i]);
        const bool isSeen = !g.path.isEmpty();
        if (!row || (g.isFilled != isFilled && isSeen)) {
            isFilled = g.isFilled;
            const FlatMap place{x, look.slant * look.height, at.x, 0, look.height, at.y};
            row = &part(isFilled, look.color)
                       .rows.emplace_back(LetterRow{frame * place, look.tracking,
                                                    static_cast<std::uint32_t>(first + i), 0});
        }
        m_hasStrokes |= !g.face && isSeen;
        to[i] = &g;
        ++row->count;
        at.x += g.advance * x * look.tracking;
    }
}

void TextPen::letters(std::span<const ShapedLetter> text, const LetterLook& look, TvGePoint2d at,
                      const FlatMap& frame)
{
    if (m_shape.keepsLetters) {
        row(text, look, at, frame);
        return;
    }
    for (const ShapedLetter& shaped : text) {
        letter(*shaped.glyph, look, placed(shaped, look, at), frame);
        at.x += step(shaped, look);
    }
}

/// A letter that does not stand where those before it lead begins a row of its own.
void TextPen::row(std::span<const ShapedLetter> text, const LetterLook& look, TvGePoint2d at,
                  const FlatMap& frame)
{
    const double unit = look.height * look.widthFactor;
    LetterRow* row = nullptr; // that the last letter is in
    bool isFilled = false;
    TvGePoint2d next; // where another letter of the row would stand
    for (const ShapedLetter& shaped : text) {
        const Glyph& g = *shaped.glyph;
        const bool isSeen = !g.path.isEmpty();
        const TvGePoint2d there = placed(shaped, look, at);
        const double tracking = isTracked(shaped) ? look.tracking : 1;
        const bool fits = row && (g.isFilled == isFilled || !isSeen) && there.y == next.y &&
                          std::abs(there.x - next.x) <= kSamePlace * unit &&
                          row->tracking == tracking;
        if (!fits) {
            isFilled = g.isFilled;
            const FlatMap place{unit, look.slant * look.height, there.x, 0, look.height, there.y};
            row = &part(isFilled, look.color)
                       .rows.emplace_back(
                           LetterRow{frame * place, tracking,
                                     static_cast<std::uint32_t>(m_shape.letters.size()), 0});
        }
        m_hasStrokes |= !g.face && isSeen;
        m_shape.letters.push_back(&g);
        ++row->count;
        next = {there.x + g.advance * unit * tracking, there.y};
        at.x += step(shaped, look);
    }
}

void TextPen::linesAt(const LetterLook& look, TvGePoint2d at, double end, const FlatMap& frame)
{
    const auto lineAt = [&](bool isThere, double height) {
        const double y = at.y + height * look.height;
        if (isThere)
            line({at.x, y}, {end, y}, look.color, frame);
    };
    lineAt(look.isUnderlined, kUnderline);
    lineAt(look.isOverlined, kOverline);
    lineAt(look.isStruck, kStrike);
}

void TextPen::letter(const Glyph& glyph, const LetterLook& look, TvGePoint2d at,
                     const FlatMap& frame)
{
    if (glyph.path.isEmpty())
        return;
    m_hasStrokes |= !glyph.face;
    const double x = look.height * look.widthFactor;
    const FlatMap place{x, look.slant * look.height, at.x, 0, look.height, at.y};
    if (m_shape.keepsLetters) {
        part(glyph.isFilled, look.color)
            .rows.push_back(
                {frame * place, 1, static_cast<std::uint32_t>(m_shape.letters.size()), 1});
        m_shape.letters.push_back(&glyph);
        return;
    }
    appendMapped(part(glyph.isFilled, look.color).path, glyph.path, frame * place);
}

void TextPen::line(TvGePoint2d from, TvGePoint2d to, OwnColor color, const FlatMap& frame)
{
    Path& path = part(false, color).path;
    path.moveTo(frame * from);
    path.lineTo(frame * to);
}

void TextPen::stroke(const Path& path, OwnColor color, const FlatMap& frame)
{
    appendMapped(part(false, color).path, path, frame);
}

void TextPen::run(std::u32string_view text, TvGePoint2d at, double height, double width,
                  const FlatMap& frame)
{
    const TvGeVector2d along = frame * TvGeVector2d(1, 0);
    const TvGeVector2d up = frame * TvGeVector2d(0, 1);
    m_shape.runs.push_back({utf16Of(text), frame * at, along.normal(), height * up.length(),
                            width * along.length(), !m_hasStrokes});
    m_hasStrokes = false;
}

TextPart& TextPen::part(bool isFilled, OwnColor color)
{
    auto& parts = m_shape.parts;
    const std::size_t first = parts.size() - std::min(parts.size(), kPartsToSearch);
    for (std::size_t i = parts.size(); i-- > first;)
        if (parts[i].isFilled == isFilled && parts[i].color == color)
            return parts[i];
    parts.push_back({{}, isFilled, color, {}});
    return parts.back();
}

void measureExtents(TextShape& shape)
{
    shape.extents = {};
    for (const TextPart& part : shape.parts)
        shape.extents.addBox(boxOf(part.path)); // what keeps letters is measured with them
    if (shape.background)
        shape.extents.addBox(boxOf(shape.background->area));
}

} // namespace gs
