#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <base/content_hash.h>
#include <base/edit_lock.h>
#include <sm/tv_sm_events.h>
#include <sm/tv_sm_persist.h>
#include <sm/tv_sm_sheet.h>
#include <sm/tv_sm_sheet_set.h>

/// One sheet set with its .dst file.
///
/// Three kinds. One that the manager opened changes only under its lock. One that the manager
/// created takes changes without a lock until its first save. One made by direct construction is a
/// scratch copy: it belongs to its maker, is unknown to the manager whatever its file name, takes
/// changes at any time, and its lock is its own affair and guards nothing on disk.
///
/// Order at a commit: the file is written; the lock is free again; event 21; event 20. A rollback
/// raises 20 only. A commit that cannot be written rolls memory back, raises 20 and answers false.
class TvSmDatabase : public TvSmPersist
{
    TVRX_DECLARE_MEMBERS(TvSmDatabase)

    TvSmDatabase();
    ~TvSmDatabase() override;

    /// Makes the content of @p path this database's, in place.
    ///
    /// Merges by handle: an object that still exists keeps its address; one that went is parked,
    /// and its setters answer false. Content that memory already holds changes nothing. While the
    /// lock is held here an outside change waits: false.
    /// @return false when the file cannot be read or makes no sense; then everything is as before.
    virtual bool load(const TvString& path);
    /// Writes the committed state (never what a lock has not committed yet) to the file, raising no
    /// event.
    /// @param reserved 0.
    /// @return false when it could not be written, or somebody else wrote a newer version
    /// meanwhile.
    virtual bool save(int reserved);
    virtual TvString getFileName(TvString& out) const;
    TvString getFileName() const;
    /// The next save or commit writes there. Never under the lock.
    virtual bool setFileName(const TvString& path);
    /// Never null.
    virtual const TvSmSheetSet* getSheetSet() const;
    virtual TvSmSheetSet* getSheetSet();
    /// @param sink not owned; unregister it before it goes. Null gives the cookie that means none
    /// (-1).
    virtual int registerEventHandler(TvSmEvents* sink);
    /// False when there is no such cookie.
    virtual bool unregisterEventHandler(int cookie);
    /// The object of that handle text if it stands in the set now; null otherwise. @note O(depth).
    virtual TvSmPersist* findObject(const TvString& handleText) const;
    /// The version text of the file format.
    virtual TvString getVersion(TvString& out) const;
    TvString getVersion() const;
    /// Takes the lock, and reads the file afresh if it changed since our last read.
    ///
    /// Does not nest: held by anyone, ourselves included, gives false, and who got false never
    /// calls unlockDb.
    /// @param db this database; anything else gives false.
    virtual bool lockDb(TvSmDatabase* db);
    /// Ends the lock: with @p commit the changes are kept and the file is written, else all since
    /// lockDb is rolled back. A commit that changed nothing leaves the file alone and raises its
    /// events all the same.
    /// @return false when the lock is not held here, or the commit could not be written (then it
    /// was rolled back).
    virtual bool unlockDb(TvSmDatabase* db, bool commit);
    /// 0: free to be taken. The other numbers are those of base::LockState.
    virtual int getLockStatus() const;
    /// Up while a transmit collects files. Needs no lock.
    virtual void setTransmitting(bool transmitting);
    /// True while the content is being replaced or written, or a transmit runs: nothing may refresh
    /// from it.
    virtual bool isBusy() const;

    bool initNew(TvSmPersist* owner, const TvString& name) override;

private:
    friend struct sm::Internals;
    friend class sm::DatabaseState;
    friend class TvSmSheetSetMgr;
    std::unique_ptr<sm::DatabaseState> m_state;
};

namespace sm {

/// State of the edit lock with its owner, for people. Creates and takes nothing.
base::LockInfo lockInfo(const TvSmDatabase* db);
/// Why the last load, save, lock or commit of this database failed; success when it did not.
const base::Status& lastStatus(const TvSmDatabase* db);
/// Whether the file's format is newer than we write: everything can be read, nothing can be
/// changed.
bool isReadOnlyVersion(const TvSmDatabase* db);
/// Content hash of what was last read from or written to the file; nothing before the first time.
std::optional<base::ContentHash> committedHash(const TvSmDatabase* db);
/// All objects that stand in the set, depth first in file order, the sheet set first. @note O(n).
void forEachObject(const TvSmDatabase* db, const std::function<void(TvSmPersist&)>& visit);

} // namespace sm
