#include <sys/stat.h>

#include <base/clock.h>
#include <base/faulty_file_ops.h>
#include <db/tv_db_database.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_xrecord.h>
#include <dwg/dwg_codec.h>

#include <algorithm>

#include "drawings.h"
#include "kill_at_syscall.h"
#include "temp_folder.h"

namespace {

using base::FaultyFileOps;

constexpr const char* kName = "plan.dwg";

/// Puts one record among the named objects.
void mark(TvDbDatabase& drawing, const TvString& text)
{
    const TvDbObjectPointer<TvDbDictionary> named(drawing.namedObjectsDictionaryId(),
                                                  TvDb::kForWrite);
    ASSERT_TRUE(named);
    auto* record = new TvDbXrecord;
    TvDbObjectId id;
    ASSERT_EQ(named->setAt(u"MARK", record, id), TvStatus::Ok);
    const TvResbufPtr items(tvutBuildList(1, text));
    ASSERT_EQ(record->setFromRbChain(*items.get()), TvStatus::Ok);
    record->close();
}

TvString markOf(const TvString& path)
{
    TvDbDatabase drawing(false, true);
    EXPECT_EQ(drawing.readDwgFile(path), TvStatus::Ok);
    const TvDbObjectPointer<TvDbDictionary> named(drawing.namedObjectsDictionaryId());
    TvDbObjectId id;
    if (!named || named->getAt(u"MARK", id) != TvStatus::Ok)
        return {};
    const TvDbObjectPointer<TvDbXrecord> record(id);
    resbuf* chain = nullptr;
    record->rbChain(&chain);
    const TvResbufPtr items(chain);
    return items ? TvString(items->resval.rstring) : TvString();
}

class DrawingSave : public testing::Test
{
protected:
    DrawingSave()
    {
        dwg::install();
        const std::vector<std::uint8_t> bytes = minimalDrawing("line-ac1032.dwg");
        m_before.assign(bytes.begin(), bytes.end());
        prepare();
        db::setDatabaseEnvironment(nullptr, &m_clock);
        EXPECT_EQ(work(), 0);
        m_after = folder.read(kName);
        prepare();
        db::setDatabaseEnvironment(&ops, &m_clock);
    }
    ~DrawingSave() override { db::setDatabaseEnvironment(nullptr, nullptr); }

    void prepare() const
    {
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            std::filesystem::remove(entry.path());
        folder.write(kName, m_before);
    }
    TvString path() const { return folder.file(kName); }
    int work() const
    {
        TvDbDatabase drawing(false, true);
        if (drawing.readDwgFile(path()) != TvStatus::Ok)
            return 1;
        mark(drawing, u"changed");
        return drawing.saveAs(path()) == TvStatus::Ok ? 0 : 2;
    }
    std::vector<std::string> neighbours() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            if (entry.path().filename() != kName)
                names.push_back(entry.path().filename().string());
        return names;
    }

    TempFolder folder;
    base::ManualClock m_clock;
    FaultyFileOps ops{base::systemFileOps()};
    std::string m_before, m_after;
};

struct Fault {
    const char* name;
    std::function<void(FaultyFileOps&, int n)> set;
};
const Fault kFaults[] = {
    {"an error once", [](FaultyFileOps& ops, int n) { ops.failAt(n, EIO); }},
    {"a full disk once", [](FaultyFileOps& ops, int n) { ops.failAt(n, ENOSPC); }},
    {"an error for ever", [](FaultyFileOps& ops, int n) { ops.failFrom(n, EIO); }},
    {"denied for ever", [](FaultyFileOps& ops, int n) { ops.failFrom(n, EACCES); }},
    {"few bytes at a time", [](FaultyFileOps& ops, int n) { ops.shortenFrom(n, 700); }},
};

} // namespace

TEST_F(DrawingSave, AtEveryFaultOfTheDiskTheFileIsTheOldOrTheNewOneAndTheAnswerTellsWhich)
{
    for (const Fault& fault : kFaults) {
        int refused = 0;
        for (int n = 1;; ++n) {
            prepare();
            ops.reset();
            TvDbDatabase drawing(false, true);
            ASSERT_EQ(drawing.readDwgFile(path()), TvStatus::Ok);
            mark(drawing, u"changed");
            ops.reset();
            fault.set(ops, n);
            const TvStatusCode status = drawing.saveAs(path());
            const bool isReached = ops.count() >= n;
            SCOPED_TRACE(std::string(fault.name) + " at " + std::to_string(n));
            ops.reset();
            const std::string content = folder.read(kName);
            ASSERT_TRUE(content == m_before || content == m_after);
            if (status == TvStatus::Ok) {
                ASSERT_TRUE(content == m_after);
            } else {
                ++refused;
                ASSERT_NE(drawing.lastFailure().reason(), base::Reason::None);
                ASSERT_TRUE(content == m_before);
            }
            if (!isReached)
                break;
            ASSERT_LT(n, 500);
        }
        if (std::string_view(fault.name) != "few bytes at a time") {
            EXPECT_GT(refused, 5) << fault.name;
        }
    }
}

TEST_F(DrawingSave, KilledAtEverySystemCallLeavesTheOldOrTheNewFile)
{
    db::setDatabaseEnvironment(nullptr, &m_clock);
    int changed = 0;
    const KillSeries series =
        killAtEverySyscall([this] { prepare(); }, [this] { return work(); },
                           [&](const KillOutcome& outcome) {
                               SCOPED_TRACE(textOf(outcome));
                               const std::string content = folder.read(kName);
                               EXPECT_TRUE(content == m_before || content == m_after);
                               changed += content == m_after;
                               for (const std::string& name : neighbours())
                                   EXPECT_TRUE(name.starts_with(".")) << name;
                           });
    if (!series.isPermitted)
        GTEST_SKIP() << "tracing is not permitted";
    EXPECT_TRUE(series.hasEnded);
    EXPECT_EQ(series.exitCode, 0);
    EXPECT_GT(series.kills, 10);
    EXPECT_GT(changed, 1);
    EXPECT_LT(changed, series.kills);
}

TEST_F(DrawingSave, OfAFileThatSomebodyChangedMeanwhileIsRefused)
{
    TvDbDatabase drawing(false, true);
    ASSERT_EQ(drawing.readDwgFile(path()), TvStatus::Ok);
    mark(drawing, u"changed");
    folder.write(kName, m_after);
    EXPECT_EQ(drawing.saveAs(path()), TvStatus::FileChanged);
    EXPECT_EQ(drawing.lastFailure().reason(), base::Reason::ChangedOnDisk);
    EXPECT_TRUE(folder.read(kName) == m_after);
}

TEST_F(DrawingSave, ASecondSaveOfTheSameDrawingGoesOnFromTheFirst)
{
    TvDbDatabase drawing(false, true);
    ASSERT_EQ(drawing.readDwgFile(path()), TvStatus::Ok);
    EXPECT_FALSE(drawing.isModified());
    mark(drawing, u"first");
    EXPECT_TRUE(drawing.isModified());
    ASSERT_EQ(drawing.saveAs(path()), TvStatus::Ok);
    EXPECT_FALSE(drawing.isModified());
    mark(drawing, u"second");
    ASSERT_EQ(drawing.saveAs(path()), TvStatus::Ok);
    EXPECT_EQ(markOf(path()), u"second");
}

TEST_F(DrawingSave, OfAReadOnlyFileIsRefused)
{
    TvDbDatabase drawing(false, true);
    ASSERT_EQ(drawing.readDwgFile(path()), TvStatus::Ok);
    mark(drawing, u"changed");
    ::chmod((folder.path() / kName).c_str(), 0444);
    EXPECT_EQ(drawing.saveAs(path()), TvStatus::FileReadOnly);
    EXPECT_EQ(drawing.lastFailure().reason(), base::Reason::FileReadOnly);
    EXPECT_TRUE(folder.read(kName) == m_before);
}

TEST_F(DrawingSave, OfAReadOnlyFileIsRefusedForEveryUserAlsoToAnotherPath)
{
    TvDbDatabase drawing(false, true);
    ASSERT_EQ(drawing.readDwgFile(path()), TvStatus::Ok);
    mark(drawing, u"changed");
    folder.write("other.dwg", "kept");
    ::chmod((folder.path() / "other.dwg").c_str(), 0444);
    EXPECT_EQ(drawing.saveAs(folder.file("other.dwg")), TvStatus::FileReadOnly);
    EXPECT_EQ(folder.read("other.dwg"), "kept");
    EXPECT_TRUE(drawing.isModified());
    EXPECT_EQ(drawing.getFilename(), path());
}

TEST_F(DrawingSave, OfItsOwnFileThatVanishedIsRefusedAndElsewhereItWorks)
{
    TvDbDatabase drawing(false, true);
    ASSERT_EQ(drawing.readDwgFile(path()), TvStatus::Ok);
    mark(drawing, u"changed");
    std::filesystem::remove(folder.path() / kName);
    EXPECT_EQ(drawing.saveAs(path()), TvStatus::FileReadOnly);
    EXPECT_EQ(drawing.lastFailure().reason(), base::Reason::FileReadOnly);
    EXPECT_FALSE(std::filesystem::exists(folder.path() / kName));
    EXPECT_TRUE(drawing.isModified());
    ASSERT_EQ(drawing.saveAs(folder.file("new.dwg")), TvStatus::Ok);
    EXPECT_EQ(markOf(folder.file("new.dwg")), u"changed");
}

TEST_F(DrawingSave, ThroughASymbolicLinkReplacesWhatItLeadsTo)
{
    std::filesystem::create_symlink(kName, folder.path() / "link.dwg");
    TvDbDatabase drawing(false, true);
    ASSERT_EQ(drawing.readDwgFile(folder.file("link.dwg")), TvStatus::Ok);
    mark(drawing, u"changed");
    ASSERT_EQ(drawing.saveAs(folder.file("link.dwg")), TvStatus::Ok);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path() / "link.dwg"));
    EXPECT_EQ(markOf(path()), u"changed");
}

TEST_F(DrawingSave, KeepsOddPermissions)
{
    ::chmod((folder.path() / kName).c_str(), 0751);
    EXPECT_EQ(work(), 0);
    struct stat info {
    };
    ASSERT_EQ(::stat((folder.path() / kName).c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0751u);
}

TEST_F(DrawingSave, KeepsTheReplacedFileBesideItWhenAskedTo)
{
    TvDbDatabase drawing(false, true);
    ASSERT_EQ(drawing.readDwgFile(path()), TvStatus::Ok);
    mark(drawing, u"changed");
    ASSERT_EQ(drawing.saveAs(path(), true), TvStatus::Ok);
    EXPECT_TRUE(folder.read("plan.bak") == m_before);
    EXPECT_EQ(neighbours(), std::vector<std::string>{"plan.bak"});
}

TEST_F(DrawingSave, OfAFileThatAnotherDatabaseHoldsIsRefusedUntilItLetsGo)
{
    TvDbDatabase holder(false, false), other(false, true);
    ASSERT_EQ(holder.readDwgFile(path(), TvDb::kReadAndWrite), TvStatus::Ok);
    ASSERT_EQ(other.readDwgFile(path(), TvDb::kShareAll), TvStatus::Ok);
    mark(other, u"other");
    EXPECT_EQ(other.saveAs(path()), TvStatus::FileInUse);
    EXPECT_EQ(static_cast<int>(TvStatus::FileInUse), 433);
    EXPECT_TRUE(folder.read(kName) == m_before);
    ASSERT_EQ(holder.closeInput(true), TvStatus::Ok);
    EXPECT_EQ(other.saveAs(path()), TvStatus::Ok);
}

TEST_F(DrawingSave, AFileThatIsHeldOpensForLookingWithAllSharingOnly)
{
    TvDbDatabase holder(false, false);
    ASSERT_EQ(holder.readDwgFile(path(), TvDb::kReadAndWrite), TvStatus::Ok);
    for (const int mode : {1, 0x20}) {
        TvDbDatabase drawing(false, true);
        EXPECT_EQ(drawing.readDwgFile(path(), mode), TvStatus::FileInUse) << mode;
    }
    for (const int mode : {3, 0x40}) {
        TvDbDatabase drawing(false, true);
        EXPECT_EQ(drawing.readDwgFile(path(), mode), TvStatus::Ok) << mode;
    }
    TvDbDatabase drawing(false, true);
    TvDbImpDatabase* internal = TvDbSystemInternals::getImpDatabase(&drawing);
    EXPECT_EQ(internal->readDwgFile(path(), 32), TvStatus::FileInUse);
    EXPECT_EQ(internal->readDwgFile(path(), 64), TvStatus::Ok);
}

TEST_F(DrawingSave, WithoutAChangeKeepsEveryObjectAndSectionBitForBit)
{
    TvDbDatabase drawing(false, true);
    ASSERT_EQ(drawing.readDwgFile(path()), TvStatus::Ok);
    ASSERT_EQ(drawing.saveAs(folder.file("copy.dwg")), TvStatus::Ok);
    const auto before = dwg::RawDrawing::open(readFile(folder.path() / kName));
    const auto after = dwg::RawDrawing::open(readFile(folder.path() / "copy.dwg"));
    ASSERT_TRUE(before && after);
    ASSERT_EQ(before->objects().size(), after->objects().size());
    for (const dwg::ObjectLocation& object : before->objects()) {
        EXPECT_TRUE(std::ranges::equal(*before->objectBytes(object.handle),
                                       *after->objectBytes(object.handle)));
    }
    for (const std::string& name : before->sectionNames()) {
        // Where they lie, and how often they were saved.
        if (name != "AcDb:AcDbObjects" && name != "AcDb:Handles" && name != "AcDb:AuxHeader") {
            EXPECT_TRUE(std::ranges::equal(*before->section(name), *after->section(name))) << name;
        }
    }
}

TEST_F(DrawingSave, AMissingFileOrOneThatIsNoDrawingIsNotRead)
{
    TvDbDatabase missing(false, true), text(false, true);
    EXPECT_EQ(missing.readDwgFile(folder.file("none.dwg")), TvStatus::FileNotFound);
    folder.write("text.dwg", "AC9999 this is no drawing");
    EXPECT_EQ(text.readDwgFile(folder.file("text.dwg")), TvStatus::FileNotReadable);
    EXPECT_EQ(text.lastFailure().reason(), base::Reason::DwgNotDrawing);
    EXPECT_EQ(text.readDwgFile(path()), TvStatus::Ok) << "still empty: it may be read into";
    EXPECT_EQ(text.readDwgFile(path()), TvStatus::InvalidInput) << "no more";
}
