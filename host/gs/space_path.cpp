#include "space_path.h"

#include <array>
#include <cmath>
#include <numbers>

#include <ge/arcs.h>

namespace gs {

namespace {

constexpr double kQuarter = std::numbers::pi / 2;
constexpr int kMostPieces = 5;

struct Turn {
    explicit Turn(double angle) : cosine(std::cos(angle)), sine(std::sin(angle)) {}
    double cosine, sine;
};

/// Those of a circle from its start on: most bows are one.
const std::array<Turn, kMostPieces + 1>& quarters()
{
    static const std::array<Turn, kMostPieces + 1> all{Turn(0),
                                                       Turn(kQuarter),
                                                       Turn(2 * kQuarter),
                                                       Turn(3 * kQuarter),
                                                       Turn(4 * kQuarter),
                                                       Turn(5 * kQuarter)};
    return all;
}

} // namespace

void SpacePath::polygon(const std::vector<TvGePoint3d>& corners, bool isClosed)
{
    for (std::size_t i = 0; i < corners.size(); ++i)
        i == 0 ? moveTo(corners[i]) : lineTo(corners[i]);
    if (isClosed && !corners.empty())
        close();
}

void SpacePath::bowTo(const TvGePoint3d& center, const TvGeVector3d& u, const TvGeVector3d& v,
                      double start, double end)
{
    const double sweep = end - start;
    if (!std::isfinite(sweep))
        return;
    // One curve for at most a quarter: within 3/10000 of the radius of the true bow.
    const int pieces =
        std::clamp(static_cast<int>(std::ceil(std::abs(sweep) / kQuarter - 1e-9)), 1, kMostPieces);
    static const double kHandleOfQuarter = 4.0 / 3 * std::tan(kQuarter / 4);
    const double step = sweep / pieces;
    const double handle = step == kQuarter ? kHandleOfQuarter : 4.0 / 3 * std::tan(step / 4);
    const bool isCircle = step == kQuarter && start == 0;
    const Turn first = isCircle ? quarters()[0] : Turn(start);
    double cosine = first.cosine, sine = first.sine;
    for (int i = 1; i <= pieces; ++i) {
        const Turn next =
            isCircle ? quarters()[static_cast<std::size_t>(i)] : Turn(start + i * step);
        const double nextCosine = next.cosine, nextSine = next.sine;
        curveTo(center + u * (cosine - handle * sine) + v * (sine + handle * cosine),
                center + u * (nextCosine + handle * nextSine) +
                    v * (nextSine - handle * nextCosine),
                center + u * nextCosine + v * nextSine);
        cosine = nextCosine, sine = nextSine;
    }
}

void SpacePath::bow(const TvGePoint3d& center, const TvGeVector3d& u, const TvGeVector3d& v,
                    double start, double end)
{
    moveTo(center + u * std::cos(start) + v * std::sin(start));
    bowTo(center, u, v, start, end);
    if (std::abs(std::abs(end - start) - 2 * std::numbers::pi) < 1e-9)
        close();
}

void SpacePath::bulgeTo(const TvGePoint2d& from, const TvGePoint2d& to, double bulge,
                        double elevation)
{
    const auto arc = bulge == 0 ? std::nullopt : ge::bulgeArc(from, to, bulge);
    if (!arc) {
        lineTo({to.x, to.y, elevation});
        return;
    }
    double start = arc->startAngle, end = arc->endAngle;
    while (end <= start)
        end += 2 * std::numbers::pi;
    if (bulge < 0)
        std::swap(start, end); // run from its other end
    bowTo({arc->center.x, arc->center.y, elevation}, {arc->radius, 0, 0}, {0, arc->radius, 0},
          start, end);
}

void SpacePath::append(const Path& flat, double elevation)
{
    m_verbs.insert(m_verbs.end(), flat.verbs().begin(), flat.verbs().end());
    for (const TvGePoint2d& point : flat.points())
        m_points.push_back({point.x, point.y, elevation});
}

void SpacePath::append(const SpacePath& other)
{
    m_verbs.insert(m_verbs.end(), other.m_verbs.begin(), other.m_verbs.end());
    m_points.insert(m_points.end(), other.m_points.begin(), other.m_points.end());
}

void SpacePath::transform(const TvGeMatrix3d& map)
{
    for (TvGePoint3d& point : m_points)
        point = map * point;
}

Path SpacePath::seenFromAbove() const
{
    Path flat;
    std::size_t at = 0;
    const auto next = [&] {
        const TvGePoint3d& point = m_points[at++];
        return TvGePoint2d(point.x, point.y);
    };
    for (const Verb verb : m_verbs)
        switch (verb) {
        case Verb::Move: flat.moveTo(next()); break;
        case Verb::Line: flat.lineTo(next()); break;
        case Verb::Curve: {
            const TvGePoint2d a = next(), b = next();
            flat.curveTo(a, b, next());
            break;
        }
        case Verb::Close: flat.close(); break;
        }
    return flat;
}

} // namespace gs
