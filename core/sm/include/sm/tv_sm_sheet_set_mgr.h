#pragma once

#include <memory>
#include <vector>

#include <sm/tv_sm_database.h>

/// The one keeper of open databases in a process; reached through KvDbUtil::tarvGetSheetSetMgr().
class TvSmSheetSetMgr
{
public:
    TvSmSheetSetMgr();
    virtual ~TvSmSheetSetMgr();
    TvSmSheetSetMgr(const TvSmSheetSetMgr&) = delete;
    TvSmSheetSetMgr& operator=(const TvSmSheetSetMgr&) = delete;

    /// A new database for @p path: a copy of the .dst at @p templatePath, or an empty set when that
    /// is empty. It takes changes without a lock until its first save; nothing is on disk before.
    ///
    /// @param overwrite  false refuses a @p path that is there.
    /// @return null when the template cannot be read, @p path is empty or open here already, or is
    /// there and must not be overwritten.
    virtual TvSmDatabase* createDatabase(const TvString& path, const TvString& templatePath,
                                         bool overwrite);
    /// The database of @p path, opened now or already open; null on failure.
    /// @param silent    true where a failure must show nothing (nothing is shown here anyway).
    /// @param reserved  0.
    virtual TvSmDatabase* openDatabase(const TvString& path, bool silent, int reserved);
    /// The open database of that path, or null. Opens nothing. Names are equal without regard to
    /// case, unless both spellings exist as different files.
    virtual TvSmDatabase* findOpenDatabase(const TvString& path) const;
    /// Closes: a held lock is rolled back first, then 17 is raised, then all pointers into it die.
    /// @return whether it closed; false for null, for what is not open here, and while one of the
    /// database's own sinks is being told something.
    virtual bool closeDatabase(TvSmDatabase* db);
    virtual int registerEventHandler(TvSmEvents* sink);
    virtual bool unregisterEventHandler(int cookie);
    /// All open databases in the order of opening; owned by the caller.
    virtual TvSmEnumerator<TvSmDatabase>* getDatabaseEnumerator() const;
    /// True while a database is being opened or closed, or one of them is busy.
    virtual bool isBusy() const;

private:
    friend struct sm::Internals;
    struct State;
    std::unique_ptr<State> m_state;
};

namespace sm {

/// Why the last createDatabase or openDatabase gave null.
const base::Status& lastStatus(const TvSmSheetSetMgr* manager);

/// Deletes a whole sheet set in one operation: closes it if it is open here, and removes the file
/// with all that belongs to it, so that nothing brings it back and a new set of that name meets no
/// leftovers. Locked when somebody else holds it.
base::Status deleteSheetSet(TvSmSheetSetMgr& manager, const TvString& path);

} // namespace sm
