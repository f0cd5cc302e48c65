#include <dwg/checksums.h>

#include <numeric>

#include <gtest/gtest.h>

namespace {

std::vector<std::uint8_t> digits()
{
    return {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
}

std::vector<std::uint8_t> ramp(std::size_t count)
{
    std::vector<std::uint8_t> bytes(count);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t(0));
    return bytes;
}

} // namespace

TEST(Checksums, MatchTheKnownValues)
{
    EXPECT_EQ(dwg::crc16(digits()), 0x7E6C);
    EXPECT_EQ(dwg::crc16(ramp(40)), 0xF8C3);
    EXPECT_EQ(dwg::crc32(digits()), 0xCBF43926u);
    EXPECT_EQ(dwg::pageSum(0, digits()), 0x091501DDu);
    EXPECT_EQ(dwg::pageSum(0, ramp(40)), 0x29A4030Cu);
    EXPECT_EQ(dwg::pageSum2007(digits()), 0x21910485u);
}

TEST(Checksums, Crc64MatchesTheKnownValues)
{
    EXPECT_EQ(dwg::crc64MirroredSeed(9), 0xE7F8C934FFBBFD57u);
    EXPECT_EQ(dwg::crc64NormalSeed(9), 0xFFBBFC79E7F8C92Bu);
    EXPECT_EQ(dwg::crc64Mirrored(digits()), 0x39557F282C02B821u);
    EXPECT_EQ(dwg::crc64Normal(digits()), 0xB4268774201869A1u);
}

TEST(Checksums, WordOrderKeepsEveryByte)
{
    EXPECT_EQ(dwg::inWordOrder(digits()),
              (std::vector<std::uint8_t>{0x37, 0x38, 0x35, 0x36, 0x33, 0x34, 0x31, 0x32, 0x39}));
    EXPECT_EQ(dwg::inWordOrder(ramp(15)),
              (std::vector<std::uint8_t>{6, 7, 4, 5, 2, 3, 0, 1, 10, 11, 8, 9, 12, 13, 14}));
    EXPECT_EQ(dwg::inWordOrder(ramp(3)), ramp(3));
}

TEST(Checksums, Crc16OfPartsIsTheCrc16OfTheWhole)
{
    const auto bytes = ramp(100);
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
        const dwg::Bytes all(bytes);
        EXPECT_EQ(dwg::crc16(all.subspan(cut), dwg::crc16(all.first(cut))), dwg::crc16(all));
    }
}

TEST(Checksums, LongPageSumsDoNotOverflow)
{
    const std::vector<std::uint8_t> high(100'000, 0xFF);
    std::uint64_t a = 0, b = 0;
    for (const std::uint8_t byte : high) {
        a = (a + byte) % 0xFFF1;
        b = (b + a) % 0xFFF1;
    }
    EXPECT_EQ(dwg::pageSum(0, high), b << 16 | a);
}

TEST(Checksums, PageSumsOfEveryLengthFollowTheDefinition)
{
    std::vector<std::uint8_t> bytes;
    std::uint32_t noise = 7, a = 0x1234, b = 0xFFF0;
    const std::uint32_t seed = b << 16 | a;
    for (std::size_t size = 0; size < 12'000; ++size) {
        ASSERT_EQ(dwg::pageSum(seed, bytes), b << 16 | a) << size;
        bytes.push_back(static_cast<std::uint8_t>((noise = noise * 69069 + 1) >> 24));
        a = (a + bytes.back()) % 0xFFF1;
        b = (b + a) % 0xFFF1;
        if (size > 800) // what follows is the same again
            for (int i = 0; i < 96; ++i, ++size) {
                bytes.push_back(0xFF);
                a = (a + 0xFF) % 0xFFF1;
                b = (b + a) % 0xFFF1;
            }
    }
}

TEST(Checksums, MagicSequenceMatchesTheKnownValues)
{
    const std::vector<std::uint8_t> start{0x29, 0x23, 0xBE, 0x84, 0xE1, 0x6C, 0xD6, 0xAE};
    const std::vector<std::uint8_t> later{0xF8, 0x46, 0x6A, 0x04, 0x96, 0x73, 0x0E, 0xD9};
    for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_EQ(dwg::magicByte(i), start[i]);
        EXPECT_EQ(dwg::magicByte(0xEC + i), later[i]);
    }
}
