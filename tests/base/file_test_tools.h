#pragma once

#include <algorithm>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "temp_folder.h"

/// The bytes of a text; they live as long as it does.
inline std::span<const std::byte> bytesOf(const std::string& text)
{
    return std::as_bytes(std::span(text));
}

inline std::string textOf(std::span<const std::byte> bytes)
{
    std::string text(bytes.size(), '\0');
    std::transform(bytes.begin(), bytes.end(), text.begin(),
                   [](std::byte byte) { return static_cast<char>(byte); });
    return text;
}

/// The system's name of a file in @p folder.
inline std::string nativeIn(const TempFolder& folder, const std::string& name)
{
    return (folder.path() / name).string();
}

/// What is in @p folder, sorted.
inline std::vector<std::string> namesIn(const TempFolder& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

inline unsigned modeOf(const std::string& path)
{
    struct stat found = {};
    return ::stat(path.c_str(), &found) == 0 ? found.st_mode & 07777 : 0;
}

inline bool isAdministrator()
{
    return ::geteuid() == 0;
}

/// Runs @p work as a user without rights, in a child. @return what it returned.
/// @param groups  that the user belongs to besides the own one.
/// @pre isAdministrator()
inline int asNobody(const std::function<int()>& work, const std::vector<gid_t>& groups = {})
{
    constexpr unsigned kNobody = 65534;
    const pid_t child = ::fork();
    if (child == 0) {
        const bool isDone = ::setgroups(groups.size(), groups.data()) == 0 &&
                            ::setgid(kNobody) == 0 && ::setuid(kNobody) == 0;
        ::_exit(isDone ? work() : 99);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// The umask, changed while this lives.
class ScopedUmask
{
public:
    explicit ScopedUmask(mode_t mask) : m_former(::umask(mask)) {}
    ~ScopedUmask() { ::umask(m_former); }
    ScopedUmask(const ScopedUmask&) = delete;
    ScopedUmask& operator=(const ScopedUmask&) = delete;

private:
    mode_t m_former;
};
