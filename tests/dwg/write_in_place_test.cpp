// Drawings written in the version they came in.

#include <dwg/header_record.h>
#include <dwg/raw_drawing.h>

#include "drawing_changes.h"
#include "dwg_file.h"

namespace {

constexpr std::uint64_t kLine = 0x2F, kModelSpace = 0x1F;

std::vector<std::uint8_t> copied(const base::Result<dwg::Bytes>& bytes)
{
    return bytes ? std::vector<std::uint8_t>(bytes->begin(), bytes->end())
                 : std::vector<std::uint8_t>();
}

const dwg::RawDrawing& raw(const db::DrawingFile& file)
{
    return static_cast<const dwg::DwgFile&>(file).raw();
}

/// How many objects of @p before are there with the very same bytes.
std::size_t sameObjects(const db::DrawingFile& before, const db::DrawingFile& after)
{
    std::size_t same = 0;
    for (const std::uint64_t handle : before.handles())
        same += copied(raw(before).objectBytes(handle)) == copied(raw(after).objectBytes(handle));
    return same;
}

} // namespace

TEST(WriteInPlace, AnUnchangedDrawingKeepsEveryBitOfItsObjectsAndSections)
{
    for (const auto& [name, expected] : realDrawings(".dwg")) {
        SCOPED_TRACE(name);
        const auto before = opened(readFile(drawingsFolder() / name));
        const auto after = DrawingChanges(*before).written();
        ASSERT_TRUE(after);
        EXPECT_EQ(sameObjects(*before, *after), before->handles().size());
        EXPECT_EQ(after->handles().size(), before->handles().size());
        for (const std::string& section : raw(*before).sectionNames())
            if (section != "AcDb:Preview" && section != "AcDb:Handles") {
                EXPECT_EQ(copied(raw(*before).section(section)),
                          copied(raw(*after).section(section)))
                    << section;
            }
        EXPECT_TRUE(before->preview() == after->preview());
        EXPECT_TRUE(before->summary() == after->summary());
    }
}

TEST(WriteInPlace, RecordsThatAreEqualLeaveTheirObjectsAlone)
{
    for (const db::Version version : db::kVersions) {
        const auto before = minimal("line", version);
        DrawingChanges changes(*before);
        for (const std::uint64_t handle : before->handles())
            changes.edit(handle);
        const auto after = changes.written();
        ASSERT_TRUE(after);
        EXPECT_EQ(sameObjects(*before, *after), before->handles().size()) << versionName(version);
    }
}

TEST(WriteInPlace, OneChangedObjectIsTheOnlyOneThatDiffers)
{
    for (const db::Version version : db::kVersions) {
        SCOPED_TRACE(versionName(version));
        const auto before = minimal("line", version);
        DrawingChanges changes(*before);
        changes.edit(kLine).setPoint("end", {4, 5, 6});
        const auto after = changes.written();
        ASSERT_TRUE(after);
        EXPECT_EQ(recordOf(*after, kLine).point("end"), (db::Point{4, 5, 6}));
        EXPECT_EQ(sameObjects(*before, *after), before->handles().size() - 1);
        EXPECT_TRUE(after->check().empty());
    }
}

TEST(WriteInPlace, ANewClassIsNamedNumberedAndCounted)
{
    for (const db::Version version : db::kVersions) {
        SCOPED_TRACE(versionName(version));
        const auto before = minimal("line", version);
        DrawingChanges changes(*before);
        db::Record scale = newRecord("SCALE", changes.nextHandle(), version);
        db::RecordEditor(scale).setText("name", u"1:2");
        db::RecordEditor(scale).setReal("paper_units", 1);
        changes.put(scale);
        const auto after = changes.written();
        ASSERT_TRUE(after);
        const auto kind = after->kind(scale.handle());
        ASSERT_TRUE(kind);
        EXPECT_EQ(kind->className, "SCALE");
        EXPECT_GE(kind->typeNumber, 500);
        EXPECT_TRUE(recordOf(*after, scale.handle()) == scale);
        const db::ClassEntry entry = after->classes().back();
        EXPECT_EQ(entry.cppName, "AcDbScale");
        EXPECT_EQ(entry.instances, version == db::Version::Ac1015 ? 0u : 1u);
        EXPECT_EQ(entry.number, kind->typeNumber);
        EXPECT_GT(after->header()->handle("HANDSEED"), scale.handle());
    }
}

TEST(WriteInPlace, LayoutsAreNumberedAsTheVersionDoesIt)
{
    for (const db::Version version : db::kVersions) {
        SCOPED_TRACE(versionName(version));
        const auto before = minimal("line", version);
        DrawingChanges changes(*before);
        db::Record layout = newRecord("LAYOUT", changes.nextHandle(), version);
        layout.setTypeNumber(82); // as the class has it, which is no number in 2000
        changes.put(layout);
        const auto after = changes.written();
        ASSERT_TRUE(after);
        const auto kind = after->kind(layout.handle());
        ASSERT_TRUE(kind);
        EXPECT_EQ(kind->className, "LAYOUT");
        EXPECT_EQ(kind->typeNumber >= 500, version == db::Version::Ac1015);
    }
}

TEST(WriteInPlace, AClassThatNobodyCanNameIsRefused)
{
    const auto before = minimal("line", db::Version::Ac1032);
    DrawingChanges changes(*before);
    changes.put(newRecord("SECTION_MANAGER", changes.nextHandle(), db::Version::Ac1032));
    const auto refused = changes.write();
    EXPECT_EQ(refused.status().reason(), base::Reason::DwgClassNotNamed);
    EXPECT_EQ(refused.status().arguments().at(0).utf8(), "SECTION_MANAGER");
}

TEST(WriteInPlace, AnErasedObjectIsGoneAndNoLongerCounted)
{
    for (const auto& [name, expected] : realDrawings("mixed")) {
        SCOPED_TRACE(name);
        const auto before = opened(readFile(drawingsFolder() / name));
        std::uint64_t scale = 0;
        for (const std::uint64_t handle : before->handles())
            if (before->kind(handle)->className == "SCALE")
                scale = handle;
        DrawingChanges changes(*before);
        changes.erase(scale);
        const auto after = changes.written();
        ASSERT_TRUE(after);
        EXPECT_EQ(after->kind(scale).status().failure(), base::Failure::NotFound);
        EXPECT_EQ(sameObjects(*before, *after), before->handles().size() - 1);
        const auto countOf = [](const db::DrawingFile& file) {
            for (const db::ClassEntry& entry : file.classes())
                if (entry.dxfName == "SCALE")
                    return entry.instances;
            return 0u;
        };
        if (before->version() != db::Version::Ac1015) {
            EXPECT_EQ(countOf(*after) + 1, countOf(*before));
        }
    }
}

TEST(WriteInPlace, HeaderVariablesAndMeasurementChange)
{
    for (const db::Version version : db::kVersions) {
        SCOPED_TRACE(versionName(version));
        const auto before = minimal("line", version);
        DrawingChanges changes(*before);
        changes.header().setReal("LTSCALE", 2.5);
        changes.header().setText("PROJECTNAME", u"Plan");
        changes.header().setInteger("MEASUREMENT", 1);
        const auto after = changes.written();
        ASSERT_TRUE(after);
        const auto header = after->header();
        EXPECT_EQ(header->real("LTSCALE"), 2.5);
        EXPECT_EQ(header->integer("MEASUREMENT"), 1);
        if (version != db::Version::Ac1015) {
            EXPECT_EQ(header->text("PROJECTNAME"), u"Plan");
        }
        EXPECT_EQ(sameObjects(*before, *after), before->handles().size());
        EXPECT_TRUE(after->check().empty());
    }
}

TEST(WriteInPlace, AChangedSummaryGrowsItsSection)
{
    for (const db::Version version : db::kVersions) {
        SCOPED_TRACE(versionName(version));
        const auto before = minimal("line", version);
        DrawingChanges changes(*before);
        db::SummaryInfo& summary = changes.summary();
        summary.title = u"Gro\u00DFe \u4E2D \u20AC";
        summary.comments = std::u16string(3000, u'x');
        summary.created = {2460000, 123456};
        summary.custom = {{u"Projekt", u"a=b"}, {u"Stand", u""}};
        const auto after = changes.written();
        ASSERT_TRUE(after);
        ASSERT_TRUE(after->summary());
        EXPECT_TRUE(*after->summary() == summary);
        EXPECT_TRUE(after->check().empty());
        DrawingChanges again(*after);
        again.summary().title = u"short";
        const auto shorter = again.written();
        ASSERT_TRUE(shorter);
        EXPECT_EQ(shorter->summary()->title, u"short");
        EXPECT_TRUE(shorter->summary()->custom.empty());
    }
}

TEST(WriteInPlace, In2000ASummaryWithTooManyPropertiesIsRefused)
{
    const auto before = minimal("line", db::Version::Ac1015);
    DrawingChanges changes(*before);
    changes.summary().custom.resize(11, {u"name", u"value"});
    EXPECT_EQ(changes.write().status().reason(), base::Reason::DwgSummaryTooLarge);
}

TEST(WriteInPlace, APreviewIsReplacedAndFound)
{
    for (const db::Version version : db::kVersions) {
        SCOPED_TRACE(versionName(version));
        const auto before = minimal("line", version);
        for (const auto kind : {db::Preview::Kind::Bmp, db::Preview::Kind::Png,
                                db::Preview::Kind::Wmf, db::Preview::Kind::None}) {
            db::Preview wanted;
            wanted.kind = kind;
            wanted.bytes.assign(kind == db::Preview::Kind::None ? 0 : 5000, 7);
            DrawingChanges changes(*before);
            changes.preview() = wanted;
            const auto after = changes.written();
            ASSERT_TRUE(after);
            EXPECT_TRUE(after->preview() == wanted);
            EXPECT_TRUE(after->check().empty());
        }
    }
}

TEST(WriteInPlace, ChangesOfObjectsThatAreNotUnderstoodAreRefusedByTheirHandles)
{
    for (const auto& [name, expected] : realDrawings("mixed")) {
        SCOPED_TRACE(name);
        const auto before = opened(readFile(drawingsFolder() / name));
        // A bit behind the last handle of a line that is not as we would write it.
        for (const std::uint64_t handle : before->handles()) {
            const auto kind = before->kind(handle);
            if (kind->classDef || kind->isEntity)
                continue;
            db::Record record = newRecord("DICTIONARY", handle, before->version());
            DrawingChanges changes(*before);
            changes.put(record);
            const auto refused = changes.write();
            EXPECT_EQ(refused.status().reason(), base::Reason::DwgObjectsNotEditable);
            EXPECT_EQ(hexValue(refused.status().arguments().at(0).utf8()), handle);
            break;
        }
    }
}

TEST(WriteInPlace, OfAnUnknownObjectTheOwnerCanChange)
{
    for (const auto& [name, expected] : realDrawings("mixed")) {
        SCOPED_TRACE(name);
        const auto before = opened(readFile(drawingsFolder() / name));
        for (const std::uint64_t handle : before->handles()) {
            if (before->kind(handle)->classDef)
                continue;
            db::Record record;
            ASSERT_TRUE(before->readCommon(handle, record));
            db::RecordEditor(record).setHandle("owner", 0xC);
            DrawingChanges changes(*before);
            changes.put(record);
            const auto after = changes.written();
            ASSERT_TRUE(after);
            db::Record now;
            ASSERT_TRUE(after->readCommon(handle, now));
            EXPECT_EQ(now.handle("owner"), 0xCu);
            EXPECT_EQ(now.bits("data").count, record.bits("data").count);
            break;
        }
    }
}

TEST(WriteInPlace, RecordsOfAnotherVersionTakeTheFilesForm)
{
    const auto before = minimal("line", db::Version::Ac1015);
    DrawingChanges changes(*before);
    db::Record circle = newRecord("CIRCLE", changes.nextHandle(), db::Version::Ac1032);
    db::RecordEditor(circle).setReal("radius", 3);
    db::RecordEditor(circle).setHandle("layer", 0x10);
    db::RecordEditor(circle).structure("color").setInteger("rgb", 0xC2FF0000);
    db::RecordEditor(circle).structure("color").setInteger("flags", 0x8000);
    changes.put(circle);
    const auto after = changes.written();
    ASSERT_TRUE(after);
    const db::Record read = recordOf(*after, circle.handle());
    EXPECT_EQ(read.real("radius"), 3);
    EXPECT_EQ(read.structure("color").integer("flags"), 1) << "red, the nearest of the palette";
}

TEST(WriteInPlace, SecondRecordsOfViewportsGoWithThem)
{
    const auto drawings = realDrawings("mixed-ac1015");
    if (drawings.empty())
        GTEST_SKIP();
    const auto before = opened(readFile(drawingsFolder() / "mixed-ac1015.dwg"));
    // 240 and 245 are the viewports of the active layout, CF7 and CF8 their second records.
    DrawingChanges changes(*before);
    changes.erase(0x240);
    const auto after = changes.written();
    ASSERT_TRUE(after);
    EXPECT_FALSE(after->kind(0xCF7));
    EXPECT_EQ(after->header()->handle("VPENTHDR"), 0xCF8u);
    const db::Record table = recordOf(*after, 0xCF5);
    EXPECT_EQ(table.array("entries").size(), 2u);
    EXPECT_EQ(table.array("entries").handle(1), 0xCF8u);

    DrawingChanges other(*before);
    other.erase(0x245);
    const auto second = other.written();
    ASSERT_TRUE(second);
    EXPECT_EQ(recordOf(*second, 0xCF7).handle("previous"), 0u);
    EXPECT_EQ(second->header()->handle("VPENTHDR"), 0xCF7u);
}

TEST(WriteInPlace, NewObjectsDoNotTakeThePictureOfWhatTheyWereCopiedFrom)
{
    for (const auto& [name, expected] : realDrawings("xdata-ac1032")) {
        const auto before = opened(readFile(drawingsFolder() / name));
        for (const auto& [handle, record] : allRecords(*before)) {
            if (!record.flag("has_binary"))
                continue;
            DrawingChanges changes(*before);
            db::Record copy = record;
            copy.setHandle(changes.nextHandle());
            changes.put(copy);
            const auto after = changes.written();
            ASSERT_TRUE(after);
            EXPECT_FALSE(recordOf(*after, copy.handle()).flag("has_binary"));
            EXPECT_TRUE(recordOf(*after, handle).flag("has_binary"));
        }
    }
}
