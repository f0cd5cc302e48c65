#pragma once

#include <operations/rename_plan.h>

#include "cli/console.h"
#include "cli/requests.h"
#include "cli/session.h"

namespace cli {

/// Shows every effect of a rename with what stands in its way, and does it; refuses (CheckFailed)
/// where something does. In a dry run it is only shown.
ExitCode showAndApply(ChangedSet& set, const operations::RenamePlan& plan, Console& console);

} // namespace cli
