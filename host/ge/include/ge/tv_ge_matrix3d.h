#pragma once

#include <optional>

#include <ge/tv_ge_point.h>

/// A map of space onto itself that keeps lines straight: rows of three factors and an offset, the
/// last row being 0 0 0 1.
///
/// (A * B) * p = A * (B * p): what stands on the right is done first.
class TvGeMatrix3d
{
public:
    /// Row, column.
    double entry[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};

    static TvGeMatrix3d identity() { return {}; }
    static TvGeMatrix3d translation(const TvGeVector3d& by);
    /// Counter-clockwise by @p angle (radians) for who looks against @p axis. The identity when the
    /// axis has no direction.
    static TvGeMatrix3d rotation(double angle, const TvGeVector3d& axis,
                                 const TvGePoint3d& center = {});
    static TvGeMatrix3d scaling(const TvGeScale3d& factors, const TvGePoint3d& center = {});
    static TvGeMatrix3d scaling(double factor, const TvGePoint3d& center = {})
    {
        return scaling(TvGeScale3d(factor), center);
    }
    /// On the plane through @p point with @p normal. The identity when that has no direction.
    static TvGeMatrix3d mirroring(const TvGePoint3d& point, const TvGeVector3d& normal);
    /// From coordinates along the axes to those that the axes are told in.
    static TvGeMatrix3d coordinateSystem(const TvGePoint3d& origin, const TvGeVector3d& xAxis,
                                         const TvGeVector3d& yAxis, const TvGeVector3d& zAxis);

    TvGeMatrix3d operator*(const TvGeMatrix3d& first) const;
    TvGePoint3d operator*(const TvGePoint3d& point) const;
    /// Directions are turned and scaled, not moved.
    TvGeVector3d operator*(const TvGeVector3d& vector) const;

    /// Negative when the map turns left hands into right ones.
    double determinant() const;
    /// nullopt when the map flattens space (or its numbers are not finite).
    std::optional<TvGeMatrix3d> inverse() const;
    bool isEqualTo(const TvGeMatrix3d& other, const TvGeTol& tol = {}) const;
    /// Whether circles stay circles: axes of equal length, at right angles.
    bool isUniformScale(const TvGeTol& tol = {}) const;
    TvGePoint3d translationPart() const { return {entry[0][3], entry[1][3], entry[2][3]}; }
    /// Where the axis @p index (0 to 2) goes.
    TvGeVector3d axis(int index) const
    {
        return {entry[0][index], entry[1][index], entry[2][index]};
    }

    friend bool operator==(const TvGeMatrix3d& a, const TvGeMatrix3d& b)
    {
        return a.isEqualTo(b, TvGeTol(0, 0));
    }
};
