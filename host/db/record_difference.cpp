#include <unordered_map>
#include <unordered_set>

#include "change_log.h"

#include <db/record_editor.h>

namespace db {

namespace {

bool sameText(const ArrayView& keys, std::uint32_t index, std::u16string_view text)
{
    return keys.text(index) == text;
}

using Entries = std::unordered_map<std::u16string, std::uint64_t>;

Entries entriesOf(const Record& dictionary)
{
    Entries entries;
    const ArrayView keys = dictionary.array("keys"), values = dictionary.array("values");
    for (std::uint32_t i = 0; i < keys.size(); ++i)
        entries.emplace(std::u16string(keys.text(i)), values.handle(i));
    return entries;
}

/// Entries that came, went or lead elsewhere.
void applyToEntries(const Record& before, const Record& now, Record& image)
{
    const Entries old = entriesOf(before), fresh = entriesOf(now);
    RecordEditor edit(image);
    ArrayEditor keys = edit.array("keys");
    ArrayEditor values = edit.array("values");
    for (std::uint32_t i = keys.size(); i-- > 0;) {
        const std::u16string key(keys.text(i));
        if (old.count(key) && !fresh.count(key))
            keys.erase(i);
    }
    const ArrayView order = now.array("keys");
    for (std::uint32_t i = 0; i < order.size(); ++i) {
        const std::u16string key(order.text(i));
        const auto was = old.find(key);
        const std::uint64_t target = fresh.at(key);
        if (was != old.end() && was->second == target)
            continue;
        std::uint32_t at = 0;
        while (at < keys.size() && !sameText(keys, at, key))
            ++at;
        if (at == keys.size()) {
            at = keys.add();
            keys.setText(at, key);
        }
        values = edit.array("values");
        values.setHandle(at, target);
    }
}

/// References that came or went, in a list that has no order to speak of but its own.
void applyToHandles(const ArrayView& old, const ArrayView& fresh, ArrayEditor image)
{
    std::unordered_set<std::uint64_t> was, is;
    for (std::uint32_t i = 0; i < old.size(); ++i)
        was.insert(old.handle(i));
    for (std::uint32_t i = 0; i < fresh.size(); ++i)
        is.insert(fresh.handle(i));
    for (std::uint32_t i = image.size(); i-- > 0;)
        if (was.count(image.handle(i)) && !is.count(image.handle(i)))
            image.erase(i);
    for (std::uint32_t i = 0; i < fresh.size(); ++i)
        if (!was.count(fresh.handle(i))) {
            const std::uint32_t at = image.add();
            image.setHandle(at, fresh.handle(i));
        }
}

void applyToFields(const RecordView& before, const RecordView& now, RecordEditor image);

void applyToField(const FieldDef& field, const RecordView& before, const RecordView& now,
                  RecordEditor& image)
{
    const FieldId id = field.id;
    switch (field.storage) {
    case Storage::Integer:
        if (before.integer(id) != now.integer(id))
            image.setInteger(id, now.integer(id));
        break;
    case Storage::Real:
        if (field.width == 1) {
            if (before.real(id) != now.real(id))
                image.setReal(id, now.real(id));
        } else if (!(before.point(id) == now.point(id))) {
            image.setPoint(id, now.point(id));
        }
        break;
    case Storage::Handle:
        if (before.handle(id) != now.handle(id))
            image.setHandle(id, now.handle(id));
        break;
    case Storage::Text:
        if (before.text(id) != now.text(id))
            image.setText(id, std::u16string(now.text(id)));
        break;
    case Storage::Array:
        if (field.element == Storage::Handle)
            applyToHandles(before.array(id), now.array(id), image.array(id));
        break;
    case Storage::Struct:
        applyToFields(before.structure(id), now.structure(id), image.structure(id));
        break;
    default: break;
    }
}

void applyToFields(const RecordView& before, const RecordView& now, RecordEditor image)
{
    if (!now.def() || !image)
        return;
    std::unordered_set<FieldId> counts; // they follow their arrays
    for (const FieldDef& field : now.def()->fields)
        if (field.storage == Storage::Array)
            counts.insert(field.count);
    for (const FieldDef& field : now.def()->fields)
        if (!counts.count(field.id))
            applyToField(field, before, now, image);
}

} // namespace

void applyDifference(const Record& before, const Record& now, Record& image)
{
    if (!image.classDef() || image.classDef() != now.classDef())
        return;
    if (before.has("keys") && before.has("values"))
        return applyToEntries(before, now, image);
    applyToFields(before.fields(), now.fields(), RecordEditor(image));
}

} // namespace db
