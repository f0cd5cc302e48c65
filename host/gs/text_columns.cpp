#include "text_columns.h"

#include <algorithm>
#include <numbers>

namespace gs {

namespace {

constexpr double kDownStep = 1.5;         // from a letter to the one below, of its height
constexpr double kColumnStep = 5.0 / 3;   // from a column to the next, of the text's height
constexpr double kSmallestSpacing = 0.01; // factors beyond are nobody's

struct DownLetter {
    char32_t character = 0;
    std::uint32_t look = 0;
};
using Column = std::vector<DownLetter>;

/// Columns of letters; what is no letter leaves a gap.
std::vector<Column> columnsOf(const ParagraphText& text, double step, double most)
{
    std::vector<Column> columns;
    const auto put = [&](DownLetter letter) {
        if (most > 0 && !columns.back().empty() &&
            static_cast<double>(columns.back().size()) * step + step > most * (1 + 1e-9))
            columns.emplace_back();
        columns.back().push_back(letter);
    };
    for (const Paragraph& paragraph : text.paragraphs) {
        columns.emplace_back();
        for (std::uint32_t i = paragraph.firstPiece; i < paragraph.endPiece; ++i) {
            const TextPiece& piece = text.pieces[i];
            if (piece.kind == TextPiece::Kind::NextColumn)
                columns.emplace_back();
            else if (piece.kind == TextPiece::Kind::Word)
                for (std::uint32_t l = piece.first; l < piece.first + piece.count; ++l)
                    put({text.letters[l], piece.look});
            else if (piece.kind == TextPiece::Kind::Stack)
                for (const char32_t letter :
                     text.stacks[piece.first].upper + U"/" + text.stacks[piece.first].lower)
                    put({letter, piece.look});
            else
                put({U' ', piece.look});
        }
    }
    return columns;
}

} // namespace

Box writeColumns(const ParagraphText& text, const MTextLook& look, int attachment, TextPen& pen)
{
    const double step = kDownStep * look.height;
    const double spacing =
        look.spacing >= kSmallestSpacing && look.spacing <= 1 / kSmallestSpacing ? look.spacing : 1;
    const double aside = kColumnStep * look.height * spacing;
    const double most =
        look.definedHeight > 0 && look.definedHeight <= kLargestHeight ? look.definedHeight : 0;
    const std::vector<Column> columns = columnsOf(text, step, most);
    std::size_t longest = 0;
    for (const Column& column : columns)
        longest = std::max(longest, column.size());
    const double height = longest == 0 ? 0 : step * static_cast<double>(longest - 1) + look.height;
    const double width =
        columns.empty() ? 0 : aside * static_cast<double>(columns.size() - 1) + look.height;
    const double left = -width * ((attachment - 1) % 3) / 2;
    const double top = height * ((attachment - 1) / 3) / 2;
    double x = left + width - look.height / 2; // the middle of the first column
    for (const Column& column : columns) {
        double y = top - look.height;
        std::u32string all;
        for (const DownLetter& letter : column) {
            const LetterLook& letters = text.looks[letter.look].letters;
            const Glyph& glyph = pen.glyph(letters, letter.character);
            const double wide = (glyph.advance - glyph.gap) * letters.height * letters.widthFactor;
            pen.letter(glyph, letters, {x - wide / 2, y}, {});
            all += letter.character;
            y -= step;
        }
        const FlatMap down = FlatMap::moving(x, top) * FlatMap::turning(-std::numbers::pi / 2);
        if (!all.empty())
            pen.run(all, {}, look.height, step * static_cast<double>(all.size() - 1) + look.height,
                    down);
        x -= aside;
    }
    return {left, top - height, left + width, top};
}

} // namespace gs
