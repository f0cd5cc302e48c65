#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <db/drawing_file.h>

#include "dwg/checksums.h"

namespace dwg {

/// One picture, or other entry, of a preview block.
struct PreviewEntry {
    std::uint8_t code = 0; // 1 head, 2 DIB, 3 WMF, 6 PNG
    std::size_t field = 0; // where the entry stands in the block
    std::size_t begin = 0; // of its data in the block
    std::size_t size = 0;
};

/// The entries of the preview block that begins @p block and was stored at @p address of its file,
/// since entries tell absolute places. Entries that point outside are left out; nullopt when it is
/// no preview.
std::optional<std::vector<PreviewEntry>> readPreview(Bytes block, std::uint64_t address);

/// The bytes from the begin sentinel at the start of @p bytes to its end sentinel, both included;
/// empty when there is no such thing.
Bytes previewBlockAt(Bytes bytes);

/// The picture in the preview @p block that was stored at @p address; the best one when there are
/// several.
db::Preview pictureOf(Bytes block, std::uint64_t address);
/// A block with that picture, or with none, whose entries tell their places from its own begin.
std::vector<std::uint8_t> previewBlock(const db::Preview& preview);

/// Makes @p block, which was stored at @p from, right for the address @p to. One that does not
/// parse stays.
void movePreview(std::vector<std::uint8_t>& block, std::uint64_t from, std::uint64_t to);

} // namespace dwg
