#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "dwg/checksums.h"

namespace dwg {

/// Sixteen fixed bytes around a section; the end of each is the complement of its beginning.
using Sentinel = std::array<std::uint8_t, 16>;

// clang-format off
inline constexpr Sentinel kFileHeaderEnd{0x95, 0xA0, 0x4E, 0x28, 0x99, 0x82, 0x1A, 0xE5,
                                         0x5E, 0x41, 0xE0, 0x5F, 0x9D, 0x3A, 0x4D, 0x00};
inline constexpr Sentinel kPreviewBegin{0x1F, 0x25, 0x6D, 0x07, 0xD4, 0x36, 0x28, 0x28,
                                        0x9D, 0x57, 0xCA, 0x3F, 0x9D, 0x44, 0x10, 0x2B};
inline constexpr Sentinel kVariablesBegin{0xCF, 0x7B, 0x1F, 0x23, 0xFD, 0xDE, 0x38, 0xA9,
                                          0x5F, 0x7C, 0x68, 0xB8, 0x4E, 0x6D, 0x33, 0x5F};
inline constexpr Sentinel kClassesBegin{0x8D, 0xA1, 0xC4, 0xB8, 0xC4, 0xA9, 0xF8, 0xC5,
                                        0xC0, 0xDC, 0xF4, 0x5F, 0xE7, 0xCF, 0xB6, 0x8A};
inline constexpr Sentinel kSecondHeaderBegin{0xD4, 0x7B, 0x21, 0xCE, 0x28, 0x93, 0x9F, 0xBF,
                                             0x53, 0x24, 0x40, 0x09, 0x12, 0x3C, 0xAA, 0x01};
// clang-format on

constexpr Sentinel endOf(const Sentinel& begin)
{
    Sentinel end{};
    for (std::size_t i = 0; i < end.size(); ++i)
        end[i] = static_cast<std::uint8_t>(~begin[i]);
    return end;
}

/// Whether @p sentinel stands at @p offset of @p bytes.
inline bool standsAt(const Sentinel& sentinel, Bytes bytes, std::size_t offset)
{
    return offset <= bytes.size() && bytes.size() - offset >= sentinel.size() &&
           std::equal(sentinel.begin(), sentinel.end(), bytes.begin() + offset);
}

/// Where @p sentinel stands first at or behind @p from; the size of @p bytes when nowhere.
inline std::size_t findSentinel(const Sentinel& sentinel, Bytes bytes, std::size_t from)
{
    if (from >= bytes.size())
        return bytes.size();
    return static_cast<std::size_t>(
        std::search(bytes.begin() + from, bytes.end(), sentinel.begin(), sentinel.end()) -
        bytes.begin());
}

} // namespace dwg
