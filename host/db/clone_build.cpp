// The copies' records: references and names of the target, in its version.

#include "clone.h"

#include <unordered_set>

#include "block_names.h"

#include <db/convert.h>
#include <db/entity_chain.h>
#include <db/references.h>
#include <db/tv_db_block_reference.h>

namespace db {

namespace {

/// Extended data of an application that the drawing does not name, as damaged ones have.
void dropHomelessData(RecordEditor record)
{
    ArrayEditor groups = record.array("eed");
    for (std::uint32_t i = groups.size(); i-- > 0;)
        if (groups[i].handle("app") == 0)
            groups.erase(i);
}

bool isInsert(const Record& record)
{
    const std::string_view name = record.classDef()->name();
    return name == "INSERT" || name == "MINSERT";
}

bool isBlock(const Record& record)
{
    return record.classDef()->name() == "BLOCK_HEADER";
}

} // namespace

std::uint64_t Clone::targetOf(std::uint64_t original) const
{
    const auto at = m_map.find(original);
    if (at != m_map.end())
        return at->second;
    return m_isSame && isReal(m_from.impl().find(original)) ? original : 0;
}

void Clone::putOwner(Record& record, std::uint64_t owner) const
{
    const Record& header = m_to.headerRecord();
    const int mode = owner == header.handle("BRMSPACE") && owner != 0   ? 2
                     : owner == header.handle("BRPSPACE") && owner != 0 ? 1
                                                                        : 0;
    RecordEditor edit(record);
    const bool isEntity = record.has("entmode");
    edit.setHandle("owner", isEntity && mode != 0 ? 0 : owner);
    if (isEntity) // behind it: the owner's place brings about its own mode
        edit.setInteger("entmode", mode);
}

void Clone::adapt(Item& item)
{
    Record& record = item.record;
    RecordEditor edit(record);
    const std::string_view name = record.classDef()->name();
    if (item.isShell) {
        edit.array("keys").resize(0);
        edit.setHandle("xdict", 0);
    }
    if (name == "BLOCK_HEADER") {
        edit.array("inserts").resize(0); // made anew from the copies
        edit.setHandle("layout", 0);
        if (const auto full = m_blockNames.find(item.target); full != m_blockNames.end())
            edit.setText("name", storedBlockName(full->second));
    } else if (name == "BLOCK") {
        if (const auto full = m_blockNames.find(item.owner); full != m_blockNames.end())
            edit.setText("name", full->second);
    } else if (isInsert(record) && record.handle("block") != 0) {
        m_inserts[record.handle("block")].push_back(item.target);
    }
    if (name == "VIEWPORT")
        edit.setHandle("vp_ent_hdr", 0); // the table has a record for each of the sheet shown
    if (record.has("has_binary"))
        edit.setFlag("has_binary", false); // pictures that stay where they are
    if (record.has("xdict_missing") && record.handle("xdict") == 0)
        edit.setInteger("xdict_missing", 1);
}

void Clone::buildRecord(Item& item)
{
    Record& record = item.record = item.source->object->record();
    const auto target = [this](std::uint64_t handle) { return targetOf(handle); };
    removeReferences(record, [&](std::uint64_t handle) { return target(handle) == 0; });
    dropHomelessData(RecordEditor(record));
    retargetReferences(record, [&](const Reference& found) { return target(found.target); });
    if (record.version() == Version::Ac1015) {
        // The list is no reference there; it is made a chain when it is saved.
        ArrayEditor list = RecordEditor(record).array(ownedListOf(record.fields()));
        for (std::uint32_t i = 0; i < list.size(); ++i)
            list.setHandle(i, target(list.handle(i)));
    }
    record.setHandle(item.target);
    record.setTypeNumber(record.classDef()->typeNumber());
    record.setPadding({});
    putOwner(record, item.owner);
    adapt(item);
    compact(record);
}

TvStatusCode Clone::convertAll()
{
    const Version version = m_to.impl().version();
    if (m_isSame || m_from.impl().version() == version)
        return TvStatus::Ok;
    Conversion conversion(version);
    conversion.surveyHeader(m_to.headerRecord());
    for (const TvDbObjectId id : {m_to.symbolTableId(TvDb::SymbolTable::Linetype),
                                  m_to.symbolTableId(TvDb::SymbolTable::Block)}) {
        const TvDbObjectPointer<TvDbObject> table(id, TvDb::kForNotify);
        if (table)
            conversion.survey(table->record());
    }
    for (const Item& item : m_items)
        conversion.survey(item.record);
    for (Item& item : m_items)
        if (!conversion.obstacle(item.record).empty() || !conversion.convert(item.record)) {
            refuse(TvStatus::VersionNotWritable, *item.source);
            break;
        }
    return m_status;
}

/// Dictionaries and blocks that are copies, too, are filled before they come into the drawing.
void Clone::fillShells()
{
    for (Item& item : m_items) {
        RecordEditor edit(item.record);
        if (const auto entries = m_newEntries.find(item.target);
            item.isShell && entries != m_newEntries.end()) {
            ArrayEditor keys = edit.array("keys");
            keys.resize(static_cast<std::uint32_t>(entries->second.size()));
            ArrayEditor values = edit.array("values");
            for (std::uint32_t i = 0; i < keys.size(); ++i) {
                keys.setText(i, entries->second[i].key);
                values.setHandle(i, entries->second[i].value);
            }
            m_newEntries.erase(entries);
        }
        const auto inserts = m_inserts.find(item.target);
        if (isBlock(item.record) && !item.takesPlace && inserts != m_inserts.end()) {
            ArrayEditor list = edit.array("inserts");
            list.resize(static_cast<std::uint32_t>(inserts->second.size()));
            for (std::uint32_t i = 0; i < list.size(); ++i)
                list.setHandle(i, inserts->second[i]);
            m_inserts.erase(inserts);
        }
    }
}

/// Whether a block that is there already, and is now shown in the space, shows the space.
bool Clone::holdsItself() const
{
    std::vector<std::uint64_t> blocks;
    std::unordered_set<std::uint64_t> seen;
    for (const auto& [block, references] : m_inserts)
        if (seen.insert(block).second)
            blocks.push_back(block);
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        if (blocks[i] == m_space)
            return true;
        const TvDbObjectPointer<TvDbBlockTableRecord> block(m_to.find(blocks[i]), TvDb::kForNotify);
        if (!block)
            continue;
        for (const TvDbObjectId id : block->entityIds()) {
            const TvDbObjectPointer<TvDbBlockReference> reference(id, TvDb::kForNotify);
            const TvDbObjectId shown = reference ? reference->blockTableRecord() : TvDbObjectId();
            if (shown && seen.insert(shown.handle().value()).second)
                blocks.push_back(shown.handle().value());
        }
    }
    return false;
}

TvStatusCode Clone::build()
{
    for (Item& item : m_items)
        buildRecord(item);
    if (convertAll() != TvStatus::Ok)
        return m_status;
    fillShells();
    if (holdsItself()) {
        m_status = TvStatus::InvalidInput;
        return m_status;
    }
    if (!isWritable())
        m_status = TvStatus::NotUnderstood;
    return m_status;
}

} // namespace db
