#pragma once

#include <cstdint>
#include <vector>

#include <base/status.h>
#include <dwg/checksums.h>
#include <dwg/record_streams.h>
#include <dwg/version.h>

namespace dwg {

/// One object as it lies in a file: its size, from 2010 on the size of its handle stream, its data,
/// and a checksum over all of that. Bit positions count from the first byte of the data.
struct ObjectRecord {
    Bytes frame;               ///< everything, from the size to the checksum
    Bytes data;                ///< what lies between
    std::size_t endBit = 0;    ///< where the data part ends and the handles begin
    std::size_t bodyBit = 0;   ///< the first bit behind type, size and own handle
    std::uint16_t type = 0;    ///< fixed number, or from 500 on the number of a class
    std::uint64_t handle = 0;  ///< the object's own
    std::size_t bitSizeAt = 0; ///< up to 2007: where the RL stands that tells endBit

    /// Worked out when it is asked for: most readers do not look at it.
    bool checksumRight() const;
    /// The parts behind the own handle, each with its own position.
    RecordStreams streams(Version version) const
    {
        return splitRecord(version, data, bodyBit, endBit);
    }
};

/// Bytes of the whole record that @p bytes begins with, by the sizes it tells; the record itself
/// may reach further than @p bytes, of which at most 16 are looked at. 0 when the sizes are
/// impossible.
std::uint64_t recordSize(Version version, Bytes bytes);

/// What a record says at its begin: enough to tell what it is.
struct ObjectFront {
    std::uint64_t size = 0;   ///< of the whole record; 0 when the begin makes no sense
    std::uint16_t type = 0;   ///< as in ObjectRecord
    std::uint64_t handle = 0; ///< the object's own
};
/// Bytes of a record that readFront() may want.
inline constexpr std::size_t kMostFrontBytes = 48;
/// @param head  the first kMostFrontBytes of a record, or all there are.
ObjectFront readFront(Version version, Bytes head);

/// What @p frame says about itself. Fails (Damaged) when sizes contradict each other; a wrong
/// checksum is told, not refused. @p frame is kept by reference.
base::Result<ObjectRecord> parseRecord(Version version, Bytes frame);

/// The record around @p data, whose data part ends before @p endBit; empty if it is too large to be
/// stored. Up to 2007 the bit size inside the data is the caller's to fill in (BitWriter::patchRL).
std::vector<std::uint8_t> frameRecord(Version version, Bytes data, std::size_t endBit);

} // namespace dwg
