#include "lake_house.h"

namespace samples::lake_house {

namespace {

double placeOf(Opening::Side side, double at)
{
    switch (side) {
    case Opening::North: return kLength - at;
    case Opening::West: return kDepth - at;
    default: return at;
    }
}

void openingInFace(Draft& draft, double left, double right, const Opening& opening)
{
    constexpr double kFrame = 70;
    const double floor = opening.floor * kStorey;
    const double low = floor + opening.sill, high = floor + opening.head;
    draft.pen().on(on::kOutlines).rectangle({left, low}, {right, high});
    const int leaves = right - left > 2600 ? 3 : right - left > 1300 ? 2 : 1;
    const double each = (right - left) / leaves;
    for (int i = 0; i < leaves; ++i) {
        const double a = left + i * each, b = a + each;
        draft.pen().on(on::kThin).rectangle({a + kFrame, low + kFrame},
                                            {b - kFrame, high - kFrame});
        // What is glass catches the light.
        const double third = (b - a) / 3;
        draft.pen()
            .on(on::kWater)
            .line({a + third, low + (high - low) * 0.45},
                  {a + 2 * third, low + (high - low) * 0.7});
    }
    if (opening.sill > 0)
        draft.pen().on(on::kOutlines).rectangle({left - 60, low - 50}, {right + 60, low});
}

void groundLine(Draft& draft, double left, double right)
{
    draft.pen()
        .on(on::kGround)
        .polyline({{left, kGround}, {right, kGround}}, false, draft.paper(0.5));
}

void shrub(Draft& draft, double x, double radius)
{
    draft.pen().on(on::kPlants);
    for (const double part : {-0.8, 0.0, 0.8})
        draft.pen().arc({x + part * radius, kGround + radius * (part == 0 ? 0.9 : 0.5)},
                        radius * 0.75,
                        part < 0   ? 60
                        : part > 0 ? -20
                                   : 20,
                        part < 0   ? 220
                        : part > 0 ? 120
                                   : 160);
}

void tallTree(Draft& draft, double x, double height)
{
    draft.pen().on(on::kPlants).line({x - 100, kGround}, {x - 60, height * 0.4});
    draft.pen().line({x + 100, kGround}, {x + 60, height * 0.4});
    const double radius = height * 0.22;
    const TvGePoint2d crown[] = {{x, height * 0.78},
                                 {x - radius, height * 0.6},
                                 {x + radius, height * 0.6},
                                 {x, height * 0.52}};
    for (const TvGePoint2d& each : crown)
        draft.pen().arc(each, radius,
                        each.x < x   ? 70
                        : each.x > x ? -100
                                     : (each.y > height * 0.6 ? 0 : 200),
                        each.x < x   ? 280
                        : each.x > x ? 110
                                     : (each.y > height * 0.6 ? 180 : 340));
}

void longFace(Draft& draft, double x, bool isSouth)
{
    const double left = x, right = x + kLength, verge = 300;
    draft.pen()
        .on(on::kHatches)
        .hatch({{left, kStorey - 100},
                {right, kStorey - 100},
                {right, kEaves - 150},
                {left, kEaves - 150}},
               90, 180);
    draft.pen().on(on::kOutlines).rectangle({left, kGround}, {right, kEaves});
    draft.pen().on(on::kThin).line({left, kStorey - 100}, {right, kStorey - 100});
    draft.pen().line({left, 0}, {right, 0});
    const double low = kEaves - kOverhang * 0.875;
    const Points roof{
        {left - verge, low}, {right + verge, low}, {right + verge, kRidge}, {left - verge, kRidge}};
    draft.pen().on(on::kHatches).hatch(roof, 0, 250);
    draft.pen().on(on::kRoof).polyline(roof, true);
    draft.pen().on(on::kOutlines).rectangle({left - verge, low - 120}, {right + verge, low});
    for (const double pipe : {left + 90, right - 190})
        draft.pen().on(on::kThin).rectangle({pipe, kGround}, {pipe + 100, low - 120});
    const double chimney = x + placeOf(isSouth ? Opening::South : Opening::North, 8350);
    draft.pen().on(on::kOutlines).rectangle({chimney - 350, 8100}, {chimney + 350, 9900});
    draft.pen().rectangle({chimney - 420, 9900}, {chimney + 420, 10000});
    draft.pen()
        .on(on::kHatches)
        .hatch({{chimney - 350, 8100},
                {chimney + 350, 8100},
                {chimney + 350, 9900},
                {chimney - 350, 9900}},
               0, 75);
    if (!isSouth)
        for (const double window : {3000.0, 6500.0}) {
            const double a = x + placeOf(Opening::North, window + 1140);
            draft.pen().on(on::kWater).rectangle({a, 6560}, {a + 1140, 7600});
            draft.pen().rectangle({a + 80, 6640}, {a + 1060, 7520});
        }
}

void gable(Draft& draft, double x)
{
    const double right = x + kDepth, top = x + kDepth / 2, slope = 0.875, thick = 330;
    const Points face{
        {x, kGround}, {right, kGround}, {right, kEaves}, {top, kRidge - thick}, {x, kEaves}};
    draft.pen()
        .on(on::kHatches)
        .hatch({{x, kStorey - 100},
                {right, kStorey - 100},
                {right, kEaves},
                {top, kRidge - thick},
                {x, kEaves}},
               90, 180);
    draft.pen().on(on::kOutlines).polyline(face, true);
    draft.pen().on(on::kThin).line({x, kStorey - 100}, {right, kStorey - 100});
    draft.pen().line({x, 0}, {right, 0});
    const double low = kEaves - kOverhang * slope;
    draft.pen().on(on::kRoof).polyline({{x - kOverhang, low},
                                        {top, kRidge},
                                        {right + kOverhang, low},
                                        {right + kOverhang, low - thick},
                                        {top, kRidge - thick},
                                        {x - kOverhang, low - thick}},
                                       true);
    for (const double gutter : {x - kOverhang - 70, right + kOverhang + 70})
        draft.pen().on(on::kOutlines).arc({gutter, low - 40}, 75, 180, 360);
}

void heights(Draft& draft, double x)
{
    for (const double height : {kGround, 0.0, kStorey, kEaves, kRidge})
        draft.level({x, height}, height);
}

void chainOfHeights(Draft& draft, double x)
{
    draft.chainY({kGround, 0, kStorey, kEaves, kRidge}, x + 1400, x);
}

} // namespace

void drawElevation(Draft& draft, Opening::Side side, double x)
{
    const bool isLong = side == Opening::South || side == Opening::North;
    if (isLong)
        longFace(draft, x, side == Opening::South);
    else
        gable(draft, x);
    for (const Opening& each : openings())
        if (each.side == side) {
            const double a = placeOf(side, each.from), b = placeOf(side, each.to);
            openingInFace(draft, x + std::min(a, b), x + std::max(a, b), each);
        }
    const double right = x + (isLong ? kLength : kDepth);
    groundLine(draft, x - 2800, right + 5200);
    shrub(draft, x - 1200, 500);
    shrub(draft, right + 1500, 420);
    tallTree(draft, right + 2700, 5600);
}

void drawElevations(const TvString& path)
{
    constexpr double kScale = 75;
    Sketch sketch(Units::Millimetres);
    const SheetForm form = addDrafting(sketch);
    struct Face {
        const TvChar* block;
        const TvChar* title;
        Opening::Side side;
        double x, y; // in the model
    };
    const Face faces[] = {
        {u"South Elevation", u"South elevation", Opening::South, 0, 0},
        {u"North Elevation", u"North elevation", Opening::North, 25000, 0},
        {u"East Elevation", u"East elevation", Opening::East, 0, -25000},
        {u"West Elevation", u"West elevation", Opening::West, 25000, -25000},
    };
    for (const Face& face : faces) {
        Pen pen = sketch.newBlock(face.block);
        Draft draft(sketch, pen, kScale);
        drawElevation(draft, face.side, 0);
        // Two stand side by side: one has measures, the other one heights.
        if (face.side == Opening::South || face.side == Opening::East)
            chainOfHeights(draft, -2500);
        else
            heights(draft, -3200);
        draft.title({0, -1700}, face.title);
        sketch.model().insert(face.block, {face.x, face.y});
    }
    constexpr double kUp = 4000; // the middle of what is seen
    Pen first = projectSheet(sketch, form, {u"A-401", u"South and North", u"1:75"});
    first.on(u"Viewports").viewport({28, 190}, {303, 402}, {7200, kUp}, 1 / kScale);
    first.viewport({304, 190}, {579, 402}, {31900, kUp}, 1 / kScale);
    notes(first, {30, 165}, u"Materials",
          {u"Ground floor: lime plaster, warm white.",
           u"Upper floor: larch boards, upright, untreated.", u"Roof: clay tiles, natural red.",
           u"Windows and doors: larch, triple glazing.", u"Gutters and pipes: zinc."});
    Pen second = projectSheet(sketch, form, {u"A-402", u"East and West", u"1:75"});
    second.on(u"Viewports").viewport({28, 190}, {303, 402}, {5600, kUp - 25000}, 1 / kScale);
    second.viewport({304, 190}, {579, 402}, {29900, kUp - 25000}, 1 / kScale);
    notes(second, {30, 165}, u"Materials",
          {u"As on sheet A-401.", u"Terrace: larch boards on a steel frame."});
    sketch.describe(u"House at the Lake: elevations", u"TARVIK", u"Four elevations.");
    sketch.showModel(false);
    sketch.save(path, TvDb::kAc1032);
}

} // namespace samples::lake_house
