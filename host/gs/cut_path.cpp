#include "gs/cut_path.h"

#include <cmath>

namespace gs {

namespace {

constexpr int kDeepest = 24; // halvings of a curve

struct Curve {
    TvGePoint2d from, handle1, handle2, to;

    Box box() const
    {
        Box all;
        for (const TvGePoint2d& point : {from, handle1, handle2, to})
            all.add(point);
        return all;
    }
    /// How far the curve leaves its chord, at most.
    double bulge() const
    {
        const auto away = [this](const TvGePoint2d& handle, double part) {
            return (handle - (from + (to - from) * part)).length();
        };
        return std::max(away(handle1, 1.0 / 3), away(handle2, 2.0 / 3));
    }
    std::pair<Curve, Curve> halves() const
    {
        const auto middle = [](const TvGePoint2d& a, const TvGePoint2d& b) {
            return a + (b - a) * 0.5;
        };
        const TvGePoint2d a = middle(from, handle1), b = middle(handle1, handle2),
                          c = middle(handle2, to);
        const TvGePoint2d d = middle(a, b), e = middle(b, c), f = middle(d, e);
        return {{from, a, d, f}, {f, e, c, to}};
    }
};

/// Calls @p line with the end of each chord.
template <class Line>
void flatten(const Curve& curve, const Box& window, double tolerance, int depth, const Line& line)
{
    if (depth >= kDeepest || curve.bulge() <= tolerance || !curve.box().touches(window)) {
        line(curve.to);
        return;
    }
    const auto [first, second] = curve.halves();
    flatten(first, window, tolerance, depth + 1, line);
    flatten(second, window, tolerance, depth + 1, line);
}

/// Calls @p move and @p line along a path, its curves as chords, its closings as lines.
template <class Move, class Line>
void walk(PathView path, const Box& window, double tolerance, const Move& move, const Line& line)
{
    TvGePoint2d start, at;
    std::size_t point = 0;
    for (const Path::Verb verb : path.verbs)
        switch (verb) {
        case Path::Verb::Move: move(start = at = path.points[point++]); break;
        case Path::Verb::Line: line(at = path.points[point++]); break;
        case Path::Verb::Curve: {
            const Curve curve{at, path.points[point], path.points[point + 1],
                              path.points[point + 2]};
            point += 3;
            flatten(curve, window, tolerance, 0, line);
            at = curve.to;
            break;
        }
        case Path::Verb::Close: line(at = start); break;
        }
}

/// The part of a line inside of a window, as parts of its length from 0 to 1.
bool inside(const TvGePoint2d& a, const TvGeVector2d& way, const Box& window, double& low,
            double& high)
{
    const auto narrow = [&](double start, double along, double least, double most) {
        if (along == 0)
            return start >= least && start <= most;
        double enter = (least - start) / along, leave = (most - start) / along;
        if (enter > leave)
            std::swap(enter, leave);
        low = std::max(low, enter), high = std::min(high, leave);
        return low <= high;
    };
    return narrow(a.x, way.x, window.lowX, window.highX) &&
           narrow(a.y, way.y, window.lowY, window.highY);
}

/// What remains of a polygon on one side of a line along an axis.
template <class IsInside, class Cross>
void cutSide(std::vector<TvGePoint2d>& polygon, std::vector<TvGePoint2d>& scratch,
             const IsInside& isInside, const Cross& cross)
{
    scratch.clear();
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const TvGePoint2d &a = polygon[i], &b = polygon[(i + 1) % polygon.size()];
        if (isInside(a))
            scratch.push_back(a);
        if (isInside(a) != isInside(b))
            scratch.push_back(cross(a, b));
    }
    polygon.swap(scratch);
}

void cutPolygon(std::vector<TvGePoint2d>& polygon, const Box& window)
{
    std::vector<TvGePoint2d> scratch;
    const auto atX = [](double x) {
        return [x](const TvGePoint2d& a, const TvGePoint2d& b) {
            return TvGePoint2d(x, a.y + (b.y - a.y) * ((x - a.x) / (b.x - a.x)));
        };
    };
    const auto atY = [](double y) {
        return [y](const TvGePoint2d& a, const TvGePoint2d& b) {
            return TvGePoint2d(a.x + (b.x - a.x) * ((y - a.y) / (b.y - a.y)), y);
        };
    };
    cutSide(
        polygon, scratch, [&](const TvGePoint2d& p) { return p.x >= window.lowX; },
        atX(window.lowX));
    cutSide(
        polygon, scratch, [&](const TvGePoint2d& p) { return p.x <= window.highX; },
        atX(window.highX));
    cutSide(
        polygon, scratch, [&](const TvGePoint2d& p) { return p.y >= window.lowY; },
        atY(window.lowY));
    cutSide(
        polygon, scratch, [&](const TvGePoint2d& p) { return p.y <= window.highY; },
        atY(window.highY));
}

} // namespace

Path cutLines(PathView path, const Box& window, double tolerance)
{
    Path cut;
    TvGePoint2d at;
    bool isJoined = false; // the cut path ends where the next line begins
    const auto line = [&](const TvGePoint2d& to) {
        double low = 0, high = 1;
        const TvGeVector2d way = to - at;
        // Of lines that come from very far, rounding leaves little.
        const auto within = [&window](const TvGePoint2d& point) {
            return TvGePoint2d(std::clamp(point.x, window.lowX, window.highX),
                               std::clamp(point.y, window.lowY, window.highY));
        };
        if (inside(at, way, window, low, high)) {
            if (!isJoined || low > 0)
                cut.moveTo(within(at + way * low));
            cut.lineTo(high < 1 ? within(at + way * high) : to);
            isJoined = high >= 1;
        } else {
            isJoined = false;
        }
        at = to;
    };
    walk(
        path, window, tolerance, [&](const TvGePoint2d& to) { at = to, isJoined = false; }, line);
    return cut;
}

Path cutArea(PathView path, const Box& window, double tolerance)
{
    Path cut;
    std::vector<TvGePoint2d> polygon;
    const auto finish = [&] {
        cutPolygon(polygon, window);
        for (std::size_t i = 0; i < polygon.size(); ++i)
            i == 0 ? cut.moveTo(polygon[i]) : cut.lineTo(polygon[i]);
        if (!polygon.empty())
            cut.close();
        polygon.clear();
    };
    walk(
        path, window, tolerance,
        [&](const TvGePoint2d& to) {
            finish();
            polygon.push_back(to);
        },
        [&](const TvGePoint2d& to) { polygon.push_back(to); });
    finish();
    return cut;
}

std::optional<std::pair<TvGePoint2d, TvGePoint2d>>
cutEndless(const TvGePoint2d& a, const TvGePoint2d& b, bool isRay, const Box& window)
{
    constexpr double kEnd = std::numeric_limits<double>::max();
    double low = isRay ? 0 : -kEnd, high = kEnd;
    const TvGeVector2d way = b - a;
    if (way.length() == 0 || !inside(a, way, window, low, high))
        return std::nullopt;
    return std::pair(a + way * low, a + way * high);
}

} // namespace gs
