#pragma once

#include <vector>

#include <base/tv_db_handle.h>
#include <sm/tv_sm_sheet.h>
#include <sm/tv_sm_sheet_set_mgr.h>

class TvDbDatabase;

/// Helpers on sheet sets that the host and all rooms share.
class KvDbUtil
{
public:
    /// The manager of this process.
    static TvSmSheetSetMgr* tarvGetSheetSetMgr();
    /// The active document's database, the path of its drawing, and the handle of its current
    /// layout.
    ///
    /// @param drawingName  valid until the next call.
    /// @return false, with the arguments left alone, in model space, without a document, and
    /// without a host.
    static bool GetCurrentLayout(TvDbDatabase*& db, const TvChar*& drawingName,
                                 TvDbHandle& layoutHandle);
    /// The first sheet below @p subset, at any depth, whose layout reference leads to that drawing
    /// and has that handle; null if none.
    ///
    /// Handles and file names are compared first: the disk is asked only about sheets that have
    /// both.
    static TvSmSheet* FindSheetFromSubset(const TvSmSubset* subset, const TvChar* drawingName,
                                          TvDbHandle layoutHandle);
    /// Appends every sheet below the subset, depth first, in tree order.
    static void GetAllSheetsInTheSubSet(const TvSmSubset* subset, std::vector<TvSmSheet*>& out);
    /// How many sheets lie below the subset; 0 for null.
    static int GetSheetNumsInSubSet(const TvSmSubset* subset);
    /// Appends all sheets of the set that stand in that drawing file, compared by its resolved and
    /// by its stored path.
    /// @return true if any.
    static bool GetAllSheetOfOneDwgInSheetSet(const TvSmSheetSet* sheetSet,
                                              const TvChar* drawingName,
                                              std::vector<TvSmSheet*>& out);
    /// Whether the active document's current layout is a sheet of @p db. False for null.
    static bool IsCurrentSheetInSheetSet(const TvSmDatabase* db);
    /// The path of the sheet set that a drawing names, as it stands there.
    /// @return false, with @p out alone, when it names none; for null.
    /// @note The room that knows drawings supplies it.
    static bool GetShSetFileName(TvDbDatabase* db, TvString& out);
};
