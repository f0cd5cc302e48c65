#pragma once

#include <memory>

#include <db/tv_db_layout.h>

namespace db {

/// Whether a new layout may have that name in this drawing: Ok, NameReserved, InvalidName,
/// DuplicateName.
TvStatusCode checkNewLayoutName(const TvDbDatabase& database, const TvString& name);

/// The tab behind the last one.
int nextTab(TvDbDatabase& database);

/// Puts a new layout into the drawing with a new, empty block.
/// @pre its name was checked.
TvStatusCode putLayout(TvDbDatabase& database, std::unique_ptr<TvDbLayout> layout,
                       TvDbObjectId& out);

} // namespace db
