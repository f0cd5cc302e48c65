#pragma once

#include <db/tv_db_database.h>

namespace ed {

/// The layout that is shown: the model layout, or the paper layout that was active last.
TvDbObjectId currentLayout(const TvDbDatabase& database);
/// Its name; empty when the drawing has none.
TvString currentLayoutName(const TvDbDatabase& database);

/// Shows another layout, and tells the reactors of the variables that follow (CTAB, TILEMODE).
/// @return KeyNotFound when there is none of that name; names are equal without regard to case.
TvStatusCode setCurrentLayout(TvDbDatabase& database, const TvString& name);
/// @return NotThatObject when it is no layout of that drawing.
TvStatusCode setCurrentLayout(TvDbDatabase& database, TvDbObjectId layout);

} // namespace ed
