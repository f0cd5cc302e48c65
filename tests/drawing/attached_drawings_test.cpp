// Drawings that are opened because others show them: how often they are read, and what is kept.

#include <db/attached_drawings.h>

#include "attach_drawing.h"
#include "real_drawing.h"
#include "temp_folder.h"

namespace {

class AttachedDrawingsTest : public testing::Test
{
protected:
    AttachedDrawingsTest() { dwg::install(); }
    void file(const std::string& name, const std::string& of = "line-ac1032.dwg") const
    {
        const std::vector<std::uint8_t> bytes = minimalDrawing(of);
        folder.write(name, {bytes.begin(), bytes.end()});
    }
    db::AttachedDrawings::Opened open(db::AttachedDrawings& attached, const TvChar* saved) const
    {
        const TvString host = folder.file("host.dwg");
        return attached.open(saved, host, host);
    }

    TempFolder folder;
};

} // namespace

TEST_F(AttachedDrawingsTest, FindsFilesByTheRulesOfReferencesAndReadsEachOnce)
{
    file("a.dwg");
    db::AttachedDrawings attached;
    const auto first = open(attached, u".\\a.dwg"), moved = open(attached, u"C:\\project\\a.dwg");
    ASSERT_TRUE(first.database);
    EXPECT_EQ(first.status, TvDb::kXrfResolved);
    EXPECT_EQ(first.path, folder.file("a.dwg"));
    EXPECT_GT(first.file.size, 0U);
    EXPECT_EQ(moved.database, first.database);
    EXPECT_EQ(attached.loads(), 1U);
    EXPECT_EQ(open(attached, u"b.dwg").status, TvDb::kXrfFileNotFound);
    EXPECT_EQ(open(attached, u"\\\\server\\share\\a2.dwg").status, TvDb::kXrfUnresolved);
}

TEST_F(AttachedDrawingsTest, ReadsAFileAnewWhenItIsAnotherOneOrHasChanged)
{
    file("a.dwg");
    db::AttachedDrawings attached;
    const auto before = open(attached, u"a.dwg");
    file("a.dwg", "line-ac1015.dwg");
    const auto after = open(attached, u"a.dwg");
    ASSERT_TRUE(before.database && after.database);
    EXPECT_NE(after.database, before.database);
    EXPECT_EQ(after.database->originalFileVersion(), TvDb::kAc1015);
    EXPECT_EQ(before.database->originalFileVersion(), TvDb::kAc1032) << "whoever uses it has it";
    EXPECT_EQ(attached.kept(), 1U);
    std::filesystem::remove(folder.path() / "a.dwg");
    EXPECT_FALSE(open(attached, u"a.dwg").database);
}

TEST_F(AttachedDrawingsTest, DoesNotTryTwiceWhatCannotBeRead)
{
    folder.write("a.dwg", "no drawing");
    db::AttachedDrawings attached;
    EXPECT_EQ(open(attached, u"a.dwg").status, TvDb::kXrfUnresolved);
    EXPECT_EQ(open(attached, u"a.dwg").status, TvDb::kXrfUnresolved);
    EXPECT_EQ(attached.loads(), 1U);
    file("a.dwg");
    EXPECT_EQ(open(attached, u"a.dwg").status, TvDb::kXrfResolved) << "it has changed";
}

TEST_F(AttachedDrawingsTest, KeepsWhatIsUsedAndAFewOthers)
{
    for (const char* name : {"a.dwg", "b.dwg", "c.dwg", "d.dwg"})
        file(name);
    db::AttachedDrawings attached({1, std::uint64_t(1) << 20});
    const auto used = open(attached, u"a.dwg");
    for (const TvChar* name : {u"b.dwg", u"c.dwg", u"d.dwg"})
        open(attached, name);
    EXPECT_EQ(attached.kept(), 3U) << "the used one, the last one, one more";
    EXPECT_EQ(open(attached, u"a.dwg").database, used.database);
    EXPECT_EQ(attached.loads(), 4U);
    open(attached, u"b.dwg");
    EXPECT_EQ(attached.loads(), 5U) << "it was the longest unused";
    db::AttachedDrawings small({10, 1});
    for (const TvChar* name : {u"a.dwg", u"b.dwg", u"c.dwg"})
        open(small, name);
    EXPECT_EQ(small.kept(), 1U) << "the bytes count, too";
}

TEST_F(AttachedDrawingsTest, LostReferencesAreToldWithTheirReasons)
{
    file("a.dwg");
    folder.write("broken.dwg", "AC1032 nothing more");
    {
        const auto mid = openBytes(minimalDrawing("line-ac1032.dwg"));
        attachDrawing(*mid, u"Nested", u"nested.dwg");
        ASSERT_EQ(mid->saveAs(folder.file("mid.dwg")), TvStatus::Ok);
    }
    const auto host = openBytes(minimalDrawing("line-ac1032.dwg"));
    attachDrawing(*host, u"A", u"a.dwg");
    attachDrawing(*host, u"Gone", u"gone.dwg");
    attachDrawing(*host, u"Off", u"gone2.dwg", false, true);
    attachDrawing(*host, u"Broken", u"broken.dwg");
    attachDrawing(*host, u"Far", u"\\\\server\\share\\far.dwg");
    attachDrawing(*host, u"Mid", u"mid.dwg");
    ASSERT_EQ(host->saveAs(folder.file("host.dwg")), TvStatus::Ok);
    db::AttachedDrawings attached;
    std::vector<std::pair<std::string, base::Reason>> told;
    for (const db::LostReference& lost : db::lostReferences(*host, attached)) {
        told.emplace_back(lost.name.utf8(), lost.why.reason());
        EXPECT_EQ(lost.why.arguments(), (std::vector<TvString>{lost.name, lost.savedPath}));
    }
    EXPECT_EQ(told,
              (std::vector<std::pair<std::string, base::Reason>>{{"Gone", db::kXrefMissing},
                                                                 {"Broken", db::kXrefUnreadable},
                                                                 {"Far", db::kXrefNotTouched},
                                                                 {"Nested", db::kXrefMissing}}));
    EXPECT_EQ(attached.loads(), 3U);
}

TEST_F(AttachedDrawingsTest, BytesStandForAFile)
{
    file("a.dwg");
    TvDbDatabase drawing(false, true);
    ASSERT_EQ(db::readBytesAs(drawing, minimalDrawing("line-ac1032.dwg"), folder.file("host.dwg")),
              TvStatus::Ok);
    EXPECT_EQ(drawing.getFilename(), folder.file("host.dwg"));
    const TvDbObjectId id = attachDrawing(drawing, u"A", u"a.dwg");
    EXPECT_EQ(TvDbObjectPointer<TvDbBlockTableRecord>(id)->xrefStatus(), TvDb::kXrfResolved);
    TvDbDatabase broken(false, true);
    EXPECT_NE(db::readBytesAs(broken, {1, 2, 3}, folder.file("host.dwg")), TvStatus::Ok);
    EXPECT_TRUE(broken.getFilename().isEmpty());
}
