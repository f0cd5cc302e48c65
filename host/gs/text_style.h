#pragma once

#include <db/text_measure.h>

#include "gs/fonts.h"

namespace gs {

/// What a text style says of the letters.
struct TextStyle {
    FontName font;
    double height = 0; ///< 0: the text's own
    double widthFactor = 1;
    double oblique = 0; ///< radians
    bool isVertical = false;
};

FontName fontOf(const db::TextLook& look);
/// A null id, and one of no style: a stroke font.
TextStyle textStyleOf(TvDbObjectId style);

} // namespace gs
