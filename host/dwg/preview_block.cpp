#include "preview_block.h"

#include "byte_stream.h"
#include "sentinels.h"

namespace dwg {

namespace {

constexpr std::size_t kMostEntries = 16;
constexpr std::size_t kEntriesAt = 21; // behind sentinel, size and count
constexpr std::size_t kEntrySize = 9;
constexpr std::size_t kHeadSize = 80; // zeros before the picture
constexpr std::uint8_t kHeadCode = 1, kDibCode = 2, kWmfCode = 3, kPngCode = 6;

// Which picture is taken when there are several.
int rankOf(db::Preview::Kind kind)
{
    switch (kind) {
    case db::Preview::Kind::None: return 0;
    case db::Preview::Kind::Wmf: return 1;
    case db::Preview::Kind::Bmp: return 2;
    case db::Preview::Kind::Png: return 3;
    }
    return 0;
}

// The address at which the block's own entries believe it to stand, where the first one is the
// head, which stands right behind them. Programs that move a block do not always tell it.
std::optional<std::uint64_t> addressToldBy(Bytes block)
{
    if (block.size() < kEntriesAt + kEntrySize || block[kEntriesAt] != kHeadCode)
        return std::nullopt;
    const std::uint64_t start = readU32(&block[kEntriesAt + 1]);
    const std::uint64_t headAt = kEntriesAt + block[kEntriesAt - 1] * kEntrySize;
    if (start < headAt)
        return std::nullopt;
    return start - headAt;
}

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

db::Preview pictureOf(Bytes block, std::uint64_t address)
{
    using Kind = db::Preview::Kind;
    db::Preview preview;
    const auto entries = readPreview(block, addressToldBy(block).value_or(address));
    for (const PreviewEntry& entry : entries ? *entries : std::vector<PreviewEntry>()) {
        const Kind kind = entry.code == kDibCode   ? Kind::Bmp
                          : entry.code == kWmfCode ? Kind::Wmf
                          : entry.code == kPngCode ? Kind::Png
                                                   : Kind::None;
        if (entry.size == 0 || rankOf(kind) <= rankOf(preview.kind))
            continue;
        const Bytes data = block.subspan(entry.begin, entry.size);
        preview = {kind, {data.begin(), data.end()}};
    }
    return preview;
}

std::vector<std::uint8_t> previewBlock(const db::Preview& preview)
{
    using Kind = db::Preview::Kind;
    const bool isEmpty = preview.kind == Kind::None || preview.bytes.empty();
    const std::size_t entries = isEmpty ? 0 : 2;
    const std::size_t headAt = kEntriesAt + entries * kEntrySize;
    ByteWriter out;
    out.append(kPreviewBegin);
    out.u32(static_cast<std::uint32_t>(
        1 + (isEmpty ? 0 : entries * kEntrySize + kHeadSize + preview.bytes.size())));
    out.u8(static_cast<std::uint8_t>(entries));
    const auto entry = [&](std::uint8_t code, std::size_t begin, std::size_t size) {
        out.u8(code);
        out.u32(static_cast<std::uint32_t>(begin));
        out.u32(static_cast<std::uint32_t>(size));
    };
    if (!isEmpty) {
        entry(kHeadCode, headAt, kHeadSize);
        entry(preview.kind == Kind::Bmp   ? kDibCode
              : preview.kind == Kind::Wmf ? kWmfCode
                                          : kPngCode,
              headAt + kHeadSize, preview.bytes.size());
        out.zeros(kHeadSize);
        out.append(preview.bytes);
    }
    out.append(endOf(kPreviewBegin));
    return std::move(out.bytes);
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
