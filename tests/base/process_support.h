#pragma once

#include <csignal>
#include <functional>

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tied_fork.h"

/// Runs @p work in a child and gives what it returns; -1 when it died.
inline int runInChild(const std::function<int()>& work)
{
    const pid_t child = tiedFork();
    if (child == 0)
        ::_exit(work());
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// The same without an administrator's rights, which open every file.
inline int runAsNormalUser(const std::function<int()>& work)
{
    return runInChild([&work] {
        constexpr uid_t kNobody = 65534;
        if (::geteuid() == 0 &&
            (::setgroups(0, nullptr) != 0 || ::setgid(kNobody) != 0 || ::setuid(kNobody) != 0))
            return 125;
        return work();
    });
}

/// A child that has come to a certain point and stays there until it is killed, at the latest when
/// this goes.
class WaitingChild
{
public:
    /// @param work  done before the child says that it is there.
    explicit WaitingChild(const std::function<void()>& work)
    {
        int ends[2] = {-1, -1};
        if (::pipe(ends) != 0)
            return;
        m_child = tiedFork();
        if (m_child == 0) {
            ::close(ends[0]);
            work();
            static_cast<void>(::write(ends[1], "x", 1) == 1);
            for (;;)
                ::pause();
        }
        ::close(ends[1]);
        char ready = 0;
        m_isThere = ::read(ends[0], &ready, 1) == 1;
        ::close(ends[0]);
    }
    ~WaitingChild() { kill(); }
    WaitingChild(const WaitingChild&) = delete;
    WaitingChild& operator=(const WaitingChild&) = delete;

    bool isThere() const { return m_isThere; }
    void kill()
    {
        if (m_child <= 0)
            return;
        ::kill(m_child, SIGKILL);
        ::waitpid(m_child, nullptr, 0);
        m_child = -1;
    }

private:
    pid_t m_child = -1;
    bool m_isThere = false;
};
