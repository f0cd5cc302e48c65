#pragma once

#include <base/tv_string.h>

namespace core {

/// Says at the command line that what the user asked for is not built yet.
/// @param what  the command's global name.
void sayNotAvailableYet(const TvString& what);

} // namespace core
