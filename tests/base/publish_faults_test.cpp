#include <base/publish.h>

#include <gtest/gtest.h>
#include <kill_at_syscall.h>

#include "publish_scene.h"

using namespace base;
using Kind = FaultyFileOps::Kind;

namespace {

constexpr char kForeignToken[] = "ffffffffffffffffffffffffffffffff";

/// Where a commit takes place, and what the system there is able to do.
struct World {
    const char* name;
    std::optional<std::string> from; ///< The content before; nullopt: no file.
    bool haveSystemLock;
    bool canLink;
    bool canRenameNew;
};
const World kWorlds[] = {
    {"replacing", "old", false, true, true},
    {"replacing under the lock", "old", true, true, true},
    {"a new file", std::nullopt, false, true, true},
    {"a new file, names are replaced", std::nullopt, true, true, false},
    {"links are refused", "old", true, false, true},
    {"links are refused, names are replaced", "old", false, false, false},
    {"a new file where nothing is promised", std::nullopt, true, false, false},
};

struct Commit {
    PublishScene scene;
    QuickFileOps ops;
    std::optional<Result<PublishOutcome>> outcome;
    const World& world;

    explicit Commit(const World& where) : world(where)
    {
        if (world.from) {
            scene.put(*world.from);
            ::chmod((scene.folder.path() / PublishScene::kName).c_str(), 0600);
        }
        scene.folder.write(foreignPayload(), "theirs");
    }
    static std::string foreignPayload() { return std::string(".PLAN.dst.new.") + kForeignToken; }
    static std::string foreignRevoked() { return std::string(".PLAN.dst.rev.") + kForeignToken; }

    void run()
    {
        if (!world.canLink)
            ops.failKind(Kind::Link, EOPNOTSUPP);
        if (!world.canRenameNew)
            ops.failKind(Kind::RenameNew, EINVAL);
        auto request = PublishScene::request("brand new", world.from);
        request.haveSystemLock = world.haveSystemLock;
        outcome.emplace(publishVersion(ops, scene.clock, scene.path(), request));
    }
    bool isOld() const
    {
        return world.from ? scene.isThere() && scene.content() == *world.from : !scene.isThere();
    }
    bool isNew() const { return scene.isThere() && scene.content() == "brand new"; }
    /// Our leftovers: what is not the foreign payload.
    std::set<std::string> leftovers() const
    {
        auto found = scene.leftovers();
        found.erase(foreignPayload());
        found.erase(foreignRevoked());
        return found;
    }
};

/// What must hold after any fault.
void expectWhole(const Commit& commit, const std::string& what)
{
    SCOPED_TRACE(what + ", " + commit.world.name + "\n" + commit.ops.traceText());
    EXPECT_TRUE(commit.isOld() || commit.isNew());
    EXPECT_EQ(commit.ops.openFiles(), 0);
    if (*commit.outcome) {
        EXPECT_TRUE(commit.isNew());
        EXPECT_EQ((*commit.outcome)->hash, hashOfText("brand new"));
    } else {
        EXPECT_NE(commit.outcome->status().reason(), Reason::None);
    }
    if (commit.world.from) {
        EXPECT_EQ(commit.scene.modeOf(PublishScene::kName), 0600u); // private, whatever happened
    }
    // The other's payload: untouched, or revoked with its content.
    const bool isRevoked = commit.scene.names().contains(Commit::foreignRevoked());
    EXPECT_EQ(
        commit.scene.folder.read(isRevoked ? Commit::foreignRevoked() : Commit::foreignPayload()),
        "theirs");
}

/// The commit can be made afterwards, from whatever is there.
void expectRepeatable(Commit& commit, const std::string& what)
{
    SCOPED_TRACE(what + ", " + commit.world.name);
    const auto base = commit.isNew() ? std::optional<std::string>("brand new") : commit.world.from;
    ManualClock clock;
    FaultyFileOps& ops = commit.ops;
    ops.reset();
    EXPECT_TRUE(
        publishVersion(ops, clock, commit.scene.path(), PublishScene::request("next", base)))
        << ops.traceText();
    EXPECT_EQ(commit.scene.content(), "next");
}

/// Runs a commit once for each of its operations, with something arranged to happen at that one.
void forEachOperation(const World& world, const std::function<void(FaultyFileOps&, int n)>& arrange,
                      const std::function<void(Commit&, int n)>& check)
{
    for (int n = 1;; ++n) {
        ASSERT_LT(n, 400);
        Commit commit(world);
        arrange(commit.ops, n);
        commit.run();
        check(commit, n);
        if (commit.ops.count() < n)
            return;
    }
}

} // namespace

TEST(PublishFaults, OneFailedOperationLeavesTheOldOrTheNewVersion)
{
    for (const World& world : kWorlds) {
        for (const int error : {EIO, ENOENT, EEXIST}) {
            const auto arrange = [&](FaultyFileOps& ops, int n) { ops.failAt(n, error); };
            forEachOperation(world, arrange, [&](Commit& commit, int n) {
                const std::string what =
                    "failed " + std::to_string(n) + " with " + std::to_string(error);
                expectWhole(commit, what);
                if (commit.ops.count() >= n) {
                    const Kind failed = commit.ops.trace()[std::size_t(n) - 1].kind;
                    const bool isRemoval = failed == Kind::Remove || failed == Kind::RenameNew;
                    EXPECT_TRUE(isRemoval || commit.leftovers().empty()) << what << "\n"
                                                                         << commit.ops.traceText();
                }
                expectRepeatable(commit, what);
            });
        }
    }
}

TEST(PublishFaults, AFailureBeforeTheReplaceIsTheOldVersion)
{
    const World& world = kWorlds[0];
    forEachOperation(
        world, [](FaultyFileOps& ops, int n) { ops.failAt(n, EIO); },
        [](Commit& commit, int n) {
            if (*commit.outcome || commit.outcome->status().reason() == Reason::NotFlushed)
                return;
            int replacedAt = 0, at = 0;
            for (const auto& call : commit.ops.trace()) {
                ++at;
                if (call.kind == Kind::Rename && call.second.ends_with("/PLAN.dst") && !call.error)
                    replacedAt = at;
            }
            EXPECT_TRUE(replacedAt ? commit.isNew() : commit.isOld()) << n << "\n"
                                                                      << commit.ops.traceText();
        });
}

TEST(PublishFaults, OperationsThatFailFromThenOnLeaveTheOldOrTheNewVersion)
{
    for (const World& world : kWorlds) {
        for (const int error : {ENOSPC, EBUSY}) {
            const auto arrange = [&](FaultyFileOps& ops, int n) { ops.failFrom(n, error); };
            forEachOperation(world, arrange, [&](Commit& commit, int n) {
                const std::string what =
                    "failed from " + std::to_string(n) + " with " + std::to_string(error);
                expectWhole(commit, what);
                expectRepeatable(commit, what);
            });
        }
    }
}

TEST(PublishFaults, ADeadProcessLeavesTheOldOrTheNewVersion)
{
    for (const World& world : kWorlds) {
        const auto arrange = [](FaultyFileOps& ops, int n) { ops.dieAt(n); };
        forEachOperation(world, arrange, [](Commit& commit, int n) {
            const std::string what = "died at " + std::to_string(n);
            expectWhole(commit, what);
            expectRepeatable(commit, what);
        });
    }
}

TEST(PublishFaults, ALostAnswerLeavesTheOldOrTheNewVersion)
{
    for (const World& world : kWorlds) {
        for (const int error : {EIO, ENOENT}) {
            const auto arrange = [&](FaultyFileOps& ops, int n) { ops.failAfter(n, error); };
            forEachOperation(world, arrange, [&](Commit& commit, int n) {
                const std::string what =
                    "lost the answer of " + std::to_string(n) + ": " + std::to_string(error);
                expectWhole(commit, what);
                expectRepeatable(commit, what);
            });
        }
    }
}

TEST(PublishFaults, ReadingAndHealingSurviveAnyFailure)
{
    for (const bool canLink : {true, false}) {
        for (int n = 1;; ++n) {
            ASSERT_LT(n, 200);
            PublishScene scene;
            QuickFileOps ops;
            ASSERT_TRUE(publishVersion(ops, scene.clock, scene.path(),
                                       PublishScene::request("content", std::nullopt)));
            std::filesystem::remove(scene.folder.path() / "PLAN.dst");
            ops.reset();
            ops.failAt(n, EIO);
            if (!canLink)
                ops.failKind(Kind::Link, EPERM);

            const auto read = readVersion(ops, scene.clock, scene.path(), 1000);

            EXPECT_TRUE(!scene.isThere() || scene.content() == "content") << n;
            EXPECT_TRUE(!read || read->hash == hashOfText("content")) << n;
            EXPECT_EQ(ops.openFiles(), 0) << n;
            if (ops.count() < n) {
                EXPECT_TRUE(read);
                break;
            }
            ops.reset();
            EXPECT_TRUE(readVersion(ops, scene.clock, scene.path(), 1000)) << n;
        }
    }
}

TEST(PublishFaults, AProcessKilledAtAnySystemCallLeavesTheOldOrTheNewVersion)
{
    PublishScene scene;
    QuickFileOps ops;
    const auto clear = [&] {
        for (const std::string& name : scene.names())
            std::filesystem::remove(scene.folder.path() / name);
        scene.put("old");
    };
    const auto work = [&] {
        ManualClock clock;
        const auto request = PublishScene::request("brand new", "old");
        return publishVersion(systemFileOps(), clock, scene.path(), request) ? 0 : 1;
    };
    const auto check = [&](const KillOutcome& outcome) {
        SCOPED_TRACE(textOf(outcome));
        const std::string content = scene.content();
        EXPECT_TRUE(content == "old" || content == "brand new") << content;
        if (outcome.end == KillOutcome::End::Finished) {
            EXPECT_EQ(content, "brand new");
        }
        ManualClock clock;
        EXPECT_TRUE(
            publishVersion(ops, clock, scene.path(), PublishScene::request("next", content)));
        EXPECT_EQ(scene.content(), "next");
    };

    const KillSeries series = killAtEverySyscall(clear, work, check);

    if (!series.isPermitted)
        GTEST_SKIP() << "this system lets nobody trace";
    EXPECT_TRUE(series.hasEnded);
    EXPECT_EQ(series.exitCode, 0);
    EXPECT_GT(series.kills, 30);
}
