#pragma once

#include <sample_maker/sketch.h>

namespace samples {

/// A sheet of a template: paper, frame, title block, and room to draw in between.
struct SheetForm {
    Paper paper;
    TvString titleBlock;     ///< the block's name
    TvGePoint2d titleCorner; ///< where its origin goes
    TvGePoint2d low, high;   ///< the corners of what is free
};

/// Adds styles and title blocks of a template, for sheets in the drawing's units.
/// @return the forms of its sheets. Nothing of them is drawn yet.
std::vector<SheetForm> addSheetForms(Sketch& sketch);
/// Draws a sheet of that form onto a new paper: frame, and the title block with these texts.
/// @param layout  the name of the layout.
Pen newSheet(Sketch& sketch, const SheetForm& form, const TvString& layout,
             const Attributes& texts = {});

/// The templates that come with the program: of ISO sizes in millimetres, of ANSI and ARCH sizes in
/// inches.
/// @param folder  is there already.
void makeTemplates(const TvString& folder);

} // namespace samples
