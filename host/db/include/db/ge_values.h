#pragma once

#include <db/record.h>
#include <ge/tv_ge_point.h>

namespace db {

inline TvGePoint3d asPoint(const Point& value)
{
    return {value.x, value.y, value.z};
}
inline TvGePoint2d asPoint2d(const Point& value)
{
    return {value.x, value.y};
}
inline TvGeVector3d asVector(const Point& value)
{
    return {value.x, value.y, value.z};
}
inline Point fromPoint(const TvGePoint3d& value)
{
    return {value.x, value.y, value.z};
}
inline Point fromPoint(const TvGePoint2d& value)
{
    return {value.x, value.y, 0};
}
inline Point fromVector(const TvGeVector3d& value)
{
    return {value.x, value.y, value.z};
}

} // namespace db
