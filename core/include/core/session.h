#pragma once

#include <vector>

#include <base/tv_string.h>

class TvSmDatabase;

/// Which sheet sets the user has open, and which one the panel shows.

/// The database that the panel shows; null when none.
TvSmDatabase* GetCurrentDatabase();
/// Sets it without telling anybody; ActivateSheetSet() is how a user's choice goes.
void SetCurrentDatabase(TvSmDatabase* database);
/// All databases that were opened in the panel, in the order of their first activation; the current
/// one is among them.
const std::vector<TvSmDatabase*>& GetSessionDatabases();

/// Makes @p database the one that the panel shows, and tells the palettes: sheet list, sheet views,
/// model views. Nothing when it is that already, and for null.
void ActivateSheetSet(TvSmDatabase* database);
/// Closes the current set. The one that was activated last of the others becomes current, and the
/// palettes forget how they showed the closed one.
///
/// With nothing open the palettes are told all the same.
/// @return whether the manager closed it.
bool CloseCurrentSheetSet();

/// Copies the .dst beside itself, with the extension ".ds$", over a former copy. For the user to
/// find, should he need it; a failure is nobody's concern.
void MakeBackupCopy(const TvString& path);

/// The paths of the sheet sets that were opened last, the latest first: at most kMostRecent.
/// @note reads as far as there is no gap.
std::vector<TvString> recentSheetSets();
/// Puts @p path at the front of that list, or takes it out. No path is in it twice, whatever the
/// case of its letters.
void UpdateRecentList(const TvString& path, bool add);
constexpr int kMostRecent = 10;

/// Lets each palette show the current content, if it is there and the current set is what it shows:
/// it looks its objects up in the current database, and while that is borrowed
/// (core::BorrowedDatabase) they would be another set's.
void RefreshAllPalettes();
/// Lets each palette that is there show whether the set can be changed.
void RefreshLockState();

namespace core {

/// Makes another database the current one for a while, and tells nobody: the palettes stay as they
/// are. For a wizard that needs the rooms that work on the current set.
class BorrowedDatabase
{
public:
    explicit BorrowedDatabase(TvSmDatabase* database);
    /// Gives the former one back. What the palettes missed of it meanwhile, they show now.
    ~BorrowedDatabase();
    BorrowedDatabase(const BorrowedDatabase&) = delete;
    BorrowedDatabase& operator=(const BorrowedDatabase&) = delete;

private:
    friend void sessionDatabaseCloses(TvSmDatabase* database);
    friend void sessionDatabaseChanged(TvSmDatabase* database);
    TvSmDatabase* m_former;
    BorrowedDatabase* m_outer;
    bool m_hasMissed = false; // the former one's content changed meanwhile
    bool m_isFormerGone = false;
};

/// The content of a database was written or read anew: the palettes show it if it is the current
/// one.
void sessionDatabaseChanged(TvSmDatabase* database);
/// A database is being closed by whomever: it leaves the session, if it still is in it, so that
/// nobody meets a set that is gone.
void sessionDatabaseCloses(TvSmDatabase* database);

} // namespace core
