#include "sample_maker/drafting.h"

#include <cmath>
#include <numbers>

#include <db/tv_db_annotations.h>
#include <db/tv_db_symbol_table.h>

#include "sample_maker/title_block.h"

namespace samples {

namespace {

constexpr double kTextMm = 2.5;

struct LayerRow {
    const TvChar* name;
    int color;
    double weightMm;
    const TvChar* linetype = u"Continuous";
};

// clang-format off
constexpr LayerRow kLayers[] = {
    {on::kWalls, 250, 0.5},       {on::kOutlines, 7, 0.35},   {on::kThin, 251, 0.18},
    {on::kFurniture, 252, 0.18},  {on::kHidden, 251, 0.18, u"Dashed"},
    {on::kAxes, 12, 0.18, u"Dash Dot"},
    {on::kHatches, 253, 0.13},    {on::kMeasures, 166, 0.18}, {on::kTexts, 7, 0.25},
    {on::kGround, 36, 0.35},      {on::kPlants, 94, 0.18},    {on::kWater, 152, 0.25},
    {on::kRoof, 16, 0.35},        {on::kInsulation, 32, 0.18}, {on::kTimber, 34, 0.35},
    {on::kReferences, 8, 0.18},   {on::kPaper, 255, 0.18},
};
// clang-format on

/// A crown seen from above, one metre across.
void addTree(Sketch& sketch)
{
    Pen pen = sketch.newBlock(u"Tree");
    pen.on(on::kPlants).circle({0, 0}, 500).circle({0, 0}, 40);
    for (int spoke = 0; spoke < 9; ++spoke) {
        const double angle = spoke * 2 * std::numbers::pi / 9;
        const double length = spoke % 2 ? 430 : 330;
        pen.line({60 * std::cos(angle), 60 * std::sin(angle)},
                 {length * std::cos(angle), length * std::sin(angle)});
    }
}

/// North is up; a centimetre across.
void addNorthArrow(Sketch& sketch)
{
    Pen pen = sketch.newBlock(u"North Arrow");
    pen.on(on::kTexts).circle({0, 0}, 8).fill({{0, 8}, {-3.2, -5.5}, {0, -3}});
    pen.polyline({{0, 8}, {3.2, -5.5}, {0, -3}}, true);
    pen.style(u"Sheet").text({0, 9.5}, 4, u"N", Align::Center);
}

/// The name of a room and its area, for 1 to 1.
void addRoomTag(Sketch& sketch)
{
    Pen pen = sketch.newBlock(u"Room Tag");
    pen.on(on::kTexts)
        .style(u"Sheet")
        .attribute(u"NAME", u"Name of the room", u"Room", {0, 1}, 3, Align::Center)
        .attribute(u"AREA", u"Area", u"0.0", {0, -4}, 2.2, Align::Center);
}

TvString metres(double mm)
{
    return TvString().format(u"%.2f", mm / 1000);
}

} // namespace

SheetForm addDrafting(Sketch& sketch)
{
    SheetForm form = addSheetForms(sketch).back();
    form.paper = {u"ISO A2", 594, 420, u"ISO_A2_(594.00_x_420.00_MM)"};
    form.titleCorner = {form.paper.width - 10, 10};
    form.high = {form.paper.width - 15, form.paper.height - 15};
    // Lengths on paper: windows show dashes as they are there.
    sketch.linetype(u"Dashed", u"Dashed __ __ __", {3, -1.5});
    sketch.linetype(u"Dash Dot", u"Dash dot __ . __", {8, -1.5, 0.2, -1.5});
    for (const LayerRow& row : kLayers)
        sketch.layer(row.name, row.color, row.weightMm, row.linetype);
    addTree(sketch);
    addNorthArrow(sketch);
    addRoomTag(sketch);
    return form;
}

Draft& Draft::solid(const TvString& layer, const TvGePoint2d& low, const TvGePoint2d& high)
{
    m_pen.on(layer).fill({low, {high.x, low.y}, high, {low.x, high.y}});
    return *this;
}

/// The measure with the block that shows it: two lines from what is measured, the line between them
/// with strokes at its ends, and the number above it.
void Draft::measure(const TvGePoint2d& from, const TvGePoint2d& to, const TvGePoint2d& linePoint,
                    double angleDegrees)
{
    const bool isLevel = angleDegrees == 0;
    const auto onLine = [&](const TvGePoint2d& point) {
        return isLevel ? TvGePoint2d(point.x, linePoint.y) : TvGePoint2d(linePoint.x, point.y);
    };
    const TvGePoint2d a = onLine(from), b = onLine(to);
    const double length = isLevel ? std::abs(b.x - a.x) : std::abs(b.y - a.y);
    const double gap = paper(1.5), over = paper(1.2), stroke = paper(1), lift = paper(0.9);
    const TvGePoint2d middle{(a.x + b.x) / 2, (a.y + b.y) / 2};
    const TvGePoint2d words =
        isLevel ? TvGePoint2d(middle.x, middle.y + lift) : TvGePoint2d(middle.x - lift, middle.y);

    Pen block = m_sketch->newBlock(u"*D");
    block.on(on::kMeasures).style(u"Sheet");
    for (const auto& [feature, end] : {std::pair(from, a), std::pair(to, b)}) {
        const double side = isLevel ? (end.y >= feature.y ? 1 : -1) : (end.x >= feature.x ? 1 : -1);
        const TvGePoint2d away = isLevel ? TvGePoint2d(0, side) : TvGePoint2d(side, 0);
        block.line({feature.x + away.x * gap, feature.y + away.y * gap},
                   {end.x + away.x * over, end.y + away.y * over});
        block.line({end.x - stroke, end.y - stroke}, {end.x + stroke, end.y + stroke});
    }
    block.line(a, b);
    block.text(words, paper(kTextMm), metres(length), Align::Center, angleDegrees);

    auto* dimension = new TvDbRotatedDimension;
    m_pen.on(on::kMeasures).add(dimension);
    db::RecordEditor fields = dimension->edit();
    fields.setPoint("p13", {from.x, from.y, 0});
    fields.setPoint("p14", {to.x, to.y, 0});
    fields.setPoint("def_pt", {b.x, b.y, 0});
    fields.setPoint("text_pt", {words.x, words.y});
    fields.setReal("angle", angleDegrees * std::numbers::pi / 180);
    fields.setReal("measurement", length);
    fields.setText("text", metres(length).view());
    fields.setInteger("attachment", 8); // bottom centre
    fields.setHandle("block", block.block().handle().value());
    const TvDbObjectPointer<TvDbDimStyleTable> styles(
        m_sketch->drawing().symbolTableId(TvDb::SymbolTable::DimStyle));
    TvDbObjectId style;
    require(styles->getIdAt(u"Standard", style), "dimension style");
    fields.setHandle("dimstyle", style.handle().value());
    dimension->close();
}

Draft& Draft::measureX(double from, double to, double featureY, double at)
{
    measure({from, featureY}, {to, featureY}, {from, at}, 0);
    return *this;
}

Draft& Draft::measureY(double from, double to, double featureX, double at)
{
    measure({featureX, from}, {featureX, to}, {at, from}, 90);
    return *this;
}

Draft& Draft::chainX(const std::vector<double>& stops, double featureY, double at)
{
    for (std::size_t i = 1; i < stops.size(); ++i)
        measureX(stops[i - 1], stops[i], featureY, at);
    return *this;
}

Draft& Draft::chainY(const std::vector<double>& stops, double featureX, double at)
{
    for (std::size_t i = 1; i < stops.size(); ++i)
        measureY(stops[i - 1], stops[i], featureX, at);
    return *this;
}

Draft& Draft::word(const TvGePoint2d& at, double mm, const TvString& text, Align align)
{
    m_pen.on(on::kTexts).style(u"Sheet").text(at, paper(mm), text, align);
    return *this;
}

Draft& Draft::room(const TvGePoint2d& at, const TvString& name, double squareMetres)
{
    m_pen.on(on::kTexts)
        .insert(u"Room Tag", at,
                {{u"NAME", name}, {u"AREA", TvString().format(u"%.1f m\u00B2", squareMetres)}},
                m_scale);
    return *this;
}

Draft& Draft::level(const TvGePoint2d& at, double heightMm)
{
    const double half = paper(1.6), tall = paper(2.4);
    m_pen.on(on::kMeasures)
        .polyline({at, {at.x - half, at.y + tall}, {at.x + half, at.y + tall}}, true);
    m_pen.line({at.x - half, at.y}, {at.x + paper(14), at.y});
    const TvChar* sign = heightMm == 0 ? u"\u00B1" : heightMm > 0 ? u"+" : u"\u2212";
    const TvString number = TvString(sign) + metres(std::abs(heightMm));
    m_pen.style(u"Sheet").text({at.x + paper(2.4), at.y + paper(0.9)}, paper(kTextMm), number);
    return *this;
}

Draft& Draft::title(const TvGePoint2d& at, const TvString& name)
{
    constexpr double kNameMm = 4.5, kScaleMm = 2.8;
    word(at, kNameMm, name);
    m_pen.on(on::kOutlines).line({at.x, at.y - paper(2)}, {at.x + paper(90), at.y - paper(2)});
    return word({at.x, at.y - paper(2 + 1.8 + kScaleMm)}, kScaleMm,
                TvString().format(u"1:%d", static_cast<int>(m_scale)));
}

Draft& Draft::note(const TvGePoint2d& point, const TvGePoint2d& at, const TvString& text)
{
    const bool isRight = at.x >= point.x;
    const double shelf = paper(isRight ? -2 : 2);
    m_pen.on(on::kMeasures).polyline({point, {at.x + shelf, at.y}, at});
    m_pen.circle(point, paper(0.5));
    const TvGePoint2d words{at.x + paper(isRight ? 1 : -1), at.y - paper(kTextMm / 2)};
    m_pen.style(u"Sheet").text(words, paper(kTextMm), text, isRight ? Align::Left : Align::Right);
    return *this;
}

} // namespace samples
