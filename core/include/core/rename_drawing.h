#pragma once

#include <base/tv_string.h>

/// Moves a drawing, and lets all sheets of the current set that stand in it follow.
///
/// All or nothing: when the drawing cannot be moved, or the set cannot take the change, both are as
/// before, and nobody is told. An existing file is never overwritten. A drawing that somebody has
/// open, here or elsewhere, stays where it is.
/// @param oldPath  which sheets stand in it is asked before it moves.
/// @param newPath  absolute; kept as given.
/// @pre  a set is current. It is changed under the lock that the caller holds; without one it is
///       locked for this change, and the change is kept.
/// @return whether it was moved.
bool RenameDrawingOfSheets(const TvString& oldPath, const TvString& newPath);

namespace core {

/// Moves a drawing's file alone, whatever sets say of it. Nothing when either path is empty, when
/// the new one is taken, and when somebody has the drawing open.
/// @return whether it was moved.
bool moveDrawing(const TvString& oldPath, const TvString& newPath);

} // namespace core
