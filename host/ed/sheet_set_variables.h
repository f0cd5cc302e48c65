#pragma once

#include "ed/system_variables.h"

namespace ed {

/// Tells the sheet-set module of a variable that it works by; nothing for any other, and without
/// the module.
void tellSheetSetModule(const TvString& variable, const VariableValue& value);

} // namespace ed
