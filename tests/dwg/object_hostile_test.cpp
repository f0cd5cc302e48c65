// Objects that lie: a status, in bounded time and memory, and never a crash.

#include <random>

#include <db/record_editor.h>
#include <dwg/object_codec.h>

#include "object_samples.h"

namespace {

const dwg::ObjectClasses& noClasses()
{
    static const dwg::ObjectClasses classes;
    return classes;
}

const dwg::ObjectClasses& withDimAssoc()
{
    static const dwg::ObjectClasses classes = [] {
        dwg::ObjectClasses made;
        made.add(500, "DIMASSOC", false);
        made.add(501, "ACAD_TABLE", true);
        return made;
    }();
    return classes;
}

dwg::ObjectContext contextOf(dwg::Version version,
                             const dwg::ObjectClasses& classes = withDimAssoc())
{
    return {version, classes, dwg::CodePage::numbered(30)};
}

/// An object of 2000, whose body @p write puts down behind its head; its handles are @p handles.
template <class Write>
std::vector<std::uint8_t> objectOf2000(std::uint16_t type, Write write,
                                       const dwg::BitWriter& handles)
{
    dwg::BitWriter bits;
    bits.writeBS(type);
    const std::size_t sizeAt = bits.bitCount();
    bits.writeRL(0);
    bits.writeH(0, 0x42);
    write(bits);
    const std::size_t end = bits.bitCount();
    bits.append(handles);
    bits.padToByte();
    bits.patchRL(sizeAt, static_cast<std::uint32_t>(end));
    return dwg::frameRecord(dwg::Version::Ac1015, bits.take(), end);
}

/// The status of decoding @p bytes, and what the record took.
struct Outcome {
    base::Failure failure;
    std::size_t words;
};

Outcome decode(const std::vector<std::uint8_t>& bytes, const dwg::ObjectContext& context)
{
    const auto object = dwg::parseRecord(context.version, bytes);
    EXPECT_TRUE(object);
    db::Record record;
    const base::Status status = dwg::decodeObject(*object, context, record);
    return {status.failure(), record.words().size()};
}

// The common part of an object without reactors, in 2000.
void writeCommon(dwg::BitWriter& bits)
{
    bits.writeBS(0); // no extended data
    bits.writeBL(0); // no reactors
}

constexpr std::uint16_t kDictionary = 42;

std::vector<std::uint8_t> dictionaryWithCount(std::uint32_t count)
{
    const auto body = [count](dwg::BitWriter& bits) {
        writeCommon(bits);
        bits.writeBL(count);
        bits.writeBS(1);
        bits.writeRC(0);
    };
    return objectOf2000(kDictionary, body, {});
}

// Whatever decodes can be written, and what was written is stable.
void expectConsistent(const std::vector<std::uint8_t>& bytes, const dwg::ObjectContext& context)
{
    const auto object = dwg::parseRecord(context.version, bytes);
    if (!object)
        return;
    const auto record = dwg::decodeObject(*object, context);
    if (!record)
        return;
    const auto written = dwg::encodeObject(*record, context);
    ASSERT_TRUE(written);
    const auto again = dwg::parseRecord(context.version, *written);
    ASSERT_TRUE(again);
    const auto reread = dwg::decodeObject(*again, context);
    ASSERT_TRUE(reread);
    EXPECT_TRUE(*reread == *record);
    EXPECT_EQ(*dwg::encodeObject(*reread, context), *written);
}

} // namespace

TEST(ObjectHostile, CountsBeyondTheObjectAreRefusedWithoutMemory)
{
    for (const std::uint32_t count : {1u, 1000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        const Outcome outcome =
            decode(dictionaryWithCount(count), contextOf(dwg::Version::Ac1015, noClasses()));
        EXPECT_NE(outcome.failure, base::Failure::None) << count;
        EXPECT_LT(outcome.words, 10000u) << count;
    }
}

TEST(ObjectHostile, ProductsOfCountsAreRefusedWithoutMemory)
{
    const auto body = [](dwg::BitWriter& bits) {
        bits.writeBS(0); // no extended data
        bits.writeB(false);
        bits.writeBB(2);
        bits.writeBL(0);
        bits.writeB(true);
        bits.writeBS(256);
        bits.writeBD(1.0);
        bits.writeBB(0);
        bits.writeBB(0);
        bits.writeBS(0);
        bits.writeRC(29);
        bits.write3BD({0, 0, 0});
        bits.writeBB(3);
        bits.writeBD(0);
        bits.write3BD({0, 0, 1});
        bits.writeB(false);
        bits.writeBS(0);
        bits.write3BD({1, 0, 0});
        bits.writeBL(0);          // columns
        bits.writeBL(0x10000000); // rows: more than there are bits
        for (int i = 0; i < 100; ++i)
            bits.writeBB(2);
    };
    const Outcome outcome = decode(objectOf2000(501, body, {}), contextOf(dwg::Version::Ac1015));
    EXPECT_EQ(outcome.failure, base::Failure::Damaged);
    EXPECT_LT(outcome.words, 20000u);
}

TEST(ObjectHostile, StructsWithinThemselvesEnd)
{
    const auto body = [](dwg::BitWriter& bits) {
        writeCommon(bits);
        bits.writeBL(1); // one reference
        bits.writeB(false);
        bits.writeRC(0);
        for (int i = 0; i < 20000; ++i) {
            bits.writeBS(0); // class name
            bits.writeRC(0);
            bits.writeBL(0);
            bits.writeBD(0);
            bits.write3BD({0, 0, 0});
            bits.writeB(true); // and another one inside
        }
    };
    const Outcome outcome = decode(objectOf2000(500, body, {}), contextOf(dwg::Version::Ac1015));
    EXPECT_EQ(outcome.failure, base::Failure::Damaged);
    EXPECT_LT(outcome.words, 10000u);
}

TEST(ObjectHostile, BitsThatAreLeftOverMakeItUnsupported)
{
    const auto body = [](dwg::BitWriter& bits) {
        writeCommon(bits);
        bits.writeBL(0);
        bits.writeBS(1);
        bits.writeRC(0);
        bits.writeB(true); // nobody asked for this one
    };
    dwg::BitWriter handles;
    handles.writeH(4, 0);
    handles.writeH(3, 0);
    EXPECT_EQ(
        decode(objectOf2000(kDictionary, body, handles), contextOf(dwg::Version::Ac1015)).failure,
        base::Failure::Unsupported);
    handles.writeH(2, 0x99); // nor for another reference
    EXPECT_EQ(
        decode(objectOf2000(kDictionary, body, handles), contextOf(dwg::Version::Ac1015)).failure,
        base::Failure::Unsupported);
}

TEST(ObjectHostile, AnUnknownClassIsUnsupportedButItsCommonPartIsKnown)
{
    const auto body = [](dwg::BitWriter& bits) {
        writeCommon(bits);
        bits.writeRL(0xDEADBEEF);
    };
    dwg::BitWriter handles;
    handles.writeH(4, 0x1F);
    handles.writeH(3, 0x20);
    handles.writeH(5, 0x21);
    const auto bytes = objectOf2000(777, body, handles);
    const auto context = contextOf(dwg::Version::Ac1015);
    EXPECT_EQ(decode(bytes, context).failure, base::Failure::Unsupported);
    const auto object = dwg::parseRecord(dwg::Version::Ac1015, bytes);
    const auto common = dwg::decodeCommonPart(*object, context);
    ASSERT_TRUE(common);
    EXPECT_EQ(common->handle("owner"), 0x1Fu);
    EXPECT_EQ(common->handle("xdict"), 0x20u);
    EXPECT_EQ(common->array("ids").handle(0), 0x21u);
    EXPECT_EQ(common->bits("data").count, 32u);
    EXPECT_EQ(*dwg::encodeObject(*common, context), bytes);
}

TEST(ObjectHostile, AClassOfTheWrongKindIsNotDecoded)
{
    dwg::ObjectClasses classes;
    classes.add(500, "DIMASSOC", true); // says entity
    EXPECT_EQ(classes.find(500), nullptr);
    EXPECT_TRUE(classes.isEntity(500));
    EXPECT_EQ(classes.find(501), nullptr);
}

TEST(ObjectHostile, ReferencesOutOfRangeAreRefused)
{
    const auto failureOf = [](std::uint8_t code, std::uint64_t value) {
        const auto body = [](dwg::BitWriter& bits) {
            writeCommon(bits);
            bits.writeBL(0);
            bits.writeBS(1);
            bits.writeRC(0);
        };
        dwg::BitWriter handles;
        handles.writeH(code, value);
        handles.writeH(3, 0);
        return decode(objectOf2000(kDictionary, body, handles), contextOf(dwg::Version::Ac1015))
            .failure;
    };
    EXPECT_EQ(failureOf(4, 0x1F), base::Failure::None);
    EXPECT_EQ(failureOf(0xC, 0x42), base::Failure::None); // down to nothing
    EXPECT_EQ(failureOf(0xC, 0x43), base::Failure::Damaged);
    EXPECT_EQ(failureOf(4, std::uint64_t(1) << 60), base::Failure::Damaged);
    EXPECT_EQ(failureOf(6, 3), base::Failure::Damaged);
}

TEST(ObjectHostile, TruncatedAtEveryByteOrWithEachByteChanged)
{
    for (const auto& sample : sampleDrawings()) {
        if (!sample->name.starts_with("line-"))
            continue;
        std::map<int, int> tried;
        sample->forEachObject([&](const dwg::ObjectRecord& object) {
            if (++tried[object.type] > 1)
                return;
            std::vector<std::uint8_t> bytes(object.frame.begin(), object.frame.end());
            for (std::size_t size = 0; size < bytes.size(); ++size)
                expectConsistent({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)},
                                 sample->context);
            for (std::uint8_t& byte : bytes) {
                const std::uint8_t before = byte;
                for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
                    byte = static_cast<std::uint8_t>(value);
                    expectConsistent(bytes, sample->context);
                }
                byte = before;
            }
        });
    }
}

TEST(ObjectHostile, RandomChangesOfAllKindsOfObjects)
{
    std::mt19937 random(20150);
    for (const auto& sample : sampleDrawings()) {
        if (!sample->name.starts_with("mixed-"))
            continue;
        std::map<int, int> tried;
        sample->forEachObject([&](const dwg::ObjectRecord& object) {
            if (++tried[object.type] > 1 || object.frame.size() > 20000)
                return;
            for (int round = 0; round < 10; ++round) {
                std::vector<std::uint8_t> bytes(object.frame.begin(), object.frame.end());
                for (int i = 0; i < 1 + round % 3; ++i)
                    bytes[random() % bytes.size()] ^= static_cast<std::uint8_t>(1u << random() % 8);
                expectConsistent(bytes, sample->context);
            }
        });
    }
}

TEST(ObjectHostile, TheBodyOfOneClassAsAnother)
{
    const auto isFine = [](const dwg::ObjectRecord& object, const dwg::ObjectContext& context) {
        db::Record record;
        const base::Status status = dwg::decodeObject(object, context, record);
        return !status || record.words().size() < 64 * object.frame.size() + 20000;
    };
    for (const auto& sample : sampleDrawings()) {
        if (!sample->name.starts_with("mixed-"))
            continue;
        std::map<int, int> tried;
        sample->forEachObject([&](const dwg::ObjectRecord& object) {
            if (++tried[object.type] > 1)
                return;
            for (std::uint16_t type = 1; type < 560; ++type) {
                dwg::ObjectRecord disguised = object;
                disguised.type = type;
                EXPECT_TRUE(isFine(disguised, sample->context)) << type;
            }
        });
    }
}
