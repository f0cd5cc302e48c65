#pragma once

#include <functional>

#include <base/tv_string.h>

class TvSmDatabase;
class TvSmSheet;
class TvSmTvDbLayoutReference;

namespace panel {

/// Binds a sheet to another layout, under the lock that the caller holds.
/// @return whether the change is to be kept.
using ReplaceLayout = std::function<bool(TvSmDatabase& database, TvSmSheet& sheet)>;
/// Supplied by the room that imports layouts; without it that choice is said to be not available.
void setReplaceLayout(ReplaceLayout replace);

/// Asks what is to become of a sheet whose drawing or layout is not there: it can be removed from
/// its set, after another question, or get another layout. Nothing while the set is locked.
/// @param reference  of a sheet in a set; null and any other are nothing.
/// @param titleId    text of the title. @param textId  of the question; 1: the path as stored.
void RecoverMissingDrawing(const TvSmTvDbLayoutReference* reference, int titleId, int textId);

/// Whether that set is still open. It is not looked into: it may be gone.
bool isStillOpen(const TvSmDatabase* database);

/// The question before sheets are removed. @param what  their label, or how many.
bool confirmRemoval(const TvString& what, const TvSmDatabase& database);

} // namespace panel
