#pragma once

#include <cstdint>
#include <vector>

#include "dwg/checksums.h"

namespace dwg {

/// Unpacks the compression of the 2007 container.
///
/// @param out  filled to its last byte, or the input is damaged; nothing outside is touched.
/// @return false when the input does not unpack to exactly that many bytes.
bool unpack2007(Bytes packed, std::span<std::uint8_t> out);

/// Packs @p plain in the compression of the 2007 container; empty when that would not make it
/// smaller.
std::vector<std::uint8_t> pack2007(Bytes plain);

} // namespace dwg
