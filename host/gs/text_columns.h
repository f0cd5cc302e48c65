#pragma once

#include "text_mtext.h"
#include "text_paragraphs.h"

namespace gs {

/// Writes paragraphs downwards: letters below each other, each paragraph from the next column on
/// the left. A column ends at the text's defined height, if it has one.
/// @return what they take, about the place of the text (0, 0) as @p attachment says.
Box writeColumns(const ParagraphText& text, const MTextLook& look, int attachment, TextPen& pen);

} // namespace gs
