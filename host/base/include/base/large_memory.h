#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace base {

struct FreeLargeMemory {
    std::size_t size = 0; ///< of a piece that may be kept for the next one
    void operator()(std::uint8_t* bytes) const;
};

/// Bytes that no one has cleared or copied, for contents that are made piece by piece.
using LargeMemory = std::unique_ptr<std::uint8_t, FreeLargeMemory>;

/// Memory of @p size bytes, which the system gives as it is touched: in few large pieces where
/// there is much of it, since each piece costs a fault. Of what is given back, the last few
/// pieces are kept for the next that are as large, as long as the system has memory to spare.
///
/// @param isZero  whether the bytes must be zero; else they are anything.
/// @return null when there is no such memory.
LargeMemory makeLargeMemory(std::size_t size, bool isZero);

} // namespace base
