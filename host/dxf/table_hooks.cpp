// Records of symbol tables: flags that are several fields, dashes of linetypes, names of blocks.

#include <algorithm>

#include "block_names.h"
#include "colors.h"
#include "hook_lists.h"
#include "object_writer.h"
#include "units.h"

namespace dxf {

namespace {

constexpr std::int64_t kDependent = 16, kResolved = 32; // in files
constexpr std::int64_t kDependentIndex = 0x100;         // in records from 2007 on

// ---- flags

struct OwnFlag {
    const char* field;
    std::int64_t bit;
};
constexpr OwnFlag kOwnFlags[] = {
    {"is_shape", 1}, {"is_vertical", 4}, {"is_paperspace", 1}, {"flag0", 1}};

void setDependent(ObjectReader& reader, std::int64_t flags)
{
    db::RecordEditor record = reader.root();
    record.setFlag("xref_ref", true);
    if ((flags & kDependent) == 0)
        return;
    record.setFlag("xref_dep", true);
    record.setInteger("xref_index", reader.version() >= db::Version::Ac1021 ? kDependentIndex : 0);
    const std::u16string_view name = record.text("name");
    const auto bar = name.find(u'|');
    if (bar != name.npos)
        record.setHandle("xref_block",
                         reader.context().names().find(Table::Block, name.substr(0, bar)));
}

std::int64_t dependentFlags(ObjectWriter& writer)
{
    const db::RecordView record = writer.root();
    const bool isDependent = writer.record().version() >= db::Version::Ac1021
                                 ? (record.integer("xref_index") & kDependentIndex) != 0
                                 : record.flag("xref_dep");
    return isDependent ? kDependent | kResolved : 0;
}

bool readTableFlags(ObjectReader& reader, const Tag& tag)
{
    const std::int64_t value = reader.integer(tag);
    for (const OwnFlag& flag : kOwnFlags)
        if (reader.root().has(flag.field))
            reader.root().setFlag(flag.field, (value & flag.bit) != 0);
    reader.scratch().numbers[0] = value;
    return true;
}

void finishTableFlags(ObjectReader& reader)
{
    setDependent(reader, reader.scratch().numbers[0]);
}

void writeTableFlags(ObjectWriter& writer)
{
    std::int64_t value = dependentFlags(writer);
    for (const OwnFlag& flag : kOwnFlags)
        value |= writer.root().flag(flag.field) ? flag.bit : 0;
    writer.integer(70, value);
}

// ---- layers

constexpr std::int64_t kFrozen = 1, kOff = 2, kFrozenInNew = 4, kLocked = 8, kPlots = 16,
                       kWeightMask = 31, kWeightShift = 5;
constexpr std::int64_t kFileFrozen = 1, kFileFrozenInNew = 2, kFileLocked = 4;

bool readLayer(ObjectReader& reader, const Tag& tag)
{
    db::RecordEditor layer = reader.root();
    db::RecordEditor color = layer.structure("color");
    std::int64_t flags = layer.integer("flags");
    switch (tag.code) {
    case 70: {
        const std::int64_t value = reader.integer(tag);
        reader.scratch().numbers[0] = value;
        flags &= ~(kFrozen | kFrozenInNew | kLocked);
        flags |= (value & kFileFrozen ? kFrozen : 0) | (value & kFileLocked ? kLocked : 0) |
                 (value & kFileFrozenInNew ? kFrozenInNew : 0);
        break;
    }
    case 62: {
        const std::int64_t index = reader.integer(tag);
        setColorIndex(color, index, reader.version());
        flags = index < 0 ? flags | kOff : flags & ~kOff;
        break;
    }
    case 420:
        if (reader.version() == db::Version::Ac1015)
            return false;
        setTrueColor(color, reader.integer(tag));
        return true;
    case 430:
        if (reader.version() == db::Version::Ac1015)
            return false;
        setColorName(color, reader.text(tag));
        return true;
    case 290: flags = reader.integer(tag) ? flags | kPlots : flags & ~kPlots; break;
    default:
        flags &= ~(kWeightMask << kWeightShift);
        flags |= lineweightCode(reader.integer(tag)) << kWeightShift;
        break;
    }
    return layer.setInteger("flags", flags);
}

void writeLayer(ObjectWriter& writer)
{
    const db::RecordView layer = writer.root(), color = layer.structure("color");
    const std::int64_t flags = layer.integer("flags");
    const db::Version own = writer.record().version();
    const std::int64_t index = colorIndex(color, own);
    writer.integer(70, dependentFlags(writer) | (flags & kFrozen ? kFileFrozen : 0) |
                           (flags & kFrozenInNew ? kFileFrozenInNew : 0) |
                           (flags & kLocked ? kFileLocked : 0));
    writer.integer(62, flags & kOff ? -index : index);
    if (writer.version() > db::Version::Ac1015) {
        if (isTrueColor(color))
            writer.integer(420, color.integer("value") & 0xFFFFFF);
        if (const std::u16string name = colorName(color); !name.empty())
            writer.text(430, name);
    }
    writer.integer(290, flags & kPlots ? 1 : 0);
    writer.integer(370, lineweightValue(flags >> kWeightShift & kWeightMask));
}

// ---- linetypes: texts of dashes lie one after the other in an area of fixed size

constexpr std::int64_t kTextDash = 2;
constexpr std::size_t kNarrowArea = 256, kWideArea = 512; // bytes

bool readDash(ObjectReader& reader, const Tag& tag)
{
    db::ArrayEditor dashes = reader.root().array("dashes");
    auto& texts = reader.scratch().texts;
    if (tag.code == 49) {
        texts.emplace_back();
        return dashes[dashes.add()].setReal("length", reader.real(tag));
    }
    if (dashes.size() == 0)
        return false;
    db::RecordEditor dash = dashes[dashes.size() - 1];
    switch (tag.code) {
    case 74: return dash.setInteger("flags", static_cast<std::int16_t>(reader.integer(tag)));
    case 75: return dash.setInteger("shape_number", static_cast<std::int16_t>(reader.integer(tag)));
    case 340: {
        db::ArrayEditor styles = reader.root().array("styles");
        return styles.setHandle(dashes.size() - 1, reader.handle(tag));
    }
    case 46: return dash.setReal("scale", reader.real(tag));
    case 50: return dash.setReal("rotation", radiansOf(reader.real(tag)));
    case 44: return dash.setReal("x_offset", reader.real(tag));
    case 45: return dash.setReal("y_offset", reader.real(tag));
    default: texts.back() = reader.text(tag); return true;
    }
}

void finishDashes(ObjectReader& reader)
{
    const auto& texts = reader.scratch().texts;
    if (std::all_of(texts.begin(), texts.end(), [](const auto& text) { return text.empty(); }))
        return;
    const bool isWide = db::hasWideText(reader.version());
    std::vector<std::uint8_t> area;
    const db::ArrayView dashes = reader.root().array("dashes");
    for (std::uint32_t i = 0; i < texts.size(); ++i) {
        if ((dashes[i].integer("flags") & kTextDash) == 0)
            continue;
        if (isWide) {
            for (const char16_t unit : texts[i] + u'\0') {
                area.push_back(static_cast<std::uint8_t>(unit));
                area.push_back(static_cast<std::uint8_t>(unit >> 8));
            }
        } else {
            std::string bytes;
            reader.context().coding().encode(texts[i], bytes);
            area.insert(area.end(), bytes.begin(), bytes.end());
            area.push_back(0);
        }
    }
    if (area.size() > (isWide ? kWideArea : kNarrowArea))
        return reader.refuse();
    area.resize(isWide ? kWideArea : kNarrowArea);
    reader.root().setBytes("text_area", area);
}

// The next text of the area.
std::u16string cutText(ObjectWriter& writer, std::span<const std::uint8_t>& area)
{
    const bool isWide = db::hasWideText(writer.record().version());
    if (!isWide) {
        const auto end = std::find(area.begin(), area.end(), 0);
        const std::string bytes(area.begin(), end);
        area = area.subspan(std::min(bytes.size() + 1, area.size()));
        return TextCoding(db::Version::Ac1015, writer.source().codePage).decoded(bytes);
    }
    std::u16string text;
    while (area.size() >= 2) {
        const auto unit = static_cast<char16_t>(area[0] | area[1] << 8);
        area = area.subspan(2);
        if (unit == 0)
            break;
        text += unit;
    }
    return text;
}

void writeDashes(ObjectWriter& writer)
{
    const db::ArrayView dashes = writer.root().array("dashes");
    const db::ArrayView styles = writer.root().array("styles");
    std::span<const std::uint8_t> area = writer.root().bytes("text_area");
    for (std::uint32_t i = 0; i < dashes.size(); ++i) {
        const std::int64_t flags = dashes[i].integer("flags");
        writer.real(49, dashes[i].real("length"));
        writer.integer(74, flags);
        if (flags == 0)
            continue;
        writer.integer(75, dashes[i].integer("shape_number"));
        writer.handle(340, styles.handle(i));
        writer.real(46, dashes[i].real("scale"));
        writer.angle(50, dashes[i].real("rotation"));
        writer.real(44, dashes[i].real("x_offset"));
        writer.real(45, dashes[i].real("y_offset"));
        if (flags & kTextDash)
            writer.text(9, cutText(writer, area));
    }
}

// ---- viewports of the model: the width is told by the height

bool readAspect(ObjectReader& reader, const Tag& tag)
{
    reader.scratch().reals[0].assign(1, reader.real(tag));
    return true;
}

void finishAspect(ObjectReader& reader)
{
    const auto& aspect = reader.scratch().reals[0];
    const double height = reader.root().real("height");
    reader.root().setReal("width", height * (aspect.empty() ? 1 : aspect[0]));
}

void writeAspect(ObjectWriter& writer)
{
    const double height = writer.root().real("height");
    writer.real(41, height == 0 ? 1 : writer.root().real("width") / height);
}

// ---- blocks: records hold names without the number that makes anonymous ones differ

bool readBlockName(ObjectReader& reader, const Tag& tag)
{
    return reader.root().setText("name", baseBlockName(reader.text(tag)));
}

void writeBlockName(ObjectWriter& writer)
{
    writer.text(2, writer.source().blockName(writer.record().handle()));
}

constexpr Hook kHooks[] = {
    {.name = "table_flags",
     .read = readTableFlags,
     .write = writeTableFlags,
     .finish = finishTableFlags,
     .isSingle = true}, // dimension styles have another field under the same code
    {"layer", readLayer, writeLayer, finishTableFlags},
    {"linetype_dashes", readDash, writeDashes, finishDashes},
    {"viewport_aspect", readAspect, writeAspect, finishAspect},
    {"block_name", readBlockName, writeBlockName},
};

} // namespace

std::span<const Hook> tableHooks()
{
    return kHooks;
}

} // namespace dxf
