#pragma once

#include <db/tv_db_database.h>

namespace db {

/// The viewports of a block that are not erased, in its order.
std::vector<TvDbObjectId> viewportsOf(TvDbObjectId block);

/// Whether the object is a viewport; does not open it.
bool isViewport(TvDbObjectId id);

/// To be called when @p viewport has been put into @p block: the block's layout lists it.
void listNewViewport(TvDbObjectId block, TvDbObjectId viewport);

/// Makes the list of the layout what its block holds.
void listViewports(TvDbObjectId layout);

/// AC1015 has a table with a record for each viewport of the paper space that is shown. Makes it
/// what that holds; nothing to do in other versions.
void matchViewportTable(TvDbDatabase& database);

} // namespace db
