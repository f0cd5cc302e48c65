#pragma once

#include <map>
#include <string>
#include <vector>

#include <db/record.h>

#include "dwg/bytes.h"
#include "dwg/code_page.h"
#include "dwg/version.h"

namespace dwg {

/// The small sections of a file that is made from nothing: those that every drawing needs beside
/// its objects, variables and classes. Times and the next free handle are those of @p header.
std::map<std::string, std::vector<std::uint8_t>>
newSections(Version version, const db::Record& header, std::size_t objectCount);

/// The section AcDb:Template: what the drawing's template says of itself, and what it counts in.
std::vector<std::uint8_t> templateSection(Version version, const std::u16string& description,
                                          const CodePage& codePage, int measurement);
std::u16string templateDescription(Version version, Bytes section, const CodePage& codePage);
/// @p section with another measurement; empty when it does not parse.
std::vector<std::uint8_t> withMeasurement(Version version, Bytes section, int measurement);

} // namespace dwg
