#pragma once

#include <db/tv_db_database.h>

namespace cli {

/// The layout of that name, in any case; refuses (NoInput) when there is none, and tells those that
/// there are. Refuses (Damaged) where a drawing has no layout at all.
TvDbObjectId layoutNamed(TvDbDatabase& database, const TvString& name);
/// The same; refuses (Usage) the model layout.
TvDbObjectId paperLayoutNamed(TvDbDatabase& database, const TvString& name);

} // namespace cli
