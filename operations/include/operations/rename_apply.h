#pragma once

#include <functional>

#include <operations/rename_journal.h>
#include <operations/rename_plan.h>

class TvSmDatabase;

namespace operations {

/// Does what a plan says, in all drawings and in the set, or nothing of it.
///
/// Contents and names go through temporary ones, so that names may be exchanged; a journal beside
/// the set (RenameJournal) lets whoever comes next finish or take back what a crash left. File
/// references of the whole set that lead to a drawing that moves follow it.
/// @param database  locked by the caller, and changed; after a failure he rolls it back.
/// @param plan      without clashes.
/// @param commit    ends the lock and keeps the change (the caller's scope does); false when it
///                  could not be written.
/// @return why nothing was done: somebody has a drawing open, or it changed since it was read, for
///         example. Where even taking back fails, the journal stays for recoverRename().
/// @note reads and writes each drawing whose layouts change once; four writings of the journal.
base::Status applyRename(TvSmDatabase& database, const RenamePlan& plan,
                         const std::function<bool()>& commit);

enum class RenameRecovery { Nothing, TakenBack, Finished };

/// Brings a rename that was broken off to its old state, or to its new one if the set was written
/// already.
///
/// @param database  locked by the caller, so that nobody is in the middle of it; the lock stays.
/// @return what was done; a status when it could not be: the journal is left then.
base::Result<RenameRecovery> recoverRename(TvSmDatabase& database);
/// A rename that was broken off, and what recoverRename() would do about it.
struct BrokenRename {
    RenameRecovery way = RenameRecovery::Nothing; ///< there is none
    int drawings = 0;                             ///< so many take part
};
/// @param database  as for recoverRename(). Changes nothing.
base::Result<BrokenRename> brokenRename(TvSmDatabase& database);
/// Whether there is something to recover, by the look of it.
bool hasRenameToRecover(const TvString& setPath);

/// What takes the last rename of that set back; sheets that are not any more what it made of them
/// are Clash::Stale. NotFound when nothing was renamed.
base::Result<RenamePlan> planRenameUndo(TvSmDatabase& database);

} // namespace operations
