#pragma once

#include <cstdint>
#include <vector>

#include "dwg/checksums.h"

namespace dwg {

/// The two Reed-Solomon codes of the 2007 container: blocks of 255 bytes, the data first, then the
/// parity.
enum class BlockCode : std::uint8_t {
    System, ///< 239 bytes of data: headers and maps
    Data,   ///< 251 bytes of data
};

constexpr std::size_t kBlockSize = 255;
constexpr std::size_t dataBytes(BlockCode code)
{
    return code == BlockCode::System ? 239 : 251;
}
/// Blocks that @p size bytes take.
constexpr std::size_t blocksFor(BlockCode code, std::size_t size)
{
    return (size + dataBytes(code) - 1) / dataBytes(code);
}

/// The parity of one block; @p data is its bytes, missing ones at the end are zero.
std::vector<std::uint8_t> parityOf(BlockCode code, Bytes data);
/// @p data as whole blocks with parity, byte j of block i at j * blocks + i.
std::vector<std::uint8_t> encodeInterleaved(BlockCode code, Bytes data);
/// The first @p size bytes of data of interleaved blocks, as they stand; nothing is corrected.
/// @pre  @p coded has all blocks that @p size takes, and those are @p blocks.
std::vector<std::uint8_t> decodeInterleaved(BlockCode code, Bytes coded, std::size_t blocks,
                                            std::size_t size);

} // namespace dwg
