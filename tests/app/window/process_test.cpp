#include "window_scene.h"

#include <csignal>
#include <thread>

#include <QImage>

#include <app/crash_report.h>
#include <base/kv_error_status.h>
#include <base/kv_file_system.h>
#include <db/file_open_info_tip_manager.h>
#include <window/guarded_application.h>
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

/// A run that nobody watches: it takes a picture and ends. One that waits for an answer is ended
/// and has the code 124.
class PictureTest : public ProgramProcessTest
{
protected:
    Ran take(const std::vector<std::string>& arguments)
    {
        std::filesystem::remove(path("window.png"));
        std::vector<std::string> line = toolLine({"--hidden", "picture=" + path("window.png")});
        line.insert(line.end(), arguments.begin(), arguments.end());
        line.insert(line.begin(), {"/usr/bin/timeout", "60"});
        return runProgram(line);
    }
    bool isTaken() const { return !QImage(QString::fromStdString(path("window.png"))).isNull(); }
    void allow(const char* name, int mode) const
    {
        std::filesystem::permissions(folder.path() / name, std::filesystem::perms(mode));
    }
};

TEST_F(PictureTest, ShowsTheWindow)
{
    const Ran ran = take({path("a.dwg")});
    EXPECT_EQ(ran.code, 0) << ran.err;
    EXPECT_TRUE(isTaken());
}

TEST_F(PictureTest, OfADrawingThatMayNotBeWrittenIsTakenWithoutAQuestion)
{
    allow("a.dwg", 0444);
    const Ran ran = take({path("a.dwg")});
    EXPECT_EQ(ran.code, 0) << ran.err;
    EXPECT_TRUE(isTaken());
    EXPECT_NE(ran.err.find("a.dwg"), std::string::npos) << "what would have been asked is told";
}

TEST_F(PictureTest, InAFolderThatMayNotBeWrittenIsTakenToo)
{
    std::filesystem::create_directory(folder.path() / "fixed");
    std::filesystem::copy(path("a.dwg"), path("fixed/a.dwg"));
    allow("fixed", 0555);
    const Ran ran = take({path("fixed/a.dwg")});
    allow("fixed", 0755);
    EXPECT_EQ(ran.code, 0) << ran.err;
    EXPECT_TRUE(isTaken());
}

TEST_F(PictureTest, OfADrawingInUseIsTakenBesideTheProgramThatHasItOpen)
{
    std::filesystem::permissions(folder.path(), std::filesystem::perms::owner_all);
    Process first(toolLine({path("a.dwg")}));
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return CFileOpenInfoTipManager::IsInfoFileExists(folder.file("a.dwg")); }, 20000));
    const Ran ran = take({path("a.dwg")});
    EXPECT_EQ(ran.code, 0) << ran.err;
    EXPECT_TRUE(isTaken()) << "its files are not handed over";
    EXPECT_TRUE(CFileOpenInfoTipManager::IsInfoFileExists(folder.file("a.dwg")));
    ::kill(first.id(), SIGTERM);
    first.wait();
}

TEST_F(PictureTest, AQuestionThatItsScriptLeavesOpenIsRefused)
{
    const Ran ran = take({"--script", script("_LAYOUT\n_Rename\n"), path("a.dwg")});
    EXPECT_EQ(ran.code, 0) << ran.err;
    EXPECT_TRUE(isTaken());
}

TEST_F(PictureTest, WhatACrashLeftIsLeftForTheUser)
{
    run({"--hidden", "crash", "--script", script("CTAB\nLayout1\n"), path("a.dwg")});
    const auto lost = app::lostSessions(folder.file("state/tarvik/sessions"));
    ASSERT_EQ(lost.size(), 1u);
    const Ran ran = take({path("b.dwg")});
    EXPECT_EQ(ran.code, 0) << ran.err;
    EXPECT_TRUE(isTaken());
    EXPECT_EQ(app::lostSessions(folder.file("state/tarvik/sessions")).size(), 1u);
    EXPECT_EQ(app::takeNewCrashReports(folder.file("state/tarvik/crashes")).size(), 1u);
}

/// Throws when it is told to, from within the event loop.
class Throwing : public QObject
{
public:
    bool event(QEvent*) override { throwErrorStatus(kvErrOutOfRange); }
};

TEST(GuardedApplication, OutlivesWhatAnEventThrows)
{
    auto* application = dynamic_cast<window::GuardedApplication*>(QCoreApplication::instance());
    ASSERT_TRUE(application);
    std::vector<TvString> told;
    const auto former =
        std::exchange(application->onFailure, [&](const TvString& what) { told.push_back(what); });
    Throwing throwing;
    for (int i = 0; i < 100; ++i)
        QCoreApplication::postEvent(&throwing, new QEvent(QEvent::User));
    QCoreApplication::processEvents();
    application->onFailure = former;
    EXPECT_EQ(told, std::vector<TvString>(20, u"24")) << "not for ever";
}

} // namespace
