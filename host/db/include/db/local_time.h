#pragma once

#include <db/tv_db_date.h>

namespace db {

/// Drawings keep universal time; people read that of their place, which is the time zone of this
/// process (TZ). Dates that no calendar knows stay what they are.

/// The local time of a moment in universal time.
TvDbDate localFromUtc(const TvDbDate& utc);
/// The moment that local clocks show so. Where they show it twice, or never, because summer time
/// begins or ends, one of the moments beside that.
TvDbDate utcFromLocal(const TvDbDate& local);

} // namespace db
