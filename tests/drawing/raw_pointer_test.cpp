// What an object that nobody understands refers to: its bytes are not ours to change.

#include <db/tv_db_layout.h>
#include <dwg/bit_writer.h>
#include <dwg/raw_save.h>

#include "real_drawing.h"

namespace {

constexpr std::uint8_t kSoftPointer = 4, kHardPointer = 5;

dwg::ClassRecord unknownClass(dwg::Version version)
{
    dwg::ClassRecord record;
    record.dxfName = dwg::asciiText(version, "NOBODYS_OBJECT");
    record.cppName = dwg::asciiText(version, "NobodysObject");
    record.application = dwg::asciiText(version, "Nobody");
    record.instances = 1;
    return record;
}

/// An object of that class with one reference, as another program might have left it.
std::vector<std::uint8_t> unknownObject(dwg::Version version, std::uint16_t type,
                                        std::uint64_t handle, std::uint64_t owner,
                                        std::uint8_t code, std::uint64_t target)
{
    dwg::BitWriter data;
    hasHandleStreamSize(version) ? data.writeOT(type) : data.writeBS(type);
    const std::size_t sizeAt = data.bitCount();
    if (!hasHandleStreamSize(version))
        data.writeRL(0);
    data.writeH(0, handle);
    data.writeBS(0); // no extended data
    data.writeBL(0); // no reactors
    if (version >= dwg::Version::Ac1018)
        data.writeB(true); // no extension dictionary
    if (version >= dwg::Version::Ac1027)
        data.writeB(false); // nothing outside of it
    data.writeRL(0xDEADBEEF);
    if (hasStringStream(version))
        data.writeB(false); // no texts
    const std::size_t end = data.bitCount();
    data.writeH(4, owner);
    if (version < dwg::Version::Ac1018)
        data.writeH(3, 0);
    data.writeH(code, target);
    if (!hasHandleStreamSize(version))
        data.patchRL(sizeAt, static_cast<std::uint32_t>(end));
    return frameRecord(version, data.take(), end);
}

/// A minimal drawing with such an object, which refers to a layout that was added to it.
class RawPointerTest : public testing::TestWithParam<std::string>
{
protected:
    void make(std::uint8_t code)
    {
        const auto before = openBytes(minimalDrawing("line-" + GetParam() + ".dwg"));
        TvDbObjectId added;
        ASSERT_EQ(db::addLayout(*before, TvString(u"Second"), added), TvStatus::Ok);
        layout = added.handle().value();
        const auto bytes = before->toBytes(db::FileFormat::Dwg);
        ASSERT_TRUE(bytes);
        const auto raw = dwg::RawDrawing::open(*bytes);
        ASSERT_TRUE(raw);
        dwg::ClassTable classes = raw->classes();
        const std::uint16_t type = classes.add(unknownClass(raw->version()));
        unknown = raw->header().handSeed();
        dwg::RawChanges changes;
        changes.sections["AcDb:Classes"] = classes.section();
        changes.objects[unknown] = unknownObject(raw->version(), type, unknown,
                                                 raw->header().handle("DNAMEDOBJ"), code, layout);
        const auto changed = dwg::save(*raw, changes);
        ASSERT_TRUE(changed);
        file = *changed;
        drawing = openBytes(file);
    }
    TvStatusCode eraseLayout()
    {
        TvDbObjectPointer<TvDbLayout> object(drawing->find(layout), TvDb::kForWrite);
        return object ? object->erase() : object.openStatus();
    }

    std::uint64_t layout = 0, unknown = 0;
    std::vector<std::uint8_t> file;
    std::unique_ptr<TvDbDatabase> drawing;
};

INSTANTIATE_TEST_SUITE_P(Versions, RawPointerTest, testing::ValuesIn(versionNames()),
                         [](const auto& version) { return version.param; });

} // namespace

TEST_P(RawPointerTest, WhatAnUnknownObjectCannotDoWithoutIsNotErasedFromTheFile)
{
    ASSERT_NO_FATAL_FAILURE(make(kHardPointer));
    ASSERT_EQ(eraseLayout(), TvStatus::Ok);
    const auto refused = drawing->toBytes(db::FileFormat::Dwg);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.status().reason(), base::Reason::DbErasedInUse);
    EXPECT_EQ(refused.status().arguments().at(0).utf8(), base::hexText(layout).utf8());
    EXPECT_EQ(refused.status().arguments().at(1).utf8(), base::hexText(unknown).utf8());
}

TEST_P(RawPointerTest, ASoftPointerOfAnUnknownObjectMayLeadIntoTheVoid)
{
    ASSERT_NO_FATAL_FAILURE(make(kSoftPointer));
    ASSERT_EQ(eraseLayout(), TvStatus::Ok);
    const auto bytes = drawing->toBytes(db::FileFormat::Dwg);
    ASSERT_TRUE(bytes) << static_cast<int>(bytes.status().reason());
    const auto before = dwg::RawDrawing::open(file), after = dwg::RawDrawing::open(*bytes);
    ASSERT_TRUE(before && after);
    EXPECT_FALSE(after->find(layout));
    const auto kept = before->objectBytes(unknown), now = after->objectBytes(unknown);
    ASSERT_TRUE(kept && now);
    EXPECT_TRUE(std::equal(kept->begin(), kept->end(), now->begin(), now->end()));
}
