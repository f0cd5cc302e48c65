#include "dwg/checksums.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace dwg {

namespace {

// Tables of eight steps: [k][b] is the effect of byte b that lies k bytes before the end of a
// group.
using Crc16Tables = std::array<std::array<std::uint16_t, 256>, 8>;

constexpr Crc16Tables makeCrc16Tables()
{
    Crc16Tables tables{};
    for (unsigned i = 0; i < 256; ++i) {
        unsigned c = i;
        for (int bit = 0; bit < 8; ++bit)
            c = c & 1 ? (c >> 1) ^ 0xA001 : c >> 1;
        tables[0][i] = static_cast<std::uint16_t>(c);
    }
    for (std::size_t k = 1; k < 8; ++k)
        for (unsigned i = 0; i < 256; ++i) {
            const unsigned previous = tables[k - 1][i];
            tables[k][i] = static_cast<std::uint16_t>((previous >> 8) ^ tables[0][previous & 0xFF]);
        }
    return tables;
}

template <class Word>
constexpr std::array<Word, 256> makeReflectedTable(Word polynomial)
{
    std::array<Word, 256> table{};
    for (unsigned i = 0; i < 256; ++i) {
        Word c = i;
        for (int bit = 0; bit < 8; ++bit)
            c = c & 1 ? (c >> 1) ^ polynomial : c >> 1;
        table[i] = c;
    }
    return table;
}

constexpr std::array<std::uint64_t, 256> makeNormalTable(std::uint64_t polynomial)
{
    std::array<std::uint64_t, 256> table{};
    for (unsigned i = 0; i < 256; ++i) {
        std::uint64_t c = std::uint64_t(i) << 56;
        for (int bit = 0; bit < 8; ++bit)
            c = c >> 63 ? (c << 1) ^ polynomial : c << 1;
        table[i] = c;
    }
    return table;
}

constexpr std::array<std::uint8_t, 256> makeMagic()
{
    std::array<std::uint8_t, 256> magic{};
    std::uint32_t x = 1;
    for (std::uint8_t& byte : magic) {
        x = x * 0x343FD + 0x269EC3;
        byte = static_cast<std::uint8_t>(x >> 16);
    }
    return magic;
}

constexpr Crc16Tables kCrc16 = makeCrc16Tables();
constexpr auto kCrc32 = makeReflectedTable<std::uint32_t>(0xEDB88320u);
constexpr auto kCrc64Mirrored = makeReflectedTable<std::uint64_t>(0x95AC9329AC4BC9B5u);
constexpr auto kCrc64Normal = makeNormalTable(0x42F0E1EBA9EA3693u);
constexpr auto kMagic = makeMagic();

constexpr std::uint32_t kSumModulus = 0xFFF1;
constexpr std::size_t kSumChunk = 0x15B0; // the most bytes for which the sums cannot overflow

} // namespace

std::uint16_t crc16(Bytes bytes, std::uint16_t seed)
{
    unsigned crc = seed;
    std::size_t i = 0;
    for (; i + 8 <= bytes.size(); i += 8) {
        const std::uint8_t* p = bytes.data() + i;
        crc = kCrc16[7][(crc ^ p[0]) & 0xFF] ^ kCrc16[6][(crc >> 8 ^ p[1]) & 0xFF] ^
              kCrc16[5][p[2]] ^ kCrc16[4][p[3]] ^ kCrc16[3][p[4]] ^ kCrc16[2][p[5]] ^
              kCrc16[1][p[6]] ^ kCrc16[0][p[7]];
    }
    for (; i < bytes.size(); ++i)
        crc = (crc >> 8) ^ kCrc16[0][(crc ^ bytes[i]) & 0xFF];
    return static_cast<std::uint16_t>(crc);
}

std::uint32_t crc32(Bytes bytes)
{
    std::uint32_t crc = 0xFFFFFFFFu;
    for (const std::uint8_t byte : bytes)
        crc = (crc >> 8) ^ kCrc32[(crc ^ byte) & 0xFF];
    return ~crc;
}

namespace {

// Bytes lie in rows of 16 columns that are added up side by side: in 16 bits for as many rows as
// those can take, then in 32.
constexpr std::size_t kColumns = 16;
constexpr std::size_t kMostRows = 22; // 255 * 22 * 23 / 2 is below 65536
using Halves = std::uint16_t __attribute__((vector_size(16)));
using Words = std::uint32_t __attribute__((vector_size(16)));

// Every second column, the first of them being 0 or 1.
struct Columns {
    Words sums[2]{}, weighted[2]{}; // of every fourth column each

    void add(Halves more, Halves moreWeighted, std::uint32_t rows)
    {
        const Words parts[] = {Words(more) & 0xFFFF, Words(more) >> 16};
        const Words weights[] = {Words(moreWeighted) & 0xFFFF, Words(moreWeighted) >> 16};
        for (std::size_t i = 0; i < 2; ++i) {
            weighted[i] += sums[i] * rows + weights[i];
            sums[i] += parts[i];
        }
    }
};

struct PageSums {
    std::uint32_t a, b; // of the bytes, and of the sums up to each byte

    // @p rows  of kColumns bytes each, together at most kSumChunk bytes.
    void addRows(const std::uint8_t* bytes, std::size_t rows)
    {
        const std::size_t size = rows * kColumns;
        Columns columns[2];
        for (std::size_t some = 0; rows > 0; rows -= some) {
            some = std::min(rows, kMostRows);
            Halves first{}, second{}, firstWeighted{}, secondWeighted{};
            for (std::size_t row = 0; row < some; ++row, bytes += kColumns) {
                Halves next;
                std::memcpy(&next, bytes, kColumns);
                first += next & 0xFF;
                second += next >> 8;
                firstWeighted += first;
                secondWeighted += second;
            }
            columns[0].add(first, firstWeighted, static_cast<std::uint32_t>(some));
            columns[1].add(second, secondWeighted, static_cast<std::uint32_t>(some));
        }
        b += static_cast<std::uint32_t>(size) * a;
        for (std::uint32_t k = 0; k < kColumns; ++k) {
            // Where the first byte is the high one, the columns of a pair change places.
            const bool isFirst = (k % 2 == 0) == (std::endian::native == std::endian::little);
            const Columns& from = columns[isFirst ? 0 : 1];
            const std::size_t part =
                (std::endian::native == std::endian::little ? k : kColumns - 1 - k) / 2 % 2;
            a += from.sums[part][k / 4];
            b += kColumns * from.weighted[part][k / 4] - k * from.sums[part][k / 4];
        }
    }

    void add(Bytes bytes)
    {
        const std::size_t rows = bytes.size() / kColumns;
        addRows(bytes.data(), rows);
        for (const std::uint8_t byte : bytes.subspan(rows * kColumns)) {
            a += byte;
            b += a;
        }
    }
};

} // namespace

std::uint32_t pageSum(std::uint32_t seed, Bytes bytes)
{
    PageSums sums{seed & 0xFFFF, seed >> 16};
    while (!bytes.empty()) {
        const Bytes chunk = bytes.first(std::min(bytes.size(), kSumChunk));
        sums.add(chunk);
        sums.a %= kSumModulus;
        sums.b %= kSumModulus;
        bytes = bytes.subspan(chunk.size());
    }
    return sums.b << 16 | sums.a;
}

std::uint8_t magicByte(std::size_t index)
{
    return kMagic[index & 0xFF];
}

std::vector<std::uint8_t> inWordOrder(Bytes message)
{
    std::vector<std::uint8_t> out;
    out.reserve(message.size());
    const auto emit = [&](std::initializer_list<std::size_t> order, std::size_t count) {
        for (const std::size_t i : order)
            out.push_back(message[i]);
        message = message.subspan(count);
    };
    while (message.size() >= 8)
        emit({6, 7, 4, 5, 2, 3, 0, 1}, 8);
    if (message.size() >= 4)
        emit({2, 3, 0, 1}, 4);
    out.insert(out.end(), message.begin(), message.end());
    return out;
}

std::uint64_t crc64MirroredSeed(std::uint64_t length)
{
    std::uint64_t seed = length * 0x343FD + 0x269EC3;
    seed |= (seed * 0x343FD + 0x269EC3) << 32;
    return ~seed;
}

std::uint64_t crc64NormalSeed(std::uint64_t length)
{
    std::uint64_t seed = length * 0x343FD + 0x269EC3;
    seed = seed * ((std::uint64_t(1) << 32) + 0x343FD) + length + 0x269EC3;
    return ~seed;
}

std::uint64_t crc64Mirrored(Bytes message, std::uint64_t seed)
{
    std::uint64_t crc = seed;
    for (const std::uint8_t byte : inWordOrder(message))
        crc = (crc >> 8) ^ kCrc64Mirrored[(crc ^ byte) & 0xFF];
    return crc;
}

std::uint64_t crc64Normal(Bytes message, std::uint64_t seed)
{
    std::uint64_t crc = seed;
    for (const std::uint8_t byte : inWordOrder(message))
        crc = kCrc64Normal[(crc >> 56 ^ byte) & 0xFF] ^ (crc << 8);
    return ~crc;
}

std::uint64_t crc64Mirrored(Bytes message)
{
    return crc64Mirrored(message, crc64MirroredSeed(message.size()));
}

std::uint64_t crc64Normal(Bytes message)
{
    return crc64Normal(message, crc64NormalSeed(message.size()));
}

std::uint32_t pageSum2007(Bytes message)
{
    const auto seed = static_cast<std::uint32_t>(message.size() * 0x343FDu + 0x269EC3u);
    return pageSum(seed, inWordOrder(message));
}

} // namespace dwg
