#pragma once

#include <cstdint>
#include <vector>

#include "dwg/checksums.h"

namespace dwg {

/// Unpacks the compression of the 2004 family.
///
/// @param out  filled to its last byte, or the input is damaged; nothing outside is touched.
/// @return false when the input does not unpack to exactly that many bytes, or does not end as it
/// must.
bool unpack2004(Bytes packed, std::span<std::uint8_t> out);

/// Packs @p plain, which has 4 bytes or more, in the compression of the 2004 family.
std::vector<std::uint8_t> pack2004(Bytes plain);

} // namespace dwg
