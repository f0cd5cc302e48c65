#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <base/status.h>

namespace dxf {

/// Whether the file is the binary form: groups as code and value without text.
bool isBinaryForm(std::span<const std::uint8_t> file);
/// The same groups as text. Bounded by a small multiple of the file. Fails with Damaged.
base::Result<std::vector<std::uint8_t>> textFromBinary(std::span<const std::uint8_t> file);

} // namespace dxf
