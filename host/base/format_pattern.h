#pragma once

#include <cstddef>
#include <string_view>

namespace base {

/// One conversion of a pattern ("%-8.3ls"), as it is spelled.
struct Conversion {
    static constexpr int kNotGiven = -1;
    /// Width and precision are cut here, so that no pattern makes a text of any size out of
    /// nothing.
    static constexpr int kMaxWidth = 1024;

    bool left = false;        ///< '-'
    bool zeros = false;       ///< '0'
    bool plus = false;        ///< '+'
    bool blank = false;       ///< ' '
    bool alternate = false;   ///< '#'
    int position = kNotGiven; ///< Counted from 1, as in "%2$ls".
    int width = 0;
    int precision = kNotGiven;
    char16_t type = u'\0'; ///< One of "sdiuxXcfFeEgG%".
};

/// Reads the conversion that begins behind a percent sign.
///
/// A '*' in the place of a width or a precision stands for none, and takes no argument: patterns
/// are translated by people, and no mark in one may shift the arguments behind it.
///
/// @param rest  the pattern behind the percent sign.
/// @return      how many units belong to the conversion; 0 if this is none, or none that we know.
std::size_t readConversion(std::u16string_view rest, Conversion& out);

} // namespace base
