// What all entities share, and small entities whose groups depend on each other.

#include <cmath>
#include <cstring>

#include "colors.h"
#include "hook_lists.h"
#include "object_writer.h"

namespace dxf {

namespace {

// ---- paper space

bool readSpace(ObjectReader&, const Tag&)
{
    return true; // follows from where the entity stands, and whose it is
}

void writeSpace(ObjectWriter& writer)
{
    const std::uint64_t owner = writer.owner();
    const auto& layouts = writer.source().paperLayouts;
    const auto layout = layouts.find(owner);
    if (layout == layouts.end())
        return;
    writer.integer(67, 1);
    writer.text(410, layout->second);
}

// ---- linetype

enum : std::int64_t { kByLayer = 0, kByBlock = 1, kContinuous = 2, kNamed = 3 };

bool readLinetype(ObjectReader& reader, const Tag& tag)
{
    static const db::FieldId kFlags = db::fieldId("ltype_flags"), kLinetype = db::fieldId("ltype");
    const std::u16string name = foldedName(reader.text(tag));
    db::RecordEditor entity = reader.root();
    if (name.empty() || name == u"bylayer")
        return entity.setInteger(kFlags, kByLayer);
    if (name == u"byblock")
        return entity.setInteger(kFlags, kByBlock);
    if (name == u"continuous")
        return entity.setInteger(kFlags, kContinuous);
    const std::uint64_t linetype = reader.named(Table::Linetype, tag.value);
    return linetype != 0 && entity.setHandle(kLinetype, linetype);
}

void writeLinetype(ObjectWriter& writer)
{
    static const db::FieldId kFlags = db::fieldId("ltype_flags"), kLinetype = db::fieldId("ltype");
    switch (writer.root().integer(kFlags)) {
    case kByLayer: return;
    case kByBlock: return writer.raw(6, "ByBlock");
    case kContinuous: return writer.raw(6, "Continuous");
    default: return writer.text(6, writer.nameOf(Table::Linetype, writer.root().handle(kLinetype)));
    }
}

// ---- colour

constexpr std::int64_t kIndexMask = 0x1FF, kTransparency = 0x2000, kFromBook = 0x4000,
                       kTrue = 0x8000, kByLayerIndex = 256;

bool readColor(ObjectReader& reader, const Tag& tag)
{
    static const db::FieldId kColor = db::fieldId("color"), kFlags = db::fieldId("flags"),
                             kRgb = db::fieldId("rgb"), kAlpha = db::fieldId("transparency"),
                             kReference = db::fieldId("color_ref");
    db::RecordEditor color = reader.root().structure(kColor);
    const std::int64_t flags = static_cast<std::uint16_t>(color.integer(kFlags));
    const auto setFlags = [&](std::int64_t value) {
        return color.setInteger(kFlags, static_cast<std::int16_t>(value));
    };
    if (tag.code == 62) {
        const std::int64_t index = std::llabs(reader.integer(tag));
        if (index > kByLayerIndex + 1)
            reader.fail();
        return setFlags((flags & ~kIndexMask) | (index & kIndexMask));
    }
    if (reader.version() == db::Version::Ac1015)
        return false;
    if (tag.code == 440) {
        color.setInteger(kAlpha, static_cast<std::int32_t>(reader.integer(tag)));
        return setFlags(flags | kTransparency);
    }
    if (tag.code == 420) {
        if (flags & kFromBook)
            return true; // the book's colour tells it
        const auto rgb = static_cast<std::uint32_t>(reader.integer(tag)) & 0xFFFFFF;
        color.setInteger(kRgb, static_cast<std::int32_t>(rgb | 0xC2000000));
        return setFlags(flags | kTrue);
    }
    const std::uint64_t book = reader.named(Table::Color, tag.value);
    if (book == 0)
        return false;
    color.setInteger(kRgb, 0);
    setFlags(flags | kTrue | kFromBook);
    return reader.root().setHandle(kReference, book);
}

void writeColor(ObjectWriter& writer)
{
    static const db::FieldId kColor = db::fieldId("color"), kFlags = db::fieldId("flags"),
                             kRgb = db::fieldId("rgb"), kAlpha = db::fieldId("transparency"),
                             kReference = db::fieldId("color_ref");
    const db::RecordView color = writer.root().structure(kColor);
    const std::int64_t flags = static_cast<std::uint16_t>(color.integer(kFlags));
    if ((flags & kIndexMask) != kByLayerIndex)
        writer.integer(62, flags & kIndexMask);
    if (writer.version() == db::Version::Ac1015)
        return;
    const std::uint64_t book = flags & kFromBook ? writer.root().handle(kReference) : 0;
    const db::Record* named = book ? writer.source().record(book) : nullptr;
    if (named) {
        const db::RecordView shade = named->structure(kColor);
        writer.integer(420, shade.integer("value") & 0xFFFFFF);
        writer.text(430, colorName(shade));
    } else if (flags & kTrue) {
        writer.integer(420, color.integer(kRgb) & 0xFFFFFF);
    }
    if (flags & kTransparency)
        writer.integer(440, color.integer(kAlpha));
}

// ---- cached drawing

bool readGraphics(ObjectReader& reader, const Tag& tag)
{
    return tag.code != 310 || reader.appendHex(tag, reader.scratch().graphics);
}

void finishGraphics(ObjectReader& reader)
{
    if (!reader.scratch().graphics.empty())
        reader.root().setBytes("graphics", reader.scratch().graphics);
}

void writeGraphics(ObjectWriter& writer)
{
    static const db::FieldId kHas = db::fieldId("has_graphics"), kBytes = db::fieldId("graphics");
    if (!writer.root().flag(kHas))
        return;
    const auto bytes = writer.root().bytes(kBytes);
    writer.integer(writer.version() < db::Version::Ac1024 ? 92 : 160,
                   static_cast<std::int64_t>(bytes.size()));
    writer.hex(310, bytes);
}

// ---- vertices and polylines

bool readVertexWidths(ObjectReader& reader, const Tag& tag)
{
    reader.scratch().reals[tag.code == 40 ? 0 : 1].assign(1, reader.real(tag));
    return true;
}

// A negative start width stands for two equal ones.
void finishVertexWidths(ObjectReader& reader)
{
    const auto& starts = reader.scratch().reals[0];
    const auto& ends = reader.scratch().reals[1];
    const double start = starts.empty() ? 0 : starts[0], end = ends.empty() ? 0 : ends[0];
    const bool areEqual = start == end && start > 0;
    reader.root().setReal("start_width", areEqual ? -start : start);
    if (!areEqual)
        reader.root().setReal("end_width", end);
}

void writeVertexWidths(ObjectWriter& writer)
{
    const double start = writer.root().real("start_width");
    const double end = start < 0 ? -start : writer.root().real("end_width");
    if (start == 0 && end == 0)
        return;
    writer.real(40, std::fabs(start));
    writer.real(41, end);
}

constexpr std::int64_t kClosed = 1, kSplineFit = 4, kIn3d = 8, kMesh = 16;
constexpr std::int64_t kQuadratic = 5, kCubic = 6;

bool readPolyline3d(ObjectReader& reader, const Tag& tag)
{
    const std::int64_t value = reader.integer(tag);
    if (tag.code == 70)
        return reader.root().setInteger("closed_flags", value & kClosed);
    return reader.root().setInteger("curve_flags",
                                    value == kQuadratic ? 1 : (value == kCubic ? 2 : 0));
}

void writePolyline3d(ObjectWriter& writer)
{
    const std::int64_t curve = writer.root().integer("curve_flags") & 3;
    const std::int64_t closed = writer.root().integer("closed_flags") & kClosed;
    writer.integer(70, kIn3d | closed | (curve ? kSplineFit : 0));
    if (curve)
        writer.integer(75, curve & 1 ? kQuadratic : kCubic);
}

bool readPolylineMesh(ObjectReader& reader, const Tag& tag)
{
    return reader.root().setInteger("flags", reader.integer(tag) & 0xFF & ~kMesh);
}

void writePolylineMesh(ObjectWriter& writer)
{
    writer.integer(70, writer.root().integer("flags") | kMesh);
}

void finishLine(ObjectReader& reader)
{
    static const db::FieldId kStart = db::fieldId("start"), kEnd = db::fieldId("end"),
                             kFlat = db::fieldId("z_zero");
    db::RecordEditor line = reader.root();
    line.setInteger(kFlat, line.point(kStart).z == 0 && line.point(kEnd).z == 0);
}

// Records hold it once more.
void finishLeader(ObjectReader& reader)
{
    const db::ArrayView points = reader.record().array("points");
    if (points.size() != 0)
        reader.root().setPoint("end_proj", points.point(0));
}

// ---- shapes: files tell the name, which only the file of shapes knows; a number stands in for it

// The style is told only where it is not the first one of shapes; by handle, since styles of
// shapes have no name.
bool readShapeName(ObjectReader& reader, const Tag& tag)
{
    if (tag.code == 340)
        return reader.root().setHandle("style", reader.handle(tag));
    if (reader.root().handle("style") == 0)
        reader.root().setHandle("style", reader.context().shapeStyle());
    const auto number = integerIn(tag.value);
    return number && *number >= 0 && *number < 0x10000 &&
           reader.root().setInteger("shape_number", *number);
}

void writeShapeName(ObjectWriter& writer)
{
    writer.integer(2, writer.root().integer("shape_number"));
    const std::uint64_t style = writer.root().handle("style");
    if (style != writer.source().shapeStyle)
        writer.handle(340, style);
}

// ---- dimensions

struct DimensionType {
    std::string_view className;
    std::int64_t type;
};
constexpr DimensionType kDimensionTypes[] = {
    {"DIMENSION_LINEAR", 0},   {"DIMENSION_ALIGNED", 1}, {"DIMENSION_ANG2LN", 2},
    {"DIMENSION_DIAMETER", 3}, {"DIMENSION_RADIUS", 4},  {"DIMENSION_ANG3PT", 5},
    {"DIMENSION_ORDINATE", 6}, {"ARC_DIMENSION", 5},     {"LARGE_RADIAL_DIMENSION", 4},
};
constexpr std::int64_t kOwnBlock = 32, kAlongX = 64, kUserText = 128;

bool readDimensionType(ObjectReader& reader, const Tag& tag)
{
    const std::int64_t value = reader.integer(tag);
    if (reader.root().has("flag2"))
        reader.root().setInteger("flag2", (value & kAlongX) != 0);
    return reader.root().setInteger("flags",
                                    (value & kUserText ? 0 : 1) | (value & kOwnBlock ? 2 : 0));
}

void writeDimensionType(ObjectWriter& writer)
{
    std::int64_t value = kOwnBlock;
    for (const DimensionType& known : kDimensionTypes)
        if (known.className == writer.record().classDef()->name())
            value |= known.type;
    value |= writer.root().integer("flag2") & 1 ? kAlongX : 0;
    value |= writer.root().integer("flags") & 1 ? 0 : kUserText;
    writer.integer(70, value);
}

// ---- pictures

bool readImageClip(ObjectReader& reader, const Tag& tag)
{
    auto& points = reader.scratch().points[0];
    switch (tag.code) {
    case 71: return reader.root().setInteger("clip_type", reader.integer(tag));
    case 14: points.push_back({reader.real(tag)}); return true;
    case 24:
        if (points.empty())
            return false;
        points.back().y = reader.real(tag);
        return true;
    default: return true; // the number of points
    }
}

// A polygon is told closed: its first point again at the end.
void finishImageClip(ObjectReader& reader)
{
    auto& points = reader.scratch().points[0];
    const bool isRectangle = reader.root().integer("clip_type") == 1;
    if (isRectangle)
        points.resize(2);
    else if (points.size() > 1 && points.front() == points.back())
        points.pop_back();
    db::ArrayEditor clip = reader.root().array("clip");
    clip.resize(static_cast<std::uint32_t>(points.size()));
    for (std::uint32_t i = 0; i < points.size(); ++i)
        clip.setPoint(i, points[i]);
    reader.root().setInteger("n_clip", isRectangle ? 0 : static_cast<std::int64_t>(points.size()));
}

void writeImageClip(ObjectWriter& writer)
{
    const db::ArrayView clip = writer.root().array("clip");
    const std::int64_t type = writer.root().integer("clip_type");
    const bool repeats = type != 1 && clip.size() > 1;
    writer.integer(71, type);
    writer.integer(91, clip.size() + (repeats ? 1 : 0));
    for (std::uint32_t i = 0; i < clip.size(); ++i)
        writer.point(14, clip.point(i), 2);
    if (repeats)
        writer.point(14, clip.point(0), 2);
}

bool readOleHead(ObjectReader&, const Tag&)
{
    return true; // told by the data
}

// The data begin with two bytes and the four corners, from the upper left one clockwise.
void writeOleHead(ObjectWriter& writer)
{
    const auto data = writer.root().bytes("data");
    db::Point corners[4];
    if (data.size() >= 2 + sizeof corners)
        std::memcpy(static_cast<void*>(corners), data.data() + 2, sizeof corners);
    writer.integer(70, 2);
    writer.raw(3, "OLE");
    writer.point(10, corners[0]);
    writer.point(11, corners[2]);
}

// ---- blocks

constexpr std::int64_t kAnonymous = 1, kHasAttributes = 2, kXref = 4, kOverlay = 8, kResolved = 32;

// All but the name belongs to the block's record and is read from there.
bool readBlockBegin(ObjectReader& reader, const Tag& tag)
{
    switch (tag.code) {
    case 2: return reader.root().setText("name", reader.text(tag));
    case 1:
    case 3:
    case 4:
    case 10:
    case 20:
    case 30:
    case 70: return true;
    default: return false;
    }
}

void writeBlockBegin(ObjectWriter& writer)
{
    const std::uint64_t owner = writer.owner();
    const std::u16string name = writer.source().blockName(owner);
    writer.text(2, name.empty() ? std::u16string(writer.root().text("name")) : name);
    const db::Record* block = writer.source().record(owner);
    const bool isXref = block && block->flag("is_xref");
    std::int64_t flags = 0;
    if (block)
        flags = (block->flag("anonymous") ? kAnonymous : 0) |
                (block->flag("has_attdefs") ? kHasAttributes : 0) |
                (isXref && !block->flag("xref_overlaid") ? kXref : 0) |
                (block->flag("xref_overlaid") ? kXref | kOverlay : 0) |
                (isXref && !block->flag("xref_unloaded") ? kResolved : 0);
    writer.integer(70, flags);
    writer.point(10, block ? block->point("base_pt") : db::Point());
    writer.text(3, name.empty() ? std::u16string(writer.root().text("name")) : name);
    writer.text(1, block ? block->text("xref_path") : std::u16string_view());
    if (block && !block->text("description").empty())
        writer.text(4, block->text("description"));
}

constexpr Hook kHooks[] = {
    {"space", readSpace, writeSpace},
    {"entity_linetype", readLinetype, writeLinetype},
    {"entity_color", readColor, writeColor},
    {"graphics", readGraphics, writeGraphics, finishGraphics},
    {"vertex_widths", readVertexWidths, writeVertexWidths, finishVertexWidths},
    {"polyline_3d", readPolyline3d, writePolyline3d},
    {"polyline_mesh", readPolylineMesh, writePolylineMesh},
    {"line_end", nullptr, nullptr, finishLine},
    {"leader_end", nullptr, nullptr, finishLeader},
    {"shape_name", readShapeName, writeShapeName},
    {"dimension_type", readDimensionType, writeDimensionType},
    {"image_clip", readImageClip, writeImageClip, finishImageClip},
    {"ole_head", readOleHead, writeOleHead},
    {"block_begin", readBlockBegin, writeBlockBegin},
};

} // namespace

std::span<const Hook> entityHooks()
{
    return kHooks;
}

} // namespace dxf
