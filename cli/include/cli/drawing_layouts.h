#pragma once

#include <db/tv_db_database.h>

namespace cli {

/// The layout of that name, in any case; refuses (NoInput) when there is none, and tells those that
/// there are.
TvDbObjectId layoutNamed(TvDbDatabase& database, const TvString& name);
/// The same; refuses (Usage) the model layout.
TvDbObjectId paperLayoutNamed(TvDbDatabase& database, const TvString& name);

} // namespace cli
