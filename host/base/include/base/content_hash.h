#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace base {

/// 128-bit hash (XXH3) of a file's content: what identifies a version of it, since times and sizes do not.
struct ContentHash {
    std::uint64_t low = 0;
    std::uint64_t high = 0;
    friend bool operator==(const ContentHash&, const ContentHash&) = default;
};

ContentHash hashOf(std::span<const std::byte> bytes);

} // namespace base
