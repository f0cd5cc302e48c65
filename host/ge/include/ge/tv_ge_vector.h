#pragma once

#include <cmath>

#include <ge/tv_ge_tol.h>

/// A direction with a length in the plane.
class TvGeVector2d
{
public:
    double x = 0, y = 0;

    TvGeVector2d() = default;
    TvGeVector2d(double x_, double y_) : x(x_), y(y_) {}

    double length() const { return std::hypot(x, y); }
    double dotProduct(const TvGeVector2d& other) const { return x * other.x + y * other.y; }
    /// The direction against the x axis, -pi to pi; 0 for no direction.
    double angle() const { return std::atan2(y, x); }
    /// A quarter turn counter-clockwise.
    TvGeVector2d perpVector() const { return {-y, x}; }
    /// Of length 1; unchanged when it is shorter than @p tol or not finite.
    TvGeVector2d normal(const TvGeTol& tol = {}) const;

    friend bool operator==(const TvGeVector2d&, const TvGeVector2d&) = default;
    TvGeVector2d operator-() const { return {-x, -y}; }
    TvGeVector2d operator+(const TvGeVector2d& o) const { return {x + o.x, y + o.y}; }
    TvGeVector2d operator-(const TvGeVector2d& o) const { return {x - o.x, y - o.y}; }
    TvGeVector2d operator*(double factor) const { return {x * factor, y * factor}; }
};

/// A direction with a length in space.
class TvGeVector3d
{
public:
    double x = 0, y = 0, z = 0;

    TvGeVector3d() = default;
    TvGeVector3d(double x_, double y_, double z_) : x(x_), y(y_), z(z_) {}

    static TvGeVector3d xAxis() { return {1, 0, 0}; }
    static TvGeVector3d yAxis() { return {0, 1, 0}; }
    static TvGeVector3d zAxis() { return {0, 0, 1}; }

    double length() const { return std::hypot(x, y, z); }
    double dotProduct(const TvGeVector3d& o) const { return x * o.x + y * o.y + z * o.z; }
    TvGeVector3d crossProduct(const TvGeVector3d& o) const
    {
        return {y * o.z - z * o.y, z * o.x - x * o.z, x * o.y - y * o.x};
    }
    /// Of length 1; unchanged when it is shorter than @p tol or not finite.
    TvGeVector3d normal(const TvGeTol& tol = {}) const;
    /// The smaller angle between the two, 0 to pi; 0 when one of them has no direction.
    double angleTo(const TvGeVector3d& other) const;
    bool isEqualTo(const TvGeVector3d& other, const TvGeTol& tol = {}) const;
    bool isZeroLength(const TvGeTol& tol = {}) const { return length() <= tol.equalVector(); }
    /// Same or opposite direction; a vector without direction is parallel to none.
    bool isParallelTo(const TvGeVector3d& other, const TvGeTol& tol = {}) const;

    friend bool operator==(const TvGeVector3d&, const TvGeVector3d&) = default;
    TvGeVector3d operator-() const { return {-x, -y, -z}; }
    TvGeVector3d operator+(const TvGeVector3d& o) const { return {x + o.x, y + o.y, z + o.z}; }
    TvGeVector3d operator-(const TvGeVector3d& o) const { return {x - o.x, y - o.y, z - o.z}; }
    TvGeVector3d operator*(double factor) const { return {x * factor, y * factor, z * factor}; }
};
