#pragma once

#include "text_paragraphs.h"

namespace gs {

/// How large a stack is; it stands on its lower edge.
struct StackExtent {
    LetterWidth width;
    double height = 0;
};
StackExtent stackExtent(const TextStack& stack, const LetterLook& look, TextPen& pen);

/// Writes a stack whose lower left corner is @p at.
void writeStack(const TextStack& stack, const LetterLook& look, TvGePoint2d at, TextPen& pen,
                const FlatMap& map);

/// How far above the baseline a piece @p tall high stands in a line of letters of @p lineHeight.
double raised(LetterPlace place, double tall, double lineHeight);

} // namespace gs
