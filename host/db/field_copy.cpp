#include "field_copy.h"

namespace db {

namespace {

void copyElement(const FieldDef& field, const ArrayView& from, ArrayEditor& to, std::uint32_t at)
{
    switch (field.element) {
    case Storage::Integer: to.setInteger(at, from.integer(at)); break;
    case Storage::Real: to.setPoint(at, from.point(at)); break;
    case Storage::Text: to.setText(at, std::u16string(from.text(at))); break;
    case Storage::Handle: to.setHandle(at, from.handle(at)); break;
    case Storage::Struct: copyFields(from[at], to[at], nullptr); break;
    default: break;
    }
}

void copyField(const FieldDef& field, const RecordView& from, RecordEditor& to)
{
    switch (field.storage) {
    case Storage::Integer: to.setInteger(field.id, from.integer(field.id)); break;
    case Storage::Real: to.setPoint(field.id, from.point(field.id)); break;
    case Storage::Text: to.setText(field.id, std::u16string(from.text(field.id))); break;
    case Storage::Handle: to.setHandle(field.id, from.handle(field.id)); break;
    case Storage::Bytes: {
        const std::span<const std::uint8_t> bytes = from.bytes(field.id);
        to.setBytes(field.id, std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
        break;
    }
    case Storage::Bits: break; // of unknown classes only
    case Storage::Struct:
        copyFields(from.structure(field.id), to.structure(field.id), nullptr);
        break;
    case Storage::Array: {
        const ArrayView source = from.array(field.id);
        ArrayEditor target = to.array(field.id);
        target.resize(source.size());
        for (std::uint32_t i = 0; i < source.size(); ++i)
            copyElement(field, source, target, i);
        break;
    }
    }
}

} // namespace

void copyFields(const RecordView& from, RecordEditor to,
                const std::function<bool(std::string_view)>& isLeftOut)
{
    if (!from || !to)
        return;
    // Setting a field may bring about its condition, so what tells conditions is copied once more.
    for (int pass = 0; pass < 2; ++pass)
        for (const FieldDef& field : from.def()->fields)
            if (to.has(field.id) && (pass == 0 || field.storage == Storage::Integer) &&
                !(isLeftOut && isLeftOut(fieldName(field.id))))
                copyField(field, from, to);
}

bool isCommonField(std::string_view name)
{
    static constexpr std::string_view kNames[] = {
        "eed",      "n_reactors",   "xdict_missing", "has_binary", "owner",
        "reactors", "xdict",        "entmode",       "nolinks",    "prev",
        "next",     "has_graphics", "graphics_size", "graphics"};
    for (const std::string_view common : kNames)
        if (name == common)
            return true;
    return false;
}

} // namespace db
