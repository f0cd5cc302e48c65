#pragma once

#include "sample_maker/drafting.h"

// The house at the lake, as all its drawings know it. Lengths are millimetres; the south-west
// corner of the ground floor is (0,0), and its floor is at height 0.
namespace samples::lake_house {

inline constexpr double kLength = 12000, kDepth = 8000; // outside
inline constexpr double kWall = 300, kPartition = 120;
inline constexpr double kStorey = 2900, kSlab = 250;
inline constexpr double kEaves = 5500, kRidge = 9000;
inline constexpr double kOverhang = 500;
inline constexpr double kGround = -300; // the ground around the house

/// One opening of the outer walls, as plans and elevations show it.
struct Opening {
    enum Side { South, North, East, West };
    Side side;
    int floor; ///< 0: ground floor
    double from, to;
    double sill, head; ///< above the storey's floor
    bool isDoor = false;
};
const std::vector<Opening>& openings();

/// What the title block of a sheet says.
struct SheetWords {
    const TvChar* number;
    const TvChar* title;
    const TvChar* scale;
};
/// A sheet of the project on a new paper.
Pen projectSheet(Sketch& sketch, const SheetForm& form, const SheetWords& words);
/// A list of notes on a sheet, from its upper left corner down.
void notes(Pen& sheet, const TvGePoint2d& topLeft, const TvChar* head,
           const std::vector<const TvChar*>& lines);

// Each draws a drawing with its sheets, and is given where to.
void drawSite(const TvString& path);
void drawSurroundings(const TvString& path);
void drawPlans(const TvString& path);
void drawElevations(const TvString& path);
void drawSections(const TvString& path);
void drawDetails(const TvString& path);
inline constexpr TvChar kDrawingFolder[] = u"drawings"; // beside the set
/// The sheet set, of drawings that are there.
void makeSheetSet(const TvString& folder);

/// Outlines of the house from one side, its left corner at (x,0).
void drawElevation(Draft& draft, Opening::Side side, double x);

} // namespace samples::lake_house
