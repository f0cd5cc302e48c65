#pragma once

#include <cstdint>

namespace dxf {

/// Angles are degrees in files and radians in records.
double radiansOf(double degrees);
/// The number with the fewest digits that radiansOf() leads back from; some value near when none
/// does.
double degreesOf(double radians);

/// The code of a lineweight (hundredths of a millimetre; -1 by layer, -2 by block, -3 default); of
/// one that is none of the steps, the next step.
std::int64_t lineweightCode(std::int64_t value);
std::int64_t lineweightValue(std::int64_t code);

} // namespace dxf
