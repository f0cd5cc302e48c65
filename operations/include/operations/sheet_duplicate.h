#pragma once

#include <base/tv_string.h>

class TvSmSheet;
class TvSmSubset;

/// Whether @p subset has a sheet with that number and that title already; if so the user is told.
///
/// Both must be equal, letter for letter, and the other one must be a direct child of the subset: a
/// number may stand several times in a set.
/// @param subset    null has no sheets.
/// @param excluded  the sheet that is about to be called so; null for a new one.
bool IsSheetDuplicate(const TvString& number, const TvString& title, const TvSmSubset* subset,
                      const TvSmSheet* excluded);

namespace operations {

/// The same, and nobody is told. Null when there is none.
const TvSmSheet* duplicateOf(const TvString& number, const TvString& title,
                             const TvSmSubset* subset, const TvSmSheet* excluded);

} // namespace operations
