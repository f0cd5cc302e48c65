#include <db/tv_db_summary_info.h>

#include <base/faulty_file_ops.h>
#include <base/kv_file_system.h>
#include <db/tv_db_dictionary.h>

#include "real_drawing.h"
#include "temp_folder.h"

namespace {

using Info = std::unique_ptr<TvDbDatabaseSummaryInfo>;

Info summaryOf(TvDbDatabase& drawing)
{
    TvDbDatabaseSummaryInfo* info = nullptr;
    EXPECT_EQ(tvdbGetSummaryInfo(&drawing, info), TvStatus::Ok);
    return Info(info);
}

db::SummaryInfo sample()
{
    db::SummaryInfo info;
    info.title = u"Plän 東";
    info.subject = u"subject";
    info.author = u"author";
    info.keywords = u"a, b";
    info.comments = u"two\r\nlines";
    info.lastSavedBy = u"user";
    info.revisionNumber = u"7";
    info.hyperlinkBase = u"base/here";
    info.editing = {0, 3'600'000};
    info.created = {2'460'000, 43'200'000};
    info.modified = {2'460'001, 1000};
    info.custom = {{u"Phase", u"design"}, {u"Empty", u""}, {u"Größe", u"a=b"}};
    return info;
}

TvString textOf(const TvDbDatabaseSummaryInfo& info,
                TvStatusCode (TvDbDatabaseSummaryInfo::*get)(TvString&) const)
{
    TvString out;
    EXPECT_EQ((info.*get)(out), TvStatus::Ok);
    return out;
}

class SummaryTest : public testing::TestWithParam<std::string>
{
protected:
    std::unique_ptr<TvDbDatabase> open() const
    {
        return openBytes(minimalDrawing("line-" + GetParam() + ".dwg"));
    }
};
INSTANTIATE_TEST_SUITE_P(Versions, SummaryTest, testing::ValuesIn(versionNames()));

/// A file system that counts what is read of a file.
class CountedReads
{
public:
    CountedReads()
    {
        db::setDatabaseEnvironment(&m_ops, nullptr);
        m_ops.before = [this](int, const base::FaultyFileOps::Call& call) {
            reads += call.kind == base::FaultyFileOps::Kind::Read ? 1 : 0;
            opens += call.kind == base::FaultyFileOps::Kind::Open ? 1 : 0;
            closes += call.kind == base::FaultyFileOps::Kind::Close ? 1 : 0;
        };
    }
    ~CountedReads() { db::setDatabaseEnvironment(nullptr, nullptr); }
    int reads = 0, opens = 0, closes = 0;
    base::FaultyFileOps& ops() { return m_ops; }

private:
    base::FaultyFileOps m_ops{base::systemFileOps()};
};

} // namespace

TEST_P(SummaryTest, OfADrawingWithoutOneIsEmpty)
{
    const auto drawing = open();
    const Info info = summaryOf(*drawing);
    EXPECT_TRUE(info->values() == db::SummaryInfo());
    EXPECT_EQ(textOf(*info, &TvDbDatabaseSummaryInfo::getTitle), u"");
    TvString name, value;
    EXPECT_EQ(info->getCustomSummaryInfo(0, name, value), TvStatus::OutOfRange);
    EXPECT_EQ(tvdbPutSummaryInfo(info.get()), TvStatus::Ok);
    EXPECT_FALSE(drawing->isModified()) << "nothing was changed";
}

TEST_P(SummaryTest, IsReadBackAsItWasPut)
{
    const auto drawing = open();
    const Info info = summaryOf(*drawing);
    info->values() = sample();
    ASSERT_EQ(tvdbPutSummaryInfo(info.get()), TvStatus::Ok);
    EXPECT_TRUE(drawing->isModified());
    EXPECT_TRUE(summaryOf(*drawing)->values() == sample());
    const auto again = savedAndRead(*drawing);
    ASSERT_TRUE(again);
    const Info read = summaryOf(*again);
    EXPECT_TRUE(read->values() == sample());
    EXPECT_EQ(textOf(*read, &TvDbDatabaseSummaryInfo::getTitle), u"Plän 東");
    EXPECT_EQ(textOf(*read, &TvDbDatabaseSummaryInfo::getSubject), u"subject");
    EXPECT_EQ(textOf(*read, &TvDbDatabaseSummaryInfo::getAuthor), u"author");
    EXPECT_EQ(textOf(*read, &TvDbDatabaseSummaryInfo::getKeywords), u"a, b");
    EXPECT_EQ(textOf(*read, &TvDbDatabaseSummaryInfo::getComments), u"two\r\nlines");
    EXPECT_EQ(textOf(*read, &TvDbDatabaseSummaryInfo::getLastSavedBy), u"user");
    EXPECT_EQ(textOf(*read, &TvDbDatabaseSummaryInfo::getRevisionNumber), u"7");
    EXPECT_EQ(textOf(*read, &TvDbDatabaseSummaryInfo::getHyperlinkBase), u"base/here");
    ASSERT_EQ(read->numCustomInfo(), 3);
    TvString name, value;
    EXPECT_EQ(read->getCustomSummaryInfo(2, name, value), TvStatus::Ok);
    EXPECT_EQ(name, u"Größe");
    EXPECT_EQ(value, u"a=b");
    EXPECT_EQ(read->getCustomSummaryInfo(3, name, value), TvStatus::OutOfRange);
    EXPECT_EQ(read->getCustomSummaryInfo(-1, name, value), TvStatus::OutOfRange);
}

TEST_P(SummaryTest, GoesAlongIntoOtherVersions)
{
    const auto drawing = open();
    const Info info = summaryOf(*drawing);
    info->values() = sample();
    ASSERT_EQ(tvdbPutSummaryInfo(info.get()), TvStatus::Ok);
    for (const int version : {TvDb::kAc1015, TvDb::kAc1018, TvDb::kAc1032}) {
        const auto other = savedAndRead(*drawing, version);
        ASSERT_TRUE(other);
        EXPECT_TRUE(summaryOf(*other)->values() == sample()) << version;
    }
}

TEST(Summary, Of2000IsPartOfTheHistoryAndHasRoomForTen)
{
    const auto drawing = openBytes(minimalDrawing("line-ac1015.dwg"));
    const Info info = summaryOf(*drawing);
    info->values() = sample();
    ASSERT_EQ(tvdbPutSummaryInfo(info.get()), TvStatus::Ok);
    drawing->startUndoRecord();
    info->values().title = u"other";
    ASSERT_EQ(tvdbPutSummaryInfo(info.get()), TvStatus::Ok);
    EXPECT_EQ(summaryOf(*drawing)->values().title, u"other");
    ASSERT_EQ(drawing->undo(), TvStatus::Ok);
    EXPECT_TRUE(summaryOf(*drawing)->values() == sample());
    info->values().custom.assign(11, {u"x", u"y"});
    EXPECT_EQ(tvdbPutSummaryInfo(info.get()), TvStatus::VersionNotWritable);
    EXPECT_TRUE(summaryOf(*drawing)->values() == sample()) << "nothing half done";
    ASSERT_EQ(drawing->undo(), TvStatus::Ok);
    EXPECT_TRUE(summaryOf(*drawing)->values() == db::SummaryInfo());
    const TvDbObjectPointer<TvDbDictionary> named(drawing->namedObjectsDictionaryId());
    EXPECT_FALSE(named->has(u"DWGPROPS"));
}

TEST(Summary, OfRealDrawingsOf2000IsTheirs)
{
    forEachDrawing("mixed-ac1015", [](TvDbDatabase& drawing, const nlohmann::json&) {
        const Info info = summaryOf(drawing);
        EXPECT_EQ(info->values().lastSavedBy, u"user-01");
        EXPECT_EQ(info->values().created.day, 2459632u);
        EXPECT_EQ(info->values().created.milliseconds, 40983000u);
        EXPECT_EQ(info->numCustomInfo(), 0);
        info->values().title = u"new";
        ASSERT_EQ(tvdbPutSummaryInfo(info.get()), TvStatus::Ok);
        const auto again = savedAndRead(drawing);
        ASSERT_TRUE(again);
        EXPECT_TRUE(summaryOf(*again)->values() == info->values());
    });
}

TEST(Summary, OfNoDrawingIsNone)
{
    TvDbDatabaseSummaryInfo* info = nullptr;
    EXPECT_EQ(tvdbGetSummaryInfo(nullptr, info), TvStatus::NoDatabase);
    EXPECT_EQ(info, nullptr);
    EXPECT_EQ(tvdbPutSummaryInfo(nullptr), TvStatus::NoDatabase);
}

// --- pictures

TEST(QuickPreview, IsThePictureOfTheDrawingByFewReads)
{
    dwg::install();
    const auto drawings = realDrawings(".dwg");
    if (drawings.empty())
        GTEST_SKIP();
    int pictures = 0;
    for (const auto& [name, expected] : drawings) {
        SCOPED_TRACE(name);
        CountedReads counted;
        const db::Preview quick =
            tvdbGetPreviewBitmapFromDwg(base::pathFromNative((drawingsFolder() / name).string()));
        EXPECT_GT(counted.reads, 0);
        EXPECT_LE(counted.reads, 4);
        EXPECT_EQ(counted.opens, counted.closes);
        const auto file = db::codecOf(db::FileFormat::Dwg)->open(readFile(drawingsFolder() / name));
        ASSERT_TRUE(file);
        EXPECT_TRUE(quick == (*file)->preview());
        pictures += quick.kind != db::Preview::Kind::None ? 1 : 0;
    }
    EXPECT_GT(pictures, 5);
}

TEST(QuickPreview, OfWhatIsNoDrawingOrBreaksOffIsNone)
{
    dwg::install();
    const TempFolder folder;
    CountedReads counted;
    EXPECT_TRUE(tvdbGetPreviewBitmapFromDwg(folder.file("missing.dwg")) == db::Preview());
    EXPECT_TRUE(tvdbGetPreviewBitmapFromDwg(folder.file("")) == db::Preview()) << "a folder";
    folder.write("text.dwg", "AC9999 no drawing");
    EXPECT_TRUE(tvdbGetPreviewBitmapFromDwg(folder.file("text.dwg")) == db::Preview());
    EXPECT_EQ(counted.opens, counted.closes + 1) << "the missing one was not opened";
    const auto bytes = readFile(drawingsFolder() / "mixed-ac1032.dwg");
    if (bytes.empty())
        GTEST_SKIP();
    for (const std::size_t size : {std::size_t(6), std::size_t(200), std::size_t(1000)}) {
        folder.write("cut.dwg", std::string(bytes.begin(), bytes.begin() + std::ptrdiff_t(size)));
        EXPECT_TRUE(tvdbGetPreviewBitmapFromDwg(folder.file("cut.dwg")) == db::Preview()) << size;
    }
}

TEST(QuickPreview, OfAFileOnAForeignHostIsNotLookedFor)
{
    dwg::install();
    CountedReads counted;
    EXPECT_TRUE(tvdbGetPreviewBitmapFromDwg(u"\\\\nosuchhost\\share\\a.dwg") == db::Preview());
    EXPECT_EQ(counted.opens, 0);
    EXPECT_EQ(counted.ops().count(), 0);
}
