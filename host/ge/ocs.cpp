#include "ge/ocs.h"

namespace ge {

namespace {

constexpr double kNearZAxis = 1.0 / 64;

} // namespace

TvGeMatrix3d ocsToWcs(const TvGeVector3d& normal)
{
    if (normal.x == 0 && normal.y == 0 && normal.z > 0) // as most are
        return {};
    if (normal.isZeroLength() || !std::isfinite(normal.length()))
        return {};
    const TvGeVector3d n = normal.normal();
    const bool nearZ = std::fabs(n.x) < kNearZAxis && std::fabs(n.y) < kNearZAxis;
    const TvGeVector3d helper = nearZ ? TvGeVector3d::yAxis() : TvGeVector3d::zAxis();
    const TvGeVector3d x = helper.crossProduct(n).normal();
    return TvGeMatrix3d::coordinateSystem({}, x, n.crossProduct(x), n);
}

TvGeMatrix3d wcsToOcs(const TvGeVector3d& normal)
{
    const TvGeMatrix3d forth = ocsToWcs(normal);
    TvGeMatrix3d back;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            back.entry[row][column] = forth.entry[column][row];
    return back;
}

TvGeMatrix3d blockTransform(const BlockPlacement& placement)
{
    return blockTransform(placement, {});
}

TvGeMatrix3d blockTransform(const BlockPlacement& placement, const TvGeVector2d& offset)
{
    return ocsToWcs(placement.normal) * TvGeMatrix3d::translation(placement.insertion.asVector()) *
           TvGeMatrix3d::rotation(placement.rotation, TvGeVector3d::zAxis()) *
           TvGeMatrix3d::translation({offset.x, offset.y, 0}) *
           TvGeMatrix3d::scaling(placement.scale) *
           TvGeMatrix3d::translation(-placement.base.asVector());
}

} // namespace ge
