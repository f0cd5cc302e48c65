#pragma once

#include <core/rename_drawing.h>

/// Moves a sheet's drawing, and every sheet of the current set that stands in it follows: the same
/// as RenameDrawingOfSheets(), which see. Nothing when both paths are one.
inline bool RenameSheetDrawing(const TvString& oldPath, const TvString& newPath)
{
    return oldPath == newPath || RenameDrawingOfSheets(oldPath, newPath);
}
