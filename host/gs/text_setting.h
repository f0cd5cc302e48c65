#pragma once

#include <unordered_map>

#include "text_paragraphs.h"

namespace gs {

/// The place that paragraphs are set into. Lengths in drawing units.
struct TextFrame {
    double height = 0; ///< of the text; indents, tabs and exact spacing count in it
    double width = 0;  ///< where lines are broken; 0: nowhere
    Alignment alignment = Alignment::Left;
    double spacing = 1;   ///< of lines; 1 is 5/3 of the height from baseline to baseline
    bool isExact = false; ///< also where letters are higher than the text
    /// Where columns end. Empty: one column without end. The last one takes what is left.
    std::vector<double> columnHeights;
    double gutter = 0;
    bool isReversed = false; ///< the first column is on the right
    /// When the heights are used up, more columns like the last one follow.
    bool hasMoreColumns = false;
};

/// What was set: the origin is the upper left corner, lines run downwards from y = 0.
struct SetText {
    double width = 0;  ///< of the frame, or of the widest line
    double height = 0; ///< from the top of the first line to the lowest baseline
};

/// Breaks paragraphs into lines, and measures them; write() puts them into a shape.
class TextSetter
{
public:
    TextSetter(const ParagraphText& text, const TextFrame& frame, TextPen& pen);

    SetText size() const { return m_size; }
    /// @param map  from the coordinates of SetText to those of the shape.
    void write(const FlatMap& map);

private:
    struct Line {
        std::uint32_t first = 0, end = 0; // pieces, without spaces at the end
        std::uint32_t paragraph = 0;
        double left = 0, room = 0; // where it begins in its column, and how wide it may be
        double width = 0;          // of what it holds
        double height = 0;         // of its highest letters
        double above = 0;          // from its baseline to the top of all that it holds
        double below = 0;          // from its baseline down to the end of stacks
        bool isFirst = false, isLast = false; // of the paragraph
        bool beginsColumn = false;
        std::size_t column = 0;
        double baseline = 0;
    };

    void measurePieces();
    LetterWidth measureWord(std::uint32_t index, const Paragraph& paragraph);
    TextStretch stretchOf(std::uint32_t word, const Paragraph& paragraph) const;
    void breakParagraph(std::uint32_t index);
    void addLine(Line line);
    void stackLines();
    double stepTo(const Line& line, double belowBefore) const;
    double columnHeight(std::size_t column) const;
    double columnLeft(std::size_t column) const;
    double tabEnd(double x, std::uint32_t tab, std::uint32_t endOfLine,
                  const ParagraphFormat& format) const;
    double widthUntilTab(std::uint32_t from, std::uint32_t end) const;
    std::uint32_t endOfWord(std::uint32_t piece, std::uint32_t end) const;
    Alignment alignmentOf(const ParagraphFormat& format) const;

    class LineWriter;

    const ParagraphText& m_text;
    const TextFrame& m_frame;
    TextPen& m_pen;
    std::vector<LetterWidth> m_widths; // of pieces
    // Of words whose letters change one another, by their numbers among the pieces.
    std::unordered_map<std::uint32_t, std::vector<ShapedLetter>> m_shaped;
    std::vector<Line> m_lines;
    std::size_t m_columns = 1;
    SetText m_size;
};

} // namespace gs
