#pragma once

#include <ge/tv_ge_matrix3d.h>

namespace ge {

/// From the coordinate system of a flat object to that of the world.
///
/// Flat objects (circles, texts, inserts, polylines ...) store points in axes of their own, which
/// follow from the normal N alone: where N is within 1/64 of the z axis, the x axis is Y x N, else
/// Z x N; the y axis is N x X. A normal without direction means the world's own axes.
TvGeMatrix3d ocsToWcs(const TvGeVector3d& normal);
/// The way back: the transposed matrix, as the axes are at right angles and of length 1.
TvGeMatrix3d wcsToOcs(const TvGeVector3d& normal);

/// Where the objects of a block go when it is inserted: T(insertion) OCS(normal) Rz(rotation)
/// S(scale) T(-base).
///
/// The base point is taken off first, so it lands on the insertion point, which is in the object
/// coordinates of @p normal.
struct BlockPlacement {
    TvGePoint3d insertion;
    TvGeScale3d scale;
    double rotation = 0; ///< radians, about the normal
    TvGeVector3d normal = TvGeVector3d::zAxis();
    TvGePoint3d base; ///< of the block
};
TvGeMatrix3d blockTransform(const BlockPlacement& placement);
/// The same for the element of an array of inserts, @p offset away in the insert's own axes: turned
/// with it, not scaled.
TvGeMatrix3d blockTransform(const BlockPlacement& placement, const TvGeVector2d& offset);

} // namespace ge
