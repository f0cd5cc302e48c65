#include <cmath>
#include <cstdint>
#include <cstdlib>

#include <solid_edges.h>

// A body as modelers write it, in text or in binary.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    gs::SpacePath path;
    gs::addSolidEdges(path, {data, size});
    for (const TvGePoint3d& point : path.points())
        if (!std::isfinite(point.x) || !std::isfinite(point.y) || !std::isfinite(point.z))
            std::abort();
    // What is read is limited by the data, so what comes of it is too: at most 26 points for a
    // place on a free curve.
    constexpr std::size_t kMostForAByte = 64, kAlways = 1 << 16;
    if (path.points().size() > kMostForAByte * size + kAlways)
        std::abort();
    return 0;
}
