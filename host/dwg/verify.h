#pragma once

#include "save_plan.h"

namespace dwg {

/// Whether @p saved holds what @p plan says: DwgVerifyFailed if anything differs.
base::Status verifyPlan(const SavePlan& plan, const std::vector<std::uint8_t>& saved);

} // namespace dwg
