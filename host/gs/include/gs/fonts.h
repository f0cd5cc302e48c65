#pragma once

#include <memory>
#include <string>

#include <gs/path.h>

namespace gs {

/// Which font a drawing asks for.
struct FontName {
    /// The name of a file ("romans.shx", "arial.ttf"; without an ending: a stroke font), or of a
    /// family of outline fonts. Never opened as a file: only its name counts.
    std::u16string name;
    bool isFamily = false;
    bool isBold = false; ///< bold and italic are for outline fonts only
    bool isItalic = false;

    friend bool operator==(const FontName&, const FontName&) = default;
};

/// Which outlines letters come from, for who wants to keep them as a font.
struct FontFace {
    std::string key;  ///< tells faces apart; the same whenever the program runs on this machine
    std::string name; ///< for readers
};

/// A letter. Its capital height is 1, it begins at x = 0 on the baseline y = 0.
struct Glyph {
    Path path;                      ///< filled, non-zero; or stroked
    bool isFilled = false;          ///< of an outline font
    double advance = 0;             ///< to where the next one begins
    double gap = 0;                 ///< the part of the advance that is space between letters
    char32_t character = 0;         ///< of an outline font
    const FontFace* face = nullptr; ///< of an outline font; lives as long as its Fonts
};

/// What one font has. Lives as long as its Fonts.
class Font
{
public:
    virtual ~Font() = default;
    /// The letter for a character; null when this font has none. The answer stays where it is.
    virtual const Glyph* glyph(char32_t character) = 0;
};

/// All fonts for drawing texts, each found and read once.
///
/// Every stroke font is played by one of our own. Outline fonts are found by the name of their
/// family among those of the machine; one that is not there by the nearest that is. Keep one for
/// all drawings: what was found is remembered.
/// @note not for several threads at once.
class Fonts
{
public:
    Fonts();
    ~Fonts();
    Fonts(const Fonts&) = delete;
    Fonts& operator=(const Fonts&) = delete;

    /// Never fails: a machine without outline fonts draws with strokes.
    Font& find(const FontName& name);
    /// The letter of @p font; of another font when that has none; a box when nobody has it.
    const Glyph& glyph(Font& font, char32_t character);

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace gs
