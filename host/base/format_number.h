#pragma once

#include <cstdint>
#include <string>

#include "format_pattern.h"

namespace base {

/// A number as ASCII digits, in the parts that padding with zeros needs apart.
struct NumberText {
    std::string sign; ///< "", "-", "+", " ", also with "0x" behind it.
    std::string digits;
    bool padsWithZeros = true; ///< False for "inf" and "nan", and for an integer with a precision.
};

/// A whole number as the conversion d, i or u writes it.
NumberText decimalText(const Conversion& conversion, bool negative, std::uint64_t magnitude);
/// The bits of a whole number as x or X writes them.
NumberText hexadecimalText(const Conversion& conversion, std::uint64_t bits);
/// A real as f, e or g (or F, E, G) writes it; any other type counts as g. Independent of any
/// locale.
NumberText realText(const Conversion& conversion, double value);

} // namespace base
