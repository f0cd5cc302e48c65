#pragma once

#include <base/status.h>

#include "database_state.h"

namespace sm {

/// Makes the objects that the text of a .dst file describes, in @p state.
///
/// An object that @p state knows by its handle, of the same class, is filled anew and keeps its
/// address; the others are made. Texts of objects are slices of @p text, which is decoded in place.
/// @param text  whole; XmlScanner::kPadding bytes of 0 follow it; outlives the objects.
/// @param path  for the reason of a failure.
/// @return why the text makes no sense; then @p state holds half of it, and is to be thrown away.
/// So a state with objects in it
///         is only read into after a copy of the text was read into a fresh one.
base::Status readObjects(std::span<char> text, const TvString& path, DatabaseState& state);

} // namespace sm
