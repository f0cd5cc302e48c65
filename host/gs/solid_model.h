#pragma once

#include <optional>
#include <utility>

#include <ge/tv_ge_matrix3d.h>

#include "modeler_records.h"
#include "spline_curve.h"

namespace gs {

/// Two corners, and the curve that an edge follows between them.
struct SolidEdge {
    TvGePoint3d start, end;                     ///< the same for a closed one
    std::size_t curve = 0;                      ///< its record
    ModelerKind curveKind = ModelerKind::Other; ///< Other: straight, or unknown
    bool isReversed = false;                    ///< runs against its curve
    /// The part of the curve, where the body tells it; of a reversed edge with signs changed.
    std::optional<std::pair<double, double>> range;
};

struct SolidEllipse {
    TvGePoint3d center;
    TvGeVector3d normal, u, v; ///< u and v: the longer radius, the shorter one
};

/// What the records of a body say, as geometry. Coordinates are the body's own.
class SolidModel
{
public:
    /// @param body  must outlive this; any bytes.
    explicit SolidModel(std::span<const std::uint8_t> body) : m_records(body) {}

    ModelerRecords& records() { return m_records; }
    std::optional<SolidEdge> edge(std::size_t record);
    std::optional<SolidEllipse> ellipse(std::size_t record);
    std::optional<SplineCurve> spline(std::size_t record);
    /// From the body's coordinates to those of the drawing.
    TvGeMatrix3d place();

private:
    std::optional<TvGePoint3d> vertex(const ModelerRecord& edge, std::size_t which);

    ModelerRecords m_records;
    ModelerRecord m_edge, m_read; // kept for their memory
};

} // namespace gs
