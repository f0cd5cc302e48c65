#pragma once

#include <cmath>

#include <ge/tv_ge_matrix3d.h>
#include <gs/box.h>
#include <gs/path.h>

namespace gs {

/// A map of the plane onto itself that keeps lines straight: x' = xx x + xy y + x0, y' likewise.
struct FlatMap {
    double xx = 1, xy = 0, x0 = 0;
    double yx = 0, yy = 1, y0 = 0;

    /// What @p map does to the plane z = 0, seen along z: its height is dropped.
    static FlatMap seenFromAbove(const TvGeMatrix3d& map)
    {
        const auto& e = map.entry;
        return {e[0][0], e[0][1], e[0][3], e[1][0], e[1][1], e[1][3]};
    }
    static FlatMap moving(double x, double y) { return {1, 0, x, 0, 1, y}; }
    static FlatMap scaling(double x, double y) { return {x, 0, 0, 0, y, 0}; }
    /// Counter-clockwise about the origin, radians.
    static FlatMap turning(double angle)
    {
        const double c = std::cos(angle), s = std::sin(angle);
        return {c, -s, 0, s, c, 0};
    }

    /// The one on the right is done first.
    FlatMap operator*(const FlatMap& f) const
    {
        return {xx * f.xx + xy * f.yx, xx * f.xy + xy * f.yy, xx * f.x0 + xy * f.y0 + x0,
                yx * f.xx + yy * f.yx, yx * f.xy + yy * f.yy, yx * f.x0 + yy * f.y0 + y0};
    }
    TvGePoint2d operator*(const TvGePoint2d& p) const
    {
        return {xx * p.x + xy * p.y + x0, yx * p.x + yy * p.y + y0};
    }
    /// Directions are turned and scaled, not moved.
    TvGeVector2d operator*(const TvGeVector2d& v) const
    {
        return {xx * v.x + xy * v.y, yx * v.x + yy * v.y};
    }
    double determinant() const { return xx * yy - xy * yx; }
};

/// Appends @p from, mapped, to @p to.
void appendMapped(Path& to, const Path& from, const FlatMap& map);
/// The box of all points, handles of curves included; so it may be larger than the path.
/// Points with numbers that are not finite are left out.
Box boxOf(const Path& path);
/// A closed rectangle.
void addRectangle(Path& to, const Box& box);

} // namespace gs
