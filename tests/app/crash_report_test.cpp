#include <csignal>
#include <limits>

#include <sys/wait.h>

#include <gtest/gtest.h>

#include <app/crash_report.h>
#include <base/kv_file_system.h>

#include "temp_folder.h"
#include "tied_fork.h"

namespace {

/// Runs @p work in a child with a reporter; how it ended.
template <class Work>
int statusOf(const TvString& folder, Work work)
{
    const pid_t child = tiedFork();
    if (child == 0) {
        {
            app::CrashReporter reporter(folder, u"9.8.7");
            work(reporter);
        }
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
}

std::string contentOf(const TvString& path)
{
    const auto bytes = KvFileSystem::readFile(path);
    return bytes ? std::string(reinterpret_cast<const char*>(bytes->data()), bytes->size()) : "";
}

/// Deeper than any stack.
[[gnu::noinline]] int descend(volatile int* depth)
{
    volatile int here[1024];
    here[0] = *depth + 1;
    if (here[0] < std::numeric_limits<int>::max())
        return descend(here) + here[0];
    return here[0];
}

TEST(CrashReport, TellsVersionSignalAndTheLastCommands)
{
    const TempFolder folder;
    const int status = statusOf(folder.file("crashes"), [](app::CrashReporter& reporter) {
        for (int i = 0; i < app::CrashReporter::kCommands + 3; ++i)
            reporter.noteCommand(TvString().format(u"COMMAND%d", i));
        ::raise(SIGSEGV);
    });

    ASSERT_TRUE(WIFSIGNALED(status)) << "the signal takes its course";
    EXPECT_EQ(WTERMSIG(status), SIGSEGV);
    const std::vector<TvString> reports = app::takeNewCrashReports(folder.file("crashes"));
    ASSERT_EQ(reports.size(), 1u);
    const std::string text = contentOf(reports[0]);
    EXPECT_NE(text.find("tarvik 9.8.7\n"), std::string::npos) << text;
    EXPECT_NE(text.find("signal 11\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("COMMAND2\n"), std::string::npos) << text;
    EXPECT_NE(text.find("command COMMAND3\n"), std::string::npos) << text;
    EXPECT_NE(text.find("command COMMAND18\n"), std::string::npos) << text;
    EXPECT_NE(text.find("calls\n"), std::string::npos) << text;
    EXPECT_NE(text.find("[0x"), std::string::npos) << text;
}

TEST(CrashReport, OnlyTheUserMayReadIt)
{
    const TempFolder folder;
    statusOf(folder.file("crashes"), [](auto&) { ::raise(SIGABRT); });
    const auto entries = KvFileSystem::listFolder(folder.file("crashes"));
    ASSERT_EQ(entries.size(), 1u);
    using std::filesystem::perms;
    const perms others = perms::group_all | perms::others_all;
    EXPECT_EQ(std::filesystem::status(folder.path() / "crashes").permissions() & others,
              perms::none);
    EXPECT_EQ(
        std::filesystem::status(folder.path() / "crashes" / entries[0].name.utf8()).permissions() &
            others,
        perms::none);
}

TEST(CrashReport, EachIsToldOnce)
{
    const TempFolder folder;
    statusOf(folder.file("crashes"), [](auto&) { ::raise(SIGILL); });
    statusOf(folder.file("crashes"), [](auto&) { ::raise(SIGFPE); });
    EXPECT_EQ(app::takeNewCrashReports(folder.file("crashes")).size(), 2u);
    EXPECT_TRUE(app::takeNewCrashReports(folder.file("crashes")).empty());
}

TEST(CrashReport, AStackThatOverflowedIsToldToo)
{
#ifdef KV_SANITIZED
    GTEST_SKIP() << "the sanitizer has a stack of its own";
#endif
    const TempFolder folder;
    statusOf(folder.file("crashes"), [](auto&) {
        volatile int depth = 0;
        descend(&depth);
    });
    EXPECT_EQ(app::takeNewCrashReports(folder.file("crashes")).size(), 1u);
}

TEST(CrashReport, ThereIsNoneWithoutACrash)
{
    const TempFolder folder;
    EXPECT_EQ(statusOf(folder.file("crashes"),
                       [](app::CrashReporter& reporter) { reporter.noteCommand(u"A"); }),
              0);
    EXPECT_TRUE(app::takeNewCrashReports(folder.file("crashes")).empty());
    EXPECT_TRUE(app::takeNewCrashReports({}).empty());
}

TEST(CrashReport, TheLastFailureThatWasThrownStandsInIt)
{
    const TempFolder folder;
    statusOf(folder.file("crashes"), [](auto&) {
        try {
            throwErrorStatus(kvErrOutOfRange);
        } catch (const KvErrorStatus&) {
        }
        ::abort();
    });
    const std::vector<TvString> reports = app::takeNewCrashReports(folder.file("crashes"));
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_NE(contentOf(reports[0]).find("last failure 24\n"), std::string::npos);
}

} // namespace
