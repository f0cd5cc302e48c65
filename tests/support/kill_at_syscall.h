#pragma once

#include <functional>
#include <string>

/// Kills a process at the entry of any one of its system calls, to see what it leaves behind.
///
/// The work runs in a child of this process, traced: every system call that it makes is a moment at
/// which it may die (SIGKILL, before the call does anything). Calls for memory do not count: they
/// leave nothing behind, so dying at one is dying at the call that follows. The child must not
/// start threads or processes, and an assertion that fails in it is not seen: it tells by its exit
/// code.

/// How one run ended.
struct KillOutcome {
    enum class End {
        Killed,       ///< At the asked-for call.
        Finished,     ///< By itself, before reaching it.
        NotPermitted, ///< This system lets nobody trace: skip the test.
    };
    End end = End::NotPermitted;
    int calls = 0;     ///< Calls counted: n of the one it died at, or all when it finished.
    long syscall = -1; ///< Number of the call it died at.
    int exitCode = -1; ///< What the work returned; 120 when it threw; -1 unless Finished.
};

/// Runs @p work in a child and kills it at its @p n-th system call, counted from 1; 0: never.
KillOutcome runKilledAt(int n, const std::function<int()>& work);

struct KillSeries {
    bool isPermitted = true;
    int kills = 0;         ///< Moments that were tried.
    int exitCode = -1;     ///< Of the run that nobody killed, the last one.
    bool hasEnded = false; ///< False when @p mostCalls was not enough for the work.
};

/// Runs the work again and again, killed at its first call, its second, and so on until it
/// finishes.
///
/// @param prepare  sets the scene before each run, in this process.
/// @param work     runs in the child; 0 means that it succeeded.
/// @param check    looks at what is left, in this process; also after the run that finished.
/// @param mostCalls  gives up after as many, so that a work that waits for something ends.
KillSeries killAtEverySyscall(const std::function<void()>& prepare,
                              const std::function<int()>& work,
                              const std::function<void(const KillOutcome&)>& check,
                              int mostCalls = 5000);

/// "killed at call 12 (system call 82)", for failure texts.
std::string textOf(const KillOutcome& outcome);
