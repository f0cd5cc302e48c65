#pragma once

#include <vector>

#include <ge/tv_ge_matrix3d.h>
#include <gs/path.h>

namespace gs {

/// Lines and curves in space, as Path is in the plane. Kept and cleared, it takes no memory anew.
class SpacePath
{
public:
    using Verb = Path::Verb;

    void clear() { m_verbs.clear(), m_points.clear(); }
    bool isEmpty() const { return m_verbs.empty(); }
    void moveTo(const TvGePoint3d& to) { m_verbs.push_back(Verb::Move), m_points.push_back(to); }
    void lineTo(const TvGePoint3d& to) { m_verbs.push_back(Verb::Line), m_points.push_back(to); }
    void curveTo(const TvGePoint3d& handle1, const TvGePoint3d& handle2, const TvGePoint3d& to)
    {
        m_verbs.push_back(Verb::Curve);
        m_points.insert(m_points.end(), {handle1, handle2, to});
    }
    void close() { m_verbs.push_back(Verb::Close); }
    void polygon(const std::vector<TvGePoint3d>& corners, bool isClosed = true);

    /// The curve center + u cos(t) + v sin(t), t from @p start to @p end (radians, in either
    /// direction, at most a full turn), continuing the subpath from its start on.
    void bowTo(const TvGePoint3d& center, const TvGeVector3d& u, const TvGeVector3d& v,
               double start, double end);
    /// The same as a subpath of its own; closed when it is a full turn.
    void bow(const TvGePoint3d& center, const TvGeVector3d& u, const TvGeVector3d& v, double start,
             double end);
    /// Continues a flat chain at z = @p elevation from @p from (where the path is) to @p to.
    void bulgeTo(const TvGePoint2d& from, const TvGePoint2d& to, double bulge, double elevation);
    /// A flat path, its z being @p elevation.
    void append(const Path& flat, double elevation);
    void append(const SpacePath& other);
    void transform(const TvGeMatrix3d& map);
    /// Its x and y.
    Path seenFromAbove() const;

    const std::vector<Verb>& verbs() const { return m_verbs; }
    const std::vector<TvGePoint3d>& points() const { return m_points; }

private:
    std::vector<Verb> m_verbs;
    std::vector<TvGePoint3d> m_points;
};

} // namespace gs
