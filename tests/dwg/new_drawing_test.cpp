// Drawings that come from no file, and what many changes in a row do to one that does.

#include <db/default_drawing.h>
#include <db/summary_record.h>
#include <dwg/raw_drawing.h>

#include "drawing_changes.h"
#include "dwg_file.h"
#include "lazy_sections.h"
#include "record_differences.h"

namespace {

const dwg::RawDrawing& raw(const db::DrawingFile& file)
{
    return static_cast<const dwg::DwgFile&>(file).raw();
}

std::vector<std::uint8_t> bytesOf(const db::DrawingFile& file, std::uint64_t handle)
{
    const auto bytes = raw(file).objectBytes(handle);
    return bytes ? std::vector<std::uint8_t>(bytes->begin(), bytes->end())
                 : std::vector<std::uint8_t>();
}

std::uint64_t firstOf(const db::DrawingFile& file, std::string_view className)
{
    for (const std::uint64_t handle : file.handles())
        if (file.kind(handle)->className == className)
            return handle;
    return 0;
}

/// A record has the fields of all versions, and a file those of its own.
bool isOfOtherVersions(std::string_view field, db::Version version)
{
    if (version == db::Version::Ac1015)
        return field == "color.value" || field == "lines[].ltype";
    return field == "nolinks" || field == "text_area" || field.starts_with("first_") ||
           field.starts_with("last_") || field.starts_with("lines[].ltype");
}

/// The handles of all objects that came, went or have other bytes.
std::set<std::uint64_t> concerned(const db::DrawingFile& before, const db::DrawingFile& after)
{
    std::set<std::uint64_t> handles;
    for (const std::uint64_t handle : before.handles())
        if (bytesOf(before, handle) != bytesOf(after, handle))
            handles.insert(handle);
    for (const std::uint64_t handle : after.handles())
        if (!raw(before).find(handle))
            handles.insert(handle);
    return handles;
}

/// A new drawing with many lines, a picture and a summary: each on pages of its own.
std::vector<std::uint8_t> largeDrawing(db::Version version)
{
    constexpr int kLines = 4'000;
    db::DrawingContent content = db::makeDefaultDrawing(version, db::Measurement::Metric);
    std::uint64_t next = content.header.handle("HANDSEED");
    const std::uint64_t space = content.header.handle("BRMSPACE");
    const auto model = std::find_if(content.objects.begin(), content.objects.end(),
                                    [&](const db::Record& r) { return r.handle() == space; });
    std::vector<db::Record> lines;
    for (int i = 0; i < kLines; ++i, ++next) {
        db::Record line = newRecord("LINE", next, version);
        db::RecordEditor edit(line);
        edit.setInteger("entmode", 2); // in model space
        edit.setHandle("layer", content.header.handle("CLAYER"));
        edit.setPoint("start", {i * 1.7, i / 3.0, 0});
        edit.setPoint("end", {i * 2.9, i / 7.0, 1});
        db::ArrayEditor owned = db::RecordEditor(*model).array("owned");
        owned.setHandle(owned.add(), next);
        lines.push_back(std::move(line));
    }
    std::move(lines.begin(), lines.end(), std::back_inserter(content.objects));
    db::RecordEditor(content.header).setHandle("HANDSEED", next);
    DrawingChanges changes(std::move(content.header), std::move(content.objects));
    changes.summary().comments = std::u16string(5'000, u'x');
    db::Preview& preview = changes.preview();
    preview.kind = db::Preview::Kind::Png;
    preview.bytes.resize(50'000, 7);
    const auto bytes = changes.write(version);
    EXPECT_TRUE(bytes) << static_cast<int>(bytes.status().reason());
    return bytes ? *bytes : std::vector<std::uint8_t>();
}

} // namespace

TEST(NewDrawing, OfEveryVersionReadsBackWithEverySectionAndObject)
{
    for (const db::Version version : db::kVersions)
        for (const auto measurement : {db::Measurement::Imperial, db::Measurement::Metric}) {
            SCOPED_TRACE(versionName(version));
            const db::DrawingContent content = db::makeDefaultDrawing(version, measurement);
            const auto file = DrawingChanges(content.header, content.objects).written(version);
            ASSERT_TRUE(file);
            EXPECT_TRUE(file->check().empty());
            EXPECT_EQ(file->version(), version);
            EXPECT_EQ(file->header()->integer("MEASUREMENT"),
                      measurement == db::Measurement::Metric ? 1 : 0);
            std::size_t there = 0;
            for (const db::Record& record : content.objects) {
                const RecordDifferences differences(record, recordOf(*file, record.handle()));
                for (const std::string& field : differences.names()) {
                    EXPECT_TRUE(isOfOtherVersions(field, version))
                        << record.classDef()->name() << "." << field;
                }
                ++there;
            }
            EXPECT_EQ(there, content.objects.size());
            const bool hasTable = firstOf(*file, "VPENT_HDR_CONTROL") != 0;
            EXPECT_EQ(hasTable, version == db::Version::Ac1015) << "what that version needs";
            EXPECT_EQ(file->handles().size(), there);
            for (const char* name : {"AcDb:Header", "AcDb:Classes", "AcDb:Handles", "AcDb:Template",
                                     "AcDb:AuxHeader", "AcDb:ObjFreeSpace"}) {
                if (version == db::Version::Ac1015 && name == std::string("AcDb:ObjFreeSpace"))
                    continue; // of no use to anybody there
                const auto section = raw(*file).section(name);
                EXPECT_TRUE(section && !section->empty()) << name;
            }
        }
}

TEST(NewDrawing, MinimalOnesOfEveryVersionAreReadWhole)
{
    for (const db::Version version : db::kVersions)
        for (const char* kind : {"empty", "line"}) {
            SCOPED_TRACE(kind + versionName(version));
            const auto file = minimal(kind, version);
            EXPECT_EQ(allRecords(*file).size(), file->handles().size());
            EXPECT_EQ(firstOf(*file, "LINE") != 0, std::string(kind) == "line");
            for (const std::uint64_t handle : file->handles())
                EXPECT_TRUE(file->isEditable(handle)) << std::hex << handle;
        }
}

TEST(NewDrawing, TenChangesInARowTouchOnlyWhatTheyConcernAndDoNotGrowTheFile)
{
    for (const db::Version version : db::kVersions) {
        SCOPED_TRACE(versionName(version));
        auto file = minimal("line", version);
        const std::size_t count = file->handles().size();
        std::size_t size = 0; // after each change was made once
        const std::uint64_t layout = firstOf(*file, "LAYOUT");
        const std::uint64_t named = file->header()->handle("DNAMEDOBJ");
        std::uint64_t xrecord = 0;
        for (int round = 0; round < 10; ++round) {
            SCOPED_TRACE(round);
            DrawingChanges changes(*file);
            std::set<std::uint64_t> expected;
            const std::u16string number(1, static_cast<char16_t>(u'0' + round));
            if (round % 3 == 0) { // rename
                changes.edit(layout).setText("name", u"Layout " + number);
                expected = {layout};
            } else if (round % 3 == 1) { // add
                xrecord = changes.nextHandle();
                db::Record added = newRecord("XRECORD", xrecord, version);
                db::RecordEditor(added).setHandle("owner", named);
                changes.put(added);
                db::Record dictionary = recordOf(*file, named);
                db::addEntry(dictionary, u"KEY" + number, xrecord);
                changes.put(dictionary);
                expected = {named, xrecord};
            } else { // and take away
                db::Record dictionary = recordOf(*file, named);
                db::removeEntry(dictionary, xrecord);
                changes.put(dictionary);
                changes.erase(xrecord);
                expected = {named, xrecord};
            }
            auto after = changes.written();
            ASSERT_TRUE(after);
            EXPECT_TRUE(after->check().empty());
            EXPECT_EQ(concerned(*file, *after), expected);
            EXPECT_EQ(after->handles().size(), count + (round % 3 == 1 ? 1 : 0));
            if (round == 2)
                size = raw(*after).fileBytes().size();
            if (round > 2) {
                EXPECT_LT(raw(*after).fileBytes().size(), size + 500);
            }
            file = std::move(after);
        }
        EXPECT_EQ(recordOf(*file, layout).text("name"), u"Layout 9");
    }
}

TEST(LazySections, AnInventoryLeavesPicturesSummariesAndTheRestPacked)
{
    for (const db::Version version :
         {db::Version::Ac1018, db::Version::Ac1021, db::Version::Ac1032}) {
        SCOPED_TRACE(versionName(version));
        const auto file = opened(largeDrawing(version));
        ASSERT_TRUE(file);
        auto& container = static_cast<const dwg::LazySections&>(raw(*file).container());
        // Handles, classes, layouts: found by the dictionaries.
        EXPECT_GT(file->handles().size(), 4'000u);
        EXPECT_FALSE(file->classes().empty());
        const db::Record named = recordOf(*file, file->header()->handle("DNAMEDOBJ"));
        const db::Record layouts = recordOf(*file, db::entryOf(named, u"ACAD_LAYOUT"));
        for (std::uint32_t i = 0; i < layouts.array("values").size(); ++i)
            EXPECT_FALSE(recordOf(*file, layouts.array("values").handle(i)).text("name").empty());
        const std::uint64_t asked = container.unpackedBytes();
        const auto packedPages = [&](std::string_view name) {
            const auto& pages = container.pages(container.indexOf(name));
            return std::count_if(pages.begin(), pages.end(), [](const auto& page) {
                return page.state == dwg::LazySections::PageState::Packed;
            });
        };
        for (const char* name : {"AcDb:Preview", "AcDb:SummaryInfo", "AcDb:AuxHeader"})
            EXPECT_GT(packedPages(name), 0) << name;
        EXPECT_GE(packedPages("AcDb:AcDbObjects"), 3) << "pages with nothing but lines";

        EXPECT_TRUE(file->check().empty());
        EXPECT_GT(container.unpackedBytes(), 2 * asked);
        EXPECT_EQ(packedPages("AcDb:AcDbObjects"), 0);
    }
}
