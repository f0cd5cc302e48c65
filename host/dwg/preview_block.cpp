#include "preview_block.h"

#include "byte_stream.h"
#include "sentinels.h"

namespace dwg {

namespace {

constexpr std::size_t kMostEntries = 16;
constexpr std::size_t kEntriesAt = 21; // behind sentinel, size and count
constexpr std::size_t kEntrySize = 9;

} // namespace

std::optional<std::vector<PreviewEntry>> readPreview(Bytes block, std::uint64_t address)
{
    if (!standsAt(kPreviewBegin, block, 0) || block.size() < kEntriesAt)
        return std::nullopt;
    const std::size_t count = block[kEntriesAt - 1];
    if (count > kMostEntries || !fits(kEntriesAt, count * kEntrySize, block.size()))
        return std::nullopt;
    std::vector<PreviewEntry> entries;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t field = kEntriesAt + i * kEntrySize;
        const std::uint64_t start = readU32(block.data() + field + 1);
        const std::size_t size = readU32(block.data() + field + 5);
        if (start < address || !fits(start - address, size, block.size()))
            continue; // points elsewhere: not ours to follow or to move
        entries.push_back({block[field], field, static_cast<std::size_t>(start - address), size});
    }
    return entries;
}

Bytes previewBlockAt(Bytes bytes)
{
    if (!standsAt(kPreviewBegin, bytes, 0) || bytes.size() < kEntriesAt)
        return {};
    // The size is not always right; but where it is, the search need not walk through the picture.
    const Sentinel sentinel = endOf(kPreviewBegin);
    const std::uint64_t told = std::uint64_t(20) + readU32(bytes.data() + 16);
    const bool isThere = told <= bytes.size() && standsAt(sentinel, bytes, told);
    const std::size_t end = isThere ? told : findSentinel(sentinel, bytes, kEntriesAt);
    return end == bytes.size() ? Bytes() : bytes.first(end + sentinel.size());
}

void movePreview(std::vector<std::uint8_t>& block, std::uint64_t from, std::uint64_t to)
{
    const auto entries = readPreview(block, from);
    if (!entries)
        return;
    for (const PreviewEntry& entry : *entries)
        putU32(block.data() + entry.field + 1, static_cast<std::uint32_t>(to + entry.begin));
}

} // namespace dwg
