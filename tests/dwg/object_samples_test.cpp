// Every object of the real drawings: read to its last bit, written back bit for bit.

#include <map>

#include <dwg/header_record.h>

#include "object_samples.h"

namespace {

using Counts = std::map<std::string, int>;

std::string listed(const Counts& counts)
{
    std::string text;
    for (const auto& [name, count] : counts)
        text += name + ":" + std::to_string(count) + " ";
    return text;
}

bool sameBytes(const base::Result<std::vector<std::uint8_t>>& bytes, dwg::Bytes expected)
{
    return bytes && std::equal(bytes->begin(), bytes->end(), expected.begin(), expected.end());
}

#define NEEDS_SAMPLES()                                                                            \
    if (sampleDrawings().empty())                                                                  \
    GTEST_SKIP() << "no drawings in " << drawingsFolder()

} // namespace

TEST(ObjectSamples, EveryObjectWithATableIsReadToItsLastBit)
{
    NEEDS_SAMPLES();
    for (const auto& sample : sampleDrawings()) {
        Counts refused;
        int without = 0;
        sample->forEachObject([&](const dwg::ObjectRecord& object) {
            if (!sample->classes.find(object.type))
                ++without;
            else if (!dwg::decodeObject(object, sample->context))
                ++refused[sample->typeName(object)];
        });
        EXPECT_EQ(listed(refused), "") << sample->name;
        EXPECT_EQ(without, sample->expected["objects_without_field_table"]) << sample->name;
    }
}

TEST(ObjectSamples, EveryObjectComesBackBitForBit)
{
    NEEDS_SAMPLES();
    for (const auto& sample : sampleDrawings()) {
        Counts different;
        sample->forEachObject([&](const dwg::ObjectRecord& object) {
            const bool known = sample->classes.find(object.type);
            const auto record = known ? dwg::decodeObject(object, sample->context)
                                      : dwg::decodeCommonPart(object, sample->context);
            if (!record || !sameBytes(dwg::encodeObject(*record, sample->context), object.frame))
                ++different[sample->typeName(object)];
        });
        EXPECT_EQ(listed(different), "") << sample->name;
    }
}

TEST(ObjectSamples, TheCommonPartOfEveryObjectIsKnown)
{
    NEEDS_SAMPLES();
    for (const auto& sample : sampleDrawings())
        sample->forEachObject([&](const dwg::ObjectRecord& object) {
            const auto common = dwg::decodeCommonPart(object, sample->context);
            ASSERT_TRUE(common) << sample->name << " " << std::hex << object.handle;
            if (const auto full = dwg::decodeObject(object, sample->context)) {
                EXPECT_EQ(common->handle("owner"), full->handle("owner"));
                EXPECT_EQ(common->handle("layer"), full->handle("layer"));
            }
        });
}

TEST(ObjectSamples, CountsByClassAreThoseExpected)
{
    NEEDS_SAMPLES();
    for (const auto& sample : sampleDrawings()) {
        Counts counts;
        sample->forEachObject(
            [&](const dwg::ObjectRecord& object) { ++counts[sample->typeName(object)]; });
        EXPECT_EQ(nlohmann::json(counts), sample->expected["counts"]) << sample->name;
    }
}

TEST(ObjectSamples, ItemsOfExtendedDataAndXrecordsAllFollowTheRules)
{
    NEEDS_SAMPLES();
    int lists = 0;
    for (const auto& sample : sampleDrawings())
        sample->forEachObject([&](const dwg::ObjectRecord& object) {
            const auto record = dwg::decodeObject(object, sample->context);
            if (!record)
                return;
            const db::ArrayView groups = record->array("eed");
            for (std::uint32_t i = 0; i < groups.size(); ++i, ++lists)
                EXPECT_TRUE(groups[i].bytes("data").empty()) << sample->name;
            if (record->has("content") && record->classDef()->name() == "XRECORD") {
                EXPECT_TRUE(record->structure("content").bytes("data").empty()) << sample->name;
                ++lists;
            }
        });
    EXPECT_GT(lists, 500);
}

TEST(ObjectSamples, HeaderVariablesAreReadAndComeBackBitForBit)
{
    NEEDS_SAMPLES();
    for (const auto& sample : sampleDrawings()) {
        const auto section = sample->drawing.section("AcDb:Header");
        ASSERT_TRUE(section) << sample->name;
        const dwg::Version version = sample->drawing.version();
        const auto header = dwg::decodeHeader(version, *section, sample->context.codePage);
        ASSERT_TRUE(header) << sample->name;
        const auto bytes = dwg::encodeHeader(*header, version, sample->context.codePage);
        ASSERT_TRUE(bytes) << sample->name;
        EXPECT_TRUE(sameBytes(bytes, section->first(bytes->size()))) << sample->name;
        const nlohmann::json& expected = sample->expected;
        EXPECT_EQ(header->handle("HANDSEED"), hexValue(expected["handseed"])) << sample->name;
        EXPECT_EQ(header->integer("INSUNITS"), expected["INSUNITS"]) << sample->name;
        EXPECT_EQ(header->integer("TILEMODE"), expected["TILEMODE"]) << sample->name;
        EXPECT_EQ(header->integer("PSLTSCALE"), expected["PSLTSCALE"]) << sample->name;
        EXPECT_EQ(plainText(header->text("FINGERPRINTGUID")), expected["FINGERPRINTGUID"]);
        EXPECT_EQ(nlohmann::json(header->date("TDCREATE")), expected["created"]) << sample->name;
        EXPECT_EQ(nlohmann::json(header->date("TDUPDATE")), expected["updated"]) << sample->name;
    }
}
