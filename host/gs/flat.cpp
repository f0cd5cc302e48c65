#include "gs/flat.h"

namespace gs {

void appendMapped(Path& to, const Path& from, const FlatMap& map)
{
    const std::size_t first = to.points().size();
    to.append(from);
    for (std::size_t i = first; i < to.points().size(); ++i)
        to.points()[i] = map * to.points()[i];
}

Box boxOf(const Path& path)
{
    Box box;
    for (const TvGePoint2d& point : path.points())
        if (std::isfinite(point.x) && std::isfinite(point.y))
            box.add(point);
    return box;
}

void addRectangle(Path& to, const Box& box)
{
    to.moveTo({box.lowX, box.lowY});
    to.lineTo({box.highX, box.lowY});
    to.lineTo({box.highX, box.highY});
    to.lineTo({box.lowX, box.highY});
    to.close();
}

} // namespace gs
