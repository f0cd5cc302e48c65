#pragma once

#include <deque>
#include <optional>
#include <unordered_map>
#include <vector>

#include "ed/drawing_view.h"

class TvDbDatabase;

namespace ed {

/// What commands remember of a drawing as long as it is there.
struct DrawingState {
    /// The views that were shown before, by handle of what was looked at; the latest last.
    std::unordered_map<std::uint64_t, std::deque<View>> formerViews;
    /// Steps of the history at each mark.
    std::vector<int> undoMarks;
    /// Steps of the history where the group began that is still open.
    std::optional<int> groupBegin;
};

/// Made at the first question, gone with the drawing.
DrawingState& stateOf(TvDbDatabase& database);

} // namespace ed
