#include "completion.h"

#include <algorithm>

#include <db/record_editor.h>
#include <db/references.h>

#include "block_names.h"
#include "object_reader.h"

namespace dxf {

Completion::Completion(Structure& structure)
    : m_structure(structure), m_index(structure.m_index),
      m_model(db::makeDefaultDrawing(m_index.version, db::Measurement::Metric))
{
}

void Completion::run()
{
    findSpaces();
    mapTables();
    completeDictionaries();
    completeBlocks();
    completeLayouts();
    completeNames();
    completeSequences();
    addCopies();
}

// ---- the model

const db::Record* Completion::model(Handle handle) const
{
    for (const db::Record& record : m_model.objects)
        if (record.handle() == handle)
            return &record;
    return nullptr;
}

const db::Record* Completion::modelNamed(std::string_view className, std::u16string_view name) const
{
    for (const db::Record& record : m_model.objects)
        if (record.classDef()->name() == className && (name.empty() || record.text("name") == name))
            return &record;
    return nullptr;
}

Completion::Handle Completion::copyLater(const db::Record& record)
{
    const Handle handle = m_structure.newHandle();
    m_map.emplace(record.handle(), handle);
    m_copies.emplace_back(handle, &record);
    return handle;
}

db::Record& Completion::add(db::Record record)
{
    return m_structure.m_made.emplace_back(std::move(record));
}

// Their references lead to what stands in the place of the model's objects.
void Completion::addCopies()
{
    for (const auto& [handle, source] : m_copies) {
        db::Record& copy = add(*source);
        copy.setHandle(handle);
        db::retargetReferences(copy, [&](const db::Reference& reference) {
            const auto known = m_map.find(reference.target);
            return known == m_map.end() ? 0 : known->second;
        });
        if (copy.classDef()->name() == "MLINESTYLE")
            m_structure.m_context->names().add(Table::MultilineStyle, {}, copy.text("name"),
                                               handle);
    }
}

// ---- tables

// Controls have their handles; records that every drawing has are looked for by name.
void Completion::mapTables()
{
    for (const TableFacts& facts : tables()) {
        const Handle control = m_structure.controlHandle(facts.table);
        if (const db::Record* record = modelNamed(facts.controlClass, {}))
            m_map.emplace(record->handle(), control);
        if (facts.table == Table::Block)
            continue;
        for (const db::Record& record : m_model.objects) {
            if (record.classDef()->name() != facts.recordClass)
                continue;
            const std::u16string name(record.text("name"));
            if (const Handle known = m_structure.context().names().find(facts.table, name))
                m_map.emplace(record.handle(), known);
            else
                m_structure.m_context->names().add(facts.table, {}, name, copyLater(record));
        }
    }
}

// Names that objects use and no table has: layers and so on like the first ones.
void Completion::completeNames()
{
    constexpr std::size_t kMost = 65536; // more names than that are not layers of a drawing
    std::size_t count = 0;
    for (const TableFacts& facts : tables()) {
        for (const std::string_view used :
             m_index.usedNames[static_cast<std::size_t>(facts.table)]) {
            if (m_structure.context().recordNamed(facts.table, used) != 0)
                continue;
            std::u16string name = m_structure.decoded(used);
            while (name.ends_with(u' '))
                name.pop_back();
            const db::Record* like = facts.table == Table::Linetype
                                         ? modelNamed("LTYPE", u"Continuous")
                                         : modelNamed(facts.recordClass, {});
            if (name.empty() || !like || ++count > kMost)
                continue;
            const Handle handle = m_structure.newHandle();
            db::Record& record = add(*like);
            record.setHandle(handle);
            db::retargetReferences(record, [&](const db::Reference& reference) {
                const auto known = m_map.find(reference.target);
                return known == m_map.end() ? 0 : known->second;
            });
            db::RecordEditor(record).setText("name", name);
            m_structure.m_context->names().add(facts.table, used, name, handle);
        }
    }
}

// ---- blocks

Completion::Handle Completion::findSpace(std::u16string_view name, std::u16string_view oldName)
{
    const NameTables& names = m_structure.context().names();
    Handle handle = names.find(Table::Block, name);
    if (handle == 0)
        handle = names.find(Table::Block, oldName);
    if (m_structure.blockWithHandle(handle) != kNone)
        return handle;
    BlockEntry block;
    block.handle = m_structure.newHandle();
    block.name = name == u"*Model_Space" ? "*Model_Space" : "*Paper_Space";
    m_structure.m_context->names().add(Table::Block, block.name, name, block.handle);
    m_structure.m_blockOfHandle.emplace(block.handle,
                                        static_cast<std::uint32_t>(m_index.blocks.size()));
    m_index.blocks.push_back(std::move(block));
    return m_index.blocks.back().handle;
}

// Files before 2000 call them otherwise.
void Completion::findSpaces()
{
    m_structure.m_modelSpace = findSpace(u"*Model_Space", u"$MODEL_SPACE");
    m_structure.m_paperSpace = findSpace(u"*Paper_Space", u"$PAPER_SPACE");
    m_map.emplace(modelNamed("BLOCK_HEADER", u"*Model_Space")->handle(), m_structure.m_modelSpace);
    m_map.emplace(modelNamed("BLOCK_HEADER", u"*Paper_Space")->handle(), m_structure.m_paperSpace);
}

void Completion::completeBlocks()
{
    for (BlockEntry& block : m_index.blocks) {
        if (block.beginHandle == 0) {
            block.beginHandle = m_structure.newHandle();
            addEntity("BLOCK", block.beginHandle, block);
        }
        if (block.endHandle == 0) {
            block.endHandle = m_structure.newHandle();
            addEntity("ENDBLK", block.endHandle, block);
        }
    }
}

void Completion::addEntity(std::string_view className, Handle handle, const BlockEntry& block)
{
    db::Record& record = add(db::Record(*db::classNamed(className)));
    record.setVersion(m_index.version);
    record.setHandle(handle);
    db::RecordEditor entity(record);
    const std::int8_t mode = m_structure.modeOf(block.handle);
    if (mode == 0)
        entity.setHandle("owner", block.handle);
    entity.setInteger("entmode", mode);
    entity.setInteger("nolinks", 1);
    entity.setHandle("layer", m_structure.context().names().find(Table::Layer, u"0"));
    if (className == "BLOCK")
        entity.setText("name", m_structure.decoded(block.name));
}

// ---- dictionaries

// A dictionary of the file as a record that can be changed; null when it is none.
db::Record* Completion::dictionary(Handle handle)
{
    const auto known = m_dictionaries.find(handle);
    if (known != m_dictionaries.end())
        return &m_structure.m_made[known->second];
    for (const Entry& entry : m_index.entries) {
        if (entry.handle != handle || !entry.classDef || entry.section != Section::Objects)
            continue;
        db::Record record;
        ObjectReader reader(m_structure.context());
        if (!reader.read(*entry.classDef, m_structure.textOf(entry), m_structure.placeOf(entry),
                         record) ||
            !record.has("keys"))
            return nullptr;
        m_dictionaries.emplace(handle, m_structure.m_made.size());
        return &add(std::move(record));
    }
    return nullptr;
}

Completion::Handle Completion::entryOf(Handle handle, std::u16string_view key) const
{
    for (const Entry& entry : m_index.entries) {
        if (entry.handle != handle || !entry.classDef || entry.section != Section::Objects)
            continue;
        db::Record record;
        ObjectReader reader(m_structure.context());
        if (!reader.read(*entry.classDef, m_structure.textOf(entry), m_structure.placeOf(entry),
                         record))
            return 0;
        const db::ArrayView keys = record.array("keys");
        for (std::uint32_t i = 0; i < keys.size(); ++i)
            if (foldedName(keys.text(i)) == foldedName(key))
                return record.array("values").handle(i);
    }
    return 0;
}

void Completion::addEntry(Handle into, std::u16string_view key, Handle value)
{
    db::Record* record = dictionary(into);
    if (!record)
        return;
    db::RecordEditor edited(*record);
    db::ArrayEditor keys = edited.array("keys");
    const std::uint32_t at = keys.add();
    keys.setText(at, key);
    edited.array("values").setHandle(at, value);
}

// With what is in it.
void Completion::copyDictionary(const db::Record& source)
{
    m_dictionaries.emplace(copyLater(source), SIZE_MAX);
    const db::ArrayView values = source.array("values");
    for (std::uint32_t i = 0; i < values.size(); ++i)
        if (const db::Record* value = model(values.handle(i)))
            if (value->classDef()->name() != "LAYOUT")
                copyLater(*value);
}

// The named dictionary, and in it those that every drawing has.
void Completion::completeDictionaries()
{
    const db::Record& root = *model(m_model.header.handle("DNAMEDOBJ"));
    if (m_structure.m_namedObjects == 0) {
        m_structure.m_namedObjects = m_structure.newHandle();
        db::Record& made = add(db::Record(*db::classNamed("DICTIONARY")));
        made.setVersion(m_index.version);
        made.setHandle(m_structure.m_namedObjects);
        m_dictionaries.emplace(made.handle(), m_structure.m_made.size() - 1);
    }
    m_map.emplace(root.handle(), m_structure.m_namedObjects);
    const db::ArrayView keys = root.array("keys"), values = root.array("values");
    for (std::uint32_t i = 0; i < keys.size(); ++i) {
        const db::Record& source = *model(values.handle(i));
        if (const Handle known = m_structure.namedObject(keys.text(i))) {
            m_map.emplace(source.handle(), known);
            const db::ArrayView inner = source.array("keys");
            for (std::uint32_t k = 0; k < inner.size(); ++k)
                if (const Handle entry = entryOf(known, inner.text(k)))
                    m_map.emplace(source.array("values").handle(k), entry);
            continue;
        }
        copyDictionary(source);
        const Handle handle = m_map.at(source.handle());
        m_structure.m_named.emplace(foldedName(keys.text(i)), handle);
        addEntry(m_structure.m_namedObjects, keys.text(i), handle);
    }
    // What was copied is made at once, since layouts are put into one of them.
    addCopies();
    m_copies.clear();
    for (std::size_t at = 0; at < m_structure.m_made.size(); ++at)
        if (const auto known = m_dictionaries.find(m_structure.m_made[at].handle());
            known != m_dictionaries.end())
            known->second = at;
    if (db::Record* layouts = dictionary(m_structure.namedObject(u"ACAD_LAYOUT"));
        layouts && layouts->array("keys").size() && layouts->array("values").handle(0) == 0)
        db::RecordEditor(*layouts).array("keys").resize(0); // the model's, which are not copied
}

// ---- layouts

void Completion::completeLayouts()
{
    std::int64_t order = 1;
    for (BlockEntry& block : m_index.blocks) {
        const bool isModel = block.handle == m_structure.m_modelSpace;
        const std::u16string name = m_structure.decoded(block.name);
        const std::u16string_view base = baseBlockName(name);
        const bool isPaper =
            block.handle == m_structure.m_paperSpace || foldedName(base) == u"*paper_space";
        if (!isModel && !isPaper)
            continue;
        const std::int64_t place = isModel ? 0 : order++;
        if (block.layout == 0)
            addLayout(block, isModel ? u"Model" : std::u16string(), place);
    }
}

void Completion::addLayout(BlockEntry& block, std::u16string name, std::int64_t order)
{
    const Handle layouts = m_structure.namedObject(u"ACAD_LAYOUT");
    const db::Record* there = dictionary(layouts);
    const db::ArrayView keys = there ? there->array("keys") : db::ArrayView();
    for (std::uint32_t i = 0; m_layoutNames.empty() && i < keys.size(); ++i)
        m_layoutNames.insert(foldedName(keys.text(i)));
    for (std::int64_t number = order; name.empty(); ++number) {
        const TvString candidate = TvString().format(u"Layout%d", number);
        if (!m_layoutNames.contains(foldedName(candidate)))
            name = candidate.view();
    }
    m_layoutNames.insert(foldedName(name));
    db::Record& record = add(*modelNamed("LAYOUT", order == 0 ? u"Model" : u"Layout1"));
    record.setHandle(m_structure.newHandle());
    db::retargetReferences(record, [&](const db::Reference& reference) {
        const auto known = m_map.find(reference.target);
        return known == m_map.end() ? 0 : known->second;
    });
    db::RecordEditor layout(record);
    layout.setText("name", name);
    layout.setInteger("tab_order", order);
    layout.setHandle("block_record", block.handle);
    layout.setHandle("owner", layouts);
    block.layout = record.handle();
    addEntry(layouts, name, record.handle());
}

// ---- sequences

void Completion::completeSequences()
{
    for (std::uint32_t at = 0; at < m_index.entries.size(); ++at) {
        const Entry& entry = m_index.entries[at];
        const bool needsEnd = entry.type->family == TypeInfo::Family::Polyline ||
                              (entry.type->family == TypeInfo::Family::Insert && entry.children);
        if (!needsEnd || entry.seqend != kNone)
            continue;
        db::Record& record = add(db::Record(*db::classNamed("SEQEND")));
        record.setVersion(m_index.version);
        record.setHandle(m_structure.newHandle());
        db::RecordEditor end(record);
        end.setHandle("owner", entry.handle);
        end.setInteger("nolinks", 1);
        end.setHandle("layer", m_structure.context().names().find(Table::Layer, u"0"));
        m_structure.m_madeSeqends.emplace(at, record.handle());
    }
}

} // namespace dxf
