#pragma once

#include <optional>

#include <base/tv_string.h>
#include <ge/tv_ge_point.h>

class TvDbEntity;

namespace ed {

/// What a user does while something is dragged.
struct JigEvent {
    enum Kind {
        Moved,   ///< the pointer is at the point
        Picked,  ///< the point was chosen
        Typed,   ///< the text was typed; empty: Enter alone
        Escaped, ///< he gave up
    } kind = Escaped;
    TvGePoint3d point; ///< in the coordinates of the world
    TvString text;
};

/// What is being asked for, so that a window can show it.
struct JigQuestion {
    enum Kind { Point, Distance, Angle, Text } kind = Point;
    TvString prompt;
    std::optional<TvGePoint3d> base; ///< a line may be drawn from here to the pointer; world
};

/// The window in which something is dragged. Supplied by it.
class JigInput
{
public:
    virtual ~JigInput() = default;
    /// Waits for what the user does next. @return false when there will be nothing more.
    virtual bool next(const JigQuestion& question, JigEvent& out) = 0;
    /// Shows how the entity looks now, until it is shown anew; null takes it away.
    virtual void show(const TvDbEntity* entity) = 0;
};

/// Null without a window: then what is typed counts alone.
JigInput* jigInput();
/// Not owned. Null takes it away.
void setJigInput(JigInput* input);

} // namespace ed
