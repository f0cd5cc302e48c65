#include "stroke_font.h"

namespace gs {

namespace {

// clang-format off
constexpr StrokeLetter kDraughting[] = {
#include "stroke_letters.inc"
};
constexpr StrokeLetter kSigns[] = {
#include "tolerance_signs.inc"
};
// clang-format on

} // namespace

std::span<const StrokeLetter> draughtingLetters()
{
    return kDraughting;
}

std::span<const StrokeLetter> toleranceSigns()
{
    return kSigns;
}

} // namespace gs
