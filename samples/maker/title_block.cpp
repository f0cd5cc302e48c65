#include "sample_maker/title_block.h"

#include <array>

namespace samples {

namespace {

/// One field of a title block: what it is called, and what each sheet fills in. Lengths are
/// millimetres on paper, from the block's lower right corner.
struct Cell {
    double left, right, low, high;
    const TvChar* label;
    const TvChar* tag;
    const TvChar* text;
    double height;
    Align align = Align::Left;
};

// clang-format off
constexpr Cell kWideCells[] = {
    {-180, -135,  0, 14, u"Drawn by",       tag::kDrawnBy,       u"",              3.5},
    {-135,  -90,  0, 14, u"Checked by",     tag::kCheckedBy,     u"",              3.5},
    { -90,  -50,  0, 14, u"Date",           tag::kDate,          u"",              3.5},
    { -50,    0,  0, 28, u"Sheet",          tag::kNumber,        u"000",           9, Align::Middle},
    {-180, -135, 14, 28, u"Scale",          tag::kScale,         u"1:100",         3.5},
    {-135,  -90, 14, 28, u"Revision",       tag::kRevision,      u"-",             3.5},
    { -90,  -50, 14, 28, u"Project number", tag::kProjectNumber, u"",              3.5},
    {-180,    0, 28, 45, u"Title",          tag::kTitle,         u"Title of the sheet", 6},
    {-180,    0, 45, 62, u"Project",        tag::kProject,       u"Name of the project", 6},
    {-180,    0, 62, 76, u"Client",         tag::kClient,        u"",              4},
};
constexpr Cell kTallCells[] = {
    {-80,    0,   0,  36, u"Sheet",          tag::kNumber,        u"000",    14, Align::Middle},
    {-80,  -40,  36,  50, u"Revision",       tag::kRevision,      u"-",      3.5},
    {-40,    0,  36,  50, u"Scale",          tag::kScale,         u"1:100",  3.5},
    {-80,  -40,  50,  64, u"Drawn by",       tag::kDrawnBy,       u"",       3.5},
    {-40,    0,  50,  64, u"Checked by",     tag::kCheckedBy,     u"",       3.5},
    {-80,  -40,  64,  78, u"Project number", tag::kProjectNumber, u"",       3.5},
    {-40,    0,  64,  78, u"Date",           tag::kDate,          u"",       3.5},
    {-80,    0,  78, 100, u"Title",          tag::kTitle,         u"Title of the sheet", 5},
    {-80,    0, 100, 122, u"Project",        tag::kProject,       u"Name of the project", 5},
    {-80,    0, 122, 140, u"Client",         tag::kClient,        u"",       4},
};
// clang-format on

void drawCell(Pen& pen, const Cell& cell, double unit)
{
    constexpr double kLabelHeight = 2, kGap = 1.5;
    const auto at = [unit](double x, double y) { return TvGePoint2d(x * unit, y * unit); };
    pen.on(u"Sheet Lines").rectangle(at(cell.left, cell.low), at(cell.right, cell.high));
    pen.on(u"Sheet Labels")
        .text(at(cell.left + kGap, cell.high - kGap - kLabelHeight), kLabelHeight * unit,
              cell.label);
    // A word in the middle keeps clear of the label above it.
    const bool isCentred = cell.align == Align::Middle;
    const TvGePoint2d place = isCentred ? at((cell.left + cell.right) / 2,
                                             (cell.low + cell.high - kLabelHeight - kGap) / 2)
                                        : at(cell.left + 2 * kGap, cell.low + 2 * kGap);
    pen.on(u"Sheet Texts")
        .attribute(cell.tag, cell.label, cell.text, place, cell.height * unit, cell.align);
}

/// Empty lines for changes, the newest at the bottom.
void drawRevisions(Pen& pen, double left, double low, double width, int lines, double unit)
{
    constexpr double kLine = 7, kText = 2;
    struct Column {
        double from;
        const TvChar* head;
    };
    const std::array<Column, 4> columns{
        {{0, u"Rev"}, {0.12, u"Change"}, {0.66, u"Date"}, {0.86, u"By"}}};
    const auto at = [&](double part, double y) {
        return TvGePoint2d((left + part * width) * unit, y * unit);
    };
    const double high = low + (lines + 1) * kLine;
    pen.on(u"Sheet Lines");
    for (int line = 0; line <= lines + 1; ++line)
        pen.line(at(0, low + line * kLine), at(1, low + line * kLine));
    for (const Column& column : columns)
        pen.line(at(column.from, low), at(column.from, high));
    pen.line(at(1, low), at(1, high));
    pen.on(u"Sheet Labels");
    for (const Column& column : columns) {
        const TvGePoint2d corner = at(column.from, high - kLine / 2 - kText / 2);
        pen.text({corner.x + 1.5 * unit, corner.y}, kText * unit, column.head);
    }
}

void drawZones(Pen& pen, const Frame& frame, double unit)
{
    constexpr double kText = 3.5;
    const TvGePoint2d low = frame.low, high = frame.high;
    const double wide = (high.x - low.x) / frame.columns, tall = (high.y - low.y) / frame.rows;
    for (int column = 0; column < frame.columns; ++column) {
        const double x = low.x + column * wide;
        const TvString number = TvString().format(u"%d", column + 1);
        for (const double y : {low.y - frame.zone, high.y}) {
            if (column > 0)
                pen.on(u"Sheet Lines").line({x, y}, {x, y + frame.zone});
            pen.on(u"Sheet Labels")
                .text({x + wide / 2, y + frame.zone / 2}, kText * unit, number, Align::Middle);
        }
    }
    for (int row = 0; row < frame.rows; ++row) {
        // Letters from the top down, without I and O.
        constexpr TvChar kLetters[] = u"ABCDEFGHJKLMNPQRSTUVWXYZ";
        const double y = high.y - row * tall;
        const TvString letter(kLetters + row, 1);
        for (const double x : {low.x - frame.zone, high.x}) {
            if (row > 0)
                pen.on(u"Sheet Lines").line({x, y}, {x + frame.zone, y});
            pen.on(u"Sheet Labels")
                .text({x + frame.zone / 2, y - tall / 2}, kText * unit, letter, Align::Middle);
        }
    }
}

/// Where the middle of the sheet is, for copies: from the paper's edge a little into the frame.
void drawCentringMarks(Pen& pen, const Paper& sheet, const Frame& frame, double unit)
{
    const TvGePoint2d middle{(frame.low.x + frame.high.x) / 2, (frame.low.y + frame.high.y) / 2};
    const double into = 5 * unit, edge = 5 * unit;
    pen.line({middle.x, edge}, {middle.x, frame.low.y + into});
    pen.line({middle.x, sheet.height - edge}, {middle.x, frame.high.y - into});
    pen.line({edge, middle.y}, {frame.low.x + into, middle.y});
    pen.line({sheet.width - edge, middle.y}, {frame.high.x - into, middle.y});
}

} // namespace

void addSheetStyles(Sketch& sketch)
{
    constexpr int kForeground = 7, kGrey = 8, kBlue = 5;
    sketch.layer(u"Sheet Frame", kForeground, 0.7)
        .layer(u"Sheet Lines", kForeground, 0.35)
        .layer(u"Sheet Labels", kGrey, 0.18)
        .layer(u"Sheet Texts", kForeground, 0.25)
        .layer(u"Viewports", kBlue, 0.13, u"Continuous", false)
        .textStyle(u"Sheet", u"arial.ttf");
}

void addWideTitleBlock(Sketch& sketch, const TvString& name, double unit)
{
    Pen pen = sketch.newBlock(name);
    pen.style(u"Sheet");
    for (const Cell& cell : kWideCells)
        drawCell(pen, cell, unit);
    pen.on(u"Sheet Frame")
        .polyline({{-kWideTitleWidth * unit, 0},
                   {-kWideTitleWidth * unit, kWideTitleHeight * unit},
                   {0, kWideTitleHeight * unit}});
    drawRevisions(pen, -kWideTitleWidth, kWideTitleHeight, kWideTitleWidth, 4, unit);
}

void addTallTitleBlock(Sketch& sketch, const TvString& name, double unit, double height)
{
    Pen pen = sketch.newBlock(name);
    pen.style(u"Sheet");
    for (const Cell& cell : kTallCells)
        drawCell(pen, cell, unit);
    drawRevisions(pen, -kTallTitleWidth, 150, kTallTitleWidth, 10, unit);
    pen.on(u"Sheet Frame").line({-kTallTitleWidth * unit, 0}, {-kTallTitleWidth * unit, height});
}

void drawFrame(Pen& paper, const Paper& sheet, const Frame& frame, double unit)
{
    paper.style(u"Sheet").on(u"Sheet Frame").rectangle(frame.low, frame.high);
    paper.on(u"Sheet Frame");
    drawCentringMarks(paper, sheet, frame, unit);
    paper.on(u"Sheet Lines")
        .rectangle({frame.low.x - frame.zone, frame.low.y - frame.zone},
                   {frame.high.x + frame.zone, frame.high.y + frame.zone});
    drawZones(paper, frame, unit);
}

} // namespace samples
