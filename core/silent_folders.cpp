#include "silent_folders.h"

#include <chrono>
#include <map>
#include <mutex>

namespace core {

namespace {

using Clock = std::chrono::steady_clock;

struct Asked {
    std::mutex mutex;
    std::multimap<std::string, Clock::time_point> since; // by folder
};

Asked& asked()
{
    static auto& all = *new Asked; // never destroyed: a thread may wait longer than the program
    return all;
}

} // namespace

AskedFolder::AskedFolder(std::string folder) : m_folder(std::move(folder))
{
    const std::lock_guard guard(asked().mutex);
    asked().since.emplace(m_folder, Clock::now());
}

AskedFolder::~AskedFolder()
{
    // Which of two goes does not matter: the other one asks on.
    const std::lock_guard guard(asked().mutex);
    asked().since.erase(asked().since.find(m_folder));
}

bool isSilent(const std::string& folder, int waitedMs)
{
    const Clock::time_point latest = Clock::now() - std::chrono::milliseconds(waitedMs);
    const std::lock_guard guard(asked().mutex);
    const auto [first, end] = asked().since.equal_range(folder);
    for (auto each = first; each != end; ++each)
        if (each->second < latest)
            return true;
    return false;
}

std::string folderOfNative(const std::string& path)
{
    return path.substr(0, path.rfind('/') + 1); // npos + 1 is 0
}

} // namespace core
