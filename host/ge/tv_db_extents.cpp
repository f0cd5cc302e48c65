#include "ge/tv_db_extents.h"

#include <algorithm>
#include <cmath>

void TvDbExtents::addPoint(const TvGePoint3d& p)
{
    if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z))
        return;
    if (m_isEmpty)
        m_min = m_max = p;
    m_isEmpty = false;
    m_min = {std::min(m_min.x, p.x), std::min(m_min.y, p.y), std::min(m_min.z, p.z)};
    m_max = {std::max(m_max.x, p.x), std::max(m_max.y, p.y), std::max(m_max.z, p.z)};
}

void TvDbExtents::addExtents(const TvDbExtents& other)
{
    if (other.m_isEmpty)
        return;
    addPoint(other.m_min);
    addPoint(other.m_max);
}

TvDbExtents TvDbExtents::transformed(const TvGeMatrix3d& map) const
{
    TvDbExtents box;
    if (m_isEmpty)
        return box;
    for (unsigned corner = 0; corner < 8; ++corner)
        box.addPoint(map * TvGePoint3d(corner & 1 ? m_max.x : m_min.x,
                                       corner & 2 ? m_max.y : m_min.y,
                                       corner & 4 ? m_max.z : m_min.z));
    return box;
}

bool TvDbExtents::contains(const TvGePoint3d& p, const TvGeTol& tol) const
{
    const double t = tol.equalPoint();
    return !m_isEmpty && p.x >= m_min.x - t && p.x <= m_max.x + t && p.y >= m_min.y - t &&
           p.y <= m_max.y + t && p.z >= m_min.z - t && p.z <= m_max.z + t;
}

bool TvDbExtents::intersects(const TvDbExtents& o) const
{
    return !m_isEmpty && !o.m_isEmpty && m_min.x <= o.m_max.x && o.m_min.x <= m_max.x &&
           m_min.y <= o.m_max.y && o.m_min.y <= m_max.y && m_min.z <= o.m_max.z &&
           o.m_min.z <= m_max.z;
}
