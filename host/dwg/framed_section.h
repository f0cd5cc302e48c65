#pragma once

#include <optional>

#include "dwg/record_streams.h"
#include "sentinels.h"

namespace dwg {

/// A section that is one record between sentinels: the header variables or the classes.
struct FramedSection {
    Bytes record;             ///< from 2007 on it begins with its own size in bits
    std::size_t beginBit = 0; ///< of the data part in the record
    std::size_t endBit = 0;   ///< where the handles begin
    Bytes trailing;           ///< what follows the end sentinel
    bool hasHighSize = false; ///< a zero word stands behind the size, as from 2010 on
    bool checksumRight = false;
    bool endSentinelRight = false;
};

/// Reads the frame of @p section that @p begin opens; nullopt when its sizes cannot be.
std::optional<FramedSection> readFrame(Version version, Bytes section, const Sentinel& begin);

/// The section around the bytes of a record. From 2007 on the record's first 32 bits are its data
/// part's size.
std::vector<std::uint8_t> writeFrame(const Sentinel& begin, Bytes record, bool hasHighSize,
                                     Bytes trailing);

} // namespace dwg
