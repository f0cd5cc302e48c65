#pragma once

#include <functional>

#include <base/tv_string.h>

class TvSmDatabase;

namespace core {

/// What a large change that was broken off leaves beside a set's file, and who looks after it.
///
/// The room that makes such changes puts this in; whoever opens or watches sets finds the file. It
/// is looked for in other threads as well.
struct Leftover {
    TvString (*pathFor)(const TvString& setPath) = nullptr;
    /// Called outside of everything else, whenever the file is seen; may ask the user.
    void (*lookAfter)(TvSmDatabase& database) = nullptr;
};

/// Empty: there is none.
void setLeftover(const Leftover& leftover);
const Leftover& leftover();
/// Looks now, for a set that was just opened where nobody watches; asks the disk.
void lookForLeftover(TvSmDatabase* database);

} // namespace core
