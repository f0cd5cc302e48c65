#include <db/tv_db_symbol_table.h>

#include <algorithm>
#include <unordered_set>

TVRX_DEFINE_MEMBERS(TvDbSymbolTableRecord, TvDbObject)
TVRX_DEFINE_MEMBERS(TvDbSymbolTable, TvDbObject)
TVRX_DEFINE_MEMBERS(TvDbLayerTable, TvDbSymbolTable)
TVRX_DEFINE_MEMBERS(TvDbTextStyleTable, TvDbSymbolTable)
TVRX_DEFINE_MEMBERS(TvDbViewTable, TvDbSymbolTable)
TVRX_DEFINE_MEMBERS(TvDbUCSTable, TvDbSymbolTable)
TVRX_DEFINE_MEMBERS(TvDbViewportTable, TvDbSymbolTable)
TVRX_DEFINE_MEMBERS(TvDbRegAppTable, TvDbSymbolTable)
TVRX_DEFINE_MEMBERS(TvDbDimStyleTable, TvDbSymbolTable)
TVRX_DEFINE_MEMBERS(TvDbLinetypeTable, TvDbSymbolTable)
TVRX_DEFINE_MEMBERS(TvDbTextStyleTableRecord, TvDbSymbolTableRecord)
TVRX_DEFINE_MEMBERS(TvDbLinetypeTableRecord, TvDbSymbolTableRecord)
TVRX_DEFINE_MEMBERS(TvDbUCSTableRecord, TvDbSymbolTableRecord)
TVRX_DEFINE_MEMBERS(TvDbViewportTableRecord, TvDbSymbolTableRecord)
TVRX_DEFINE_MEMBERS(TvDbRegAppTableRecord, TvDbSymbolTableRecord)
TVRX_DEFINE_MEMBERS(TvDbDimStyleTableRecord, TvDbSymbolTableRecord)

namespace {

constexpr int kLongestName = 255;
constexpr std::string_view kControlSuffix = "_CONTROL";

std::u16string folded(const TvString& name)
{
    return std::u16string(name.toLower().view());
}

/// The class of the records that the table @p control lists.
std::string_view recordClassOf(const db::Record& control)
{
    const std::string_view name = control.classDef() ? control.classDef()->name() : "";
    if (name == "BLOCK_CONTROL")
        return "BLOCK_HEADER";
    return name.ends_with(kControlSuffix) ? name.substr(0, name.size() - kControlSuffix.size())
                                          : std::string_view();
}

} // namespace

// Records

TvString TvDbSymbolTableRecord::getName() const
{
    return TvString(fields().text("name"));
}

TvStatusCode TvDbSymbolTableRecord::getName(TvString& out) const
{
    out = getName();
    return TvStatus::Ok;
}

TvStatusCode TvDbSymbolTableRecord::setName(const TvString& name)
{
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    if (name.isEmpty() || name.length() > kLongestName)
        return TvStatus::InvalidName;
    const TvDbObjectPointer<TvDbSymbolTable> table(ownerId(), TvDb::kForNotify);
    TvDbObjectId other;
    if (table && table->getIdAt(name, other) == TvStatus::Ok && other != objectId())
        return TvStatus::DuplicateName;
    const TvString before = getName();
    if (!edit().setText("name", name.view()))
        return TvStatus::NotUnderstood;
    if (table)
        table->noteRename(before, name, objectId());
    return TvStatus::Ok;
}

bool TvDbSymbolTableRecord::isDependent() const
{
    return fields().flag("xref_dep") || (fields().integer("xref_index") & 0x100) != 0;
}

void TvDbSymbolTableRecord::subErase(bool erasing)
{
    if (!erasing)
        subReload(); // an erased one need not be forgotten: it is seen when it is found
}

void TvDbSymbolTableRecord::subReload()
{
    if (const TvDbObjectPointer<TvDbSymbolTable> table(ownerId(), TvDb::kForNotify); table)
        table->forgetNames();
}

// Tables

std::vector<TvDbObjectId> TvDbSymbolTable::recordIds() const
{
    std::vector<TvDbObjectId> ids;
    std::unordered_set<TvDbObjectId> seen; // damaged lists name a record twice
    const auto add = [&](std::uint64_t handle) {
        const TvDbObjectId id = idOf(handle);
        if (id.isValid() && seen.insert(id).second)
            ids.push_back(id);
    };
    for (const char* field : extraFields())
        add(fields().handle(field));
    const db::ArrayView entries = fields().array("entries");
    for (std::uint32_t i = 0; i < entries.size(); ++i)
        add(entries.handle(i));
    return ids;
}

TvStatusCode TvDbSymbolTable::getIdAt(const TvString& name, TvDbObjectId& out) const
{
    out.setNull();
    if (!m_isIndexed) {
        m_index.clear();
        for (const TvDbObjectId id : recordIds())
            if (const TvDbObjectPointer<TvDbSymbolTableRecord> record(id, TvDb::kForNotify); record)
                m_index.emplace(folded(record->getName()), id);
        m_isIndexed = true;
    }
    const auto at = m_index.find(folded(name));
    if (at == m_index.end())
        return TvStatus::KeyNotFound;
    if (!at->second.isValid()) {
        m_index.erase(at); // erased since
        return TvStatus::KeyNotFound;
    }
    out = at->second;
    return TvStatus::Ok;
}

bool TvDbSymbolTable::has(const TvString& name) const
{
    TvDbObjectId id;
    return getIdAt(name, id) == TvStatus::Ok;
}

void TvDbSymbolTable::noteRename(const TvString& before, const TvString& after,
                                 TvDbObjectId record) const
{
    if (!m_isIndexed)
        return;
    if (const auto at = m_index.find(folded(before)); at != m_index.end() && at->second == record)
        m_index.erase(at);
    m_index.insert_or_assign(folded(after), record);
}

TvStatusCode TvDbSymbolTable::checkNew(const TvDbSymbolTableRecord& record) const
{
    const db::ClassDef* of = record.record().classDef();
    if (!of || of->name() != recordClassOf(this->record()))
        return TvStatus::NotApplicable;
    if (record.objectId())
        return TvStatus::AlreadyInDatabase;
    const TvString name = record.getName();
    if (name.isEmpty())
        return TvStatus::InvalidName;
    // The viewports of the screen all have one name.
    const bool mayRepeat = of->name() == "VPORT";
    return !mayRepeat && has(name) ? TvStatus::DuplicateName : TvStatus::Ok;
}

TvStatusCode TvDbSymbolTable::add(TvDbObjectId& out, TvDbSymbolTableRecord* record)
{
    out.setNull();
    if (!database())
        return TvStatus::NotInDatabase;
    if (!isWriteEnabled())
        return TvStatus::NotOpenForWrite;
    if (!record)
        return TvStatus::InvalidInput;
    if (const TvStatusCode status = checkNew(*record))
        return status;
    db::ArrayEditor entries = edit().array("entries");
    const std::uint32_t at = entries.add();
    if (at >= entries.size())
        return TvStatus::NotUnderstood;
    // Older files note of every record that it may be referred to.
    if (!db::hasWideText(this->record().version()))
        record->edit().setFlag("xref_ref", true);
    if (const TvStatusCode status = database()->addTvDbObject(out, record, objectId())) {
        edit().array("entries").erase(at);
        return status;
    }
    edit().array("entries").setHandle(at, out.handle().value());
    if (m_isIndexed)
        m_index.insert_or_assign(folded(record->getName()), out);
    return TvStatus::Ok;
}

TvStatusCode TvDbSymbolTable::add(TvDbSymbolTableRecord* record)
{
    TvDbObjectId id;
    return add(id, record);
}

TvStatusCode TvDbSymbolTable::newIterator(TvDbSymbolTableIterator*& out) const
{
    out = new TvDbSymbolTableIterator;
    out->m_ids = recordIds();
    return TvStatus::Ok;
}
