#include <base/publish.h>

#include <condition_variable>
#include <mutex>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "publish_scene.h"

using namespace base;
using Kind = FaultyFileOps::Kind;

namespace {

/// Two threads of which one runs at a time: which of them makes the next operation is told
/// beforehand.
class Baton
{
public:
    /// Who makes operation number @p step of both together; -1: whoever can.
    explicit Baton(std::function<int(int step)> whose) : m_whose(std::move(whose)) {}

    /// Waits for the turn of @p who; called before each operation.
    void await(int who)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return isTurnOf(who); });
        ++m_step;
        m_changed.notify_all();
    }
    void finish(int who)
    {
        const std::lock_guard lock(m_mutex);
        m_isFinished[who] = true;
        m_changed.notify_all();
    }

private:
    bool isTurnOf(int who) const
    {
        const int whose = m_whose(m_step);
        return whose == who || whose < 0 || m_isFinished[1 - who];
    }

    const std::function<int(int)> m_whose;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_step = 0;
    bool m_isFinished[2] = {false, false};
};

struct Setting {
    const char* name;
    std::optional<std::string> from;
    bool locks[2]; ///< Who holds the system's lock; never both.
    bool canLink;
};
const Setting kSettings[] = {
    {"no lock", "old", {false, false}, true},
    {"the first has the lock", "old", {true, false}, true},
    {"the second has the lock", "old", {false, true}, true},
    {"a new file, no lock", std::nullopt, {false, false}, true},
    {"a new file, the first has the lock", std::nullopt, {true, false}, true},
    {"links are refused", "old", {false, false}, false},
};
constexpr const char* kTexts[2] = {"first", "second"};

/// Two commits from one base.
class Race
{
public:
    explicit Race(const Setting& setting) : m_setting(setting)
    {
        if (setting.from)
            scene.put(*setting.from);
    }

    void run(const std::function<int(int step)>& whose)
    {
        Baton baton(whose);
        std::thread second([&] { publish(1, baton); });
        publish(0, baton);
        second.join();
    }

    /// At most one has succeeded, it is what is there, and nothing of the other's is lost.
    void expectNothingLost(const std::string& schedule) const
    {
        SCOPED_TRACE(schedule + ", " + m_setting.name + "\n" + trace[0] + "--\n" + trace[1]);
        EXPECT_LE(isCommitted[0] + isCommitted[1], 1);
        for (int who : {0, 1}) {
            if (isCommitted[who]) {
                EXPECT_EQ(scene.content(), kTexts[who]);
                continue;
            }
            EXPECT_EQ(failure[who], Failure::Conflict);
            EXPECT_TRUE(isRecovered(kTexts[who])) << kTexts[who];
        }
        if (!isCommitted[0] && !isCommitted[1] && m_setting.from) {
            EXPECT_EQ(scene.content(), *m_setting.from);
        }
        EXPECT_TRUE(scene.namesWith(".new.").empty());
        EXPECT_TRUE(scene.namesWith(".pend.").empty());
    }

    PublishScene scene;
    bool isCommitted[2] = {false, false};
    Failure failure[2] = {Failure::None, Failure::None};
    std::string trace[2];
    int operations[2] = {0, 0};

private:
    void publish(int who, Baton& baton)
    {
        ManualClock clock;
        QuickFileOps ops;
        if (!m_setting.canLink)
            ops.failKind(Kind::Link, EPERM);
        ops.before = [&](int, const FaultyFileOps::Call&) { baton.await(who); };
        auto request = PublishScene::request(kTexts[who], m_setting.from);
        request.haveSystemLock = m_setting.locks[who];
        const auto outcome = publishVersion(ops, clock, scene.path(), request);
        baton.finish(who);
        isCommitted[who] = bool(outcome);
        if (!outcome)
            failure[who] = outcome.status().failure();
        trace[who] = ops.traceText();
        operations[who] = ops.count();
    }

    bool isRecovered(const std::string& text) const
    {
        for (const std::string& name : scene.namesWith("(recovered ")) {
            if (scene.folder.read(name) == text)
                return true;
        }
        return false;
    }

    const Setting& m_setting;
};

} // namespace

TEST(PublishRace, OneCommitInsideAnotherAtEveryOperation)
{
    for (const Setting& setting : kSettings) {
        for (int n = 0;; ++n) {
            ASSERT_LT(n, 300);
            Race race(setting);
            race.run([n](int step) { return step < n ? 0 : 1; });
            race.expectNothingLost("the second after " + std::to_string(n));
            EXPECT_EQ(race.isCommitted[0] + race.isCommitted[1], 1) << n << setting.name;
            if (race.operations[0] < n)
                break;
        }
    }
}

TEST(PublishRace, OneCommitThatOvertakesAnotherAtEveryPairOfOperations)
{
    // Every pair where no lock helps; elsewhere every third, which still meets each of the steps.
    for (const Setting& setting : kSettings) {
        const int stride = &setting == kSettings ? 1 : 3;
        for (int n = 2; n < 40; n += stride) {
            for (int m = 2; m < 40; m += stride) {
                Race race(setting);
                race.run([n, m](int step) { return step < n || step >= n + m ? 0 : 1; });
                race.expectNothingLost(std::to_string(n) + " of the first, " + std::to_string(m) +
                                       " of the second, the first, the second");
                if (testing::Test::HasFailure())
                    return;
            }
        }
    }
}

TEST(PublishRace, TwoCommitsInAnyOrderOfOperations)
{
    for (unsigned seed = 1; seed <= 300; ++seed) {
        std::minstd_rand random(seed);
        std::vector<int> order(2000);
        // Runs of different lengths: one step each hardly ever lets one of them get ahead.
        for (std::size_t i = 0; i < order.size();) {
            const int who = int(random() % 2);
            for (std::size_t run = 1 + random() % (1 + seed % 12); run && i < order.size(); --run)
                order[i++] = who;
        }
        const Setting& setting = kSettings[seed % std::size(kSettings)];
        Race race(setting);
        race.run([&](int step) {
            return std::size_t(step) < order.size() ? order[std::size_t(step)] : -1;
        });
        race.expectNothingLost("seed " + std::to_string(seed));
        if (testing::Test::HasFailure())
            return;
    }
}

TEST(PublishRace, ACommitGoesThroughWhateverADeadOneLeft)
{
    for (const Setting& setting : kSettings) {
        for (int n = 1; n < 80; ++n) {
            PublishScene scene;
            if (setting.from)
                scene.put(*setting.from);
            QuickFileOps ops;
            if (!setting.canLink)
                ops.failKind(Kind::Link, EPERM);
            ops.dieAt(n);
            auto request = PublishScene::request("first", setting.from);
            const bool isDone = bool(publishVersion(ops, scene.clock, scene.path(), request));

            QuickFileOps others;
            const auto base = scene.isThere() ? std::optional(scene.content()) : std::nullopt;
            auto next = PublishScene::request("second", base);
            next.haveSystemLock = setting.locks[1];
            EXPECT_TRUE(publishVersion(others, scene.clock, scene.path(), next))
                << n << setting.name << "\n"
                << others.traceText();
            EXPECT_EQ(scene.content(), "second");
            if (isDone)
                break;
        }
    }
}
