#pragma once

#include <vector>

#include <sm/tv_sm_sheet.h>
#include <sm/tv_sm_sheet_set.h>

/// What is published: a sheet is, if neither it nor any subset on the way up to the sheet set is
/// excluded. The sheet set's own flag is never asked.

/// Whether neither @p subset nor a subset above it is excluded. False for null, for the sheet set
/// itself, and for a subset that stands in no sheet set.
bool IsSubsetPublishable(const TvSmSubset* subset);

/// Whether there is something to publish at @p component: for the sheet set and a subset, at least
/// one sheet below it that can be published; for a sheet, itself. False for null, and for what is
/// neither.
bool IsComponentPublishable(const TvSmComponent* component);

/// Appends to @p out the sheets below @p subset that can be published, in tree order.
///
/// @param skipOwnTest  does not ask whether @p subset itself can be published; below it each subset
/// is asked.
/// @note O(sheets below): the way up is asked once, at the top.
void CollectPublishableSheets(const TvSmSubset* subset, std::vector<TvSmSheet*>& out,
                              bool skipOwnTest);

/// The sheets to publish for a list of selected components, in the order of the list. A sheet set
/// in it stops the walk, and its sheets are the whole result. A sheet stands twice when it is
/// selected along with its subset.
/// @return false on an empty list.
bool CollectSelectedPublishableSheets(const std::vector<TvSmComponent*>& selection,
                                      std::vector<TvSmSheet*>& out);

/// Whether any sheet stands below @p subset, at any depth. False for null.
bool SubsetHasSheets(const TvSmSubset* subset);
