#pragma once

#include <optional>

#include "raw_check.h"
#include "save_plan.h"

namespace dwg {

/// Where the objects of a paged file come to lie in a save, and which bytes change by that.
struct ObjectLayout {
    struct Write { // bytes to put at a place; null: that many zeros
        std::uint64_t offset = 0, size = 0;
        const std::uint8_t* bytes = nullptr; // into the plan or the source; not owned
    };

    std::vector<ObjectLocation> map; ///< ascending handles
    std::uint64_t size = 0;          ///< of the whole section
    std::vector<Write> writes;       ///< in the order in which they are made
};

/// Leaves every unchanged object where it is: a changed one goes back to its place where it fits,
/// else to room that another one left, else behind all others. What nobody uses any more becomes
/// zero.
base::Result<ObjectLayout> layoutInPlace(const SavePlan& plan);

/// Puts all objects behind each other in their old order, without gaps.
base::Result<ObjectLayout> layoutCompact(const SavePlan& plan);

/// Whether so much of the section is unused that it should be laid out anew. Reads every object; so
/// it is asked only at every eighth save, and of files that do not count their saves.
bool shouldCompact(const SavePlan& plan);

} // namespace dwg
