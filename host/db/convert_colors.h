#pragma once

#include <cstdint>

namespace db {

/// The index of the palette's colour that is nearest to 24 bits of red, green and blue: 1 to 255,
/// the lowest of several.
int nearestColorIndex(std::uint32_t rgb);

/// The colour of a record of AC1015 as later versions store it, and back. By block is 0, by layer
/// 256, none 257.
std::int32_t wideColor(std::int64_t index);
std::int64_t colorIndex(std::int32_t value);

} // namespace db
