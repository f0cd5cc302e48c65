#pragma once

#include <string>
#include <vector>

/// One row of the table that a benchmark program prints at the end: a benchmark's time over a
/// baseline's, both of the same run, and the most that it may be.
struct RatioRow {
    std::string label;     ///< Row of the budget table and what is measured.
    std::string benchmark; ///< Name as the benchmark library prints it.
    std::string baseline;
    double scale = 1; ///< The baseline's time is multiplied by this (per-item comparisons).
    double limit = 0; ///< What the first version must reach; 0 where a row only explains others.
    double goal = 0;  ///< Where it is going.
};

/// Each program has one: its rows.
const std::vector<RatioRow>& ratioRows();
