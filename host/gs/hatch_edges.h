#pragma once

#include <vector>

#include <db/record.h>
#include <gs/path.h>

namespace gs {

/// A piece of a hatch's boundary: a line, some lines, or some cubic curves.
class HatchEdge
{
public:
    /// @param points  a line's corners; or of curves: the first end, then two handles and the end
    /// of each. At least two.
    HatchEdge(std::vector<TvGePoint2d> points, bool isCurved)
        : m_points(std::move(points)), m_isCurved(isCurved)
    {
    }

    const TvGePoint2d& start() const { return m_points.front(); }
    const TvGePoint2d& end() const { return m_points.back(); }
    void reverse();
    /// Without its start.
    void appendTo(Path& path) const;
    /// Without its ends. @param chords  of each curve.
    void appendChords(std::vector<TvGePoint2d>& corners, std::size_t chords) const;

private:
    std::vector<TvGePoint2d> m_points;
    bool m_isCurved;
};

/// From one corner of a polyline to the next.
HatchEdge bulgeEdge(const TvGePoint2d& from, const TvGePoint2d& to, double bulge);
/// The edges of a path that is no polyline; no more than about @p mostCorners corners, were each
/// curve of as many @p chords.
std::vector<HatchEdge> hatchEdges(const db::RecordView& path, std::size_t mostCorners,
                                  std::size_t chords);

} // namespace gs
