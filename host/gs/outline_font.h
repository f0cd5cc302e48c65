#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include <ft2build.h>
#include FT_FREETYPE_H

#include "gs/fonts.h"

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

/// A font of outlines, from a file of the machine. Scaled so that its capitals are 1 high.
class OutlineFont : public Font
{
public:
    /// @param path, index  of the face, as the machine names it.
    /// @param slant  1 leans it, for a family without italics. @param weight  added to the
    /// outlines, in heights of capitals, for one without bold letters.
    /// @return null when the file cannot be read, or has no outlines.
    static std::unique_ptr<OutlineFont> open(const FontReader& reader, const std::string& path,
                                             int index, double slant, double weight);
    ~OutlineFont() override;

    const Glyph* glyph(char32_t character) override;

private:
    OutlineFont(FT_Face face, double slant, double weight);
    std::optional<Glyph> make(char32_t character);
    double capitalHeight() const;

    FT_Face m_face; // owned
    double m_slant, m_weight;
    double m_scale = 0; // from the face's units to heights of capitals
    std::unordered_map<char32_t, std::optional<Glyph>> m_made;
};

} // namespace gs
