#include <cmath>
#include <numbers>

#include "lake_house.h"

namespace samples::lake_house {

namespace {

constexpr double kScale = 200;
constexpr double kFace = 150000; // where the south elevation stands in the model, for the cover

/// A line that swings gently from one end to the other.
Points wave(double left, double right, double y, double swing, double length, double phase)
{
    Points points;
    constexpr double kStep = 1000;
    for (double x = left; x <= right; x += kStep)
        points.push_back(
            {x, y + swing * std::sin(2 * std::numbers::pi * (x / length) + phase) +
                    swing * 0.4 * std::sin(2 * std::numbers::pi * (x / length) * 2.3)});
    return points;
}

void lake(Draft& draft)
{
    for (int i = 0; i < 6; ++i)
        draft.pen()
            .on(on::kWater)
            .polyline(wave(-26000, 40000, -17500 - i * (500 + 260 * i), 900 - i * 110, 31000, 0.4),
                      false, i == 0 ? draft.paper(0.5) : 0);
    draft.word({-20000, -24500}, 5, u"Lake");
    // A jetty.
    draft.pen().on(on::kOutlines).rectangle({14500, -24000}, {16300, -16400});
    for (double y = -23800; y < -16400; y += 300)
        draft.pen().on(on::kThin).line({14500, y}, {16300, y});
}

void contours(Draft& draft)
{
    for (int i = 0; i < 7; ++i) {
        const double y = -13500 + i * 5200;
        draft.pen()
            .on(on::kGround)
            .polyline(wave(-26000, 40000, y, 1100 - i * 60, 45000, 0.9 + i * 0.25));
        draft.word({-25300, y + 1200}, 2, TvString().format(u"%.1f", 131.5 + i * 0.5));
    }
}

void road(Draft& draft)
{
    draft.pen()
        .on(on::kOutlines)
        .line({-26000, 24500}, {40000, 24500})
        .line({-26000, 29500}, {40000, 29500});
    draft.pen().on(on::kAxes).line({-26000, 27000}, {40000, 27000});
    draft.word({20000, 26500}, 3.5, u"Lake Road");
    draft.solid(on::kPaper, {12500, 14000}, {18500, 20500})
        .solid(on::kPaper, {6200, 8000}, {9200, 24500});
    // The way to the house.
    draft.pen().on(on::kThin).hatch({{6200, 8000}, {9200, 8000}, {9200, 24500}, {6200, 24500}}, 45,
                                    500);
    draft.pen()
        .on(on::kOutlines)
        .line({6200, 8000}, {6200, 24500})
        .line({9200, 8000}, {9200, 24500});
    draft.pen().on(on::kOutlines).rectangle({12500, 14000}, {18500, 20500});
    draft.pen()
        .on(on::kHatches)
        .hatch({{12500, 14000}, {18500, 14000}, {18500, 20500}, {12500, 20500}}, 0, 600);
    draft.word({15500, 12900}, 3, u"Carport", Align::Center);
    draft.pen().on(on::kThin).rectangle({9200, 15500}, {12500, 19000});
}

void house(Draft& draft)
{
    constexpr double kVerge = 300;
    const Points south{{-kVerge, -kOverhang},
                       {kLength + kVerge, -kOverhang},
                       {kLength + kVerge, kDepth / 2},
                       {-kVerge, kDepth / 2}};
    const Points north{{-kVerge, kDepth / 2},
                       {kLength + kVerge, kDepth / 2},
                       {kLength + kVerge, kDepth + kOverhang},
                       {-kVerge, kDepth + kOverhang}};
    // Nothing of the ground is seen below the roof.
    draft.pen().on(on::kPaper).fill(south).fill(north);
    draft.pen().on(on::kHatches).hatch(south, 0, 600).hatch(north, 0, 600);
    draft.pen()
        .on(on::kWalls)
        .polyline(south, true, draft.paper(0.3))
        .polyline(north, true, draft.paper(0.3));
    draft.pen().on(on::kThin).rectangle({-2600, 1500}, {-kVerge, 6500});
    draft.solid(on::kWalls, {8000, 4300}, {8700, 5000});
    draft.word({700, 1500}, 3.2, u"House at the Lake");
    draft.word({700, 600}, 2.5, u"\u00B10.00 = 133.20");
}

void boundary(Draft& draft)
{
    draft.pen().on(on::kAxes).polyline(
        {{-15000, 24000}, {27000, 24000}, {28500, -16500}, {-13500, -15800}}, true,
        draft.paper(0.35));
    for (const TvGePoint2d& corner : {TvGePoint2d(-15000, 24000), TvGePoint2d(27000, 24000),
                                      TvGePoint2d(28500, -16500), TvGePoint2d(-13500, -15800)})
        draft.pen().on(on::kOutlines).circle(corner, 350);
    draft.measureX(-15000, 27000, 24000, 31500);
    draft.measureY(kDepth, 24000, 0, -4500).measureY(-15800, 0, 0, -4500);
    draft.measureX(-14300, 0, 4000, 11500).measureX(kLength, 27650, 4000, 11500);
}

void trees(Draft& draft)
{
    struct Tree {
        double x, y, metres;
    };
    constexpr Tree kTrees[] = {{-11000, 19500, 6.5}, {-8500, 13800, 4.5},  {-12000, 6000, 5.5},
                               {-10500, -3000, 6},   {-9000, -11500, 7},   {-2500, -12500, 4},
                               {5500, -11000, 3.5},  {21500, -10800, 6.5}, {24500, -3500, 5},
                               {23500, 4800, 6},     {24000, 12500, 4.5},  {22500, 20800, 5},
                               {1500, 19800, 4},     {-4500, 21000, 3.5},  {25000, -13800, 3.5}};
    for (const Tree& each : kTrees)
        draft.pen()
            .on(on::kPlants)
            .insert(u"Tree", {each.x, each.y}, {}, each.metres, each.x / 100);
    for (double y = -12000; y < 22000; y += 1500)
        draft.pen().insert(u"Tree", {27000 - (y - 24000) / 27, y}, {}, 1.3, y / 70);
}

void cover(Pen& sheet)
{
    sheet.on(u"Sheet Texts").style(u"Sheet");
    sheet.text({40, 350}, 16, u"House at the Lake");
    sheet.text({40, 330}, 6, u"A new house for M. and J. Holm, Lake Road 7");
    sheet.on(on::kWater).fill({{40, 320}, {400, 320}, {400, 321.2}, {40, 321.2}});
    struct Line {
        const TvChar *number, *title, *scale;
    };
    constexpr Line kLines[] = {{u"A-001", u"Cover", u"1:75"},
                               {u"A-101", u"Site Plan", u"1:200, 1:100"},
                               {u"A-201", u"Ground Floor", u"1:50, 1:25"},
                               {u"A-202", u"Upper Floor", u"1:50"},
                               {u"A-203", u"Roof Plan", u"1:50"},
                               {u"A-301", u"Section A-A", u"1:50"},
                               {u"A-302", u"Section B-B", u"1:50"},
                               {u"A-401", u"South and North", u"1:75"},
                               {u"A-402", u"East and West", u"1:75"},
                               {u"A-501", u"Eaves and Window", u"1:10"},
                               {u"A-502", u"Foundation", u"1:10"},
                               {u"A-503", u"Windows and Doors", u"-"},
                               {u"S-101", u"Foundation Plan (engineer)", u"1:50"}};
    double y = 296;
    sheet.on(u"Sheet Texts").text({40, y + 9}, 4.5, u"Sheets");
    for (const Line& line : kLines) {
        sheet.on(u"Sheet Texts").text({40, y}, 3.5, line.number).text({75, y}, 3.5, line.title);
        sheet.text({190, y}, 3.5, line.scale);
        sheet.on(u"Sheet Lines").line({40, y - 3}, {230, y - 3});
        y -= 9;
    }
    notes(sheet, {40, 165}, u"The project",
          {u"Two storeys, 12.00 x 8.00 m, 134 m\u00B2 of living area.",
           u"Plot 1680 m\u00B2, one house, one carport.",
           u"Brick and larch, roof with clay tiles; heat from the lake."});
}

} // namespace

void drawSurroundings(const TvString& path)
{
    Sketch sketch(Units::Millimetres);
    addDrafting(sketch);
    Draft draft(sketch, sketch.model(), kScale);
    for (const TvGePoint2d& corner : {TvGePoint2d(-45000, 2000), TvGePoint2d(30500, 5500),
                                      TvGePoint2d(30500, -11500), TvGePoint2d(12000, 36000)})
        draft.pen().on(on::kReferences).rectangle(corner, {corner.x + 11000, corner.y + 8500});
    sketch.describe(u"House at the Lake: surroundings", u"TARVIK", u"Shown in the site plan.");
    sketch.showModel(true);
    sketch.save(path, TvDb::kAc1032);
}

void drawSite(const TvString& path)
{
    Sketch sketch(Units::Millimetres);
    const SheetForm form = addDrafting(sketch);
    Draft draft(sketch, sketch.model(), kScale);
    contours(draft);
    lake(draft);
    road(draft);
    boundary(draft);
    trees(draft);
    house(draft);
    Draft face(sketch, sketch.model(), 75);
    drawElevation(face, Opening::South, kFace);
    sketch.externalReference(u"surroundings", u"surroundings.dwg");
    draft.pen().on(on::kReferences).insert(u"surroundings", {0, 0});
    sketch.namedView(u"House", {-6000, -4000}, {18000, 12000}, u"Site");

    Pen first = projectSheet(sketch, form, {u"A-001", u"Cover", u"1:75"});
    first.on(u"Viewports").viewport({245, 132}, {579, 314}, {kFace + 6000, 4700}, 1.0 / 75);
    cover(first);
    Pen plan = projectSheet(sketch, form, {u"A-101", u"Site Plan", u"1:200, 1:100"});
    plan.on(u"Viewports").viewport({28, 122}, {358, 402}, {7000, 3000}, 1 / kScale);
    plan.viewport({368, 200}, {579, 402}, {6300, 4000}, 0.01);
    plan.on(u"Sheet Texts").insert(u"North Arrow", {345, 385});
    notes(plan, {30, 108}, u"Site",
          {u"Heights in metres above the sea; \u00B10.00 of the house is 133.20.",
           u"Boundaries as in the survey of 2025-11-04.",
           u"Trees along the shore stay; the hedge on the east side is new.",
           u"Surroundings: external reference surroundings.dwg."});
    sketch.describe(u"House at the Lake: site", u"TARVIK", u"Cover and site plan.");
    sketch.showModel(false);
    sketch.save(path, TvDb::kAc1032);
}

} // namespace samples::lake_house
