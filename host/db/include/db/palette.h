#pragma once

#include <cstdint>

namespace db {

/// The colour with that number, red in bits 16 to 23, green and blue below: 1 to 255. Number 7 is
/// given as white, and is black on a white background. 0 for any other number.
std::uint32_t paletteColor(int index);

} // namespace db
