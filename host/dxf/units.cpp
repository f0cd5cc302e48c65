#include "units.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <numbers>

namespace dxf {

namespace {

// By code; what lies between the steps and the three names is not used.
constexpr std::int16_t kLineweights[] = {
    0,  5,  9,  13, 15, 18,  20,  25,  30,  35,  40,  50,
    53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211,
};
constexpr std::int64_t kByLayerCode = 29; // then by block, default

} // namespace

double radiansOf(double degrees)
{
    return degrees * std::numbers::pi / 180;
}

double degreesOf(double radians)
{
    const double exact = radians * 180 / std::numbers::pi;
    char digits[40];
    for (const int precision : {12, 15, 16}) {
        const auto end = std::to_chars(digits, digits + sizeof digits, exact,
                                       std::chars_format::general, precision);
        double rounded = 0;
        std::from_chars(digits, end.ptr, rounded);
        if (radiansOf(rounded) == radians)
            return rounded;
    }
    for (const double near : {exact, std::nextafter(exact, 1e300), std::nextafter(exact, -1e300)})
        if (radiansOf(near) == radians)
            return near;
    return exact;
}

std::int64_t lineweightCode(std::int64_t value)
{
    if (value < 0)
        return value >= -3 ? kByLayerCode - 1 - value : kByLayerCode;
    std::int64_t best = 0;
    for (std::int64_t code = 0; code < std::int64_t(std::size(kLineweights)); ++code)
        if (std::llabs(kLineweights[code] - value) < std::llabs(kLineweights[best] - value))
            best = code;
    return best;
}

std::int64_t lineweightValue(std::int64_t code)
{
    if (code >= 0 && code < std::int64_t(std::size(kLineweights)))
        return kLineweights[code];
    return code >= kByLayerCode && code <= kByLayerCode + 2 ? kByLayerCode - 1 - code : -1;
}

} // namespace dxf
