#pragma once

#include <base/tv_string.h>

class TvDbDatabase;
class TvDbViewTableRecord;
class TvSmSheet;
class TvSmSheetSet;
class TvSmSheetView;

/// Keeps the views of sheets equal to the named views that stand on the paper of their layouts.

/// Takes new views of a drawing into its sheets, puts each into the category that the drawing
/// names, and drops those that the drawing has no more.
///
/// It happens to the open sheet set (the last, of several) of which the current layout is a sheet.
/// Where set and drawing agree already nothing is locked and nothing is written; a set that cannot
/// be locked stays as it is.
/// @param database  the drawing of the current document; null, and any other, answers false.
/// @return false when there is no such set, and when it could not be changed.
/// @post the set was committed: palettes have reloaded.
/// @note O(sheets of the set + views of the drawing).
bool SyncSheetViewsWithDrawing(TvDbDatabase* database);

/// A new view at the end of the sheet's views, with the handle and name of a named view in the
/// current document, by which it is titled. Its number is empty.
/// @return null for null, and when the set takes no changes.
TvSmSheetView* CreateSheetViewFromRecord(TvSmSheet* sheet, const TvDbViewTableRecord* record);

/// Puts a view into the category of that name, in any case; one that does not exist is made, and
/// gets all callout blocks of the set. The empty name is a name like any other.
/// @return false for null, and when the set takes no changes.
bool AssignViewCategory(TvSmSheetSet* sheetSet, TvSmSheetView* view, const TvString& name);
/// The same.
inline bool AssignViewCategoryByName(TvSmSheetSet* sheetSet, TvSmSheetView* view,
                                     const TvString& name)
{
    return AssignViewCategory(sheetSet, view, name);
}

/// Drops the views whose handle leads to no named view of the drawing any more, from the sheets of
/// the layouts that the drawing has. A view that refers to nothing stays.
/// @pre the set takes changes.
void RemoveDeadSheetViews(TvDbDatabase* database, TvSmSheetSet* sheetSet);
/// The same.
inline void RemoveStaleSheetViews(TvDbDatabase* database, TvSmSheetSet* sheetSet)
{
    RemoveDeadSheetViews(database, sheetSet);
}
