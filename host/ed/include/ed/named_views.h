#pragma once

#include <ed/drawing_view.h>

#include <db/tv_db_database.h>

class TvDbViewTableRecord;

namespace ed {

/// Keeps what is shown now under a name; a view of that name is replaced, and keeps its category.
/// @param view  to be kept instead of what is shown.
/// @return InvalidName; what the view's record answers.
TvStatusCode saveNamedView(TvDbDatabase& database, const TvString& name,
                           const std::optional<View>& view = std::nullopt);
/// Shows a named view: its layout first, where it notes one.
/// @return KeyNotFound; NotApplicable when it cannot be shown.
TvStatusCode restoreNamedView(TvDbDatabase& database, const TvString& name);
/// @return KeyNotFound; what erasing answers.
TvStatusCode deleteNamedView(TvDbDatabase& database, const TvString& name);
/// The view that a record of the table holds.
View viewOf(const TvDbViewTableRecord& record);

} // namespace ed
