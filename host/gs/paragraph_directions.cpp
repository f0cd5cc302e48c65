#include "text_directions.h"
#include "text_paragraphs.h"

namespace gs {

namespace {

/// What directions follow from: a character for each letter, and one for each other piece.
std::u32string shownBy(const ParagraphText& text, const Paragraph& paragraph)
{
    constexpr char32_t kThing = 0xFFFC; // something between letters
    std::u32string shown;
    for (std::uint32_t i = paragraph.firstPiece; i < paragraph.endPiece; ++i) {
        const TextPiece& piece = text.pieces[i];
        switch (piece.kind) {
        case TextPiece::Kind::Word: shown.append(text.letters, piece.first, piece.count); break;
        case TextPiece::Kind::Tab: shown += U'\t'; break;
        case TextPiece::Kind::Stack: shown += kThing; break;
        default: shown += U' '; break;
        }
    }
    return shown;
}

/// Appends a word as parts that run one way each. @param levels  of its letters.
void addParts(const TextPiece& word, const std::uint8_t* levels, std::vector<TextPiece>& to)
{
    for (std::uint32_t i = 0; i < word.count; ++i) {
        if (i > 0 && levels[i] == levels[i - 1]) {
            ++to.back().count;
            continue;
        }
        TextPiece part = word;
        part.first += i;
        part.count = 1;
        part.level = levels[i];
        part.mayBreakBefore = word.mayBreakBefore && i == 0;
        to.push_back(part);
    }
}

} // namespace

void giveDirections(ParagraphText& text)
{
    if (!isChangedByNeighbours(text.letters))
        return;
    std::vector<TextPiece> pieces;
    pieces.reserve(text.pieces.size());
    for (Paragraph& paragraph : text.paragraphs) {
        const auto first = static_cast<std::uint32_t>(pieces.size());
        const std::u32string shown = shownBy(text, paragraph);
        const std::vector<std::uint8_t> levels = levelsOf(shown);
        paragraph.isRightToLeft = !levels.empty() && levelOfLine(shown) == 1;
        std::size_t at = 0;
        for (std::uint32_t i = paragraph.firstPiece; i < paragraph.endPiece; ++i) {
            const TextPiece& piece = text.pieces[i];
            const bool isWord = piece.kind == TextPiece::Kind::Word;
            if (levels.empty()) {
                pieces.push_back(piece);
            } else if (isWord) {
                addParts(piece, levels.data() + at, pieces);
            } else {
                pieces.push_back(piece);
                pieces.back().level = levels[at];
            }
            at += isWord ? piece.count : 1;
        }
        paragraph.firstPiece = first;
        paragraph.endPiece = static_cast<std::uint32_t>(pieces.size());
    }
    text.pieces = std::move(pieces);
}

} // namespace gs
