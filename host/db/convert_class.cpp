// What is particular to a class on its way into another version: first what stands in the way,
// then what takes another form.

#include <algorithm>
#include <cmath>

#include "convert_data.h"
#include "db/entity_chain.h"
#include "db/summary_record.h"

namespace db {

namespace {

// The whole class has another form on the other side of the version, or one that we do not know
// well enough to make.
struct ClassBorder {
    std::string_view className;
    Version version; ///< the way must not cross it
};
constexpr Version kAny{}; // no way at all
constexpr ClassBorder kBorders[] = {
    {"RAW_OBJECT", kAny},
    {"RAW_ENTITY", kAny},
    {"PROXY_OBJECT", kAny},
    {"PROXY_ENTITY", kAny},
    {"REGION", kAny},
    {"3DSOLID", kAny},
    {"BODY", kAny},
    {"FIELD", Version::Ac1021},
    {"DATALINK", Version::Ac1021},
    {"DATATABLE", Version::Ac1021},
    {"TABLECONTENT", Version::Ac1021},
    {"ACAD_TABLE", Version::Ac1021},
    {"ACAD_TABLE", Version::Ac1024},
};

bool isBehindBorder(std::string_view className, const Step& step)
{
    return std::any_of(std::begin(kBorders), std::end(kBorders), [&](const ClassBorder& border) {
        return border.className == className &&
               (border.version == kAny || step.crosses(border.version));
    });
}

// Values that an older version cannot hold, and whose loss would show.
struct NewerValue {
    std::string_view className, field;
    std::int64_t bits; ///< of these one is set
    Version since;
};
constexpr NewerValue kNewerValues[] = {
    {"HATCH", "is_gradient", 1, Version::Ac1018},
    {"MTEXT", "bg_flags", 3, Version::Ac1018},
    {"IMAGE", "clip_invert", 1, Version::Ac1024},
    {"WIPEOUT", "clip_invert", 1, Version::Ac1024},
    {"PDFUNDERLAY", "flags", 16, Version::Ac1024},
    {"DWFUNDERLAY", "flags", 16, Version::Ac1024},
    {"DGNUNDERLAY", "flags", 16, Version::Ac1024},
    {"ATTRIB", "att_type", ~std::int64_t(1), Version::Ac1032},
    {"ATTDEF", "att_type", ~std::int64_t(1), Version::Ac1032},
};

bool hasNewerValue(const Record& record, const Step& step)
{
    const std::string_view name = record.classDef()->name();
    return std::any_of(std::begin(kNewerValues), std::end(kNewerValues),
                       [&](const NewerValue& value) {
                           return value.className == name && step.leaves(value.since) &&
                                  (record.integer(FieldKey(value.field)) & value.bits) != 0;
                       });
}

// A transparency of its own, not that of the layer.
bool isTransparent(const Record& record, const Step& step)
{
    constexpr std::int64_t kHasOwn = 0x2000;
    constexpr std::uint32_t kAlpha = 2, kOpaque = 0xFF;
    if (!step.leaves(Version::Ac1018) || !record.classDef()->isEntity())
        return false;
    const RecordView color = record.structure("color");
    const auto value = static_cast<std::uint32_t>(color.integer("transparency"));
    return (color.integer("flags") & kHasOwn) != 0 && value >> 24 == kAlpha &&
           (value & 0xFF) != kOpaque;
}

// Bytes that the object has in another section. Pictures of layouts and views are made anew; the
// section itself goes along between the versions that have it.
bool hasOutsideData(const Record& record, const Step& step)
{
    const std::string_view name = record.classDef()->name();
    return step.crosses(Version::Ac1027) && record.flag("has_binary") && name != "LAYOUT" &&
           name != "VIEW" && name != "VPORT";
}

// Lists of items that do not follow their rules are bytes in the form of their version.
bool hasUndecodedItems(const Record& record)
{
    if (!record.structure("content").bytes("data").empty())
        return true;
    const ArrayView extended = record.array("eed");
    for (std::uint32_t i = 0; i < extended.size(); ++i)
        if (!extended[i].bytes("data").empty())
            return true;
    return false;
}

// In narrow form the length of a text of extended data is one byte, and a text may be longer when
// the code page lacks its letters.
bool hasLongItem(const Record& record, const Step& step)
{
    constexpr std::size_t kLongest = 0xFF, kEscape = 7;
    if (!step.leaves(kWideTexts))
        return false;
    const ArrayView extended = record.array("eed");
    for (std::uint32_t i = 0; i < extended.size(); ++i) {
        const ArrayView items = extended[i].array("items");
        for (std::uint32_t k = 0; k < items.size(); ++k) {
            std::size_t length = 0;
            for (const char16_t unit : items[k].text("text"))
                length += unit < 0x80 ? 1 : kEscape;
            if (length > kLongest)
                return true;
        }
    }
    return false;
}

constexpr std::int64_t kFitSpline = 1, kClosedSpline = 4; // flags

bool endsWhereItBegins(const ArrayView& points)
{
    constexpr double kSame = 1e-9; // of the larger of the two
    if (points.isEmpty())
        return false;
    const Point a = points.point(0), b = points.point(points.size() - 1);
    const auto isSame = [](double x, double y) {
        return std::abs(x - y) <= kSame * std::max({1.0, std::abs(x), std::abs(y)});
    };
    return isSame(a.x, b.x) && isSame(a.y, b.y) && isSame(a.z, b.z);
}

// Before 2013 a spline through points is closed only by ending where it begins.
bool isClosedByFlag(const Record& record, const Step& step)
{
    const std::int64_t flags = record.integer("spline_flags");
    return record.has("scenario") && step.leaves(Version::Ac1027) && (flags & kFitSpline) != 0 &&
           (flags & kClosedSpline) != 0 && !endsWhereItBegins(record.array("fit_pts"));
}

// Dependence on an external reference: a bit of the index in wide forms, else a flag beside it.
void convertTableRecord(Record& record, const Step& step, const Conversion::Data& data)
{
    constexpr std::int64_t kDependent = 0x100;
    RecordEditor edit(record);
    if (step.reaches(kWideTexts)) {
        edit.setInteger("xref_index", record.flag("xref_dep") ? kDependent : 0);
    } else if (step.leaves(kWideTexts)) {
        const bool isDependent = (record.integer("xref_index") & kDependent) != 0;
        const auto block =
            std::find(data.blocks.begin(), data.blocks.end(), record.handle("xref_block"));
        edit.setFlag("xref_ref", true);
        edit.setFlag("xref_dep", isDependent);
        edit.setInteger("xref_index", isDependent && block != data.blocks.end()
                                          ? block - data.blocks.begin() + 1
                                          : 0);
    }
}

void convertOwner(Record& record, const Step& step)
{
    RecordEditor edit(record);
    const FieldId list = ownedListOf(record.fields());
    static constexpr const char* kEnds[][2] = {{"first_entity", "last_entity"},
                                               {"first_attrib", "last_attrib"},
                                               {"first_vertex", "last_vertex"}};
    for (const auto& [first, last] : kEnds) {
        if (!record.has(first))
            continue;
        const ArrayView owned = record.array(list);
        const bool isChained = step.to == Version::Ac1015 && list != FieldId::None;
        edit.setHandle(first, isChained ? owned.handle(0) : 0);
        edit.setHandle(last, isChained && owned.size() > 0 ? owned.handle(owned.size() - 1) : 0);
    }
}

// The texts of a linetype's dashes, one behind the other.
void convertLinetype(Record& record, const Step& step)
{
    constexpr std::size_t kNarrowSize = 256, kWideSize = 512;
    constexpr std::int64_t kText = 2;
    if (!step.crosses(kWideTexts))
        return;
    const std::span<const std::uint8_t> area = record.bytes("text_area");
    std::vector<std::uint8_t> converted;
    if (step.leaves(kWideTexts)) {
        converted.resize(kNarrowSize);
        for (std::size_t i = 0; i < kNarrowSize && 2 * i + 1 < area.size(); ++i)
            converted[i] = area[2 * i + 1] == 0 ? area[2 * i] : std::uint8_t('?');
    } else {
        const ArrayView dashes = record.array("dashes");
        bool hasText = false;
        for (std::uint32_t i = 0; i < dashes.size(); ++i)
            hasText = hasText || (dashes[i].integer("flags") & kText) != 0;
        converted.resize(hasText ? kWideSize : 0);
        for (std::size_t i = 0; i < area.size() && 2 * i < converted.size(); ++i)
            converted[2 * i] = area[i];
    }
    RecordEditor(record).setBytes("text_area", converted);
}

// The linetypes of a multiline's lines: by their place in the table, or by their handles.
void convertMultilineStyle(Record& record, const Step& step, const Conversion::Data& data)
{
    constexpr std::int64_t kByLayer = 32767, kByBlock = 32766;
    ArrayEditor lines = RecordEditor(record).array("lines");
    for (std::uint32_t i = 0; i < lines.size(); ++i) {
        RecordEditor line = lines[i];
        if (step.reaches(Version::Ac1032)) {
            const std::int64_t index = line.integer("ltype_index");
            const bool isListed =
                index >= 0 && index < static_cast<std::int64_t>(data.linetypes.size());
            line.setHandle("ltype", index == kByBlock ? data.byBlock
                                    : isListed ? data.linetypes[static_cast<std::size_t>(index)]
                                               : data.byLayer);
        } else if (step.leaves(Version::Ac1032)) {
            const std::uint64_t handle = line.handle("ltype");
            const auto at = std::find(data.linetypes.begin(), data.linetypes.end(), handle);
            line.setInteger("ltype_index", at != data.linetypes.end() && handle != data.byLayer
                                               ? at - data.linetypes.begin()
                                           : handle == data.byBlock && handle != 0 ? kByBlock
                                                                                   : kByLayer);
        }
    }
}

void convertLayout(Record& record, const Step& step, const Conversion::Data& data)
{
    RecordEditor edit(record);
    if (step.leaves(Version::Ac1018)) {
        const auto view = data.views.find(record.handle("plot_view_ref"));
        edit.setText("plot_view", view == data.views.end() ? u"" : view->second);
        return;
    }
    if (!step.reaches(Version::Ac1018))
        return;
    for (const auto& [handle, name] : data.views)
        if (!name.empty() && record.text("plot_view") == name)
            edit.setHandle("plot_view_ref", handle);
    const auto content = data.content.find(record.handle("block_record"));
    if (!record.has("viewports") || content == data.content.end())
        return;
    ArrayEditor viewports = edit.array("viewports");
    viewports.resize(0);
    for (const std::uint64_t entity : content->second)
        if (data.viewports.count(entity))
            viewports.setHandle(viewports.add(), entity);
}

void convertViewport(Record& record, const Step& step, const Conversion::Data& data)
{
    const auto header = data.viewportHeaders.find(record.handle());
    const bool has = step.to == Version::Ac1015 && header != data.viewportHeaders.end();
    RecordEditor(record).setHandle("vp_ent_hdr", has ? header->second : 0);
}

// Before 2010 vertices have no numbers.
void convertPolyline(Record& record, const Step& step)
{
    constexpr std::int64_t kHasNumbers = 1024;
    if (step.leaves(Version::Ac1024))
        RecordEditor(record).setInteger("flags", record.integer("flags") & ~kHasNumbers);
}

// From 2013 on a spline tells by which of its two forms it was made, in another way.
void convertSpline(Record& record, const Step& step)
{
    constexpr std::int64_t kByControlPoints = 1, kByFitPoints = 2;
    constexpr std::int64_t kCustomKnots = 15;
    RecordEditor edit(record);
    if (step.reaches(Version::Ac1027)) {
        const bool byFit = record.integer("scenario") == kByFitPoints;
        const bool isClosed =
            byFit ? endsWhereItBegins(record.array("fit_pts")) : record.flag("closed");
        edit.setInteger("spline_flags", (byFit ? kFitSpline : 0) | (isClosed ? kClosedSpline : 0));
        edit.setInteger("knot_param", byFit ? 0 : kCustomKnots);
    } else if (step.leaves(Version::Ac1027)) {
        const bool isCustom = record.integer("knot_param") == kCustomKnots;
        edit.setInteger("scenario", (record.integer("spline_flags") & kFitSpline) != 0
                                        ? kByFitPoints
                                    : isCustom ? kByControlPoints
                                               : record.integer("scenario"));
    }
}

// What came with 2010, as programs write it.
void convertLeader(Record& record, const Step& step)
{
    constexpr std::int64_t kVersion = 2, kCentred = 9;
    if (!step.reaches(Version::Ac1024))
        return;
    RecordEditor edit(record);
    edit.setInteger("version", kVersion);
    for (const char* side : {"top_attach", "bottom_attach"}) {
        edit.setInteger(side, kCentred);
        if (record.has("ctx"))
            edit.structure("ctx").setInteger(side, kCentred);
    }
}

void removeSuperseded(Record& dictionary, const Conversion::Data& data)
{
    for (const std::uint64_t handle : data.superseded)
        removeEntry(dictionary, handle);
}

} // namespace

bool hasObstacle(const Record& record, const Step& step)
{
    return isBehindBorder(record.classDef()->name(), step) || hasNewerValue(record, step) ||
           isTransparent(record, step) || hasOutsideData(record, step) ||
           hasUndecodedItems(record) || hasLongItem(record, step) || isClosedByFlag(record, step);
}

void convertClass(Record& record, const Step& step, const Conversion::Data& data)
{
    const std::string_view name = record.classDef()->name();
    if (record.classDef()->kind() == ClassKind::Table)
        convertTableRecord(record, step, data);
    if (record.has("first_entity") || record.has("first_attrib") || record.has("first_vertex"))
        convertOwner(record, step);
    if (name == "LTYPE")
        convertLinetype(record, step);
    else if (name == "MLINESTYLE")
        convertMultilineStyle(record, step, data);
    else if (name == "LAYOUT" || name == "PLOTSETTINGS")
        convertLayout(record, step, data);
    else if (name == "VIEWPORT")
        convertViewport(record, step, data);
    else if (name == "LWPOLYLINE")
        convertPolyline(record, step);
    else if (name == "SPLINE" || name == "HELIX")
        convertSpline(record, step);
    else if (name == "MTEXT")
        convertColumns(record, step, data.acadApplication);
    else if (name == "MULTILEADER" || name == "MLEADERSTYLE")
        convertLeader(record, step);
    else if (name == "TABLESTYLE")
        convertTableStyle(record, step);
    else if (name == "VISUALSTYLE")
        convertVisualStyle(record, step);
    else if (record.handle() == data.namedObjects && name == "DICTIONARY")
        removeSuperseded(record, data);
}

} // namespace db
