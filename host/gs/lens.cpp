#include "lens.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace gs {

namespace {

// Of a curve: as near to an arc as the curve itself. Of a path with very many each gets fewer.
constexpr std::ptrdiff_t kMostChords = 32, kFewestChords = 4, kChordsOfPath = 1'000'000;
constexpr double kNearest = 1e-3; // of the way to the target: nearer things fill the view

/// The chain of points that a subpath is, closed or not.
struct Chain {
    std::vector<TvGePoint3d> points;
    bool isClosed = false;
};

void addChords(Chain& to, const TvGePoint3d& a, const TvGePoint3d& b, const TvGePoint3d& c,
               std::ptrdiff_t chords)
{
    const TvGePoint3d from = to.points.back();
    for (std::ptrdiff_t i = 1; i <= chords; ++i) {
        const double t = double(i) / double(chords), s = 1 - t;
        const double w = s * s * s, wa = 3 * s * s * t, wb = 3 * s * t * t, wc = t * t * t;
        to.points.push_back({w * from.x + wa * a.x + wb * b.x + wc * c.x,
                             w * from.y + wa * a.y + wb * b.y + wc * c.y,
                             w * from.z + wa * a.z + wb * b.z + wc * c.z});
    }
}

std::vector<Chain> chainsOf(const SpacePath& path, const TvGeMatrix3d& map)
{
    std::vector<Chain> chains;
    const TvGePoint3d* point = path.points().data();
    const auto next = [&] { return map * *point++; };
    const std::ptrdiff_t curves =
        std::count(path.verbs().begin(), path.verbs().end(), SpacePath::Verb::Curve);
    const std::ptrdiff_t chords =
        std::clamp(kChordsOfPath / std::max<std::ptrdiff_t>(curves, 1), kFewestChords, kMostChords);
    for (const SpacePath::Verb verb : path.verbs()) {
        // Behind its end a closed subpath goes on from its beginning.
        if (verb != SpacePath::Verb::Move && !chains.empty() && chains.back().isClosed) {
            const TvGePoint3d start = chains.back().points.front();
            chains.push_back({{start}, false});
        }
        if (verb != SpacePath::Verb::Move && chains.empty())
            return chains;
        switch (verb) {
        case SpacePath::Verb::Move: chains.push_back({{next()}, false}); break;
        case SpacePath::Verb::Line: chains.back().points.push_back(next()); break;
        case SpacePath::Verb::Curve: {
            const TvGePoint3d a = next(), b = next();
            addChords(chains.back(), a, b, next(), chords);
            break;
        }
        case SpacePath::Verb::Close: chains.back().isClosed = true; break;
        }
    }
    return chains;
}

TvGePoint3d atHeight(const TvGePoint3d& a, const TvGePoint3d& b, double z)
{
    const double t = (z - a.z) / (b.z - a.z);
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t, z};
}

/// The part of a segment between two heights; false when nothing is left.
bool cut(TvGePoint3d& a, TvGePoint3d& b, double low, double high)
{
    const double least = std::min(a.z, b.z), most = std::max(a.z, b.z);
    if (!(least <= high) || !(most >= low)) // also what is no number
        return false;
    const TvGePoint3d from = a, to = b;
    const auto held = [&](TvGePoint3d& end) {
        if (end.z > high)
            end = atHeight(from, to, high);
        else if (end.z < low)
            end = atHeight(from, to, low);
    };
    held(a);
    held(b);
    return true;
}

/// A polygon without what lies above @p z, or (@p isFloor) below it.
std::vector<TvGePoint3d> cutPolygon(const std::vector<TvGePoint3d>& corners, double z, bool isFloor)
{
    std::vector<TvGePoint3d> kept;
    const auto isIn = [&](const TvGePoint3d& p) { return isFloor ? p.z >= z : p.z <= z; };
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const TvGePoint3d& from = corners[i];
        const TvGePoint3d& to = corners[i + 1 < corners.size() ? i + 1 : 0];
        if (isIn(from))
            kept.push_back(from);
        if (isIn(from) != isIn(to))
            kept.push_back(atHeight(from, to, z));
    }
    return kept;
}

bool isWithin(const SpacePath& path, const TvGeMatrix3d& map, double low, double high)
{
    return std::all_of(path.points().begin(), path.points().end(), [&](const TvGePoint3d& p) {
        const double z = (map * p).z;
        return z >= low && z <= high;
    });
}

Path asItLies(const SpacePath& path, const TvGeMatrix3d& map)
{
    SpacePath placed = path;
    placed.transform(map);
    return placed.seenFromAbove();
}

} // namespace

bool Lens::isPlain() const
{
    return !(distance > 0) && !std::isfinite(front) && !std::isfinite(back);
}

double Lens::enlargement(double z) const
{
    return distance > 0 ? distance / (distance - (z - target.z)) : 1;
}

TvGePoint2d Lens::seen(const TvGePoint3d& place) const
{
    if (!(place.z <= front) || !(place.z >= back))
        return {HUGE_VAL, HUGE_VAL};
    const double factor = enlargement(place.z);
    return {target.x + (place.x - target.x) * factor, target.y + (place.y - target.y) * factor};
}

void Lens::keepBeforeCamera()
{
    if (distance > 0)
        front = std::min(front, target.z + distance * (1 - kNearest));
}

Path Lens::seenLines(const SpacePath& path, const TvGeMatrix3d& map) const
{
    if (!(distance > 0) && isWithin(path, map, back, front))
        return asItLies(path, map);
    Path out;
    for (const Chain& chain : chainsOf(path, map)) {
        bool isDrawing = false;
        const std::size_t count = chain.points.size() + (chain.isClosed ? 1 : 0);
        for (std::size_t i = 1; i < count; ++i) {
            TvGePoint3d a = chain.points[i - 1], b = chain.points[i % chain.points.size()];
            const TvGePoint3d end = b;
            if (!cut(a, b, back, front)) {
                isDrawing = false;
                continue;
            }
            if (!isDrawing || !(a == chain.points[i - 1]))
                out.moveTo(seen(a));
            out.lineTo(seen(b));
            isDrawing = b == end;
        }
    }
    return out;
}

Path Lens::seenArea(const SpacePath& path, const TvGeMatrix3d& map) const
{
    if (!(distance > 0) && isWithin(path, map, back, front))
        return asItLies(path, map);
    Path out;
    for (const Chain& chain : chainsOf(path, map)) {
        const std::vector<TvGePoint3d> corners =
            cutPolygon(cutPolygon(chain.points, front, false), back, true);
        for (std::size_t i = 0; i < corners.size(); ++i)
            i == 0 ? out.moveTo(seen(corners[i])) : out.lineTo(seen(corners[i]));
        if (!corners.empty())
            out.close();
    }
    return out;
}

Path Lens::seenEndless(const SpacePath& path, const TvGeMatrix3d& map, bool isRay) const
{
    constexpr double kFar = 1e6; // times what the view is deep: about where it vanishes
    Path out;
    if (path.points().size() < 2)
        return out;
    const TvGePoint3d from = map * path.points()[0];
    const TvGeVector3d way = map * path.points()[1] - from;
    const double length = way.length();
    if (!(length > 0) || !std::isfinite(length))
        return out;
    const double depth =
        distance > 0 ? distance
                     : std::max({std::abs(from.x), std::abs(from.y), std::abs(from.z), 1.0});
    const TvGeVector3d reach = way * (kFar * depth / length);
    TvGePoint3d a = isRay ? from : from - reach, b = from + reach;
    if (cut(a, b, back, front)) {
        out.moveTo(seen(a));
        out.lineTo(seen(b));
    }
    return out;
}

double Camera::heightSeen(double aspect) const
{
    constexpr double kFilmMm = 42;
    const double height = kFilmMm * distance / (lensMm * std::sqrt(1 + aspect * aspect));
    return isPerspective && lensMm > 0 && distance > 0 && aspect > 0 && std::isfinite(height)
               ? height
               : 0;
}

Lens Camera::lens(const TvGePoint3d& target, const TvGeMatrix3d& toList, double scale) const
{
    Lens lens;
    lens.target = toList * target;
    if (isPerspective && distance > 0)
        lens.distance = distance * scale;
    if (hasFront)
        lens.front = lens.target.z + (isFrontAtEye ? distance : frontClip) * scale;
    if (hasBack)
        lens.back = lens.target.z + backClip * scale;
    lens.keepBeforeCamera();
    return lens;
}

} // namespace gs
