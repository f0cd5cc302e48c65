#include "stroke_font.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include <unicode/unorm2.h>

#include "gs/flat.h"
#include "text_directions.h"

namespace gs {

namespace {

constexpr double kCapital = 12;         // grid units of a capital's height
constexpr double kLetterGap = 3.2;      // between two letters
constexpr double kAccentGap = 1.3;      // between a letter and the accent above it
constexpr double kDot = 0.35;           // radius
constexpr double kQuarter = 0.55228475; // handles of a cubic that comes closest to a quarter circle

/// Reads numbers from strokes; the tables are ours, so what cannot be read ends the letter.
class StrokeReader
{
public:
    explicit StrokeReader(std::string_view rest) : m_rest(rest) {}

    /// What the next stroke is: ';' begins anew, 'h', 'v', 'c', '.', '&', or 'l' for a line; 0 at
    /// the end.
    char verb()
    {
        while (!m_rest.empty() && m_rest.front() == ' ')
            m_rest.remove_prefix(1);
        if (m_rest.empty())
            return 0;
        const char first = m_rest.front();
        if (std::string_view(";hvc.&").find(first) == std::string_view::npos)
            return 'l';
        m_rest.remove_prefix(1);
        return first;
    }

    double number()
    {
        while (!m_rest.empty() && (m_rest.front() == ' ' || m_rest.front() == ','))
            m_rest.remove_prefix(1);
        double value = 0;
        const auto end = std::from_chars(m_rest.data(), m_rest.data() + m_rest.size(), value).ptr;
        const auto length = static_cast<std::size_t>(end - m_rest.data());
        m_rest = length ? m_rest.substr(length) : std::string_view();
        return value;
    }
    TvGePoint2d point()
    {
        const double x = number();
        return {x, number()};
    }

private:
    std::string_view m_rest;
};

/// A quarter of an ellipse, which leaves @p from along one axis and arrives at @p to along the
/// other.
void quarterTo(Path& path, TvGePoint2d from, TvGePoint2d to, bool leavesAlongX)
{
    const TvGeVector2d way = to - from;
    const TvGeVector2d along = leavesAlongX ? TvGeVector2d(way.x, 0) : TvGeVector2d(0, way.y);
    const TvGeVector2d across = way - along;
    path.curveTo(from + along * kQuarter, to - across * kQuarter, to);
}

void dotAt(Path& path, TvGePoint2d center)
{
    const TvGePoint2d right{center.x + kDot, center.y}, top{center.x, center.y + kDot},
        left{center.x - kDot, center.y}, bottom{center.x, center.y - kDot};
    path.moveTo(right);
    quarterTo(path, right, top, false);
    quarterTo(path, top, left, true);
    quarterTo(path, left, bottom, false);
    quarterTo(path, bottom, right, true);
    path.close();
}

bool isBelow(char32_t accent)
{
    return accent >= 0x323 && accent <= 0x333;
}

/// The letter and the accents that @p character consists of, if it can be taken apart.
struct Parts {
    char32_t base = 0;
    char32_t accent = 0;
};
std::optional<Parts> partsOf(char32_t character)
{
    UErrorCode error = U_ZERO_ERROR;
    const UNormalizer2* rules = unorm2_getNFCInstance(&error);
    char16_t units[8];
    const std::int32_t count =
        unorm2_getRawDecomposition(rules, static_cast<UChar32>(character), units,
                                   static_cast<std::int32_t>(std::size(units)), &error);
    if (U_FAILURE(error) || count < 1 || count > 2)
        return std::nullopt;
    // Two units: both in the first plane, as all that we draw. One: another number for a letter.
    return Parts{units[0], count == 2 ? char32_t(units[1]) : U'\0'};
}

/// The one character that a letter and an accent are; 0: there is none.
char32_t together(char32_t base, char32_t accent)
{
    UErrorCode error = U_ZERO_ERROR;
    const UNormalizer2* const rules = unorm2_getNFCInstance(&error);
    if (U_FAILURE(error))
        return 0;
    const UChar32 found =
        unorm2_composePair(rules, static_cast<UChar32>(base), static_cast<UChar32>(accent));
    return found > 0 ? static_cast<char32_t>(found) : 0;
}

} // namespace

StrokeFont::StrokeFont(std::span<const StrokeLetter> letters)
{
    for (const StrokeLetter& letter : letters)
        m_letters.emplace(letter.character, &letter);
}

const Glyph* StrokeFont::glyph(char32_t character)
{
    if (character < m_usual.size() && m_usual[character])
        return m_usual[character];
    auto found = m_made.find(character);
    if (found == m_made.end())
        found = m_made.emplace(character, make(character)).first;
    const Glyph* const glyph = found->second ? &*found->second : nullptr;
    if (character < m_usual.size())
        m_usual[character] = glyph;
    return glyph;
}

void StrokeFont::shape(const TextStretch& stretch, std::vector<ShapedLetter>& out)
{
    if (stretch.isRightToLeft)
        return Font::shape(stretch, out);
    const std::size_t end = stretch.first + stretch.count;
    for (std::size_t at = stretch.first; at < end;) {
        const std::size_t next = endOfGroup(stretch.text, at, end);
        addGroup(stretch.text, at, next, out);
        at = next;
    }
}

/// A letter and its accents.
void StrokeFont::addGroup(std::u32string_view text, std::size_t first, std::size_t end,
                          std::vector<ShapedLetter>& out)
{
    const auto number = static_cast<std::uint32_t>(first);
    char32_t base = text[first];
    std::size_t at = first + 1;
    for (; at < end; ++at) {
        const char32_t whole = together(base, text[at]);
        if (whole == 0 || !glyph(whole))
            break;
        base = whole;
    }
    const Glyph* const letter = glyph(base);
    if (!letter || isUnseen(base))
        return;
    out.push_back({letter, 0, 0, letter->advance, number});
    Box box = boxOf(letter->path);
    if (box.isEmpty())
        box.add({letter->advance / 2, 0});
    for (; at < end; ++at) {
        const Glyph* const accent = isUnseen(text[at]) ? nullptr : glyph(text[at]);
        if (!accent)
            continue;
        // The pen stands behind the letter.
        const double y = isBelow(text[at]) ? 0 : box.highY + kAccentGap / kCapital;
        out.back().endsGroup = false;
        out.push_back({accent, box.center().x - letter->advance, y, accent->advance, number});
        if (!isBelow(text[at]) && !accent->path.isEmpty())
            box.highY = y + boxOf(accent->path).highY;
    }
}

std::optional<Glyph> StrokeFont::make(char32_t character) const
{
    std::optional<Glyph> glyph = drawn(character);
    if (!glyph)
        glyph = composed(character);
    return glyph;
}

std::optional<Glyph> StrokeFont::drawn(char32_t character) const
{
    const auto found = m_letters.find(character);
    if (found == m_letters.end())
        return std::nullopt;
    const StrokeLetter& letter = *found->second;
    Path grid;
    drawStrokes(grid, letter.strokes);
    Glyph glyph;
    appendMapped(glyph.path, grid, FlatMap::scaling(1 / kCapital, 1 / kCapital));
    glyph.advance = (letter.width + kLetterGap) / kCapital;
    glyph.gap = letter.strokes.empty() ? 0 : kLetterGap / kCapital;
    if (letter.width < 0) // accents stand over the letter before them
        glyph.advance = glyph.gap = 0;
    return glyph;
}

/// An accented letter: the accent in the middle over or under the letter.
std::optional<Glyph> StrokeFont::composed(char32_t character) const
{
    const auto parts = partsOf(character);
    if (!parts)
        return std::nullopt;
    if (parts->accent == 0)
        return drawn(parts->base);
    const bool isBelowLetter = isBelow(parts->accent);
    const bool losesDot = !isBelowLetter && (parts->base == U'i' || parts->base == U'j');
    const char32_t dotless = parts->base == U'i' ? U'\u0131' : U'\u0237';
    std::optional<Glyph> glyph = make(losesDot ? dotless : parts->base);
    const std::optional<Glyph> accent = drawn(parts->accent);
    if (!glyph || !accent)
        return std::nullopt;
    const Box box = boxOf(glyph->path);
    const double top = isBelowLetter ? 0 : box.highY + kAccentGap / kCapital;
    appendMapped(glyph->path, accent->path, FlatMap::moving(box.center().x, top));
    return glyph;
}

void StrokeFont::drawStrokes(Path& path, std::string_view strokes) const
{
    StrokeReader reader(strokes);
    TvGePoint2d at;
    bool begins = true;
    while (const char verb = reader.verb()) {
        if (verb == ';') {
            begins = true;
            continue;
        }
        if (verb == '&') {
            const auto found = m_letters.find(static_cast<char32_t>(reader.number()));
            if (found != m_letters.end())
                drawStrokes(path, found->second->strokes);
            continue;
        }
        TvGePoint2d to = reader.point();
        if (verb == '.') {
            dotAt(path, to);
        } else if (begins) {
            path.moveTo(to);
            begins = false;
        } else if (verb == 'c') {
            const TvGePoint2d handle1 = to, handle2 = reader.point();
            to = reader.point();
            path.curveTo(handle1, handle2, to);
        } else if (verb == 'l') {
            path.lineTo(to);
        } else {
            quarterTo(path, at, to, verb == 'h');
        }
        at = to;
    }
}

} // namespace gs
