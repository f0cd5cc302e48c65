// The poll of open sets that asks the disk in another thread.

#include <cstring>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <base/path_rules.h>
#include <core/leftover.h>
#include <core/watch_poller.h>

#include "blocking_files.h"
#include "session_scene.h"

namespace {

namespace fs = std::filesystem;

/// A file server of which one folder is away. Notes who asks there.
class AwayFolder : public base::FaultyFileOps
{
public:
    AwayFolder(std::string folder, std::thread::id forbidden)
        : FaultyFileOps(base::systemFileOps()), m_folder(std::move(folder)), m_forbidden(forbidden)
    {
    }
    int open(const std::string& path, OpenMode mode, Descriptor& out) override
    {
        wait(path);
        return base::systemFileOps().open(path, mode, out);
    }
    int close(Descriptor file) override { return base::systemFileOps().close(file); }
    int read(Descriptor file, std::uint64_t offset, std::span<std::byte> buffer,
             std::size_t& out) override
    {
        return base::systemFileOps().read(file, offset, buffer, out);
    }
    int describe(Descriptor file, base::FileInfo& out) override
    {
        return base::systemFileOps().describe(file, out);
    }
    int describeName(const std::string& path, base::FileInfo& out) override
    {
        wait(path);
        return base::systemFileOps().describeName(path, out);
    }
    int describeTarget(const std::string& path, base::FileInfo& out) override
    {
        wait(path);
        return base::systemFileOps().describeTarget(path, out);
    }
    int readLink(const std::string& path, std::string& out) override
    {
        wait(path);
        return base::systemFileOps().readLink(path, out);
    }
    int isByteLocked(Descriptor file, std::uint64_t offset, bool& out) override
    {
        return base::systemFileOps().isByteLocked(file, offset, out);
    }
    void goAway()
    {
        const std::lock_guard guard(m_mutex);
        m_isAway = true;
    }
    void comeBack()
    {
        std::unique_lock guard(m_mutex);
        m_isAway = false;
        m_changed.notify_all();
        m_changed.wait(guard, [this] { return m_inside == 0; });
    }
    int inside() const
    {
        const std::lock_guard guard(m_mutex);
        return m_inside;
    }
    int askedByForbidden() const { return m_askedByForbidden; }

private:
    void wait(const std::string& path)
    {
        if (!path.starts_with(m_folder))
            return;
        std::unique_lock guard(m_mutex);
        if (!m_isAway)
            return;
        if (std::this_thread::get_id() == m_forbidden) {
            ++m_askedByForbidden;
            return;
        }
        ++m_inside;
        m_changed.wait(guard, [this] { return !m_isAway; });
        --m_inside;
        m_changed.notify_all();
    }

    const std::string m_folder;
    const std::thread::id m_forbidden;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isAway = false;
    int m_inside = 0, m_askedByForbidden = 0;
};

class WatchPollerTest : public SessionTest
{
protected:
    static constexpr int kForEver = core::ApartWork::kForEver;
    void SetUp() override
    {
        SessionTest::SetUp();
        fs::create_directory(folder.path() / "share");
        sm::environment().files = &files;
        m_cookie = manager().registerEventHandler(&m_handler);
        near = made("near.dst");
        changeName(near, u"PLAN");
        far = made("share/far.dst");
        changeName(far, u"PLAN");
        for (TvSmDatabase* each : {near, far}) {
            ActivateSheetSet(each);
            g_watchTable.at(each).takeFile();
        }
        host.told.clear();
    }
    void TearDown() override
    {
        files.comeBack();
        while (core::ApartWork::running() > 0) // they use our files
            std::this_thread::yield();
        SessionTest::TearDown();
        manager().unregisterEventHandler(m_cookie);
    }
    void replaceOutside(const char* file, const char* name) const
    {
        std::string text = folder.read(file);
        const std::size_t at = text.find("PLAN");
        ASSERT_NE(at, std::string::npos);
        folder.write("outside.tmp", text.replace(at, 4, name));
        fs::rename(folder.path() / "outside.tmp", folder.path() / file);
    }
    static std::string nameOf(const TvSmDatabase* set)
    {
        return set->getSheetSet()->getName().utf8();
    }
    /// Ticks until the far set counts as one that cannot be reached.
    void tickUntilSilent(core::WatchPoller& poller)
    {
        while (core::lockInfoAtHand(far).state != base::LockState::Unreachable) {
            poller.tick();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    AwayFolder files{(folder.path() / "share").string(), std::this_thread::get_id()};
    TvSmDatabase *near = nullptr, *far = nullptr;

private:
    CTvSmSheetSetEventsHandler m_handler{&g_watchTable};
    int m_cookie = -1;
};

TEST_F(WatchPollerTest, ATickDoesWhatAPollDoesWhereTheDiskAnswers)
{
    core::WatchPoller poller(kForEver);
    poller.tick();
    EXPECT_TRUE(host.told.empty()) << "nothing new is nothing done";
    replaceOutside("share/far.dst", "OTHER");
    poller.tick();
    EXPECT_EQ(nameOf(far), "OTHER");
    EXPECT_EQ(host.told, (std::vector<std::string>{"list reload", "sheet views reload",
                                                   "model views reload"}));
    fs::remove(folder.path() / "near.dst");
    poller.tick();
    EXPECT_TRUE(fs::exists(folder.path() / "near.dst")) << "written again from memory";
}

TEST_F(WatchPollerTest, TheLockOfAnotherIsNotedAndShownOnce)
{
    core::WatchPoller poller(kForEver);
    base::EditLock other(base::systemFileOps(), base::systemClock(), folder.file("share/far.dst"));
    ASSERT_TRUE(other.take(u"edit"));
    EXPECT_EQ(core::lockStatusAtHand(far), 0) << "as it was seen last";
    poller.tick();
    poller.tick();
    EXPECT_EQ(core::lockStatusAtHand(far), 2);
    EXPECT_TRUE(core::lockInfoAtHand(far).owner) << "and who it is";
    EXPECT_EQ(host.told,
              (std::vector<std::string>{"list lock", "sheet views lock", "model views lock"}));
    other.release();
    poller.tick();
    EXPECT_EQ(core::lockStatusAtHand(far), 0);
}

TEST_F(WatchPollerTest, OurOwnLockIsKnownAtOnceAndTakesNoOutsideChangeIn)
{
    core::WatchPoller poller(kForEver);
    ASSERT_TRUE(far->lockDb(far));
    EXPECT_EQ(core::lockStatusAtHand(far), 1);
    poller.tick();
    replaceOutside("share/far.dst", "OTHER");
    poller.tick();
    EXPECT_EQ(nameOf(far), "PLAN");
    ASSERT_TRUE(far->unlockDb(far, false));
    EXPECT_EQ(core::lockStatusAtHand(far), 0) << "before the next tick, too";
    poller.tick();
    EXPECT_EQ(nameOf(far), "OTHER");
}

TEST_F(WatchPollerTest, AFolderThatIsAwayIsAskedOnlyInAnotherThreadAndStopsNobodysWatch)
{
    core::WatchPoller poller(0, 1);
    files.goAway();
    tickUntilSilent(poller);
    EXPECT_EQ(core::lockStatusAtHand(far), 8);
    while (core::answering(near) != near) // on a slow machine it counted as silent for a moment
        poller.tick();
    replaceOutside("near.dst", "OTHER");
    while (nameOf(near) != "OTHER")
        poller.tick();
    while (files.inside() == 0) // the same
        poller.tick();
    for (int i = 0; i < 20; ++i)
        poller.tick();
    EXPECT_EQ(files.inside(), 1) << "one thread waits there, however often it ticks";
    EXPECT_EQ(files.askedByForbidden(), 0);
}

TEST_F(WatchPollerTest, WhenTheFolderIsBackItIsWatchedAgain)
{
    core::WatchPoller poller(0, 1);
    files.goAway();
    tickUntilSilent(poller);
    files.comeBack();
    replaceOutside("share/far.dst", "OTHER");
    while (nameOf(far) != "OTHER" || core::lockStatusAtHand(far) != 0)
        poller.tick();
    EXPECT_EQ(core::answering(far), far);
}

TEST_F(WatchPollerTest, OneThatGoesWhileItWaitsAndASetThatClosesAreSafe)
{
    {
        core::WatchPoller poller(0, 1);
        files.goAway();
        tickUntilSilent(poller);
        SetCurrentDatabase(near);
        CloseCurrentSheetSet();
        poller.tick();
    }
    files.comeBack();
    EXPECT_EQ(files.askedByForbidden(), 0);
}

TEST_F(WatchPollerTest, AnAnswerAboutAFormerVersionLeadsToNothing)
{
    core::WatchPoller poller(0, 1'000'000);
    files.goAway();
    poller.tick(); // asked, and not answered
    while (files.inside() == 0)
        std::this_thread::yield();
    files.comeBack();
    changeName(far, u"OURS"); // taken over meanwhile
    host.told.clear();
    poller.tick();
    EXPECT_TRUE(host.told.empty()) << "it is not loaded anew";
}

TvString besideSet(const TvString& path)
{
    return path + u".left";
}
int g_lookedAfter = 0;

TEST_F(WatchPollerTest, WhatWasLeftBesideASetIsHandedOverWhenTheUserMayBeAsked)
{
    g_lookedAfter = 0;
    const core::Leftover former = core::leftover();
    core::setLeftover({&besideSet, [](TvSmDatabase&) { ++g_lookedAfter; }});
    core::WatchPoller poller(kForEver);
    poller.tick();
    EXPECT_EQ(g_lookedAfter, 0);
    folder.write("near.dst.left", "x");
    poller.tick(false);
    EXPECT_EQ(g_lookedAfter, 0);
    poller.tick();
    EXPECT_EQ(g_lookedAfter, 1);
    core::setLeftover(former);
}

/// On the system's own disk, which tells what happens: looks are rare.
class IdleWatchTest : public WatchPollerTest
{
protected:
    void SetUp() override
    {
        WatchPollerTest::SetUp();
        sm::environment().files = nullptr;
        for (TvSmDatabase* each : {near, far}) {
            // What is written from now on has another time for certain.
            const fs::path file = base::nativePath(each->getFileName());
            fs::last_write_time(file, fs::last_write_time(file) - std::chrono::hours(1));
            g_watchTable.at(each).takeFile();
        }
        for (int i = 0; i < 2; ++i)
            poller.tick();
    }
    /// The system tells nobody of it.
    void writeUnnoticed(const char* file, const char* name) const
    {
        const int descriptor = ::open((folder.path() / file).c_str(), O_RDWR | O_CLOEXEC);
        ASSERT_GE(descriptor, 0);
        const std::size_t at = folder.read(file).find("PLAN"), size = folder.read(file).size();
        void* bytes = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
        ASSERT_NE(bytes, MAP_FAILED);
        std::memcpy(static_cast<char*>(bytes) + at, name, 4);
        ::msync(bytes, size, MS_SYNC);
        ::munmap(bytes, size);
        ::close(descriptor);
    }

    core::WatchPoller poller{kForEver, 1000, 1'000'000};
};

TEST_F(IdleWatchTest, ASetIsNotLookedAtWhileNothingHappens)
{
    writeUnnoticed("share/far.dst", "ALAS");
    poller.tick();
    EXPECT_EQ(nameOf(far), "PLAN");
    core::WatchPoller other(kForEver, 1000, 0);
    other.tick();
    EXPECT_EQ(nameOf(far), "ALAS") << "it would have been seen";
}

TEST_F(IdleWatchTest, AReplacedFileIsLoadedAtTheNextTick)
{
    replaceOutside("share/far.dst", "OTHER");
    poller.tick();
    EXPECT_EQ(nameOf(far), "OTHER");
    poller.tick();
    replaceOutside("near.dst", "OTHER");
    poller.tick();
    EXPECT_EQ(nameOf(near), "OTHER");
}

TEST_F(IdleWatchTest, AFileThatGoesIsWrittenAgainAtTheNextTick)
{
    fs::remove(folder.path() / "near.dst");
    poller.tick();
    EXPECT_TRUE(fs::exists(folder.path() / "near.dst"));
}

TEST_F(IdleWatchTest, AFolderThatIsReplacedIsNoticedAndWatchedOn)
{
    fs::copy(folder.path() / "share", folder.path() / "new");
    fs::rename(folder.path() / "share", folder.path() / "former");
    fs::rename(folder.path() / "new", folder.path() / "share");
    for (int i = 0; i < 3; ++i)
        poller.tick();
    replaceOutside("share/far.dst", "OTHER");
    poller.tick();
    EXPECT_EQ(nameOf(far), "OTHER");
}

TEST_F(IdleWatchTest, TheLockOfAnotherIsSeenWhenItComesAndWhenItGoes)
{
    base::EditLock other(base::systemFileOps(), base::systemClock(), folder.file("share/far.dst"));
    ASSERT_TRUE(other.take(u"edit"));
    poller.tick();
    EXPECT_EQ(core::lockStatusAtHand(far), 2);
    poller.tick();
    other.release();
    poller.tick();
    EXPECT_EQ(core::lockStatusAtHand(far), 0);
}

TEST_F(IdleWatchTest, ASetThatIsALinkIntoAnotherFolderIsLookedAtEachTime)
{
    fs::rename(folder.path() / "near.dst", folder.path() / "share/real.dst");
    fs::create_symlink(folder.path() / "share/real.dst", folder.path() / "near.dst");
    for (int i = 0; i < 3; ++i)
        poller.tick();
    writeUnnoticed("share/real.dst", "ALAS");
    poller.tick();
    EXPECT_EQ(nameOf(near), "ALAS");
}

TEST_F(IdleWatchTest, AChangeThatHadToWaitIsTakenInWhenTheLockEnds)
{
    ASSERT_TRUE(far->lockDb(far));
    poller.tick();
    replaceOutside("share/far.dst", "OTHER");
    poller.tick();
    poller.tick();
    EXPECT_EQ(nameOf(far), "PLAN");
    ASSERT_TRUE(far->unlockDb(far, false));
    poller.tick();
    EXPECT_EQ(nameOf(far), "OTHER");
}

} // namespace
