#include "format_number.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <iterator>

namespace {

using base::Conversion;

// 309 digits before the point, the point, kMaxWidth digits behind it, and a sign: all that f can
// need.
constexpr std::size_t kRealBuffer = 309 + 2 + Conversion::kMaxWidth;
constexpr int kDefaultPrecision = 6;

std::string integerDigits(const Conversion& conversion, std::uint64_t value, int base)
{
    if (value == 0 && conversion.precision == 0)
        return {};   // "%.0d" of nothing shows nothing
    char buffer[20]; // 2^64 has 20 decimal digits
    const auto end = std::to_chars(std::begin(buffer), std::end(buffer), value, base).ptr;
    std::string digits(std::begin(buffer), end);
    const auto wanted = static_cast<std::size_t>(std::max(conversion.precision, 0));
    return digits.size() < wanted ? std::string(wanted - digits.size(), '0') + digits : digits;
}

std::string signOf(const Conversion& conversion, bool negative)
{
    if (negative)
        return "-";
    if (conversion.plus)
        return "+";
    return conversion.blank ? " " : "";
}

void raise(std::string& text)
{
    for (char& letter : text)
        if (letter >= 'a' && letter <= 'z')
            letter = static_cast<char>(letter - 32);
}

std::string realDigits(double magnitude, std::chars_format format, int precision)
{
    char buffer[kRealBuffer];
    const auto end =
        std::to_chars(std::begin(buffer), std::end(buffer), magnitude, format, precision).ptr;
    return {std::begin(buffer), end};
}

/// A point behind the digits if there is none: what '#' asks for.
void forcePoint(std::string& digits)
{
    if (digits.find('.') == std::string::npos)
        digits.insert(std::min(digits.find('e'), digits.size()), 1, '.');
}

/// 'g' with its zeros kept: as e, unless the exponent is small enough for f.
std::string generalWithZeros(double magnitude, int precision)
{
    const int significant = std::max(precision, 1);
    const std::string scientific =
        realDigits(magnitude, std::chars_format::scientific, significant - 1);
    const int exponent = std::atoi(scientific.c_str() + scientific.find('e') + 1);
    if (exponent < -4 || exponent >= significant)
        return scientific;
    return realDigits(magnitude, std::chars_format::fixed, significant - 1 - exponent);
}

std::string finiteDigits(const Conversion& conversion, double magnitude)
{
    const int precision =
        conversion.precision == Conversion::kNotGiven ? kDefaultPrecision : conversion.precision;
    const char16_t type = conversion.type;
    std::string digits;
    if (type == u'f' || type == u'F')
        digits = realDigits(magnitude, std::chars_format::fixed, precision);
    else if (type == u'e' || type == u'E')
        digits = realDigits(magnitude, std::chars_format::scientific, precision);
    else if (conversion.alternate)
        digits = generalWithZeros(magnitude, precision);
    else
        digits = realDigits(magnitude, std::chars_format::general, precision);
    if (conversion.alternate)
        forcePoint(digits);
    return digits;
}

} // namespace

namespace base {

NumberText decimalText(const Conversion& conversion, bool negative, std::uint64_t magnitude)
{
    return {signOf(conversion, negative), integerDigits(conversion, magnitude, 10),
            conversion.precision == Conversion::kNotGiven};
}

NumberText hexadecimalText(const Conversion& conversion, std::uint64_t bits)
{
    NumberText text{conversion.alternate && bits != 0 ? "0x" : "",
                    integerDigits(conversion, bits, 16),
                    conversion.precision == Conversion::kNotGiven};
    if (conversion.type == u'X') {
        raise(text.sign);
        raise(text.digits);
    }
    return text;
}

NumberText realText(const Conversion& conversion, double value)
{
    NumberText text{signOf(conversion, std::signbit(value)), {}, std::isfinite(value)};
    if (std::isfinite(value))
        text.digits = finiteDigits(conversion, std::fabs(value));
    else
        text.digits = std::isnan(value) ? "nan" : "inf";
    if (conversion.type == u'F' || conversion.type == u'E' || conversion.type == u'G')
        raise(text.digits);
    return text;
}

} // namespace base
