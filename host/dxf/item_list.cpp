#include "item_list.h"

namespace dxf {

namespace {

// The codes of y and z follow that of x by 10 and 20.
constexpr int kNextCoordinate = 10;

bool isPointCode(int code, bool isExtended)
{
    const auto kind = isExtended ? db::extendedItemKind(code) : db::xrecordItemKind(code);
    const int base = code >= 1000 ? code - 1000 : code >= 200 ? code - 200 : code;
    return kind == db::ItemKind::Point && (base % 100 < 20 || base == 110);
}

// y or z of the last item, when that is a point of which this group is a part.
bool readCoordinate(ObjectReader& reader, db::ArrayEditor& items, const Tag& tag, bool isExtended)
{
    if (items.size() == 0)
        return false;
    db::RecordEditor last = items[items.size() - 1];
    const auto code = static_cast<int>(last.integer("code"));
    const int offset = tag.code - code;
    if (!isPointCode(code, isExtended) ||
        (offset != kNextCoordinate && offset != 2 * kNextCoordinate))
        return false;
    db::Point point = last.point("point");
    (offset == kNextCoordinate ? point.y : point.z) = reader.real(tag);
    return last.setPoint("point", point);
}

bool setValue(ObjectReader& reader, db::RecordEditor item, db::ItemKind kind, const Tag& tag,
              bool isExtended)
{
    switch (kind) {
    case db::ItemKind::Text:
        // Texts of 8 bits have their code page with them.
        if (!isExtended && reader.version() < db::Version::Ac1021)
            item.setInteger("integer", reader.context().coding().codePage());
        return item.setText("text", reader.text(tag));
    case db::ItemKind::Point:
    case db::ItemKind::Real: return item.setPoint("point", {reader.real(tag)});
    case db::ItemKind::Brace: return item.setInteger("integer", tag.value == "}" ? 1 : 0);
    case db::ItemKind::Binary: {
        std::vector<std::uint8_t> bytes;
        return reader.appendHex(tag, bytes) && item.setBytes("bytes", bytes);
    }
    case db::ItemKind::Handle:
        if (tag.code == 1003)
            return item.setHandle("handle", reader.named(Table::Layer, tag.value));
        return item.setHandle("handle", reader.handle(tag));
    case db::ItemKind::Short:
        return item.setInteger("integer", static_cast<std::int16_t>(reader.integer(tag)));
    case db::ItemKind::Long:
        return item.setInteger("integer", static_cast<std::int32_t>(reader.integer(tag)));
    case db::ItemKind::Byte:
        return item.setInteger("integer", static_cast<std::uint8_t>(reader.integer(tag)));
    case db::ItemKind::Wide: return item.setInteger("integer", reader.integer(tag));
    }
    return false;
}

bool writeItem(ObjectWriter& writer, const db::RecordView& item, bool isExtended)
{
    const auto code = static_cast<int>(item.integer("code"));
    const auto kind = isExtended ? db::extendedItemKind(code) : db::xrecordItemKind(code);
    // What follows it would be extended data of the record itself.
    constexpr int kApplication = 1001;
    if (!kind || (!isExtended && code == kApplication))
        return false;
    switch (*kind) {
    case db::ItemKind::Text: writer.text(code, item.text("text")); break;
    case db::ItemKind::Real: writer.real(code, item.real("point")); break;
    case db::ItemKind::Brace: writer.raw(code, item.integer("integer") == 0 ? "{" : "}"); break;
    case db::ItemKind::Binary: writer.hex(code, item.bytes("bytes")); break;
    case db::ItemKind::Handle:
        if (code == 1003)
            writer.text(code, writer.nameOf(Table::Layer, item.handle("handle")));
        else
            writer.handle(code, item.handle("handle"));
        break;
    case db::ItemKind::Point:
        if (isPointCode(code, isExtended))
            writer.point(code, item.point("point"), 3, kNextCoordinate);
        else
            return false;
        break;
    default: writer.integer(code, item.integer("integer")); break;
    }
    return true;
}

} // namespace

bool readItem(ObjectReader& reader, db::ArrayEditor items, const Tag& tag, bool isExtended)
{
    if (readCoordinate(reader, items, tag, isExtended))
        return true;
    const auto kind = isExtended ? db::extendedItemKind(tag.code) : db::xrecordItemKind(tag.code);
    if (!kind || (*kind == db::ItemKind::Point && !isPointCode(tag.code, isExtended)))
        return false;
    db::RecordEditor item = items[items.add()];
    item.setInteger("code", tag.code);
    return setValue(reader, item, *kind, tag, isExtended);
}

bool writeItems(ObjectWriter& writer, const db::RecordView& content, bool isExtended)
{
    if (!content.bytes("data").empty())
        return false;
    const db::ArrayView items = content.array("items");
    for (std::uint32_t i = 0; i < items.size(); ++i)
        if (!writeItem(writer, items[i], isExtended))
            return false;
    return true;
}

} // namespace dxf
