#pragma once

#include <vector>

#include <base/tv_string.h>
#include <db/tv_db_database.h>

namespace gs {

/// The places where a file that @p database names may be, in the order in which they are tried:
/// where the name says, beside the drawing when that is relative, and by its last part beside the
/// drawing. Network paths and addresses are left alone: none.
std::vector<TvString> placesOf(TvDbDatabase& database, const TvString& name);

} // namespace gs
