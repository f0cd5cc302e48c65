#include <cmath>
#include <numbers>

#include "lake_house.h"

namespace samples::lake_house {

namespace {

constexpr double kPlanScale = 50, kStairScale = 25;
constexpr double kFar = 40000; // between the plans in the model

using Gaps = std::vector<std::pair<double, double>>;

/// A wall along x or y that stops at its openings.
void wall(Draft& draft, bool isAlongX, double from, double to, double low, double high,
          const Gaps& gaps)
{
    const auto piece = [&](double a, double b) {
        if (b > a && isAlongX)
            draft.solid(on::kWalls, {a, low}, {b, high});
        else if (b > a)
            draft.solid(on::kWalls, {low, a}, {high, b});
    };
    double at = from;
    for (const auto& [a, b] : gaps) {
        piece(at, a);
        at = b;
    }
    piece(at, to);
}

/// Faces of the wall across an opening, and the panes in its middle.
void window(Draft& draft, bool isAlongX, double from, double to, double low, double high)
{
    const auto line = [&](double across) {
        if (isAlongX)
            draft.pen().line({from, across}, {to, across});
        else
            draft.pen().line({across, from}, {across, to});
    };
    draft.pen().on(on::kThin);
    line(low);
    line(high);
    const double middle = (low + high) / 2;
    line(middle - 25);
    line(middle + 25);
}

/// A leaf, open by a quarter turn, and the way it swings.
/// @param closed  direction of the closed leaf from its hinge, degrees. @param turn  90 or -90.
void door(Draft& draft, const TvGePoint2d& hinge, double width, double closed, double turn)
{
    const double open = (closed + turn) * std::numbers::pi / 180;
    draft.pen()
        .on(on::kOutlines)
        .line(hinge, {hinge.x + width * std::cos(open), hinge.y + width * std::sin(open)});
    draft.pen().on(on::kThin).arc(hinge, width, std::min(closed, closed + turn),
                                  std::max(closed, closed + turn));
}

void outerWalls(Draft& draft, int floor)
{
    Gaps gaps[4];
    for (const Opening& each : openings())
        if (each.floor == floor)
            gaps[each.side].push_back({each.from, each.to});
    wall(draft, true, 0, kLength, 0, kWall, gaps[Opening::South]);
    wall(draft, true, 0, kLength, kDepth - kWall, kDepth, gaps[Opening::North]);
    wall(draft, false, kWall, kDepth - kWall, 0, kWall, gaps[Opening::West]);
    wall(draft, false, kWall, kDepth - kWall, kLength - kWall, kLength, gaps[Opening::East]);
    for (const Opening& each : openings()) {
        if (each.floor != floor)
            continue;
        const bool isAlongX = each.side == Opening::South || each.side == Opening::North;
        const double far = isAlongX ? kDepth : kLength;
        const bool isFar = each.side == Opening::North || each.side == Opening::East;
        window(draft, isAlongX, each.from, each.to, isFar ? far - kWall : 0, isFar ? far : kWall);
    }
}

/// Treads between two walls, going up to the north, with the line of the way.
void stair(Draft& draft, bool isCut)
{
    constexpr double kLeft = 8300, kRight = 9300, kFirst = 4020, kTread = 205;
    constexpr int kTreads = 14;
    draft.pen().on(on::kThin);
    for (int i = 0; i <= kTreads; ++i) {
        const bool isAbove = isCut && i > kTreads / 2;
        draft.pen().on(isAbove ? on::kHidden : on::kThin);
        draft.pen().line({kLeft, kFirst + i * kTread}, {kRight, kFirst + i * kTread});
    }
    const double top = kFirst + kTreads * kTread, middle = (kLeft + kRight) / 2;
    draft.pen().on(on::kOutlines).line({kLeft, kFirst}, {kLeft, top});
    draft.pen().on(on::kMeasures).circle({middle, kFirst + 100}, 40);
    draft.pen().polyline({{middle, kFirst + 140}, {middle, top - 60}});
    draft.pen().polyline(
        {{middle - 110, top - 230}, {middle, top - 60}, {middle + 110, top - 230}});
    if (isCut)
        draft.pen()
            .on(on::kOutlines)
            .polyline({{kLeft - 150, kFirst + 1350},
                       {middle - 60, kFirst + 1600},
                       {middle + 60, kFirst + 1480},
                       {kRight + 0, kFirst + 1760}});
}

void box(Draft& draft, double x, double y, double wide, double tall)
{
    draft.pen().on(on::kFurniture).rectangle({x, y}, {x + wide, y + tall});
}

void table(Draft& draft, double x, double y, double wide, double tall, int chairs)
{
    box(draft, x, y, wide, tall);
    constexpr double kChair = 420;
    for (int i = 0; i < chairs; ++i) {
        const double at = x + wide * (i + 0.5) / chairs - kChair / 2;
        box(draft, at, y - kChair - 60, kChair, kChair);
        box(draft, at, y + tall + 60, kChair, kChair);
    }
}

void bed(Draft& draft, double x, double y, double wide, double length)
{
    box(draft, x, y, wide, length);
    const int pillows = wide > 1200 ? 2 : 1;
    const double each = wide / pillows;
    for (int i = 0; i < pillows; ++i)
        box(draft, x + i * each + 80, y + length - 480, each - 160, 400);
    draft.pen().line({x, y + length - 620}, {x + wide, y + length - 620});
}

void toilet(Draft& draft, double x, double y)
{
    box(draft, x, y, 380, 180);
    draft.pen().on(on::kFurniture).arc({x + 190, y - 230}, 180, 180, 360);
    draft.pen().line({x + 10, y}, {x + 10, y - 230}).line({x + 370, y}, {x + 370, y - 230});
}

void basin(Draft& draft, double x, double y, double wide, double tall)
{
    box(draft, x, y, wide, tall);
    draft.pen()
        .on(on::kFurniture)
        .circle({x + wide / 2, y + tall / 2}, std::min(wide, tall) * 0.36);
}

/// @param west  how far out the measures of the west side begin.
void outerMeasures(Draft& draft, const std::vector<double>& south, const std::vector<double>& rows,
                   double west)
{
    draft.chainX(south, 0, -draft.paper(14)).measureX(0, kLength, 0, -draft.paper(23));
    draft.chainY(rows, -west, -west - draft.paper(14))
        .measureY(0, kDepth, -west, -west - draft.paper(23));
}

/// The grid on which the house stands.
void axes(Draft& draft)
{
    constexpr double kBubbleMm = 4.5;
    const double out = draft.paper(30), radius = draft.paper(kBubbleMm);
    const auto bubble = [&](const TvGePoint2d& at, const TvString& name) {
        draft.pen().on(on::kMeasures).circle(at, radius);
        draft.word(at, 3.2, name, Align::Middle);
    };
    const double columns[] = {150, 6660, 11850}, rows[] = {150, 3960, 7850};
    for (int i = 0; i < 3; ++i) {
        draft.pen().on(on::kAxes).line({columns[i], -400}, {columns[i], kDepth + out - radius});
        bubble({columns[i], kDepth + out}, TvString(u"ABC" + i, 1));
        draft.pen().on(on::kAxes).line({-400, rows[i]}, {kLength + out - radius, rows[i]});
        bubble({kLength + out, rows[i]}, TvString(u"123" + i, 1));
    }
}

/// Where a section is cut, with arrows that look along it.
void cutMarks(Draft& draft)
{
    const auto mark = [&](const TvGePoint2d& at, const TvGePoint2d& look, const TvString& name) {
        const double size = draft.paper(3);
        const TvGePoint2d side{-look.y, look.x};
        draft.pen()
            .on(on::kTexts)
            .fill({{at.x - side.x * size, at.y - side.y * size},
                   {at.x + look.x * size * 1.4, at.y + look.y * size * 1.4},
                   {at.x + side.x * size, at.y + side.y * size}});
        draft.word({at.x - look.x * draft.paper(4), at.y - look.y * draft.paper(4)}, 4, name,
                   Align::Middle);
    };
    for (const double y : {-1500.0, kDepth + 700})
        mark({8900, y}, {-1, 0}, u"A");
    for (const double x : {-700.0, kLength + 700})
        mark({x, 2000}, {0, 1}, u"B");
    draft.pen().on(on::kAxes).line({8900, -1500}, {8900, -300}).line({8900, 8300}, {8900, 8700});
    draft.pen().line({-700, 2000}, {-300, 2000}).line({12300, 2000}, {12700, 2000});
}

void groundFloor(Draft& draft)
{
    outerWalls(draft, 0);
    wall(draft, false, kWall, kDepth - kWall, 6600, 6720, {{1200, 3000}, {5000, 5900}});
    wall(draft, true, 6720, kLength - kWall, 3900, 4020, {{6900, 7800}, {10200, 11000}});
    wall(draft, false, 4020, kDepth - kWall, 9300, 9420, {{6950, 7650}});
    wall(draft, true, 9420, kLength - kWall, 5800, 5920, {});
    door(draft, {7200, kDepth - kWall}, 1000, 0, -90);
    door(draft, {6720, 5000}, 900, 90, -90);
    door(draft, {6900, 4020}, 900, 0, 90);
    door(draft, {10200, 4020}, 800, 0, 90);
    door(draft, {9420, 6950}, 700, 90, -90);
    door(draft, {1000, 0}, 1200, 0, -90);
    door(draft, {3400, 0}, 1200, 180, 90);
    door(draft, {0, 2500}, 1500, 90, 90);
    door(draft, {0, 5500}, 1500, 270, -90);
    stair(draft, true);

    // Living: seats around a low table, and where one eats.
    box(draft, 700, 5900, 2400, 900);
    box(draft, 700, 5900, 2400, 220);
    box(draft, 3700, 4600, 900, 1900);
    box(draft, 1300, 4700, 1200, 700);
    table(draft, 3600, 1600, 2200, 1000, 3);
    box(draft, 6300, 6100, 300, 1400);
    // Kitchen.
    box(draft, 6720, 300, 600, 800);
    box(draft, 7320, 300, 3780, 600);
    box(draft, 11100, 300, 600, 3000);
    basin(draft, 8600, 370, 800, 440);
    for (const TvGePoint2d ring : {TvGePoint2d(11280, 1500), TvGePoint2d(11530, 1500),
                                   TvGePoint2d(11280, 1800), TvGePoint2d(11530, 1800)})
        draft.pen().on(on::kFurniture).circle(ring, 90);
    box(draft, 8300, 1950, 1800, 900);
    // Utility and bath.
    box(draft, 11050, 4100, 600, 600);
    draft.pen().on(on::kFurniture).circle({11350, 4400}, 220);
    box(draft, 11050, 4750, 600, 600);
    draft.pen().on(on::kFurniture).circle({11350, 5050}, 220);
    toilet(draft, 10900, 7500);
    basin(draft, 9900, 5950, 600, 440);
    // Terrace.
    draft.pen().on(on::kThin).rectangle({-2600, 1500}, {0, 6500});
    for (double y = 1700; y < 6500; y += 200)
        draft.pen().line({-2600, y}, {0, y});

    draft.room({1900, 3500}, u"Living", 46.6).room({9000, 3350}, u"Kitchen", 17.9);
    draft.room({7500, 6350}, u"Hall", 9.5).room({9950, 5250}, u"Utility", 4.1);
    draft.room({10450, 6800}, u"WC", 4.1);
    draft.word({-1300, 1150}, 2.5, u"Terrace", Align::Center);
    draft.level({4600, 3250}, 0);
    outerMeasures(draft, {0, 1000, 3400, 4200, 6000, 7800, 10200, kLength}, {0, 2500, 5500, kDepth},
                  2600);
    axes(draft);
    cutMarks(draft);
    draft.title({0, -draft.paper(38)}, u"Ground floor");
}

void upperFloor(Draft& draft)
{
    outerWalls(draft, 1);
    wall(draft, false, kWall, kDepth - kWall, 5200, 5320, {{4120, 4920}, {5300, 6100}});
    wall(draft, true, kWall, 5200, 5000, 5120, {});
    wall(draft, true, 5320, kLength - kWall, 3900, 4020, {{5600, 6400}, {7500, 8200}});
    wall(draft, false, kWall, 3900, 7280, 7400, {});
    wall(draft, false, 4020, kDepth - kWall, 9300, 9420, {{6950, 7650}});
    door(draft, {5200, 4120}, 800, 90, 90);
    door(draft, {5200, 6100}, 800, 270, -90);
    door(draft, {5600, 3900}, 800, 0, -90);
    door(draft, {7500, 3900}, 700, 0, -90);
    door(draft, {9420, 6950}, 700, 90, -90);
    stair(draft, false);

    bed(draft, 1700, 2600, 1800, 2050);
    box(draft, 1150, 4150, 450, 450);
    box(draft, 3600, 4150, 450, 450);
    box(draft, 300, 300, 600, 1500);
    bed(draft, 3800, 5200, 1000, 2000);
    box(draft, 300, 5150, 600, 600);
    box(draft, 600, 7000, 1400, 650);
    box(draft, 5500, 350, 1500, 700);
    draft.pen().on(on::kFurniture).circle({6250, 1350}, 230);
    bed(draft, 10300, 900, 1000, 2000);
    box(draft, 7450, 2300, 600, 1400);
    box(draft, 10900, 4080, 750, 1700);
    draft.pen().on(on::kFurniture).circle({11275, 5500}, 90);
    toilet(draft, 11200, 7500);
    basin(draft, 9600, 4100, 1000, 480);
    box(draft, 9480, 5650, 900, 900);
    draft.pen()
        .on(on::kFurniture)
        .line({9480, 5650}, {10380, 6550})
        .line({9480, 6550}, {10380, 5650});

    draft.room({2700, 1600}, u"Bedroom 1", 23.0).room({2600, 6300}, u"Bedroom 2", 12.6);
    draft.room({6200, 2500}, u"Study", 7.1).room({9200, 2600}, u"Bedroom 3", 15.5);
    draft.room({7450, 5600}, u"Landing", 14.6).room({10750, 6750}, u"Bath", 8.4);
    draft.level({5650, 4500}, kStorey);
    outerMeasures(draft, {0, 1500, 3900, 5700, 6900, 8400, 10800, kLength},
                  {0, 2000, 3500, 5800, 7000, kDepth}, 0);
    axes(draft);
    cutMarks(draft);
    draft.title({0, -draft.paper(38)}, u"Upper floor");
}

void roofPlan(Draft& draft)
{
    constexpr double kVerge = 300;
    const double left = -kVerge, right = kLength + kVerge;
    const double low = -kOverhang, high = kDepth + kOverhang, ridge = kDepth / 2;
    draft.pen()
        .on(on::kHatches)
        .hatch({{left, low}, {right, low}, {right, ridge}, {left, ridge}}, 0, 330);
    draft.pen().hatch({{left, ridge}, {right, ridge}, {right, high}, {left, high}}, 0, 330);
    draft.pen().on(on::kRoof).rectangle({left, low}, {right, high});
    draft.pen()
        .line({left, ridge - 60}, {right, ridge - 60})
        .line({left, ridge + 60}, {right, ridge + 60});
    for (const double y : {low, high}) {
        const double out = y < ridge ? y - 130 : y + 130;
        draft.pen().on(on::kOutlines).line({left, out}, {right, out}).line({left, y}, {left, out});
        draft.pen().line({right, y}, {right, out});
        for (const double x : {left + 150, right - 150})
            draft.pen().circle({x, (y + out) / 2}, 50);
    }
    draft.pen().on(on::kHidden).rectangle({0, 0}, {kLength, kDepth});
    draft.solid(on::kWalls, {8000, 4300}, {8700, 5000});
    // Windows in the roof.
    for (const double x : {3000.0, 6500.0}) {
        draft.pen().on(on::kWater).rectangle({x, 5600}, {x + 1140, 6780});
        draft.pen().rectangle({x + 80, 5680}, {x + 1060, 6700});
    }
    for (const double y : {2200.0, 7300.0}) {
        const double way = y < ridge ? -900 : 900;
        draft.pen().on(on::kMeasures).line({1500, y}, {1500, y + way});
        draft.pen().fill({{1500, y + way * 1.3}, {1400, y + way}, {1600, y + way}});
        draft.word({1750, y}, 2.5, u"41\u00B0");
    }
    draft.measureX(left, right, low, low - draft.paper(14));
    draft.measureY(low, high, left, left - draft.paper(14));
    draft.chainY({low, ridge, high}, right, right + draft.paper(14));
    draft.note({8350, 4650}, {9900, 9400}, u"Chimney, brick, lead flashing");
    draft.note({4140, 6100}, {5200, 9400}, u"Roof window 114 x 118");
    draft.title({left, low - draft.paper(30)}, u"Roof");
}

/// The steps from the side.
void stairDetail(Draft& draft)
{
    constexpr double kTread = 205, kRiser = kStorey / 15;
    constexpr int kTreads = 14;
    Points steps{{0, 0}};
    for (int i = 0; i < kTreads; ++i) {
        steps.push_back({i * kTread, (i + 1) * kRiser});
        steps.push_back({(i + 1) * kTread, (i + 1) * kRiser});
    }
    steps.push_back({kTreads * kTread, kStorey});
    steps.push_back({kTreads * kTread, kStorey - 420});
    steps.push_back({320, 0});
    draft.pen().on(on::kTimber).polyline(steps, true);
    draft.pen().on(on::kHatches).hatch(steps, 45, 60);
    draft.solid(on::kWalls, {-500, -200}, {700, 0});
    draft.solid(on::kWalls, {kTreads * kTread, kStorey - 250}, {3500, kStorey});
    const double railing = 900;
    draft.pen()
        .on(on::kOutlines)
        .polyline({{100, railing + kRiser},
                   {kTreads * kTread, kStorey + railing},
                   {3400, kStorey + railing}});
    for (int i = 0; i < kTreads; ++i)
        draft.pen().on(on::kThin).line(
            {i * kTread + 100, (i + 1) * kRiser},
            {i * kTread + 100, railing + kRiser + i * (kStorey - kRiser) / (kTreads - 0.5)});
    draft.level({-450, 0}, 0).level({3050, kStorey}, kStorey);
    draft.measureX(0, kTreads * kTread, -200, -draft.paper(20));
    draft.measureY(0, kStorey, -500, -500 - draft.paper(8));
    draft.word({1500, 300}, 2.5, u"15 x 193 / 205");
    draft.title({-500, -draft.paper(34)}, u"Stair");
}

} // namespace

void drawPlans(const TvString& path)
{
    Sketch sketch(Units::Millimetres);
    const SheetForm form = addDrafting(sketch);
    const auto block = [&](const TvChar* name, double scale, auto draw, double x) {
        Pen pen = sketch.newBlock(name);
        Draft draft(sketch, pen, scale);
        draw(draft);
        sketch.model().insert(name, {x, 0});
    };
    block(u"Ground Floor Plan", kPlanScale, groundFloor, 0);
    block(u"Upper Floor Plan", kPlanScale, upperFloor, kFar);
    block(u"Roof Plan", kPlanScale, roofPlan, 2 * kFar);
    block(u"Stair Detail", kStairScale, stairDetail, 3 * kFar);

    Pen ground = projectSheet(sketch, form, {u"A-201", u"Ground Floor", u"1:50, 1:25"});
    ground.on(u"Viewports").viewport({28, 128}, {400, 402}, {4900, 3600}, 1 / kPlanScale);
    ground.viewport({404, 150}, {579, 402}, {3 * kFar + 1400, 1450}, 1 / kStairScale);
    ground.on(u"Sheet Texts").insert(u"North Arrow", {375, 380});
    notes(ground, {30, 112}, u"Notes",
          {u"Dimensions in metres, levels in metres above the ground floor.",
           u"Outer walls: 175 mm brick, 125 mm insulation. Partitions: 120 mm studs.",
           u"All measures are to be checked on site before work begins.",
           u"For sections A-A and B-B see sheets A-301 and A-302."});
    Pen upper = projectSheet(sketch, form, {u"A-202", u"Upper Floor", u"1:50"});
    upper.on(u"Viewports").viewport({28, 128}, {450, 402}, {kFar + 5500, 3600}, 1 / kPlanScale);
    upper.on(u"Sheet Texts").insert(u"North Arrow", {520, 370});
    notes(upper, {30, 112}, u"Notes",
          {u"Dimensions in metres, levels in metres above the ground floor.",
           u"Smoke detectors in all bedrooms and on the landing.",
           u"Floor: 22 mm oak on 60 mm screed, underfloor heating."});
    Pen roof = projectSheet(sketch, form, {u"A-203", u"Roof Plan", u"1:50"});
    roof.on(u"Viewports").viewport({28, 128}, {400, 402}, {2 * kFar + 6000, 3350}, 1 / kPlanScale);
    roof.on(u"Sheet Texts").insert(u"North Arrow", {520, 370});
    notes(roof, {30, 112}, u"Roof",
          {u"Clay tiles, natural red, on battens 30 x 50.",
           u"Rafters 80 x 240 at 800, wood fibre insulation between them.",
           u"Gutters and pipes: zinc, 333 mm.", u"Pitch 41 degrees, ridge at +9.00."});
    sketch.describe(u"House at the Lake: plans", u"TARVIK", u"Floor plans, roof and stair.");
    sketch.showModel(false);
    sketch.save(path, TvDb::kAc1015);
}

} // namespace samples::lake_house
