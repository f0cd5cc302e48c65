#include <base/publish.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "process_support.h"
#include "publish_scene.h"

using namespace base;
using Kind = FaultyFileOps::Kind;
using namespace std::chrono_literals;

namespace {

namespace fs = std::filesystem;

constexpr char kFirstToken[] = "00000000000000000000000000000000"; // goes before any other
constexpr char kLastToken[] = "ffffffffffffffffffffffffffffffff";

struct PublishTest : testing::Test {
    PublishScene scene;

    std::string nativePathOf(const std::string& name) const
    {
        return (scene.folder.path() / name).string();
    }
    /// A payload of somebody else's, as old as asked.
    std::string putPayload(const char* token, std::chrono::seconds age = 0s) const
    {
        const std::string name = std::string(".PLAN.dst.new.") + token;
        scene.folder.write(name, "theirs");
        fs::last_write_time(scene.folder.path() / name,
                            fs::last_write_time(scene.folder.path() / name) - age);
        return name;
    }
    std::int64_t elapsedMs() const { return (clockNow() - kStart) / 1'000'000; }
    std::int64_t clockNow() const { return const_cast<ManualClock&>(scene.clock).steadyNs(); }
    static constexpr std::int64_t kStart = 1'700'000'000'000'000'000;

    /// The number that operation has in the very commit that a test is about to make fail. Runs
    /// that commit once, undisturbed, in another folder.
    int numberInCommit(Kind kind, const std::string& end)
    {
        PublishScene rehearsal;
        rehearsal.put("old");
        EXPECT_TRUE(rehearsal.publish("new", "old"));
        const int number = rehearsal.numberOf(kind, end);
        EXPECT_NE(number, 0) << rehearsal.ops.traceText();
        return number;
    }
};

/// A clock that lets something happen while somebody sleeps.
class EventfulClock : public ManualClock
{
public:
    void sleep(std::chrono::milliseconds delay) override
    {
        ManualClock::sleep(delay);
        ++sleeps;
        if (onSleep)
            onSleep();
    }
    std::function<void()> onSleep;
    int sleeps = 0;
};

} // namespace

// The good case

TEST_F(PublishTest, MakesANewFile)
{
    const auto outcome = scene.publish("first", std::nullopt);

    ASSERT_TRUE(outcome);
    EXPECT_EQ(scene.content(), "first");
    EXPECT_EQ(outcome->hash, hashOfText("first"));
    EXPECT_EQ(scene.names(), (std::set<std::string>{"PLAN.dst", ".PLAN.dst.done.1"}));
    EXPECT_EQ(scene.ops.openFiles(), 0);
}

TEST_F(PublishTest, TellsTheStampThatTheNextLookSees)
{
    const auto outcome = scene.publish("first", std::nullopt);
    ASSERT_TRUE(outcome);

    const auto seen = lookAt(scene.ops, scene.clock, scene.path());

    ASSERT_TRUE(seen);
    EXPECT_EQ(*seen, outcome->stamp);
}

TEST_F(PublishTest, GivesANewFileTheRightsOfAnyNewFile)
{
    const mode_t mask = ::umask(027);
    ASSERT_TRUE(scene.publish("first", std::nullopt));
    ::umask(mask);

    EXPECT_EQ(scene.modeOf("PLAN.dst"), 0640u);
}

TEST_F(PublishTest, ReplacesTheVersionThatItWasMadeFrom)
{
    scene.put("old");

    ASSERT_TRUE(scene.publish("new", "old"));

    EXPECT_EQ(scene.content(), "new");
    EXPECT_EQ(scene.folder.read(".PLAN.dst.done.1"), "old");
    EXPECT_EQ(scene.folder.read(".PLAN.dst.done.2"), "new");
    EXPECT_TRUE(scene.leftovers().empty());
}

TEST_F(PublishTest, KeepsModeAndOwner)
{
    scene.put("old");
    ASSERT_EQ(::chmod(nativePathOf("PLAN.dst").c_str(), 0624), 0);
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(nativePathOf("PLAN.dst").c_str(), 65534, 65534), 0);
    }

    ASSERT_TRUE(scene.publish("new", "old"));

    struct stat found = {};
    ASSERT_EQ(::stat(nativePathOf("PLAN.dst").c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 07777u, 0624u);
    if (::geteuid() == 0) {
        EXPECT_EQ(found.st_uid, 65534u);
    }
}

TEST_F(PublishTest, KeepsThePayloadToItsOwnerUntilItHasTheFilesRights)
{
    scene.put("old");
    ASSERT_EQ(::chmod(nativePathOf("PLAN.dst").c_str(), 0644), 0);
    unsigned mode = 0;
    scene.ops.before = [&](int, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::Write)
            mode = scene.modeOf(fs::path(call.path).filename().string());
    };

    ASSERT_TRUE(scene.publish("new", "old"));

    EXPECT_EQ(mode, 0600u);
}

TEST_F(PublishTest, KeepsTheLastThreeVersions)
{
    std::optional<std::string> from;
    for (const char* text : {"1", "2", "3", "4", "5"}) {
        ASSERT_TRUE(scene.publish(text, from));
        from = text;
    }

    EXPECT_EQ(scene.namesWith(".done."),
              (std::set<std::string>{".PLAN.dst.done.3", ".PLAN.dst.done.4", ".PLAN.dst.done.5"}));
    EXPECT_EQ(scene.folder.read(".PLAN.dst.done.3"), "3");
    EXPECT_EQ(scene.folder.read(".PLAN.dst.done.5"), "5");
}

TEST_F(PublishTest, PublishesAnEmptyFileAndALargeOne)
{
    ASSERT_TRUE(scene.publish("", std::nullopt));
    EXPECT_EQ(scene.content(), "");
    const std::string large(3'500'000, 'x');
    ASSERT_TRUE(scene.publish(large, ""));
    EXPECT_EQ(scene.content(), large);
    ASSERT_TRUE(scene.publish("", large));
    EXPECT_EQ(scene.content(), "");
}

TEST_F(PublishTest, PublishesTheSameContentAnew)
{
    scene.put("same");

    EXPECT_TRUE(scene.publish("same", "same"));

    EXPECT_EQ(scene.content(), "same");
    EXPECT_TRUE(scene.leftovers().empty());
}

TEST_F(PublishTest, WritesOnHoweverLittleTheSystemTakes)
{
    scene.put("old");
    scene.ops.shortenFrom(1, 1);

    ASSERT_TRUE(scene.publish("a longer new version", "old"));

    EXPECT_EQ(scene.content(), "a longer new version");
}

TEST_F(PublishTest, FollowsALinkToTheFile)
{
    fs::create_directory(scene.folder.path() / "server");
    scene.folder.write("server/REAL.dst", "old");
    fs::create_symlink("server/REAL.dst", scene.folder.path() / "PLAN.dst");

    ASSERT_TRUE(scene.publish("new", "old"));

    EXPECT_TRUE(fs::is_symlink(scene.folder.path() / "PLAN.dst"));
    EXPECT_EQ(scene.folder.read("server/REAL.dst"), "new");
    EXPECT_EQ(scene.folder.read("server/.REAL.dst.done.2"), "new");
    EXPECT_EQ(scene.names(), (std::set<std::string>{"PLAN.dst", "server"}));
}

TEST_F(PublishTest, MakesTheFileAtTheEndOfALinkThatLeadsNowhere)
{
    fs::create_directory(scene.folder.path() / "server");
    fs::create_symlink("server/REAL.dst", scene.folder.path() / "PLAN.dst");

    ASSERT_TRUE(scene.publish("new", std::nullopt));

    EXPECT_TRUE(fs::is_symlink(scene.folder.path() / "PLAN.dst"));
    EXPECT_EQ(scene.folder.read("server/REAL.dst"), "new");
}

// Conflict

TEST_F(PublishTest, NeverOverwritesAnotherVersion)
{
    scene.put("theirs");
    ASSERT_EQ(::chmod(nativePathOf("PLAN.dst").c_str(), 0604), 0);

    const auto outcome = scene.publish("ours", "old");

    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.status().failure(), Failure::Conflict);
    EXPECT_EQ(outcome.status().reason(), Reason::PublishConflict);
    EXPECT_EQ(scene.content(), "theirs");
    EXPECT_EQ(scene.recovered(), "ours");
    EXPECT_TRUE(scene.leftovers().empty());
    const std::string name = *scene.namesWith("(recovered ").begin();
    EXPECT_EQ(outcome.status().arguments()[1], scene.folder.file(name));
    EXPECT_EQ(name.substr(0, 34), "PLAN (recovered 2023-11-14 221320 ") << name;
    EXPECT_EQ(name.substr(38), ").dst");
    EXPECT_EQ(scene.modeOf(name), 0604u);
    EXPECT_NE(scene.numberOf(Kind::Flush, scene.folder.path().filename().string()), 0);
}

TEST_F(PublishTest, KeepsNoRecoveryFileWhereNoneIsWanted)
{
    scene.put("theirs");
    auto request = PublishScene::request("ours", "old");
    request.keepRecovery = false;

    const auto outcome = publishVersion(scene.ops, scene.clock, scene.path(), request);

    EXPECT_EQ(outcome.status().reason(), Reason::ChangedOnDisk);
    EXPECT_EQ(scene.names(), std::set<std::string>{"PLAN.dst"});
}

TEST_F(PublishTest, KeepsARecoveryFileWhereLinksAreRefused)
{
    scene.put("theirs");
    scene.ops.failKind(Kind::Link, EPERM);

    EXPECT_EQ(scene.publish("ours", "old").status().reason(), Reason::PublishConflict);

    EXPECT_EQ(scene.recovered(), "ours");
    EXPECT_TRUE(scene.leftovers().empty());
}

TEST_F(PublishTest, OverwritesNoFileWhereThereWasNone)
{
    scene.put("theirs");

    EXPECT_EQ(scene.publish("ours", std::nullopt).status().failure(), Failure::Conflict);

    EXPECT_EQ(scene.content(), "theirs");
    EXPECT_EQ(scene.recovered(), "ours");
}

TEST_F(PublishTest, OverwritesNoFileThatAppearsInTheLastMoment)
{
    for (const bool canRenameNew : {true, false}) {
        for (const bool canLink : {true, false}) {
            PublishScene here;
            if (!canRenameNew)
                here.ops.failKind(Kind::RenameNew, EINVAL);
            if (!canLink)
                here.ops.failKind(Kind::Link, EPERM);
            here.ops.before = [&](int, const FaultyFileOps::Call& call) {
                if (call.kind == Kind::RenameNew && call.second.ends_with("/PLAN.dst"))
                    here.put("theirs");
            };

            EXPECT_EQ(here.publish("ours", std::nullopt).status().failure(), Failure::Conflict);

            EXPECT_EQ(here.content(), "theirs");
            EXPECT_EQ(here.recovered(), "ours");
            EXPECT_TRUE(here.leftovers().empty());
        }
    }
}

TEST_F(PublishTest, SucceedsWhenItsVeryContentIsThereAlready)
{
    scene.put("new"); // a former try, whose answer was lost

    const auto outcome = scene.publish("new", "old");

    ASSERT_TRUE(outcome);
    EXPECT_EQ(outcome->stamp, *lookAt(scene.ops, scene.clock, scene.path()));
    EXPECT_EQ(scene.names(), std::set<std::string>{"PLAN.dst"});
}

// A file that has gone

TEST_F(PublishTest, WritesAVanishedFileAgain)
{
    ASSERT_TRUE(scene.publish("old", std::nullopt));
    ASSERT_EQ(::chmod(nativePathOf("PLAN.dst").c_str(), 0600), 0);
    fs::remove(nativePathOf("PLAN.dst"));

    ASSERT_TRUE(scene.publish("new", "old"));

    EXPECT_EQ(scene.content(), "new");
    EXPECT_EQ(scene.modeOf("PLAN.dst"), 0600u); // not public because it was away for a moment
    EXPECT_EQ(scene.folder.read(".PLAN.dst.done.2"), "new");
}

TEST_F(PublishTest, WritesAVanishedFileAgainWithoutAnyTraceOfIt)
{
    ASSERT_TRUE(scene.publish("new", "old"));

    EXPECT_EQ(scene.content(), "new");
}

TEST_F(PublishTest, LeavesAVanishedFileAloneWhenAskedTo)
{
    auto request = PublishScene::request("new", "old");
    request.recreateVanished = false;

    const auto outcome = publishVersion(scene.ops, scene.clock, scene.path(), request);

    EXPECT_EQ(outcome.status().failure(), Failure::NotFound);
    EXPECT_TRUE(scene.names().empty());
}

TEST_F(PublishTest, YieldsToANewerVersionOfAVanishedFile)
{
    scene.folder.write(".PLAN.dst.done.7", "newer");
    scene.folder.write(".PLAN.dst.done.6", "old");

    EXPECT_EQ(scene.publish("ours", "old").status().failure(), Failure::Conflict);
    EXPECT_EQ(scene.publish("ours", std::nullopt).status().failure(), Failure::Conflict);

    EXPECT_FALSE(scene.isThere());
    EXPECT_EQ(scene.namesWith("(recovered ").size(), 2u);
}

// Refusals

TEST_F(PublishTest, RefusesAReadOnlyFile)
{
    scene.put("old");
    fs::permissions(scene.folder.path() / "PLAN.dst", fs::perms(0444));

    const auto outcome = scene.publish("new", "old");

    EXPECT_EQ(outcome.status().failure(), Failure::ReadOnly);
    EXPECT_EQ(outcome.status().reason(), Reason::FileReadOnly);
    EXPECT_EQ(scene.content(), "old");
    EXPECT_EQ(scene.names(), std::set<std::string>{"PLAN.dst"});
}

TEST_F(PublishTest, RefusesAReadOnlyFolder)
{
    scene.put("old");
    fs::permissions(scene.folder.path(), fs::perms(0555));

    EXPECT_EQ(scene.publish("new", "old").status().failure(), Failure::Denied);

    EXPECT_EQ(scene.content(), "old");
    EXPECT_EQ(scene.names(), std::set<std::string>{"PLAN.dst"});
}

TEST_F(PublishTest, RefusesWhatTheUserMayNotWrite)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs a second user";
    scene.put("old");
    fs::permissions(scene.folder.path() / "PLAN.dst", fs::perms(0644));
    fs::permissions(scene.folder.path(), fs::perms(0777));
    const auto refused = [this] {
        return runAsNormalUser([this] {
            return scene.publish("new", "old").status().failure() == Failure::Denied ? 0 : 1;
        });
    };
    EXPECT_EQ(refused(), 0); // the file, though the folder would let it be replaced

    fs::permissions(scene.folder.path() / "PLAN.dst", fs::perms(0666));
    fs::permissions(scene.folder.path(), fs::perms(0755));
    EXPECT_EQ(refused(), 0); // the folder
    EXPECT_EQ(scene.content(), "old");
    EXPECT_EQ(scene.names(), std::set<std::string>{"PLAN.dst"});
}

TEST_F(PublishTest, RefusesWhatIsNoFile)
{
    fs::create_directory(scene.folder.path() / "PLAN.dst");
    EXPECT_EQ(scene.publish("new", std::nullopt).status().reason(), Reason::NotRegularFile);

    fs::remove(scene.folder.path() / "PLAN.dst");
    ASSERT_EQ(::mkfifo(nativePathOf("PLAN.dst").c_str(), 0666), 0);
    EXPECT_EQ(scene.publish("new", std::nullopt).status().reason(), Reason::NotRegularFile);
    EXPECT_EQ(readVersion(scene.ops, scene.clock, scene.path(), 1000).status().reason(),
              Reason::NotRegularFile);
    EXPECT_EQ(lookAt(scene.ops, scene.clock, scene.path()).status().reason(),
              Reason::NotRegularFile);

    const auto request = PublishScene::request("new", std::nullopt);
    for (const TvString& path : {TvString(), TvString("/"), TvString("."), scene.folder.file("a/"),
                                 scene.folder.file("..")})
        EXPECT_FALSE(publishVersion(scene.ops, scene.clock, path, request)) << path.utf8();
}

TEST_F(PublishTest, SaysThatAFolderIsNotThere)
{
    const auto request = PublishScene::request("new", std::nullopt);

    const auto outcome =
        publishVersion(scene.ops, scene.clock, scene.folder.file("gone/PLAN.dst"), request);

    EXPECT_EQ(outcome.status().failure(), Failure::Unreachable);
}

TEST_F(PublishTest, SaysThatTheDiskIsFullAndLeavesAllAsItWas)
{
    scene.put("old");
    for (const Kind kind : {Kind::Write, Kind::Flush, Kind::Link}) {
        scene.ops.reset();
        scene.ops.failKind(kind, ENOSPC);

        const auto outcome = scene.publish("new", "old");

        EXPECT_EQ(outcome.status().failure(), Failure::DiskFull) << FaultyFileOps::nameOf(kind);
        EXPECT_EQ(scene.content(), "old");
        EXPECT_EQ(scene.names(), std::set<std::string>{"PLAN.dst"});
    }
}

TEST_F(PublishTest, NoticesWhatReadsBackDifferently)
{
    scene.put("old");
    bool isSpoiled = false;
    scene.ops.before = [&](int, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::Open && call.path.find(".new.") != std::string::npos &&
            fs::exists(call.path)) {
            std::ofstream(call.path) << "NEW";
            isSpoiled = true;
        }
    };

    const auto outcome = scene.publish("new", "old");

    EXPECT_TRUE(isSpoiled);
    EXPECT_EQ(outcome.status().failure(), Failure::Damaged);
    EXPECT_EQ(outcome.status().reason(), Reason::VerifyFailed);
    EXPECT_EQ(scene.content(), "old");
    EXPECT_EQ(scene.names(), std::set<std::string>{"PLAN.dst"});
}

TEST_F(PublishTest, TellsWhereTheFormerVersionLiesWhenTheNewOneGoesBad)
{
    scene.put("old");
    scene.ops.before = [&](int, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::Flush && fs::is_directory(call.path))
            scene.put("bad"); // in place, and not our bytes any more
    };

    const auto outcome = scene.publish("new", "old");

    EXPECT_EQ(outcome.status().reason(), Reason::NotReplaced);
    EXPECT_EQ(outcome.status().arguments()[1], scene.folder.file(".PLAN.dst.done.1"));
    EXPECT_EQ(scene.folder.read(".PLAN.dst.done.1"), "old");
}

// Others at the same file

TEST_F(PublishTest, RevokesAForeignPayloadAtOnceUnderTheLock)
{
    scene.put("old");
    putPayload(kFirstToken);

    ASSERT_TRUE(scene.publish("new", "old", true));

    EXPECT_EQ(elapsedMs(), 0);
    EXPECT_EQ(scene.leftovers(),
              std::set<std::string>{std::string(".PLAN.dst.rev.") + kFirstToken});
    EXPECT_EQ(scene.folder.read(std::string(".PLAN.dst.rev.") + kFirstToken), "theirs");
}

TEST_F(PublishTest, RevokesALaterOrOldPayloadAtOnceWithoutTheLock)
{
    scene.put("old");
    putPayload(kLastToken);
    putPayload(kFirstToken, 2s);

    ASSERT_TRUE(scene.publish("new", "old"));

    EXPECT_EQ(elapsedMs(), 0);
    EXPECT_EQ(scene.namesWith(".rev.").size(), 2u);
    EXPECT_TRUE(scene.namesWith(".new.").empty());
}

TEST_F(PublishTest, LetsAnEarlierPayloadHaveItsSecond)
{
    scene.put("old");
    putPayload(kFirstToken);
    int payloads = 0;
    scene.ops.before = [&](int, const FaultyFileOps::Call& call) {
        payloads += call.kind == Kind::Write;
        if (call.kind == Kind::Rename && call.second.ends_with("/PLAN.dst")) {
            EXPECT_GE(elapsedMs(), 1000);
        }
    };

    ASSERT_TRUE(scene.publish("new", "old"));

    EXPECT_LT(elapsedMs(), 1100);
    EXPECT_EQ(payloads, 2); // withdrawn, and made again
    EXPECT_EQ(scene.content(), "new");
}

TEST_F(PublishTest, GoesOnWhenTheEarlierPayloadGoes)
{
    scene.put("old");
    const std::string payload = putPayload(kFirstToken);
    EventfulClock clock;
    clock.onSleep = [&] {
        if (clock.sleeps == 3) {
            EXPECT_TRUE(scene.namesWith(".pend.").empty()); // ours is withdrawn meanwhile
            fs::remove(scene.folder.path() / payload);
        }
    };

    ASSERT_TRUE(
        publishVersion(scene.ops, clock, scene.path(), PublishScene::request("new", "old")));

    EXPECT_EQ(clock.sleeps, 3);
}

TEST_F(PublishTest, LosesItsMannersAfterTenSeconds)
{
    scene.put("old");
    int others = 0;
    scene.ops.before = [&](int, const FaultyFileOps::Call& call) {
        if (call.kind != Kind::List)
            return;
        std::string token = kFirstToken;
        token.replace(28, 4, std::to_string(1000 + others++)); // another one each time
        putPayload(token.c_str());
    };

    ASSERT_TRUE(scene.publish("new", "old"));

    EXPECT_GE(elapsedMs(), 10'000);
    EXPECT_LT(elapsedMs(), 12'000);
}

TEST_F(PublishTest, TouchesNoNameThatIsNotOurs)
{
    scene.put("old");
    const std::set<std::string> foreign = {
        ".PLAN.dst.new.short",
        std::string(".PLAN.dst.new.") + "0000000000000000000000000000000G",
        std::string(".PLAN.dst.new.") + kFirstToken + "0",
        std::string(".OTHER.dst.new.") + kFirstToken,
        std::string("PLAN.dst.new.") + kFirstToken,
        ".PLAN.dst.done.",
        ".PLAN.dst.done.007",
        ".PLAN.dst.done.-1",
        ".PLAN.dst.done.9999999999999999999",
        ".PLAN.dst.done.1x",
    };
    for (const std::string& name : foreign)
        scene.folder.write(name, "foreign");
    const std::string folder = std::string(".PLAN.dst.new.") + kLastToken;
    fs::create_directory(scene.folder.path() / folder);

    ASSERT_TRUE(scene.publish("new", "old", true));

    for (const std::string& name : foreign)
        EXPECT_EQ(scene.folder.read(name), "foreign") << name;
    EXPECT_TRUE(fs::is_directory(scene.folder.path() / folder));
    EXPECT_EQ(scene.folder.read(".PLAN.dst.done.2"), "new");
}

TEST_F(PublishTest, DoesNotGoAheadWithARivalThatItCannotRevoke)
{
    scene.put("old");
    putPayload(kLastToken);
    scene.ops.before = [&](int n, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::Rename && call.second.find(".rev.") != std::string::npos)
            scene.ops.failAt(n, EACCES);
    };

    EXPECT_EQ(scene.publish("new", "old").status().failure(), Failure::Denied);

    EXPECT_EQ(scene.content(), "old");
}

TEST_F(PublishTest, StartsAgainWhenItIsRevokedAndNobodyCame)
{
    scene.put("old");
    int revocations = 0;
    scene.ops.before = [&](int, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::Rename && call.second.ends_with("/PLAN.dst") && revocations < 2) {
            ++revocations;
            fs::rename(call.path, nativePathOf(".PLAN.dst.rev." + std::string(kLastToken)));
        }
    };

    EXPECT_TRUE(scene.publish("new", "old", true));

    EXPECT_EQ(revocations, 2);
    EXPECT_EQ(scene.content(), "new");
}

TEST_F(PublishTest, GivesUpWithAConflictWhenItIsRevokedAllTheTime)
{
    scene.put("old");
    scene.ops.before = [&](int, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::Rename && call.second.ends_with("/PLAN.dst"))
            fs::rename(call.path, nativePathOf(".PLAN.dst.rev." + std::string(kLastToken)));
    };

    EXPECT_EQ(scene.publish("new", "old", true).status().failure(), Failure::Conflict);

    EXPECT_EQ(scene.content(), "old");
    EXPECT_EQ(scene.recovered(), "new");
}

TEST_F(PublishTest, IsACommitToTheCallerWhenTheNextOneIsOnTopAlready)
{
    scene.put("old");
    bool isDone = false;
    scene.ops.before = [&](int, const FaultyFileOps::Call& call) {
        if (call.kind != Kind::Flush || !fs::is_directory(call.path) || std::exchange(isDone, true))
            return;
        ManualClock clock;
        EXPECT_TRUE(publishVersion(systemFileOps(), clock, scene.path(),
                                   PublishScene::request("newer", "new")));
    };

    const auto outcome = scene.publish("new", "old");

    ASSERT_TRUE(outcome) << scene.ops.traceText();
    EXPECT_TRUE(isDone);
    EXPECT_EQ(outcome->hash, hashOfText("new"));
    EXPECT_NE(outcome->stamp, *lookAt(scene.ops, scene.clock, scene.path()));
    EXPECT_EQ(scene.content(), "newer");
    EXPECT_TRUE(scene.leftovers().empty());
    // In their order, whoever named them: a heal would take the newest.
    EXPECT_EQ(scene.namesWith(".done.").size(), 3u);
    EXPECT_EQ(scene.folder.read(*scene.namesWith(".done.").rbegin()), "newer");
}

TEST_F(PublishTest, TakesNoOlderVersionWithItsContentForItsOwn)
{
    for (const bool canLink : {true, false}) {
        PublishScene here;
        if (!canLink)
            here.ops.failKind(Kind::Link, EPERM);
        ASSERT_TRUE(here.publish("before", std::nullopt));
        ASSERT_TRUE(here.publish("after", "before"));
        bool isDone = false;
        here.ops.before = [&](int, const FaultyFileOps::Call& call) {
            if (call.kind != Kind::Rename || !call.second.ends_with("/PLAN.dst") ||
                std::exchange(isDone, true))
                return;
            ManualClock clock;
            QuickFileOps theirOps; // on the same file system: where links are refused, to them too
            if (!canLink)
                theirOps.failKind(Kind::Link, EPERM);
            auto theirs = PublishScene::request("theirs", "after");
            theirs.haveSystemLock = true;
            EXPECT_TRUE(publishVersion(theirOps, clock, here.path(), theirs));
        };

        // Takes the second change back, and is overtaken.
        EXPECT_EQ(here.publish("before", "after").status().failure(), Failure::Conflict);

        EXPECT_TRUE(isDone);
        EXPECT_EQ(here.folder.read(".PLAN.dst.done.1"), "before"); // what could be mistaken
        EXPECT_EQ(here.content(), "theirs");
        EXPECT_EQ(here.recovered(), "before");
    }
}

TEST_F(PublishTest, IsNoCommitWhenSomethingElseIsThereInTheEnd)
{
    scene.put("old");
    scene.ops.before = [&](int, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::Flush && fs::is_directory(call.path)) {
            fs::remove(nativePathOf("PLAN.dst"));
            scene.put("a copy that somebody laid over it");
        }
    };

    EXPECT_EQ(scene.publish("new", "old").status().failure(), Failure::Conflict);

    EXPECT_EQ(scene.recovered(), "new");
}

// A system that does not do as it is told

TEST_F(PublishTest, WaitsForABusyFile)
{
    scene.put("old");
    int failures = 0;
    scene.ops.before = [&](int n, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::Rename && call.second.ends_with("/PLAN.dst") && failures < 30) {
            ++failures;
            scene.ops.failAt(n, failures % 2 ? EBUSY : ETXTBSY);
        }
    };

    EXPECT_TRUE(scene.publish("new", "old"));

    EXPECT_EQ(scene.content(), "new");
    EXPECT_EQ(elapsedMs(), 3000);
}

TEST_F(PublishTest, LooksAtTheFileAgainAfterWaitingForIt)
{
    scene.put("old");
    scene.ops.before = [&](int n, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::Rename && call.second.ends_with("/PLAN.dst")) {
            scene.ops.failAt(n, EBUSY);
            scene.put("theirs");
        }
    };

    EXPECT_EQ(scene.publish("new", "old").status().failure(), Failure::Conflict);

    EXPECT_EQ(scene.content(), "theirs");
}

TEST_F(PublishTest, GivesABusyFileUpAfterTenSeconds)
{
    scene.put("old");
    scene.ops.failKind(Kind::Rename, EBUSY);

    const auto outcome = scene.publish("new", "old");

    EXPECT_EQ(outcome.status().failure(), Failure::Locked);
    EXPECT_GE(elapsedMs(), 10'000);
    EXPECT_LT(elapsedMs(), 10'500);
    EXPECT_EQ(scene.content(), "old");
    EXPECT_TRUE(scene.leftovers().empty());
}

TEST_F(PublishTest, SucceedsWhenOnlyTheAnswerWasLost)
{
    for (const int error : {ENOENT, EIO, ETIMEDOUT, EBUSY}) {
        PublishScene here;
        here.put("old");
        here.ops.failAfter(numberInCommit(Kind::Rename, "/PLAN.dst"), error);

        const auto outcome = here.publish("new", "old");

        EXPECT_TRUE(outcome) << error << "\n" << here.ops.traceText();
        EXPECT_EQ(here.content(), "new");
        EXPECT_TRUE(here.leftovers().empty());
    }
}

TEST_F(PublishTest, HealsAReplaceThatTookTheFileAway)
{
    for (const bool canLink : {true, false}) {
        PublishScene here;
        here.put("old");
        here.ops.before = [&](int n, const FaultyFileOps::Call& call) {
            if (call.kind != Kind::Rename || !call.second.ends_with("/PLAN.dst") ||
                call.path.find(".new.") == std::string::npos || !here.isThere())
                return;
            fs::remove(here.folder.path() / "PLAN.dst");
            here.ops.failAt(n, EIO);
        };
        if (!canLink) {
            here.ops.failKind(Kind::Link, EOPNOTSUPP);
            here.ops.failKind(Kind::RenameNew, EINVAL);
        }

        const auto outcome = here.publish("new", "old");

        EXPECT_EQ(outcome.status().failure(), Failure::Io) << canLink;
        EXPECT_EQ(here.content(), "old") << canLink << "\n" << here.ops.traceText();
        EXPECT_TRUE(here.leftovers().empty());
    }
}

TEST_F(PublishTest, TellsTheTruthWhenAServerIsLate)
{
    scene.put("old");
    std::string payload;
    scene.ops.before = [&](int n, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::Rename && call.second.ends_with("/PLAN.dst")) {
            payload = call.path;
            scene.ops.failAt(n, ETIMEDOUT);
        }
        if (call.kind == Kind::Remove && call.path == payload && fs::exists(payload))
            fs::rename(payload, nativePathOf("PLAN.dst")); // carried out after all
    };

    EXPECT_TRUE(scene.publish("new", "old")) << scene.ops.traceText();

    EXPECT_EQ(scene.content(), "new");
}

TEST_F(PublishTest, BringsBackWhatWentRightAfterTheReplace)
{
    scene.put("old");
    bool isDone = false;
    scene.ops.before = [&](int, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::Flush && fs::is_directory(call.path) && !std::exchange(isDone, true))
            fs::remove(nativePathOf("PLAN.dst"));
    };

    EXPECT_TRUE(scene.publish("new", "old"));

    EXPECT_EQ(scene.content(), "new");
}

TEST_F(PublishTest, LeavesDeletedWhatWasDeletedOnPurposeRightAfterTheReplace)
{
    scene.put("old");
    bool isDone = false;
    scene.ops.before = [&](int, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::Flush && fs::is_directory(call.path) &&
            !std::exchange(isDone, true)) {
            EXPECT_TRUE(removePublished(systemFileOps(), scene.path()));
        }
    };

    EXPECT_EQ(scene.publish("new", "old").status().failure(), Failure::NotFound);

    EXPECT_TRUE(scene.names().empty());
}

TEST_F(PublishTest, SaysThatTheFolderWasNotFlushedThoughTheFileIsThere)
{
    scene.put("old");
    scene.ops.before = [&](int n, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::Flush && fs::is_directory(call.path))
            scene.ops.failAt(n, EIO);
    };
    EXPECT_EQ(scene.publish("new", "old").status().reason(), Reason::NotFlushed);
    EXPECT_EQ(scene.content(), "new");

    scene.ops.before = {};
    EXPECT_TRUE(scene.publish("new", "old")); // the caller tries again
    EXPECT_TRUE(scene.leftovers().empty());
}

TEST_F(PublishTest, CopiesWhereLinksAreRefused)
{
    for (const int error : {EPERM, EOPNOTSUPP, EMLINK}) {
        for (const bool canRenameNew : {true, false}) {
            PublishScene here;
            here.put("0");
            std::string from = "0";
            for (const char* text : {"1", "2", "3", "4"}) {
                here.ops.reset();
                here.ops.failKind(Kind::Link, error);
                if (!canRenameNew)
                    here.ops.failKind(Kind::RenameNew, EINVAL);
                const auto outcome = here.publish(text, from);
                ASSERT_TRUE(outcome) << here.ops.traceText();
                EXPECT_EQ(here.content(), text);
                from = text;
            }
            EXPECT_EQ(here.namesWith(".done.").size(), 3u);
            EXPECT_EQ(here.folder.read(*here.namesWith(".done.").rbegin()), "4");
            EXPECT_EQ(here.folder.read(*here.namesWith(".done.").begin()), "2");
            EXPECT_TRUE(here.leftovers().empty());
        }
    }
}

TEST_F(PublishTest, CopiesNoOtherVersionThanItsBase)
{
    scene.put("old");
    scene.ops.failKind(Kind::Link, EPERM);
    scene.ops.before = [&](int, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::Link && call.path.ends_with("/PLAN.dst"))
            scene.put("theirs"); // by a program that knows of no fence
    };

    EXPECT_EQ(scene.publish("new", "old").status().failure(), Failure::Conflict);

    EXPECT_EQ(scene.content(), "theirs");
    EXPECT_EQ(scene.recovered(), "new");
    EXPECT_TRUE(scene.namesWith(".done.").empty());
}

TEST_F(PublishTest, MakesANewFileWhereNeitherLinksNorFreeNamesArePromised)
{
    scene.ops.failKind(Kind::Link, EPERM);
    scene.ops.failKind(Kind::RenameNew, EINVAL);

    EXPECT_TRUE(scene.publish("new", std::nullopt));

    EXPECT_EQ(scene.content(), "new");
    EXPECT_TRUE(scene.leftovers().empty());
}

// Reading

TEST_F(PublishTest, ReadsAVersionWithItsStampAndHash)
{
    scene.put("content");

    const auto read = readVersion(scene.ops, scene.clock, scene.path(), 7);

    ASSERT_TRUE(read);
    EXPECT_EQ(read->hash, hashOfText("content"));
    EXPECT_EQ(hashOf(read->bytes), read->hash);
    EXPECT_EQ(read->stamp, *lookAt(scene.ops, scene.clock, scene.path()));
    EXPECT_EQ(readVersion(scene.ops, scene.clock, scene.path(), 6).status().failure(),
              Failure::TooLarge);
    EXPECT_EQ(elapsedMs(), 0);
}

TEST_F(PublishTest, SaysWhatIsMissingWhenReading)
{
    EXPECT_EQ(readVersion(scene.ops, scene.clock, scene.path(), 100).status().failure(),
              Failure::NotFound);
    EXPECT_EQ(readVersion(scene.ops, scene.clock, scene.folder.file("gone/PLAN.dst"), 100)
                  .status()
                  .failure(),
              Failure::Unreachable);
    EXPECT_EQ(elapsedMs(), 0); // nothing to wait for
}

TEST_F(PublishTest, HealsAMissingFileFromTheNewestVersion)
{
    scene.folder.write(".PLAN.dst.done.9", "ninth");
    scene.folder.write(".PLAN.dst.done.10", "tenth");
    fs::create_symlink("PLAN.dst", scene.folder.path() / ".PLAN.dst.done.11"); // none of ours

    const auto read = readVersion(scene.ops, scene.clock, scene.path(), 100);

    ASSERT_TRUE(read);
    EXPECT_EQ(read->hash, hashOfText("tenth"));
    EXPECT_EQ(scene.content(), "tenth");
    EXPECT_EQ(elapsedMs(), 200);
}

TEST_F(PublishTest, HealsWhereLinksAreRefused)
{
    ASSERT_TRUE(scene.publish("first", std::nullopt));
    fs::remove(nativePathOf("PLAN.dst"));
    scene.ops.failKind(Kind::Link, EPERM);

    ASSERT_TRUE(readVersion(scene.ops, scene.clock, scene.path(), 100));

    EXPECT_EQ(scene.content(), "first");
    EXPECT_TRUE(scene.leftovers().empty());
}

TEST_F(PublishTest, DoesNotHealWhatComesBackByItself)
{
    scene.folder.write(".PLAN.dst.done.9", "ninth");
    EventfulClock clock;
    clock.onSleep = [&] { scene.put("back"); };

    const auto read = readVersion(scene.ops, clock, scene.path(), 100);

    ASSERT_TRUE(read);
    EXPECT_EQ(read->hash, hashOfText("back"));

    fs::remove(nativePathOf("PLAN.dst"));
    scene.ops.failKind(Kind::Link, EPERM);
    EXPECT_TRUE(readVersion(scene.ops, clock, scene.path(), 100));
    EXPECT_EQ(scene.content(), "back");
}

TEST_F(PublishTest, HealsFromTheNextWhenTheNewestGoesOnTheWay)
{
    scene.folder.write(".PLAN.dst.done.9", "ninth");
    bool isTrimmed = false;
    scene.ops.before = [&](int, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::Link && !std::exchange(isTrimmed, true)) {
            fs::remove(nativePathOf(".PLAN.dst.done.9"));
            scene.folder.write(".PLAN.dst.done.12", "twelfth");
        }
    };

    const auto read = readVersion(scene.ops, scene.clock, scene.path(), 100);

    ASSERT_TRUE(read);
    EXPECT_EQ(read->hash, hashOfText("twelfth"));
}

// Looking

TEST_F(PublishTest, LooksTwiceMoreForAFileThatHasGone)
{
    EXPECT_EQ(lookAt(scene.ops, scene.clock, scene.path()).status().failure(), Failure::NotFound);
    EXPECT_EQ(elapsedMs(), 300);

    EventfulClock clock;
    clock.onSleep = [&] {
        if (clock.sleeps == 2)
            scene.put("back");
    };
    EXPECT_TRUE(lookAt(scene.ops, clock, scene.path()));
}

TEST_F(PublishTest, LooksAtTheFolderAfreshAndLeavesTheFileClosed)
{
    scene.put("x");

    ASSERT_TRUE(lookAt(scene.ops, scene.clock, scene.path()));

    EXPECT_EQ(scene.ops.count(), 3)
        << scene.ops.traceText(); // folder opened, closed; file described
    for (const auto& call : scene.ops.trace())
        EXPECT_TRUE(call.kind != Kind::Open || fs::is_directory(call.path)) << call.path;
}

TEST_F(PublishTest, LooksThroughALink)
{
    fs::create_directory(scene.folder.path() / "server");
    scene.folder.write("server/REAL.dst", "x");
    fs::create_symlink("server/REAL.dst", scene.folder.path() / "PLAN.dst");

    const auto seen = lookAt(scene.ops, scene.clock, scene.path());

    ASSERT_TRUE(seen);
    EXPECT_NE(scene.numberOf(Kind::Open, "server"), 0); // the folder that is to be asked
    EXPECT_EQ(*seen, *lookAt(scene.ops, scene.clock, scene.folder.file("server/REAL.dst")));
    fs::remove(scene.folder.path() / "server" / "REAL.dst");
    EXPECT_EQ(lookAt(scene.ops, scene.clock, scene.path()).status().failure(), Failure::NotFound);
}

TEST_F(PublishTest, SaysThatAFolderCannotBeReachedAtOnce)
{
    EXPECT_EQ(lookAt(scene.ops, scene.clock, scene.folder.file("gone/PLAN.dst")).status().failure(),
              Failure::Unreachable);
    scene.ops.failKind(Kind::Open, ESTALE);
    EXPECT_EQ(lookAt(scene.ops, scene.clock, scene.path()).status().failure(),
              Failure::Unreachable);
    EXPECT_EQ(elapsedMs(), 0);
}

// Sweeping and deleting

TEST_F(PublishTest, SweepsWhatIsOlderThanADay)
{
    const std::string marks[] = {".PLAN.dst.new.", ".PLAN.dst.pend.", ".PLAN.dst.rev."};
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    scene.clock.advance(std::chrono::duration_cast<std::chrono::nanoseconds>(now) -
                        std::chrono::nanoseconds(kStart));
    const std::set<std::string> staying = {"PLAN.dst", ".PLAN.dst.lk", ".PLAN.dst.done.1",
                                           ".PLAN.dst.new.short",
                                           std::string(".OTHER.dst.new.") + kFirstToken};
    const auto age = [&](const std::string& name, std::chrono::minutes by) {
        scene.folder.write(name, "x");
        fs::last_write_time(scene.folder.path() / name, fs::file_time_type::clock::now() - by);
    };
    for (const std::string& name : staying)
        age(name, 25h);
    for (const std::string& mark : marks) {
        age(mark + kFirstToken, 24h + 1min);
        age(mark + kLastToken, 23h + 59min);
    }

    sweepLeftovers(scene.ops, scene.clock, scene.path());

    std::set<std::string> expected = staying;
    for (const std::string& mark : marks)
        expected.insert(mark + kLastToken);
    EXPECT_EQ(scene.names(), expected);
}

TEST_F(PublishTest, DeletesAllThatBelongsToTheFileAndNothingElse)
{
    ASSERT_TRUE(scene.publish("1", std::nullopt));
    ASSERT_TRUE(scene.publish("2", "1"));
    putPayload(kFirstToken);
    scene.folder.write(std::string(".PLAN.dst.pend.") + kFirstToken, "x");
    scene.folder.write(std::string(".PLAN.dst.rev.") + kLastToken, "x");
    scene.folder.write(".PLAN.dst.lk", "");
    scene.folder.write("OTHER.dst", "other");

    EXPECT_TRUE(removePublished(scene.ops, scene.path()));

    EXPECT_EQ(scene.names(), (std::set<std::string>{".PLAN.dst.lk", "OTHER.dst"}));
    EXPECT_EQ(scene.numberOf(Kind::Remove, std::string(".new.") + kFirstToken), 0); // but revoked
    EXPECT_EQ(readVersion(scene.ops, scene.clock, scene.path(), 100).status().failure(),
              Failure::NotFound);
    EXPECT_FALSE(scene.isThere());
}

TEST_F(PublishTest, DeletesWhatAnotherPublishesMeanwhile)
{
    scene.put("x");
    scene.ops.before = [&](int, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::Remove && call.path.ends_with("/PLAN.dst"))
            scene.folder.write(".PLAN.dst.done.9", "another's");
    };

    EXPECT_TRUE(removePublished(scene.ops, scene.path()));

    EXPECT_TRUE(scene.names().empty());
}

TEST_F(PublishTest, DeletesTheLinkWithItsFile)
{
    fs::create_directory(scene.folder.path() / "server");
    scene.folder.write("server/REAL.dst", "x");
    fs::create_symlink("server/REAL.dst", scene.folder.path() / "PLAN.dst");

    EXPECT_TRUE(removePublished(scene.ops, scene.path()));

    EXPECT_EQ(scene.names(), std::set<std::string>{"server"});
    EXPECT_TRUE(fs::is_empty(scene.folder.path() / "server"));
}

TEST_F(PublishTest, DeletesNothingTwice)
{
    EXPECT_TRUE(removePublished(scene.ops, scene.path()));
    EXPECT_EQ(removePublished(scene.ops, scene.folder.file("gone/PLAN.dst")).failure(),
              Failure::Unreachable);
}

TEST_F(PublishTest, NeverLeavesADeletedFileToBeHealed)
{
    for (int n = 1;; ++n) {
        PublishScene here;
        ASSERT_TRUE(here.publish("1", std::nullopt));
        ASSERT_TRUE(here.publish("2", "1"));
        here.ops.reset();
        here.ops.dieAt(n);

        const Status status = removePublished(here.ops, here.path());

        const bool isWhole = here.isThere() && here.content() == "2";
        EXPECT_TRUE(isWhole || here.namesWith(".done.").empty()) << n;
        if (status) {
            EXPECT_TRUE(here.names().empty());
            break;
        }
        EXPECT_NE(status.reason(), Reason::None);
        ASSERT_LT(n, 100);
    }
}

TEST_F(PublishTest, StopsADeletionThatCannotTakeTheVersionsAway)
{
    ASSERT_TRUE(scene.publish("1", std::nullopt));
    scene.ops.before = [&](int n, const FaultyFileOps::Call& call) {
        if (call.kind == Kind::Remove && call.path.find(".done.") != std::string::npos)
            scene.ops.failAt(n, EACCES);
    };

    EXPECT_EQ(removePublished(scene.ops, scene.path()).failure(), Failure::Denied);

    EXPECT_EQ(scene.content(), "1");
}
