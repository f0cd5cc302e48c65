#pragma once

#include <db/tv_db_object.h>

namespace db {

/// How a piece of text looks, as far as its width depends on it.
struct TextLook {
    TvString font; ///< a file's name, or the family of an outline font
    bool isFamily = false;
    bool isBold = false, isItalic = false; ///< of a family
    TvString bigFont;                      ///< for the letters that a stroke font lacks
    double height = 0;
    double widthFactor = 1;
    double oblique = 0; ///< radians
};

/// Measures text; supplied by whoever has the fonts.
class TextMeasure
{
public:
    virtual ~TextMeasure() = default;
    /// In drawing units; @p line is plain text without line breaks.
    virtual double width(std::u16string_view line, const TextLook& look) = 0;
};
/// Null: widths are estimated. Not owned.
void setTextMeasure(TextMeasure* measure);

/// The width of a line of plain text.
double textWidth(std::u16string_view line, const TextLook& look);
/// The look that a text style gives to text of that height.
TextLook lookOfStyle(TvDbObjectId style, double height, double widthFactor);

/// Text as it reads: %%c, %%d, %%p and the like replaced, underlines dropped.
std::u16string plainLine(std::u16string_view text);
/// The text of an MTEXT without its formats; paragraphs and columns end with a line feed.
std::u16string plainParagraphs(std::u16string_view contents);
/// What MTEXT takes for exactly this text: its special signs escaped.
std::u16string escapedForMText(std::u16string_view text);

} // namespace db
