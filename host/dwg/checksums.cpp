#include "dwg/checksums.h"

#include <algorithm>
#include <array>

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

constexpr std::uint32_t kSumBlock = 32;

std::uint32_t pageSum(std::uint32_t seed, Bytes bytes)
{
    std::uint32_t a = seed & 0xFFFF, b = seed >> 16;
    while (!bytes.empty()) {
        const Bytes chunk = bytes.first(std::min(bytes.size(), kSumChunk));
        // Blocks of known length, so that the compiler adds many bytes at a time.
        std::size_t i = 0;
        for (; i + kSumBlock <= chunk.size(); i += kSumBlock) {
            std::uint32_t sum = 0, weighted = 0;
            const std::uint8_t* const block = chunk.data() + i;
            for (std::uint32_t k = 0; k < kSumBlock; ++k) {
                sum += block[k];
                weighted += (kSumBlock - k) * block[k];
            }
            b += kSumBlock * a + weighted;
            a += sum;
        }
        for (; i < chunk.size(); ++i) {
            a += chunk[i];
            b += a;
        }
        a %= kSumModulus;
        b %= kSumModulus;
        bytes = bytes.subspan(chunk.size());
    }
    return b << 16 | a;
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
