#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <ge/tv_ge_point.h>

namespace gs {

/// Lines and curves in the plane, one after the other: what is stroked, filled or clipped to.
///
/// Every subpath begins with a Move. A Line takes one point, a Curve three (a cubic Bezier: two
/// handles and the end), a Close none.
class Path
{
public:
    enum class Verb : std::uint8_t { Move, Line, Curve, Close };

    void moveTo(TvGePoint2d to) { add(Verb::Move), m_points.push_back(to); }
    void lineTo(TvGePoint2d to) { add(Verb::Line), m_points.push_back(to); }
    void curveTo(TvGePoint2d handle1, TvGePoint2d handle2, TvGePoint2d to)
    {
        add(Verb::Curve);
        m_points.insert(m_points.end(), {handle1, handle2, to});
    }
    void close() { add(Verb::Close); }
    void append(const Path& other)
    {
        m_verbs.insert(m_verbs.end(), other.m_verbs.begin(), other.m_verbs.end());
        m_points.insert(m_points.end(), other.m_points.begin(), other.m_points.end());
    }
    void append(std::span<const Verb> verbs, std::span<const TvGePoint2d> points)
    {
        m_verbs.insert(m_verbs.end(), verbs.begin(), verbs.end());
        m_points.insert(m_points.end(), points.begin(), points.end());
    }
    void clear() { m_verbs.clear(), m_points.clear(); }

    bool isEmpty() const { return m_verbs.empty(); }
    const std::vector<Verb>& verbs() const { return m_verbs; }
    const std::vector<TvGePoint2d>& points() const { return m_points; }
    std::vector<TvGePoint2d>& points() { return m_points; }

private:
    void add(Verb verb) { m_verbs.push_back(verb); }

    std::vector<Verb> m_verbs;
    std::vector<TvGePoint2d> m_points;
};

} // namespace gs
