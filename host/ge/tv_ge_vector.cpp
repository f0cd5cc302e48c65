#include "ge/tv_ge_vector.h"

#include "ge/tv_ge_point.h"

namespace {

bool hasDirection(double length, const TvGeTol& tol)
{
    return std::isfinite(length) && length > tol.equalVector();
}

} // namespace

TvGeVector2d TvGeVector2d::normal(const TvGeTol& tol) const
{
    const double size = length();
    return hasDirection(size, tol) ? TvGeVector2d(x / size, y / size) : *this;
}

TvGeVector3d TvGeVector3d::normal(const TvGeTol& tol) const
{
    const double size = length();
    return hasDirection(size, tol) ? TvGeVector3d(x / size, y / size, z / size) : *this;
}

double TvGeVector3d::angleTo(const TvGeVector3d& other) const
{
    // The tangent, since the cosine hardly changes near 0 and pi.
    return std::atan2(crossProduct(other).length(), dotProduct(other));
}

bool TvGeVector3d::isEqualTo(const TvGeVector3d& other, const TvGeTol& tol) const
{
    return (*this - other).length() <= tol.equalVector();
}

bool TvGeVector3d::isParallelTo(const TvGeVector3d& other, const TvGeTol& tol) const
{
    if (!hasDirection(length(), tol) || !hasDirection(other.length(), tol))
        return false;
    return normal().crossProduct(other.normal()).length() <= tol.equalVector();
}

bool TvGeScale3d::isProportional(const TvGeTol& tol) const
{
    const double size = std::fabs(sx);
    return std::fabs(std::fabs(sy) - size) <= tol.equalVector() &&
           std::fabs(std::fabs(sz) - size) <= tol.equalVector();
}
