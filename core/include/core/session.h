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
/// model views. Nothing when it is that already.
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

/// Lets each palette that is there show the current content.
void RefreshAllPalettes();
/// Lets each palette that is there show whether the set can be changed.
void RefreshLockState();
