#pragma once

#include <array>
#include <unordered_map>

#include "gs/text_shape.h"
#include "text_style.h"

namespace gs {

/// What the texts of one list are made with: styles are read once.
///
/// Ends before the drawing changes.
struct TextTools {
    struct Style {
        TextStyle style;
        Font* font = nullptr; ///< not owned; the fonts'
    };

    explicit TextTools(Fonts& with, bool keeps = false) : fonts(with), keepsLetters(keeps) {}

    Fonts& fonts;
    /// Letters stay rows of those of their fonts; else their outlines are written out.
    bool keepsLetters;
    std::unordered_map<TvDbObjectId, Style> styles;

    /// A null id, and one of no style: a stroke font. The answer stays where it is.
    const Style& style(TvDbObjectId id);
    /// The same of the style that @p text has.
    const Style& styleOf(const TvDbText& text);

    /// The letter of @p font, or who lends it.
    const Glyph& glyph(Font& font, char32_t character)
    {
        if (character >= lastLetters.size())
            return fonts.glyph(font, character);
        if (&font != lastFont) {
            lastLetters.fill(nullptr);
            lastFont = &font;
        }
        const Glyph*& known = lastLetters[character];
        if (!known)
            known = &fonts.glyph(font, character);
        return *known;
    }

    // The style that was asked for last, and letters of the last font: texts of one style follow
    // each other.
    std::uint64_t lastHandle = 0;
    const Style* last = nullptr;
    const Font* lastFont = nullptr; // not owned; the fonts'
    std::array<const Glyph*, 128> lastLetters{};
};

// Like the functions of gs/text_shape.h.
TextShape textShape(const TvDbText& text, TextTools& tools);
TextShape textShape(const TvDbText& text, std::u16string_view shown, TextTools& tools);
TextShape textShape(const TvDbMText& text, TextTools& tools);
TextShape textShape(const TvDbMLeader& leader, TextTools& tools);
TextShape textShape(const TvDbFcf& tolerance, TextTools& tools);

} // namespace gs
