// Hatches: paths of edges of four kinds or polylines, pattern lines, a gradient.

#include "colors.h"
#include "hook_lists.h"
#include "object_writer.h"
#include "units.h"

namespace dxf {

namespace {

// A hatch is read from top to bottom: which group means what depends on what stood before.
enum Stage : std::int64_t { kHead, kPaths, kTail };
constexpr std::int64_t kPolylinePath = 2;
constexpr std::int64_t kLine = 1, kArc = 2, kEllipse = 3, kSpline = 4;

const db::FieldId kPathsField = db::fieldId("paths"), kFlags = db::fieldId("flags"),
                  kSegments = db::fieldId("segs"), kPoints = db::fieldId("pts"),
                  kPoint = db::fieldId("pt"), kBulge = db::fieldId("bulge"),
                  kType = db::fieldId("type"), kStart = db::fieldId("start"),
                  kEnd = db::fieldId("end"), kCenter = db::fieldId("center"),
                  kMajor = db::fieldId("major");

std::int64_t& stage(ObjectReader& reader)
{
    return reader.scratch().numbers[0];
}

bool setPart(ObjectReader& reader, db::RecordEditor fields, db::FieldKey key, int part,
             const Tag& tag)
{
    db::Point point = fields.point(key);
    (part == 0 ? point.x : part == 1 ? point.y : point.z) = reader.real(tag);
    return fields.setPoint(key, point);
}

bool setAngle(ObjectReader& reader, db::RecordEditor fields, db::FieldKey key, const Tag& tag)
{
    return fields.setReal(key, radiansOf(reader.real(tag)));
}

// A point of an array of points: x begins it, y completes the last one.
bool addPoint(ObjectReader& reader, db::ArrayEditor array, int part, const Tag& tag)
{
    const double value = reader.real(tag);
    if (part == 0)
        return array.setPoint(array.add(), {value});
    if (array.size() == 0)
        return false;
    const std::uint32_t last = array.size() - 1;
    db::Point point = array.point(last);
    point.y = value;
    return array.setPoint(last, point);
}

db::RecordEditor lastOf(db::ArrayEditor array)
{
    return array.size() ? array[array.size() - 1] : db::RecordEditor();
}

// ---- paths

bool readPolylinePath(ObjectReader& reader, db::RecordEditor path, const Tag& tag)
{
    db::ArrayEditor points = path.array(kPoints);
    switch (tag.code) {
    case 72: return path.setFlag("has_bulge", reader.integer(tag) != 0);
    case 73: return path.setFlag("closed", reader.integer(tag) != 0);
    case 93: return true;
    case 10: return points[points.add()].setPoint(kPoint, {reader.real(tag)});
    case 20: return points.size() && setPart(reader, lastOf(points), kPoint, 1, tag);
    case 42: return points.size() && lastOf(points).setReal(kBulge, reader.real(tag));
    default: return false;
    }
}

bool readSplineEdge(ObjectReader& reader, db::RecordEditor edge, const Tag& tag)
{
    db::ArrayEditor control = edge.array("ctrl");
    switch (tag.code) {
    case 94: return edge.setInteger("degree", reader.integer(tag));
    case 73: return edge.setFlag("rational", reader.integer(tag) != 0);
    case 74: return edge.setFlag("periodic", reader.integer(tag) != 0);
    case 95:
    case 96: return true;
    case 40: {
        db::ArrayEditor knots = edge.array("knots");
        return knots.setReal(knots.add(), reader.real(tag));
    }
    case 10: return control[control.add()].setPoint(kPoint, {reader.real(tag)});
    case 20: return control.size() && setPart(reader, lastOf(control), kPoint, 1, tag);
    case 42:
        return control.size() && edge.flag("rational") &&
               lastOf(control).setReal("weight", reader.real(tag));
    case 11:
    case 21: return addPoint(reader, edge.array("fit_pts"), tag.code / 10 - 1, tag);
    case 12:
    case 22: return setPart(reader, edge, "start_tan", tag.code / 10 - 1, tag);
    case 13:
    case 23: return setPart(reader, edge, "end_tan", tag.code / 10 - 1, tag);
    default: return false;
    }
}

bool readCurvedEdge(ObjectReader& reader, db::RecordEditor edge, const Tag& tag)
{
    const bool isArc = edge.integer(kType) == kArc;
    switch (tag.code) {
    case 10:
    case 20: return setPart(reader, edge, kCenter, tag.code / 10 - 1, tag);
    case 11:
    case 21: return !isArc && setPart(reader, edge, kMajor, tag.code / 10 - 1, tag);
    case 40: return edge.setReal(isArc ? "radius" : "ratio", reader.real(tag));
    case 50: return setAngle(reader, edge, "start_angle", tag);
    case 51: return setAngle(reader, edge, "end_angle", tag);
    case 73: return edge.setFlag("ccw", reader.integer(tag) != 0);
    default: return false;
    }
}

bool readEdge(ObjectReader& reader, db::RecordEditor edge, const Tag& tag)
{
    switch (edge.integer(kType)) {
    case kLine:
        if (tag.code == 10 || tag.code == 20)
            return setPart(reader, edge, kStart, tag.code / 10 - 1, tag);
        return (tag.code == 11 || tag.code == 21) &&
               setPart(reader, edge, kEnd, tag.code / 10 - 1, tag);
    case kArc:
    case kEllipse: return readCurvedEdge(reader, edge, tag);
    case kSpline: return readSplineEdge(reader, edge, tag);
    default: return false;
    }
}

bool readPath(ObjectReader& reader, const Tag& tag)
{
    db::RecordEditor hatch = reader.root();
    db::ArrayEditor paths = hatch.array(kPathsField);
    if (tag.code == 92)
        return paths[paths.add()].setInteger(kFlags, reader.integer(tag));
    if (tag.code == 75) {
        stage(reader) = kTail;
        return hatch.setInteger("style", reader.integer(tag));
    }
    if (paths.size() == 0)
        return false;
    db::RecordEditor path = lastOf(paths);
    if (tag.code == 97) // of fit points or of boundary objects: they are counted as they come
        return true;
    if (tag.code == 330) {
        db::ArrayEditor sources = hatch.array("sources");
        path.setInteger("n_sources", path.integer("n_sources") + 1);
        return sources.setHandle(sources.add(), reader.handle(tag));
    }
    if (path.integer(kFlags) & kPolylinePath)
        return readPolylinePath(reader, path, tag);
    db::ArrayEditor edges = path.array(kSegments);
    if (tag.code == 72)
        return edges[edges.add()].setInteger(kType, reader.integer(tag) & 0xFF);
    if (tag.code == 93)
        return true;
    return edges.size() && readEdge(reader, lastOf(edges), tag);
}

// ---- before and behind them

bool readHead(ObjectReader& reader, const Tag& tag)
{
    db::RecordEditor hatch = reader.root();
    switch (tag.code) {
    case 10:
    case 20: return true;
    case 30: return hatch.setReal("elevation", reader.real(tag));
    case 210:
    case 220:
    case 230: return setPart(reader, hatch, "normal", tag.code / 10 - 21, tag);
    case 2: return hatch.setText("pattern", reader.text(tag));
    case 70: reader.scratch().flags[0] = reader.integer(tag) != 0; return true;
    case 71: return hatch.setFlag("associative", reader.integer(tag) != 0);
    case 91: stage(reader) = kPaths; return true;
    default: return false;
    }
}

bool readPatternLine(ObjectReader& reader, const Tag& tag)
{
    db::ArrayEditor lines = reader.root().array("lines");
    if (tag.code == 53)
        return setAngle(reader, lines[lines.add()], "l_angle", tag);
    if (lines.size() == 0)
        return false;
    db::RecordEditor line = lastOf(lines);
    switch (tag.code) {
    case 43:
    case 44: return setPart(reader, line, "l_base", tag.code - 43, tag);
    case 45:
    case 46: return setPart(reader, line, "l_offset", tag.code - 45, tag);
    case 49: {
        db::ArrayEditor dashes = line.array("dashes");
        return dashes.setReal(dashes.add(), reader.real(tag));
    }
    default: return true; // 79: the number of dashes
    }
}

bool readGradient(ObjectReader& reader, const Tag& tag)
{
    if (reader.version() < db::Version::Ac1018)
        return false;
    db::RecordEditor hatch = reader.root();
    db::ArrayEditor colors = hatch.array("colors");
    switch (tag.code) {
    case 450: return hatch.setInteger("is_gradient", reader.integer(tag));
    case 451: return hatch.setInteger("reserved", reader.integer(tag));
    case 452: return hatch.setInteger("single_color", reader.integer(tag));
    case 453: return true;
    case 460: return setAngle(reader, hatch, "grad_angle", tag);
    case 461: return hatch.setReal("grad_shift", reader.real(tag));
    case 462: return hatch.setReal("grad_tint", reader.real(tag));
    case 463: return colors[colors.add()].setReal("c_value", reader.real(tag));
    case 470: return hatch.setText("grad_name", reader.text(tag));
    default: break;
    }
    if (colors.size() == 0)
        return false;
    db::RecordEditor color = lastOf(colors).structure("c_color");
    if (tag.code == 63)
        setColorIndex(color, reader.integer(tag), reader.version());
    else if (tag.code == 421)
        setTrueColor(color, reader.integer(tag));
    else
        setColorName(color, reader.text(tag));
    return true;
}

bool readTail(ObjectReader& reader, const Tag& tag)
{
    db::RecordEditor hatch = reader.root();
    switch (tag.code) {
    case 76: return hatch.setInteger("pattern_type", reader.integer(tag));
    case 52: return setAngle(reader, hatch, "angle", tag);
    case 41: return hatch.setReal("scale", reader.real(tag));
    case 77: return hatch.setFlag("double", reader.integer(tag) != 0);
    case 47: return hatch.setReal("pixel_size", reader.real(tag));
    case 78:
    case 98: return true;
    case 10:
    case 20: return addPoint(reader, hatch.array("seeds"), tag.code / 10 - 1, tag);
    case 43:
    case 44:
    case 45:
    case 46:
    case 49:
    case 53:
    case 79: return readPatternLine(reader, tag);
    case 63:
    case 421:
    case 431: return readGradient(reader, tag);
    default: return tag.code >= 450 && tag.code <= 470 && readGradient(reader, tag);
    }
}

bool readHatch(ObjectReader& reader, const Tag& tag)
{
    switch (stage(reader)) {
    case kHead: return readHead(reader, tag);
    case kPaths: return readPath(reader, tag);
    default: return readTail(reader, tag);
    }
}

// Values of a pattern would turn a fill into one.
void finishHatch(ObjectReader& reader)
{
    reader.root().setFlag("solid", reader.scratch().flags[0]);
}

// ---- writing

void writeEdge(ObjectWriter& writer, const db::RecordView& edge)
{
    const std::int64_t type = edge.integer(kType);
    writer.integer(72, type);
    if (type == kLine) {
        writer.point(10, edge.point(kStart), 2);
        return writer.point(11, edge.point(kEnd), 2);
    }
    if (type == kArc || type == kEllipse) {
        writer.point(10, edge.point(kCenter), 2);
        if (type == kEllipse)
            writer.point(11, edge.point(kMajor), 2);
        writer.real(40, edge.real(type == kArc ? "radius" : "ratio"));
        writer.angle(50, edge.real("start_angle"));
        writer.angle(51, edge.real("end_angle"));
        return writer.integer(73, edge.integer("ccw"));
    }
    const db::ArrayView knots = edge.array("knots"), control = edge.array("ctrl"),
                        fit = edge.array("fit_pts");
    writer.integer(94, edge.integer("degree"));
    writer.integer(73, edge.integer("rational"));
    writer.integer(74, edge.integer("periodic"));
    writer.integer(95, knots.size());
    writer.integer(96, control.size());
    for (std::uint32_t i = 0; i < knots.size(); ++i)
        writer.real(40, knots.real(i));
    for (std::uint32_t i = 0; i < control.size(); ++i) {
        writer.point(10, control[i].point(kPoint), 2);
        if (edge.flag("rational"))
            writer.real(42, control[i].real("weight"));
    }
    if (writer.version() < db::Version::Ac1024)
        return;
    writer.integer(97, fit.size());
    for (std::uint32_t i = 0; i < fit.size(); ++i)
        writer.point(11, fit.point(i), 2);
    if (fit.isEmpty())
        return;
    writer.point(12, edge.point("start_tan"), 2);
    writer.point(13, edge.point("end_tan"), 2);
}

void writePath(ObjectWriter& writer, const db::RecordView& path)
{
    writer.integer(92, path.integer(kFlags));
    if ((path.integer(kFlags) & kPolylinePath) == 0) {
        const db::ArrayView edges = path.array(kSegments);
        writer.integer(93, edges.size());
        for (std::uint32_t i = 0; i < edges.size(); ++i)
            writeEdge(writer, edges[i]);
        return;
    }
    const db::ArrayView points = path.array(kPoints);
    writer.integer(72, path.integer("has_bulge"));
    writer.integer(73, path.integer("closed"));
    writer.integer(93, points.size());
    for (std::uint32_t i = 0; i < points.size(); ++i) {
        writer.point(10, points[i].point(kPoint), 2);
        if (path.flag("has_bulge"))
            writer.real(42, points[i].real(kBulge));
    }
}

void writePaths(ObjectWriter& writer)
{
    const db::ArrayView paths = writer.root().array(kPathsField);
    const db::ArrayView sources = writer.root().array("sources");
    writer.integer(91, paths.size());
    std::uint32_t next = 0;
    for (std::uint32_t i = 0; i < paths.size(); ++i) {
        writePath(writer, paths[i]);
        const std::int64_t count = paths[i].integer("n_sources");
        writer.integer(97, count);
        for (std::int64_t k = 0; k < count; ++k)
            writer.handle(330, sources.handle(next++));
    }
}

void writePattern(ObjectWriter& writer)
{
    const db::RecordView hatch = writer.root();
    const db::ArrayView lines = hatch.array("lines");
    writer.angle(52, hatch.real("angle"));
    writer.real(41, hatch.real("scale"));
    writer.integer(77, hatch.integer("double"));
    writer.integer(78, lines.size());
    for (std::uint32_t i = 0; i < lines.size(); ++i) {
        const db::ArrayView dashes = lines[i].array("dashes");
        writer.angle(53, lines[i].real("l_angle"));
        writer.point(43, lines[i].point("l_base"), 2, 1);
        writer.point(45, lines[i].point("l_offset"), 2, 1);
        writer.integer(79, dashes.size());
        for (std::uint32_t k = 0; k < dashes.size(); ++k)
            writer.real(49, dashes.real(k));
    }
}

void writeGradient(ObjectWriter& writer)
{
    const db::RecordView hatch = writer.root();
    const db::ArrayView colors = hatch.array("colors");
    writer.integer(450, hatch.integer("is_gradient"));
    writer.integer(451, hatch.integer("reserved"));
    writer.angle(460, hatch.real("grad_angle"));
    writer.real(461, hatch.real("grad_shift"));
    writer.integer(452, hatch.integer("single_color"));
    writer.real(462, hatch.real("grad_tint"));
    writer.integer(453, colors.size());
    for (std::uint32_t i = 0; i < colors.size(); ++i) {
        writer.real(463, colors[i].real("c_value"));
        writer.color(63, colors[i].structure("c_color"));
    }
    writer.text(470, hatch.text("grad_name"));
}

void writeHatch(ObjectWriter& writer)
{
    const db::RecordView hatch = writer.root();
    writer.point(10, {0, 0, hatch.real("elevation")});
    writer.point(210, hatch.point("normal"));
    writer.text(2, hatch.text("pattern"));
    writer.integer(70, hatch.integer("solid"));
    writer.integer(71, hatch.integer("associative"));
    writePaths(writer);
    writer.integer(75, hatch.integer("style"));
    writer.integer(76, hatch.integer("pattern_type"));
    if (!hatch.flag("solid"))
        writePattern(writer);
    if (writer.isStored("pixel_size"))
        writer.real(47, hatch.real("pixel_size"));
    const db::ArrayView seeds = hatch.array("seeds");
    writer.integer(98, seeds.size());
    for (std::uint32_t i = 0; i < seeds.size(); ++i)
        writer.point(10, seeds.point(i), 2);
    const bool hasGradient = hatch.integer("is_gradient") != 0 || !hatch.array("colors").isEmpty();
    if (writer.version() >= db::Version::Ac1018 && hasGradient)
        writeGradient(writer);
}

constexpr Hook kHooks[] = {{"hatch", readHatch, writeHatch, finishHatch}};

} // namespace

std::span<const Hook> hatchHooks()
{
    return kHooks;
}

} // namespace dxf
