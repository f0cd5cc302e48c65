#include "lake_house.h"

namespace samples::lake_house {

namespace {

constexpr double kScale = 50;
constexpr double kSlope = (kRidge - kEaves) / (kDepth / 2);
constexpr double kRoofThick = 380; // upright

/// Strips below the walls, the slab with what lies below it, and the ground around.
void foundations(Draft& draft, double length, const std::vector<double>& walls)
{
    constexpr double kDeep = -1200, kStrip = 600, kHigh = 400;
    draft.pen()
        .on(on::kHatches)
        .hatch({{0, -550}, {length, -550}, {length, -400}, {0, -400}}, 45, 90);
    draft.solid(on::kWalls, {0, -kSlab}, {length, -60});
    draft.pen().on(on::kInsulation).rectangle({0, -400}, {length, -kSlab});
    draft.pen().hatch({{0, -400}, {length, -400}, {length, -kSlab}, {0, -kSlab}}, 60, 70);
    draft.pen().on(on::kThin).line({0, 0}, {length, 0}).line({0, -550}, {length, -550});
    for (const double middle : walls) {
        draft.solid(on::kWalls, {middle - kWall / 2, kDeep + kHigh}, {middle + kWall / 2, -kSlab});
        draft.solid(on::kWalls, {middle - kStrip / 2, kDeep}, {middle + kStrip / 2, kDeep + kHigh});
    }
    const auto earth = [&](double from, double to) {
        draft.pen()
            .on(on::kGround)
            .polyline({{from, kGround}, {to, kGround}}, false, draft.paper(0.6));
        draft.pen()
            .on(on::kHatches)
            .hatch({{from, kGround - 350}, {to, kGround - 350}, {to, kGround}, {from, kGround}}, 45,
                   120);
    };
    earth(-2600, 0);
    earth(length, length + 2600);
}

/// An outer wall from the side, with what is open in it.
void cutWall(Draft& draft, double low, const std::vector<const Opening*>& cut)
{
    const double high = low + kWall;
    double at = -60;
    for (const Opening* each : cut) {
        const double floor = each->floor * kStorey;
        draft.solid(on::kWalls, {low, at}, {high, floor + each->sill});
        const double middle = (low + high) / 2;
        draft.pen().on(on::kThin).rectangle({middle - 40, floor + each->sill},
                                            {middle + 40, floor + each->head});
        draft.pen().rectangle({low, floor + each->sill}, {high, floor + each->head});
        at = floor + each->head;
    }
    draft.solid(on::kWalls, {low, at}, {high, kEaves - 200});
}

std::vector<const Opening*> cutAt(Opening::Side side, double at)
{
    std::vector<const Opening*> cut;
    for (const Opening& each : openings())
        if (each.side == side && each.from < at && each.to > at)
            cut.push_back(&each);
    return cut;
}

void storeyFloor(Draft& draft, double from, double to)
{
    draft.solid(on::kWalls, {from, kStorey - kSlab}, {to, kStorey - 60});
    draft.pen().on(on::kThin).line({from, kStorey}, {to, kStorey});
}

void levels(Draft& draft, double x)
{
    for (const double height : {kGround, 0.0, kStorey, kEaves, kRidge})
        draft.level({x, height}, height);
}

void roofBand(Draft& draft, double y0, double y1, double side)
{
    // One half of the roof, from the ridge down to its overhang.
    const double top = kDepth / 2, eave = side < 0 ? y0 : y1;
    const double low = kEaves - kOverhang * kSlope;
    const Points band{
        {eave, low}, {top, kRidge}, {top, kRidge - kRoofThick}, {eave, low - kRoofThick}};
    draft.pen().on(on::kInsulation).hatch(band, side < 0 ? 100 : 80, 110);
    draft.pen().on(on::kTimber).polyline(band, true);
    draft.pen().on(on::kRoof).polyline({{eave + side * 30, low + 60}, {top, kRidge + 90}}, false,
                                       draft.paper(1));
    draft.pen().on(on::kOutlines).arc({eave + side * 90, low - 90}, 80, 180, 360);
}

void person(Draft& draft, double x, double floor)
{
    draft.pen().on(on::kFurniture).circle({x, floor + 1620}, 110);
    draft.pen().polyline({{x - 210, floor + 1420},
                          {x + 210, floor + 1420},
                          {x + 150, floor + 780},
                          {x + 120, floor},
                          {x + 20, floor},
                          {x, floor + 700},
                          {x - 20, floor},
                          {x - 120, floor},
                          {x - 150, floor + 780}},
                         true);
}

void across(Draft& draft)
{
    constexpr double kCut = 8900, kFirst = 4020, kTread = 205, kRiser = kStorey / 15;
    constexpr int kTreads = 14;
    foundations(draft, kDepth, {150, 3960, kDepth - 150});
    cutWall(draft, 0, cutAt(Opening::South, kCut));
    cutWall(draft, kDepth - kWall, cutAt(Opening::North, kCut));
    storeyFloor(draft, kWall, kFirst);
    storeyFloor(draft, kFirst + kTreads * kTread, kDepth - kWall);
    draft.solid(on::kWalls, {3900, -60}, {4020, kStorey - kSlab});
    draft.solid(on::kWalls, {3900, kStorey - 60}, {4020, 7900});
    Points steps{{kFirst, 0}};
    for (int i = 0; i < kTreads; ++i) {
        steps.push_back({kFirst + i * kTread, (i + 1) * kRiser});
        steps.push_back({kFirst + (i + 1) * kTread, (i + 1) * kRiser});
    }
    steps.push_back({kFirst + kTreads * kTread, kStorey - kSlab});
    steps.push_back({kFirst + 380, 0});
    draft.pen().on(on::kHatches).hatch(steps, 45, 70);
    draft.pen().on(on::kTimber).polyline(steps, true);
    draft.pen().on(on::kThin).polyline({{kFirst, 1050},
                                        {kFirst + kTreads * kTread, kStorey + 900},
                                        {kDepth - kWall, kStorey + 900}});
    roofBand(draft, -kOverhang, 0, -1);
    roofBand(draft, 0, kDepth + kOverhang, 1);
    draft.pen().on(on::kTimber).rectangle({1250, 6500}, {kDepth - 1250, 6660});
    draft.solid(on::kTimber, {kDepth / 2 - 70, kRidge - kRoofThick - 260},
                {kDepth / 2 + 70, kRidge - kRoofThick});
    person(draft, 2100, 0);
    person(draft, 2800, kStorey);
    draft.room({2100, 2200}, u"Kitchen", 17.9).room({6600, 1100}, u"Hall", 9.5);
    draft.room({2100, 5200}, u"Bedroom 3", 15.5).room({7050, 4700}, u"Landing", 14.6);
    levels(draft, kDepth + 1000);
    draft.chainY({kGround, 0, kStorey, kEaves, kRidge}, -200, -1900);
    draft.measureX(0, kDepth, -1200, -1200 - draft.paper(12));
    draft.title({0, -3000}, u"Section A-A");
}

void along(Draft& draft)
{
    constexpr double kCut = 2000;
    foundations(draft, kLength, {150, 6660, kLength - 150});
    cutWall(draft, 0, cutAt(Opening::West, kCut + 1));
    cutWall(draft, kLength - kWall, cutAt(Opening::East, kCut));
    storeyFloor(draft, kWall, kLength - kWall);
    draft.solid(on::kWalls, {6600, 2300}, {6720, kStorey - kSlab});
    draft.pen().on(on::kOutlines).rectangle({6600, 0}, {6720, 2300});
    const double roof = kEaves + kCut * kSlope;
    draft.solid(on::kWalls, {5200, kStorey - 60}, {5320, roof - kRoofThick});
    draft.solid(on::kWalls, {7280, kStorey - 60}, {7400, roof - kRoofThick});
    // The roof is cut on its way up, and its other half is seen behind.
    const Points band{{-300, roof - kRoofThick},
                      {kLength + 300, roof - kRoofThick},
                      {kLength + 300, roof},
                      {-300, roof}};
    draft.pen().on(on::kInsulation).hatch(band, 60, 110);
    draft.pen().on(on::kTimber).polyline(band, true);
    draft.solid(on::kWalls, {0, kEaves - 200}, {kWall, roof - kRoofThick});
    draft.solid(on::kWalls, {kLength - kWall, kEaves - 200}, {kLength, roof - kRoofThick});
    const Points behind{
        {-300, roof}, {kLength + 300, roof}, {kLength + 300, kRidge}, {-300, kRidge}};
    draft.pen().on(on::kHatches).hatch(behind, 0, 250);
    draft.pen().on(on::kRoof).polyline(behind, true);
    draft.pen().on(on::kOutlines).rectangle({8000, 8400}, {8700, 9900});
    draft.pen().rectangle({7930, 9900}, {8770, 10000});
    // What stands behind: windows of the north wall, the door to the hall.
    for (const Opening& each : openings())
        if (each.side == Opening::North && each.to < 6600) {
            const double floor = each.floor * kStorey;
            draft.pen().on(on::kThin).rectangle({each.from, floor + each.sill},
                                                {each.to, floor + each.head});
            draft.pen().rectangle({each.from + 70, floor + each.sill + 70},
                                  {each.to - 70, floor + each.head - 70});
        }
    draft.pen()
        .on(on::kThin)
        .rectangle({6900, 0}, {7800, 2100})
        .rectangle({10200, 0}, {11000, 2100});
    person(draft, 4000, 0);
    person(draft, 9300, kStorey);
    draft.room({860, 1300}, u"Living", 46.6).room({9000, 1300}, u"Kitchen", 17.9);
    draft.room({4520, 4700}, u"Bedroom 1", 23.0).room({6250, 4600}, u"Study", 7.1);
    draft.room({10300, 4800}, u"Bedroom 3", 15.5);
    levels(draft, kLength + 1100);
    draft.chainY({kGround, 0, kStorey, kEaves, kRidge}, -300, -1900);
    draft.chainX({0, 6660, kLength}, -1200, -1200 - draft.paper(12));
    draft.title({0, -3000}, u"Section B-B");
}

} // namespace

void drawSections(const TvString& path)
{
    Sketch sketch(Units::Millimetres);
    const SheetForm form = addDrafting(sketch);
    Pen first = sketch.newBlock(u"Section A-A"), second = sketch.newBlock(u"Section B-B");
    Draft a(sketch, first, kScale), b(sketch, second, kScale);
    across(a);
    along(b);
    sketch.model().insert(u"Section A-A", {0, 0});
    sketch.model().insert(u"Section B-B", {25000, 0});

    Pen sheet = projectSheet(sketch, form, {u"A-301", u"Section A-A", u"1:50"});
    sheet.on(u"Viewports").viewport({28, 128}, {330, 402}, {4200, 3000}, 1 / kScale);
    notes(sheet, {345, 390}, u"Construction",
          {u"Roof: clay tiles, battens, wood fibre board 60, rafters 80 x 240 with insulation, "
           u"boards 22.",
           u"Upper floor: oak 22, screed 60, insulation 30, concrete 160.",
           u"Ground floor: oak 22, screed 60, concrete 190, insulation 150, gravel 150.",
           u"Outer walls: brick 175, insulation 125, plaster or boards.",
           u"Foundations: strips 600 x 400 on undisturbed ground, at least 0.90 m below it."});
    sheet = projectSheet(sketch, form, {u"A-302", u"Section B-B", u"1:50"});
    sheet.on(u"Viewports").viewport({28, 128}, {400, 402}, {31300, 3450}, 1 / kScale);
    notes(sheet, {405, 390}, u"Construction",
          {u"As on sheet A-301.", u"For the eaves and the foundations see A-501 and A-502."});
    sketch.describe(u"House at the Lake: sections", u"TARVIK", u"Two sections.");
    sketch.showModel(false);
    sketch.save(path, TvDb::kAc1032);
}

} // namespace samples::lake_house
