#pragma once

#include <rx/tv_rx_object.h>
#include <sm/tv_sm_fwd.h>

/// What databases and the manager tell their sinks. Numbers are forever; unknown ones are ignored.
enum TvSmEvent : int {
    SmEventDatabaseOpened = 16,  ///< Opened or created by the manager. Object: the database.
    SmEventDatabaseClosing = 17, ///< About to be closed.
    SmEventLockEnded = 20,       ///< A lock was ended; unlockDb is about to return.
    SmEventDatabaseWritten =
        21, ///< Written to its file in a commit; before the 20 of the same unlock.
};

/// The base of an event sink. A manager's sink hears 16 and 17 of all databases, a database's sink
/// hears its 20 and 21.
class TvSmEvents : public TvRxObject
{
    TVRX_DECLARE_MEMBERS(TvSmEvents)

    ~TvSmEvents() override;
    /// On the thread, and within the call, that caused the change. A sink may register and
    /// unregister sinks.
    virtual void onEvent(int code, TvSmPersist* object) = 0;

protected:
    TvSmEvents() = default;
};
