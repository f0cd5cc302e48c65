#pragma once

#include <span>
#include <vector>

#include <operations/import_layouts.h>

class TvSmSheet;
class TvSmSubset;

namespace operations {

/// The drawings of a folder and of the folders in it, each list as a person would sort it.
struct DrawingFolder {
    TvString name;
    std::vector<TvString> drawings; ///< paths
    std::vector<DrawingFolder> folders;
};

/// Looks for drawings (.dwg, in any case) in the folder and below it. Hidden entries and links to
/// folders are passed over; a folder that cannot be read is empty.
DrawingFolder findDrawings(const TvString& folder);

/// Their paths in the order in which sheets are made of them: those of a folder before those in its
/// folders.
std::vector<TvString> drawingsOf(const DrawingFolder& folder);

struct FolderImport {
    bool withPrefix = true;   ///< sheets are named after their drawing, too
    bool withSubsets = false; ///< each folder below the first one with sheets becomes a subset
};

struct FolderSheets {
    std::vector<TvSmSheet*> sheets; ///< in the order in which they were made, which is their number
    int subsets = 0;
};

/// Makes a sheet of each layout that may become one, at the end of @p target, numbered from 1.
/// Subsets that are nested too deep for a set are left out, and their sheets go into the one above.
/// @param rows  of drawingsOf(@p folder), in that order.
/// @pre @p target takes changes.
FolderSheets makeSheetsOfFolder(TvSmSubset& target, const DrawingFolder& folder,
                                std::span<const LayoutRow> rows, const FolderImport& how);

} // namespace operations
