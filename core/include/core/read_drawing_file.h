#pragma once

#include <base/tv_string.h>
#include <db/tv_db_database.h>

/// Reads a drawing that is only looked at into a scratch database.
///
/// First so that nobody may be writing it, then whoever is.
/// @param database  empty (made with false); null answers NoDatabase.
/// @return Ok, or why the second reading failed.
TvStatusCode ReadDrawingFile(TvDbDatabase* database, const TvString& path);
