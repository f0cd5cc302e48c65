#include "text_setting.h"

#include <algorithm>

#include "text_directions.h"
#include "text_stack.h"

namespace gs {

namespace {

// From one baseline to the next, of the height.
constexpr double kLineStep = 5.0 / 3;
// Between tab stops where the text names none, in heights.
constexpr double kTabStep = 4;
// Between what reaches down from one line and up from the next, of the height.
constexpr double kClearance = 1.0 / 3;

} // namespace

TextSetter::TextSetter(const ParagraphText& text, const TextFrame& frame, TextPen& pen)
    : m_text(text), m_frame(frame), m_pen(pen)
{
    measurePieces();
    for (std::uint32_t i = 0; i < text.paragraphs.size(); ++i)
        breakParagraph(i);
    stackLines();
}

void TextSetter::measurePieces()
{
    m_widths.reserve(m_text.pieces.size());
    for (const Paragraph& paragraph : m_text.paragraphs)
        for (std::uint32_t i = paragraph.firstPiece; i < paragraph.endPiece; ++i) {
            const TextPiece& piece = m_text.pieces[i];
            const LetterLook& look = m_text.looks[piece.look].letters;
            LetterWidth width;
            if (piece.kind == TextPiece::Kind::Word)
                width = measureWord(i, paragraph);
            else if (piece.kind == TextPiece::Kind::Space)
                width = m_pen.width(U" ", look);
            else if (piece.kind == TextPiece::Kind::Stack)
                width = stackExtent(m_text.stacks[piece.first], look, m_pen).width;
            m_widths.push_back(width);
        }
}

LetterWidth TextSetter::measureWord(std::uint32_t index, const Paragraph& paragraph)
{
    const TextPiece& piece = m_text.pieces[index];
    const LetterLook& look = m_text.looks[piece.look].letters;
    const auto word = std::u32string_view(m_text.letters).substr(piece.first, piece.count);
    if (piece.level % 2 == 0 && !isChangedByNeighbours(word))
        return m_pen.width(word, look);
    const auto& letters = m_shaped[index] = m_pen.shaped(stretchOf(index, paragraph), look);
    return m_pen.width(letters, look);
}

/// A word, and what it touches: letters join over a change of colour.
TextStretch TextSetter::stretchOf(std::uint32_t word, const Paragraph& paragraph) const
{
    const auto& pieces = m_text.pieces;
    const TextPiece& piece = pieces[word];
    const std::uint32_t end = piece.first + piece.count;
    std::uint32_t from = piece.first, to = end;
    if (word > paragraph.firstPiece && pieces[word - 1].kind == TextPiece::Kind::Word)
        from = pieces[word - 1].first;
    if (word + 1 < paragraph.endPiece && pieces[word + 1].kind == TextPiece::Kind::Word)
        to = end + pieces[word + 1].count;
    return {std::u32string_view(m_text.letters).substr(from, to - from), piece.first - from,
            piece.count, piece.level % 2 == 1};
}

Alignment TextSetter::alignmentOf(const ParagraphFormat& format) const
{
    return format.alignment == Alignment::AsText ? m_frame.alignment : format.alignment;
}

/// The end of the pieces from @p piece on that stay together.
std::uint32_t TextSetter::endOfWord(std::uint32_t piece, std::uint32_t end) const
{
    const auto isGlued = [&](std::uint32_t i) {
        const TextPiece& p = m_text.pieces[i];
        return (p.kind == TextPiece::Kind::Word && !p.mayBreakBefore) ||
               p.kind == TextPiece::Kind::Stack;
    };
    const TextPiece& first = m_text.pieces[piece];
    if (first.kind != TextPiece::Kind::Word && first.kind != TextPiece::Kind::Stack)
        return piece + 1;
    do
        ++piece;
    while (piece < end && isGlued(piece));
    return piece;
}

double TextSetter::widthUntilTab(std::uint32_t from, std::uint32_t end) const
{
    double width = 0, gap = 0;
    for (; from < end && m_text.pieces[from].kind != TextPiece::Kind::Tab; ++from) {
        width += m_widths[from].advance;
        gap = m_widths[from].gap;
    }
    return width - gap;
}

/// Where the piece behind a tab begins, in the column's coordinates.
double TextSetter::tabEnd(double x, std::uint32_t tab, std::uint32_t endOfLine,
                          const ParagraphFormat& format) const
{
    if (format.tabs)
        for (const TabStop& stop : *format.tabs) {
            const double at = stop.at * m_frame.height;
            if (at <= x)
                continue;
            if (stop.alignment == Alignment::Left)
                return at;
            const double width = widthUntilTab(tab + 1, endOfLine);
            return std::max(x, at - (stop.alignment == Alignment::Right ? width : width / 2));
        }
    const double step = kTabStep * m_frame.height;
    return (std::floor(x / step + 1e-9) + 1) * step;
}

/// Fills lines with words for as long as they fit; a word that is wider than a line has one of its
/// own.
void TextSetter::breakParagraph(std::uint32_t index)
{
    const Paragraph& paragraph = m_text.paragraphs[index];
    const ParagraphFormat& format = m_text.formats[paragraph.format];
    const double unit = m_frame.height;
    const auto fresh = [&](std::uint32_t first, bool isFirst) {
        Line line;
        line.first = line.end = first;
        line.paragraph = index;
        line.isFirst = isFirst;
        line.left = unit * (format.left + (isFirst ? format.firstIndent : 0));
        line.room =
            m_frame.width > 0 ? std::max(m_frame.width - line.left - unit * format.right, 0.0) : 0;
        return line;
    };
    Line line = fresh(paragraph.firstPiece, true);
    double x = 0, inkEnd = 0; // behind all pieces, and behind the last that is not blank
    for (std::uint32_t at = paragraph.firstPiece; at < paragraph.endPiece;) {
        const TextPiece::Kind kind = m_text.pieces[at].kind;
        if (kind == TextPiece::Kind::NextColumn) {
            line.width = inkEnd;
            addLine(line);
            line = fresh(++at, false);
            line.beginsColumn = true;
            x = inkEnd = 0;
            continue;
        }
        if (kind == TextPiece::Kind::Space || kind == TextPiece::Kind::Tab) {
            x = kind == TextPiece::Kind::Space
                    ? x + m_widths[at].advance
                    : tabEnd(x + line.left, at, paragraph.endPiece, format) - line.left;
            ++at;
            continue;
        }
        const std::uint32_t end = endOfWord(at, paragraph.endPiece);
        LetterWidth word;
        for (std::uint32_t i = at; i < end; ++i)
            word = {word.advance + m_widths[i].advance, m_widths[i].gap};
        if (m_frame.width > 0 && line.end > line.first && x + word.ink() > line.room * (1 + 1e-9)) {
            line.width = inkEnd;
            addLine(line);
            line = fresh(at, false);
            x = 0;
        }
        x += word.advance;
        inkEnd = x - word.gap;
        line.end = at = end;
    }
    line.width = inkEnd;
    line.isLast = true;
    addLine(line);
}

void TextSetter::addLine(Line line)
{
    for (std::uint32_t i = line.first; i < line.end; ++i)
        line.height = std::max(line.height, m_text.looks[m_text.pieces[i].look].letters.height);
    if (line.height == 0) { // an empty line is as high as letters would be
        const Paragraph& paragraph = m_text.paragraphs[line.paragraph];
        const bool hasPieces = line.first < paragraph.endPiece;
        const std::uint32_t look = hasPieces ? m_text.pieces[line.first].look : paragraph.look;
        line.height = m_text.looks[look].letters.height;
    }
    line.above = line.height;
    for (std::uint32_t i = line.first; i < line.end; ++i) {
        const TextPiece& piece = m_text.pieces[i];
        if (piece.kind != TextPiece::Kind::Stack)
            continue;
        const PieceLook& look = m_text.looks[piece.look];
        const double tall = stackExtent(m_text.stacks[piece.first], look.letters, m_pen).height;
        const double foot = raised(look.place, tall, line.height);
        line.above = std::max(line.above, foot + tall);
        line.below = std::max(line.below, -foot);
    }
    m_lines.push_back(line);
}

/// From the baseline above to that of @p line.
double TextSetter::stepTo(const Line& line, double belowBefore) const
{
    const ParagraphFormat& format = m_text.formats[m_text.paragraphs[line.paragraph].format];
    using Spacing = ParagraphFormat::Spacing;
    switch (format.spacing) {
    case Spacing::Exact: return format.spacingValue;
    case Spacing::Multiple:
    case Spacing::AtLeast:
    case Spacing::AsText: break;
    }
    if (format.spacing == Spacing::AsText && m_frame.isExact)
        return kLineStep * m_frame.spacing * m_frame.height;
    double step = kLineStep * line.height *
                  (format.spacing == Spacing::Multiple ? format.spacingValue : m_frame.spacing);
    if (format.spacing == Spacing::AtLeast)
        step = std::max(step, format.spacingValue);
    if (line.above > line.height || belowBefore > 0)
        step = std::max(step, belowBefore + line.above + kClearance * line.height);
    return step;
}

double TextSetter::columnHeight(std::size_t column) const
{
    const auto& heights = m_frame.columnHeights;
    if (column < heights.size() && (column + 1 < heights.size() || m_frame.hasMoreColumns))
        return heights[column];
    return m_frame.hasMoreColumns && !heights.empty() ? heights.back()
                                                      : std::numeric_limits<double>::infinity();
}

double TextSetter::columnLeft(std::size_t column) const
{
    const std::size_t place = m_frame.isReversed ? m_columns - 1 - column : column;
    return static_cast<double>(place) * (m_frame.width + m_frame.gutter);
}

/// Puts the lines below each other, and into columns.
void TextSetter::stackLines()
{
    std::size_t column = 0;
    double baseline = 0, below = 0, widest = 0, lowest = 0;
    bool isFirstOfColumn = true;
    for (Line& line : m_lines) {
        const ParagraphFormat& format = m_text.formats[m_text.paragraphs[line.paragraph].format];
        double next = isFirstOfColumn ? line.above
                                      : baseline + stepTo(line, below) +
                                            (line.isFirst ? format.before * m_frame.height : 0);
        const bool goesOn = !m_frame.columnHeights.empty() && !isFirstOfColumn &&
                            (line.beginsColumn || next > columnHeight(column) * (1 + 1e-9));
        if (goesOn) {
            ++column;
            next = line.above;
        }
        line.column = column;
        line.baseline = baseline = next;
        if (line.isLast)
            baseline += format.after * m_frame.height;
        below = line.below;
        isFirstOfColumn = false;
        widest = std::max(widest, line.left + line.width);
        lowest = std::max(lowest, line.baseline + line.below);
    }
    m_columns = std::max(column + 1, m_frame.hasMoreColumns ? 1 : m_frame.columnHeights.size());
    m_size.height = lowest;
    m_size.width =
        m_frame.width > 0
            ? static_cast<double>(m_columns) * (m_frame.width + m_frame.gutter) - m_frame.gutter
            : widest;
}

/// Writes one line: pieces from left to right, lines at letters in one go, and a run for each
/// stretch between tabs.
///
/// Tabs count from the left, and what is between two of them stays there, whichever way it runs.
class TextSetter::LineWriter
{
public:
    LineWriter(TextSetter& setter, const Line& line, double stretch, const FlatMap& map)
        : m_setter(setter), m_line(line), m_stretch(stretch), m_map(map)
    {
    }

    void write(double x)
    {
        m_start = x;
        const ParagraphFormat& format =
            m_setter.m_text.formats[m_setter.m_text.paragraphs[m_line.paragraph].format];
        for (std::uint32_t i = m_line.first; i < m_line.end;) {
            if (m_setter.m_text.pieces[i].kind == TextPiece::Kind::Tab) {
                finishRun(x);
                x = m_columnLeft + m_setter.tabEnd(x - m_columnLeft, i, m_line.end, format);
                m_start = x;
                ++i;
                continue;
            }
            std::uint32_t end = i + 1;
            while (end < m_line.end && m_setter.m_text.pieces[end].kind != TextPiece::Kind::Tab)
                ++end;
            x = writeStretch(i, end, x);
            i = end;
        }
        finishRun(x - m_gap);
    }
    void setColumnLeft(double left) { m_columnLeft = left; }

private:
    /// Pieces between tabs.
    double writeStretch(std::uint32_t first, std::uint32_t end, double x)
    {
        const auto& pieces = m_setter.m_text.pieces;
        for (std::uint32_t i = first; i < end; ++i)
            addToRun(pieces[i]);
        const auto isTurned = [](const TextPiece& piece) { return piece.level != 0; };
        if (std::none_of(pieces.begin() + first, pieces.begin() + end, isTurned)) {
            for (std::uint32_t i = first; i < end; ++i)
                x = writePiece(i, x, i + 1 == m_line.end);
            return x;
        }
        std::vector<std::uint8_t> levels;
        for (std::uint32_t i = first; i < end; ++i)
            levels.push_back(pieces[i].level);
        std::uint32_t left = end - first;
        for (const std::uint32_t place : visualOrder(levels))
            x = writePiece(first + place, x, --left == 0 && end == m_line.end);
        return x;
    }

    void addToRun(const TextPiece& piece)
    {
        const ParagraphText& text = m_setter.m_text;
        m_height = std::max(m_height, text.looks[piece.look].letters.height);
        if (piece.kind == TextPiece::Kind::Stack)
            m_text += text.stacks[piece.first].upper + U"/" + text.stacks[piece.first].lower;
        else if (piece.kind == TextPiece::Kind::Space)
            m_text += U' ';
        else
            m_text.append(text.letters, piece.first, piece.count);
    }

    double writePiece(std::uint32_t index, double x, bool isLast)
    {
        const TextPiece& piece = m_setter.m_text.pieces[index];
        const LetterWidth width = m_setter.m_widths[index];
        const PieceLook& look = m_setter.m_text.looks[piece.look];
        m_gap = width.gap;
        double end = x + width.advance;
        double base = -m_line.baseline;
        if (piece.kind == TextPiece::Kind::Stack) {
            const TextStack& stack = m_setter.m_text.stacks[piece.first];
            const double tall = stackExtent(stack, look.letters, m_setter.m_pen).height;
            base += raised(look.place, tall, m_line.height);
            writeStack(stack, look.letters, {x, base}, m_setter.m_pen, m_map);
        } else if (piece.kind == TextPiece::Kind::Space) {
            end += m_stretch;
        } else {
            base += raised(look.place, look.letters.height, m_line.height);
            writeWord(index, {x, base});
        }
        m_setter.m_pen.linesAt(look.letters, {x, base}, isLast ? end - width.gap : end, m_map);
        return end;
    }

    void writeWord(std::uint32_t index, TvGePoint2d at)
    {
        const TextPiece& piece = m_setter.m_text.pieces[index];
        const LetterLook& look = m_setter.m_text.looks[piece.look].letters;
        if (const auto shaped = m_setter.m_shaped.find(index); shaped != m_setter.m_shaped.end())
            return m_setter.m_pen.letters(shaped->second, look, at, m_map);
        const auto word =
            std::u32string_view(m_setter.m_text.letters).substr(piece.first, piece.count);
        m_setter.m_pen.letters(word, look, at, m_map);
    }

    void finishRun(double end)
    {
        if (m_text.find_first_not_of(U' ') != std::u32string::npos)
            m_setter.m_pen.run(m_text, {m_start, -m_line.baseline}, m_height, end - m_start, m_map);
        m_text.clear();
        m_height = 0;
    }

    TextSetter& m_setter;
    const Line& m_line;
    double m_stretch;
    const FlatMap& m_map;
    double m_columnLeft = 0;
    std::u32string m_text;
    double m_start = 0, m_gap = 0, m_height = 0;
};

void TextSetter::write(const FlatMap& map)
{
    const double frameWidth = m_frame.width > 0 ? m_frame.width : m_size.width;
    for (const Line& line : m_lines) {
        const ParagraphFormat& format = m_text.formats[m_text.paragraphs[line.paragraph].format];
        const double column = columnLeft(line.column);
        const double room =
            m_frame.width > 0 ? line.room : frameWidth - line.left - format.right * m_frame.height;
        double shift = 0, stretch = 0;
        switch (alignmentOf(format)) {
        case Alignment::Center: shift = (room - line.width) / 2; break;
        case Alignment::Right: shift = room - line.width; break;
        case Alignment::Justified: {
            bool hasTab = false;
            double spaces = 0;
            for (std::uint32_t i = line.first; i < line.end; ++i) {
                spaces += m_text.pieces[i].kind == TextPiece::Kind::Space;
                hasTab |= m_text.pieces[i].kind == TextPiece::Kind::Tab;
            }
            if (!line.isLast && !hasTab && spaces > 0 && room > line.width)
                stretch = (room - line.width) / spaces;
            else if (m_text.paragraphs[line.paragraph].isRightToLeft)
                shift = room - line.width; // where it begins
            break;
        }
        default: break;
        }
        LineWriter writer(*this, line, stretch, map);
        writer.setColumnLeft(column + shift);
        writer.write(column + shift + line.left);
    }
}

} // namespace gs
