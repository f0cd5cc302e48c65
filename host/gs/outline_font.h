#pragma once

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include <ft2build.h>
#include FT_FREETYPE_H

#include "gs/fonts.h"
#include "letter_shaper.h"

namespace gs {

/// The reader of font files; ends after all fonts that it opened.
class FontReader
{
public:
    FontReader();
    ~FontReader();
    FontReader(const FontReader&) = delete;
    FontReader& operator=(const FontReader&) = delete;

    FT_Library library() const { return m_library; }

private:
    FT_Library m_library = nullptr; // owned; null when it did not start
};

/// How letters are changed that stand in for others.
struct LetterChange {
    double slant = 0;     ///< of a family without italics: how far a letter 1 high leans
    double weight = 0;    ///< of one without bold letters: added, in heights of capitals
    double meanWidth = 0; ///< that a to z get, in heights of capitals; 0: their own

    friend auto operator<=>(const LetterChange&, const LetterChange&) = default;
};

/// A font of outlines, from a file of the machine. Scaled so that its capitals are 1 high.
class OutlineFont : public Font
{
public:
    /// @param path, index  of the face, as the machine names it.
    /// @return null when the file cannot be read, or has no outlines.
    static std::unique_ptr<OutlineFont> open(const FontReader& reader, const std::string& path,
                                             int index, const LetterChange& change);
    ~OutlineFont() override;

    const Glyph* glyph(char32_t character) override;
    /// By the rules of the font file; a file of a kind that has none: character by character.
    void shape(const TextStretch& stretch, std::vector<ShapedLetter>& out) override;

private:
    OutlineFont(FT_Face face, const LetterChange& change);
    std::optional<Glyph> make(char32_t character);
    /// The letter that has that number in the face.
    std::optional<Glyph> numbered(FT_UInt index);
    const Glyph* form(std::uint16_t index, std::u16string text);
    void addShaped(const TextStretch& stretch, const ScriptRun& run,
                   std::vector<ShapedLetter>& out);
    const Glyph* letterOf(FT_UInt index, std::u32string_view group, bool isFirst, bool isAlone);
    double capitalHeight() const;
    double meanWidth() const;

    FT_Face m_face; // owned
    LetterChange m_change;
    FontFace m_name;
    double m_scale = 0; // from the face's units to heights of capitals
    double m_widthFactor = 1;
    std::unordered_map<char32_t, std::optional<Glyph>> m_made;
    std::array<const Glyph*, 128> m_usual{}; // of m_made, those that were asked for
    std::map<std::pair<std::uint16_t, std::u16string>, Glyph> m_forms; // by what they stand for
    std::unique_ptr<LetterShaper> m_shaper; // null until somebody needs it
};

} // namespace gs
