#include <cmath>

#include "lake_house.h"

namespace samples::lake_house {

namespace {

Points rectangleOf(double left, double low, double right, double high)
{
    return {{left, low}, {right, low}, {right, high}, {left, high}};
}

/// Boards and beams: diagonals across what is cut.
void beam(Draft& draft, double left, double low, double right, double high)
{
    draft.pen().on(on::kTimber).rectangle({left, low}, {right, high});
    draft.pen().on(on::kThin).line({left, low}, {right, high}).line({left, high}, {right, low});
}

void brick(Draft& draft, const Points& area)
{
    draft.pen().on(on::kHatches).hatch(area, 45, 25);
    draft.pen().on(on::kWalls).polyline(area, true);
}

/// Soft insulation: loops from side to side.
void insulation(Draft& draft, double left, double low, double right, double high)
{
    draft.pen().on(on::kInsulation).rectangle({left, low}, {right, high});
    const double radius = (right - left) / 4;
    for (double y = low + radius; y + radius <= high; y += 2 * radius)
        draft.pen()
            .arc({left + radius, y}, radius, 90, 270)
            .arc({right - radius, y}, radius, 270, 450)
            .line({left + radius, y + radius}, {right - radius, y + radius});
}

void eaves(Draft& draft)
{
    const double slope = 0.875;
    const auto along = [slope](double x, double lift) { return TvGePoint2d(x, slope * x + lift); };
    const auto band = [&](double from, double to, double low, double high) {
        return Points{along(from, low), along(to, low), along(to, high), along(from, high)};
    };
    brick(draft, rectangleOf(125, -900, 300, -60));
    insulation(draft, 0, -900, 125, -10);
    draft.pen().on(on::kOutlines).rectangle({-40, -900}, {0, -80});
    beam(draft, 150, -60, 300, 60);
    // Rafter, insulation, boards, battens, tiles.
    draft.pen().on(on::kTimber).polyline(band(-520, 1150, 0, 310), true);
    draft.pen().on(on::kInsulation).hatch(band(160, 1150, 0, 310), 100, 45);
    draft.pen().on(on::kOutlines).polyline(band(-520, 1150, 310, 350), true);
    draft.pen().on(on::kOutlines).polyline(band(330, 1150, -35, 0), true);
    for (double x = -480; x < 1130; x += 250) {
        draft.pen().on(on::kTimber).polyline(band(x, x + 42, 350, 390), true);
        draft.pen().on(on::kRoof).polyline(
            {along(x - 60, 430), along(x + 270, 400), along(x + 270, 378), along(x - 60, 400)},
            true);
    }
    draft.pen().on(on::kOutlines).arc({-640, -210}, 90, 180, 360);
    draft.pen().line({-740, -200}, {-550, -200});
    beam(draft, -555, -560, -520, -150);
    draft.note(along(600, 415), {-200, 1250}, u"Clay tiles on battens 30 x 50");
    draft.note(along(500, 330), {-200, 1120}, u"Wood fibre board 40");
    draft.note(along(800, 150), {1000, 330}, u"Rafter 80 x 240, insulation between");
    draft.note({225, 0}, {1000, 150}, u"Wall plate 120 x 150");
    draft.note({60, -500}, {-350, -640}, u"Insulation 125");
    draft.note({210, -620}, {1000, -480}, u"Brick 175");
    draft.note({-640, -290}, {-780, -420}, u"Zinc gutter 333");
    draft.measureX(0, 300, -900, -900 - draft.paper(10));
    draft.measureX(-520, 0, -150, -900 - draft.paper(10));
    draft.title({-1250, -900 - draft.paper(19)}, u"Eaves");
}

void foundation(Draft& draft)
{
    draft.pen().on(on::kHatches).hatch(rectangleOf(-150, -1200, 450, -800), 45, 60);
    draft.pen().hatch(rectangleOf(-150, -1200, 450, -800), 135, 60);
    draft.pen().on(on::kWalls).rectangle({-150, -1200}, {450, -800});
    brick(draft, rectangleOf(0, -800, 300, -250));
    draft.pen().on(on::kHatches).hatch(rectangleOf(125, -250, 1500, -60), 45, 60);
    draft.pen().on(on::kWalls).polyline(rectangleOf(125, -250, 1500, -60), true);
    brick(draft, rectangleOf(125, -60, 300, 600));
    insulation(draft, 0, -250, 125, 600);
    draft.pen().on(on::kInsulation).hatch(rectangleOf(300, -400, 1500, -250), 60, 40);
    draft.pen().rectangle({300, -400}, {1500, -250});
    draft.pen().on(on::kGround).hatch(rectangleOf(300, -550, 1500, -400), 0, 35);
    draft.pen().rectangle({300, -550}, {1500, -400});
    draft.pen().on(on::kThin).rectangle({300, -60}, {1500, 0});
    draft.pen().on(on::kTimber).rectangle({300, 0}, {1500, 22});
    draft.pen().on(on::kWater).polyline({{-10, -800}, {-10, -250}, {1500, -250}}, false, 8);
    draft.pen().on(on::kOutlines).rectangle({-25, -250}, {0, 600});
    draft.pen().on(on::kGround).polyline({{-1000, kGround}, {-25, kGround}}, false, 10);
    draft.pen().on(on::kHatches).hatch(rectangleOf(-1000, -600, -150, kGround), 45, 55);
    draft.pen().on(on::kGround).circle({-260, -1120}, 60);
    draft.note({1000, 11}, {1650, 360}, u"Oak 22 on screed 60");
    draft.note({900, -150}, {1650, 180}, u"Concrete 190, reinforced");
    draft.note({1100, -320}, {1650, -20}, u"Insulation 150");
    draft.note({1100, -480}, {1650, -700}, u"Gravel 150");
    draft.note({-10, -500}, {-500, -760}, u"Sealing, two layers");
    draft.note({-260, -1120}, {-560, -1000}, u"Drain 100");
    draft.note({150, -1000}, {1650, -950}, u"Strip 600 x 400, C25/30");
    draft.level({620, 22}, 0);
    draft.measureX(-150, 450, -1200, -1200 - draft.paper(10));
    draft.chainY({-1200, -800, kGround, 0}, -150, -1000 - draft.paper(6));
    draft.title({-1000, -1200 - draft.paper(24)}, u"Foundation");
}

void windowJamb(Draft& draft)
{
    brick(draft, rectangleOf(0, 0, 175, 420));
    brick(draft, rectangleOf(0, 1220, 175, 1600));
    insulation(draft, 175, 0, 300, 380);
    insulation(draft, 175, 1260, 300, 1600);
    for (const double low : {380.0, 1180.0}) {
        beam(draft, 150, low, 230, low + 80);
        draft.pen()
            .on(on::kTimber)
            .rectangle({140, low == 380 ? 460.0 : 1100.0}, {240, low == 380 ? 540.0 : 1180.0});
    }
    draft.pen()
        .on(on::kWater)
        .rectangle({180, 520}, {186, 1120})
        .rectangle({194, 520}, {200, 1120});
    draft.pen().rectangle({208, 520}, {214, 1120});
    draft.pen()
        .on(on::kOutlines)
        .rectangle({300, 0}, {325, 400})
        .rectangle({300, 1240}, {325, 1600});
    draft.pen().rectangle({-20, 0}, {0, 420}).rectangle({-20, 1220}, {0, 1600});
    draft.note({200, 820}, {520, 900}, u"Triple glazing");
    draft.note({190, 500}, {520, 560}, u"Larch frame 80");
    draft.note({240, 200}, {520, 260}, u"Insulation 125");
    draft.note({-10, 200}, {-220, 260}, u"Lime plaster 20");
    draft.measureY(420, 1220, 0, -draft.paper(24));
    draft.title({-250, -draft.paper(20)}, u"Window, level cut");
}

struct Row {
    std::vector<const TvChar*> cells;
};

/// A list with a line of heads, from its upper left corner down.
void list(Pen& sheet, const TvGePoint2d& corner, const TvChar* name,
          const std::vector<double>& widths, const std::vector<Row>& rows)
{
    constexpr double kLine = 8, kText = 2.8;
    double wide = 0;
    for (const double each : widths)
        wide += each;
    const double bottom = corner.y - kLine * static_cast<double>(rows.size());
    sheet.on(u"Sheet Texts").style(u"Sheet").text({corner.x, corner.y + 4}, 4.5, name);
    sheet.on(on::kReferences)
        .fill({{corner.x, corner.y - kLine},
               {corner.x + wide, corner.y - kLine},
               {corner.x + wide, corner.y - kLine + 0.6},
               {corner.x, corner.y - kLine + 0.6}});
    sheet.on(u"Sheet Lines").rectangle({corner.x, bottom}, {corner.x + wide, corner.y});
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const double y = corner.y - kLine * static_cast<double>(row + 1);
        sheet.on(u"Sheet Lines").line({corner.x, y}, {corner.x + wide, y});
        double x = corner.x;
        for (std::size_t column = 0; column < widths.size(); ++column) {
            sheet.on(row == 0 ? u"Sheet Labels" : u"Sheet Texts")
                .text({x + 2, y + (kLine - kText) / 2}, kText, rows[row].cells[column]);
            x += widths[column];
        }
    }
    double x = corner.x;
    for (const double each : widths) {
        sheet.on(u"Sheet Lines").line({x, corner.y}, {x, bottom});
        x += each;
    }
}

void schedules(Pen& sheet)
{
    list(sheet, {30, 380}, u"Windows", {18, 46, 30, 30, 22, 90},
         {{{u"No.", u"Room", u"Width", u"Height", u"Sill", u"Kind"}},
          {{u"W1", u"Living, south", u"1.80", u"1.30", u"0.90",
            u"Two leaves, larch, triple glazing"}},
          {{u"W2", u"Kitchen, south", u"2.40", u"1.30", u"0.90",
            u"Two leaves, larch, triple glazing"}},
          {{u"W3", u"Living, north", u"1.80", u"1.30", u"0.90",
            u"Two leaves, larch, triple glazing"}},
          {{u"W4", u"Living, north", u"1.20", u"1.30", u"0.90", u"One leaf"}},
          {{u"W5", u"Kitchen, east", u"1.20", u"1.30", u"0.90", u"One leaf"}},
          {{u"W6", u"WC", u"0.80", u"0.80", u"1.40", u"One leaf, matt glass"}},
          {{u"W7", u"Bedrooms 1, 3", u"2.40", u"1.60", u"0.60", u"Two leaves, rail outside"}},
          {{u"W8", u"Study", u"1.20", u"1.30", u"0.90", u"One leaf"}},
          {{u"W9", u"Bath", u"1.00", u"0.80", u"1.40", u"One leaf, matt glass"}},
          {{u"W10", u"Roof, north", u"1.14", u"1.18", u"-", u"Roof window, pivoting"}}});
    list(sheet, {30, 265}, u"Doors", {18, 46, 30, 30, 22, 90},
         {{{u"No.", u"Place", u"Width", u"Height", u"Fire", u"Kind"}},
          {{u"D1", u"Entrance", u"1.00", u"2.20", u"-", u"Larch, insulated, three locks"}},
          {{u"D2", u"Living, terrace", u"3.00", u"2.20", u"-", u"Lift and slide, triple glazing"}},
          {{u"D3", u"Living, garden", u"2.40", u"2.20", u"-", u"Two leaves, triple glazing"}},
          {{u"D4", u"Living, hall", u"0.90", u"2.10", u"-", u"Oak, glass panel"}},
          {{u"D5", u"Bedrooms, study", u"0.80", u"2.10", u"-", u"Oak, plain"}},
          {{u"D6", u"WC, bath", u"0.70", u"2.10", u"-", u"Oak, plain, gap below"}},
          {{u"D7", u"Utility", u"0.80", u"2.10", u"EI 30", u"Steel, self-closing"}}});
    list(sheet, {310, 380}, u"Floors and walls", {40, 80, 80, 60},
         {{{u"Room", u"Floor", u"Walls", u"Ceiling"}},
          {{u"Living, hall", u"Oak boards, oiled", u"Lime plaster", u"Lime plaster"}},
          {{u"Kitchen", u"Stone tiles 60 x 60", u"Lime plaster, tiles", u"Lime plaster"}},
          {{u"Utility, WC", u"Stone tiles 30 x 30", u"Tiles to 1.40", u"Lime plaster"}},
          {{u"Bedrooms", u"Oak boards, oiled", u"Lime plaster", u"Spruce boards"}},
          {{u"Bath", u"Stone tiles 30 x 30", u"Tiles to 2.10", u"Spruce boards"}}});
}

} // namespace

void drawDetails(const TvString& path)
{
    Sketch sketch(Units::Millimetres);
    const SheetForm form = addDrafting(sketch);
    const auto block = [&](const TvChar* name, double scale, auto draw, double x) {
        Pen pen = sketch.newBlock(name);
        Draft draft(sketch, pen, scale);
        draw(draft);
        sketch.model().insert(name, {x, 0});
    };
    block(u"Eaves", 10, eaves, 0);
    block(u"Foundation", 10, foundation, 10000);
    block(u"Window", 10, windowJamb, 20000);

    Pen sheet = projectSheet(sketch, form, {u"A-501", u"Eaves and Window", u"1:10"});
    sheet.on(u"Viewports").viewport({28, 128}, {340, 402}, {20, 150}, 0.1);
    sheet.viewport({350, 128}, {579, 402}, {20130, 780}, 0.1);
    notes(sheet, {30, 112}, u"Notes",
          {u"All timber spruce C24, dry.", u"Joints of boards and foils are taped."});
    sheet = projectSheet(sketch, form, {u"A-502", u"Foundation", u"1:10"});
    sheet.on(u"Viewports").viewport({28, 128}, {440, 402}, {10400, -420}, 0.1);
    notes(
        sheet, {30, 112}, u"Notes",
        {u"Foundations stand on undisturbed ground; the engineer sees it before concrete comes in.",
         u"For the reinforcement see the drawings of the engineer, S-101."});
    sheet = projectSheet(sketch, form, {u"A-503", u"Windows and Doors", u"-"});
    schedules(sheet);
    sketch.describe(u"House at the Lake: details", u"TARVIK", u"Details and lists.");
    sketch.showModel(false);
    sketch.save(path, TvDb::kAc1015);
}

} // namespace samples::lake_house
