#include <base/edit_lock.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "process_support.h"
#include "publish_scene.h"

using namespace base;
using Kind = FaultyFileOps::Kind;

namespace {

constexpr char kSidecar[] = ".PLAN.dst.lk";
constexpr char kForeignToken[] = "0123456789abcdef0123456789abcdef";

/// A record such as another program may have left.
std::string foreignRecord(const char* machine = "00000000000000000000000000000000")
{
    LockOwner owner;
    owner.token = kForeignToken;
    owner.user = "berta";
    owner.host = "far-away";
    owner.machineId = machine;
    owner.pid = 99;
    owner.sinceNs = 1'690'000'000'000'000'000;
    return ownerRecordText(owner);
}

struct EditLockTest : testing::Test {
    PublishScene scene;
    EditLock lock{scene.ops, scene.clock, scene.path()};
    EditLock other{scene.ops, scene.clock, scene.path()};

    LockState stateSeenBy(EditLock& who) { return who.query().state; }
    std::string record() const { return scene.folder.read(kSidecar); }
    std::optional<LockOwner> recordedOwner() const { return parseOwnerRecord(record()); }
    std::string sidecarPath() const { return (scene.folder.path() / kSidecar).string(); }
};

/// A system that grants every lock to everybody, as some network file systems do.
class GrantingFileOps : public FaultyFileOps
{
public:
    using FaultyFileOps::FaultyFileOps;
    int lockByte(Descriptor, std::uint64_t) override { return 0; }
    int isByteLocked(Descriptor, std::uint64_t, bool& out) override
    {
        out = false;
        return 0;
    }
};

/// A system on which somebody else has got our lock.
class StolenFileOps : public FaultyFileOps
{
public:
    using FaultyFileOps::FaultyFileOps;
    int isByteLocked(Descriptor file, std::uint64_t offset, bool& out) override
    {
        const int error = FaultyFileOps::isByteLocked(file, offset, out);
        out = out || isStolen;
        return error;
    }
    bool isStolen = false;
};

} // namespace

TEST(LockState, TellsWhetherTheLockMayBeTaken)
{
    EXPECT_EQ(lockStatusOf(LockState::Free), 0);
    EXPECT_EQ(lockStatusOf(LockState::HeldByMe), 1);
    EXPECT_EQ(lockStatusOf(LockState::HeldSameHost), 2);
    EXPECT_EQ(lockStatusOf(LockState::HeldOtherHost), 3);
    EXPECT_EQ(lockStatusOf(LockState::Abandoned), 0);
    EXPECT_EQ(lockStatusOf(LockState::Lost), 5);
    EXPECT_EQ(lockStatusOf(LockState::Denied), 6);
    EXPECT_EQ(lockStatusOf(LockState::Unsupported), 0);
    EXPECT_EQ(lockStatusOf(LockState::Unreachable), 8);
}

TEST_F(EditLockTest, IsFreeWhereNobodyLocked)
{
    scene.put("x");

    EXPECT_EQ(stateSeenBy(lock), LockState::Free);
}

TEST_F(EditLockTest, QueryCreatesNothingAndTakesNothing)
{
    scene.put("x");
    const auto before = scene.names();
    lock.query();
    scene.folder.write(kSidecar, foreignRecord());
    const auto info = lock.query();

    EXPECT_EQ(info.state, LockState::Abandoned);
    scene.ops.remove(sidecarPath());
    EXPECT_EQ(scene.names(), before);
    EXPECT_EQ(scene.ops.openFiles(), 0);
    const std::set<Kind> harmless = {Kind::Open,         Kind::Close, Kind::Describe,
                                     Kind::DescribeName, Kind::Read,  Kind::DescribeTarget,
                                     Kind::IsByteLocked, Kind::Remove /* ours, above */};
    for (const auto& call : scene.ops.trace())
        EXPECT_TRUE(harmless.contains(call.kind)) << FaultyFileOps::textOf(call);
}

TEST_F(EditLockTest, IsHeldByMeOnceTaken)
{
    ASSERT_TRUE(lock.take("renumber"));

    EXPECT_TRUE(lock.isHeld());
    EXPECT_TRUE(lock.hasSystemLock());
    const LockInfo info = lock.query();
    EXPECT_EQ(info.state, LockState::HeldByMe);
    ASSERT_TRUE(info.owner);
    EXPECT_EQ(info.owner->pid, ::getpid());
    EXPECT_EQ(info.owner->sinceNs, scene.clock.utcNs());
    EXPECT_EQ(info.owner->purpose, TvString("renumber"));
    ASSERT_TRUE(recordedOwner());
    EXPECT_EQ(recordedOwner()->token, info.owner->token);
}

TEST_F(EditLockTest, DoesNotNestForItsHolder)
{
    ASSERT_TRUE(lock.take("a"));

    const Status again = lock.take("b");

    EXPECT_EQ(again.failure(), Failure::Locked);
    EXPECT_EQ(again.reason(), Reason::LockHeld);
    EXPECT_EQ(recordedOwner()->purpose, TvString("a"));
}

TEST_F(EditLockTest, KeepsASecondHolderOfTheProcessOut)
{
    ASSERT_TRUE(lock.take("a"));

    EXPECT_EQ(stateSeenBy(other), LockState::HeldSameHost);
    EXPECT_EQ(other.query().owner->purpose, TvString("a"));
    EXPECT_EQ(other.take("b").failure(), Failure::Locked);
    EXPECT_FALSE(other.isHeld());

    lock.release();
    EXPECT_TRUE(other.take("b"));
}

TEST_F(EditLockTest, SharesTheSidecarWithEveryNameOfTheFile)
{
    std::filesystem::create_directory(scene.folder.path() / "projects");
    scene.put("x");
    std::filesystem::create_symlink("../PLAN.dst", scene.folder.path() / "projects" / "mine.dst");
    EditLock byLink(scene.ops, scene.clock, scene.folder.file("projects/mine.dst"));

    ASSERT_TRUE(byLink.take("a"));

    EXPECT_EQ(stateSeenBy(lock), LockState::HeldSameHost);
    EXPECT_EQ(lock.take("b").failure(), Failure::Locked);
    EXPECT_FALSE(std::filesystem::exists(scene.folder.path() / "projects" / ".mine.dst.lk"));
}

TEST_F(EditLockTest, ReleaseClearsTheRecordAndKeepsTheSidecar)
{
    ASSERT_TRUE(lock.take("a"));
    lock.release();

    EXPECT_FALSE(lock.isHeld());
    EXPECT_EQ(record(), std::string(kOwnerRecordSize, '\0'));
    EXPECT_EQ(stateSeenBy(lock), LockState::Free);
    EXPECT_EQ(scene.ops.openFiles(), 0);
    lock.release(); // nothing to do
    EXPECT_TRUE(lock.take("again"));
}

TEST_F(EditLockTest, ReleasesWhenItGoes)
{
    {
        EditLock brief(scene.ops, scene.clock, scene.path());
        ASSERT_TRUE(brief.take("a"));
    }
    EXPECT_EQ(stateSeenBy(lock), LockState::Free);
}

TEST_F(EditLockTest, IsHeldOnThisHostByAnotherProcess)
{
    const WaitingChild child([this] { static_cast<void>(lock.take("child's work").failure()); });
    ASSERT_TRUE(child.isThere());

    const LockInfo info = other.query();
    EXPECT_EQ(info.state, LockState::HeldSameHost);
    ASSERT_TRUE(info.owner);
    EXPECT_EQ(info.owner->purpose, TvString("child's work"));
    const Status refused = other.take("mine");
    EXPECT_EQ(refused.failure(), Failure::Locked);
    ASSERT_EQ(refused.arguments().size(), 2u);
    EXPECT_EQ(refused.arguments()[1], info.owner->user + TvString("@") + info.owner->host);
    EXPECT_EQ(recordedOwner()->purpose, TvString("child's work"));
}

TEST_F(EditLockTest, IsHeldOnAnotherHostWhenTheRecordSaysSo)
{
    const WaitingChild child([this] { static_cast<void>(lock.take("x").failure()); });
    ASSERT_TRUE(child.isThere());
    scene.folder.write(kSidecar, foreignRecord());

    const LockInfo info = other.query();

    EXPECT_EQ(info.state, LockState::HeldOtherHost);
    EXPECT_EQ(info.owner->user, TvString("berta"));
    EXPECT_EQ(info.owner->sinceNs, 1'690'000'000'000'000'000);
    EXPECT_EQ(other.take("y").arguments()[1], TvString("berta@far-away"));
}

TEST_F(EditLockTest, ShowsAnOwnersControlCharactersEscaped)
{
    const WaitingChild child([this] { static_cast<void>(lock.take("x").failure()); });
    ASSERT_TRUE(child.isThere());
    scene.folder.write(kSidecar, "version=1\ntoken=" + std::string(kForeignToken) +
                                     "\nuser=a\\x0ab\nhost=h\x1b[2J\n");

    EXPECT_EQ(other.take("y").arguments()[1], escapedForDisplay(TvString(u"a\nb@h\x1b[2J")));
}

TEST_F(EditLockTest, IsHeldSomewhereWhenTheRecordIsNone)
{
    const WaitingChild child([this] { static_cast<void>(lock.take("x").failure()); });
    ASSERT_TRUE(child.isThere());
    scene.folder.write(kSidecar, std::string(10'000'000, '\x1b'));

    EXPECT_EQ(other.query().state, LockState::HeldOtherHost);
    EXPECT_FALSE(other.query().owner);
    EXPECT_EQ(other.take("y").arguments()[1], TvString("?"));
}

TEST_F(EditLockTest, IsAbandonedWhenOnlyTheRecordIsLeft)
{
    scene.folder.write(kSidecar, foreignRecord());

    EXPECT_EQ(stateSeenBy(lock), LockState::Abandoned);
    EXPECT_EQ(lock.query().owner->user, TvString("berta"));
    ASSERT_TRUE(lock.take("mine"));
    EXPECT_EQ(recordedOwner()->purpose, TvString("mine"));
}

TEST_F(EditLockTest, IsFreeForTheNextWhenItsHolderWasKilled)
{
    WaitingChild child([this] { static_cast<void>(lock.take("x").failure()); });
    ASSERT_TRUE(child.isThere());
    child.kill();

    EXPECT_EQ(stateSeenBy(other), LockState::Abandoned);
    EXPECT_TRUE(other.take("y"));
}

TEST_F(EditLockTest, IsNotKeptByAProgramThatItsHolderStarted)
{
    int ends[2] = {-1, -1};
    ASSERT_EQ(::pipe(ends), 0);
    WaitingChild holder([this, &ends] {
        static_cast<void>(lock.take("x").failure());
        int execs[2] = {-1, -1};
        static_cast<void>(::pipe2(execs, O_CLOEXEC) == 0);
        const pid_t sleeper = ::fork();
        if (sleeper == 0) {
            ::execlp("sleep", "sleep", "60", nullptr);
            ::_exit(127);
        }
        ::close(execs[1]);
        char none = 0;
        static_cast<void>(::read(execs[0], &none, 1) == 0); // ends when it is another program
        static_cast<void>(::write(ends[1], &sleeper, sizeof sleeper) > 0);
    });
    ASSERT_TRUE(holder.isThere());
    pid_t sleeper = 0;
    ASSERT_EQ(::read(ends[0], &sleeper, sizeof sleeper), ssize_t(sizeof sleeper));
    ASSERT_GT(sleeper, 0); // a signal to -1 would go to everybody
    ::close(ends[0]);
    ::close(ends[1]);
    EXPECT_EQ(stateSeenBy(other), LockState::HeldSameHost);

    holder.kill();

    EXPECT_EQ(::kill(sleeper, 0), 0); // still there
    EXPECT_TRUE(other.take("y"));
    ::kill(sleeper, SIGKILL);
}

TEST_F(EditLockTest, SurvivesTheEndOfAForksCopy)
{
    ASSERT_TRUE(lock.take("x"));

    EXPECT_EQ(runInChild([this] {
                  lock.release();
                  return lock.isHeld() ? 1 : 0;
              }),
              0);

    EXPECT_TRUE(lock.heartbeat());
    EXPECT_EQ(recordedOwner()->purpose, TvString("x"));
    EXPECT_EQ(runInChild([this] {
                  EditLock stranger(systemFileOps(), scene.clock, scene.path());
                  return stranger.query().state == LockState::HeldSameHost ? 0 : 1;
              }),
              0);
}

// Heartbeat

TEST_F(EditLockTest, HeartbeatWritesTheRecordAnew)
{
    ASSERT_TRUE(lock.take("x"));
    scene.ops.reset();

    EXPECT_TRUE(lock.heartbeat());

    EXPECT_NE(scene.numberOf(Kind::Write, kSidecar), 0);
    EXPECT_NE(scene.numberOf(Kind::Flush, kSidecar), 0);
    EXPECT_NE(scene.numberOf(Kind::IsByteLocked, kSidecar), 0);
    EXPECT_EQ(lock.query().state, LockState::HeldByMe);
}

TEST_F(EditLockTest, HeartbeatComesEveryFiveSeconds)
{
    ASSERT_TRUE(lock.take("x"));
    scene.ops.reset();
    scene.clock.advance(std::chrono::milliseconds(4999));
    EXPECT_TRUE(lock.heartbeatIfDue());
    EXPECT_EQ(scene.ops.count(), 0);

    scene.clock.advance(std::chrono::milliseconds(1));
    EXPECT_TRUE(lock.heartbeatIfDue());
    EXPECT_NE(scene.ops.count(), 0);

    scene.ops.reset();
    EXPECT_TRUE(lock.heartbeatIfDue());
    EXPECT_EQ(scene.ops.count(), 0);
}

TEST_F(EditLockTest, HeartbeatOfNoLockIsFalse)
{
    EXPECT_FALSE(lock.heartbeat());
    EXPECT_FALSE(lock.heartbeatIfDue());
    scene.clock.advance(std::chrono::seconds(6));
    EXPECT_FALSE(lock.heartbeatIfDue());
}

TEST_F(EditLockTest, IsLostWhenAForeignTokenIsThere)
{
    ASSERT_TRUE(lock.take("x"));
    scene.folder.write(kSidecar, foreignRecord());

    EXPECT_FALSE(lock.heartbeat());

    EXPECT_EQ(record(), foreignRecord()); // not written over
    EXPECT_EQ(lock.query().state, LockState::Lost);
    EXPECT_TRUE(lock.isHeld());
    EXPECT_FALSE(lock.hasSystemLock());
    EXPECT_FALSE(lock.heartbeatIfDue());
    EXPECT_EQ(lock.take("again").reason(), Reason::LockLost);
    EXPECT_EQ(lock.removeSidecar().reason(), Reason::LockLost);

    lock.release();
    EXPECT_EQ(record(), foreignRecord());
    EXPECT_EQ(lock.query().state, LockState::Abandoned);
    EXPECT_TRUE(lock.take("again"));
}

TEST_F(EditLockTest, ReleaseLeavesAForeignRecordThatNoHeartbeatSaw)
{
    ASSERT_TRUE(lock.take("x"));
    scene.folder.write(kSidecar, foreignRecord());

    lock.release();

    EXPECT_EQ(record(), foreignRecord());
}

TEST_F(EditLockTest, LostOnceIsFreeForOthersAtOnce)
{
    ASSERT_TRUE(lock.take("x"));
    scene.folder.write(kSidecar, "scribble");
    ASSERT_FALSE(lock.heartbeat());

    ASSERT_TRUE(other.take("y"));
    lock.release(); // of what is lost: the other's stays

    EXPECT_TRUE(other.heartbeat());
    EXPECT_EQ(recordedOwner()->purpose, TvString("y"));
    EXPECT_EQ(lock.query().state, LockState::HeldSameHost);
}

TEST_F(EditLockTest, IsLostWhenTheSidecarWentOrIsAnother)
{
    ASSERT_TRUE(lock.take("x"));
    const std::string content = record();
    std::filesystem::remove(sidecarPath());
    EXPECT_FALSE(lock.heartbeat());
    lock.release();

    ASSERT_TRUE(lock.take("x"));
    std::filesystem::rename(sidecarPath(), sidecarPath() + ".old");
    scene.folder.write(kSidecar, content);
    EXPECT_FALSE(lock.heartbeat());
    EXPECT_EQ(scene.ops.openFiles(), 0);
}

TEST_F(EditLockTest, IsLostByAnyErrorOfAHeartbeat)
{
    ASSERT_TRUE(lock.take("x"));
    scene.ops.reset();
    ASSERT_TRUE(lock.heartbeat());
    const int calls = scene.ops.count();
    lock.release();
    for (int n = 1; n <= calls; ++n) {
        ASSERT_TRUE(lock.take("x")) << n;
        scene.ops.reset();
        scene.ops.failAt(n, EIO);
        EXPECT_FALSE(lock.heartbeat()) << n;
        EXPECT_EQ(lock.query().state, LockState::Lost) << n;
        EXPECT_EQ(scene.ops.openFiles(), 0) << n;
        lock.release();
        scene.ops.reset();
    }
}

TEST(EditLockLost, WhenSomebodyElseHoldsTheSystemLock)
{
    PublishScene scene;
    StolenFileOps ops(systemFileOps());
    EditLock lock(ops, scene.clock, scene.path());
    ASSERT_TRUE(lock.take("x"));
    ASSERT_TRUE(lock.heartbeat());

    ops.isStolen = true;

    EXPECT_FALSE(lock.heartbeat());
    EXPECT_EQ(lock.query().state, LockState::Lost);
}

// No lock service

TEST_F(EditLockTest, CountsAsTakenWhereThereIsNoLockService)
{
    for (const int error : {ENOLCK, EOPNOTSUPP}) {
        scene.ops.failKind(Kind::LockByte, error);
        scene.ops.failKind(Kind::IsByteLocked, error);

        EXPECT_EQ(stateSeenBy(lock), error == ENOLCK ? LockState::Free : LockState::Unsupported);
        ASSERT_TRUE(lock.take("x"));
        EXPECT_TRUE(lock.isHeld());
        EXPECT_FALSE(lock.hasSystemLock());
        EXPECT_EQ(stateSeenBy(lock), LockState::HeldByMe);
        EXPECT_TRUE(lock.heartbeat());
        EXPECT_EQ(stateSeenBy(other), LockState::HeldSameHost); // the table still holds
        EXPECT_EQ(other.take("y").failure(), Failure::Locked);
        lock.release();
        EXPECT_EQ(stateSeenBy(other), LockState::Unsupported);
        EXPECT_EQ(scene.ops.openFiles(), 0);
        scene.ops.reset();
    }
}

TEST(EditLockService, IsFoundOutWhereEverybodyIsGranted)
{
    PublishScene scene;
    GrantingFileOps ops(systemFileOps());
    EditLock lock(ops, scene.clock, scene.path());

    ASSERT_TRUE(lock.take("x"));

    EXPECT_TRUE(lock.isHeld());
    EXPECT_FALSE(lock.hasSystemLock());
    lock.release();
    EXPECT_EQ(lock.query().state, LockState::Unsupported);
}

TEST_F(EditLockTest, IsTriedOutOnceAFolder)
{
    ASSERT_TRUE(lock.take("x"));
    lock.release();
    int tries = 0;
    for (const auto& call : scene.ops.trace())
        tries += call.kind == Kind::LockByte;
    EXPECT_EQ(tries, 2); // ours, and the second that must be denied

    scene.ops.reset();
    ASSERT_TRUE(lock.take("x"));
    tries = 0;
    for (const auto& call : scene.ops.trace())
        tries += call.kind == Kind::LockByte;
    EXPECT_EQ(tries, 1);
}

// No right

TEST_F(EditLockTest, RefusesALinkInTheSidecarsPlace)
{
    scene.folder.write("authorized_keys", "precious");
    std::filesystem::create_symlink("authorized_keys", sidecarPath());

    EXPECT_EQ(stateSeenBy(lock), LockState::Denied);
    EXPECT_EQ(lock.take("x").failure(), Failure::Denied);
    EXPECT_EQ(scene.folder.read("authorized_keys"), "precious");

    std::filesystem::remove(sidecarPath());
    std::filesystem::create_symlink("nowhere", sidecarPath());
    EXPECT_EQ(stateSeenBy(lock), LockState::Denied);
    EXPECT_EQ(lock.take("x").failure(), Failure::Denied);
    EXPECT_FALSE(std::filesystem::exists(scene.folder.path() / "nowhere"));
}

TEST_F(EditLockTest, RefusesAPipeOrFolderInTheSidecarsPlaceWithoutWaiting)
{
    ASSERT_EQ(::mkfifo(sidecarPath().c_str(), 0666), 0);
    EXPECT_EQ(stateSeenBy(lock), LockState::Denied);
    EXPECT_EQ(lock.take("x").failure(), Failure::Denied);

    std::filesystem::remove(sidecarPath());
    std::filesystem::create_directory(sidecarPath());
    EXPECT_EQ(stateSeenBy(lock), LockState::Denied);
    EXPECT_EQ(lock.take("x").failure(), Failure::Denied);
    EXPECT_EQ(scene.ops.openFiles(), 0);
}

TEST_F(EditLockTest, IsDeniedOnAReadOnlyFile)
{
    scene.put("x");
    std::filesystem::permissions(scene.folder.path() / "PLAN.dst", std::filesystem::perms(0444));

    EXPECT_EQ(stateSeenBy(lock), LockState::Denied);
    EXPECT_EQ(lock.take("x").failure(), Failure::ReadOnly);
    EXPECT_EQ(scene.names(), std::set<std::string>{"PLAN.dst"});
}

TEST_F(EditLockTest, IsDeniedInAReadOnlyFolder)
{
    scene.put("x");
    std::filesystem::permissions(scene.folder.path(), std::filesystem::perms(0555));

    EXPECT_EQ(stateSeenBy(lock), LockState::Denied);
    EXPECT_EQ(lock.take("x").failure(), Failure::Denied);
    EXPECT_EQ(scene.names(), std::set<std::string>{"PLAN.dst"});
}

TEST_F(EditLockTest, IsDeniedWhatAnotherUserKeepsToHimself)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs a second user";
    scene.put("x");
    std::filesystem::permissions(scene.folder.path(), std::filesystem::perms(0777));
    const auto refusal = [this] {
        return runAsNormalUser([this] {
            if (stateSeenBy(lock) != LockState::Denied)
                return 1;
            return lock.take("x").failure() == Failure::Denied ? 0 : 2;
        });
    };
    std::filesystem::permissions(scene.folder.path() / "PLAN.dst", std::filesystem::perms(0644));
    EXPECT_EQ(refusal(), 0); // the file

    std::filesystem::permissions(scene.folder.path() / "PLAN.dst", std::filesystem::perms(0666));
    scene.folder.write(kSidecar, "");
    std::filesystem::permissions(sidecarPath(), std::filesystem::perms(0444));
    EXPECT_EQ(refusal(), 0); // the sidecar

    std::filesystem::remove(sidecarPath());
    std::filesystem::permissions(scene.folder.path(), std::filesystem::perms(0755));
    EXPECT_EQ(refusal(), 0); // the folder
}

TEST_F(EditLockTest, LetsEverybodyLockWhoMayWriteTheFile)
{
    scene.put("x");
    std::filesystem::permissions(scene.folder.path() / "PLAN.dst", std::filesystem::perms(0660));

    ASSERT_TRUE(lock.take("x"));
    EXPECT_EQ(scene.modeOf(kSidecar), 0660u);
    lock.release();

    std::filesystem::permissions(scene.folder.path() / "PLAN.dst", std::filesystem::perms(0606));
    ASSERT_TRUE(lock.take("x"));
    EXPECT_EQ(scene.modeOf(kSidecar), 0606u);
}

TEST_F(EditLockTest, RefusesALoopOfLinks)
{
    std::filesystem::create_symlink("PLAN.dst", scene.folder.path() / "PLAN.dst");

    EXPECT_EQ(stateSeenBy(lock), LockState::Denied);
    EXPECT_EQ(lock.take("x").reason(), Reason::LinkLoop);
}

// Out of reach

TEST_F(EditLockTest, IsUnreachableWithItsFolder)
{
    EditLock gone(scene.ops, scene.clock, scene.folder.file("gone/PLAN.dst"));
    EXPECT_EQ(stateSeenBy(gone), LockState::Unreachable);
    EXPECT_EQ(gone.take("x").failure(), Failure::Unreachable);

    scene.put("x");
    EditLock below(scene.ops, scene.clock, scene.folder.file("PLAN.dst/PLAN.dst"));
    EXPECT_EQ(stateSeenBy(below), LockState::Unreachable);

    scene.ops.failKind(Kind::Open, ESTALE);
    EXPECT_EQ(stateSeenBy(lock), LockState::Unreachable);
    EXPECT_EQ(lock.take("x").failure(), Failure::Unreachable);
}

// Deletion of the file

TEST_F(EditLockTest, RemovesTheSidecarWithTheFile)
{
    ASSERT_TRUE(lock.take("delete"));

    EXPECT_TRUE(lock.removeSidecar());

    EXPECT_FALSE(lock.isHeld());
    EXPECT_TRUE(scene.names().empty());
    EXPECT_EQ(lock.removeSidecar().failure(), Failure::Usage);
    EXPECT_TRUE(other.take("new set"));
}

TEST_F(EditLockTest, RemovesNoOthersSidecar)
{
    ASSERT_TRUE(lock.take("delete"));
    std::filesystem::remove(sidecarPath());
    scene.folder.write(kSidecar, foreignRecord());

    EXPECT_TRUE(lock.removeSidecar());

    EXPECT_EQ(record(), foreignRecord());
}

TEST_F(EditLockTest, NeverEndsUpOnASidecarThatWasDeletedOnTheWay)
{
    int deletions = 0;
    scene.ops.before = [&](int, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::LockByte && deletions < 2) {
            ++deletions;
            std::filesystem::remove(sidecarPath());
        }
    };

    ASSERT_TRUE(lock.take("x"));

    EXPECT_EQ(deletions, 2);
    EXPECT_EQ(runInChild([this] {
                  EditLock stranger(systemFileOps(), scene.clock, scene.path());
                  return stranger.take("y").failure() == Failure::Locked ? 0 : 1;
              }),
              0);
}

TEST_F(EditLockTest, GivesUpWhenTheSidecarIsDeletedAllTheTime)
{
    scene.ops.before = [&](int, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::LockByte)
            std::filesystem::remove(sidecarPath());
    };

    EXPECT_EQ(lock.take("x").failure(), Failure::Locked);

    EXPECT_FALSE(lock.isHeld());
    EXPECT_EQ(scene.ops.openFiles(), 0);
    scene.ops.before = {};
    EXPECT_TRUE(other.take("y"));
}

// Faults

TEST_F(EditLockTest, IsWhollyTakenOrNotAtAllWhateverFails)
{
    for (const int error : {EIO, ENOSPC, EACCES, ESTALE}) {
        for (int n = 1;; ++n) {
            ASSERT_LT(n, 100);
            scene.ops.reset();
            scene.ops.failAt(n, error);
            const Status status = lock.take("x");
            const bool wasReached = scene.ops.count() >= n;
            EXPECT_EQ(lock.isHeld(), bool(status)) << n;
            if (!status) {
                EXPECT_NE(status.reason(), Reason::None) << n;
                EXPECT_EQ(scene.ops.openFiles(), 0) << n;
            }
            lock.release();
            scene.ops.reset();
            EXPECT_TRUE(other.take("y")) << n << "\n" << scene.ops.traceText();
            other.release();
            if (!wasReached)
                break;
        }
    }
}

TEST_F(EditLockTest, GoesToAnotherFileOnlyWhenFree)
{
    lock.setFile(scene.folder.file("OTHER.dst"));
    ASSERT_TRUE(lock.take("x"));
    EXPECT_EQ(lock.file(), scene.folder.file("OTHER.dst"));
    EXPECT_EQ(scene.names(), std::set<std::string>{".OTHER.dst.lk"});
}
