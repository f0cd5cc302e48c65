#pragma once

class TvDbDatabase;

namespace ed {

/// What came of going back or forward.
struct UndoOutcome {
    int steps = 0; ///< how many were undone or done again
    bool isStoppedByMark = false;
    bool isBlocked = false; ///< an object is open for writing: nothing more can be undone now
};

// The history of a drawing as commands use it. Each command is one step; what is kept out of the
// history is no part of any. Reactors are told of variables that are others afterwards; the views
// are read anew.

/// Goes back @p count steps, but not beyond the last mark: it stops there, and forgets the mark.
UndoOutcome undoSteps(TvDbDatabase& database, int count);
/// Goes forward again over what was undone.
UndoOutcome redoSteps(TvDbDatabase& database, int count);
/// Goes back to the last mark, which is forgotten; without one to the beginning.
UndoOutcome undoToMark(TvDbDatabase& database);
bool hasUndoMark(TvDbDatabase& database);
void setUndoMark(TvDbDatabase& database);
/// What is done up to endUndoGroup() is undone at once later. Groups do not nest: a group that is
/// open is ended first.
void beginUndoGroup(TvDbDatabase& database);
/// False when none is open.
bool endUndoGroup(TvDbDatabase& database);

} // namespace ed
