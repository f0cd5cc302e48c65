// What is known by its name: what is there already stands for what would be copied.

#include "clone.h"

#include "block_names.h"

#include <db/tv_db_dictionary.h>
#include <db/tv_db_symbol_table.h>

namespace db {

namespace {

constexpr int kDeepestDictionary = 32;

std::u16string folded(std::u16string_view name)
{
    return std::u16string(TvString(name).toLower().view());
}

/// The symbol table whose records have that class; none for others.
std::optional<TvDb::SymbolTable> tableOf(std::string_view className)
{
    using TvDb::SymbolTable;
    static constexpr std::pair<std::string_view, SymbolTable> kTables[] = {
        {"BLOCK_HEADER", SymbolTable::Block}, {"LAYER", SymbolTable::Layer},
        {"STYLE", SymbolTable::TextStyle},    {"LTYPE", SymbolTable::Linetype},
        {"VIEW", SymbolTable::View},          {"UCS", SymbolTable::Ucs},
        {"VPORT", SymbolTable::Viewport},     {"APPID", SymbolTable::RegApp},
        {"DIMSTYLE", SymbolTable::DimStyle},
    };
    for (const auto& [name, table] : kTables)
        if (name == className)
            return table;
    return std::nullopt;
}

const ClassDef* classOf(TvDbObjectId id)
{
    const TvDbObjectPointer<TvDbObject> object(id, TvDb::kForNotify);
    return object ? object->record().classDef() : nullptr;
}

} // namespace

bool Clone::isDefault(TvDbObjectId id) const
{
    return m_replacesDefaults && id.handle().value() < m_firstHandle;
}

void Clone::placeRecord(ObjectSlot& slot)
{
    const Record& record = slot.object->record();
    const auto kind = tableOf(record.classDef()->name());
    if (!kind)
        return; // viewports' second records: made anew where they are needed
    const TvDbObjectId tableId = m_to.symbolTableId(*kind);
    const TvDbObjectPointer<TvDbSymbolTable> table(tableId, TvDb::kForNotify);
    if (!table)
        return refuse(TvStatus::NotOpenable, slot);
    if (*kind == TvDb::SymbolTable::Block)
        return placeBlock(slot, *table);
    const TvString name = TvString(record.text("name"));
    TvDbObjectId found;
    if (name.isEmpty() && *kind == TvDb::SymbolTable::TextStyle)
        found = shapeStyle(record);
    else
        table->getIdAt(name, found);
    placeNamed(slot, tableId, name, found);
}

/// Styles that only load a file of shapes have no name; the file tells them apart.
TvDbObjectId Clone::shapeStyle(const Record& record)
{
    const TvDbObjectPointer<TvDbSymbolTable> table(m_to.symbolTableId(TvDb::SymbolTable::TextStyle),
                                                   TvDb::kForNotify);
    if (table)
        for (const TvDbObjectId id : table->recordIds()) {
            const TvDbObjectPointer<TvDbObject> style(id, TvDb::kForNotify);
            if (style && style->fields().text("name").empty() &&
                base::compareNoCase(style->fields().text("font"), record.text("font")) == 0)
                return id;
        }
    return {};
}

void Clone::placeBlock(ObjectSlot& slot, const TvDbSymbolTable& table)
{
    const auto& block = static_cast<const TvDbBlockTableRecord&>(*slot.object);
    const TvString name = block.getName();
    const std::u16string stored = storedBlockName(name.view());
    if (isSpaceName(stored))
        return; // a sheet that was not asked for
    if (!isNumberedBlockName(name.view())) {
        if (!m_forbidden.isEmpty() && m_forbidden.compareNoCase(name) == 0)
            return refuse(TvStatus::InvalidInput, slot);
        TvDbObjectId found;
        table.getIdAt(name, found);
        return placeNamed(slot, table.objectId(), name, found);
    }
    auto& number = m_numbers[stored];
    std::u16string full;
    do
        full = stored + base::utf16FromUtf8(std::to_string(number++));
    while (table.has(TvString(full)));
    m_blockNames[m_nextHandle] = full;
    m_newRecords[table.handle().value()].push_back(addItem(slot, table.handle().value()).target);
}

void Clone::placeNamed(ObjectSlot& slot, TvDbObjectId table, const TvString& name,
                       TvDbObjectId found)
{
    const std::uint64_t owner = table.handle().value();
    // Two of one name, as in damaged drawings, become one.
    const auto [known, isNew] = m_newNames[owner].emplace(
        name.isEmpty() ? folded(slot.object->fields().text("font")) : folded(name.view()),
        m_nextHandle);
    if (!isNew) {
        m_map[slot.handle] = known->second;
        return;
    }
    if (!found.isNull() && !isDefault(found)) {
        m_map[slot.handle] = known->second = found.handle().value();
        return;
    }
    if (!found.isNull()) {
        m_items.push_back({&slot, found.handle().value(), owner, false, false, true, {}});
        m_map[slot.handle] = known->second = found.handle().value();
        return;
    }
    m_newRecords[owner].push_back(addItem(slot, owner).target);
}

// Entries of dictionaries

const std::u16string* Clone::keyOf(ObjectSlot& dictionary, std::uint64_t value)
{
    const auto [at, isNew] = m_keys.try_emplace(&dictionary);
    if (isNew) {
        const Record& record = dictionary.object->record();
        const ArrayView keys = record.array("keys"), values = record.array("values");
        for (std::uint32_t i = 0; i < keys.size(); ++i)
            at->second.emplace(values.handle(i), keys.text(i));
    }
    const auto key = at->second.find(value);
    return key == at->second.end() ? nullptr : &key->second;
}

std::uint64_t Clone::dictionaryFor(ObjectSlot& slot)
{
    // From the named objects down to it.
    std::vector<ObjectSlot*> way;
    const ObjectSlot* root = m_from.namedObjectsDictionaryId().slot();
    for (ObjectSlot* at = &slot; at != root; at = ownerOf(*at)) {
        if (!at || way.size() > kDeepestDictionary)
            return 0;
        way.push_back(at);
    }
    m_map[root->handle] = m_to.namedObjectsDictionaryId().handle().value();
    for (auto at = way.rbegin(); at != way.rend(); ++at)
        if (!m_map.count((*at)->handle)) {
            const std::uint64_t parent = m_map[ownerOf(**at)->handle];
            const std::size_t items = m_items.size();
            placeInDictionary(**at, parent);
            if (m_items.size() > items)
                m_items.back().isShell = true;
            if (!m_map.count((*at)->handle))
                return 0;
        }
    return m_map[slot.handle];
}

void Clone::placeEntry(ObjectSlot& slot)
{
    const std::string_view className = slot.object->record().classDef()->name();
    if (className == "LAYOUT")
        return; // a sheet that was not asked for
    const bool isDictionary = slot.object->fields().has("keys");
    ObjectSlot* owner = isDictionary ? &slot : ownerOf(slot);
    const std::uint64_t dictionary = owner ? dictionaryFor(*owner) : 0;
    if (dictionary != 0 && !isDictionary)
        placeInDictionary(slot, dictionary);
}

/// What stands for the entry in the target's dictionary.
TvDbObjectId Clone::entryLike(ObjectSlot& slot, std::uint64_t dictionary, const std::u16string& key)
{
    const TvDbObjectPointer<TvDbDictionary> there(m_to.find(dictionary), TvDb::kForNotify);
    if (!there)
        return {};
    const Record& record = slot.object->record();
    TvDbObjectId found;
    if (record.classDef()->name() == "SCALE") {
        // Their keys are but numbers; the name stands in the scale.
        for (const auto& [name, id] : there->entries()) {
            const TvDbObjectPointer<TvDbObject> scale(id, TvDb::kForNotify);
            if (scale && scale->fields().text("name") == record.text("name"))
                return id;
        }
        return {};
    }
    there->getAt(TvString(key), found);
    return !found.isNull() && classOf(found) == record.classDef() ? found : TvDbObjectId();
}

std::u16string Clone::freeKey(std::uint64_t dictionary, const std::u16string& key)
{
    const TvDbObjectPointer<TvDbDictionary> there(m_to.find(dictionary), TvDb::kForNotify);
    auto& names = m_newNames[dictionary];
    std::u16string wanted = key;
    for (int number = 1; (there && there->has(TvString(wanted))) || names.count(folded(wanted));
         ++number)
        wanted = key + u"$" + base::utf16FromUtf8(std::to_string(number));
    return wanted;
}

void Clone::placeInDictionary(ObjectSlot& slot, std::uint64_t dictionary)
{
    ObjectSlot* owner = ownerOf(slot);
    if (!owner)
        return;
    const std::u16string* key = keyOf(*owner, slot.handle);
    if (!key) {
        addItem(slot, dictionary); // its dictionary does not list it either
        return;
    }
    const TvDbObjectId found = entryLike(slot, dictionary, *key);
    if (!found.isNull()) {
        const std::uint64_t target = found.handle().value();
        m_map[slot.handle] = target;
        if (isDefault(found) && !slot.object->fields().has("keys"))
            m_items.push_back({&slot, target, dictionary, false, false, true, {}});
        return;
    }
    const std::u16string name = freeKey(dictionary, *key);
    m_newNames[dictionary].emplace(folded(name), m_nextHandle);
    m_newEntries[dictionary].push_back({name, addItem(slot, dictionary).target});
}

} // namespace db
