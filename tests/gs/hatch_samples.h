#pragma once

#include <initializer_list>
#include <vector>

#include <db/record_editor.h>
#include <gs/hatch_shape.h>

/// Builds hatches for tests.
class HatchSample
{
public:
    HatchSample& style(int number)
    {
        m_hatch.edit().setInteger("style", number);
        return *this;
    }
    HatchSample& solid()
    {
        m_hatch.edit().setFlag("solid", true);
        return *this;
    }
    struct Corner {
        TvGePoint2d at;
        double bulge = 0;
    };
    HatchSample& polyline(const std::vector<Corner>& corners)
    {
        db::RecordEditor path = addPath(3); // outermost, a polyline
        path.setFlag("has_bulge", true);
        path.setFlag("closed", true);
        db::ArrayEditor points = path.array("pts");
        points.resize(static_cast<std::uint32_t>(corners.size()));
        for (std::uint32_t i = 0; i < corners.size(); ++i) {
            points[i].setPoint("pt", {corners[i].at.x, corners[i].at.y, 0});
            points[i].setReal("bulge", corners[i].bulge);
        }
        return *this;
    }
    HatchSample& square(TvGePoint2d at, double side)
    {
        return polyline(
            {{at}, {{at.x + side, at.y}}, {{at.x + side, at.y + side}}, {{at.x, at.y + side}}});
    }
    /// As two half circles of a polyline.
    HatchSample& circle(TvGePoint2d center, double radius)
    {
        return polyline({{{center.x - radius, center.y}, 1}, {{center.x + radius, center.y}, 1}});
    }
    /// Edges of all kinds: a line on top, a clockwise arc on the right, a spline at the bottom, an
    /// ellipse on the left.
    HatchSample& shield(TvGePoint2d c, double r)
    {
        db::ArrayEditor edges = addPath(1).array("segs");
        edges.resize(4);
        edges[0].setInteger("type", 1);
        edges[0].setPoint("start", {c.x - r, c.y + r, 0});
        edges[0].setPoint("end", {c.x + r, c.y + r, 0});
        edges[1].setInteger("type", 2); // from the top right corner down to the middle
        edges[1].setPoint("center", {c.x + r, c.y + r / 2, 0});
        edges[1].setReal("radius", r / 2);
        edges[1].setReal("start_angle", -kHalfPi);
        edges[1].setReal("end_angle", kHalfPi);
        edges[1].setFlag("ccw", false);
        edges[2].setInteger("type", 4);
        edges[2].setInteger("degree", 3);
        db::ArrayEditor knots = edges[2].array("knots");
        knots.resize(8);
        for (std::uint32_t i = 4; i < 8; ++i)
            knots.setReal(i, 1);
        db::ArrayEditor points = edges[2].array("ctrl");
        points.resize(4);
        points[0].setPoint("pt", {c.x + r, c.y, 0});
        points[1].setPoint("pt", {c.x + r, c.y - 1.5 * r, 0});
        points[2].setPoint("pt", {c.x - r, c.y - 1.5 * r, 0});
        points[3].setPoint("pt", {c.x - r, c.y, 0});
        edges[3].setInteger("type", 3); // out to the left, up to the first corner
        edges[3].setPoint("center", {c.x - r, c.y + r / 2, 0});
        edges[3].setPoint("major", {0, r / 2, 0});
        edges[3].setReal("ratio", 0.5);
        edges[3].setReal("start_angle", kHalfPi * 2);
        edges[3].setReal("end_angle", kHalfPi * 4);
        edges[3].setFlag("ccw", false);
        return *this;
    }
    HatchSample& lines(double angle, TvGePoint2d base, TvGeVector2d offset,
                       std::initializer_list<double> dashes)
    {
        db::ArrayEditor families = m_hatch.edit().array("lines");
        db::RecordEditor family = families[families.add()];
        family.setReal("l_angle", angle);
        family.setPoint("l_base", {base.x, base.y, 0});
        family.setPoint("l_offset", {offset.x, offset.y, 0});
        db::ArrayEditor stored = family.array("dashes");
        stored.resize(static_cast<std::uint32_t>(dashes.size()));
        std::uint32_t i = 0;
        for (const double dash : dashes)
            stored.setReal(i++, dash);
        return *this;
    }

    TvDbHatch& hatch() { return m_hatch; }
    gs::HatchShape shape(const gs::HatchLimits& limits = {}) const
    {
        return shapeOf(m_hatch, limits);
    }

private:
    static constexpr double kHalfPi = 1.5707963267948966;

    db::RecordEditor addPath(int flags)
    {
        db::ArrayEditor paths = m_hatch.edit().array("paths");
        db::RecordEditor path = paths[paths.add()];
        path.setInteger("flags", flags);
        return path;
    }

    TvDbHatch m_hatch;
};
