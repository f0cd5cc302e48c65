#pragma once

#include <db/drawing_file.h>

#include "dwg_file.h"

namespace dwg {

/// The file that @p contents become in the version of @p origin: what was not changed stays bit for
/// bit.
base::Result<std::vector<std::uint8_t>> writeInPlace(const db::Contents& contents,
                                                     const DwgFile& origin);

/// A new file in @p version: every object is decoded, converted where it comes from another
/// version, and encoded.
base::Result<std::vector<std::uint8_t>> writeAnew(const db::Contents& contents, Version version);

/// @p items, with commas between them; of many only the first and how many more there are.
TvString listed(const std::vector<std::string>& items);

} // namespace dwg
