#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include <sm/tv_sm_events.h>

class TvSmDatabase;
class CTvSmSheetSetEventsHandler;

namespace core {

/// What is known of an open sheet set, to notice that somebody else changed it.
struct WatchEntry {
    TvSmDatabase* database = nullptr;                    // the manager's
    int cookie = -1;                                     ///< of the database's own handler
    int lockStatus = 0;                                  ///< as last seen
    std::uint64_t fileTime = 0;                          ///< last write, in 100 ns; 0: unreadable
    std::unique_ptr<CTvSmSheetSetEventsHandler> handler; ///< registered under the cookie
};

/// All open sheet sets. Entries come and go with the manager's events.
using WatchTable = std::map<TvSmDatabase*, WatchEntry>;

} // namespace core

/// The one watch table of the module.
extern core::WatchTable g_watchTable;

/// Hears the manager and the databases, and keeps the watch table.
///
/// Our own writes are no outside changes: the time of the file is taken over when the lock ends in
/// which it was written, and the palettes show the new content.
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
