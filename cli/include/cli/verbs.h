#pragma once

#include <cli/console.h>
#include <cli/requests.h>

namespace cli {

/// One function for each verb: does what @p request says, puts data and messages on the console,
/// and answers how it ended. None throws a Refusal.
///
/// A verb that changes a set first looks at its request (Usage, before any lock is taken), then
/// takes the lock, changes, and commits; on every other way out nothing was changed and the lock is
/// free. Drawings have no lock: a verb that changes one saves it in one step, and only if nobody
/// else changed it since it was read.

Outcome run(const NewRequest& request, Console& console);
Outcome run(const TreeRequest& request, Console& console);
Outcome run(const InfoRequest& request, Console& console);
Outcome run(const SubsetAddRequest& request, Console& console);
Outcome run(const SheetImportRequest& request, Console& console);
Outcome run(const MoveRequest& request, Console& console);
Outcome run(const SetRequest& request, Console& console);
Outcome run(const PropSetRequest& request, Console& console);
Outcome run(const PropRemoveRequest& request, Console& console);
Outcome run(const PropListRequest& request, Console& console);
Outcome run(const SheetRenameRequest& request, Console& console);
Outcome run(const RenumberRequest& request, Console& console);
Outcome run(const RemoveRequest& request, Console& console);
Outcome run(const CheckRequest& request, Console& console);
Outcome run(const PublishRequest& request, Console& console);
Outcome run(const LockRequest& request, Console& console);
Outcome run(const SheetNewRequest& request, Console& console);
Outcome run(const DrawingInfoRequest& request, Console& console);
Outcome run(const DrawingCheckRequest& request, Console& console);
Outcome run(const DrawingCopyRequest& request, Console& console);
Outcome run(const DrawingNewRequest& request, Console& console);
Outcome run(const LayoutListRequest& request, Console& console);
Outcome run(const LayoutAddRequest& request, Console& console);
Outcome run(const LayoutRenameRequest& request, Console& console);
Outcome run(const LayoutRemoveRequest& request, Console& console);
Outcome run(const SheetDataShowRequest& request, Console& console);
Outcome run(const SheetDataWriteRequest& request, Console& console);
Outcome run(const SheetDataRemoveRequest& request, Console& console);
Outcome run(const HelpRequest& request, Console& console);
Outcome run(const CompletionRequest& request, Console& console);
Outcome run(const VersionRequest& request, Console& console);

} // namespace cli
