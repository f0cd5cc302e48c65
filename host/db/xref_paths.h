#pragma once

#include <db/tv_db_symbol_table.h>

namespace db {

/// Where the file of an external reference is looked for.
struct XrefPlace {
    TvString path;            ///< the full path; where it should be when it is not there
    bool isThere = false;     ///< a file that may be looked at
    bool isForbidden = false; ///< it lies on a network host that the user did not agree to
    bool isKnown = true;      ///< false: a relative path, and nothing that it begins at
};

/// @param saved   as the drawing has it.
/// @param namer   the drawing that names it; empty when it has no file.
/// @param host    the drawing that shows that one.
XrefPlace findXref(const TvString& saved, const TvString& namer, const TvString& host);

/// How a reference stands whose file was looked for, but not into.
TvDb::XrefStatus statusOf(const XrefPlace& place);

} // namespace db
