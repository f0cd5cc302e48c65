#pragma once

/// Looks at the file and the lock of every open sheet set, for changes from outside.
///
/// A file that is gone is written again from memory; a change of its time makes the set load it; a
/// set that only got locked or free changes what its palettes allow. Only the palettes of the
/// current set are told. Nothing is looked at while a set is busy, and nothing is loaded while it
/// is locked here: the change waits for the end of the lock. A set that was never saved has no
/// file yet, and is left alone.
///
/// What is loaded invalidates objects: hold no pointer into a set across this.
/// @note a few questions to the disk for each set; called ten times a second.
void PollWatchTable();
