#pragma once

#include <cstdint>
#include <optional>

#include <base/tv_string.h>

namespace base {

/// Which file on disk a name stands for, as long as that file lives: another name of the same file
/// has the same. Who keeps it can tell later whether a name means a file without asking about that
/// file again; but a file that was replaced or removed may have left its identity to another one.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

/// Links are followed. Nullopt when nothing is there, or when it must not be touched
/// (KvFileSystem::isTouchAllowed).
std::optional<FileIdentity> identityOf(const TvString& path);

} // namespace base
