#pragma once

#include <ge/tv_ge_vector.h>

/// A place in the plane.
class TvGePoint2d
{
public:
    double x = 0, y = 0;

    TvGePoint2d() = default;
    TvGePoint2d(double x_, double y_) : x(x_), y(y_) {}

    double distanceTo(const TvGePoint2d& other) const { return (*this - other).length(); }
    bool isEqualTo(const TvGePoint2d& other, const TvGeTol& tol = {}) const
    {
        return distanceTo(other) <= tol.equalPoint();
    }

    friend bool operator==(const TvGePoint2d&, const TvGePoint2d&) = default;
    TvGePoint2d operator+(const TvGeVector2d& v) const { return {x + v.x, y + v.y}; }
    TvGePoint2d operator-(const TvGeVector2d& v) const { return {x - v.x, y - v.y}; }
    TvGeVector2d operator-(const TvGePoint2d& o) const { return {x - o.x, y - o.y}; }
};

/// A place in space.
class TvGePoint3d
{
public:
    double x = 0, y = 0, z = 0;

    TvGePoint3d() = default;
    TvGePoint3d(double x_, double y_, double z_) : x(x_), y(y_), z(z_) {}

    static TvGePoint3d origin() { return {}; }
    TvGeVector3d asVector() const { return {x, y, z}; }
    double distanceTo(const TvGePoint3d& other) const { return (*this - other).length(); }
    bool isEqualTo(const TvGePoint3d& other, const TvGeTol& tol = {}) const
    {
        return distanceTo(other) <= tol.equalPoint();
    }

    friend bool operator==(const TvGePoint3d&, const TvGePoint3d&) = default;
    TvGePoint3d operator+(const TvGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
    TvGePoint3d operator-(const TvGeVector3d& v) const { return {x - v.x, y - v.y, z - v.z}; }
    TvGeVector3d operator-(const TvGePoint3d& o) const { return {x - o.x, y - o.y, z - o.z}; }
};

/// Factors along the three axes.
class TvGeScale3d
{
public:
    double sx = 1, sy = 1, sz = 1;

    TvGeScale3d() = default;
    explicit TvGeScale3d(double factor) : sx(factor), sy(factor), sz(factor) {}
    TvGeScale3d(double x, double y, double z) : sx(x), sy(y), sz(z) {}

    /// Equal amounts along all axes; signs do not count.
    bool isProportional(const TvGeTol& tol = {}) const;
    friend bool operator==(const TvGeScale3d&, const TvGeScale3d&) = default;
};
