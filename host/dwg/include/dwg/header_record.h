#pragma once

#include <base/status.h>
#include <db/record.h>
#include <dwg/bytes.h>
#include <dwg/code_page.h>
#include <dwg/version.h>

namespace dwg {

/// The header variables as a record of the class HEADER_VARIABLES: what the database works with
/// (HeaderVariables is the same section at the level of the file).
///
/// @p section is AcDb:Header with its sentinels. Fails (Damaged) when its frame or its record
/// cannot be, or when not every bit is accounted for. A wrong checksum is not looked at.
base::Result<db::Record> decodeHeader(Version version, Bytes section, const CodePage& codePage);

/// The section for @p record, in @p version: the bytes it was read from, if it was not changed and
/// nothing stood behind its end. Fails (TooLarge) when a value does not fit.
base::Result<std::vector<std::uint8_t>> encodeHeader(const db::Record& record, Version version,
                                                     const CodePage& codePage);

} // namespace dwg
