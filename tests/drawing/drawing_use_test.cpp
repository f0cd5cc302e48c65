// Who has a drawing open for writing, and whom that keeps from saving over it.

#include <sys/wait.h>

#include <base/faulty_file_ops.h>
#include <db/file_open_info_tip_manager.h>
#include <db/tv_db_database.h>
#include <dwg/dwg_codec.h>

#include "drawings.h"
#include "temp_folder.h"
#include "tied_fork.h"

namespace {

using Info = CFileOpenInfoTipManager;

/// Another process that uses the drawing until it is ended.
class OtherProcess
{
public:
    explicit OtherProcess(const TvString& path)
    {
        int ready[2] = {};
        EXPECT_EQ(::pipe(ready), 0);
        m_child = tiedFork();
        if (m_child == 0)
            use(path, ready[1]);
        ::close(ready[1]);
        char answer = '-';
        EXPECT_EQ(::read(ready[0], &answer, 1), 1);
        EXPECT_EQ(answer, 'u');
        ::close(ready[0]);
    }
    ~OtherProcess() { kill(); }
    /// It ends without a chance to tidy up.
    void kill()
    {
        if (m_child <= 0)
            return;
        ::kill(m_child, SIGKILL);
        ::waitpid(m_child, nullptr, 0);
        m_child = 0;
    }

private:
    [[noreturn]] static void use(const TvString& path, int ready)
    {
        {
            const TvDbDatabase drawing(false, true);
            const bool uses = bool(db::beginUse(drawing, path));
            if (::write(ready, uses ? "u" : "n", 1) == 1)
                ::pause();
        }
        ::_exit(0);
    }
    pid_t m_child = 0;
};

class DrawingUse : public testing::Test
{
protected:
    DrawingUse()
    {
        dwg::install();
        const std::vector<std::uint8_t> bytes = minimalDrawing("line-ac1032.dwg");
        folder.write("plan.dwg", {bytes.begin(), bytes.end()});
    }
    void SetUp() override
    {
        ASSERT_EQ(mine.readDwgFile(path(), TvDb::kReadAllShare), TvStatus::Ok);
        ASSERT_EQ(yours.readDwgFile(path(), TvDb::kReadAllShare), TvStatus::Ok);
    }
    TvString path() const { return folder.file("plan.dwg"); }
    std::vector<std::string> neighbours() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            if (entry.path().filename() != "plan.dwg")
                names.push_back(entry.path().filename().string());
        return names;
    }
    TempFolder folder;
    TvDbDatabase mine{false, true}, yours{false, true};
};

TEST_F(DrawingUse, IsToldByAHiddenFileFromItsBeginToItsEnd)
{
    EXPECT_FALSE(Info::IsInfoFileExists(path()));
    ASSERT_TRUE(db::beginUse(mine, path()));
    EXPECT_TRUE(Info::IsInfoFileExists(path()));
    ASSERT_EQ(neighbours().size(), 1u);
    EXPECT_EQ(neighbours().front().front(), '.');
    TvString user, machine;
    EXPECT_TRUE(Info::GetInfoFromHideFile(path(), user, machine));
    EXPECT_FALSE(user.isEmpty());
    EXPECT_FALSE(machine.isEmpty());
    db::endUse(mine);
    EXPECT_FALSE(Info::IsInfoFileExists(path()));
    EXPECT_TRUE(neighbours().empty());
    user = machine = u"before";
    EXPECT_FALSE(Info::GetInfoFromHideFile(path(), user, machine));
    EXPECT_EQ(user, u"before");
    EXPECT_EQ(machine, u"before");
}

TEST_F(DrawingUse, KeepsOtherDatabasesFromSavingOverTheFileButNotItsOwn)
{
    ASSERT_TRUE(db::beginUse(mine, path()));
    EXPECT_EQ(yours.saveAs(path()), TvStatus::FileInUse);
    EXPECT_EQ(yours.lastFailure().reason(), base::Reason::LockHeld);
    EXPECT_EQ(mine.saveAs(path()), TvStatus::Ok);
    EXPECT_EQ(mine.saveAs(path()), TvStatus::Ok) << "the use outlives a save";
    EXPECT_EQ(yours.saveAs(folder.file("other.dwg")), TvStatus::Ok);
}

TEST_F(DrawingUse, OfOneSpellingIsNotThatOfAnotherFile)
{
    ASSERT_TRUE(db::beginUse(mine, path()));
    EXPECT_EQ(yours.saveAs(folder.file("./plan.dwg")), TvStatus::FileInUse);
    const bool isOneFile = std::filesystem::exists(folder.path() / "PLAN.DWG"); // as on Windows
    EXPECT_EQ(yours.saveAs(folder.file("PLAN.DWG")),
              isOneFile ? TvStatus::FileInUse : TvStatus::Ok);
}

TEST_F(DrawingUse, IsOneDatabasesOnly)
{
    ASSERT_TRUE(db::beginUse(mine, path()));
    EXPECT_TRUE(db::beginUse(mine, path())) << "again";
    EXPECT_EQ(db::beginUse(yours, path()).reason(), base::Reason::LockHeld);
    db::endUse(yours);
    EXPECT_TRUE(Info::IsInfoFileExists(path()));
}

TEST_F(DrawingUse, EndsWithTheDatabase)
{
    {
        const TvDbDatabase passing(false, true);
        ASSERT_TRUE(db::beginUse(passing, path()));
    }
    EXPECT_TRUE(neighbours().empty());
}

TEST_F(DrawingUse, OfAnotherFileEndsTheFormerOne)
{
    ASSERT_TRUE(db::beginUse(mine, path()));
    ASSERT_TRUE(db::beginUse(mine, folder.file("new.dwg")));
    EXPECT_FALSE(Info::IsInfoFileExists(path()));
    EXPECT_TRUE(Info::IsInfoFileExists(folder.file("new.dwg")));
    EXPECT_EQ(yours.saveAs(path()), TvStatus::Ok);
}

TEST_F(DrawingUse, OfAnotherFileThatIsTakenLeavesTheFormerOne)
{
    ASSERT_TRUE(db::beginUse(mine, path()));
    ASSERT_TRUE(db::beginUse(yours, folder.file("other.dwg")));
    EXPECT_FALSE(db::beginUse(mine, folder.file("other.dwg")));
    EXPECT_TRUE(Info::IsInfoFileExists(path()));
}

TEST_F(DrawingUse, ByAnotherProcessRefusesSavesAndOpeningsThatDoNotShare)
{
    const OtherProcess other(path());
    EXPECT_TRUE(Info::IsInfoFileExists(path()));
    const std::string before = folder.read("plan.dwg");
    EXPECT_EQ(mine.saveAs(path()), TvStatus::FileInUse);
    EXPECT_EQ(folder.read("plan.dwg"), before);
    EXPECT_EQ(db::beginUse(mine, path()).failure(), base::Failure::Locked);
    for (const int mode : {1, 0x20}) {
        TvDbDatabase drawing(false, true);
        EXPECT_EQ(drawing.readDwgFile(path(), mode), TvStatus::FileInUse) << mode;
    }
    for (const int mode : {3, 0x40}) {
        TvDbDatabase drawing(false, true);
        EXPECT_EQ(drawing.readDwgFile(path(), mode), TvStatus::Ok) << mode;
    }
}

TEST_F(DrawingUse, OfAProcessThatDiedIsNone)
{
    OtherProcess other(path());
    other.kill();
    EXPECT_FALSE(neighbours().empty()) << "it left its file behind";
    TvString user, machine;
    EXPECT_FALSE(Info::IsInfoFileExists(path()));
    EXPECT_FALSE(Info::GetInfoFromHideFile(path(), user, machine));
    EXPECT_EQ(mine.saveAs(path()), TvStatus::Ok);
    EXPECT_TRUE(db::beginUse(mine, path()));
    db::endUse(mine);
    EXPECT_TRUE(neighbours().empty());
}

TEST_F(DrawingUse, OfAFileThatMayNotBeWrittenIsRefused)
{
    std::filesystem::permissions(folder.path() / "plan.dwg", std::filesystem::perms(0444));
    EXPECT_EQ(db::beginUse(mine, path()).failure(), base::Failure::ReadOnly);
    EXPECT_FALSE(Info::IsInfoFileExists(path()));
}

TEST_F(DrawingUse, OnAHostThatWasNotAgreedToIsNotAskedFor)
{
    const TvString far = u"\\\\203.0.113.5\\plans\\a.dwg";
    EXPECT_FALSE(Info::IsInfoFileExists(far));
    EXPECT_EQ(db::beginUse(mine, far).reason(), base::Reason::NetworkNotTouched);
}

TEST_F(DrawingUse, ASaveKeepsOthersAwayAndLeavesNothingBeside)
{
    struct Asking : base::FaultyFileOps {
        using base::FaultyFileOps::FaultyFileOps;
        int rename(const std::string& from, const std::string& to) override
        {
            wasInUse = Info::IsInfoFileExists(base::pathFromNative(to));
            return base::FaultyFileOps::rename(from, to);
        }
        bool wasInUse = false;
    } ops(base::systemFileOps());
    db::setDatabaseEnvironment(&ops, nullptr);
    EXPECT_EQ(mine.saveAs(path()), TvStatus::Ok);
    db::setDatabaseEnvironment(nullptr, nullptr);
    EXPECT_TRUE(ops.wasInUse);
    EXPECT_TRUE(neighbours().empty());
}

TEST_F(DrawingUse, TheLaterOfTwoSavesFromOneVersionIsRefused)
{
    mine.setTilemode(!mine.tilemode());
    yours.setTilemode(!yours.tilemode());
    EXPECT_EQ(mine.saveAs(path()), TvStatus::Ok);
    const std::string saved = folder.read("plan.dwg");
    EXPECT_EQ(yours.saveAs(path()), TvStatus::FileChanged);
    EXPECT_EQ(folder.read("plan.dwg"), saved);
}

TEST_F(DrawingUse, ASaveTakesAwayWhatKilledSavesLeft)
{
    const std::string token(32, 'a');
    folder.write(".plan.dwg.tmp." + token, "left");
    folder.write(".plan.dwg.tmp.notes", "the user's");
    folder.write(".other.dwg.tmp." + token, "another's");
    EXPECT_EQ(mine.saveAs(path()), TvStatus::Ok);
    std::vector<std::string> left = neighbours();
    std::sort(left.begin(), left.end());
    EXPECT_EQ(left, (std::vector<std::string>{".other.dwg.tmp." + token, ".plan.dwg.tmp.notes"}));
}

TEST_F(DrawingUse, ANewFileIsNeverWrittenOverOneThatIsThere)
{
    const TvString fresh = folder.file("fresh.dwg");
    EXPECT_EQ(db::saveNew(mine, fresh, db::FileFormat::Dwg), TvStatus::Ok);
    folder.write("fresh.dwg", "somebody's");
    EXPECT_NE(db::saveNew(yours, fresh, db::FileFormat::Dwg), TvStatus::Ok);
    EXPECT_EQ(yours.lastFailure().failure(), base::Failure::Exists);
    EXPECT_EQ(folder.read("fresh.dwg"), "somebody's");
}

TEST_F(DrawingUse, ACopyOfAPrivateDrawingIsPrivate)
{
    namespace fs = std::filesystem;
    fs::permissions(folder.path() / "plan.dwg", fs::perms(0600));
    EXPECT_EQ(mine.saveAs(folder.file("copy.dwg")), TvStatus::Ok);
    EXPECT_EQ(fs::status(folder.path() / "copy.dwg").permissions(), fs::perms(0600));
}

TEST_F(DrawingUse, ACopyOfAReadOnlyDrawingCanBeWritten)
{
    namespace fs = std::filesystem;
    fs::permissions(folder.path() / "plan.dwg", fs::perms(0444));
    EXPECT_EQ(mine.saveAs(folder.file("copy.dwg")), TvStatus::Ok);
    EXPECT_NE(fs::status(folder.path() / "copy.dwg").permissions() & fs::perms::owner_write,
              fs::perms::none);
}

} // namespace
