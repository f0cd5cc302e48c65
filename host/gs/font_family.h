#pragma once

#include <string>
#include <string_view>

#include "gs/fonts.h"

namespace gs {

/// What a drawing's name of a font means.
struct FontFamily {
    enum class Kind { Strokes, Signs, Outline };

    Kind kind = Kind::Strokes;
    std::string name; ///< of an outline font's family, UTF-8
    bool isBold = false;
    bool isItalic = false;
};

/// Signs: the stroke font of geometric tolerances. Folders in the name do not count; a file of
/// letters that are bold or italic ("arialbd.ttf") is its family, bold or italic.
FontFamily familyOf(const FontName& name);

/// How wide the letters a to z of a widespread family are on average, in heights of its capitals;
/// 0 for others.
double usualWidth(std::string_view family);

} // namespace gs
