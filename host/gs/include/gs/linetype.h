#pragma once

#include <memory>
#include <vector>

#include <db/tv_db_symbol_table.h>
#include <gs/text_shape.h>

namespace gs {

class ShapeFiles;

/// Dashes and gaps that follow one another along a line.
struct LinePattern {
    struct Text {
        std::u16string text;
        /// In place of the text: strokes of a shape, in units of which one is height long.
        std::shared_ptr<const Path> shape;
        FontName font;
        double height = 0;
        double widthFactor = 1;
        double oblique = 0;         ///< radians
        double rotation = 0;        ///< radians; against the line unless it is upright
        TvGeVector2d offset;        ///< along the line and across it
        bool isUpright = false;     ///< the rotation is against the x axis
        bool staysReadable = false; ///< turned round where it would stand on its head
    };
    struct Dash {
        double length = 0;       ///< above 0 drawn, below 0 left out, 0 a dot
        std::vector<Text> texts; ///< drawn where the dash ends
    };
    std::vector<Dash> dashes;

    /// The sum of all lengths without their signs.
    double length() const;
    /// Nothing to dash: one line without gaps, and nothing in it.
    bool isContinuous() const;
};

/// The pattern of a linetype. Continuous for a null id, by layer, by block, and for a pattern that
/// makes no sense (numbers that are not finite, no length).
/// @param shapes  where shapes in it come from; null: they are left out, as those are that it does
///                not know.
LinePattern patternOf(TvDbObjectId linetype, ShapeFiles* shapes = nullptr);

struct DashOptions {
    /// Of the pattern: the drawing's scale times the object's, and what the view adds.
    double scale = 1;
    /// The pattern runs on over the corners of a line; else each segment begins anew.
    bool continuesOverCorners = true;
    /// More dashes than this in one call, and the path is left whole.
    std::size_t mostDashes = 100'000;
};

/// A path in pieces.
struct DashedPath {
    Path lines; ///< a dot is a line without length
    std::vector<TextPart> texts;
    bool isWhole = false; ///< nothing was cut: the pattern is continuous, or there are too many
};

/// Cuts a path into the dashes of a pattern.
///
/// When the pattern begins with a dash, a line begins and ends with one: half as long, and longer
/// by half of what the pattern does not fill. A line shorter than the pattern stays whole. Curves
/// are dashed by their length and come out as short chords.
/// @param fonts  for texts in the pattern; null: they are left out.
DashedPath dashed(const Path& path, const LinePattern& pattern, const DashOptions& options,
                  Fonts* fonts);

} // namespace gs
