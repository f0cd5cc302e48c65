#include "structure.h"

#include <algorithm>
#include <unordered_set>

#include "block_names.h"
#include "colors.h"
#include "completion.h"
#include "object_reader.h"
#include "tags.h"

namespace dxf {

namespace {

constexpr std::uint32_t kMostMore = 255; // records count them in one byte

} // namespace

base::Result<std::unique_ptr<Structure>> Structure::make(std::string_view text)
{
    std::unique_ptr<Structure> structure(new Structure(text));
    if (base::Status done = structure->build(); !done)
        return done;
    return structure;
}

base::Status Structure::build()
{
    auto index = FileIndex::make(m_text);
    if (!index)
        return index.status();
    m_index = std::move(*index);
    m_context = std::make_unique<FileContext>(m_index.version, m_index.codePage);
    giveHandles();
    nameRecords();
    nameObjects();
    joinBlocks();
    findNamedObjects();
    Completion(*this).run();
    findOwners();
    placeEntities();
    listInserts();
    sortHandles();
    return {};
}

// A handle that is there twice is the first object's; the other one gets a new one.
void Structure::giveHandles()
{
    constexpr std::uint64_t kLargest = std::uint64_t(1) << 56; // leaves room for new ones
    std::unordered_set<std::uint64_t> seen;
    seen.reserve(m_index.entries.size());
    std::uint64_t highest = 0;
    const auto take = [&](std::uint64_t& handle) {
        if (handle >= kLargest)
            handle = 0;
        if (handle != 0 && !seen.insert(handle).second) {
            m_doubles.push_back(handle);
            handle = 0;
        }
        highest = std::max(highest, handle);
        return handle != 0;
    };
    for (Entry& entry : m_index.entries)
        entry.isComplete = take(entry.handle) && entry.isComplete;
    for (TableEntry& table : m_index.tables)
        take(table.handle);
    m_nextHandle = highest + 1;
    if (m_index.handleSeed < kLargest)
        m_nextHandle = std::max(m_nextHandle, m_index.handleSeed);
    for (Entry& entry : m_index.entries)
        if (entry.handle == 0)
            entry.handle = newHandle();
    for (TableEntry& table : m_index.tables)
        if (table.handle == 0)
            table.handle = newHandle();
}

void Structure::nameRecords()
{
    for (const TableFacts& facts : tables()) {
        const TableEntry& table = m_index.tables[static_cast<std::size_t>(facts.table)];
        for (const std::uint32_t at : table.records) {
            Entry& entry = m_index.entries[at];
            entry.owner = table.handle;
            const std::u16string name = decoded(entry.name);
            m_context->names().add(facts.table, entry.name, name, entry.handle);
            const std::u16string folded = foldedName(name);
            if (facts.table == Table::Linetype && folded != u"byblock" && folded != u"bylayer")
                m_context->linetypes().push_back(entry.handle);
            if (facts.table == Table::TextStyle && m_context->shapeStyle() == 0) {
                TagScanner scanner(textOf(entry));
                for (Tag tag; scanner.next(tag);)
                    if (tag.code == 70 && (integerIn(tag.value).value_or(0) & 1) != 0)
                        m_context->setShapeStyle(entry.handle);
            }
        }
    }
}

// Entities tell a colour of a book by its name, which the colour's object has too; the header tells
// the style of multilines so.
void Structure::nameObjects()
{
    for (const Entry& entry : m_index.entries) {
        if (entry.type->name == "MLINESTYLE")
            m_context->names().add(Table::MultilineStyle, entry.name, decoded(entry.name),
                                   entry.handle);
        if (entry.type->name != "DBCOLOR")
            continue;
        TagScanner scanner(textOf(entry));
        for (Tag tag; scanner.next(tag);)
            if (tag.code == 430)
                m_context->names().add(Table::Color, tag.value, decoded(tag.value), entry.handle);
    }
}

// BLOCK_RECORD and BLOCK are one block, told in two places: by handle, else by name.
void Structure::joinBlocks()
{
    const auto& records = m_index.tables[static_cast<std::size_t>(Table::Block)].records;
    std::unordered_map<std::uint64_t, std::uint32_t> recordOf;
    for (const std::uint32_t at : records)
        recordOf.emplace(m_index.entries[at].handle, at);
    for (BlockEntry& block : m_index.blocks) {
        const Entry& begin = m_index.entries[block.begin];
        auto found = recordOf.find(begin.owner);
        if (found == recordOf.end())
            found = recordOf.find(m_context->recordNamed(Table::Block, block.name));
        if (found == recordOf.end())
            continue;
        block.record = found->second;
        recordOf.erase(found);
    }
    for (const std::uint32_t at : records) {
        if (!recordOf.contains(m_index.entries[at].handle))
            continue;
        BlockEntry block;
        block.record = at;
        block.name = m_index.entries[at].name;
        m_index.blocks.push_back(std::move(block));
    }
    for (std::uint32_t at = 0; at < m_index.blocks.size(); ++at) {
        BlockEntry& block = m_index.blocks[at];
        const bool hasRecord = block.record != kNone;
        block.handle = hasRecord ? m_index.entries[block.record].handle : newHandle();
        block.beginHandle = block.begin == kNone ? 0 : m_index.entries[block.begin].handle;
        block.endHandle = block.end == kNone ? 0 : m_index.entries[block.end].handle;
        if (!hasRecord)
            m_context->names().add(Table::Block, block.name, decoded(block.name), block.handle);
        m_blockOfHandle.emplace(block.handle, at);
    }
}

std::uint32_t Structure::blockWithHandle(std::uint64_t handle) const
{
    const auto found = m_blockOfHandle.find(handle);
    return found == m_blockOfHandle.end() ? kNone : found->second;
}

std::int8_t Structure::modeOf(std::uint64_t block) const
{
    return block == m_modelSpace ? 2 : block == m_paperSpace ? 1 : 0;
}

// What the named dictionary has, and where its layouts belong.
void Structure::findNamedObjects()
{
    std::u16string key;
    for (const Entry& entry : m_index.entries) {
        if (entry.section != Section::Objects)
            continue;
        const bool isFirst = m_namedObjects == 0 && entry.type->name == "DICTIONARY";
        if (!isFirst && entry.type->name != "LAYOUT")
            continue;
        if (isFirst)
            m_namedObjects = entry.handle;
        bool isLayoutPart = false;
        TagScanner scanner(textOf(entry));
        for (Tag tag; scanner.next(tag);) {
            if (isFirst && tag.code == 3)
                key = foldedName(decoded(tag.value));
            if (isFirst && (tag.code == 350 || tag.code == 360) && !key.empty())
                m_named.emplace(key, handleIn(tag.value).value_or(0));
            if (tag.code == 100)
                isLayoutPart = tag.value == "AcDbLayout";
            if (!isFirst && isLayoutPart && tag.code == 330) {
                const std::uint32_t block = blockWithHandle(handleIn(tag.value).value_or(0));
                if (block != kNone && m_index.blocks[block].layout == 0)
                    m_index.blocks[block].layout = entry.handle;
            }
        }
    }
}

std::uint64_t Structure::namedObject(std::u16string_view key) const
{
    const auto found = m_named.find(foldedName(key));
    return found == m_named.end() ? 0 : found->second;
}

// Entities are their block's; attributes and vertices, and their end, the insert's or polyline's.
void Structure::findOwners()
{
    for (BlockEntry& block : m_index.blocks) {
        const std::int8_t mode = modeOf(block.handle);
        for (const std::uint32_t at : {block.begin, block.end}) {
            if (at == kNone)
                continue;
            m_index.entries[at].owner = block.handle;
            m_index.entries[at].mode = mode;
        }
        for (std::uint32_t i = 0; i < block.owned.size(); ++i) {
            Entry& entry = m_index.entries[block.owned[i]];
            entry.owner = block.handle;
            entry.mode = mode;
            entry.position = i;
        }
    }
    for (Entry& entry : m_index.entries)
        if (entry.parent != kNone)
            entry.owner = m_index.entries[entry.parent].handle;
}

void Structure::placeEntities()
{
    for (const std::uint32_t at : m_index.entities) {
        const Entry& entry = m_index.entries[at];
        std::uint32_t block = blockWithHandle(entry.owner);
        if (block == kNone)
            block = blockWithHandle(entry.isPaper ? m_paperSpace : m_modelSpace);
        putInto(block, at);
    }
    if (m_index.version != db::Version::Ac1015)
        return;
    m_blockOf.assign(m_index.entries.size(), kNone);
    for (std::uint32_t i = 0; i < m_index.blocks.size(); ++i)
        for (const std::uint32_t at : m_index.blocks[i].owned)
            m_blockOf[at] = i;
}

void Structure::putInto(std::uint32_t block, std::uint32_t at)
{
    Entry& entry = m_index.entries[at];
    BlockEntry& into = m_index.blocks[block];
    entry.owner = into.handle;
    entry.mode = modeOf(into.handle);
    entry.position = static_cast<std::uint32_t>(into.owned.size());
    into.owned.push_back(at);
}

void Structure::listInserts()
{
    for (const Entry& entry : m_index.entries) {
        if (entry.type->family != TypeInfo::Family::Insert)
            continue;
        const std::uint32_t block =
            blockWithHandle(m_context->recordNamed(Table::Block, entry.name));
        if (block != kNone)
            m_index.blocks[block].inserts.push_back(entry.handle);
    }
}

std::pair<std::uint64_t, std::uint64_t> Structure::neighbours(std::uint32_t at) const
{
    const Entry& entry = m_index.entries[at];
    if (entry.parent != kNone) {
        const std::uint32_t first = entry.parent + 1;
        const std::uint32_t last = entry.parent + m_index.entries[entry.parent].children;
        if (at > last) // the end of the sequence
            return {0, 0};
        return {at > first ? m_index.entries[at - 1].handle : 0,
                at < last ? m_index.entries[at + 1].handle : 0};
    }
    if (at >= m_blockOf.size() || m_blockOf[at] == kNone)
        return {0, 0};
    const auto& owned = m_index.blocks[m_blockOf[at]].owned;
    const std::uint32_t position = entry.position;
    return {position > 0 ? m_index.entries[owned[position - 1]].handle : 0,
            position + 1 < owned.size() ? m_index.entries[owned[position + 1]].handle : 0};
}

std::uint64_t Structure::seqendOf(std::uint32_t at) const
{
    const Entry& entry = m_index.entries[at];
    if (entry.seqend != kNone)
        return m_index.entries[entry.seqend].handle;
    const auto made = m_madeSeqends.find(at);
    return made == m_madeSeqends.end() ? 0 : made->second;
}

ObjectPlace Structure::placeOf(const Entry& entry) const
{
    return {entry.handle, entry.owner, entry.mode};
}

// ---- by handle

void Structure::addSource(std::uint64_t handle, Source source)
{
    m_sources.emplace_back(handle, source);
}

// What was made takes the place of what the file has under the same handle.
void Structure::sortHandles()
{
    for (std::uint32_t i = 0; i < m_index.entries.size(); ++i)
        addSource(m_index.entries[i].handle, {Source::Kind::Entry, i});
    for (std::uint32_t i = 0; i < kTableCount; ++i)
        addSource(m_index.tables[i].handle, {Source::Kind::Control, i});
    for (std::uint32_t i = 0; i < m_index.blocks.size(); ++i)
        addSource(m_index.blocks[i].handle, {Source::Kind::Block, i});
    for (std::uint32_t i = 0; i < m_made.size(); ++i)
        addSource(m_made[i].handle(), {Source::Kind::Made, i});
    std::stable_sort(m_sources.begin(), m_sources.end(), [](const auto& a, const auto& b) {
        return a.first != b.first ? a.first < b.first : a.second.kind > b.second.kind;
    });
    const auto end = std::unique(m_sources.begin(), m_sources.end(),
                                 [](const auto& a, const auto& b) { return a.first == b.first; });
    m_sources.erase(end, m_sources.end());
    m_handles.reserve(m_sources.size());
    for (const auto& source : m_sources)
        m_handles.push_back(source.first);
}

std::optional<Structure::Source> Structure::find(std::uint64_t handle) const
{
    // Mostly they are asked for one after the other.
    if (m_lastFound + 1 < m_handles.size() && m_handles[m_lastFound + 1] == handle)
        return m_sources[++m_lastFound].second;
    const auto found = std::lower_bound(m_handles.begin(), m_handles.end(), handle);
    if (found == m_handles.end() || *found != handle)
        return std::nullopt;
    m_lastFound = static_cast<std::size_t>(found - m_handles.begin());
    return m_sources[m_lastFound].second;
}

// What the head of its table tells about a control: what all objects have; of dimension styles,
// those that have more than the others.
db::Record Structure::readHead(Table table) const
{
    const db::ClassDef& classDef = *db::classNamed(factsOf(table).controlClass);
    const TableEntry& told = m_index.tables[static_cast<std::size_t>(table)];
    const std::string_view head = m_text.substr(told.begin, told.end - told.begin);
    db::Record record;
    ObjectReader reader(*m_context);
    if (!reader.read(classDef, head, {told.handle, 0, 0}, record)) {
        record = db::Record(classDef);
        record.setVersion(m_index.version);
        record.setHandle(told.handle);
    }
    if (!record.has("more"))
        return record;
    db::ArrayEditor more = db::RecordEditor(record).array("more");
    TagScanner scanner(head);
    for (Tag tag; scanner.next(tag);)
        if (tag.code == 340 && more.size() < kMostMore)
            more.setHandle(more.add(), handleIn(tag.value).value_or(0));
    return record;
}

db::Record Structure::control(Table table) const
{
    const TableFacts& facts = factsOf(table);
    const TableEntry& told = m_index.tables[static_cast<std::size_t>(table)];
    db::Record record = readHead(table);
    db::RecordEditor control(record);
    db::ArrayEditor entries = control.array("entries");
    const auto add = [&](std::uint64_t handle, std::u16string_view name) {
        const std::u16string folded = foldedName(name);
        if (table == Table::Linetype && folded == u"byblock")
            control.setHandle("byblock", handle);
        else if (table == Table::Linetype && folded == u"bylayer")
            control.setHandle("bylayer", handle);
        else if (table == Table::Block && handle == m_modelSpace)
            control.setHandle("model_space", handle);
        else if (table == Table::Block && handle == m_paperSpace)
            control.setHandle("paper_space", handle);
        else
            entries.setHandle(entries.add(), handle);
    };
    for (const std::uint32_t at : told.records)
        add(m_index.entries[at].handle, decoded(m_index.entries[at].name));
    for (const BlockEntry& block : m_index.blocks)
        if (table == Table::Block && block.record == kNone)
            add(block.handle, {});
    for (const db::Record& made : m_made)
        if (made.classDef()->name() == facts.recordClass && made.handle("owner") == told.handle)
            add(made.handle(), made.text("name"));
    return record;
}

} // namespace dxf
