#pragma once

#include <csignal>

#include <sys/prctl.h>
#include <unistd.h>

/// fork(), but the child dies with the thread that called this, however that ends: a test program
/// that is killed leaves nobody behind who works on for ever.
inline pid_t tiedFork()
{
    const pid_t parent = ::getpid();
    const pid_t child = ::fork();
    if (child != 0)
        return child;
    // The parent may have gone before the child could ask for the signal.
    if (::prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || ::getppid() != parent)
        ::_exit(99);
    return 0;
}
