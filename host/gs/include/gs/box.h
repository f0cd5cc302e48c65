#pragma once

#include <algorithm>
#include <limits>

#include <ge/tv_ge_point.h>

namespace gs {

/// A rectangle along the axes of the plane; empty until a point was added.
struct Box {
    double lowX = std::numeric_limits<double>::infinity();
    double lowY = std::numeric_limits<double>::infinity();
    double highX = -std::numeric_limits<double>::infinity();
    double highY = -std::numeric_limits<double>::infinity();

    bool isEmpty() const { return !(lowX <= highX && lowY <= highY); }
    double width() const { return isEmpty() ? 0 : highX - lowX; }
    double height() const { return isEmpty() ? 0 : highY - lowY; }
    TvGePoint2d center() const
    {
        return isEmpty() ? TvGePoint2d() : TvGePoint2d{(lowX + highX) / 2, (lowY + highY) / 2};
    }
    void add(const TvGePoint2d& point)
    {
        lowX = std::min(lowX, point.x), lowY = std::min(lowY, point.y);
        highX = std::max(highX, point.x), highY = std::max(highY, point.y);
    }
    void addBox(const Box& other)
    {
        lowX = std::min(lowX, other.lowX), lowY = std::min(lowY, other.lowY);
        highX = std::max(highX, other.highX), highY = std::max(highY, other.highY);
    }
    /// What both have in common; empty when that is nothing.
    Box common(const Box& other) const
    {
        return {std::max(lowX, other.lowX), std::max(lowY, other.lowY),
                std::min(highX, other.highX), std::min(highY, other.highY)};
    }
    /// By that much on every side.
    Box grown(double by) const { return {lowX - by, lowY - by, highX + by, highY + by}; }
    bool touches(const Box& other) const
    {
        return lowX <= other.highX && other.lowX <= highX && lowY <= other.highY &&
               other.lowY <= highY;
    }

    friend bool operator==(const Box&, const Box&) = default;
};

} // namespace gs
