#include <base/edit_lock.h>
#include <base/path_rules.h>
#include <base/publish.h>

#include <csignal>
#include <cstdlib>
#include <random>
#include <set>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "temp_folder.h"
#include "tied_fork.h"

// Several processes commit to one file and are killed at random. Each notes a commit in a log of
// its own once it was told of success, and flushes the log. In the end each noted commit must be in
// the file exactly once, whatever happened to its process.
//
// KV_TORTURE_SECONDS sets how long each test goes on.

using namespace base;
using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

namespace {

constexpr int kWriters = 4;
constexpr std::uint64_t kLimit = 100'000'000;

std::chrono::milliseconds duration()
{
    const char* seconds = std::getenv("KV_TORTURE_SECONDS");
    return std::chrono::milliseconds(seconds ? std::atol(seconds) * 1000 : 4000);
}

/// The file's content: a list of commits, with their number at the end, so that a torn file shows.
struct Commits {
    std::vector<std::string> lines;

    std::string text() const
    {
        std::string out;
        for (const std::string& line : lines)
            out += line + "\n";
        return out + "end " + std::to_string(lines.size()) + "\n";
    }
    static std::optional<Commits> parse(const std::string& text)
    {
        Commits commits;
        std::istringstream in(text);
        std::string line, end;
        while (std::getline(in, line)) {
            if (line.starts_with("end "))
                end = line;
            else
                commits.lines.push_back(line);
        }
        const bool isWhole = end == "end " + std::to_string(commits.lines.size());
        return isWhole && text.ends_with(end + "\n") ? std::optional(commits) : std::nullopt;
    }
};

/// Notes a line for good: what is in a log was acknowledged.
bool note(const std::string& log, const std::string& line)
{
    const int file = ::open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (file < 0)
        return false;
    const std::string text = line + "\n";
    const bool isDone =
        ::write(file, text.data(), text.size()) == ssize_t(text.size()) && ::fsync(file) == 0;
    ::close(file);
    return isDone;
}

/// One process that commits until it is told to stop, or killed.
class Writer
{
public:
    Writer(const TempFolder& folder, int number, int life, bool useLock)
        : m_file(folder.file("PLAN.dst")),
          m_log((folder.path() / ("log" + std::to_string(number))).string()),
          m_stop(folder.path() / "stop"),
          m_name(std::to_string(number) + "." + std::to_string(life)), m_useLock(useLock),
          m_lock(systemFileOps(), systemClock(), m_file)
    {
    }

    int run()
    {
        for (int n = 0; !std::filesystem::exists(m_stop); ++n) {
            if (!commit(m_name + "." + std::to_string(n)))
                return 1;
        }
        return 0;
    }

private:
    /// False when something went wrong that must not; a conflict is none of that.
    bool commit(const std::string& line)
    {
        if (m_useLock && !m_lock.take("torture")) {
            systemClock().sleep(1ms);
            return true;
        }
        const bool isFine = appendLine(line);
        m_lock.release();
        return isFine;
    }

    bool appendLine(const std::string& line)
    {
        Commits commits;
        PublishRequest request;
        const auto read = readVersion(systemFileOps(), systemClock(), m_file, kLimit);
        if (read) {
            const auto* text = reinterpret_cast<const char*>(read->bytes.data());
            const auto parsed = Commits::parse({text, read->bytes.size()});
            if (!parsed)
                return false; // torn
            commits = *parsed;
            request.base = read->hash;
        } else if (read.status().failure() != Failure::NotFound) {
            return false;
        }
        commits.lines.push_back(line);
        const std::string text = commits.text();
        request.bytes = std::as_bytes(std::span(text));
        request.haveSystemLock = m_lock.hasSystemLock();
        request.keepRecovery = false;
        const auto outcome = publishVersion(systemFileOps(), systemClock(), m_file, request);
        if (outcome)
            return note(m_log, line);
        return outcome.status().failure() == Failure::Conflict && !m_useLock;
    }

    const TvString m_file;
    const std::string m_log;
    const std::filesystem::path m_stop;
    const std::string m_name;
    const bool m_useLock;
    EditLock m_lock;
};

/// The writers, and whoever kills them.
class Torture
{
public:
    Torture(bool useLock, unsigned seed) : m_useLock(useLock), m_random(seed) {}
    ~Torture()
    {
        for (const pid_t child : m_children)
            end(child, SIGKILL);
    }
    Torture(const Torture&) = delete;
    Torture& operator=(const Torture&) = delete;

    void run()
    {
        for (int number = 0; number < kWriters; ++number)
            m_children.push_back(start(number));
        const auto until = SteadyClock::now() + duration();
        while (SteadyClock::now() < until) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5 + m_random() % 60));
            lookAtFile();
            killOne();
        }
        folder.write("stop", "");
        for (pid_t& child : m_children) {
            EXPECT_EQ(end(std::exchange(child, 0), 0), 0);
        }
    }

    std::multiset<std::string> acknowledged() const
    {
        std::multiset<std::string> lines;
        for (int number = 0; number < kWriters; ++number) {
            std::istringstream log(folder.read("log" + std::to_string(number)));
            for (std::string line; std::getline(log, line);)
                lines.insert(line);
        }
        return lines;
    }

    TempFolder folder;
    int kills = 0;

private:
    pid_t start(int number)
    {
        const pid_t child = tiedFork();
        if (child == 0)
            ::_exit(Writer(folder, number, m_lives++, m_useLock).run());
        ++m_lives;
        return child;
    }

    /// The exit code; -1 when it was killed.
    static int end(pid_t child, int signal)
    {
        int status = 0;
        if (child <= 0)
            return 0;
        if (signal)
            ::kill(child, signal);
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    void killOne()
    {
        const std::size_t victim = m_random() % kWriters;
        EXPECT_EQ(end(m_children[victim], SIGKILL), -1) << "a writer ended by itself";
        m_children[victim] = start(static_cast<int>(victim));
        ++kills;
    }

    /// As any program reads it, that knows nothing of healing.
    void lookAtFile()
    {
        const bool isThere = std::filesystem::exists(folder.path() / "PLAN.dst");
        EXPECT_TRUE(isThere || !m_wasThere);
        m_wasThere = isThere;
        if (isThere) {
            EXPECT_TRUE(Commits::parse(folder.read("PLAN.dst")));
        }
    }

    const bool m_useLock;
    std::minstd_rand m_random;
    std::vector<pid_t> m_children;
    int m_lives = 0;
    bool m_wasThere = false;
};

void torture(bool useLock, unsigned seed)
{
    Torture torture(useLock, seed);

    torture.run();

    const auto content = Commits::parse(torture.folder.read("PLAN.dst"));
    ASSERT_TRUE(content);
    std::multiset<std::string> there(content->lines.begin(), content->lines.end());
    const auto acknowledged = torture.acknowledged();
    EXPECT_GT(torture.kills, 0);
    EXPECT_GT(acknowledged.size(), 0u);
    for (const std::string& line : there)
        EXPECT_EQ(there.count(line), 1u) << line << " is there twice";
    for (const std::string& line : acknowledged)
        EXPECT_EQ(there.count(line), 1u) << line << " was acknowledged and is lost";
    // What nobody was told of can only be the last commit of somebody who was killed.
    EXPECT_LE(there.size(), acknowledged.size() + std::size_t(torture.kills));
    testing::Test::RecordProperty("commits", static_cast<int>(acknowledged.size()));
}

} // namespace

TEST(PublishTorture, NoCommitIsLostUnderTheLock)
{
    torture(true, 1);
}

TEST(PublishTorture, NoCommitIsLostWithoutALock)
{
    torture(false, 2);
}
