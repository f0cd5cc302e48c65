// A drawing file as the database sees it.

#include <set>

#include "drawing_changes.h"
#include "dwg_file.h"
#include "lazy_sections.h"

namespace {

std::unique_ptr<db::DrawingFile> real(const std::string& name)
{
    return opened(readFile(drawingsFolder() / name));
}

std::string narrow(std::u16string_view text)
{
    return base::utf8FromUtf16(text);
}

std::uint64_t unpackedOf(const dwg::DwgFile& file)
{
    return static_cast<const dwg::LazySections&>(file.raw().container()).unpackedBytes();
}

} // namespace

TEST(DwgFile, OfEveryDrawingKindsAndCountsAreRight)
{
    for (const auto& [name, expected] : realDrawings(".dwg")) {
        SCOPED_TRACE(name);
        const auto file = real(name);
        ASSERT_TRUE(file);
        std::map<std::string, int> counts;
        for (const std::uint64_t handle : file->handles()) {
            const auto kind = file->kind(handle);
            ASSERT_TRUE(kind) << handle;
            ++counts[std::string(kind->className)];
        }
        EXPECT_EQ(nlohmann::json(counts), expected["counts"]);
        EXPECT_EQ(static_cast<int>(file->version()),
                  std::stoi(expected["version"].get<std::string>().substr(2)));
        EXPECT_EQ(file->classes().size(), expected["classes"].size());
    }
}

namespace {

void expectOneWalkTellsTheKinds(const db::DrawingFile& file)
{
    std::vector<std::uint64_t> walked;
    file.forEachKind([&](std::uint64_t handle, const db::ObjectKind* kind) {
        walked.push_back(handle);
        const auto alone = file.kind(handle);
        ASSERT_EQ(kind != nullptr, bool(alone)) << handle;
        if (!kind)
            return;
        EXPECT_EQ(kind->classDef, alone->classDef);
        EXPECT_EQ(kind->className, alone->className);
        EXPECT_EQ(kind->typeNumber, alone->typeNumber);
        EXPECT_EQ(kind->isEntity, alone->isEntity);
        const auto whole = dynamic_cast<const dwg::DwgFile&>(file).object(handle);
        EXPECT_TRUE(!whole || whole->type == kind->typeNumber) << handle;
    });
    EXPECT_TRUE(std::ranges::equal(walked, file.handles()));
}

} // namespace

TEST(DwgFile, OneWalkTellsTheKindsOfAllObjectsAsAskingForEach)
{
    for (const auto& [name, expected] : realDrawings(".dwg")) {
        SCOPED_TRACE(name);
        expectOneWalkTellsTheKinds(*real(name));
    }
    for (const char* name : {"line-ac1015.dwg", "line-ac1021.dwg", "line-ac1032.dwg"})
        expectOneWalkTellsTheKinds(*opened(minimalDrawing(name)));
}

TEST(DwgFile, OneWalkOverADamagedDrawingTellsTheSameAsAskingForEach)
{
    constexpr std::size_t kStep = 13;
    for (const std::uint8_t wrong : {0x00, 0x7F, 0xFF}) {
        std::vector<std::uint8_t> bytes = minimalDrawing("line-ac1015.dwg");
        for (std::size_t at = 0; at < bytes.size(); at += kStep) {
            const std::uint8_t right = std::exchange(bytes[at], wrong);
            if (const auto file = dwg::DwgFile::open(bytes))
                expectOneWalkTellsTheKinds(**file);
            bytes[at] = right;
        }
    }
}

TEST(DwgFile, HeaderAndMeasurementAreOneRecord)
{
    for (const auto& [name, expected] : realDrawings(".dwg")) {
        SCOPED_TRACE(name);
        const auto header = real(name)->header();
        ASSERT_TRUE(header);
        if (expected.contains("MEASUREMENT")) {
            EXPECT_EQ(header->integer("MEASUREMENT"), expected["MEASUREMENT"].get<int>());
        }
        EXPECT_EQ(header->integer("INSUNITS"), expected["INSUNITS"].get<int>());
        EXPECT_EQ(header->handle("HANDSEED"), hexValue(expected["handseed"].get<std::string>()));
    }
}

TEST(DwgFile, OpeningUnpacksNoObjects)
{
    for (const char* name : {"mixed-ac1018.dwg", "mixed-ac1032.dwg"}) {
        const auto bytes = readFile(drawingsFolder() / name);
        if (bytes.empty())
            GTEST_SKIP();
        const auto file = dwg::DwgFile::open(bytes);
        ASSERT_TRUE(file);
        const std::uint64_t atOpen = unpackedOf(**file);
        ASSERT_TRUE((*file)->kind((*file)->handles().front()));
        EXPECT_GT(unpackedOf(**file), atOpen) << "the object's page is unpacked only now";
        const std::uint64_t one = unpackedOf(**file);
        for (const std::uint64_t handle : (*file)->handles())
            (void)(*file)->kind(handle);
        EXPECT_GT(unpackedOf(**file), one);
    }
}

TEST(DwgFile, WhatIsNotThereIsNotFound)
{
    const auto file = minimal("line", db::Version::Ac1032);
    db::Record record;
    EXPECT_EQ(file->kind(0x999).status().failure(), base::Failure::NotFound);
    EXPECT_EQ(file->read(0x999, record).failure(), base::Failure::NotFound);
    EXPECT_EQ(file->readCommon(0x999, record).failure(), base::Failure::NotFound);
    EXPECT_FALSE(file->isEditable(0x999));
}

TEST(DwgFile, AnObjectUnderAnothersHandleIsDamaged)
{
    // The map of the file tells the place of 0x2E for 0x2F.
    auto raw = dwg::RawDrawing::open(minimalDrawing("line-ac1015.dwg"));
    ASSERT_TRUE(raw);
    auto bytes = minimalDrawing("line-ac1015.dwg");
    const auto object = raw->object(0x2F);
    ASSERT_TRUE(object);
    // The own handle stands behind type and size, four bits into its byte: 0x2F becomes 0x2D.
    const std::size_t at = static_cast<std::size_t>(object->data.data() - raw->fileBytes().data());
    const std::size_t bit = object->bodyBit - 2;
    bytes[at + bit / 8] ^= static_cast<std::uint8_t>(0x80 >> (bit % 8));
    const auto file = opened(bytes);
    ASSERT_TRUE(file);
    db::Record record;
    EXPECT_EQ(file->kind(0x2F).status().failure(), base::Failure::Damaged);
    EXPECT_EQ(file->read(0x2F, record).reason(), base::Reason::DwgCheckObjectHandle);
    EXPECT_EQ(file->readCommon(0x2F, record).failure(), base::Failure::Damaged);
    EXPECT_FALSE(file->isEditable(0x2F));
    EXPECT_TRUE(file->read(0x2E, record));
}

TEST(DwgFile, ObjectsWithoutATableGiveTheirCommonPart)
{
    for (const auto& [name, expected] : realDrawings("mixed")) {
        SCOPED_TRACE(name);
        const auto file = real(name);
        int unknown = 0;
        for (const std::uint64_t handle : file->handles()) {
            const auto kind = file->kind(handle);
            if (!kind || kind->classDef)
                continue;
            ++unknown;
            db::Record record;
            EXPECT_EQ(file->read(handle, record).failure(), base::Failure::Unsupported);
            EXPECT_TRUE(file->readCommon(handle, record));
            EXPECT_EQ(record.classDef()->name(), kind->isEntity ? "RAW_ENTITY" : "RAW_OBJECT");
            EXPECT_EQ(record.handle(), handle);
            EXPECT_FALSE(file->isEditable(handle));
        }
        EXPECT_EQ(unknown, 13);
    }
}

TEST(DwgFile, SummariesAreWhatIsExpected)
{
    for (const auto& [name, expected] : realDrawings(".dwg")) {
        if (expected["summary"].is_null())
            continue;
        SCOPED_TRACE(name);
        const auto summary = real(name)->summary();
        ASSERT_TRUE(summary);
        const auto& known = expected["summary"];
        const auto text = [&](const char* key) { return known[key].get<std::string>(); };
        EXPECT_EQ(narrow(summary->title), text("title"));
        EXPECT_EQ(narrow(summary->subject), text("subject"));
        EXPECT_EQ(narrow(summary->author), text("author"));
        EXPECT_EQ(narrow(summary->keywords), text("keywords"));
        EXPECT_EQ(narrow(summary->comments), text("comments"));
        EXPECT_EQ(narrow(summary->lastSavedBy), text("last saved by"));
        EXPECT_EQ(narrow(summary->revisionNumber), text("revision number"));
        EXPECT_EQ(narrow(summary->hyperlinkBase), text("hyperlink base"));
        const auto time = [](const db::SummaryInfo::Time& t) {
            return nlohmann::json::array({t.day, t.milliseconds});
        };
        EXPECT_EQ(time(summary->editing), known["total editing time"]);
        EXPECT_EQ(time(summary->created), known["created"]);
        EXPECT_EQ(time(summary->modified), known["modified"]);
        auto custom = nlohmann::json::array();
        for (const auto& each : summary->custom)
            custom.push_back({narrow(each.name), narrow(each.value)});
        EXPECT_EQ(custom, known.contains("custom") ? known["custom"] : nlohmann::json::array());
    }
}

TEST(DwgFile, TheSummaryOf2000IsReadFromItsRecord)
{
    const auto drawings = realDrawings("mixed-ac1015");
    if (drawings.empty())
        GTEST_SKIP();
    const auto old = real("mixed-ac1015.dwg")->summary();
    const auto later = real("mixed-ac1018.dwg")->summary();
    ASSERT_TRUE(old && later);
    EXPECT_EQ(drawings[0].second["dwgprops"].dump().find("DWGPROPS COOKIE") != std::string::npos,
              true);
    EXPECT_FALSE(old->created == db::SummaryInfo::Time());
    EXPECT_FALSE(minimal("empty", db::Version::Ac1015)->summary());
}

TEST(DwgFile, PreviewsAreWholePictures)
{
    for (const auto& [name, expected] : realDrawings(".dwg")) {
        SCOPED_TRACE(name);
        const db::Preview preview = real(name)->preview();
        if (name.starts_with("empty") || name.starts_with("line")) {
            EXPECT_EQ(preview.kind, db::Preview::Kind::None);
            continue;
        }
        const bool isPng = preview.bytes.size() > 8 && preview.bytes[1] == 'P';
        const bool isDib = preview.bytes.size() > 40 && preview.bytes[0] == 40;
        EXPECT_TRUE(preview.kind == db::Preview::Kind::Png ? isPng : isDib);
        const auto bytes = readFile(drawingsFolder() / name);
        int reads = 0;
        const db::Preview quick =
            codec().quickPreview([&](std::uint64_t offset, std::size_t count) {
                ++reads;
                const std::size_t begin = std::min<std::size_t>(offset, bytes.size());
                const std::size_t end = std::min(begin + count, bytes.size());
                return std::vector<std::uint8_t>(bytes.begin() + static_cast<std::ptrdiff_t>(begin),
                                                 bytes.begin() + static_cast<std::ptrdiff_t>(end));
            });
        EXPECT_TRUE(quick == preview);
        EXPECT_LE(reads, 3);
    }
}

TEST(DwgFile, LayoutsThatSayThatTheyHaveAPictureHaveOne)
{
    for (const auto& [name, expected] : realDrawings(".dwg")) {
        SCOPED_TRACE(name);
        const auto file = real(name);
        for (const auto& [handle, record] : allRecords(*file)) {
            const bool has = file->thumbnail(handle).kind != db::Preview::Kind::None;
            EXPECT_EQ(has, record.flag("has_binary")) << std::hex << handle;
        }
    }
}

TEST(DwgFile, ChecksTellNothingOfSoundDrawingsAndSomethingOfDamagedOnes)
{
    for (const db::Version version : db::kVersions)
        EXPECT_TRUE(minimal("line", version)->check().empty()) << versionName(version);
    auto bytes = minimalDrawing("line-ac1015.dwg");
    auto raw = dwg::RawDrawing::open(bytes);
    const auto object = raw->objectBytes(0x2F);
    const std::size_t end =
        static_cast<std::size_t>(object->data() - raw->fileBytes().data()) + object->size();
    bytes[end - 1] ^= 1; // its checksum
    const auto found = opened(bytes)->check();
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].reason(), base::Reason::DwgCheckObjectChecksum);
    EXPECT_EQ(found[0].arguments().at(0).utf8(), "2F");
}

TEST(DwgCodec, RecognisesDrawingsByTheirFirstBytes)
{
    const auto bytes = minimalDrawing("empty-ac1021.dwg");
    EXPECT_TRUE(codec().recognises(dwg::Bytes(bytes).first(6)));
    EXPECT_FALSE(codec().recognises(dwg::Bytes(bytes).first(5)));
    const std::string text = "  0\nSECTION\n";
    EXPECT_FALSE(codec().recognises(std::vector<std::uint8_t>(text.begin(), text.end())));
    EXPECT_FALSE(codec().open({'A', 'C', '1', '0', '0', '9'}));
    dwg::install();
    EXPECT_NE(db::codecFor(bytes), nullptr);
    EXPECT_EQ(db::codecOf(db::FileFormat::Dwg)->format(), db::FileFormat::Dwg);
}
