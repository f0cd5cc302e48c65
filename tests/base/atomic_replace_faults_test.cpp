#include "file_test_tools.h"

#include "kill_at_syscall.h"

#include <cerrno>

#include <gtest/gtest.h>

#include <base/atomic_replace.h>
#include <base/faulty_file_ops.h>

namespace {

using base::FaultyFileOps;
using base::Reason;
using base::ReplaceRequest;
using base::Status;

const std::string kOld = "the old version";
const std::string kNew = "the new version, which is longer than the old one";
const std::string kMissing = "(missing)";

/// One way to replace a file: there before or not, reached by its name or by a link.
struct Scene {
    const char* what;
    bool isThere;
    bool isLinked;
    bool mustNotExist;
};

constexpr Scene kScenes[] = {
    {"an existing file", true, false, false},
    {"an existing file behind a link", true, true, false},
    {"a new file", false, false, false},
    {"a new file that must not exist", false, false, true},
};

/// A folder with one file to be replaced, and what must hold afterwards.
class Stage
{
public:
    explicit Stage(const Scene& scene) : m_scene(scene) {}

    /// As it is before each try.
    void prepare()
    {
        for (const std::string& name : namesIn(m_folder))
            ::unlink(nativeIn(m_folder, name).c_str());
        if (m_scene.isThere)
            m_folder.write("a.dwg", kOld);
        if (m_scene.isLinked) {
            EXPECT_EQ(::symlink("a.dwg", nativeIn(m_folder, "link").c_str()), 0);
        }
    }

    Status replace(base::FileOps& ops) const
    {
        ReplaceRequest request;
        request.bytes = bytesOf(kNew);
        request.mustNotExist = m_scene.mustNotExist;
        if (m_scene.isThere)
            request.expected = base::hashOf(bytesOf(kOld));
        return replaceFile(ops, m_folder.file(m_scene.isLinked ? "link" : "a.dwg"), request);
    }

    std::string content() const
    {
        const bool isThere = std::filesystem::exists(nativeIn(m_folder, "a.dwg"));
        return isThere ? m_folder.read("a.dwg") : kMissing;
    }
    std::string oldContent() const { return m_scene.isThere ? kOld : kMissing; }

    /// Files that are none of the user's; anything that is not a temporary file of ours is an
    /// error.
    int leftovers() const
    {
        int count = 0;
        for (const std::string& name : namesIn(m_folder)) {
            if (name == "a.dwg" || name == "link")
                continue;
            EXPECT_EQ(name.rfind(".a.dwg.tmp.", 0), 0u) << name;
            ++count;
        }
        return count;
    }

    /// The whole old or the whole new version, and which of them the status says.
    void expectWhole(const Status& status, const std::string& fault) const
    {
        EXPECT_EQ(bool(status), status.reason() == Reason::None) << fault;
        const bool isNew = bool(status) || status.reason() == Reason::NotFlushed;
        EXPECT_EQ(content(), isNew ? kNew : oldContent()) << fault;
    }

private:
    TempFolder m_folder;
    const Scene m_scene;
};

/// Tries every operation of a replacement in turn, until one runs through without meeting the
/// fault.
/// @return how many operations were tried.
int forEveryOperation(const Scene& scene, const std::function<void(FaultyFileOps&, int n)>& arrange,
                      const std::function<void(const Stage&, const Status&, FaultyFileOps&,
                                               const std::string& fault)>& check)
{
    Stage stage(scene);
    for (int n = 1; n < 1000; ++n) {
        FaultyFileOps ops(base::systemFileOps());
        ops.skipFlushing();
        arrange(ops, n);
        stage.prepare();
        const Status status = stage.replace(ops);
        const std::string fault =
            std::string(scene.what) + ", fault at " + std::to_string(n) + " of\n" + ops.traceText();
        check(stage, status, ops, fault);
        EXPECT_EQ(ops.openFiles(), 0) << fault;
        if (ops.count() < n)
            return n - 1;
    }
    return 0;
}

constexpr int kErrors[] = {EIO, ENOSPC, EACCES, EINTR};

TEST(AtomicReplaceFaults, OneFailureLeavesTheOldVersionAndNothingElse)
{
    for (const Scene& scene : kScenes) {
        for (const int error : kErrors) {
            const int tried = forEveryOperation(
                scene, [error](FaultyFileOps& ops, int n) { ops.failAt(n, error); },
                [](const Stage& stage, const Status& status, FaultyFileOps& ops,
                   const std::string& fault) {
                    stage.expectWhole(status, fault);
                    EXPECT_EQ(stage.leftovers(), 0) << fault;
                    EXPECT_GT(ops.count(), 0);
                });
            EXPECT_GE(tried, 14) << scene.what;
        }
    }
}

TEST(AtomicReplaceFaults, LastingFailureLeavesTheOldVersion)
{
    for (const Scene& scene : kScenes) {
        for (const int error : kErrors)
            forEveryOperation(
                scene, [error](FaultyFileOps& ops, int n) { ops.failFrom(n, error); },
                [](const Stage& stage, const Status& status, FaultyFileOps&,
                   const std::string& fault) {
                    stage.expectWhole(status, fault);
                    EXPECT_LE(stage.leftovers(), 1) << fault;
                });
    }
}

TEST(AtomicReplaceFaults, ALostAnswerIsNoExcuseForALie)
{
    for (const Scene& scene : kScenes)
        forEveryOperation(
            scene, [](FaultyFileOps& ops, int n) { ops.failAfter(n, EIO); },
            [](const Stage& stage, const Status& status, FaultyFileOps&, const std::string& fault) {
                stage.expectWhole(status, fault);
                EXPECT_EQ(stage.leftovers(), 0) << fault;
            });
}

TEST(AtomicReplaceFaults, DeathLeavesTheWholeOldOrTheWholeNewVersion)
{
    for (const Scene& scene : kScenes) {
        Stage next(scene);
        int olds = 0, news = 0;
        forEveryOperation(
            scene, [](FaultyFileOps& ops, int n) { ops.dieAt(n); },
            [&](const Stage& stage, const Status&, FaultyFileOps&, const std::string& fault) {
                const std::string content = stage.content();
                (content == kNew ? news : olds) += 1;
                EXPECT_TRUE(content == kNew || content == stage.oldContent()) << fault;
                EXPECT_LE(stage.leftovers(), 1) << fault;
            });
        EXPECT_GT(olds, 0) << scene.what;
        EXPECT_GT(news, 0) << scene.what;
    }
}

TEST(AtomicReplaceFaults, ShortReadsAndWritesChangeNothing)
{
    for (const Scene& scene : kScenes) {
        Stage stage(scene);
        for (const std::size_t most : {1u, 7u}) {
            FaultyFileOps ops(base::systemFileOps());
            ops.shortenFrom(1, most);
            stage.prepare();
            EXPECT_TRUE(bool(stage.replace(ops))) << scene.what << ", " << most;
            EXPECT_EQ(stage.content(), kNew) << scene.what << ", " << most;
        }
    }
}

TEST(AtomicReplaceFaults, ADiskThatTakesNothingIsNotTriedForEver)
{
    forEveryOperation(
        kScenes[0], [](FaultyFileOps& ops, int n) { ops.shortenFrom(n, 0); },
        [](const Stage& stage, const Status& status, FaultyFileOps&, const std::string& fault) {
            stage.expectWhole(status, fault);
            EXPECT_EQ(stage.leftovers(), 0) << fault;
        });
}

TEST(AtomicReplaceFaults, SaysThatTheFolderWasNotFlushed)
{
    Stage stage(kScenes[0]);
    stage.prepare();
    FaultyFileOps ops(base::systemFileOps());
    int flushes = 0;
    ops.before = [&](int n, const FaultyFileOps::Call& call) {
        if (call.kind == FaultyFileOps::Kind::Flush && ++flushes == 2)
            ops.failAt(n, EIO);
    };

    const Status status = stage.replace(ops);

    EXPECT_EQ(status.failure(), base::Failure::Io);
    EXPECT_EQ(status.reason(), Reason::NotFlushed);
    EXPECT_EQ(status.arguments().size(), 2u);
    EXPECT_EQ(stage.content(), kNew);
    EXPECT_EQ(stage.leftovers(), 0);
}

TEST(AtomicReplaceFaults, AProcessKilledAtAnySystemCallLeavesAWholeVersion)
{
    for (const Scene& scene : kScenes) {
        Stage stage(scene);
        int olds = 0, news = 0;
        const KillSeries series = killAtEverySyscall(
            [&] { stage.prepare(); }, [&] { return stage.replace(base::systemFileOps()) ? 0 : 1; },
            [&](const KillOutcome& outcome) {
                const std::string content = stage.content();
                (content == kNew ? news : olds) += 1;
                EXPECT_TRUE(content == kNew || content == stage.oldContent())
                    << scene.what << ": " << content << ", " << textOf(outcome);
                EXPECT_LE(stage.leftovers(), 1) << textOf(outcome);
            });
        if (!series.isPermitted)
            GTEST_SKIP() << "tracing is not permitted here";
        EXPECT_TRUE(series.hasEnded);
        EXPECT_EQ(series.exitCode, 0) << scene.what;
        EXPECT_GT(olds, 10) << scene.what;
        EXPECT_GT(news, 1) << scene.what;
    }
}

} // namespace
