#pragma once

class TvSmDatabase;

namespace operations {

/// Looks after a rename of many drawings that was broken off: asks the user whether it shall be
/// taken back, or finished where the set has the new names already, and does that.
///
/// Nothing happens while somebody holds the set's lock (he may be in the middle of it) and while
/// another question of this kind stands. Who was asked about a rename once is not asked about it
/// again in this session. Without windows a line at the command line is all.
/// @note looks at the disk, and takes the set's lock for a moment; not while the question stands.
void lookAfterRename(TvSmDatabase& database);

} // namespace operations
