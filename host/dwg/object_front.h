#pragma once

#include <bit>
#include <cstring>
#include <utility>

#include "byte_stream.h"
#include "dwg/object_record.h"

namespace dwg {

namespace front {

inline std::uint64_t readBig64(const std::uint8_t* p)
{
    std::uint64_t word = 0;
    std::memcpy(&word, p, sizeof word);
    if constexpr (std::endian::native == std::endian::little)
        word = __builtin_bswap64(word);
    return word;
}

/// A short that lies high byte last.
inline std::uint16_t swapped(std::uint64_t raw)
{
    return static_cast<std::uint16_t>((raw & 0xFF) << 8 | (raw >> 8 & 0xFF));
}

/// The type that a record begins with, and the bit behind it.
inline std::pair<std::uint16_t, unsigned> typeIn(std::uint64_t first, bool isNewForm)
{
    const unsigned form = static_cast<unsigned>(first >> 62);
    const auto byte = static_cast<std::uint16_t>(first >> 54 & 0xFF);
    if (isNewForm) {
        constexpr unsigned kSecondRow = 0x1F0;
        return form < 2 ? std::pair(static_cast<std::uint16_t>(form * kSecondRow + byte), 10u)
                        : std::pair(swapped(first >> 46), 18u);
    }
    switch (form) {
    case 0: return {swapped(first >> 46), 18};
    case 1: return {byte, 10};
    case 2: return {std::uint16_t(0), 2};
    default: return {std::uint16_t(256), 2};
    }
}

} // namespace front

/// readFront() for records of the usual shape: of some size, below 32 KB, with sizes and own handle
/// in few bytes. Others, and what makes no sense, have the size 0.
inline ObjectFront readFrontQuickly(Version version, Bytes head)
{
    constexpr std::size_t kMostRead = 20;
    constexpr unsigned kMostHandleBytes = 6;
    if (head.size() < kMostRead || (head[1] & 0x80))
        return {};
    const bool isNewForm = hasHandleStreamSize(version);
    const std::size_t dataSize = readU16(head.data());
    std::size_t dataAt = 2;
    std::size_t handleBits = 0;
    if (isNewForm) {
        handleBits = head[2] & 0x7F;
        if (head[2] & 0x80)
            handleBits |= std::size_t(head[3] & 0x7F) << 7;
        if ((head[2] & 0x80) && (head[3] & 0x80))
            return {};
        dataAt += head[2] & 0x80 ? 2 : 1;
    }
    if (dataSize < kMostRead || handleBits > dataSize * 8)
        return {};
    const std::uint8_t* const data = head.data() + dataAt;
    const auto [type, typeEnd] = front::typeIn(front::readBig64(data), isNewForm);
    const unsigned at = typeEnd + (isNewForm ? 0 : 32); // behind its size in bits
    const std::uint64_t reference = front::readBig64(data + at / 8) << at % 8;
    const unsigned bytes = static_cast<unsigned>(reference >> 56 & 0xF);
    if (bytes > kMostHandleBytes)
        return {};
    const std::uint64_t handle = bytes == 0 ? 0 : reference << 8 >> (64 - 8 * bytes);
    return {dataAt + dataSize + 2, type, handle};
}

} // namespace dwg
