#pragma once

#include <string_view>

namespace module {

/// What this module registers with host and library besides its commands table and its adapter
/// provider; everything at the start, in the order of the table.
void RegisterSheetSetModule();
/// Takes everything back, in an order of its own: what uses something goes before it.
void UnregisterSheetSetModule();

/// Tells the observer.
void noteStep(std::string_view step);

} // namespace module
