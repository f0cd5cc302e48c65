#include "kill_at_syscall.h"

#include <cerrno>
#include <csignal>
#include <cstdint>

#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// The work stands between two calls that nothing else makes in between.
constexpr long kMarker = SYS_getppid;
constexpr int kThrew = 120;
constexpr int kCannotTrace = 121;
constexpr int kSyscallStop = SIGTRAP | 0x80;

/// Calls that leave no trace outside the process, and of which a run makes more or fewer as memory
/// happens to lie.
bool isAboutMemory(std::uint64_t number)
{
    switch (number) {
    case SYS_mmap:
    case SYS_munmap:
    case SYS_mremap:
    case SYS_mprotect:
    case SYS_madvise:
    case SYS_brk: return true;
    default: return false;
    }
}

void mark()
{
    ::syscall(kMarker);
}

/// Does not return: an exit through main() would write our buffers a second time.
[[noreturn]] void runChild(const std::function<int()>& work)
{
    if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
        ::_exit(kCannotTrace);
    ::raise(SIGSTOP);
    mark();
    int code = kThrew;
    try {
        code = work();
    } catch (...) {
    }
    mark();
    ::_exit(code);
}

/// The child as its tracer sees it, from stop to stop.
class TracedChild
{
public:
    TracedChild(pid_t child, int killAt) : m_child(child), m_killAt(killAt) {}

    KillOutcome run()
    {
        if (!waitForStop() || !isStoppedBy(SIGSTOP) || !trace())
            return giveUp();
        while (m_outcome.end == KillOutcome::End::NotPermitted) {
            if (!resume() || !waitForStop())
                return ended();
            if (isStoppedBy(kSyscallStop) && !atSyscall())
                return giveUp();
        }
        return m_outcome;
    }

private:
    bool waitForStop()
    {
        while (::waitpid(m_child, &m_status, 0) == -1) {
            if (errno != EINTR)
                return false;
        }
        return WIFSTOPPED(m_status);
    }

    bool isStoppedBy(int signal) const { return WSTOPSIG(m_status) == signal; }

    bool trace() const
    {
        constexpr long kOptions = PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL;
        return ::ptrace(PTRACE_SETOPTIONS, m_child, nullptr, kOptions) == 0;
    }

    bool resume()
    {
        const int stop = WSTOPSIG(m_status);
        const long signal =
            stop == kSyscallStop || stop == SIGSTOP ? 0 : stop; // a real one: deliver
        return ::ptrace(PTRACE_SYSCALL, m_child, nullptr, signal) == 0;
    }

    /// @return false when the system does not tell which call it is.
    bool atSyscall()
    {
        __ptrace_syscall_info info = {};
        if (::ptrace(PTRACE_GET_SYSCALL_INFO, m_child, sizeof info, &info) <= 0)
            return false;
        if (info.op != PTRACE_SYSCALL_INFO_ENTRY || isAboutMemory(info.entry.nr))
            return true;
        if (info.entry.nr == static_cast<std::uint64_t>(kMarker))
            m_isInWork = !m_isInWork;
        else if (m_isInWork && ++m_outcome.calls == m_killAt)
            kill(static_cast<long>(info.entry.nr));
        return true;
    }

    void kill(long syscall)
    {
        endChild();
        m_outcome.end = KillOutcome::End::Killed;
        m_outcome.syscall = syscall;
    }

    void endChild()
    {
        ::kill(m_child, SIGKILL);
        while (::waitpid(m_child, &m_status, 0) != -1 || errno == EINTR) {
            if (WIFEXITED(m_status) || WIFSIGNALED(m_status))
                return;
        }
    }

    KillOutcome ended()
    {
        const int code = WIFEXITED(m_status) ? WEXITSTATUS(m_status) : -1;
        if (code == kCannotTrace)
            return {};
        m_outcome.end = KillOutcome::End::Finished;
        m_outcome.exitCode = code;
        return m_outcome;
    }

    KillOutcome giveUp()
    {
        if (WIFSTOPPED(m_status))
            endChild();
        return {};
    }

    const pid_t m_child;
    const int m_killAt;
    int m_status = 0;
    bool m_isInWork = false;
    KillOutcome m_outcome; ///< NotPermitted until it has ended.
};

} // namespace

KillOutcome runKilledAt(int n, const std::function<int()>& work)
{
    const pid_t child = ::fork();
    if (child == 0)
        runChild(work);
    return child == -1 ? KillOutcome() : TracedChild(child, n).run();
}

KillSeries killAtEverySyscall(const std::function<void()>& prepare,
                              const std::function<int()>& work,
                              const std::function<void(const KillOutcome&)>& check, int mostCalls)
{
    KillSeries series;
    for (int n = 1; n <= mostCalls && !series.hasEnded; ++n) {
        prepare();
        const KillOutcome outcome = runKilledAt(n, work);
        series.isPermitted = outcome.end != KillOutcome::End::NotPermitted;
        if (!series.isPermitted)
            return series;
        series.hasEnded = outcome.end == KillOutcome::End::Finished;
        series.kills += outcome.end == KillOutcome::End::Killed;
        series.exitCode = outcome.exitCode;
        check(outcome);
    }
    return series;
}

std::string textOf(const KillOutcome& outcome)
{
    if (outcome.end == KillOutcome::End::Killed)
        return "killed at call " + std::to_string(outcome.calls) + " (system call " +
               std::to_string(outcome.syscall) + ")";
    return outcome.end == KillOutcome::End::Finished
               ? "finished with " + std::to_string(outcome.exitCode)
               : "tracing is not permitted";
}
