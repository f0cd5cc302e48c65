#pragma once

#include <core/sheet_data.h>

#include <cli/console.h>

namespace cli {

/// What a drawing keeps of its sheet set; null when it keeps nothing.
Json jsonOf(const core::SheetData& data);
/// The same, a line for each entry.
void listSheetData(const core::SheetData& data, Console& console, const TvString& indent = {});

} // namespace cli
