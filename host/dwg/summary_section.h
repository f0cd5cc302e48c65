#pragma once

#include <optional>
#include <vector>

#include <db/drawing_file.h>

#include "dwg/bytes.h"
#include "dwg/code_page.h"
#include "dwg/version.h"

namespace dwg {

/// The section AcDb:SummaryInfo as values; nullopt when it contradicts itself.
std::optional<db::SummaryInfo> readSummary(Version version, Bytes section,
                                           const CodePage& codePage);
/// The section for @p summary; empty when a text or their number is too large for it.
std::vector<std::uint8_t> writeSummary(Version version, const db::SummaryInfo& summary,
                                       const CodePage& codePage);

} // namespace dwg
