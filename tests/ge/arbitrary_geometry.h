#pragma once

#include <rapidcheck/gtest.h>

#include <ge/ocs.h>

/// A number between -limit and limit with some digits behind the point.
inline rc::Gen<double> coordinates(int limit = 1000)
{
    return rc::gen::map(rc::gen::inRange(-limit * 1000, limit * 1000 + 1),
                        [](int value) { return value / 1000.0; });
}

inline TvGePoint3d anyPoint()
{
    return {*coordinates(), *coordinates(), *coordinates()};
}

/// Any direction that is one.
inline TvGeVector3d anyDirection()
{
    const TvGeVector3d made{*coordinates(1), *coordinates(1), *coordinates(1)};
    return made.length() > 0.01 ? made : TvGeVector3d::zAxis();
}

inline double anyAngle()
{
    return *coordinates(10);
}

inline const TvGeTol kLoose(1e-7, 1e-9);
