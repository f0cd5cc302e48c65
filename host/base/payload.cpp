#include "payload.h"

#include <cerrno>
#include <functional>

namespace base {

namespace {

/// Makes the file, has @p fill write it, and takes it away again when anything fails.
int makeWhole(FileOps& ops, const std::string& path, const std::string& rightsOf,
              const std::function<int(FileOps::Descriptor)>& fill)
{
    FileGuard file(ops);
    if (const int error = file.open(path, rightsOf.empty() ? FileOps::OpenMode::CreateOrdinary
                                                           : FileOps::OpenMode::CreateExclusive))
        return error;
    int error = fill(file.get());
    bool ownerKept = false; // who may write here but not give files away becomes the owner
    if (!error && !rightsOf.empty())
        error = ops.copyMetadata(rightsOf, file.get(), ownerKept);
    if (!error)
        error = ops.flush(file.get()); // after the rights: they reach the disk with the content
    const int closed = file.close();
    error = error ? error : closed;
    if (error)
        ops.remove(path);
    return error;
}

/// Copies piece by piece, hashing what went over.
int copyContent(FileOps& ops, FileOps::Descriptor from, FileOps::Descriptor to, ContentHash& hash)
{
    std::vector<std::byte> buffer(std::size_t(1) << 20);
    ContentHasher hasher;
    for (std::uint64_t at = 0;;) {
        std::size_t length = 0;
        if (const int error = ops.read(from, at, buffer, length))
            return error;
        if (length == 0)
            break;
        const auto piece = std::span(buffer).first(length);
        if (const int error = writeAt(ops, to, at, piece))
            return error;
        hasher.add(piece);
        at += length;
    }
    hash = hasher.result();
    return 0;
}

} // namespace

int writeNewFile(FileOps& ops, const std::string& path, std::span<const std::byte> bytes,
                 const std::string& rightsOf)
{
    return makeWhole(ops, path, rightsOf,
                     [&](FileOps::Descriptor file) { return writeWhole(ops, file, bytes); });
}

int copyFile(FileOps& ops, const std::string& from, const std::string& to, ContentHash& hash)
{
    FileGuard source(ops);
    if (const int error = source.open(from, FileOps::OpenMode::ReadNoFollow))
        return error;
    return makeWhole(ops, to, from, [&](FileOps::Descriptor file) {
        return copyContent(ops, source.get(), file, hash);
    });
}

int hashOfFile(FileOps& ops, const std::string& path, ContentHash& out)
{
    FileGuard file(ops);
    if (const int error = file.open(path, FileOps::OpenMode::ReadNoFollow))
        return error;
    return hashWhole(ops, file.get(), out);
}

} // namespace base
