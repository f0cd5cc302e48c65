#pragma once

#include <optional>
#include <string>
#include <vector>

#include <db/tv_db_annotations.h>
#include <db/tv_db_text.h>
#include <ge/tv_ge_matrix3d.h>
#include <gs/flat.h>
#include <gs/fonts.h>
#include <gs/own_color.h>

namespace gs {

/// Letters beside each other, whose outlines are still those of their font.
struct LetterRow {
    FlatMap map;                        ///< from the first letter's own plane to that of the text
    double tracking = 1;                ///< factor of the way from one letter to the next
    std::uint32_t first = 0, count = 0; ///< among the letters of the shape
};

/// Letters, or lines at them, of one colour: filled (non-zero) or stroked with the object's own
/// line width.
struct TextPart {
    Path path;
    bool isFilled = false;
    OwnColor color;
    std::vector<LetterRow> rows; ///< belong to it, too; none in what shapeOf() gives
};

/// A piece of text where it is written, for who wants to search or copy it.
struct TextRun {
    std::u16string text;
    TvGePoint2d origin;           ///< the left end of its baseline
    TvGeVector2d direction{1, 0}; ///< along the baseline; of length 1
    double height = 0;            ///< of capitals
    double width = 0;             ///< along the direction
    bool isOutlined = false;      ///< every letter of it is of an outline font
};

/// An area behind a text, which hides what is below it.
struct TextBackground {
    Path area;
    bool isFilled = false;       ///< else it is a frame only
    bool hasFrame = false;       ///< its outline is drawn, in the text's colour
    bool usesPaperColor = false; ///< the colour of what the drawing stands on; else that below
    OwnColor color;
};

/// A text as it is drawn, in a plane of its own.
///
/// Everything is in the coordinates of that plane; @p placement leads from there (z = 0) to where
/// the object's points are: the world, or the block that holds it.
struct TextShape {
    std::vector<TextPart> parts;
    std::vector<TextRun> runs;
    std::vector<const Glyph*> letters; ///< that rows are of; their Fonts'
    bool keepsLetters = false;         ///< letters are added as rows
    Box extents;                       ///< of parts and background; empty when nothing is drawn
    std::optional<TextBackground> background;
    TvGeMatrix3d placement;

    bool isEmpty() const { return parts.empty() && !background; }
};

/// The shape of a text, attribute or attribute definition; one with several lines like an MTEXT.
///
/// Codes (%%d, %%u, \U+XXXX ...) are obeyed. Heights and places that are not finite, or too large
/// or small to draw, give an empty shape. Whether it is visible is not asked.
TextShape shapeOf(const TvDbText& text, Fonts& fonts);
/// The same with @p text in its place: what a field or an attribute's tag shows.
TextShape shapeOf(const TvDbText& text, std::u16string_view shown, Fonts& fonts);
/// The shape of paragraphs with their formats, columns and background.
TextShape shapeOf(const TvDbMText& text, Fonts& fonts);
/// The text of a leader with text; empty for others. Not its lines, landing or block.
TextShape shapeOf(const TvDbMLeader& leader, Fonts& fonts);
/// The frames, letters and signs of geometric tolerances.
TextShape shapeOf(const TvDbFcf& tolerance, Fonts& fonts);

} // namespace gs
