#include "hatch_lines.h"

#include <algorithm>
#include <cmath>

namespace gs {

namespace {

// Numbers of lines, counted from the base; beyond that a double no longer tells them apart.
constexpr double kFarthestRow = 1e12;
// Lines that are this near to each other, against the size of the area, are one line.
constexpr double kSameLine = 1e-12;

/// Where a line of the pattern passes the edge of a loop.
struct Crossing {
    std::int64_t row;
    double x;
    std::uint32_t loop;
};

/// The pattern's own coordinates: x along the lines; rows count from the base.
class PatternAxes
{
public:
    explicit PatternAxes(const PatternLines& lines)
        : m_base(lines.base), m_along(std::cos(lines.angle), std::sin(lines.angle)),
          m_step(lines.offset.dotProduct(m_along.perpVector())),
          m_shift(lines.offset.dotProduct(m_along))
    {
    }

    double spacing() const { return std::abs(m_step); }
    void setSingleLine() { m_step = 1, m_isSingle = true; }
    bool isSingle() const { return m_isSingle; }
    double row(const TvGePoint2d& p) const
    {
        return (p - m_base).dotProduct(m_along.perpVector()) / m_step;
    }
    double x(const TvGePoint2d& p) const { return (p - m_base).dotProduct(m_along); }
    TvGePoint2d point(double row, double x) const
    {
        return m_base + m_along * x + m_along.perpVector() * (m_step * row);
    }
    /// Where the dashes of a row begin.
    double phase(std::int64_t row) const { return m_shift * static_cast<double>(row); }

private:
    TvGePoint2d m_base;
    TvGeVector2d m_along;
    double m_step, m_shift;
    bool m_isSingle = false;
};

bool isFinite(const PatternLines& lines)
{
    return std::isfinite(lines.angle) && std::isfinite(lines.base.x + lines.base.y) &&
           std::isfinite(lines.offset.x + lines.offset.y) &&
           std::all_of(lines.dashes.begin(), lines.dashes.end(),
                       [](double d) { return std::isfinite(d); });
}

template <class Visit>
void forEachEdge(const std::vector<HatchLoop>& loops, Visit visit)
{
    for (std::uint32_t i = 0; i < loops.size(); ++i) {
        const auto& c = loops[i].corners;
        for (std::size_t k = 0; k < c.size(); ++k)
            visit(i, c[k], c[k + 1 < c.size() ? k + 1 : 0]);
    }
}

/// The first row that an edge crosses, and the one behind the last: its lower end belongs to it,
/// its upper end does not, so that each corner counts once or not at all.
struct Rows {
    double first, end;
};
Rows rowsOf(const PatternAxes& axes, double a, double b)
{
    Rows rows{std::ceil(std::min(a, b)), std::ceil(std::max(a, b))};
    if (axes.isSingle())
        rows = {std::max(rows.first, 0.0), std::min(rows.end, 1.0)};
    return rows;
}

/// All crossings, by row and along it; empty and false when there would be too many.
bool findCrossings(const PatternAxes& axes, const std::vector<HatchLoop>& loops, std::size_t most,
                   std::vector<Crossing>& crossings)
{
    double count = 0;
    bool isNear = true;
    forEachEdge(loops, [&](std::uint32_t, const TvGePoint2d& a, const TvGePoint2d& b) {
        const double rowA = axes.row(a), rowB = axes.row(b);
        isNear &= std::abs(rowA) < kFarthestRow && std::abs(rowB) < kFarthestRow;
        const Rows rows = rowsOf(axes, rowA, rowB);
        count += std::max(rows.end - rows.first, 0.0);
    });
    if (!isNear || count > 2.0 * static_cast<double>(most))
        return false;
    crossings.reserve(static_cast<std::size_t>(count));
    forEachEdge(loops, [&](std::uint32_t loop, const TvGePoint2d& a, const TvGePoint2d& b) {
        const double rowA = axes.row(a), rowB = axes.row(b), xA = axes.x(a), xB = axes.x(b);
        const Rows rows = rowsOf(axes, rowA, rowB);
        for (double row = rows.first; row < rows.end; ++row)
            crossings.push_back({static_cast<std::int64_t>(row),
                                 xA + (xB - xA) * ((row - rowA) / (rowB - rowA)), loop});
    });
    std::sort(crossings.begin(), crossings.end(), [](const Crossing& a, const Crossing& b) {
        return a.row != b.row ? a.row < b.row : a.x < b.x;
    });
    return true;
}

bool isFilled(std::size_t loopsAround, IslandStyle style)
{
    switch (style) {
    case IslandStyle::OuterOnly: return loopsAround == 1;
    case IslandStyle::Ignore: return loopsAround >= 1;
    default: return loopsAround % 2 == 1;
    }
}

/// Draws the pieces of lines, dashed.
class PieceWriter
{
public:
    PieceWriter(const PatternLines& lines, const PatternAxes& axes, std::size_t most, Path& out,
                std::size_t& pieces)
        : m_dashes(lines.dashes), m_axes(axes), m_most(most), m_out(out), m_pieces(pieces)
    {
        bool hasGap = false;
        for (const double dash : m_dashes) {
            m_period += std::abs(dash);
            hasGap |= dash < 0;
        }
        if (!hasGap || !(m_period > 0))
            m_dashes.clear();
    }

    /// False when there are too many.
    bool write(std::int64_t row, double from, double to)
    {
        if (m_dashes.empty()) {
            draw(row, from, to);
            return m_pieces <= m_most;
        }
        const double phase = m_axes.phase(row);
        const double first = std::floor((from - phase) / m_period);
        const double periods = (to - from) / m_period + 2;
        if (!(std::abs(first) < kFarthestRow) ||
            static_cast<double>(m_pieces) + periods > static_cast<double>(m_most))
            return false;
        double x = phase + first * m_period;
        for (double k = first; x < to; ++k) {
            x = phase + k * m_period;
            for (const double dash : m_dashes) {
                const double end = x + std::abs(dash);
                if (dash >= 0 && end >= from && x <= to)
                    draw(row, std::max(x, from), std::min(end, to));
                x = end;
            }
        }
        return m_pieces <= m_most;
    }

private:
    void draw(std::int64_t row, double from, double to)
    {
        m_out.moveTo(m_axes.point(static_cast<double>(row), from));
        m_out.lineTo(m_axes.point(static_cast<double>(row), to));
        ++m_pieces;
    }

    std::vector<double> m_dashes;
    const PatternAxes& m_axes;
    std::size_t m_most;
    Path& m_out;
    std::size_t& m_pieces;
    double m_period = 0;
};

} // namespace

bool clipLines(const PatternLines& lines, const std::vector<HatchLoop>& loops, IslandStyle style,
               const HatchLimits& limits, Path& out, std::size_t& pieces)
{
    if (!isFinite(lines))
        return true; // nobody can draw them
    PatternAxes axes(lines);
    double size = 0;
    forEachEdge(loops, [&](std::uint32_t, const TvGePoint2d& a, const TvGePoint2d& b) {
        size = std::max({size, std::abs(a.x - b.x), std::abs(a.y - b.y)});
    });
    if (axes.spacing() <= kSameLine * size)
        axes.setSingleLine();
    else if (axes.spacing() < limits.smallestSpacing)
        return false;
    std::vector<Crossing> crossings;
    if (!findCrossings(axes, loops, limits.mostPieces, crossings))
        return false;
    PieceWriter writer(lines, axes, limits.mostPieces, out, pieces);
    std::vector<bool> isInside(loops.size());
    std::size_t around = 0; // loops that are around the current place
    for (std::size_t i = 0; i < crossings.size(); ++i) {
        const Crossing& at = crossings[i];
        if (i == 0 || crossings[i - 1].row != at.row) {
            // Each loop is left as often as entered; where rounding saw it otherwise, forget it.
            if (around != 0)
                isInside.assign(loops.size(), false);
            around = 0;
        }
        isInside[at.loop] = !isInside[at.loop];
        around += isInside[at.loop] ? 1 : std::size_t(-1);
        if (i + 1 == crossings.size() || crossings[i + 1].row != at.row)
            continue;
        const double next = crossings[i + 1].x;
        if (next > at.x && isFilled(around, style) && !writer.write(at.row, at.x, next))
            return false;
    }
    return true;
}

} // namespace gs
