#include "ge/tv_ge_matrix3d.h"

#include <algorithm>

namespace {

// Does @p map as if the origin lay in @p center.
TvGeMatrix3d about(const TvGePoint3d& center, const TvGeMatrix3d& map)
{
    const TvGeVector3d offset = center.asVector();
    return TvGeMatrix3d::translation(offset) * map * TvGeMatrix3d::translation(-offset);
}

// The cofactor of an entry of the upper left 3 x 3 part, its sign included.
double cofactor(const double (&m)[4][4], int row, int column)
{
    const int r1 = (row + 1) % 3, r2 = (row + 2) % 3;
    const int c1 = (column + 1) % 3, c2 = (column + 2) % 3;
    return m[r1][c1] * m[r2][c2] - m[r1][c2] * m[r2][c1];
}

} // namespace

TvGeMatrix3d TvGeMatrix3d::translation(const TvGeVector3d& by)
{
    TvGeMatrix3d m;
    m.entry[0][3] = by.x;
    m.entry[1][3] = by.y;
    m.entry[2][3] = by.z;
    return m;
}

// The formula of Rodrigues: v cos a + (k x v) sin a + k (k.v) (1 - cos a).
TvGeMatrix3d TvGeMatrix3d::rotation(double angle, const TvGeVector3d& axis,
                                    const TvGePoint3d& center)
{
    if (axis.isZeroLength() || !std::isfinite(axis.length()))
        return {};
    const TvGeVector3d k = axis.normal();
    const double c = std::cos(angle), s = std::sin(angle), t = 1 - c;
    TvGeMatrix3d m;
    const double rows[3][3] = {
        {c + k.x * k.x * t, k.x * k.y * t - k.z * s, k.x * k.z * t + k.y * s},
        {k.y * k.x * t + k.z * s, c + k.y * k.y * t, k.y * k.z * t - k.x * s},
        {k.z * k.x * t - k.y * s, k.z * k.y * t + k.x * s, c + k.z * k.z * t}};
    for (int row = 0; row < 3; ++row)
        std::copy_n(rows[row], 3, m.entry[row]);
    return about(center, m);
}

TvGeMatrix3d TvGeMatrix3d::scaling(const TvGeScale3d& factors, const TvGePoint3d& center)
{
    TvGeMatrix3d m;
    m.entry[0][0] = factors.sx;
    m.entry[1][1] = factors.sy;
    m.entry[2][2] = factors.sz;
    return about(center, m);
}

// v - 2 n (n.v).
TvGeMatrix3d TvGeMatrix3d::mirroring(const TvGePoint3d& point, const TvGeVector3d& normal)
{
    if (normal.isZeroLength() || !std::isfinite(normal.length()))
        return {};
    const TvGeVector3d unit = normal.normal();
    const double n[3] = {unit.x, unit.y, unit.z};
    TvGeMatrix3d m;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            m.entry[row][column] -= 2 * n[row] * n[column];
    return about(point, m);
}

TvGeMatrix3d TvGeMatrix3d::coordinateSystem(const TvGePoint3d& origin, const TvGeVector3d& xAxis,
                                            const TvGeVector3d& yAxis, const TvGeVector3d& zAxis)
{
    TvGeMatrix3d m = translation(origin.asVector());
    const TvGeVector3d* const axes[] = {&xAxis, &yAxis, &zAxis};
    for (int column = 0; column < 3; ++column) {
        m.entry[0][column] = axes[column]->x;
        m.entry[1][column] = axes[column]->y;
        m.entry[2][column] = axes[column]->z;
    }
    return m;
}

TvGeMatrix3d TvGeMatrix3d::operator*(const TvGeMatrix3d& first) const
{
    TvGeMatrix3d product;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column) {
            double sum = column == 3 ? entry[row][3] : 0;
            for (int k = 0; k < 3; ++k)
                sum += entry[row][k] * first.entry[k][column];
            product.entry[row][column] = sum;
        }
    return product;
}

TvGePoint3d TvGeMatrix3d::operator*(const TvGePoint3d& point) const
{
    return translationPart() + *this * point.asVector();
}

TvGeVector3d TvGeMatrix3d::operator*(const TvGeVector3d& v) const
{
    const auto row = [&](int i) {
        return entry[i][0] * v.x + entry[i][1] * v.y + entry[i][2] * v.z;
    };
    return {row(0), row(1), row(2)};
}

double TvGeMatrix3d::determinant() const
{
    double sum = 0;
    for (int column = 0; column < 3; ++column)
        sum += entry[0][column] * cofactor(entry, 0, column);
    return sum;
}

std::optional<TvGeMatrix3d> TvGeMatrix3d::inverse() const
{
    const double det = determinant();
    if (det == 0 || !std::isfinite(det) || !std::isfinite(1 / det))
        return std::nullopt;
    TvGeMatrix3d m;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            m.entry[row][column] = cofactor(entry, column, row) / det;
    const TvGeVector3d back = -(m * translationPart().asVector());
    return translation(back) * m;
}

bool TvGeMatrix3d::isEqualTo(const TvGeMatrix3d& other, const TvGeTol& tol) const
{
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column) {
            const double allowed = column == 3 ? tol.equalPoint() : tol.equalVector();
            if (!(std::fabs(entry[row][column] - other.entry[row][column]) <= allowed))
                return false;
        }
    return true;
}

bool TvGeMatrix3d::isUniformScale(const TvGeTol& tol) const
{
    const double size = axis(0).length();
    if (!(size > tol.equalVector()))
        return false;
    for (int i = 0; i < 3; ++i) {
        const TvGeVector3d a = axis(i), b = axis((i + 1) % 3);
        const bool sameLength = std::fabs(a.length() - size) <= tol.equalVector() * size;
        if (!sameLength || std::fabs(a.dotProduct(b)) > tol.equalVector() * size * size)
            return false;
    }
    return true;
}
