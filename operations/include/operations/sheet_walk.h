#pragma once

class TvSmSheet;

/// The sheet next to @p sheet in the order of its subset, in front of it or behind it.
///
/// Only the immediate neighbour counts: null when that is a subset, when there is none, and when
/// the sheet stands in no subset. Null is harmless. @note O(siblings).
TvSmSheet* GetPreviousSheet(const TvSmSheet* sheet);
TvSmSheet* GetNextSheet(const TvSmSheet* sheet);
