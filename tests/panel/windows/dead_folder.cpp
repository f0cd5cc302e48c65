#include "dead_folder.h"

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <cstdarg>
#include <cstring>
#include <mutex>
#include <thread>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>

namespace {

struct State {
    std::mutex mutex;
    std::condition_variable changed;
    std::string folder;
    std::thread::id window;
    std::vector<std::string> byWindow;
    int asked = 0, waiting = 0;
};

State& state()
{
    static auto& one = *new State;
    return one;
}

std::atomic<bool> g_isDead = false;

bool isBelow(const char* path, const std::string& folder)
{
    return path && std::strncmp(path, folder.c_str(), folder.size()) == 0 &&
           (path[folder.size()] == '/' || path[folder.size()] == '\0');
}

/// False: the time is out, as errno says.
bool mayAsk(const char* call, const char* path)
{
    if (!g_isDead)
        return true;
    std::unique_lock guard(state().mutex);
    if (!g_isDead || !isBelow(path, state().folder))
        return true;
    if (std::this_thread::get_id() == state().window) {
        state().byWindow.push_back(std::string(call) + " " + path);
        errno = ETIMEDOUT;
        return false;
    }
    ++state().asked;
    ++state().waiting;
    state().changed.wait(guard, [] { return !g_isDead; });
    --state().waiting;
    state().changed.notify_all();
    return true;
}

template <class Function>
Function* systems(const char* name)
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

int modeOf(int flags, va_list list)
{
    return (flags & (O_CREAT | __O_TMPFILE)) != 0 ? va_arg(list, int) : 0;
}

} // namespace

DeadFolder::DeadFolder(std::string folder)
{
    const std::lock_guard guard(state().mutex);
    state().folder = std::move(folder);
    state().window = std::this_thread::get_id();
    state().byWindow.clear();
    state().asked = 0;
}

DeadFolder::~DeadFolder()
{
    comeBack();
}

void DeadFolder::die()
{
    g_isDead = true;
}

void DeadFolder::comeBack()
{
    std::unique_lock guard(state().mutex);
    g_isDead = false;
    state().changed.notify_all();
    state().changed.wait(guard, [] { return state().waiting == 0; });
}

std::vector<std::string> DeadFolder::askedByWindow() const
{
    const std::lock_guard guard(state().mutex);
    return state().byWindow;
}

int DeadFolder::waiting() const
{
    const std::lock_guard guard(state().mutex);
    return state().waiting;
}

int DeadFolder::asked() const
{
    const std::lock_guard guard(state().mutex);
    return state().asked;
}

// Calls of the system that take a name; all libraries of this program find these first.

#define KV_GATED(result, name, failure, parameters, path, ...)                                     \
    extern "C" result name parameters                                                              \
    {                                                                                              \
        static auto* const next = systems<result parameters>(#name);                               \
        return mayAsk(#name, path) ? next(__VA_ARGS__) : failure;                                  \
    }
#define KV_GATED_OPEN(name)                                                                        \
    extern "C" int name(const char* path, int flags, ...)                                          \
    {                                                                                              \
        static auto* const next = systems<int(const char*, int, ...)>(#name);                      \
        va_list list;                                                                              \
        va_start(list, flags);                                                                     \
        const int mode = modeOf(flags, list);                                                      \
        va_end(list);                                                                              \
        return mayAsk(#name, path) ? next(path, flags, mode) : -1;                                 \
    }

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmissing-declarations"
#pragma GCC diagnostic ignored "-Wpragmas"
#pragma GCC diagnostic ignored "-Wnonnull-compare"

KV_GATED_OPEN(open)
KV_GATED_OPEN(open64)
KV_GATED(int, stat, -1, (const char* path, struct stat* out) noexcept, path, path, out)
KV_GATED(int, stat64, -1, (const char* path, struct stat64* out) noexcept, path, path, out)
KV_GATED(int, lstat, -1, (const char* path, struct stat* out) noexcept, path, path, out)
KV_GATED(int, lstat64, -1, (const char* path, struct stat64* out) noexcept, path, path, out)
KV_GATED(int, fstatat, -1, (int at, const char* path, struct stat* out, int flags) noexcept, path,
         at, path, out, flags)
KV_GATED(int, fstatat64, -1, (int at, const char* path, struct stat64* out, int flags) noexcept,
         path, at, path, out, flags)
KV_GATED(int, statx, -1,
         (int at, const char* path, int flags, unsigned mask, struct statx* out) noexcept, path, at,
         path, flags, mask, out)
KV_GATED(int, access, -1, (const char* path, int rights) noexcept, path, path, rights)
KV_GATED(int, faccessat, -1, (int at, const char* path, int rights, int flags) noexcept, path, at,
         path, rights, flags)
KV_GATED(ssize_t, readlink, -1, (const char* path, char* out, std::size_t size) noexcept, path,
         path, out, size)
KV_GATED(int, statfs, -1, (const char* path, struct statfs* out) noexcept, path, path, out)
KV_GATED(int, statfs64, -1, (const char* path, struct statfs64* out) noexcept, path, path, out)
KV_GATED(int, inotify_add_watch, -1, (int queue, const char* path, std::uint32_t mask) noexcept,
         path, queue, path, mask)
KV_GATED(DIR*, opendir, nullptr, (const char* path), path, path)
KV_GATED(int, rename, -1, (const char* path, const char* to) noexcept, path, path, to)
KV_GATED(int, link, -1, (const char* path, const char* to) noexcept, path, path, to)
KV_GATED(int, unlink, -1, (const char* path) noexcept, path, path)

#pragma GCC diagnostic pop
