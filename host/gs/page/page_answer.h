#pragma once

#include <cstdint>

namespace gs {

/// How large the page of a document may become; what the reader of pages and who asks it both know.
inline constexpr std::int64_t kMostPagePixels = 8'000'000;

/// What stands before the pixels that the reader of pages writes: rows from the top, 32 bits each,
/// alpha in the highest byte, the others multiplied by it.
struct PageAnswer {
    std::uint32_t width = 0, height = 0; ///< pixels
    double widthInch = 0, heightInch = 0;
};

} // namespace gs
