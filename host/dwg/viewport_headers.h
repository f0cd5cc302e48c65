#pragma once

#include <map>
#include <optional>
#include <set>

#include "dwg_file.h"

namespace dwg {

/// AC1015 keeps a second record (VPENT_HDR) for each viewport of the active paper layout: a table
/// lists them, and each tells the one before it, from the one that the header variables tell.
struct ViewportHeaderChanges {
    std::map<std::uint64_t, db::Record> changed;
    std::set<std::uint64_t> erased;
    std::optional<db::Record> header; ///< when a variable changes
};

/// Takes the second records of viewports that are erased out of their table and out of their chain.
/// Those that are erased already are left to whoever did it.
base::Status removeViewportHeaders(const db::Contents& contents, const DwgFile& origin,
                                   ViewportHeaderChanges& changes);

} // namespace dwg
