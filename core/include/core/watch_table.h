#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>

#include <base/edit_lock.h>
#include <base/file_ops.h>
#include <sm/tv_sm_events.h>

class TvSmDatabase;
class CTvSmSheetSetEventsHandler;

namespace core {

/// What is known of an open sheet set, to notice that somebody else changed it.
struct WatchEntry {
    TvSmDatabase* database = nullptr; // the manager's
    int cookie = -1;                  ///< of the database's own handler
    int lockStatus = 0;               ///< as last seen
    base::LockInfo lock;              ///< the same with its owner
    unsigned generation = 0;          ///< counts how often the file was taken over
    std::uint64_t fileTime = 0;       ///< last write, in 100 ns; 0: unreadable
    /// The file that was meant by the time: two versions may have one time. None: not known.
    std::optional<base::FileStamp> stamp;
    bool isGivenUp = false; ///< the file is gone, and could not be written again
    std::unique_ptr<CTvSmSheetSetEventsHandler> handler; ///< registered under the cookie

    /// Takes time and file over: what is there now is known.
    void takeFile();
    /// The same of a version that was read already; the disk is not asked.
    void takeStamp(const base::FileStamp& seen);
    /// A set that was made and not saved yet has no file that could go.
    bool neverHadAFile() const { return fileTime == 0 && !stamp; }
};

/// All open sheet sets. Entries come and go with the manager's events.
using WatchTable = std::map<TvSmDatabase*, WatchEntry>;

} // namespace core

/// The one watch table of the module.
extern core::WatchTable g_watchTable;

/// Looks once at each open sheet set, as the palettes' fast timer does.
///
/// A file that is gone is written again from memory (not one that never was there). Another lock
/// status is noted, and shown if the set is the current one. A file that is another one than last
/// time, or of another time, is loaded; the palettes show it if the set is the current one. While
/// the set is locked here an outside change waits.
/// @note Sets may come and go meanwhile. One look at the disk for each set; nothing is opened where
/// nothing changed.
void PollWatchTable();

/// Hears the manager and the databases, and keeps the watch table.
///
/// Our own writes are no outside changes: the time of the file is taken over when the lock ends in
/// which it was written, and the palettes show the new content. A lock that had to read the file
/// afresh, and was ended without a write, leaves the time alone: the next poll shows what it read.
class CTvSmSheetSetEventsHandler : public TvSmEvents
{
    TVRX_DECLARE_MEMBERS(CTvSmSheetSetEventsHandler)

    /// @param table  not owned; outlives the handler.
    explicit CTvSmSheetSetEventsHandler(core::WatchTable* table);
    ~CTvSmSheetSetEventsHandler() override;
    void onEvent(int code, TvSmPersist* object) override;

private:
    void opened(TvSmDatabase& database);
    void closing(TvSmDatabase& database);
    void lockEnded(TvSmDatabase& database);

    core::WatchTable* m_table; // not owned
    bool m_writtenSinceLockEnded = false;
};
