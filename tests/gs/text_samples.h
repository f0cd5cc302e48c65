#pragma once

#include <db/ge_values.h>
#include <db/record_editor.h>
#include <gs/fonts.h>
#include <gs/text_shape.h>

/// The fonts of all tests of one program: looking for them takes longer than the tests.
inline gs::Fonts& testFonts()
{
    static gs::Fonts fonts;
    return fonts;
}

inline void setText(TvDbText& text, std::u16string_view contents, double height = 1)
{
    text.setTextString(TvString(contents));
    text.setHeight(height);
}

inline gs::TextShape lineShape(std::u16string_view contents, double height = 1)
{
    TvDbText text;
    setText(text, contents, height);
    return shapeOf(text, testFonts());
}

inline void setMText(TvDbMText& text, std::u16string_view contents, double width = 0,
                     double height = 1)
{
    text.setContents(TvString(contents));
    text.setTextHeight(height);
    text.setWidth(width);
}

inline gs::TextShape mtextShape(std::u16string_view contents, double width = 0, double height = 1,
                                TvDbMText::AttachmentPoint attachment = TvDbMText::kTopLeft)
{
    TvDbMText text;
    setMText(text, contents, width, height);
    text.setAttachment(attachment);
    return shapeOf(text, testFonts());
}

/// The width of what is drawn.
inline double inkWidth(std::u16string_view contents)
{
    return lineShape(contents).extents.width();
}
