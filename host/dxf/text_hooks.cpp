// Texts: their second point, the two parts of attributes, pieces of long texts, columns.

#include <cmath>
#include <numbers>

#include "hook_lists.h"
#include "long_text.h"
#include "object_writer.h"
#include "units.h"

namespace dxf {

namespace {

// ---- the second point counts only in texts that are not left-aligned on the baseline

bool readTextPoint(ObjectReader& reader, const Tag& tag)
{
    static const db::FieldId kPoint = db::fieldId("align_pt"), kZ = db::fieldId("elevation");
    db::RecordEditor text = reader.root();
    db::Point point = text.point(kPoint);
    if (tag.code == 31)
        return text.setReal(kZ, reader.real(tag));
    (tag.code == 11 ? point.x : point.y) = reader.real(tag);
    return text.setPoint(kPoint, point);
}

constexpr std::int64_t kNoSecondPoint = 2;

void finishTextPoint(ObjectReader& reader)
{
    static const db::FieldId kFirst = db::fieldId("ins_pt"), kSecond = db::fieldId("align_pt"),
                             kFlags = db::fieldId("dataflags");
    // A point like the first one is left out of records.
    db::RecordEditor text = reader.root();
    if (text.point(kFirst) == text.point(kSecond))
        text.setInteger(kFlags, text.integer(kFlags) | kNoSecondPoint);
}

void writeTextPoint(ObjectWriter& writer)
{
    const db::RecordView text = writer.root();
    if (text.integer("halign") == 0 && text.integer("valign") == 0)
        return;
    const bool hasOwn = writer.isStored("align_pt");
    db::Point point = text.point(hasOwn ? "align_pt" : "ins_pt");
    point.z = text.real("elevation");
    writer.point(11, point);
}

// ---- attributes: 280 is the version before the tag, and the lock behind it

bool readAttributeVersion(ObjectReader& reader, const Tag& tag)
{
    db::RecordEditor attribute = reader.root();
    const bool isVersion = attribute.text("tag").empty();
    if (isVersion && reader.version() < db::Version::Ac1024)
        return reader.integer(tag) == 0;
    return attribute.setInteger(isVersion ? "version" : "lock_position",
                                reader.integer(tag) & 0xFF);
}

void writeAttributeVersion(ObjectWriter& writer)
{
    if (writer.version() >= db::Version::Ac1024)
        writer.integer(280, writer.root().integer("version"));
}

void writeAttributeLock(ObjectWriter& writer)
{
    if (writer.version() >= db::Version::Ac1021)
        writer.integer(280, writer.root().integer("lock_position"));
}

void beginColumns(db::RecordEditor text)
{
    constexpr std::int64_t kColumnVersion = 4;
    text.setInteger("version", kColumnVersion);
    text.setFlag("default_flag", true);
    text.setInteger("attachment2", text.integer("attachment"));
}

// Like the text itself.
void setOneColumn(db::RecordEditor text)
{
    text.setPoint("x_dir2", text.point("x_dir"));
    text.setPoint("ins_pt2", text.point("ins_pt"));
    text.setReal("rect_width2", text.real("rect_width"));
    text.setReal("rect_height2", text.real("rect_height"));
    text.setReal("ext_width2", text.real("ext_width"));
    text.setReal("ext_height2", text.real("ext_height"));
}

// With several lines: 2 for a value, 4 for a definition.
void finishAttribute(ObjectReader& reader)
{
    db::RecordEditor attribute = reader.root();
    const db::RecordView lines = attribute.structure("emb");
    if (reader.version() < db::Version::Ac1032 || lines.real("height") == 0)
        return;
    attribute.setInteger("att_type", attribute.has("prompt") ? 4 : 2);
    db::RecordEditor inner = attribute.structure("emb");
    inner.setHandle("layer", attribute.handle("layer"));
    beginColumns(inner);
    setOneColumn(inner);
}

// ---- texts in lines of several characters

bool readLongText(ObjectReader& reader, const Tag& tag)
{
    if (reader.root().has("emb") && reader.version() < db::Version::Ac1032)
        return false;
    reader.scratch().raw += tag.value;
    return true;
}

void finishLongText(ObjectReader& reader)
{
    const std::string& raw = reader.scratch().raw;
    if (!raw.empty())
        reader.setText(reader.frame(), "text", reader.context().coding().decoded(raw));
}

void writeMText(ObjectWriter& writer)
{
    if (writer.isStored("text"))
        writeLongText(writer, 3, 1, writer.frame().text("text"));
}

bool readMTextRotation(ObjectReader& reader, const Tag& tag)
{
    const double angle = radiansOf(reader.real(tag));
    return reader.root().setPoint("x_dir", {std::cos(angle), std::sin(angle), 0});
}

// ---- columns, an object within the text's from 2018 on

constexpr std::size_t kHeights = 0, kColumns = 1; // numbers kept for the end

bool readColumns(ObjectReader& reader, const Tag& tag)
{
    if (reader.version() < db::Version::Ac1032)
        return false;
    db::RecordEditor text = reader.root();
    reader.scratch().flags[0] = true;
    const auto setPart = [&](const char* field, int part) {
        db::Point point = text.point(field);
        (part == 0 ? point.x : part == 1 ? point.y : point.z) = reader.real(tag);
        return text.setPoint(field, point);
    };
    switch (tag.code) {
    case 70: return reader.integer(tag) == 1;
    case 10:
    case 20:
    case 30: return setPart("x_dir2", tag.code / 10 - 1);
    case 11:
    case 21:
    case 31: return setPart("ins_pt2", tag.code / 10 - 1);
    case 40: return text.setReal("rect_width2", reader.real(tag));
    case 41: return text.setReal("rect_height2", reader.real(tag));
    case 42: return text.setReal("ext_width2", reader.real(tag));
    case 43: return text.setReal("ext_height2", reader.real(tag));
    case 71: reader.scratch().numbers[kColumns] = reader.integer(tag); return true;
    case 72: reader.scratch().numbers[kHeights] = reader.integer(tag); return true;
    case 44: return text.setReal("col_width", reader.real(tag));
    case 45: return text.setReal("gutter", reader.real(tag));
    case 73: return text.setFlag("auto_height", reader.integer(tag) != 0);
    case 74: return text.setFlag("reversed", reader.integer(tag) != 0);
    case 46: reader.scratch().reals[0].push_back(reader.real(tag)); return true;
    default: return false;
    }
}

constexpr std::int64_t kDynamicColumns = 2;

void finishColumns(ObjectReader& reader)
{
    db::RecordEditor text = reader.root();
    if (reader.version() < db::Version::Ac1032)
        return;
    beginColumns(text);
    if (!reader.scratch().flags[0]) // none told
        return setOneColumn(text);
    const std::int64_t columns = reader.scratch().numbers[kColumns];
    const auto& heights = reader.scratch().reals[0];
    if (columns == kDynamicColumns && !text.flag("auto_height")) {
        db::ArrayEditor array = text.array("heights");
        array.resize(static_cast<std::uint32_t>(heights.size()));
        for (std::uint32_t i = 0; i < heights.size(); ++i)
            array.setReal(i, heights[i]);
    } else {
        text.setInteger("n_heights", static_cast<std::int32_t>(reader.scratch().numbers[kHeights]));
    }
    // Last, since setting what only columns have sets it too.
    text.setInteger("columns", static_cast<std::int16_t>(columns));
}

void writeColumns(ObjectWriter& writer)
{
    if (!writer.isStored("columns"))
        return;
    const db::RecordView text = writer.root();
    writer.integer(70, 1);
    writer.point(10, text.point("x_dir2"));
    writer.point(11, text.point("ins_pt2"));
    writer.real(40, text.real("rect_width2"));
    writer.real(41, text.real("rect_height2"));
    writer.real(42, text.real("ext_width2"));
    writer.real(43, text.real("ext_height2"));
    writer.integer(71, text.integer("columns"));
    if (text.integer("columns") == 0)
        return;
    writer.integer(72, text.integer("n_heights"));
    writer.real(44, text.real("col_width"));
    writer.real(45, text.real("gutter"));
    writer.integer(73, text.integer("auto_height"));
    writer.integer(74, text.integer("reversed"));
    const db::ArrayView heights = text.array("heights");
    for (std::uint32_t i = 0; writer.isStored("heights") && i < heights.size(); ++i)
        writer.real(46, heights.real(i));
}

constexpr Hook kHooks[] = {
    {"text_point", readTextPoint, writeTextPoint, finishTextPoint},
    {"attribute_version", readAttributeVersion, writeAttributeVersion},
    {"attribute_lock", nullptr, writeAttributeLock, finishAttribute},
    {"mtext_text", readLongText, writeMText, finishLongText},
    {"mtext_rotation", readMTextRotation, nullptr},
    {"mtext_columns", readColumns, writeColumns, finishColumns},
};

} // namespace

std::span<const Hook> textHooks()
{
    return kHooks;
}

// Pieces are cut where no character is, and no escape: these are resolved before.
void writeLongText(ObjectWriter& writer, int firstCode, int lastCode, std::u16string_view text)
{
    constexpr std::size_t kPiece = 250;
    const std::u16string resolved = TextCoding::resolved(text);
    std::u16string_view rest = resolved;
    while (rest.size() > kPiece) {
        const bool cutsPair = (rest[kPiece] & 0xFC00) == 0xDC00;
        const std::size_t size = cutsPair ? kPiece - 1 : kPiece;
        writer.text(firstCode, rest.substr(0, size));
        rest.remove_prefix(size);
    }
    writer.text(lastCode, rest);
}

} // namespace dxf
