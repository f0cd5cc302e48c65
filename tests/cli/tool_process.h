#pragma once

#include <functional>
#include <string>
#include <vector>

#include <sys/types.h>

#include <base/tv_string.h>

/// How a process ended: its exit code, or 1000 and the signal that ended it.
struct Ran {
    int code = -1;
    std::string out;
    std::string err;
};

/// A program with its output caught, from its start to its end.
class Process
{
public:
    /// @param arguments the program first.
    explicit Process(const std::vector<std::string>& arguments);
    ~Process(); ///< Kills what still runs.
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    pid_t id() const { return m_id; }
    /// Reads the standard error until @p text stands in it; false when it ends without.
    bool waitForError(const std::string& text);
    /// Closes our end of its standard output, as a reader that has seen enough does.
    void closeOutput();
    Ran wait();

private:
    pid_t m_id = -1;
    int m_out = -1;
    int m_err = -1;
    std::string m_errText;
};

Ran runProgram(const std::vector<std::string>& arguments);
/// Runs the tool itself.
Ran runTool(std::vector<std::string> arguments);
std::vector<std::string> toolLine(std::vector<std::string> arguments);

/// Another process that holds the edit lock of a file, until release() or the end of its life.
class LockHolder
{
public:
    explicit LockHolder(const TvString& file);
    ~LockHolder();
    LockHolder(const LockHolder&) = delete;
    LockHolder& operator=(const LockHolder&) = delete;

    bool isHolding() const { return m_isHolding; }
    void release();

private:
    pid_t m_id = -1;
    int m_release = -1;
    bool m_isHolding = false;
};
