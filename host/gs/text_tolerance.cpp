#include <algorithm>

#include <db/ge_values.h>

#include "dimension_style.h"
#include "gs/text_shape.h"
#include "text_mtext.h"
#include "text_setting.h"

namespace gs {

namespace {

constexpr std::size_t kMostRows = 100, kMostCells = 100; // cells of a row

using Cells = std::vector<std::u16string_view>;

/// What lies between @p mark and the next one.
std::vector<std::u16string_view> split(std::u16string_view text, std::u16string_view mark,
                                       std::size_t most)
{
    std::vector<std::u16string_view> pieces;
    while (pieces.size() < most) {
        const auto end = text.find(mark);
        pieces.push_back(text.substr(0, end));
        if (end == std::u16string_view::npos)
            break;
        text.remove_prefix(end + mark.size());
    }
    return pieces;
}

std::vector<Cells> cellsOf(std::u16string_view text)
{
    std::vector<Cells> rows;
    for (const std::u16string_view line : split(text, u"\n", kMostRows))
        for (const std::u16string_view row : split(line, u"^J", kMostRows)) {
            Cells cells = split(row, u"%%v", kMostCells);
            std::erase_if(cells, [](std::u16string_view cell) { return cell.empty(); });
            if (rows.size() < kMostRows)
                rows.push_back(std::move(cells));
        }
    return rows;
}

/// What the dimension style says of frames.
struct FrameLook {
    TextStyle style;
    double height = 0.18;
    double gap = 0.09; ///< around the text
    OwnColor text, line;
};

// Group codes of the variables
enum : int {
    kScale = 40,
    kTextHeight = 140,
    kGap = 147,
    kLineColor = 176,
    kTextColor = 178,
    kTextStyle = 340
};

OwnColor colorOf(const DimensionStyle& style, const char* field, int code)
{
    if (const auto own = style.ownInteger(code))
        return OwnColor::fromIndex(*own);
    return OwnColor::fromRecord(style.colorOfStyle(field), style.version());
}

FrameLook lookOf(const TvDbFcf& tolerance, TextTools& tools)
{
    FrameLook look;
    const DimensionStyle style(tolerance, tolerance.dimensionStyle());
    const double ownScale = style.real("DIMSCALE", kScale);
    const double scale = ownScale > 0 ? ownScale : 1;
    look.style = tools.style(style.object("DIMTXSTY", kTextStyle)).style;
    const double height =
        look.style.height > 0 ? look.style.height : style.real("DIMTXT", kTextHeight);
    if (height == 0) // no style at all
        return look;
    look.height = height * scale;
    // Below 0 it asks for a box around a dimension's text; here there is one anyway.
    look.gap = std::abs(style.real("DIMGAP", kGap)) * scale;
    look.text = colorOf(style, "DIMCLRT", kTextColor);
    look.line = colorOf(style, "DIMCLRD", kLineColor);
    return look;
}

/// Writes a cell whose upper left corner is @p corner, and draws its frame; returns its width.
double writeCell(std::u16string_view cell, const FrameLook& look, TvGePoint2d corner, TextPen& pen,
                 Fonts& fonts)
{
    PieceLook letters;
    letters.letters.font = &fonts.find(look.style.font);
    letters.letters.height = look.height;
    letters.letters.color = look.text;
    letters.letters.widthFactor = soundFactor(look.style.widthFactor);
    letters.letters.slant = slantOf(look.style.oblique);
    TextFrame frame;
    frame.height = look.height;
    const ParagraphText text = parsedParagraphs(cell, letters, fonts);
    TextSetter setter(text, frame, pen);
    setter.write(FlatMap::moving(corner.x + look.gap, corner.y - look.gap));
    const double width = setter.size().width + 2 * look.gap;
    Path box;
    addRectangle(box,
                 {corner.x, corner.y - look.height - 2 * look.gap, corner.x + width, corner.y});
    pen.stroke(box, look.line, {});
    return width;
}

} // namespace

TextShape textShape(const TvDbFcf& tolerance, TextTools& tools)
{
    TextShape shape;
    shape.keepsLetters = tools.keepsLetters;
    shape.placement = textPlane(tolerance.location(), tolerance.direction(), tolerance.normal());
    FrameLook look = lookOf(tolerance, tools);
    if (!isDrawableHeight(look.height) || !isSound(shape.placement))
        return shape;
    if (!(look.gap <= kLargestHeight))
        look.gap = look.height / 2;
    TextPen pen(shape, tools);
    // The first row stands in the middle over the place, the others hang below it.
    const double rowHeight = look.height + 2 * look.gap;
    double top = rowHeight / 2;
    const std::u16string text = std::u16string(tolerance.fields().text("text"));
    for (const Cells& row : cellsOf(text)) {
        double x = 0;
        for (const std::u16string_view cell : row)
            x += writeCell(cell, look, {x, top}, pen, tools.fonts);
        top -= rowHeight;
    }
    measureExtents(shape);
    return shape;
}

} // namespace gs
