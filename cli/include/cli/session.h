#pragma once

#include <memory>
#include <optional>

#include <operations/rename_apply.h>
#include <sm/change_scope.h>
#include <sm/tv_sm_sheet_set_mgr.h>

#include <cli/console.h>
#include <cli/requests.h>

namespace cli {

/// A sheet set opened for reading; closed when this goes. Takes no lock, but for a moment where a
/// rename of drawings was broken off and is to be looked after.
class OpenedSet
{
public:
    /// Opens the set, or refuses; warns about one that only a newer program may change.
    OpenedSet(const TvString& file, Console& console);
    const TvSmDatabase& database() const { return *m_db; }
    const TvSmSheetSet& set() const { return *m_db->getSheetSet(); }

private:
    TvSmSheetSetMgr m_manager;
    const TvSmDatabase* m_db = nullptr; // the manager's
};

/// A sheet set that one verb changes: locked, and rolled back unless commit() was reached. In a dry
/// run a private copy, which nobody else notices.
class ChangedSet
{
public:
    /// Opens the set and takes its lock, waiting for it as the options say, or refuses.
    ChangedSet(const TvString& file, const ChangeOptions& options, Console& console);

    TvSmDatabase& database() { return *m_db; }
    TvSmSheetSet& set() { return *m_db->getSheetSet(); }
    bool isDryRun() const { return m_copy != nullptr; }
    /// Writes the change, or refuses; nothing in a dry run but to say so.
    void commit();
    /// Ends the lock and keeps the change, for who does more than change the set; false when it
    /// could not be written. Never in a dry run.
    bool tryCommit() { return m_scope->commit(); }
    /// What became of a rename of drawings that somebody had left in its middle.
    operations::RenameRecovery recovered() const { return m_recovered; }

private:
    void openCopy(const TvString& file);
    void openLocked(const TvString& file, std::chrono::milliseconds lockWait);
    base::Status waitForLock(std::chrono::milliseconds lockWait);

    Console& m_console; // not owned; outlives us
    TvSmSheetSetMgr m_manager;
    std::unique_ptr<TvSmDatabase> m_copy;
    TvSmDatabase* m_db = nullptr; // the manager's, or the copy
    std::optional<sm::ChangeScope> m_scope;
    operations::RenameRecovery m_recovered = operations::RenameRecovery::Nothing;
};

/// The path as it is told to the user and to lower rooms: absolute, without "." and "..".
TvString fullPath(const TvString& path);

/// Warns when a change of that file would have to wait, or could not be written. For dry runs.
void warnIfLocked(const TvString& file, Console& console);

} // namespace cli
