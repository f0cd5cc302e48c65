#include "gs/exact_text_measure.h"
#include "text_codes.h"
#include "text_pen.h"
#include "text_style.h"

namespace gs {

double ExactTextMeasure::width(std::u16string_view line, const db::TextLook& look)
{
    Fonts& fonts = m_fonts ? *m_fonts : Fonts::ofThread();
    LetterLook letters;
    letters.font = &fonts.find(fontOf(look));
    letters.height = look.height;
    letters.widthFactor = std::abs(soundFactor(look.widthFactor));
    std::u32string text;
    while (!line.empty())
        text += takeCharacter(line);
    TextShape unused;
    TextTools tools(fonts);
    return TextPen(unused, tools).width(text, letters).ink();
}

} // namespace gs
