#include "outline_font.h"

#include <algorithm>

#include <fmt/format.h>

#include FT_OUTLINE_H
#include FT_TRUETYPE_TABLES_H

#include "gs/flat.h"

namespace gs {

namespace {

// Of the em: what capitals measure in a face that does not tell.
constexpr double kUsualCapital = 0.72;
// How far a font is squeezed or stretched to be as wide as another.
constexpr double kNarrowest = 0.75, kWidest = 1.35;

/// Makes a path of an outline: the callbacks of FreeType's walk over it.
struct OutlineWalk {
    Path path;
    FlatMap map;
    TvGePoint2d at; // in the face's units
    bool isOpen = false;

    static TvGePoint2d point(const FT_Vector* v)
    {
        return {static_cast<double>(v->x), static_cast<double>(v->y)};
    }
    static int move(const FT_Vector* to, void* self)
    {
        auto& walk = *static_cast<OutlineWalk*>(self);
        walk.finish();
        walk.at = point(to);
        walk.path.moveTo(walk.map * walk.at);
        walk.isOpen = true;
        return 0;
    }
    static int line(const FT_Vector* to, void* self)
    {
        auto& walk = *static_cast<OutlineWalk*>(self);
        walk.at = point(to);
        walk.path.lineTo(walk.map * walk.at);
        return 0;
    }
    static int conic(const FT_Vector* handle, const FT_Vector* to, void* self)
    {
        auto& walk = *static_cast<OutlineWalk*>(self);
        const TvGePoint2d control = point(handle), end = point(to);
        const TvGePoint2d first = walk.at + (control - walk.at) * (2.0 / 3);
        const TvGePoint2d second = end + (control - end) * (2.0 / 3);
        walk.path.curveTo(walk.map * first, walk.map * second, walk.map * end);
        walk.at = end;
        return 0;
    }
    static int cubic(const FT_Vector* first, const FT_Vector* second, const FT_Vector* to,
                     void* self)
    {
        auto& walk = *static_cast<OutlineWalk*>(self);
        walk.at = point(to);
        walk.path.curveTo(walk.map * point(first), walk.map * point(second), walk.map * walk.at);
        return 0;
    }
    void finish()
    {
        if (isOpen)
            path.close();
        isOpen = false;
    }
};

FontFace faceOf(FT_Face face, const std::string& path, int index, const LetterChange& change)
{
    FontFace named;
    named.key = fmt::format("{}\n{}\n{}\n{}\n{}", path, index, change.slant, change.weight,
                            change.meanWidth);
    const char* const name = FT_Get_Postscript_Name(face);
    named.name = name ? name : face->family_name ? face->family_name : "";
    return named;
}

} // namespace

FontReader::FontReader()
{
    if (FT_Init_FreeType(&m_library) != 0)
        m_library = nullptr;
}

FontReader::~FontReader()
{
    if (m_library)
        FT_Done_FreeType(m_library);
}

std::unique_ptr<OutlineFont> OutlineFont::open(const FontReader& reader, const std::string& path,
                                               int index, const LetterChange& change)
{
    FT_Face face = nullptr;
    if (!reader.library() || FT_New_Face(reader.library(), path.c_str(), index, &face) != 0)
        return nullptr;
    std::unique_ptr<OutlineFont> font(new OutlineFont(face, change));
    font->m_name = faceOf(face, path, index, change);
    return FT_IS_SCALABLE(face) && font->m_scale > 0 ? std::move(font) : nullptr;
}

OutlineFont::OutlineFont(FT_Face face, const LetterChange& change) : m_face(face), m_change(change)
{
    const double capital = capitalHeight();
    m_scale = capital > 0 ? 1 / capital : 0;
    const double mean = change.meanWidth > 0 ? meanWidth() * m_scale : 0;
    if (mean > 0)
        m_widthFactor = std::clamp(change.meanWidth / mean, kNarrowest, kWidest);
}

/// Of the small letters, in the face's units.
double OutlineFont::meanWidth() const
{
    constexpr int kLetters = 26;
    double sum = 0;
    for (FT_ULong letter = 'a'; letter < 'a' + kLetters; ++letter) {
        if (FT_Load_Char(m_face, letter, FT_LOAD_NO_SCALE) != 0)
            return 0;
        sum += static_cast<double>(m_face->glyph->metrics.horiAdvance);
    }
    return sum / kLetters;
}

double OutlineFont::capitalHeight() const
{
    const auto* table = static_cast<TT_OS2*>(FT_Get_Sfnt_Table(m_face, FT_SFNT_OS2));
    if (table && table->version != 0xFFFF && table->version >= 2 && table->sCapHeight > 0)
        return table->sCapHeight;
    if (FT_Load_Char(m_face, 'H', FT_LOAD_NO_SCALE) == 0 && m_face->glyph->metrics.height > 0)
        return static_cast<double>(m_face->glyph->metrics.horiBearingY);
    return m_face->units_per_EM * kUsualCapital;
}

const Glyph* OutlineFont::glyph(char32_t character)
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

std::optional<Glyph> OutlineFont::make(char32_t character)
{
    const FT_UInt index = FT_Get_Char_Index(m_face, character);
    std::optional<Glyph> glyph = index == 0 ? std::nullopt : numbered(index);
    if (glyph)
        glyph->character = character;
    return glyph;
}

std::optional<Glyph> OutlineFont::numbered(FT_UInt index)
{
    if (FT_Load_Glyph(m_face, index, FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP) != 0 ||
        m_face->glyph->format != FT_GLYPH_FORMAT_OUTLINE)
        return std::nullopt;
    FT_Outline& outline = m_face->glyph->outline;
    if (m_change.weight > 0)
        FT_Outline_Embolden(&outline, static_cast<FT_Pos>(m_change.weight / m_scale));
    FT_Outline_Funcs callbacks{};
    callbacks.move_to = OutlineWalk::move;
    callbacks.line_to = OutlineWalk::line;
    callbacks.conic_to = OutlineWalk::conic;
    callbacks.cubic_to = OutlineWalk::cubic;
    OutlineWalk walk;
    walk.map = {m_scale * m_widthFactor, m_scale * m_change.slant, 0, 0, m_scale, 0};
    if (FT_Outline_Decompose(&outline, &callbacks, &walk) != 0)
        return std::nullopt;
    walk.finish();
    Glyph glyph;
    glyph.path = std::move(walk.path);
    glyph.isFilled = true;
    glyph.face = &m_name;
    const double advance = static_cast<double>(m_face->glyph->metrics.horiAdvance) * m_scale;
    glyph.advance = (advance + m_change.weight) * m_widthFactor;
    return glyph;
}

} // namespace gs
