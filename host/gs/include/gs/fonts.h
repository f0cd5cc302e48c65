#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

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
    char32_t character = 0;         ///< of an outline font; 0: a form that no character has alone
    std::uint16_t form = 0;         ///< of such a form: its number in its face
    std::u16string text;            ///< what that form stands for; "": it belongs to one before it
    const FontFace* face = nullptr; ///< of an outline font; lives as long as its Fonts
};

/// A part of a text that is written in one direction, and with it what stands around it: letters
/// join with their neighbours.
struct TextStretch {
    std::u32string_view text;
    std::size_t first = 0, count = 0;
    bool isRightToLeft = false;

    std::u32string_view own() const { return text.substr(first, count); }
};

/// A letter whose neighbours have been looked at. Lengths in heights of capitals.
struct ShapedLetter {
    const Glyph* glyph = nullptr; ///< never null; its Fonts'
    double x = 0, y = 0;          ///< from the pen to where it stands
    double advance = 0;           ///< of the pen
    std::uint32_t character = 0;  ///< the first one in the text that it stands for
    bool endsGroup = true;        ///< the next one does not stand on or under it
    bool isJoined = false;        ///< with its neighbours: no room may come between them
};

/// What one font has. Lives as long as its Fonts.
class Font
{
public:
    virtual ~Font() = default;
    /// The letter for a character; null when this font has none. The answer stays where it is.
    virtual const Glyph* glyph(char32_t character) = 0;
    /// Appends the letters of a stretch as they stand from left to right. Here: character by
    /// character, and what nobody sees left out.
    /// @pre it has a letter for every character that is to be seen; others are left out.
    virtual void shape(const TextStretch& stretch, std::vector<ShapedLetter>& out);
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

    /// Those that all drawings share that are drawn in this thread.
    static Fonts& ofThread();

    /// Never fails: a machine without outline fonts draws with strokes.
    Font& find(const FontName& name);
    /// The letter of @p font; of another font when that has none; a box when nobody has it.
    const Glyph& glyph(Font& font, char32_t character);
    /// The letters of a stretch as they stand from left to right, in the forms that their
    /// neighbours ask for. What @p font lacks is lent by others, a letter with all its marks.
    void shape(Font& font, const TextStretch& stretch, std::vector<ShapedLetter>& out);
    /// The letters of a line, whose directions follow from its characters.
    std::vector<ShapedLetter> line(Font& font, std::u32string_view text);

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace gs
