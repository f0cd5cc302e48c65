#pragma once

#include "database_state.h"

namespace sm {

/// The text of a .dst file: UTF-8 XML, one element a line, attributes in a fixed order, children in
/// the user's.
///
/// The same content gives the same bytes. What never was in the set, or was taken out, is not in
/// it.
/// @param nextHandle  the first handle that is free.
std::string writeText(DatabaseState& state, std::uint64_t nextHandle);

} // namespace sm
