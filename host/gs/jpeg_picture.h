#pragma once

#include <span>

#include <gs/picture.h>

namespace gs {

/// The pixels of a JPEG, with its bytes where they may stand for them; empty for what is broken,
/// too large, or cut off.
Picture pictureFromJpeg(std::span<const std::uint8_t> bytes);

} // namespace gs
