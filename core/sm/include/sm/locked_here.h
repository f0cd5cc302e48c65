#pragma once

class TvSmDatabase;

namespace sm {

/// Whether this database object holds its lock now. Asks the disk nothing.
bool isLockedHere(const TvSmDatabase* db);

} // namespace sm
