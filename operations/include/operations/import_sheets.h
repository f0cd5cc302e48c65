#pragma once

#include <span>
#include <vector>

#include <operations/import_layouts.h>

class TvSmComponent;
class TvSmSheet;
class TvSmSubset;

/// Sheets from layouts that are there already. The drawings are not changed.
namespace operations {

/// "Plans - Level 1": the drawing's file name without folder and extension, " - ", and the layout's
/// name; without prefix that name alone.
TvString importedSheetName(const TvString& drawing, const TvString& layout, bool withPrefix);

/// Makes a sheet of @p subset that leads to the layout; it has no place yet, no number and no
/// description.
/// @return null when the database refuses changes.
TvSmSheet* makeImportedSheet(TvSmSubset& subset, const LayoutRow& row, bool withPrefix);

/// Lets the sheet lead to another layout, by the reference that it has or by a new one. What else
/// the sheet has stays.
/// @return false when the database refuses changes.
bool repointSheet(TvSmSheet& sheet, const LayoutRow& row);

/// Gives each sheet the custom properties that the set has for sheets, and puts them into
/// @p subset, in their order, in front of @p before; with null, at the end. Null sheets are passed
/// over.
/// @return false when one was refused.
bool placeImportedSheets(TvSmSubset& subset, std::span<TvSmSheet* const> sheets,
                         TvSmComponent* before);

} // namespace operations
