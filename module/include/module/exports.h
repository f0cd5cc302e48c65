#pragma once

#include <vector>

#include <db/tv_db_object_id.h>
#include <ed/tarv_palette_prop_manager.h>
#include <rx/tv_rx_module.h>

class TvSmDatabase;
class TvSmPublishOptions;

// What host and other modules call by name.

/// Messages of the module's life; 0 for a number that is none.
TVRX_EXPORT int tvrxEntryPoint(int message, void* appId);
TVRX_EXPORT int tvrxGetApiVersion();

/// Closes the current sheet set and hides the palette set.
TVRX_EXPORT void CloseSheetSet();
/// Whether a sheet set is open.
TVRX_EXPORT bool IsInSheetSet();
/// Layouts of a drawing become sheets where the panel's selection is; nothing without the panel.
/// @param name  the drawing's path; null is nothing, as are null @p layouts.
TVRX_EXPORT void ImportLayoutAsSheet(const TvString* name, const std::vector<TvString>* layouts);
/// Edits a sheet list table. No table is one yet: nothing is shown.
TVRX_EXPORT void ShowEditTocDialog(void* parent, const TvDbObjectId* tableId);
/// Shows the publish options; nothing in a process without windows, and for null. Locks nothing.
/// @param parent  the window in front of which it stands; null: the program's.
TVRX_EXPORT void KvCmd_DWFPublishOption(void* parent, TvSmDatabase* database,
                                        TvSmPublishOptions* options);
/// Adds the names of the view categories of the open set that the current drawing names.
/// @param out  null is nothing.
TVRX_EXPORT void KvCmd_GetViewCategoryFromCurSheetSet(std::vector<TvString>* out);
/// Null before the start and after the end.
TVRX_EXPORT ITarvPalettePropManager* GetCuixManager();
