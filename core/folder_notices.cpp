#include "folder_notices.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include <sys/inotify.h>
#include <sys/statfs.h>
#include <unistd.h>

namespace core {

namespace {

// Not that a file was closed which could have been written: whoever looks who has a lock does that.
constexpr std::uint32_t kChanges = IN_ATTRIB | IN_CREATE | IN_DELETE | IN_DELETE_SELF | IN_MODIFY |
                                   IN_MOVED_FROM | IN_MOVED_TO | IN_MOVE_SELF | IN_ONLYDIR;
constexpr std::uint32_t kEnds = IN_IGNORED | IN_UNMOUNT | IN_DELETE_SELF | IN_MOVE_SELF;

// File systems of this machine's own disks; statfs(2) has their numbers.
constexpr unsigned long kOwnDisks[] = {
    0xEF53,     // ext2, ext3, ext4
    0x58465342, // xfs
    0x9123683E, // btrfs
    0x01021994, // tmpfs
    0xF2F52010, // f2fs
    0x4D44,     // vfat
    0x2011BAB0, // exfat
    0x2FC12FC1, // zfs
};

/// Whether all changes there are made through this machine.
bool isOfThisMachine(const std::string& folder)
{
    struct statfs system = {};
    return ::statfs(folder.c_str(), &system) == 0 &&
           std::ranges::find(kOwnDisks, static_cast<unsigned long>(system.f_type)) !=
               std::end(kOwnDisks);
}

} // namespace

FolderNotices::FolderNotices() : m_queue(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {}

FolderNotices::~FolderNotices()
{
    if (m_queue >= 0)
        ::close(m_queue);
}

bool FolderNotices::watch(const std::string& folder)
{
    if (m_queue < 0 || !isOfThisMachine(folder))
        return false;
    // The same folder has the same number; another one of that name another.
    const int watch = ::inotify_add_watch(m_queue, folder.c_str(), kChanges);
    const std::lock_guard guard(m_mutex);
    if (watch < 0) {
        m_folders.erase(folder);
        return false;
    }
    const auto [known, isNew] = m_folders.try_emplace(folder, Folder{watch, m_count + 1});
    if (isNew || std::exchange(known->second.watch, watch) != watch)
        known->second.last = ++m_count;
    return true;
}

void FolderNotices::take()
{
    alignas(inotify_event) char buffer[16 * 1024];
    constexpr auto kHead = static_cast<ssize_t>(sizeof(inotify_event));
    ssize_t size = 0;
    while (m_queue >= 0 && (size = ::read(m_queue, buffer, sizeof buffer)) >= kHead) {
        const std::lock_guard guard(m_mutex);
        for (ssize_t at = 0; at + kHead <= size;) {
            inotify_event event;
            std::memcpy(&event, buffer + at, sizeof event);
            note(event.wd, event.mask);
            at += kHead + event.len;
        }
    }
}

void FolderNotices::note(int watch, std::uint32_t what)
{
    const bool isLost = (what & IN_Q_OVERFLOW) != 0; // then of which folder is not known
    for (auto each = m_folders.begin(); each != m_folders.end();) {
        const bool isIt = isLost || each->second.watch == watch;
        if (isIt)
            each->second.last = ++m_count;
        if (isIt && (what & kEnds) != 0)
            each = m_folders.erase(each);
        else
            ++each;
    }
}

std::optional<std::uint64_t> FolderNotices::last(const std::string& folder) const
{
    const std::lock_guard guard(m_mutex);
    const auto known = m_folders.find(folder);
    return known == m_folders.end() ? std::nullopt : std::optional(known->second.last);
}

} // namespace core
