#include <dwg/bit_reader.h>
#include <dwg/bit_writer.h>
#include <dwg/record_streams.h>

#include <cmath>
#include <limits>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

using dwg::BitReader;
using dwg::BitWriter;

namespace {

std::string bitsOf(const std::function<void(BitWriter&)>& write)
{
    BitWriter writer;
    write(writer);
    const std::size_t count = writer.bitCount();
    const auto bytes = writer.take();
    std::string text;
    BitReader reader(bytes);
    for (std::size_t i = 0; i < count; ++i)
        text += reader.readB() ? '1' : '0';
    return text;
}

std::string hexOf(const std::function<void(BitWriter&)>& write)
{
    BitWriter writer;
    write(writer);
    std::string text;
    for (const std::uint8_t byte : writer.take()) {
        text += "0123456789ABCDEF"[byte >> 4];
        text += "0123456789ABCDEF"[byte & 15];
    }
    return text;
}

// Writes with @p write after @p shift bits, reads back with @p read and tells the value.
template <class Read, class Write>
auto throughBits(unsigned shift, Write write, Read read)
{
    BitWriter writer;
    writer.writeBits(0x55, shift);
    write(writer);
    const std::size_t end = writer.bitCount();
    const auto bytes = writer.take();
    BitReader reader(bytes, shift, end);
    auto value = read(reader);
    RC_ASSERT(!reader.failed());
    RC_ASSERT(reader.atEnd());
    return value;
}

} // namespace

TEST(Bits, ShortFormsAreTheCanonicalOnes)
{
    EXPECT_EQ(bitsOf([](auto& w) { w.writeBS(0); }), "10");
    EXPECT_EQ(bitsOf([](auto& w) { w.writeBS(256); }), "11");
    EXPECT_EQ(bitsOf([](auto& w) { w.writeBS(15); }), "0100001111");
    EXPECT_EQ(bitsOf([](auto& w) { w.writeBS(300); }), "000010110000000001");
    EXPECT_EQ(bitsOf([](auto& w) { w.writeBD(0.0); }), "10");
    EXPECT_EQ(bitsOf([](auto& w) { w.writeBD(1.0); }), "01");
    EXPECT_EQ(bitsOf([](auto& w) { w.writeBD(-0.0); }).size(), 66u);
    EXPECT_EQ(bitsOf([](auto& w) { w.writeBLL(0); }), "000");
    EXPECT_EQ(bitsOf([](auto& w) { w.writeBE({0, 0, 1}); }), "1");
    EXPECT_EQ(bitsOf([](auto& w) { w.writeBT(0); }), "1");
    EXPECT_EQ(bitsOf([](auto& w) { w.writeOT(0x1F4); }), "0100000100");
    EXPECT_EQ(bitsOf([](auto& w) { w.writeOT(0x2F0); }), "101111000000000010");
    EXPECT_EQ(bitsOf([](auto& w) { w.write3B(6); }), "110");
}

TEST(Bits, ModularFormsAreTheCanonicalOnes)
{
    EXPECT_EQ(hexOf([](auto& w) { w.writeMC(0x40); }), "C000");
    EXPECT_EQ(hexOf([](auto& w) { w.writeMC(-1); }), "41");
    EXPECT_EQ(hexOf([](auto& w) { w.writeMC(63); }), "3F");
    EXPECT_EQ(hexOf([](auto& w) { w.writeMC(-64); }), "C040");
    EXPECT_EQ(hexOf([](auto& w) { w.writeUMC(300); }), "AC02");
    EXPECT_EQ(hexOf([](auto& w) { w.writeMS(0x12345); }), "45A30200");
    EXPECT_EQ(hexOf([](auto& w) { w.writeH(5, 0x5E7); }), "5205E7");
    EXPECT_EQ(hexOf([](auto& w) { w.writeH(2, 0); }), "20");
}

TEST(Bits, DefaultedDoubleReplacesOnlyWhatDiffers)
{
    const double standard = 1234.5;
    EXPECT_EQ(bitsOf([&](auto& w) { w.writeDD(standard, standard); }).size(), 2u);
    const auto lowChanged = std::bit_cast<double>(std::bit_cast<std::uint64_t>(standard) ^ 0x10);
    EXPECT_EQ(bitsOf([&](auto& w) { w.writeDD(lowChanged, standard); }).size(), 34u);
    const auto middleChanged =
        std::bit_cast<double>(std::bit_cast<std::uint64_t>(standard) ^ 0x1200000010);
    EXPECT_EQ(bitsOf([&](auto& w) { w.writeDD(middleChanged, standard); }).size(), 50u);
    EXPECT_EQ(bitsOf([&](auto& w) { w.writeDD(-standard, standard); }).size(), 66u);
}

TEST(Bits, IllegalFormsFailForGood)
{
    const std::vector<std::uint8_t> ones(16, 0xFF);
    for (const auto& read : std::vector<std::function<void(BitReader&)>>{
             [](BitReader& r) { r.readBL(); }, [](BitReader& r) { r.readBD(); },
             [](BitReader& r) { r.readH(); }, [](BitReader& r) { r.readUMC(); },
             [](BitReader& r) { r.readMC(); }, [](BitReader& r) { r.readMS(); },
             [](BitReader& r) { r.seek(129); }, [](BitReader& r) { r.skip(129); }}) {
        BitReader reader(ones);
        read(reader);
        EXPECT_TRUE(reader.failed());
        EXPECT_EQ(reader.readRC(), 0);
        reader.seek(0);
        EXPECT_TRUE(reader.failed()) << "no way back from a failure";
    }
}

TEST(Bits, NothingIsReadPastTheEnd)
{
    const std::vector<std::uint8_t> bytes{0x00, 0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0};
    BitReader short31(bytes, 0, 31);
    EXPECT_EQ(short31.readRL(), 0u);
    EXPECT_TRUE(short31.failed());
    BitReader exact(bytes, 8, 72);
    EXPECT_EQ(exact.readRLL(), 0xF0DEBC9A78563412u);
    EXPECT_TRUE(exact.atEnd());
    EXPECT_FALSE(exact.failed());
    BitReader text(bytes); // BS 00 -> a length far over what is left
    text.readT();
    EXPECT_TRUE(text.failed());
    EXPECT_TRUE(BitReader(bytes, 80, 90).failed());
    EXPECT_TRUE(BitReader().readBits(1) == 0);
}

TEST(Bits, TooLargeForTheirCodeIsRefused)
{
    for (const auto& write : std::vector<std::function<void(BitWriter&)>>{
             [](BitWriter& w) { w.writeBLL(std::uint64_t(1) << 56); },
             [](BitWriter& w) { w.writeT(std::string(0x10000, 'x')); },
             [](BitWriter& w) { w.writeTU(std::u16string(0x10000, u'x')); },
             [](BitWriter& w) { w.writeMS(std::uint64_t(1) << 45); },
             [](BitWriter& w) { w.writeMC(std::numeric_limits<std::int64_t>::min()); },
             [](BitWriter& w) { w.write3B(5); }, [](BitWriter& w) { w.patchRL(0, 1); }}) {
        BitWriter writer;
        write(writer);
        EXPECT_TRUE(writer.failed());
        EXPECT_EQ(writer.bitCount(), 0u);
    }
}

RC_GTEST_PROP(Bits, EveryNumberComesBackFromAnyBit, ())
{
    const auto shift = *rc::gen::inRange(0u, 8u);
    const auto wide = *rc::gen::arbitrary<std::uint64_t>() >> *rc::gen::inRange(0, 64);
    const auto same = [&](auto value, auto write, auto read) {
        RC_ASSERT(throughBits(
                      shift, [&](BitWriter& w) { (w.*write)(value); },
                      [&](BitReader& r) { return (r.*read)(); }) == value);
    };
    same(static_cast<std::uint16_t>(wide), &BitWriter::writeBS, &BitReader::readBS);
    same(static_cast<std::uint32_t>(wide), &BitWriter::writeBL, &BitReader::readBL);
    same(static_cast<std::uint16_t>(wide), &BitWriter::writeOT, &BitReader::readOT);
    same(static_cast<std::uint16_t>(wide), &BitWriter::writeRS, &BitReader::readRS);
    same(static_cast<std::uint32_t>(wide), &BitWriter::writeRL, &BitReader::readRL);
    same(wide, &BitWriter::writeRLL, &BitReader::readRLL);
    same(wide >> 8, &BitWriter::writeBLL, &BitReader::readBLL);
    same(wide, &BitWriter::writeUMC, &BitReader::readUMC);
    same(wide >> 19, &BitWriter::writeMS, &BitReader::readMS);
    same(static_cast<std::int64_t>(wide >> 2), &BitWriter::writeMC, &BitReader::readMC);
    same(-static_cast<std::int64_t>(wide >> 2), &BitWriter::writeMC, &BitReader::readMC);
}

RC_GTEST_PROP(Bits, EveryDoubleComesBackBitForBit, ())
{
    const auto shift = *rc::gen::inRange(0u, 8u);
    const auto bits = *rc::gen::arbitrary<std::uint64_t>();
    const auto standard = std::bit_cast<double>(
        bits ^ (*rc::gen::arbitrary<std::uint64_t>() >> *rc::gen::inRange(0, 64)));
    const auto value = std::bit_cast<double>(bits);
    const auto bitsBack = [&](auto write, auto read) {
        return std::bit_cast<std::uint64_t>(throughBits(shift, write, read));
    };
    RC_ASSERT(bitsBack([&](BitWriter& w) { w.writeBD(value); },
                       [](BitReader& r) { return r.readBD(); }) == bits);
    RC_ASSERT(bitsBack([&](BitWriter& w) { w.writeBT(value); },
                       [](BitReader& r) { return r.readBT(); }) == bits);
    RC_ASSERT(bitsBack([&](BitWriter& w) { w.writeDD(value, standard); },
                       [&](BitReader& r) { return r.readDD(standard); }) == bits);
}

RC_GTEST_PROP(Bits, TextsHandlesAndBytesComeBackFromAnyBit, ())
{
    const auto shift = *rc::gen::inRange(0u, 8u);
    const auto text = *rc::gen::arbitrary<std::string>();
    const std::u16string wideText(text.begin(), text.end());
    const auto value = *rc::gen::arbitrary<std::uint64_t>() >> *rc::gen::inRange(0, 64);
    RC_ASSERT(throughBits(
                  shift, [&](BitWriter& w) { w.writeT(text); },
                  [](BitReader& r) { return r.readT(); }) == text);
    RC_ASSERT(throughBits(
                  shift, [&](BitWriter& w) { w.writeTU(wideText); },
                  [](BitReader& r) { return r.readTU(); }) == wideText);
    const auto handle = throughBits(
        shift, [&](BitWriter& w) { w.writeH(4, value); }, [](BitReader& r) { return r.readH(); });
    RC_ASSERT(handle.value == value);
    RC_ASSERT(handle.code == 4);
    const std::vector<std::uint8_t> bytes(text.begin(), text.end());
    RC_ASSERT(throughBits(
                  shift, [&](BitWriter& w) { w.writeBytes(bytes); },
                  [&](BitReader& r) {
                      std::vector<std::uint8_t> back(bytes.size());
                      r.readBytes(back);
                      return back;
                  }) == bytes);
}

TEST(Bits, PatchReplacesThirtyTwoBitsAnywhere)
{
    BitWriter writer;
    writer.writeBits(5, 3);
    writer.writeRL(0);
    writer.writeRS(0xABCD);
    writer.patchRL(3, 0x12345678);
    const auto bytes = writer.take();
    BitReader reader(bytes);
    EXPECT_EQ(reader.readBits(3), 5u);
    EXPECT_EQ(reader.readRL(), 0x12345678u);
    EXPECT_EQ(reader.readRS(), 0xABCD);
}

TEST(HandleReference, ResolvesRelativeForms)
{
    const std::uint64_t owner = 0x100;
    EXPECT_EQ((dwg::HandleReference{6, 0, 0}.resolve(owner)), 0x101u);
    EXPECT_EQ((dwg::HandleReference{8, 0, 0}.resolve(owner)), 0xFFu);
    EXPECT_EQ((dwg::HandleReference{0xA, 1, 0x20}.resolve(owner)), 0x120u);
    EXPECT_EQ((dwg::HandleReference{0xC, 1, 0x20}.resolve(owner)), 0xE0u);
    EXPECT_EQ((dwg::HandleReference{4, 1, 0x20}.resolve(owner)), 0x20u);
}

TEST(RecordStreams, StringsStandBehindTheDataFromThe2007FormatOn)
{
    for (const std::size_t length : {0u, 1u, 100u, 5000u}) {
        BitWriter data, strings;
        data.writeBS(300);
        if (length > 0)
            strings.writeTU(std::u16string(length, u'w'));
        appendStrings(data, strings);
        const std::size_t end = data.bitCount();
        data.writeH(5, 0x12);
        const auto bytes = data.take();

        auto streams = splitRecord(dwg::Version::Ac1032, bytes, 0, end);

        EXPECT_EQ(streams.data.readBS(), 300);
        EXPECT_TRUE(streams.data.atEnd()) << length;
        EXPECT_EQ(streams.hasStrings, length > 0);
        EXPECT_EQ(length > 0 ? streams.strings.readTU().size() : 0, length);
        EXPECT_TRUE(streams.strings.atEnd());
        EXPECT_EQ(streams.handles.readH().value, 0x12u);
        EXPECT_FALSE(streams.failed());
    }
}

TEST(RecordStreams, ImpossibleStringSizesFail)
{
    const std::vector<std::uint8_t> ones(8, 0xFF);
    for (std::size_t end = 0; end <= 64; ++end)
        EXPECT_TRUE(splitRecord(dwg::Version::Ac1024, ones, 0, end).failed()) << end;
    EXPECT_TRUE(splitRecord(dwg::Version::Ac1024, ones, 0, 65).failed());
    EXPECT_FALSE(splitRecord(dwg::Version::Ac1018, ones, 0, 64).failed());
}
