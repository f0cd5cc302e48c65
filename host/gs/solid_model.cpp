#include "solid_model.h"

#include <cmath>

namespace gs {

namespace {

using Kind = ModelerValue::Kind;
using Values = std::span<const ModelerValue>;

bool isUnit(const TvGeVector3d& vector)
{
    return std::abs(vector.length() - 1) < 1e-6;
}

/// The numbers beside the two pointers to corners.
std::optional<std::pair<double, double>> rangeOf(const ModelerRecords& records,
                                                 const ModelerRecord& edge)
{
    std::vector<double> ends;
    const std::vector<ModelerValue>& values = edge.values;
    for (std::size_t i = 0; i + 1 < values.size() && ends.size() < 2; ++i)
        if (values[i].kind == Kind::Pointer && values[i].number >= 0 &&
            records.kindOf(static_cast<std::size_t>(values[i].number)) == ModelerKind::Vertex &&
            values[i + 1].kind == Kind::Number)
            ends.push_back(values[i + 1].number);
    return ends.size() == 2 ? std::optional(std::pair(ends[0], ends[1])) : std::nullopt;
}

/// Each knot with how often it counts. At both ends modelers leave one out.
bool readKnots(Values& values, std::size_t count, SplineCurve& out)
{
    if (count < 2 || count > values.size() / 2)
        return false;
    const auto degree = static_cast<double>(out.degree);
    for (std::size_t i = 0; i < count; ++i) {
        const ModelerValue &knot = values[2 * i], &times = values[2 * i + 1];
        if (knot.kind != Kind::Number || times.kind != Kind::Number || !(times.number >= 1) ||
            times.number > degree + 1)
            return false;
        out.knots.insert(out.knots.end(), static_cast<std::size_t>(times.number), knot.number);
        if ((i == 0 || i + 1 == count) && times.number <= degree)
            out.knots.push_back(knot.number);
    }
    values = values.subspan(2 * count);
    return true;
}

bool readControls(Values values, bool isRational, SplineCurve& out)
{
    const std::size_t order = static_cast<std::size_t>(out.degree) + 1, each = isRational ? 4 : 3;
    if (out.knots.size() < 2 * order || (out.knots.size() - order) * each > values.size())
        return false;
    const std::size_t count = out.knots.size() - order;
    for (const ModelerValue& value : values.first(count * each))
        if (value.kind != Kind::Number)
            return false;
    for (std::size_t i = 0; i < count; ++i) {
        const ModelerValue* const at = &values[i * each];
        out.controls.push_back({at[0].number, at[1].number, at[2].number});
        if (isRational)
            out.weights.push_back(at[3].number);
    }
    return true;
}

/// The first free curve among the values: degree, closed or not, number of knots, knots, points.
std::optional<SplineCurve> firstSpline(Values values)
{
    constexpr double kHighestDegree = 25;
    const auto isSpline = [](const ModelerValue& value) {
        return value.kind == Kind::Word && (value.word == "nubs" || value.word == "nurbs");
    };
    while (!values.empty() && !isSpline(values.front()))
        values = values.subspan(1);
    constexpr std::size_t kHead = 4;
    if (values.size() < kHead || values[1].kind != Kind::Number || values[3].kind != Kind::Number ||
        !(values[1].number >= 1) || values[1].number > kHighestDegree || !(values[3].number >= 2) ||
        values[3].number > static_cast<double>(values.size()))
        return std::nullopt;
    const bool isRational = values[0].word == "nurbs";
    SplineCurve curve;
    curve.degree = static_cast<int>(values[1].number);
    const auto knots = static_cast<std::size_t>(values[3].number);
    values = values.subspan(kHead);
    if (!readKnots(values, knots, curve) || !readControls(values, isRational, curve))
        return std::nullopt;
    return curve;
}

} // namespace

std::optional<TvGePoint3d> SolidModel::vertex(const ModelerRecord& edge, std::size_t which)
{
    if (!m_records.read(m_records.pointedTo(edge, ModelerKind::Vertex, which), m_read) ||
        !m_records.read(m_records.pointedTo(m_read, ModelerKind::Point), m_read))
        return std::nullopt;
    const std::vector<double> numbers = m_read.numbers();
    if (numbers.size() < 3)
        return std::nullopt;
    const double* const last = numbers.data() + numbers.size() - 3;
    return TvGePoint3d(last[0], last[1], last[2]);
}

std::optional<SolidEdge> SolidModel::edge(std::size_t record)
{
    if (m_records.kindOf(record) != ModelerKind::Edge || !m_records.read(record, m_edge))
        return std::nullopt;
    const auto start = vertex(m_edge, 0);
    if (!start)
        return std::nullopt;
    SolidEdge edge;
    edge.start = *start;
    // One with a single corner runs back to it.
    edge.end = vertex(m_edge, 1).value_or(*start);
    for (const ModelerKind kind : {ModelerKind::EllipseCurve, ModelerKind::SplineCurve})
        if (const std::size_t curve = m_records.pointedTo(m_edge, kind); curve < m_records.size()) {
            edge.curve = curve;
            edge.curveKind = kind;
            break;
        }
    edge.isReversed = m_edge.isReversed();
    edge.range = rangeOf(m_records, m_edge);
    return edge;
}

// Middle, normal, longer radius as a vector, the shorter one by it.
std::optional<SolidEllipse> SolidModel::ellipse(std::size_t record)
{
    constexpr std::size_t kNumbers = 10;
    if (m_records.kindOf(record) != ModelerKind::EllipseCurve || !m_records.read(record, m_read))
        return std::nullopt;
    const std::vector<double> numbers = m_read.numbers();
    // Some versions count something before them.
    for (std::size_t at = 0; at + kNumbers <= numbers.size(); ++at) {
        const double* const n = numbers.data() + at;
        SolidEllipse ellipse{{n[0], n[1], n[2]}, {n[3], n[4], n[5]}, {n[6], n[7], n[8]}, {}};
        ellipse.v = ellipse.normal.crossProduct(ellipse.u) * n[9];
        const double length = ellipse.u.length();
        if (isUnit(ellipse.normal) && length > 0 && ellipse.v.length() > 0 &&
            std::abs(ellipse.normal.dotProduct(ellipse.u)) <= 1e-6 * length)
            return ellipse;
    }
    return std::nullopt;
}

std::optional<SplineCurve> SolidModel::spline(std::size_t record)
{
    if (m_records.kindOf(record) != ModelerKind::SplineCurve || !m_records.read(record, m_read))
        return std::nullopt;
    // What was told before in another record is told by its number there.
    const std::vector<ModelerValue>& values = m_read.values;
    for (std::size_t i = 0; i + 2 < values.size(); ++i)
        if (values[i].kind == Kind::Open) {
            const ModelerValue number = values[i + 2];
            if (values[i + 1].word == ModelerRecord::kReference && number.kind == Kind::Number &&
                number.number >= 0 && number.number < static_cast<double>(UINT32_MAX) &&
                !m_records.readPart(static_cast<std::size_t>(number.number), m_read))
                return std::nullopt;
            break;
        }
    return firstSpline(m_read.values);
}

// Three rows that a point is multiplied with from the left, the way, and the scale.
TvGeMatrix3d SolidModel::place()
{
    TvGeMatrix3d place;
    std::size_t body = 0;
    while (body < m_records.size() && m_records.kindOf(body) != ModelerKind::Body)
        ++body;
    if (!m_records.read(body, m_read) ||
        !m_records.read(m_records.pointedTo(m_read, ModelerKind::Transform), m_read))
        return place;
    constexpr std::size_t kNumbers = 13;
    const std::vector<double> n = m_read.numbers();
    if (n.size() < kNumbers)
        return place;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column)
            place.entry[row][column] = n[column * 3 + row] * n[12];
        place.entry[row][3] = n[9 + row];
    }
    return place;
}

} // namespace gs
