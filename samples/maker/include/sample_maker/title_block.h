#pragma once

#include <sample_maker/sketch.h>

namespace samples {

/// The frame of a sheet of paper: what lies between it and the paper's edge stays empty, but for
/// the letters and numbers of the zones.
struct Frame {
    TvGePoint2d low, high; ///< its corners
    int columns = 8, rows = 6;
    double zone = 5; ///< how wide the band of letters and numbers around it is
};

/// The tags of the attributes of all title blocks.
namespace tag {
inline constexpr TvChar kProject[] = u"PROJECT_NAME";
inline constexpr TvChar kProjectNumber[] = u"PROJECT_NUMBER";
inline constexpr TvChar kClient[] = u"CLIENT";
inline constexpr TvChar kTitle[] = u"SHEET_TITLE";
inline constexpr TvChar kNumber[] = u"SHEET_NUMBER";
inline constexpr TvChar kDate[] = u"DATE";
inline constexpr TvChar kScale[] = u"SCALE";
inline constexpr TvChar kDrawnBy[] = u"DRAWN_BY";
inline constexpr TvChar kCheckedBy[] = u"CHECKED_BY";
inline constexpr TvChar kRevision[] = u"REVISION";
} // namespace tag

/// What frames and title blocks are drawn with: layers "Sheet Frame", "Sheet Lines", "Sheet
/// Labels", "Sheet Texts" and "Viewports" (which is not plotted), the text style "Sheet".
void addSheetStyles(Sketch& sketch);

/// A wide title block for the lower right corner of a frame, where its origin comes to lie.
/// @param unit  a millimetre in the drawing's units.
void addWideTitleBlock(Sketch& sketch, const TvString& name, double unit);
inline constexpr double kWideTitleWidth = 180, kWideTitleHeight = 76; // times the unit

/// A narrow one along the whole right side of a frame, its origin in the lower right corner.
void addTallTitleBlock(Sketch& sketch, const TvString& name, double unit, double height);
inline constexpr double kTallTitleWidth = 80; // times the unit

/// @param unit  a millimetre in the drawing's units.
void drawFrame(Pen& paper, const Paper& sheet, const Frame& frame, double unit);

} // namespace samples
