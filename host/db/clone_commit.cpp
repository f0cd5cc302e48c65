// What was prepared comes into the drawing.

#include "clone.h"

#include <algorithm>

#include "new_object.h"
#include "quiet_edit.h"

#include <db/tv_db_dictionary.h>
#include <db/tv_db_symbol_table.h>

namespace db {

bool Clone::isWritable() const
{
    // What is not there yet is made by whoever asked for the copy.
    const auto isFit = [this](std::uint64_t handle) {
        const TvDbObjectId id = m_to.find(handle);
        return id.isNull() || isChangeable(id);
    };
    const auto areFit = [&](const auto& places) {
        return std::all_of(places.begin(), places.end(),
                           [&](const auto& place) { return isFit(place.first); });
    };
    return isFit(m_space) && areFit(m_newRecords) && areFit(m_newEntries) && areFit(m_inserts) &&
           std::all_of(m_items.begin(), m_items.end(),
                       [&](const Item& item) { return !item.takesPlace || isFit(item.target); });
}

void Clone::takePlace(Item& item)
{
    TvDbObject* object = nullptr;
    if (tvdbOpenTvDbObject(object, m_to.find(item.target), TvDb::kForNotify) != TvStatus::Ok)
        return;
    m_to.impl().aboutToChange(*object);
    ObjectAccess::record(*object) = std::move(item.record);
    ObjectAccess::isModified(*object) = false; // nobody has it open
    ObjectAccess::subReload(*object);
    object->close();
}

void Clone::appendItems()
{
    std::vector<TvDbObject*> added;
    for (Item& item : m_items) {
        if (item.takesPlace) {
            takePlace(item);
            continue;
        }
        std::unique_ptr<TvDbObject> object = newObject(*item.record.classDef());
        ObjectAccess::record(*object) = std::move(item.record);
        added.push_back(object.get());
        m_to.impl().append(object.release());
    }
    for (TvDbObject* object : added) {
        for (TvDbDatabaseReactor* reactor : m_to.impl().reactors())
            reactor->objectAppended(&m_to, object);
        object->close();
    }
}

namespace {

void appendHandles(ArrayEditor list, const std::vector<std::uint64_t>& handles)
{
    const std::uint32_t before = list.size();
    list.resize(before + static_cast<std::uint32_t>(handles.size()));
    for (std::uint32_t i = 0; i < handles.size(); ++i)
        list.setHandle(before + i, handles[i]);
}

} // namespace

void Clone::fillTables()
{
    for (const auto& [table, records] : m_newRecords) {
        const TvDbObjectId id = m_to.find(table);
        if (QuietEdit edit(id); edit)
            appendHandles(edit->array("entries"), records);
        ObjectAccess::subReload(*id.slot()->object);
    }
    for (const auto& [block, references] : m_inserts)
        if (QuietEdit edit(m_to.find(block)); edit)
            appendHandles(edit->array("inserts"), references);
}

void Clone::fillDictionaries()
{
    const auto byName = [](const NewEntry& a, const NewEntry& b) {
        return base::compareNoCase(a.key, b.key) < 0;
    };
    for (auto& [dictionary, added] : m_newEntries) {
        const TvDbObjectId id = m_to.find(dictionary);
        QuietEdit edit(id);
        if (!edit)
            continue;
        ArrayEditor keys = edit->array("keys"), values = edit->array("values");
        std::vector<NewEntry> all;
        for (std::uint32_t i = 0; i < keys.size(); ++i)
            all.push_back({std::u16string(keys.text(i)), values.handle(i)});
        std::sort(added.begin(), added.end(), byName);
        const auto middle = static_cast<std::ptrdiff_t>(all.size());
        const bool inOrder = std::is_sorted(all.begin(), all.end(), byName);
        all.insert(all.end(), added.begin(), added.end());
        if (inOrder) // otherwise they stand behind those that are there
            std::inplace_merge(all.begin(), all.begin() + middle, all.end(), byName);
        keys.resize(static_cast<std::uint32_t>(all.size()));
        values = edit->array("values");
        for (std::uint32_t i = 0; i < all.size(); ++i) {
            keys.setText(i, all[i].key);
            values.setHandle(i, all[i].value);
        }
        ObjectAccess::subReload(*id.slot()->object);
    }
}

void Clone::fillSpace()
{
    QuietEdit block(m_to.find(m_space));
    if (!block)
        return;
    appendHandles(block->array("owned"), m_standing);
    bool hasDefinitions = block->flag("has_attdefs");
    for (const std::uint64_t handle : m_standing) {
        const TvDbObject& entity = *m_to.find(handle).slot()->object;
        hasDefinitions |= entity.record().classDef()->name() == "ATTDEF";
    }
    block->setFlag("has_attdefs", hasDefinitions);
    for (const Item& item : m_items) // the block's own extension dictionary
        if (item.owner == m_space && item.source->object->record().has("keys")) {
            block->setInteger("xdict_missing", 0);
            block->setHandle("xdict", item.target);
        }
}

void Clone::fillMapping(TvDbIdMapping& mapping) const
{
    mapping.m_from = &m_from;
    mapping.m_to = &m_to;
    mapping.m_entries.clear();
    mapping.m_places.clear();
    const auto add = [&](TvDbIdMapping::Entry entry) {
        if (mapping.m_places.emplace(entry.key, mapping.m_entries.size()).second)
            mapping.m_entries.push_back(entry);
    };
    for (const Item& item : m_items)
        add({TvDbObjectId(item.source), m_to.find(item.target), !item.takesPlace, item.isPrimary});
    for (const auto& [original, target] : m_map)
        add({m_from.find(original), m_to.find(target), false, false});
}

void Clone::commit(TvDbIdMapping* mapping)
{
    appendItems();
    fillTables();
    fillDictionaries();
    fillSpace();
    if (mapping)
        fillMapping(*mapping);
}

} // namespace db
