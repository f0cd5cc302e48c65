#pragma once

#include <base/tv_string.h>

namespace operations {

/// What the user is told where a rename does not work: a text and its title, by number.
struct RenameMessage {
    int text = 0;
    int caption = 0;
};
constexpr RenameMessage kDrawingGoneMessage{482, 553};
constexpr RenameMessage kFileExistsMessage{617, 501};
constexpr RenameMessage kModelNameMessage{616, 615};
constexpr RenameMessage kUnreadableMessage{409, 593};
constexpr RenameMessage kLayoutGoneMessage{614, 613};

/// Shows it with a warning sign.
void warn(const RenameMessage& message);

/// Whether a drawing's file is there; a folder that does not answer is asked again for a while. An
/// empty path is not there.
bool isDrawingThere(const TvString& path);

} // namespace operations
