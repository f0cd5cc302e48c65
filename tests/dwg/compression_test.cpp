#include <lz2004.h>
#include <lz2007.h>
#include <reed_solomon.h>

#include <numeric>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

using Buffer = std::vector<std::uint8_t>;

namespace {

Buffer fromHex(const std::string& hex)
{
    Buffer bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return bytes;
}

Buffer sampleText()
{
    const std::string word = "abcdefgh";
    const std::string text = word + word + word + std::string(30, '\0') + "xyz";
    return {text.begin(), text.end()};
}

// Bytes as drawings have them: runs, repeats from far and near, and noise between.
Buffer drawingLike(std::size_t size)
{
    Buffer bytes;
    const auto length = rc::gen::inRange<std::size_t>(1, 400);
    while (bytes.size() < size) {
        const auto kind = *rc::gen::inRange(0, 3);
        const std::size_t count = *length;
        if (kind == 0) {
            bytes.insert(bytes.end(), count, *rc::gen::arbitrary<std::uint8_t>());
        } else if (kind == 1 && !bytes.empty()) {
            const std::size_t from = *rc::gen::inRange<std::size_t>(0, bytes.size());
            for (std::size_t i = 0; i < count; ++i)
                bytes.push_back(bytes[from + i]);
        } else {
            std::uint32_t noise = *rc::gen::arbitrary<std::uint32_t>();
            for (std::size_t i = 0; i < count; ++i)
                bytes.push_back(static_cast<std::uint8_t>((noise = noise * 69069 + 1) >> 24));
        }
    }
    return bytes;
}

void expectRoundTrip2004(const Buffer& plain)
{
    const Buffer packed = dwg::pack2004(plain);
    RC_ASSERT(packed.size() <= plain.size() + plain.size() / 255 + 8);
    Buffer again(plain.size());
    RC_ASSERT(dwg::unpack2004(packed, again));
    RC_ASSERT(again == plain);
}

} // namespace

TEST(Compression2004, UnpacksTheKnownStream)
{
    const Buffer known = fromHex("0561626364656667682e1d00003b030078797a110000");
    Buffer out(57);
    EXPECT_TRUE(dwg::unpack2004(known, out));
    EXPECT_EQ(out, sampleText());
    EXPECT_LE(dwg::pack2004(sampleText()).size(), known.size() + 4);
}

RC_GTEST_PROP(Compression2004, WhatIsPackedUnpacks, ())
{
    expectRoundTrip2004(drawingLike(*rc::gen::inRange<std::size_t>(4, 40'000)));
    auto noise = *rc::gen::arbitrary<Buffer>();
    noise.resize(noise.size() + 4);
    expectRoundTrip2004(noise);
}

TEST(Compression2004, FarRepeatsAndLongRunsComeBack)
{
    Buffer plain(300'000);
    std::uint32_t noise = 7;
    for (std::size_t i = 0; i < 0xC010; ++i)
        plain[i] = static_cast<std::uint8_t>((noise = noise * 69069 + 1) >> 24);
    for (std::size_t i = 0; i < 5'000; ++i) {
        plain[0x4002 + i + 60'000] = plain[i];        // beyond the middle distance
        plain[0xC020 + 80'000 + i] = plain[0x21 + i]; // too far
    }
    for (const std::size_t size : {4u, 5u, 17u, 18u, 19u, 272u, 273u, 274u, 49'100u, 300'000u}) {
        const Buffer part(plain.begin(), plain.begin() + static_cast<std::ptrdiff_t>(size));
        Buffer again(size);
        ASSERT_TRUE(dwg::unpack2004(dwg::pack2004(part), again)) << size;
        EXPECT_EQ(again, part) << size;
    }
}

TEST(Compression2004, TheWrongSizeIsRefused)
{
    const Buffer packed = dwg::pack2004(sampleText());
    Buffer less(56), more(58);
    EXPECT_FALSE(dwg::unpack2004(packed, less));
    EXPECT_FALSE(dwg::unpack2004(packed, more));
}

TEST(Compression2004, TruncatedInputIsRefused)
{
    const Buffer packed = dwg::pack2004(sampleText());
    for (std::size_t size = 0; size + 3 < packed.size(); ++size) {
        Buffer out(57);
        EXPECT_FALSE(dwg::unpack2004(dwg::Bytes(packed).first(size), out)) << size;
    }
}

RC_GTEST_PROP(Compression2004, ALongPageThatBreaksOffAnywhereIsRefused, ())
{
    const Buffer plain = drawingLike(3'000), packed = dwg::pack2004(plain);
    Buffer whole(plain.size());
    for (std::size_t size = 0; size + 3 < packed.size(); size += 1 + size / 40)
        RC_ASSERT(!dwg::unpack2004(dwg::Bytes(packed).first(size), whole));
}

// Matches of each length from each distance, the near ones of which repeat themselves.
TEST(Compression2004, EveryLengthAndDistanceOfAMatchComesBack)
{
    for (std::size_t offset = 1; offset <= 40; ++offset)
        for (std::size_t length = 3; length <= 33; ++length) {
            Buffer expected;
            for (std::size_t i = 0; i < 40; ++i)
                expected.push_back(static_cast<std::uint8_t>(i * 7));
            Buffer packed{0, 22}; // 40 literals
            packed.insert(packed.end(), expected.begin(), expected.end());
            packed.push_back(static_cast<std::uint8_t>(0x20 | (length - 2)));
            packed.push_back(static_cast<std::uint8_t>((offset - 1) << 2));
            packed.push_back(0);
            for (std::size_t i = 0; i < length; ++i)
                expected.push_back(expected[expected.size() - offset]);
            packed.insert(packed.end(), {0, 82}); // 100 literals
            packed.insert(packed.end(), 100, 0xA5);
            expected.insert(expected.end(), 100, 0xA5);
            packed.insert(packed.end(), {0x11, 0, 0});

            Buffer out(expected.size());
            ASSERT_TRUE(dwg::unpack2004(packed, out)) << offset << ' ' << length;
            ASSERT_EQ(out, expected) << offset << ' ' << length;
        }
}

RC_GTEST_PROP(Compression2004, HostileInputNeverLeavesTheOutput, ())
{
    auto packed = dwg::pack2004(drawingLike(2'000));
    const auto hits = *rc::gen::container<std::vector<std::size_t>>(
        rc::gen::inRange<std::size_t>(0, packed.size()));
    for (const std::size_t at : hits)
        packed[at] = *rc::gen::arbitrary<std::uint8_t>();
    Buffer out(*rc::gen::inRange<std::size_t>(0, 4'000));
    dwg::unpack2004(packed, out); // the sanitizers watch
    dwg::unpack2004(*rc::gen::arbitrary<Buffer>(), out);
}

TEST(Compression2007, UnpacksTheKnownStreams)
{
    Buffer out(57);
    EXPECT_TRUE(dwg::unpack2007(fromHex("0061626364656667681d0701000a00037a7978"), out));
    EXPECT_EQ(out, sampleText());
    Buffer ramp(20);
    EXPECT_TRUE(dwg::unpack2007(fromHex("0c0c0d0e0f101112130405060708090a0b00010203"), ramp));
    Buffer expected(20);
    std::iota(expected.begin(), expected.end(), std::uint8_t(0));
    EXPECT_EQ(ramp, expected);
}

RC_GTEST_PROP(Compression2007, WhatIsPackedUnpacks, ())
{
    for (const Buffer& plain :
         {drawingLike(*rc::gen::inRange<std::size_t>(8, 40'000)), *rc::gen::arbitrary<Buffer>()}) {
        const Buffer packed = dwg::pack2007(plain);
        if (packed.empty())
            continue; // kept as it is
        RC_ASSERT(packed.size() < plain.size());
        Buffer again(plain.size());
        RC_ASSERT(dwg::unpack2007(packed, again));
        RC_ASSERT(again == plain);
    }
}

TEST(Compression2007, EveryLengthOfRunAndMatchComesBack)
{
    std::uint32_t noise = 1;
    const auto next = [&] { return static_cast<std::uint8_t>((noise = noise * 69069 + 1) >> 24); };
    for (const std::size_t length :
         {3u, 14u, 15u, 18u, 19u, 50u, 51u, 255u, 256u, 300u, 66'000u, 140'000u})
        for (const std::size_t run : {1u, 7u, 8u, 22u, 23u, 31u, 32u, 278u, 277u, 70'000u}) {
            Buffer plain;
            for (std::size_t i = 0; i < run + 8; ++i)
                plain.push_back(next());
            plain.insert(plain.end(), length, 0x55);
            for (std::size_t i = 0; i < 2 * run; ++i)
                plain.push_back(plain[i % (run + 8)]);
            plain.push_back(next());
            const Buffer packed = dwg::pack2007(plain);
            Buffer again(plain.size());
            ASSERT_TRUE(packed.empty() || dwg::unpack2007(packed, again)) << length << " " << run;
            ASSERT_TRUE(packed.empty() || again == plain) << length << " " << run;
        }
}

RC_GTEST_PROP(Compression2007, HostileInputNeverLeavesTheOutput, ())
{
    auto packed = dwg::pack2007(drawingLike(2'000));
    if (!packed.empty()) {
        const auto hits = *rc::gen::container<std::vector<std::size_t>>(
            rc::gen::inRange<std::size_t>(0, packed.size()));
        for (const std::size_t at : hits)
            packed[at] = *rc::gen::arbitrary<std::uint8_t>();
    }
    Buffer out(*rc::gen::inRange<std::size_t>(0, 4'000));
    dwg::unpack2007(packed, out); // the sanitizers watch
    dwg::unpack2007(*rc::gen::arbitrary<Buffer>(), out);
}

TEST(ReedSolomon, ParityMatchesTheKnownValues)
{
    Buffer ramp(251);
    std::iota(ramp.begin(), ramp.end(), std::uint8_t(0));
    EXPECT_EQ(dwg::parityOf(dwg::BlockCode::Data, ramp), fromHex("02A781E8"));
    ramp.resize(239);
    EXPECT_EQ(dwg::parityOf(dwg::BlockCode::System, ramp),
              fromHex("ACD464ED899006A1F7AFE8D36A8DEAE7"));
}

TEST(ReedSolomon, InterleavedBlocksComeBack)
{
    for (const auto code : {dwg::BlockCode::System, dwg::BlockCode::Data})
        for (const std::size_t size : {1u, 239u, 251u, 252u, 717u, 5'000u}) {
            Buffer data(size);
            std::iota(data.begin(), data.end(), std::uint8_t(7));
            const std::size_t blocks = dwg::blocksFor(code, size);
            const Buffer coded = dwg::encodeInterleaved(code, data);
            EXPECT_EQ(coded.size(), blocks * 255);
            EXPECT_EQ(dwg::decodeInterleaved(code, coded, blocks, size), data);
        }
}
