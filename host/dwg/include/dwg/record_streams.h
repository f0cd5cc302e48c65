#pragma once

#include <dwg/bit_reader.h>
#include <dwg/bit_writer.h>
#include <dwg/bytes.h>
#include <dwg/version.h>

namespace dwg {

/// The parts of one record (an object, the header variables, the classes), each with its own
/// position.
///
/// Up to 2004 the strings stand among the data: read them from `data`. From 2007 on they come from
/// `strings`, in the order of the fields. Handles come from `handles` in every version.
struct RecordStreams {
    BitReader data;
    BitReader strings; ///< empty up to 2004, and in a record whose strings are all empty
    BitReader handles;
    bool hasStrings = false; ///< false: from 2007 on, every string of the record is empty

    bool failed() const { return data.failed() || strings.failed() || handles.failed(); }
};

/// Parts the record in @p bytes, whose data begin at @p begin and end before bit @p end (there the
/// handles begin, running to the last byte). A string stream that cannot be gives a failed `data`.
RecordStreams splitRecord(Version version, std::span<const std::uint8_t> bytes, std::size_t begin,
                          std::size_t end);

/// Ends the data part of a record from 2007 on: the strings, their size and the flag behind the @p
/// data. The handles follow at the bit where this ends.
void appendStrings(BitWriter& data, const BitWriter& strings);

} // namespace dwg
