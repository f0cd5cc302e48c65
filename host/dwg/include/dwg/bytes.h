#pragma once

#include <cstdint>
#include <span>

namespace dwg {

/// Bytes that somebody else owns.
using Bytes = std::span<const std::uint8_t>;

} // namespace dwg
