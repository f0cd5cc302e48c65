// Polylines, splines and meshes: lists whose elements lie in several arrays of a record.

#include <algorithm>

#include "hook_lists.h"
#include "object_writer.h"

namespace dxf {

namespace {

void setReals(db::ArrayEditor array, const std::vector<double>& values)
{
    array.resize(static_cast<std::uint32_t>(values.size()));
    for (std::uint32_t i = 0; i < values.size(); ++i)
        array.setReal(i, values[i]);
}

void setPoints(db::ArrayEditor array, const std::vector<db::Point>& values)
{
    array.resize(static_cast<std::uint32_t>(values.size()));
    for (std::uint32_t i = 0; i < values.size(); ++i)
        array.setPoint(i, values[i]);
}

// x begins a point, y and z complete the last one.
bool addCoordinate(ObjectReader& reader, std::vector<db::Point>& points, int part, const Tag& tag)
{
    const double value = reader.real(tag);
    if (part == 0) {
        points.push_back({value});
        return true;
    }
    if (points.empty())
        return false;
    (part == 1 ? points.back().y : points.back().z) = value;
    return true;
}

bool setCoordinate(ObjectReader& reader, db::FieldId field, int part, const Tag& tag)
{
    db::Point point = reader.root().point(field);
    (part == 0 ? point.x : part == 1 ? point.y : point.z) = reader.real(tag);
    return reader.root().setPoint(field, point);
}

// ---- light polylines

constexpr std::int64_t kHasNormal = 1, kHasBulges = 16, kHasWidths = 32, kPatterned = 256,
                       kIsClosed = 512, kHasIds = 1024;
constexpr std::int64_t kClosedBit = 1, kPatternedBit = 128; // in files

const db::FieldId kFlags = db::fieldId("flags"), kPoints = db::fieldId("points"),
                  kBulges = db::fieldId("bulges"), kWidths = db::fieldId("widths"),
                  kIds = db::fieldId("ids"), kNormal = db::fieldId("normal"),
                  kConstWidth = db::fieldId("const_width"), kElevation = db::fieldId("elevation"),
                  kThickness = db::fieldId("thickness");

// What vertices have beside their points, kept under the number of the vertex.
struct VertexValues {
    ObjectReader::Scratch& scratch;

    std::vector<db::Point>& points() { return scratch.points[0]; }
    std::vector<double>& bulges() { return scratch.reals[0]; }
    std::vector<double>& starts() { return scratch.reals[1]; }
    std::vector<double>& ends() { return scratch.reals[2]; }
    std::vector<double>& ids() { return scratch.reals[3]; }

    bool set(std::vector<double>& values, double value)
    {
        if (points().empty())
            return false;
        if (value != 0 || values.size() + 1 == points().size()) {
            values.resize(points().size() - 1, 0);
            values.push_back(value);
        }
        return true;
    }
};

bool readPolyline(ObjectReader& reader, const Tag& tag)
{
    VertexValues values{reader.scratch()};
    switch (tag.code) {
    case 10: return addCoordinate(reader, values.points(), 0, tag);
    case 20: return addCoordinate(reader, values.points(), 1, tag);
    case 42: return values.set(values.bulges(), reader.real(tag));
    case 40: return values.set(values.starts(), reader.real(tag));
    case 41: return values.set(values.ends(), reader.real(tag));
    case 91:
        return reader.version() >= db::Version::Ac1024 &&
               values.set(values.ids(), static_cast<double>(reader.integer(tag)));
    case 70: reader.scratch().numbers[0] = reader.integer(tag); return true;
    case 43: return reader.root().setReal(kConstWidth, reader.real(tag));
    case 38: return reader.root().setReal(kElevation, reader.real(tag));
    case 39: return reader.root().setReal(kThickness, reader.real(tag));
    case 210:
    case 220:
    case 230: return setCoordinate(reader, kNormal, tag.code / 10 - 21, tag);
    case 90: return true; // the number of points
    default: return false;
    }
}

void finishPolyline(ObjectReader& reader)
{
    VertexValues values{reader.scratch()};
    db::RecordEditor polyline = reader.root();
    const std::size_t count = values.points().size();
    const std::int64_t told = reader.scratch().numbers[0];
    // A new normal sets its bit also on its way through values that are none.
    std::int64_t flags = polyline.integer(kFlags) & ~kHasNormal;
    flags |= polyline.point(kNormal) != db::Point{0, 0, 1} ? kHasNormal : 0;
    flags |= (told & kClosedBit ? kIsClosed : 0) | (told & kPatternedBit ? kPatterned : 0);
    setPoints(polyline.array(kPoints), values.points());
    if (std::any_of(values.bulges().begin(), values.bulges().end(), [](double b) { return b; })) {
        flags |= kHasBulges;
        values.bulges().resize(count);
        setReals(polyline.array(kBulges), values.bulges());
    }
    if (!values.ids().empty()) {
        flags |= kHasIds;
        values.ids().resize(count);
        db::ArrayEditor ids = polyline.array(kIds);
        ids.resize(static_cast<std::uint32_t>(count));
        for (std::uint32_t i = 0; i < count; ++i)
            ids.setInteger(i, static_cast<std::int64_t>(values.ids()[i]));
    }
    if (!values.starts().empty() || !values.ends().empty()) {
        flags |= kHasWidths;
        values.starts().resize(count);
        values.ends().resize(count);
        db::ArrayEditor widths = polyline.array(kWidths);
        widths.resize(static_cast<std::uint32_t>(count));
        for (std::uint32_t i = 0; i < count; ++i)
            widths.setPoint(i, {values.starts()[i], values.ends()[i]});
    }
    polyline.setInteger(kFlags, flags);
}

void writePolyline(ObjectWriter& writer)
{
    const db::RecordView polyline = writer.root();
    const std::int64_t flags = polyline.integer(kFlags);
    const db::ArrayView points = polyline.array(kPoints), bulges = polyline.array(kBulges),
                        widths = polyline.array(kWidths), ids = polyline.array(kIds);
    writer.integer(90, points.size());
    writer.integer(70,
                   (flags & kIsClosed ? kClosedBit : 0) | (flags & kPatterned ? kPatternedBit : 0));
    if (writer.isStored(kConstWidth))
        writer.real(43, polyline.real(kConstWidth));
    if (writer.isStored(kElevation))
        writer.real(38, polyline.real(kElevation));
    if (writer.isStored(kThickness))
        writer.real(39, polyline.real(kThickness));
    for (std::uint32_t i = 0; i < points.size(); ++i) {
        writer.point(10, points.point(i), 2);
        if (i < ids.size() && writer.version() >= db::Version::Ac1024)
            writer.integer(91, ids.integer(i));
        if (i < widths.size()) {
            writer.real(40, widths.point(i).x);
            writer.real(41, widths.point(i).y);
        }
        if (i < bulges.size())
            writer.real(42, bulges.real(i));
    }
    if (writer.isStored(kNormal))
        writer.point(210, polyline.point(kNormal));
}

// ---- splines

constexpr std::int64_t kSplineClosed = 1, kSplinePeriodic = 2, kSplineRational = 4,
                       kSplinePlanar = 8;
constexpr std::int64_t kByControlPoints = 1, kByFitPoints = 2, kCustomKnots = 15, kMethodFit = 1,
                       kMethodClosed = 4;

bool readSpline(ObjectReader& reader, const Tag& tag)
{
    ObjectReader::Scratch& scratch = reader.scratch();
    db::RecordEditor spline = reader.root();
    switch (tag.code) {
    case 70: scratch.numbers[0] = reader.integer(tag); return true;
    case 71: return spline.setInteger("degree", reader.integer(tag));
    case 40: scratch.reals[0].push_back(reader.real(tag)); return true;
    case 41: scratch.reals[1].push_back(reader.real(tag)); return true;
    case 10:
    case 20:
    case 30: return addCoordinate(reader, scratch.points[0], tag.code / 10 - 1, tag);
    case 11:
    case 21:
    case 31: // records hold one of the two; these follow from the others
        return scratch.points[0].empty() &&
               addCoordinate(reader, scratch.points[1], tag.code / 10 - 1, tag);
    case 12:
    case 22:
    case 32: return setCoordinate(reader, db::fieldId("start_tan"), tag.code / 10 - 1, tag);
    case 13:
    case 23:
    case 33: return setCoordinate(reader, db::fieldId("end_tan"), tag.code / 10 - 1, tag);
    case 42: return spline.setReal("knot_tol", reader.real(tag));
    case 43: return spline.setReal("ctrl_tol", reader.real(tag));
    case 44: return spline.setReal("fit_tol", reader.real(tag));
    case 72:
    case 73:
    case 74:
    case 210:
    case 220:
    case 230: return true; // counts, and what follows from the points
    default: return false;
    }
}

void finishControlPoints(ObjectReader& reader, db::RecordEditor spline)
{
    const ObjectReader::Scratch& scratch = reader.scratch();
    const auto& points = scratch.points[0];
    const auto& weights = scratch.reals[1];
    const std::int64_t told = scratch.numbers[0];
    const bool isWeighted = !weights.empty() && weights.size() == points.size();
    spline.setInteger("scenario", kByControlPoints);
    spline.setInteger("knot_param", kCustomKnots);
    spline.setInteger("spline_flags", told & kSplineClosed ? kMethodClosed : 0);
    spline.setFlag("rational", (told & kSplineRational) != 0);
    spline.setFlag("closed", (told & kSplineClosed) != 0);
    spline.setFlag("periodic", (told & kSplinePeriodic) != 0);
    spline.setFlag("weighted", isWeighted);
    setReals(spline.array("knots"), scratch.reals[0]);
    db::ArrayEditor array = spline.array("ctrl");
    array.resize(static_cast<std::uint32_t>(points.size()));
    for (std::uint32_t i = 0; i < points.size(); ++i) {
        array[i].setPoint("pt", points[i]);
        if (isWeighted)
            array[i].setReal("weight", weights[i]);
    }
}

void finishSpline(ObjectReader& reader)
{
    db::RecordEditor spline = reader.root();
    if (!reader.scratch().points[0].empty() || reader.scratch().points[1].empty())
        return finishControlPoints(reader, spline);
    spline.setInteger("scenario", kByFitPoints);
    const bool isClosed = (reader.scratch().numbers[0] & kSplineClosed) != 0;
    spline.setInteger("spline_flags", kMethodFit | (isClosed ? kMethodClosed : 0));
    setPoints(spline.array("fit_pts"), reader.scratch().points[1]);
}

bool isFlat(const db::ArrayView& ctrl, const db::ArrayView& fit)
{
    const auto zOf = [&](std::uint32_t i) {
        return ctrl.size() ? ctrl[i].point("pt").z : fit.point(i).z;
    };
    for (std::uint32_t i = 1; i < std::max(ctrl.size(), fit.size()); ++i)
        if (zOf(i) != zOf(0))
            return false;
    return true;
}

void writeSpline(ObjectWriter& writer)
{
    const db::RecordView spline = writer.root();
    const bool byFit = writer.isStored("fit_pts");
    const db::ArrayView none;
    const db::ArrayView knots = byFit ? none : spline.array("knots");
    const db::ArrayView ctrl = byFit ? none : spline.array("ctrl");
    const db::ArrayView fit = byFit ? spline.array("fit_pts") : none;
    const bool planar = isFlat(ctrl, fit);
    const bool isClosed =
        byFit ? (spline.integer("spline_flags") & kMethodClosed) != 0 : spline.flag("closed");
    if (planar)
        writer.point(210, {0, 0, 1});
    writer.integer(70, (isClosed ? kSplineClosed : 0) | (planar ? kSplinePlanar : 0) |
                           (!byFit && spline.flag("periodic") ? kSplinePeriodic : 0) |
                           (!byFit && spline.flag("rational") ? kSplineRational : 0));
    writer.integer(71, spline.integer("degree"));
    writer.integer(72, knots.size());
    writer.integer(73, ctrl.size());
    writer.integer(74, fit.size());
    if (byFit) {
        writer.real(44, spline.real("fit_tol"));
        writer.point(12, spline.point("start_tan"));
        writer.point(13, spline.point("end_tan"));
    } else {
        writer.real(42, spline.real("knot_tol"));
        writer.real(43, spline.real("ctrl_tol"));
    }
    for (std::uint32_t i = 0; i < knots.size(); ++i)
        writer.real(40, knots.real(i));
    for (std::uint32_t i = 0; spline.flag("weighted") && i < ctrl.size(); ++i)
        writer.real(41, ctrl[i].real("weight"));
    for (std::uint32_t i = 0; i < ctrl.size(); ++i)
        writer.point(10, ctrl[i].point("pt"));
    for (std::uint32_t i = 0; i < fit.size(); ++i)
        writer.point(11, fit.point(i));
}

// ---- meshes: the same code in faces, edges and at the end, told apart by the counts before them

bool readMesh(ObjectReader& reader, const Tag& tag)
{
    ObjectReader::Scratch& scratch = reader.scratch();
    std::int64_t& list = scratch.numbers[0];
    std::int64_t& left = scratch.numbers[1];
    switch (tag.code) {
    case 92:
    case 93:
    case 94:
    case 95:
        if (tag.code <= list)
            return false; // overrides of faces, which records do not hold
        list = tag.code;
        left = std::max<std::int64_t>(reader.integer(tag), 0) * (tag.code == 94 ? 2 : 1);
        return true;
    case 10:
    case 20:
    case 30: return addCoordinate(reader, scratch.points[0], tag.code / 10 - 1, tag);
    case 140: scratch.reals[2].push_back(reader.real(tag)); return true;
    case 90:
        if (list == 95)
            return reader.integer(tag) == 0; // overrides
        if (left-- <= 0)
            return false;
        scratch.reals[list == 93 ? 0 : 1].push_back(static_cast<double>(reader.integer(tag)));
        return true;
    default: return false;
    }
}

void finishMesh(ObjectReader& reader)
{
    const ObjectReader::Scratch& scratch = reader.scratch();
    db::RecordEditor mesh = reader.root();
    setPoints(mesh.array("vertices"), scratch.points[0]);
    db::ArrayEditor faces = mesh.array("faces");
    faces.resize(static_cast<std::uint32_t>(scratch.reals[0].size()));
    for (std::uint32_t i = 0; i < scratch.reals[0].size(); ++i)
        faces.setInteger(i, static_cast<std::int64_t>(scratch.reals[0][i]));
    db::ArrayEditor edges = mesh.array("edges");
    edges.resize(static_cast<std::uint32_t>(scratch.reals[1].size() / 2));
    for (std::uint32_t i = 0; i + 1 < scratch.reals[1].size(); i += 2) {
        edges[i / 2].setInteger("e1", static_cast<std::int64_t>(scratch.reals[1][i]));
        edges[i / 2].setInteger("e2", static_cast<std::int64_t>(scratch.reals[1][i + 1]));
    }
    setReals(mesh.array("creases"), scratch.reals[2]);
}

void writeMesh(ObjectWriter& writer)
{
    const db::RecordView mesh = writer.root();
    const db::ArrayView vertices = mesh.array("vertices"), faces = mesh.array("faces"),
                        edges = mesh.array("edges"), creases = mesh.array("creases");
    writer.integer(92, vertices.size());
    for (std::uint32_t i = 0; i < vertices.size(); ++i)
        writer.point(10, vertices.point(i));
    writer.integer(93, faces.size());
    for (std::uint32_t i = 0; i < faces.size(); ++i)
        writer.integer(90, faces.integer(i));
    writer.integer(94, edges.size());
    for (std::uint32_t i = 0; i < edges.size(); ++i) {
        writer.integer(90, edges[i].integer("e1"));
        writer.integer(90, edges[i].integer("e2"));
    }
    writer.integer(95, creases.size());
    for (std::uint32_t i = 0; i < creases.size(); ++i)
        writer.real(140, creases.real(i));
    writer.integer(90, 0);
    if (mesh.integer("n_override") != 0)
        writer.refuse();
}

constexpr Hook kHooks[] = {
    {"lwpolyline", readPolyline, writePolyline, finishPolyline},
    {"spline", readSpline, writeSpline, finishSpline},
    {"mesh", readMesh, writeMesh, finishMesh},
};

} // namespace

std::span<const Hook> curveHooks()
{
    return kHooks;
}

} // namespace dxf
