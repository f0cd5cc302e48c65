#pragma once

#include <vector>

#include <db/tv_db_annotations.h>
#include <ge/tv_ge_matrix3d.h>
#include <gs/flat.h>
#include <gs/own_color.h>

namespace gs {

/// One colour of a gradient, at a place from 0 to 1.
struct GradientColor {
    double at = 0;
    OwnColor color;
};

/// A filling that passes from one colour to the other.
struct Gradient {
    std::u16string name; ///< "LINEAR", "CYLINDER", "SPHERICAL" ..., with "INV" in front: backwards
    double angle = 0;    ///< radians
    bool isCentered = true;
    /// One colour alone goes over into white or black: @p tint is 1 for white, 0 for black.
    bool isOneColor = false;
    double tint = 0;
    std::vector<GradientColor> colors;
};

/// A filled area as it is drawn, in its own plane; @p placement leads from there (z = 0) to where
/// the object is.
struct HatchShape {
    enum class Kind {
        Solid,    ///< fill the area
        Gradient, ///< fill it with the gradient; at least with its first colour
        Lines,    ///< stroke the lines
        Tint,     ///< its lines are too dense to tell apart: fill the area, thinly
    };

    Kind kind = Kind::Solid;
    Path area; ///< closed loops
    /// How to fill the area: even-odd, else non-zero.
    bool isEvenOdd = true;
    Path lines; ///< clipped to the area; a dot is a line without length
    /// For a tint: how much of the area its lines would cover, 0.1 to 0.9.
    double coverage = 0;
    Gradient gradient;
    OwnColor background; ///< behind the lines; None: nothing
    Box extents;         ///< of the area
    TvGeMatrix3d placement;

    bool isEmpty() const { return area.isEmpty(); }
};

/// How fine a hatch may get.
struct HatchLimits {
    /// Lines closer than this (drawing units) make a tint; 0: any distance is told apart.
    double smallestSpacing = 0;
    /// More pieces of lines than this make a tint, as do more lines than that.
    std::size_t mostPieces = 200'000;
};

/// The area of a hatch, and its lines.
///
/// Curved edges become cubic curves in the area and short chords for clipping lines. Loops with
/// numbers that are not finite are left out; at most a million edges count.
HatchShape shapeOf(const TvDbHatch& hatch, const HatchLimits& limits = {});

} // namespace gs
