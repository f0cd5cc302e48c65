// Dictionaries, xrecords, viewports, styles of multilines.

#include <algorithm>

#include "hook_lists.h"
#include "item_list.h"
#include "object_writer.h"

namespace dxf {

namespace {

// ---- dictionaries: 350 or 360 by who owns the entries

const db::FieldId kKeys = db::fieldId("keys"), kValues = db::fieldId("values"),
                  kContent = db::fieldId("content"), kItems = db::fieldId("items");

bool readEntry(ObjectReader& reader, const Tag& tag)
{
    db::ArrayEditor keys = reader.root().array(kKeys);
    if (tag.code == 3) {
        const std::u16string& key = reader.text(tag);
        const std::uint32_t at = keys.add();
        if (!keys.setText(at, key))
            reader.refuse();
        return true;
    }
    if (keys.size() == 0)
        return false;
    return reader.root().array(kValues).setHandle(keys.size() - 1, reader.handle(tag));
}

void writeEntries(ObjectWriter& writer)
{
    const db::ArrayView keys = writer.root().array(kKeys), values = writer.root().array(kValues);
    const int code = writer.root().flag("hard_owner") ? 360 : 350;
    for (std::uint32_t i = 0; i < keys.size(); ++i) {
        writer.text(3, keys.text(i));
        writer.handle(code, values.handle(i));
    }
}

// ---- xrecords

bool readXrecord(ObjectReader& reader, const Tag& tag)
{
    return readItem(reader, reader.root().structure(kContent).array(kItems), tag, false);
}

void writeXrecord(ObjectWriter& writer)
{
    if (!writeItems(writer, writer.root().structure(kContent), false))
        writer.refuse();
}

// ---- viewports: stacking order and number follow from the layout

constexpr std::int64_t kIsOff = 0x20000;

bool readViewportIds(ObjectReader&, const Tag&)
{
    return true;
}

void writeViewportIds(ObjectWriter& writer)
{
    const auto& numbers = writer.source().viewportNumbers;
    const auto known = numbers.find(writer.record().handle());
    const int number = known == numbers.end() ? 1 : known->second;
    writer.integer(68, writer.root().integer("status") & kIsOff ? 0 : number);
    writer.integer(69, number);
}

// ---- multilines

constexpr std::int64_t kByLayerIndex = 32767, kByBlockIndex = 32766;

bool readMultilineLinetype(ObjectReader& reader, const Tag& tag)
{
    const std::uint64_t linetype = reader.named(Table::Linetype, tag.value);
    if (reader.version() >= db::Version::Ac1032)
        return linetype != 0 && reader.frame().setHandle("ltype", linetype);
    const std::u16string name = foldedName(reader.text(tag));
    const auto& all = reader.context().linetypes();
    const auto found = std::find(all.begin(), all.end(), linetype);
    if (name == u"bylayer" || name == u"byblock")
        return reader.frame().setInteger("ltype_index",
                                         name == u"bylayer" ? kByLayerIndex : kByBlockIndex);
    return found != all.end() && reader.frame().setInteger("ltype_index", found - all.begin());
}

void writeMultilineLinetype(ObjectWriter& writer)
{
    if (writer.record().version() >= db::Version::Ac1032) {
        const std::u16string name = writer.nameOf(Table::Linetype, writer.frame().handle("ltype"));
        return writer.text(6, name.empty() ? u"ByLayer" : name);
    }
    const std::int64_t index = writer.frame().integer("ltype_index");
    const auto& all = writer.source().linetypes;
    if (index == kByBlockIndex)
        return writer.raw(6, "ByBlock");
    if (index < 0 || index >= static_cast<std::int64_t>(all.size()))
        return writer.raw(6, "ByLayer");
    writer.text(6, writer.nameOf(Table::Linetype, all[static_cast<std::size_t>(index)]));
}

bool readMultilineStyle(ObjectReader&, const Tag&)
{
    return true; // the handle tells it
}

void writeMultilineStyle(ObjectWriter& writer)
{
    const db::Record* style = writer.source().record(writer.root().handle("style"));
    writer.text(2, style ? style->text("name") : u"Standard");
}

constexpr Hook kHooks[] = {
    {"dictionary", readEntry, writeEntries},
    {.name = "xrecord", .read = readXrecord, .write = writeXrecord, .takesAll = true},
    {"viewport_ids", readViewportIds, writeViewportIds},
    {"multiline_ltype", readMultilineLinetype, writeMultilineLinetype},
    {"mline_style", readMultilineStyle, writeMultilineStyle},
};

} // namespace

std::span<const Hook> objectHooks()
{
    return kHooks;
}

} // namespace dxf
