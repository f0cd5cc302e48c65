#include "window_scene.h"

#include <csignal>
#include <thread>

#include <app/crash_report.h>
#include <base/kv_file_system.h>
#include <db/file_open_info_tip_manager.h>
#include <window/single_instance.h>

namespace {

TEST(SingleInstance, ASecondStartHandsItsFilesOver)
{
    const TempFolder folder;
    window::SingleInstance first(folder.file("run"));
    EXPECT_FALSE(first.handOver({})) << "nobody is there yet";
    ASSERT_TRUE(first.listen());
    std::vector<TvString> files;
    first.onHandover = [&](const app::Handover& handover) { files = handover.files; };

    std::atomic<int> result = -1;
    std::thread other([&] {
        window::SingleInstance second(folder.file("run"));
        result = second.handOver({"", {u"/a.dwg"}});
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return result.load() >= 0; }));
    other.join();
    EXPECT_EQ(result, 1);
    EXPECT_EQ(files, (std::vector<TvString>{u"/a.dwg"}));
    window::SingleInstance third(folder.file("run"));
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(folder.path() / "run").permissions() &
                  (perms::group_all | perms::others_all),
              perms::none);
}

TEST(SingleInstance, WithoutAFolderEverybodyIsAlone)
{
    window::SingleInstance alone{{}};
    EXPECT_FALSE(alone.handOver({}));
    EXPECT_FALSE(alone.listen());
}

TEST(SingleInstance, ASocketThatACrashLeftIsTakenOver)
{
    const TempFolder folder;
    {
        window::SingleInstance first(folder.file("run"));
    }
    folder.write("run/instance", "");
    window::SingleInstance second(folder.file("run"));
    EXPECT_TRUE(second.listen());
}

using WindowProcessTest = ProgramProcessTest;

TEST_F(WindowProcessTest, ASecondStartHandsOverAndEnds)
{
    std::filesystem::permissions(folder.path(), std::filesystem::perms::owner_all);
    Process first(toolLine({path("a.dwg")}));
    const auto isInUse = [&](const char* name) {
        return CFileOpenInfoTipManager::IsInfoFileExists(folder.file(name));
    };
    ASSERT_TRUE(QTest::qWaitFor([&] { return isInUse("a.dwg"); }, 20000));
    const Ran second = run({path("b.dwg")});
    EXPECT_EQ(second.code, 0) << second.err;
    EXPECT_TRUE(QTest::qWaitFor([&] { return isInUse("b.dwg"); }, 20000));
    ::kill(first.id(), SIGTERM);
    const Ran ended = first.wait();
    EXPECT_EQ(ended.code, 130) << ended.err;
    EXPECT_FALSE(isInUse("a.dwg"));
    EXPECT_TRUE(KvFileSystem::listFolder(folder.file("state/tarvik/sessions")).empty());
}

TEST_F(WindowProcessTest, ACrashLeavesAReportAndACopyOfWhatWasNotSaved)
{
    const std::string before = folder.read("a.dwg");
    const Ran ran = run({"--new-instance", "--hidden", "crash", "--script",
                         script("CTAB\nLayout1\n"), path("a.dwg")});
    EXPECT_EQ(ran.code, 1000 + SIGSEGV) << ran.err;
    EXPECT_EQ(folder.read("a.dwg"), before);
    EXPECT_EQ(app::takeNewCrashReports(folder.file("state/tarvik/crashes")).size(), 1u);
    const auto lost = app::lostSessions(folder.file("state/tarvik/sessions"));
    ASSERT_EQ(lost.size(), 1u);
    ASSERT_EQ(lost[0].drawings.size(), 1u);
    EXPECT_EQ(lost[0].drawings[0].file, folder.file("a.dwg"));
    EXPECT_FALSE(lost[0].drawings[0].copy.isEmpty());
}

TEST_F(WindowProcessTest, APictureOfTheWindowIsTaken)
{
    const Ran ran =
        run({"--new-instance", "--hidden", "picture=" + path("window.png"), path("a.dwg")});
    EXPECT_EQ(ran.code, 0) << ran.err;
    EXPECT_GT(folder.read("window.png").size(), 1000u);
}

} // namespace
