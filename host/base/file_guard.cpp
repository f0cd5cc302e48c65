#include "file_guard.h"

#include <cerrno>
#include <memory>

namespace base {

int writeAt(FileOps& ops, FileOps::Descriptor file, std::uint64_t offset,
            std::span<const std::byte> bytes)
{
    while (!bytes.empty()) {
        std::size_t written = 0;
        if (const int error = ops.write(file, offset, bytes, written))
            return error;
        if (written == 0)
            return EIO; // no progress and no reason: never try for ever
        offset += written;
        bytes = bytes.subspan(written);
    }
    return 0;
}

int writeWhole(FileOps& ops, FileOps::Descriptor file, std::span<const std::byte> bytes)
{
    return writeAt(ops, file, 0, bytes);
}

int hashWhole(FileOps& ops, FileOps::Descriptor file, ContentHash& out)
{
    // Fits the processor's cache, unlike a whole file, and is large enough that calls cost nothing.
    constexpr std::size_t kPiece = std::size_t(1) << 20;
    const auto buffer = std::make_unique_for_overwrite<std::byte[]>(kPiece);
    ContentHasher hasher;
    for (std::uint64_t at = 0;;) {
        std::size_t length = 0;
        if (const int error = ops.read(file, at, {buffer.get(), kPiece}, length))
            return error;
        if (length == 0)
            break;
        hasher.add({buffer.get(), length});
        at += length;
    }
    out = hasher.result();
    return 0;
}

} // namespace base
