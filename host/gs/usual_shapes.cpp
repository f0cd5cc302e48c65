// What stands in the lines of usual linetypes: rails' ties, boxes and rings of fences, the zigzag,
// the loops of padding. All are 2 units long, along x.

#include <array>

#include <base/path_rules.h>
#include <gs/flat.h>

#include "shape_files.h"
#include "space_path.h"

namespace gs {

namespace {

constexpr std::int64_t kFirst = 130; // they follow one another

Path tie()
{
    Path path;
    path.moveTo({0, -1});
    path.lineTo({0, 1});
    return path;
}

Path zigzag()
{
    Path path;
    path.moveTo({0, 0});
    path.lineTo({1, 1});
    path.lineTo({2, 0});
    return path;
}

Path boxShape()
{
    Path path;
    addRectangle(path, {0, -1, 2, 1});
    return path;
}

Path ring()
{
    constexpr double kWhole = 6.283185307179586;
    SpacePath path;
    path.bow({1, 0, 0}, {1, 0, 0}, {0, 1, 0}, 0, kWhole);
    return path.seenFromAbove();
}

Path loop()
{
    Path path;
    path.moveTo({0, 0});
    path.curveTo({1, 0}, {0, 2}, {1, 2});
    path.curveTo({2, 2}, {1, 0}, {2, 0});
    return path;
}

} // namespace

const Path* usualShape(const TvString& name, std::int64_t number)
{
    static const std::array<Path, 5> kShapes{tie(), zigzag(), boxShape(), ring(), loop()};
    const TvString file = base::PathRules::native().fileNameOf(name);
    const std::int64_t index = number - kFirst;
    if (file.compareNoCase(TvString(u"ltypeshp.shx")) != 0 || index < 0 ||
        index >= static_cast<std::int64_t>(kShapes.size()))
        return nullptr;
    return &kShapes[static_cast<std::size_t>(index)];
}

} // namespace gs
