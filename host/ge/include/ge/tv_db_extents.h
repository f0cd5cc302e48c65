#pragma once

#include <ge/tv_ge_matrix3d.h>

/// The box that holds a set of points, along the axes. Empty until a point was added.
class TvDbExtents
{
public:
    TvDbExtents() = default;
    TvDbExtents(const TvGePoint3d& a, const TvGePoint3d& b)
    {
        addPoint(a);
        addPoint(b);
    }

    bool isEmpty() const { return m_isEmpty; }
    /// (0,0,0) while empty.
    const TvGePoint3d& minPoint() const { return m_min; }
    const TvGePoint3d& maxPoint() const { return m_max; }
    TvGePoint3d center() const { return m_min + (m_max - m_min) * 0.5; }
    TvGeVector3d size() const { return m_max - m_min; }

    /// A point with a number that is not finite is left out.
    void addPoint(const TvGePoint3d& point);
    void addExtents(const TvDbExtents& other);
    /// The box of this box's corners after @p map: it holds whatever was in this one, but may be
    /// larger than what that needs.
    TvDbExtents transformed(const TvGeMatrix3d& map) const;
    bool contains(const TvGePoint3d& point, const TvGeTol& tol = {}) const;
    bool intersects(const TvDbExtents& other) const;

    friend bool operator==(const TvDbExtents&, const TvDbExtents&) = default;

private:
    bool m_isEmpty = true;
    TvGePoint3d m_min, m_max;
};
