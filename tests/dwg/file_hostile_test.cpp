// Files that lie, through everything that the database asks of a file.

#include <cstring>
#include <limits>

#include <byte_stream.h>
#include <dwg/raw_save.h>
#include <lz2004.h>
#include <lz2007.h>
#include <paged_format.h>

#include "drawing_changes.h"
#include "dwg_file.h"
#include "record_differences.h"

using Buffer = std::vector<std::uint8_t>;
namespace paged = dwg::paged;

namespace {

// A sample, which no round number of bytes can hide from; every byte where that is quick.
#if defined(__OPTIMIZE__) && !defined(KV_SANITIZED)
constexpr std::size_t kCutStep = 1, kDamageStep = 3, kSaveStep = 7 * kDamageStep;
#else
constexpr std::size_t kCutStep = 5, kDamageStep = 61, kSaveStep = 7 * kDamageStep;
#endif
#if defined(KV_SANITIZED)
constexpr std::size_t kSmallestCutStep = kCutStep;
#else
constexpr std::size_t kSmallestCutStep = 1; // of the smallest drawing of each version
#endif

/// Everything is asked for; each answer is a value or a status.
void readEverything(const db::DrawingFile& file)
{
    db::Record record;
    for (const std::uint64_t handle : file.handles()) {
        (void)file.kind(handle);
        if (!file.read(handle, record))
            (void)file.readCommon(handle, record);
        (void)file.thumbnail(handle);
    }
    (void)file.header();
    (void)file.classes();
    (void)file.summary();
    (void)file.preview();
}

/// What is saved reads back; what is not, is refused for a reason other than that.
void saveAgain(const db::DrawingFile& file)
{
    if (!file.header())
        return;
    const auto saved = DrawingChanges(file).write();
    if (saved) {
        EXPECT_TRUE(codec().open(*saved));
    } else {
        EXPECT_NE(saved.status().reason(), base::Reason::DwgVerifyFailed);
    }
}

void openOrRefuse(Buffer bytes, bool alsoSave)
{
    const auto file = codec().open(std::move(bytes));
    if (!file) {
        EXPECT_NE(file.status().reason(), base::Reason::None);
        return;
    }
    readEverything(**file);
    if (alsoSave)
        saveAgain(**file);
}

std::vector<std::pair<std::string, Buffer>> minimalDrawings()
{
    std::vector<std::pair<std::string, Buffer>> all;
    for (const db::Version version : db::kVersions)
        for (const char* kind : {"empty-", "line-"})
            all.emplace_back(kind + versionName(version),
                             minimalDrawing(kind + versionName(version) + ".dwg"));
    return all;
}

/// A minimal drawing of 2004 whose shell is changed, with checksums that are right again.
class Shell
{
public:
    explicit Shell(const char* name = "line-ac1018.dwg") : m_file(minimalDrawing(name)) {}

    void editHead(const std::function<void(paged::Head&)>& edit)
    {
        paged::Head head = *paged::readHead(m_file, paged::kHeadAt);
        edit(head);
        const auto masked = paged::maskedHead(head);
        std::copy(masked.begin(), masked.end(), m_file.begin() + paged::kHeadAt);
        std::copy(masked.begin(), masked.end(), m_file.end() - paged::kHeadSize);
    }

    /// The section map begins with a count and 16 bytes; each section is 0x60 bytes and its pages.
    void editSectionMap(const std::function<void(Buffer&)>& edit)
    {
        std::size_t at = paged::kFirstPage;
        while (dwg::readU32(&m_file[at]) != paged::kSectionMapType)
            at += paged::kPageStep;
        Buffer map(dwg::readU32(&m_file[at + 4]));
        const std::size_t size = dwg::readU32(&m_file[at + 8]);
        const std::size_t head = paged::kSystemHead;
        ASSERT_TRUE(dwg::unpack2004(dwg::Bytes(m_file).subspan(at + head, size), map));
        edit(map);
        const Buffer packed = dwg::pack2004(map);
        const std::size_t room =
            (head + size + paged::kPageStep - 1) / paged::kPageStep * paged::kPageStep;
        ASSERT_LE(head + packed.size(), room) << "the test asks for too much";
        std::copy(packed.begin(), packed.end(),
                  m_file.begin() + static_cast<std::ptrdiff_t>(at + head));
        dwg::putU32(&m_file[at + 4], static_cast<std::uint32_t>(map.size()));
        dwg::putU32(&m_file[at + 8], static_cast<std::uint32_t>(packed.size()));
        sumSystemPage(at, packed.size());
    }

    void sumSystemPage(std::size_t at, std::size_t size)
    {
        dwg::putU32(&m_file[at + 16], 0);
        const dwg::Bytes all(m_file);
        dwg::putU32(&m_file[at + 16],
                    dwg::pageSum(dwg::pageSum(0, all.subspan(at, paged::kSystemHead)),
                                 all.subspan(at + paged::kSystemHead, size)));
    }

    std::size_t pageMapAt() const
    {
        return paged::readHead(m_file, paged::kHeadAt)->u64(paged::Head::kPageMapAddress) +
               paged::kFirstPage;
    }
    Buffer& bytes() { return m_file; }
    base::Failure failure() const { return codec().open(m_file).status().failure(); }

private:
    Buffer m_file;
};

constexpr std::size_t kFirstSection = 20; // of the section map; the one without name or pages
constexpr std::size_t kFirstNamed = kFirstSection + 0x60;
constexpr std::size_t kPagesOf = 8, kPageSizeOf = 12;

} // namespace

TEST(FileHostile, ADrawingThatBreaksOffAnywhereGivesAStatus)
{
    for (const auto& [name, whole] : minimalDrawings()) {
        const std::size_t step = name.starts_with("empty-") ? kSmallestCutStep : kCutStep;
        for (std::size_t size = 0; size < whole.size(); size += step) {
            SCOPED_TRACE(name + " cut at " + std::to_string(size));
            openOrRefuse(Buffer(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)),
                         size % (37 * kCutStep) == 0);
        }
    }
}

TEST(FileHostile, ADrawingWithAWrongByteGivesAStatusOrReadsAndSaves)
{
    for (const auto& [name, whole] : minimalDrawings())
        for (std::size_t at = 0; at < whole.size(); at += kDamageStep) {
            SCOPED_TRACE(name + " damaged at " + std::to_string(at));
            Buffer file = whole;
            file[at] ^= static_cast<std::uint8_t>(1 + at % 255);
            openOrRefuse(std::move(file), at % kSaveStep == 0);
        }
}

TEST(FileHostile, CountsTimesSizesDoNotWrapAround)
{
    for (const auto& [pages, size] : {std::pair{0x10001u, 0xFFFFu}, std::pair{0xFFFFFFFFu, 1u},
                                      std::pair{0x80000000u, 0x7400u}}) {
        Shell shell;
        ASSERT_NO_FATAL_FAILURE(shell.editSectionMap([&](Buffer& map) {
            dwg::putU32(&map[kFirstNamed + kPagesOf], pages);
            dwg::putU32(&map[kFirstNamed + kPageSizeOf], size);
        }));
        EXPECT_EQ(shell.failure(), base::Failure::Damaged) << std::hex << pages;
    }
}

TEST(FileHostile, ASmallFileThatPromisesGigabytesIsRefusedWithoutThem)
{
    Shell sections;
    ASSERT_NO_FATAL_FAILURE(sections.editSectionMap(
        [](Buffer& map) { dwg::putU64(&map[kFirstNamed], std::uint64_t(4) << 30); }));
    EXPECT_EQ(sections.failure(), base::Failure::Damaged);

    Shell page;
    const std::size_t at = page.pageMapAt();
    dwg::putU32(&page.bytes()[at + 4], 0xFFFFFFFF);
    page.sumSystemPage(at, dwg::readU32(&page.bytes()[at + 8]));
    EXPECT_EQ(page.failure(), base::Failure::Damaged);
}

TEST(FileHostile, AMapThatPointsAtItselfOrOutOfTheFileIsDamaged)
{
    Shell itself;
    itself.editHead([](paged::Head& head) {
        head.put32(paged::Head::kSectionMapId, head.u32(paged::Head::kPageMapId));
    });
    EXPECT_EQ(itself.failure(), base::Failure::Damaged);
    for (const std::uint64_t address : {std::uint64_t(0), std::uint64_t(0xFFFFFFF0),
                                        ~std::uint64_t(0), ~std::uint64_t(paged::kFirstPage) + 1}) {
        Shell outside;
        outside.editHead(
            [&](paged::Head& head) { head.put64(paged::Head::kPageMapAddress, address); });
        EXPECT_EQ(outside.failure(), base::Failure::Damaged) << std::hex << address;
    }
}

TEST(FileHostile, SectionsThatShareAPageAreSeenAtTheLatestByTheCheck)
{
    Shell shell;
    ASSERT_NO_FATAL_FAILURE(shell.editSectionMap([](Buffer& map) {
        // The first page of each section that has one becomes the first of them all.
        std::uint32_t first = 0;
        for (std::size_t at = kFirstSection; at + 0x60 <= map.size();) {
            const std::uint32_t pages = dwg::readU32(&map[at + kPagesOf]);
            if (pages > 0 && first == 0)
                first = dwg::readU32(&map[at + 0x60]);
            else if (pages > 0)
                dwg::putU32(&map[at + 0x60], first);
            at += 0x60 + std::size_t(pages) * 16;
        }
    }));
    const auto file = codec().open(shell.bytes());
    EXPECT_TRUE(!file || !(*file)->check().empty());
}

TEST(FileHostile, RunsPastTheOutputAndReferencesBeforeItsBeginAreRefused)
{
    const Buffer run{0x05, 1, 2, 3, 4, 5, 6, 7, 8, 0x11, 0, 0}; // eight bytes as they are
    Buffer four(4);
    EXPECT_FALSE(dwg::unpack2004(run, four));
    const Buffer early{0x05, 1, 2, 3, 4, 5, 6, 7, 8, 0x2E, 0xFD, 0x03, 0x11, 0, 0};
    Buffer out(24);
    EXPECT_FALSE(dwg::unpack2004(early, out)) << "256 back, behind 8 bytes";
    Buffer early2007{0x00, 1, 2, 3, 4, 5, 6, 7, 8, 0x1D, 0xFF, 0x01, 0x00, 0x0A, 0x00};
    Buffer longer(60);
    EXPECT_FALSE(dwg::unpack2007(early2007, longer));
}

TEST(FileHostile, CirclesOfOwnersAndOfExtensionsEnd)
{
    for (const db::Version version : db::kVersions) {
        SCOPED_TRACE(versionName(version));
        const auto before = minimal("line", version);
        const auto header = before->header();
        const std::uint64_t layer = header->handle("CLAYER"), named = header->handle("DNAMEDOBJ");
        DrawingChanges changes(*before);
        changes.edit(layer).setHandle("xdict", named);
        changes.edit(layer).setFlag("xdict_missing", false);
        changes.edit(named).setHandle("owner", layer);
        const std::uint64_t self = changes.nextHandle();
        db::Record insert = newRecord("INSERT", self, version);
        db::RecordEditor(insert).setInteger("entmode", 2);
        db::RecordEditor(insert).setHandle("layer", named); // of the wrong class
        db::RecordEditor(insert).setHandle("block", header->handle("BRMSPACE")); // its own
        changes.put(insert);
        const auto file = changes.written();
        ASSERT_TRUE(file);
        readEverything(*file);
        for (const db::Version to : db::kVersions)
            if (const auto converted = DrawingChanges(*file).write(to)) {
                EXPECT_TRUE(codec().open(*converted));
            }
    }
}

TEST(FileHostile, ADictionaryOfVeryManyEmptyEntriesIsReadInOneGo)
{
    constexpr std::uint32_t kMany = 100'000;
    const auto before = minimal("line", db::Version::Ac1032);
    DrawingChanges changes(*before);
    db::Record dictionary = newRecord("DICTIONARY", changes.nextHandle(), db::Version::Ac1032);
    ASSERT_TRUE(db::RecordEditor(dictionary).array("keys").resize(kMany));
    changes.put(dictionary);
    const auto file = changes.written();
    ASSERT_TRUE(file);
    const db::Record read = recordOf(*file, dictionary.handle());
    EXPECT_EQ(read.array("keys").size(), kMany);
    EXPECT_EQ(read.array("values").handle(kMany - 1), 0u);
}

TEST(FileHostile, NumbersThatAreNoneGoThroughConversionsAsTheyAre)
{
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double endless = std::numeric_limits<double>::infinity();
    for (const db::Version version : db::kVersions) {
        const auto before = minimal("line", version);
        for (const db::Version to : db::kVersions) {
            DrawingChanges changes(*before);
            db::Record arc = newRecord("ARC", changes.nextHandle(), version);
            db::RecordEditor(arc).setReal("start", none);
            db::RecordEditor(arc).setReal("end", 1e308);
            db::RecordEditor(arc).setReal("radius", endless);
            changes.put(arc);
            const auto file = changes.written(to);
            ASSERT_TRUE(file);
            const db::Record read = recordOf(*file, arc.handle());
            EXPECT_TRUE(std::isnan(read.real("start")));
            EXPECT_EQ(read.real("end"), 1e308);
            EXPECT_EQ(read.real("radius"), endless);
        }
    }
}

TEST(FileHostile, TextsOfLoneSurrogatesAndNulsAreWrittenOrRefused)
{
    for (const db::Version version : db::kVersions) {
        SCOPED_TRACE(versionName(version));
        const auto before = minimal("line", version);
        const std::u16string odd(u"a\xD800"
                                 u"b\0c\xDC00",
                                 6);
        DrawingChanges changes(*before);
        db::Record text = newRecord("TEXT", changes.nextHandle(), version);
        db::RecordEditor(text).setText("text", odd);
        changes.put(text);
        const auto bytes = changes.write();
        if (!bytes)
            continue;
        const auto file = opened(*bytes);
        const db::Record read = recordOf(*file, text.handle());
        if (db::hasWideText(version)) {
            EXPECT_EQ(read.text("text"), odd);
        }
        for (const db::Version to : db::kVersions)
            if (const auto converted = DrawingChanges(*file).write(to)) {
                EXPECT_TRUE(codec().open(*converted));
            }
    }
}

TEST(FileHostile, PicturesThatLieOutsideOfTheirBlockAreNone)
{
    for (const db::Version version : db::kVersions) {
        SCOPED_TRACE(versionName(version));
        const auto before = minimal("line", version);
        DrawingChanges changes(*before);
        db::Preview& preview = changes.preview();
        preview.kind = db::Preview::Kind::Bmp;
        preview.bytes.resize(40);
        dwg::putU32(&preview.bytes[0], 40);
        dwg::putU32(&preview.bytes[4], 65535); // as wide as high: never made room for here
        dwg::putU32(&preview.bytes[8], 65535);
        const auto bytes = changes.write();
        ASSERT_TRUE(bytes);
        EXPECT_EQ(opened(*bytes)->preview().bytes.size(), 40u);
        // The places of head and picture stand behind the sentinel, a size and a count.
        Buffer file = *bytes;
        const std::size_t block = dwg::readU32(&file[0x0D]);
        for (const std::uint32_t place : {0xFFFFFFF0u, 0x7FFFFFFFu, 1u}) {
            dwg::putU32(&file[block + 21 + 9 + 1], place);
            const auto damaged = codec().open(file);
            if (damaged) {
                EXPECT_LE((*damaged)->preview().bytes.size(), 40u);
            }
            dwg::putU32(&file[block + 21 + 9 + 5], place);
            const auto worse = codec().open(file);
            if (worse) {
                EXPECT_LE((*worse)->preview().bytes.size(), file.size());
            }
        }
    }
}
