#include "tool_process.h"

#include <cerrno>
#include <csignal>
#include <utility>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <base/edit_lock.h>

#include "tied_fork.h"

namespace {

void closeOnce(int& file)
{
    if (file >= 0)
        ::close(std::exchange(file, -1));
}

/// Appends what comes; false at the end.
bool readSome(int file, std::string& into)
{
    char buffer[4096];
    ssize_t count = 0;
    do
        count = ::read(file, buffer, sizeof buffer);
    while (count < 0 && errno == EINTR);
    if (count > 0)
        into.append(buffer, static_cast<std::size_t>(count));
    return count > 0;
}

int waitFor(pid_t id)
{
    int state = 0;
    while (::waitpid(id, &state, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(state) ? WEXITSTATUS(state) : 1000 + WTERMSIG(state);
}

} // namespace

Process::Process(const std::vector<std::string>& arguments)
{
    std::vector<char*> list;
    for (const std::string& argument : arguments)
        list.push_back(const_cast<char*>(argument.c_str()));
    list.push_back(nullptr);
    int out[2];
    int err[2];
    if (::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(err, O_CLOEXEC) != 0)
        return;
    m_id = tiedFork();
    if (m_id == 0) {
        ::dup2(out[1], STDOUT_FILENO);
        ::dup2(err[1], STDERR_FILENO);
        ::execv(list[0], list.data());
        ::_exit(127);
    }
    ::close(out[1]);
    ::close(err[1]);
    m_out = out[0];
    m_err = err[0];
}

Process::~Process()
{
    closeOnce(m_out);
    closeOnce(m_err);
    if (m_id > 0) {
        ::kill(m_id, SIGKILL);
        waitFor(m_id);
    }
}

bool Process::waitForError(const std::string& text)
{
    while (m_errText.find(text) == std::string::npos)
        if (!readSome(m_err, m_errText))
            return false;
    return true;
}

void Process::closeOutput()
{
    closeOnce(m_out);
}

/// The tool writes its data at its end, so that its messages can be read first.
Ran Process::wait()
{
    Ran ran;
    while (readSome(m_err, m_errText)) {
    }
    while (m_out >= 0 && readSome(m_out, ran.out)) {
    }
    ran.err = m_errText;
    ran.code = waitFor(std::exchange(m_id, -1));
    return ran;
}

Ran runProgram(const std::vector<std::string>& arguments)
{
    return Process(arguments).wait();
}

std::vector<std::string> toolLine(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), KV_TOOL);
    return arguments;
}

Ran runTool(std::vector<std::string> arguments)
{
    return runProgram(toolLine(std::move(arguments)));
}

LockHolder::LockHolder(const TvString& file)
{
    int ready[2];
    int release[2];
    if (::pipe2(ready, O_CLOEXEC) != 0 || ::pipe2(release, O_CLOEXEC) != 0)
        return;
    m_id = tiedFork();
    if (m_id == 0) {
        ::close(release[1]);
        base::EditLock lock(base::systemFileOps(), base::systemClock(), file);
        const char answer = lock.take(u"a test") ? 'y' : 'n';
        const bool told = ::write(ready[1], &answer, 1) == 1;
        char ignored = 0;
        if (told && ::read(release[0], &ignored, 1) >= 0)
            lock.release();
        ::_exit(0);
    }
    ::close(ready[1]);
    ::close(release[0]);
    m_release = release[1];
    char answer = 'n';
    m_isHolding = ::read(ready[0], &answer, 1) == 1 && answer == 'y';
    ::close(ready[0]);
}

LockHolder::~LockHolder()
{
    release();
}

void LockHolder::release()
{
    closeOnce(m_release);
    if (m_id > 0)
        waitFor(std::exchange(m_id, -1));
}
