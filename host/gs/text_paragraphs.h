#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "text_pen.h"

namespace gs {

/// How a small piece stands beside a large one on the line.
enum class LetterPlace { Bottom, Middle, Top };

struct PieceLook {
    LetterLook letters;
    LetterPlace place = LetterPlace::Bottom;

    friend bool operator==(const PieceLook&, const PieceLook&) = default;
};

/// One text over another.
struct TextStack {
    enum class Kind { Tolerance, Fraction, Diagonal };

    Kind kind = Kind::Fraction;
    std::u32string upper, lower;
};

/// A part of a paragraph that is not broken, and looks the same throughout.
struct TextPiece {
    enum class Kind { Word, Space, Tab, Stack, NextColumn };

    Kind kind = Kind::Word;
    bool mayBreakBefore = false; ///< a word that needs no space in front of it, as in Chinese
    std::uint8_t level = 0;      ///< odd ones run from right to left; see levelsOf()
    std::uint32_t look = 0;      ///< among the looks
    std::uint32_t first = 0;     ///< among the letters; of a stack, among the stacks
    std::uint32_t count = 0;
};

enum class Alignment { AsText, Left, Center, Right, Justified };

struct TabStop {
    double at = 0; ///< from the left edge
    Alignment alignment = Alignment::Left;
};

/// Lengths are in heights of the text.
struct ParagraphFormat {
    enum class Spacing { AsText, Multiple, Exact, AtLeast };

    double firstIndent = 0; ///< of the first line, against the others
    double left = 0, right = 0;
    double before = 0, after = 0;
    Alignment alignment = Alignment::AsText;
    Spacing spacing = Spacing::AsText;
    double spacingValue = 1;                    ///< a factor, or a distance in drawing units
    std::shared_ptr<std::vector<TabStop>> tabs; ///< null: none; shared by paragraphs
};

struct Paragraph {
    std::uint32_t firstPiece = 0, endPiece = 0;
    std::uint32_t look = 0; ///< of a paragraph without pieces
    std::uint32_t format = 0;
    bool isRightToLeft = false;
};

/// A text with its codes taken apart.
struct ParagraphText {
    std::vector<PieceLook> looks;
    std::u32string letters;
    std::vector<TextStack> stacks;
    std::vector<TextPiece> pieces;
    std::vector<ParagraphFormat> formats;
    std::vector<Paragraph> paragraphs;
};

/// Gives pieces their levels. A word that runs both ways is taken apart: its parts stay together.
void giveDirections(ParagraphText& text);

/// Takes apart a text with the codes of MTEXT.
///
/// What makes no sense is left out: heights that cannot be drawn, codes without an end. Braces
/// count to a depth of 64; those within close nothing.
ParagraphText parsedParagraphs(std::u16string_view contents, const PieceLook& look, Fonts& fonts);

} // namespace gs
