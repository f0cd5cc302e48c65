#include "drawings.h"

#include <aux_header.h>
#include <dwg/bit_writer.h>
#include <dwg/raw_save.h>

using dwg::RawChanges;
using dwg::RawDrawing;
using Buffer = std::vector<std::uint8_t>;

namespace {

const char* const kWritable[] = {"ac1015", "ac1018", "ac1021", "ac1024", "ac1027", "ac1032"};

// Every drawing that this version of the test data has, our own and the real ones.
std::vector<std::pair<std::string, Buffer>> drawings()
{
    std::vector<std::pair<std::string, Buffer>> all;
    for (const std::string version : kWritable) {
        for (const char* kind : {"empty-", "line-"})
            all.emplace_back(kind + version, minimalDrawing(kind + version + ".dwg"));
        for (const auto& [name, facts] : realDrawings(version))
            if (!name.starts_with("empty-") && !name.starts_with("line-")) // are among ours
                all.emplace_back(name, readFile(drawingsFolder() / name));
    }
    return all;
}

RawDrawing opened(const Buffer& file)
{
    auto drawing = RawDrawing::open(file);
    EXPECT_TRUE(drawing);
    return std::move(*drawing);
}

Buffer saved(const RawDrawing& drawing, const RawChanges& changes)
{
    auto bytes = dwg::save(drawing, changes);
    EXPECT_TRUE(bytes) << static_cast<int>(bytes.status().reason());
    return bytes ? *bytes : Buffer();
}

Buffer bytesOf(const RawDrawing& drawing, std::uint64_t handle)
{
    const auto bytes = drawing.objectBytes(handle);
    EXPECT_TRUE(bytes) << std::hex << handle;
    return bytes ? Buffer(bytes->begin(), bytes->end()) : Buffer();
}

// The record of an object with @p extra bytes of payload behind its head, as another object might
// have.
Buffer recordWith(const RawDrawing& drawing, std::uint64_t handle, std::size_t extra)
{
    const dwg::Version version = drawing.version();
    dwg::BitWriter data;
    hasHandleStreamSize(version) ? data.writeOT(0x4F) : data.writeBS(0x4F);
    const std::size_t sizeAt = data.bitCount();
    if (!hasHandleStreamSize(version))
        data.writeRL(0);
    data.writeH(0, handle);
    for (std::size_t i = 0; i < extra; ++i)
        data.writeRC(static_cast<std::uint8_t>(i * 7));
    const std::size_t end = data.bitCount();
    data.writeH(4, 0xC);
    if (!hasHandleStreamSize(version))
        data.patchRL(sizeAt, static_cast<std::uint32_t>(end));
    return frameRecord(version, data.take(), end);
}

void expectAllOthersUnchanged(const RawDrawing& before, const RawDrawing& after,
                              const RawChanges& changes)
{
    for (const auto& location : before.objects()) {
        if (changes.objects.count(location.handle) || changes.erased.count(location.handle))
            continue;
        ASSERT_EQ(bytesOf(before, location.handle), bytesOf(after, location.handle))
            << std::hex << location.handle;
    }
}

void expectNothingWrong(const RawDrawing& drawing)
{
    for (const auto& finding : drawing.check())
        ADD_FAILURE() << static_cast<int>(finding.kind) << " " << finding.section << " " << std::hex
                      << finding.number;
}

std::uint64_t freeHandle(const RawDrawing& drawing)
{
    return drawing.header().handSeed();
}

} // namespace

TEST(RawSave, ACopyKeepsEveryObjectAndSection)
{
    for (const auto& [name, file] : drawings()) {
        SCOPED_TRACE(name);
        const RawDrawing before = opened(file);
        const RawDrawing after = opened(saved(before, {}));
        expectNothingWrong(after);
        expectAllOthersUnchanged(before, after, {});
        EXPECT_EQ(after.objects().size(), before.objects().size());
        EXPECT_EQ(after.sectionNames(), before.sectionNames());
        EXPECT_EQ(after.header().handSeed(), before.header().handSeed());
    }
}

TEST(RawSave, LongerShorterAddedAndErasedObjectsLeaveTheRestAlone)
{
    for (const auto& [name, file] : drawings()) {
        SCOPED_TRACE(name);
        const RawDrawing before = opened(file);
        const std::uint64_t longer = before.objects()[before.objects().size() / 3].handle;
        const std::uint64_t shorter = before.objects()[before.objects().size() / 2].handle;
        const std::uint64_t gone = before.objects()[before.objects().size() * 2 / 3].handle;
        const std::uint64_t added = freeHandle(before);
        RawChanges changes;
        changes.objects[longer] = recordWith(before, longer, 70'000);
        changes.objects[shorter] = recordWith(before, shorter, 1);
        changes.objects[added] = recordWith(before, added, 100);
        changes.erased.insert(gone);

        const RawDrawing after = opened(saved(before, changes));

        expectNothingWrong(after);
        expectAllOthersUnchanged(before, after, changes);
        for (const auto& [handle, record] : changes.objects)
            EXPECT_EQ(bytesOf(after, handle), record);
        EXPECT_EQ(after.find(gone), nullptr);
        EXPECT_EQ(after.objects().size(), before.objects().size());
        EXPECT_EQ(after.header().handSeed(), added + 1);
        EXPECT_EQ(after.sectionNames(), before.sectionNames());
    }
}

TEST(RawSave, UndoBringsTheOriginalBack)
{
    for (const auto& [name, file] : drawings()) {
        SCOPED_TRACE(name);
        const RawDrawing before = opened(file);
        const std::uint64_t added = freeHandle(before);
        const std::uint64_t changed = before.objects()[5].handle;
        RawChanges edit, undo;
        edit.objects[added] = recordWith(before, added, 33);
        edit.objects[changed] = recordWith(before, changed, 3'000);
        undo.erased.insert(added);
        undo.objects[changed] = bytesOf(before, changed);
        const RawDrawing between = opened(saved(before, edit));
        const RawDrawing after = opened(saved(between, undo));
        expectNothingWrong(after);
        EXPECT_EQ(after.objects().size(), before.objects().size());
        expectAllOthersUnchanged(before, after, {});
    }
}

TEST(RawSave, ManyEditsLoseNothingAndDoNotGrowTheFile)
{
    for (const auto& [name, file] : drawings()) {
        SCOPED_TRACE(name);
        const RawDrawing original = opened(file);
        Buffer bytes = saved(original, {});
        const std::size_t first = bytes.size();
        const auto largest = first + 6'000;
        const std::size_t rounds = file.size() < 20'000 ? 20 : 5;
        for (std::size_t round = 0; round < rounds; ++round) {
            const RawDrawing drawing = opened(bytes);
            const std::uint64_t handle =
                original.objects()[round * 7 % original.objects().size()].handle;
            RawChanges change;
            change.objects[handle] = recordWith(drawing, handle, 2'000 + round % 3 * 500);
            if (round >= 1) { // and the one before as it was
                const std::uint64_t last =
                    original.objects()[(round - 1) * 7 % original.objects().size()].handle;
                if (last != handle)
                    change.objects[last] = bytesOf(original, last);
            }
            bytes = saved(drawing, change);
            ASSERT_LT(bytes.size(), largest) << round;
        }
        const RawDrawing after = opened(bytes);
        expectNothingWrong(after);
        EXPECT_EQ(after.objects().size(), original.objects().size());
    }
}

TEST(RawSave, HeaderVariablesAreCarriedToEveryPlace)
{
    for (const auto& [name, file] : drawings()) {
        SCOPED_TRACE(name);
        const RawDrawing before = opened(file);
        RawChanges changes;
        changes.header = before.header();
        ASSERT_TRUE(changes.header->set("TDUPDATE", dwg::DateStamp{2461000, 1234}));
        ASSERT_TRUE(changes.header->set("TILEMODE", 1 - before.header().integer("TILEMODE")));
        ASSERT_TRUE(changes.header->setHandle("HANDSEED", 0x123456));
        ASSERT_TRUE(changes.header->set("MENUNAME", asciiText(before.version(), "another menu")));

        const RawDrawing after = opened(saved(before, changes));

        expectNothingWrong(after);
        expectAllOthersUnchanged(before, after, {});
        for (const auto variable : after.header().names())
            EXPECT_EQ(*after.header().find(variable), *changes.header->find(variable)) << variable;
        const auto aux = *after.section("AcDb:AuxHeader");
        const Buffer seed{0x56, 0x34, 0x12, 0, 0, 0, 0, 0};
        EXPECT_NE(std::search(aux.begin(), aux.end(), seed.begin(), seed.end()), aux.end());
    }
}

TEST(RawSave, EverySaveIsCountedAndTheRestOfTheAuxiliaryHeaderStays)
{
    for (const auto& [name, file] : drawings()) {
        SCOPED_TRACE(name);
        const RawDrawing before = opened(file);
        const auto old = *before.section("AcDb:AuxHeader");
        const auto count = dwg::saveCountOf(old, before.header());
        ASSERT_TRUE(count);
        EXPECT_GT(*count, 0u);
        EXPECT_LT(*count, 1000u) << "nobody saves as often";
        RawChanges changes;
        changes.sections["AcDb:Template"] = {0, 0, 1, 0};

        const RawDrawing after = opened(saved(before, changes));

        const auto now = *after.section("AcDb:AuxHeader");
        EXPECT_EQ(dwg::saveCountOf(now, after.header()), *count + 1);
        ASSERT_EQ(now.size(), old.size());
        std::size_t others = 0;
        for (std::size_t at = 0; at < now.size(); ++at)
            others += now[at] != old[at];
        EXPECT_EQ(others, 2u) << "the count stands twice, and no low byte of it overflows here";
    }
}

TEST(RawSave, AReplacedSectionComesBack)
{
    for (const auto& [name, file] : drawings()) {
        SCOPED_TRACE(name);
        const RawDrawing before = opened(file);
        RawChanges changes;
        auto classes = before.classes();
        dwg::ClassRecord record;
        record.application = asciiText(before.version(), "Sample");
        record.cppName = asciiText(before.version(), "AcDbSample");
        record.dxfName = asciiText(before.version(), "SAMPLE");
        const std::uint16_t number = classes.add(record);
        changes.sections["AcDb:Classes"] = classes.section();
        changes.sections["AcDb:Template"] = {0, 0, 1, 0};

        const RawDrawing after = opened(saved(before, changes));

        expectNothingWrong(after);
        ASSERT_NE(after.classes().findNamed("SAMPLE"), nullptr);
        EXPECT_EQ(after.classes().findNamed("SAMPLE")->number, number);
        const auto measurement = *after.section("AcDb:Template");
        EXPECT_EQ(Buffer(measurement.begin(), measurement.end()), (Buffer{0, 0, 1, 0}));
    }
}

TEST(RawSave, RecordsThatAreNotWholeAreRefused)
{
    for (const auto& [name, file] : drawings()) {
        SCOPED_TRACE(name);
        const RawDrawing drawing = opened(file);
        const std::uint64_t handle = drawing.objects()[0].handle;
        const auto refused = [&](const Buffer& record) {
            RawChanges changes;
            changes.objects[handle] = record;
            return dwg::save(drawing, changes).status().reason();
        };
        Buffer record = recordWith(drawing, handle, 10);
        EXPECT_EQ(refused({}), base::Reason::DwgRecordInvalid);
        EXPECT_EQ(refused(recordWith(drawing, handle + 1, 10)), base::Reason::DwgRecordInvalid);
        EXPECT_EQ(refused(Buffer(record.begin(), record.end() - 1)),
                  base::Reason::DwgRecordInvalid);
        record.back() ^= 1;
        EXPECT_EQ(refused(record), base::Reason::DwgRecordInvalid);
        RawChanges eraseUnknown;
        eraseUnknown.erased.insert(0x7777777);
        EXPECT_EQ(dwg::save(drawing, eraseUnknown).status().reason(),
                  base::Reason::DwgRecordInvalid);
        RawChanges mapChange;
        mapChange.sections["AcDb:Handles"] = {0, 2, 0, 0};
        EXPECT_EQ(dwg::save(drawing, mapChange).status().reason(),
                  base::Reason::DwgSectionNotWritten);
    }
}

TEST(RawSave, VerificationSeesEveryDifference)
{
    for (const auto& [name, file] : drawings()) {
        SCOPED_TRACE(name);
        const RawDrawing drawing = opened(file);
        const std::uint64_t handle = drawing.objects()[3].handle;
        RawChanges change;
        change.objects[handle] = recordWith(drawing, handle, 10);
        const Buffer bytes = saved(drawing, change);
        EXPECT_TRUE(dwg::verifySaved(drawing, change, bytes));
        EXPECT_FALSE(dwg::verifySaved(drawing, {}, bytes));
        EXPECT_FALSE(dwg::verifySaved(drawing, change, saved(drawing, {})));
        EXPECT_FALSE(dwg::verifySaved(drawing, change, Buffer(100, 0)));
    }
}
