#include <chrono>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "sheet_set_builder.h"
#include "tied_fork.h"

// Several processes add sheets to one file and are killed at random. Each writes down a commit once
// it was told that it succeeded: all of those must be in the file, each once.

namespace {

constexpr int kProcesses = 4;

int secondsToRun()
{
    const char* wanted = std::getenv("KV_TORTURE_SECONDS");
    return wanted ? std::max(1, std::atoi(wanted)) : 3;
}

/// Adds one line to the log of acknowledged commits, down to the system.
void acknowledge(int log, const std::string& name)
{
    const std::string line = name + "\n";
    if (::write(log, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
        ::_exit(3);
}

/// A conflict keeps our version beside the file; here they would fill the folder.
void removeRecoveries(const std::filesystem::path& folder)
{
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(folder, ignored))
        if (entry.path().filename().string().find("(recovered ") != std::string::npos)
            std::filesystem::remove(entry.path(), ignored);
}

/// Commits sheets named after itself for as long as it lives.
[[noreturn]] void commitForEver(const TvString& path, const std::filesystem::path& folder,
                                const std::string& self, const std::string& logName)
{
    QuickFileOps ops(base::systemFileOps());
    sm::environment().files = &ops;
    sm::environment().clock = nullptr;
    const int log = ::open(logName.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    TvSmSheetSetMgr manager;
    TvSmDatabase* db = manager.openDatabase(path, true, 0);
    if (log < 0 || !db)
        ::_exit(db ? 2 : 1);
    std::minstd_rand random(static_cast<unsigned>(::getpid()));
    for (int n = 0;; ++n) {
        ops.reset();
        ::usleep(static_cast<useconds_t>(random() % 3000));
        if (!db->lockDb(db))
            continue;
        const std::string name = self + "-" + std::to_string(n);
        TvSmSheetSet* set = db->getSheetSet();
        TvSmSheet* sheet = set->createSheet(TvString(name), TvString());
        if (!sheet || !set->insertComponent(sheet, nullptr))
            ::_exit(4);
        if (db->unlockDb(db, true))
            acknowledge(log, name);
        else
            removeRecoveries(folder);
    }
}

class Workers
{
public:
    Workers(const SheetSetScene& scene) : m_scene(scene), m_pids(kProcesses, -1)
    {
        for (int who = 0; who < kProcesses; ++who)
            start(who);
    }
    ~Workers()
    {
        for (int who = 0; who < kProcesses; ++who)
            kill(who);
    }
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    void replace(int who)
    {
        kill(who);
        start(who);
    }
    /// Those that ended by themselves: there must be none.
    int ownEnds() const { return m_ownEnds; }

private:
    void start(int who)
    {
        const std::string self = "p" + std::to_string(who) + "g" + std::to_string(m_generation++);
        const pid_t child = tiedFork();
        if (child == 0)
            commitForEver(m_scene.path(), m_scene.folder.path(), self,
                          (m_scene.folder.path() / ("log" + std::to_string(who))).string());
        m_pids[static_cast<std::size_t>(who)] = child;
    }
    void kill(int who)
    {
        const pid_t child = std::exchange(m_pids[static_cast<std::size_t>(who)], -1);
        if (child <= 0)
            return; // could not be started
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        m_ownEnds += WIFEXITED(status);
    }
    const SheetSetScene& m_scene;
    std::vector<pid_t> m_pids;
    int m_generation = 0;
    int m_ownEnds = 0;
};

std::vector<std::string> acknowledged(const SheetSetScene& scene)
{
    std::vector<std::string> names;
    for (int who = 0; who < kProcesses; ++who) {
        std::istringstream log(scene.folder.read("log" + std::to_string(who)));
        for (std::string name; std::getline(log, name);)
            names.push_back(name);
    }
    return names;
}

void expectEachOnce(const std::vector<std::string>& expected, const TvSmDatabase* db)
{
    std::map<std::string, int> found;
    std::set<TvString> handles;
    std::size_t sheets = 0;
    for (const TvSmComponent* child : sm::each(db->getSheetSet()->getSheetEnumerator())) {
        ++found[child->getName().utf8()];
        handles.insert(handleOf(child));
        ++sheets;
    }
    EXPECT_EQ(handles.size(), sheets);
    for (const auto& [name, times] : found)
        EXPECT_EQ(times, 1) << name;
    for (const std::string& name : expected)
        EXPECT_EQ(found.count(name), 1u) << name << " was acknowledged and is lost";
}

void torture(bool useEditLock)
{
    SheetSetScene scene;
    sm::environment().clock = nullptr;
    sm::environment().useEditLock = useEditLock;
    ASSERT_TRUE(scene.createSaved());
    TvSmSheetSetMgr readers;
    TvSmDatabase* reader = readers.openDatabase(scene.path(), true, 0);
    ASSERT_TRUE(reader);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(secondsToRun());
    int kills = 0;
    {
        Workers workers(scene);
        std::minstd_rand random(4711);
        while (std::chrono::steady_clock::now() < end) {
            ::usleep(10'000 + static_cast<useconds_t>(random() % 60'000));
            workers.replace(static_cast<int>(random() % kProcesses));
            ++kills;
            scene.ops.reset();
            EXPECT_TRUE(reader->load(scene.path())) << int(sm::lastStatus(reader).reason());
            EXPECT_EQ(workers.ownEnds(), 0);
        }
    }
    ASSERT_TRUE(reader->load(scene.path()));
    const auto expected = acknowledged(scene);
    EXPECT_GT(expected.size(), 10u) << "too few commits to prove anything";
    expectEachOnce(expected, reader);
    testing::Test::RecordProperty("commits", static_cast<int>(expected.size()));
    testing::Test::RecordProperty("kills", kills);
}

} // namespace

TEST(SmTorture, KilledWritersWithTheEditLockLoseNothing)
{
    torture(true);
}

TEST(SmTorture, KilledWritersWithoutTheEditLockLoseNothing)
{
    torture(false);
}
