#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <dwg/bytes.h>

namespace dwg {

/// What every CRC-16 of a drawing starts with.
inline constexpr std::uint16_t kCrcSeed = 0xC0C1;

/// CRC-16 of headers, classes, objects and map pages (reflected, polynomial 0xA001).
std::uint16_t crc16(Bytes bytes, std::uint16_t seed = kCrcSeed);
/// CRC-32 (reflected, polynomial 0xEDB88320, inverted at both ends) of the 2004 file header.
std::uint32_t crc32(Bytes bytes);
/// Two running sums modulo 65521, started with @p seed: the checksum of pages.
std::uint32_t pageSum(std::uint32_t seed, Bytes bytes);

/// Byte @p index (0 to 255) of the fixed sequence that masks the 2004 file header and fills gaps.
std::uint8_t magicByte(std::size_t index);

/// The 2007 container sums its messages in an order of its own: per 8 bytes 6 7 4 5 2 3 0 1.
std::vector<std::uint8_t> inWordOrder(Bytes message);
/// CRC-64 of the message in word order, reflected form, started with a seed made from its length.
std::uint64_t crc64Mirrored(Bytes message);
/// The same in normal form, inverted at the end.
std::uint64_t crc64Normal(Bytes message);
std::uint64_t crc64Mirrored(Bytes message, std::uint64_t seed);
std::uint64_t crc64Normal(Bytes message, std::uint64_t seed);
/// The seeds of crc64Mirrored and of crc64Normal for a message of @p length bytes.
std::uint64_t crc64MirroredSeed(std::uint64_t length);
std::uint64_t crc64NormalSeed(std::uint64_t length);
/// The 32-bit sum of a 2007 page.
std::uint32_t pageSum2007(Bytes message);

} // namespace dwg
