#pragma once

#include <base/tv_string.h>

namespace samples {

/// A small building project: a sheet set with the drawings of a house at a lake, one of which is
/// missing.
/// @param folder  is there already.
void makeLakeHouse(const TvString& folder);

} // namespace samples
