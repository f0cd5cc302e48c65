#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace core {

/// In which folders something happened, as the system tells it: names that came, went or lead to
/// another file, contents and rights that changed. So nobody needs to look where nothing did.
///
/// The system tells nothing of what other machines do in a shared folder, of a lock that goes with
/// its holder, and of a file that is written under its name in another folder.
class FolderNotices
{
public:
    FolderNotices();
    ~FolderNotices();
    FolderNotices(const FolderNotices&) = delete;
    FolderNotices& operator=(const FolderNotices&) = delete;

    /// From now on it is told what happens there. Asks the disk; in any thread.
    /// @return false: of that folder nothing is told.
    bool watch(const std::string& folder);
    /// Takes in what was told. One call of the system, which does not wait.
    void take();
    /// The number of what happened there last, as taken in: another one later means that something
    /// did. Nullopt for a folder of which nothing is told (any more). Asks nobody.
    std::optional<std::uint64_t> last(const std::string& folder) const;

private:
    struct Folder {
        int watch;
        std::uint64_t last;
    };
    void note(int watch, std::uint32_t what);

    const int m_queue; // of the system; -1: it has none
    mutable std::mutex m_mutex;
    std::uint64_t m_count = 0; // never goes back: a folder that is watched anew is another one
    std::map<std::string, Folder> m_folders;
};

} // namespace core
