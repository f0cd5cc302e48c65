#pragma once

#include <span>
#include <string>

#include "base/content_hash.h"
#include "base/file_ops.h"

namespace base {

/// A file that is open as long as this lives.
class FileGuard
{
public:
    explicit FileGuard(FileOps& ops) : m_ops(ops) {}
    ~FileGuard() { close(); }
    FileGuard(const FileGuard&) = delete;
    FileGuard& operator=(const FileGuard&) = delete;

    /// @pre nothing is open here.
    int open(const std::string& path, FileOps::OpenMode mode)
    {
        return m_ops.open(path, mode, m_file);
    }
    /// What the system says of it: a share may report here that a write failed. 0 when closed
    /// already.
    int close()
    {
        const FileOps::Descriptor file = release();
        return file == FileOps::kNone ? 0 : m_ops.close(file);
    }
    FileOps::Descriptor get() const { return m_file; }
    /// Hands the open file over to the caller.
    FileOps::Descriptor release() { return std::exchange(m_file, FileOps::kNone); }

private:
    FileOps& m_ops; // not owned
    FileOps::Descriptor m_file = FileOps::kNone;
};

/// Writes all of @p bytes at @p offset, however little the system takes at a time.
int writeAt(FileOps& ops, FileOps::Descriptor file, std::uint64_t offset,
            std::span<const std::byte> bytes);

/// The same at the file's start.
int writeWhole(FileOps& ops, FileOps::Descriptor file, std::span<const std::byte> bytes);

/// Hashes a file from its start to its end, in large pieces.
int hashWhole(FileOps& ops, FileOps::Descriptor file, ContentHash& out);

} // namespace base
