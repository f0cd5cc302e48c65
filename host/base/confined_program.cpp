#include "base/confined_program.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/file_ops.h"
#include "base/path_rules.h"

namespace base {

namespace {

constexpr int kSignFile = 3; // of the program: open for as long as it lives

/// A file of the process; none when below 0.
class OwnFile
{
public:
    explicit OwnFile(int file = -1) : m_file(file) {}
    ~OwnFile() { close(); }
    OwnFile(const OwnFile&) = delete;
    OwnFile& operator=(const OwnFile&) = delete;

    void close()
    {
        if (m_file >= 0)
            ::close(m_file);
        m_file = -1;
    }
    /// Above those that the program finds open, or they would be lost when those are put in place.
    void moveUp()
    {
        const int higher = m_file < 0 ? -1 : ::fcntl(m_file, F_DUPFD_CLOEXEC, kSignFile + 1);
        close();
        m_file = higher;
    }
    int get() const { return m_file; }
    explicit operator bool() const { return m_file >= 0; }

private:
    int m_file;
};

bool writeAll(int file, std::span<const std::byte> bytes)
{
    while (!bytes.empty()) {
        const ssize_t done = ::write(file, bytes.data(), bytes.size());
        if (done < 0 && errno == EINTR)
            continue;
        if (done <= 0)
            return false;
        bytes = bytes.subspan(static_cast<std::size_t>(done));
    }
    return ::lseek(file, 0, SEEK_SET) == 0;
}

bool readAll(int file, std::vector<std::byte>& bytes)
{
    for (std::size_t at = 0; at < bytes.size();) {
        const ssize_t done =
            ::pread(file, bytes.data() + at, bytes.size() - at, static_cast<off_t>(at));
        if (done < 0 && errno == EINTR)
            continue;
        if (done <= 0)
            return false;
        at += static_cast<std::size_t>(done);
    }
    return true;
}

/// What is done to the files of a program before it starts.
class FileActions
{
public:
    FileActions() { ::posix_spawn_file_actions_init(&m_actions); }
    ~FileActions() { ::posix_spawn_file_actions_destroy(&m_actions); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    void put(int file, int as) { ::posix_spawn_file_actions_adddup2(&m_actions, file, as); }
    void openNothing(int as)
    {
        ::posix_spawn_file_actions_addopen(&m_actions, as, "/dev/null", O_WRONLY, 0);
    }
    void closeFrom(int first) { ::posix_spawn_file_actions_addclosefrom_np(&m_actions, first); }
    const posix_spawn_file_actions_t* get() const { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions;
};

/// A program that runs; ended and gone when this is.
class Child
{
public:
    explicit Child(pid_t id) : m_id(id) {}
    ~Child()
    {
        if (m_id <= 0)
            return;
        ::kill(m_id, SIGKILL);
        wait();
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    /// Whether it ended well.
    bool wait()
    {
        int state = 0;
        pid_t gone = 0;
        while ((gone = ::waitpid(m_id, &state, 0)) < 0 && errno == EINTR) {
        }
        m_id = 0;
        return gone > 0 && WIFEXITED(state) && WEXITSTATUS(state) == 0;
    }

private:
    pid_t m_id; // 0: gone
};

/// Waits until all who have the other end of @p sign are gone. False when its time is over first.
bool isOver(int sign, const ProgramLimits& limits)
{
    using Clock = std::chrono::steady_clock;
    using Milliseconds = std::chrono::milliseconds;
    constexpr Milliseconds kLook{50}; // for the wish to stop
    const Clock::time_point end = Clock::now() + limits.time;
    for (;;) {
        const auto left = std::chrono::duration_cast<Milliseconds>(end - Clock::now());
        if (left <= Milliseconds(0) || (limits.stop && limits.stop->load()))
            return false;
        pollfd waited{sign, POLLIN, 0};
        const auto step = static_cast<int>(std::min(left, kLook).count());
        if (::poll(&waited, 1, step) > 0)
            return true;
    }
}

Status failed(const TvString& program)
{
    return {Failure::Damaged, Reason::SystemError, {program}};
}

Result<std::vector<std::byte>> answerIn(int file, std::uint64_t most, const TvString& program)
{
    struct stat info {
    };
    if (::fstat(file, &info) != 0 || info.st_size < 0)
        return Status::fromSystem(errno, program);
    if (static_cast<std::uint64_t>(info.st_size) > most)
        return Status(Failure::TooLarge, Reason::FileTooLarge, {program});
    std::vector<std::byte> bytes(static_cast<std::size_t>(info.st_size));
    if (!readAll(file, bytes))
        return failed(program);
    return bytes;
}

} // namespace

Result<std::vector<std::byte>> runConfined(const TvString& program,
                                           const std::vector<std::string>& arguments,
                                           std::span<const std::byte> input,
                                           const ProgramLimits& limits)
{
    int ends[2] = {-1, -1};
    OwnFile in(::memfd_create("input", MFD_CLOEXEC)), out(::memfd_create("output", MFD_CLOEXEC));
    if (!in || !out || ::pipe2(ends, O_CLOEXEC) != 0)
        return Status::fromSystem(errno, program);
    OwnFile sign(ends[0]), held(ends[1]);
    for (OwnFile* file : {&in, &out, &held})
        file->moveUp();
    if (!in || !out || !held || !writeAll(in.get(), input))
        return Status::fromSystem(errno, program);

    FileActions actions;
    actions.put(in.get(), STDIN_FILENO);
    actions.put(out.get(), STDOUT_FILENO);
    actions.openNothing(STDERR_FILENO);
    actions.put(held.get(), kSignFile);
    actions.closeFrom(kSignFile + 1);
    std::string name = nativePath(program);
    std::vector<std::string> words = arguments;
    std::vector<char*> list{name.data()};
    for (std::string& word : words)
        list.push_back(word.data());
    list.push_back(nullptr);
    pid_t id = 0;
    if (const int error =
            ::posix_spawn(&id, name.c_str(), actions.get(), nullptr, list.data(), environ))
        return Status::fromSystem(error, program);
    Child child(id);
    held.close();
    if (!isOver(sign.get(), limits))
        return Status(Failure::Interrupted, Reason::Cancelled, {program});
    if (!child.wait())
        return failed(program);
    return answerIn(out.get(), limits.output, program);
}

void confineThisProcess(std::uint64_t memoryBytes, std::uint64_t cpuSeconds,
                        std::uint64_t outputBytes)
{
    const auto limit = [](auto what, std::uint64_t most) {
        const rlimit both{most, most};
        ::setrlimit(what, &both);
    };
#ifndef KV_SANITIZED
    limit(RLIMIT_AS, memoryBytes);
#else
    static_cast<void>(memoryBytes);
#endif
    limit(RLIMIT_CPU, cpuSeconds);
    limit(RLIMIT_FSIZE, outputBytes);
    limit(RLIMIT_CORE, 0);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
}

TvString folderOfCode(const void* code)
{
    Dl_info info{};
    std::string real;
    if (::dladdr(code, &info) == 0 || !info.dli_fname)
        return {};
    if (char* const whole = ::realpath(info.dli_fname, nullptr)) {
        real = whole;
        std::free(whole);
    }
    return PathRules::native().folderOf(pathFromNative(real));
}

} // namespace base
