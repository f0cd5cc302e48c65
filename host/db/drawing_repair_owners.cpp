#include <algorithm>

#include <db/entity_chain.h>

#include "block_names.h"
#include "drawing_repairer.h"

namespace db {

namespace {

bool isTable(const AuditedObject& object)
{
    return object.classDef && object.classDef->kind() == ClassKind::Control;
}

bool isBlock(const AuditedObject& object)
{
    return object.classDef && object.classDef->name() == "BLOCK_HEADER";
}

FieldId listFieldOf(const Record& owner)
{
    static const FieldId kEntries = fieldId("entries");
    return owner.classDef()->kind() == ClassKind::Control ? kEntries : ownedListOf(owner.fields());
}

/// Records that a table names beside its list.
bool isNamedBeside(const Record& table, std::uint64_t handle)
{
    for (const char* field : {"model_space", "paper_space", "byblock", "bylayer"})
        if (table.fields().has(field) && table.handle(field) == handle)
            return true;
    return false;
}

/// Whether entities of that class are members of such an owner's list.
bool isMemberClass(const AuditedObject& owner, const AuditedObject& member)
{
    const std::string_view of = owner.classDef->name(), name = member.classDef->name();
    if (of == "BLOCK_HEADER")
        return member.isEntity && canStandInBlock(member.classDef);
    if (of == "INSERT" || of == "MINSERT")
        return name == "ATTRIB";
    return of.starts_with("POLYLINE") && name.starts_with("VERTEX");
}

} // namespace

void DrawingRepairer::noteListers()
{
    for (const OwnedList& list : m_audit.m_lists) {
        for (const std::uint64_t member : list.members)
            m_listers[member].push_back(&list);
        if (list.kind == ListKind::Block)
            m_entitiesOf.emplace(list.owner, &list);
    }
}

// --- lists

void DrawingRepairer::repairLists()
{
    for (const std::uint64_t handle : about(DrawingRule::ListedTwice))
        m_twice.insert(find(handle)->listedBy);
    repairTableMembers();
}

void DrawingRepairer::repairTableMembers()
{
    for (const std::uint64_t handle : about(DrawingRule::NotOfTheTable)) {
        const AuditedObject& object = *find(handle);
        if (object.classDef->kind() != ClassKind::Table)
            continue;
        const std::uint64_t right = tableOf(object.classDef->name());
        bool isListedThere = false;
        for (const OwnedList* list : m_listers[handle])
            isListedThere |= list->owner == right;
        if (right == 0 || (!isListedThere && !joinTable(object)))
            continue;
        for (const OwnedList* list : m_listers[handle])
            if (list->kind == ListKind::Table && list->owner != right)
                m_remove[list->owner].insert(handle);
        if (object.owner != right)
            setOwner(handle, right);
    }
}

std::uint64_t DrawingRepairer::tableOf(std::string_view recordClass) const
{
    for (const RequiredTable& table : kRequiredTables) {
        const std::uint64_t handle = m_impl.header().handle(table.variable);
        if (recordClassOf(table.className) == recordClass && isOfClass(handle, table.className))
            return handle;
    }
    return 0;
}

void DrawingRepairer::applyLists()
{
    std::set<std::uint64_t> owners = std::exchange(m_twice, {});
    const std::set<std::uint64_t> unique = owners;
    const auto remove = std::exchange(m_remove, {});
    const auto append = std::exchange(m_append, {});
    for (const auto& [owner, members] : remove)
        owners.insert(owner);
    for (const auto& [owner, members] : append)
        owners.insert(owner);
    for (const std::uint64_t owner : owners) {
        const Record* record = look(owner);
        const FieldId field = record ? listFieldOf(*record) : FieldId::None;
        if (field == FieldId::None)
            continue;
        const auto out = remove.find(owner);
        std::unordered_set<std::uint64_t> seen;
        Handles members;
        const auto take = [&](std::uint64_t member) {
            const bool isOut = out != remove.end() && out->second.count(member) > 0;
            const bool isDouble = unique.count(owner) > 0 && isNamedBeside(*record, member);
            if (!isOut && !isDouble && (seen.insert(member).second || member == 0))
                members.push_back(member);
        };
        const ArrayView list = record->array(field);
        for (std::uint32_t i = 0; i < list.size(); ++i)
            take(list.handle(i));
        if (const auto more = append.find(owner); more != append.end())
            std::for_each(more->second.begin(), more->second.end(), take);
        change(owner, [&](RecordEditor edit) {
            ArrayEditor array = edit.array(field);
            if (!array.resize(static_cast<std::uint32_t>(members.size())))
                return false;
            for (std::uint32_t i = 0; i < members.size(); ++i)
                array.setHandle(i, members[i]);
            return true;
        });
    }
    for (const auto& [dictionary, entries] : std::exchange(m_entries, {}))
        addEntries(dictionary, entries);
}

void DrawingRepairer::addEntries(std::uint64_t dictionary,
                                 const std::map<std::uint64_t, TvString>& entries)
{
    change(dictionary, [&](RecordEditor edit) {
        ArrayEditor keys = edit.array("keys");
        const std::uint32_t before = keys.size();
        FreeNames names;
        for (std::uint32_t i = 0; i < before; ++i)
            names.take(TvString(keys.text(i)));
        if (!keys.resize(before + static_cast<std::uint32_t>(entries.size())))
            return false;
        ArrayEditor values = edit.array("values");
        std::uint32_t at = before;
        for (const auto& [handle, name] : entries) {
            edit.array("keys").setText(at, names.make(name).view());
            values.setHandle(at++, handle);
        }
        return true;
    });
}

// --- owners

void DrawingRepairer::repairOwners()
{
    for (const DrawingRule rule : {DrawingRule::OwnersInARing, DrawingRule::OwnerMissing,
                                   DrawingRule::OwnerNone, DrawingRule::NotListed})
        for (const std::uint64_t handle : about(rule))
            repairOwner(handle, true);
    for (const std::uint64_t handle : about(DrawingRule::ListedByAnother))
        repairOwner(handle, false);
}

bool DrawingRepairer::mayTakeOwner(const AuditedObject& object, const OwnedList& list) const
{
    const AuditedObject* owner = find(list.owner);
    if (!owner || !owner->classDef)
        return false;
    if (list.kind == ListKind::Table)
        return object.classDef->name() == recordClassOf(owner->classDef->name());
    return list.kind != ListKind::Block || isMemberClass(*owner, object);
}

void DrawingRepairer::repairOwner(std::uint64_t handle, bool mayFollowDictionary)
{
    const AuditedObject* object = find(handle);
    if (!object || !object->classDef || object->isRaw || m_placed.count(handle) > 0)
        return;
    const OwnedList *strict = nullptr, *loose = nullptr;
    std::set<std::uint64_t> stricts, looses;
    bool isListedRight = false;
    for (const OwnedList* list : m_listers[handle]) {
        const bool isLoose = list->kind == ListKind::Dictionary;
        if (!isLoose && !mayTakeOwner(*object, *list))
            continue;
        isListedRight |= !isLoose && list->owner == object->owner;
        (isLoose ? looses : stricts).insert(list->owner);
        (isLoose ? loose : strict) = list;
    }
    if (isListedRight) {
        // Several claim it; it says whose it is.
        for (const OwnedList* list : m_listers[handle])
            if (list->owner != object->owner &&
                (list->kind == ListKind::Table || list->kind == ListKind::Block))
                m_remove[list->owner].insert(handle);
        return;
    }
    if (stricts.size() == 1)
        return setOwner(handle, strict->owner);
    if (!stricts.empty())
        return;
    if (looses.size() == 1 && mayFollowDictionary)
        return loose->owner == object->owner ? void() : setOwner(handle, loose->owner);
    if (looses.empty() && !joinOwner(*object) && isMissing(object->owner) && object->isEntity &&
        canStandInBlock(object->classDef) && m_placed.insert(handle).second)
        m_lost[object->owner].push_back(handle);
}

void DrawingRepairer::setOwner(std::uint64_t handle, std::uint64_t owner)
{
    if (!m_placed.insert(handle).second)
        return;
    const AuditedObject* to = find(owner);
    const bool isInBlock = to && isBlock(*to) && find(handle)->isEntity;
    change(handle, [&](RecordEditor edit) {
        if (isInBlock)
            return placeInBlock(edit, m_database.find(owner)), true;
        return edit.setHandle("owner", owner);
    });
}

/// Puts it into the list of the owner that it names, or into the one that its class belongs to.
bool DrawingRepairer::joinOwner(const AuditedObject& object)
{
    const AuditedObject* owner = find(object.owner);
    if (!owner || owner->isRaw || !owner->classDef)
        return object.classDef->kind() == ClassKind::Table && isMissing(object.owner) &&
               joinTable(object);
    if (isTable(*owner))
        return recordClassOf(owner->classDef->name()) == object.classDef->name() &&
               joinTable(object);
    if (isBlock(*owner) && isMemberClass(*owner, object)) {
        if (m_placed.insert(object.handle).second)
            m_append[object.owner].push_back(object.handle);
        return true;
    }
    if (!isDictionary(owner->classDef->name()) || owner->handle == object.handle)
        return false;
    const TvString name = ownNameOf(object.handle);
    if (!name.isEmpty() && m_placed.insert(object.handle).second)
        m_entries[object.owner].emplace(object.handle, name);
    return !name.isEmpty();
}

/// The key of an object that the header knows by, or that keeps it itself; else empty.
TvString DrawingRepairer::ownNameOf(std::uint64_t handle)
{
    if (const TvString known = keyByHeader(handle); !known.isEmpty())
        return known;
    const Record* record = look(handle);
    const bool isNamed = isOfClass(handle, "LAYOUT") || isOfClass(handle, "MLINESTYLE") ||
                         isOfClass(handle, "MATERIAL") || isOfClass(handle, "SCALE");
    return record && isNamed ? TvString(record->text("name")) : TvString();
}

bool DrawingRepairer::joinTable(const AuditedObject& object)
{
    const std::uint64_t table = tableOf(object.classDef->name());
    if (table == 0 || !m_placed.insert(object.handle).second)
        return false;
    m_append[table].push_back(object.handle);
    if (object.owner != table)
        change(object.handle, [&](RecordEditor edit) { return edit.setHandle("owner", table); });
    return true;
}

/// What stood in a block that is gone stands in one of its own from then on.
void DrawingRepairer::recoverEntities()
{
    const auto lost = std::exchange(m_lost, {});
    for (const auto& [owner, members] : lost) {
        Handles editable;
        std::copy_if(members.begin(), members.end(), std::back_inserter(editable),
                     [&](std::uint64_t each) { return isChangeable(m_database.find(each)); });
        TvDbObjectPointer<TvDbBlockTable> table(m_database.symbolTableId(TvDb::SymbolTable::Block),
                                                TvDb::kForWrite);
        if (editable.empty() || !table)
            continue;
        const TvString wanted = u"Recovered-" + base::hexText(owner);
        TvString name = wanted;
        for (int number = 2; table->has(name); ++number)
            name = wanted + TvString().format(u"-%d", number);
        auto block = std::make_unique<TvDbBlockTableRecord>();
        TvDbObjectId id;
        if (block->setName(name) != TvStatus::Ok || table->add(id, block.get()) != TvStatus::Ok)
            continue;
        block.release()->close(); // the drawing's now
        for (const std::uint64_t handle : editable)
            change(handle, [&](RecordEditor edit) { return placeInBlock(edit, id), true; });
        takeEnds(id, owner);
        m_append[id.handle().value()] = editable;
        applyLists();
    }
}

/// What began and ended the block that is gone does so for the one in its place.
void DrawingRepairer::takeEnds(TvDbObjectId block, std::uint64_t formerOwner)
{
    for (const std::uint64_t handle : about(DrawingRule::OwnerMissing)) {
        const AuditedObject& end = *find(handle);
        const bool isBegin = isOfClass(handle, "BLOCK");
        if (end.owner != formerOwner || (!isBegin && !isOfClass(handle, "ENDBLK")))
            continue;
        const char* field = isBegin ? "block_entity" : "endblk_entity";
        const Record& record = *look(block.handle().value());
        const std::uint64_t own = record.handle(field);
        const TvString name(record.text("name"));
        const bool isTaken = change(handle, [&](RecordEditor edit) {
            if (isBegin)
                edit.setText("name", name.view());
            return placeInBlock(edit, block), true;
        });
        if (!isTaken)
            continue;
        change(block.handle().value(),
               [&](RecordEditor edit) { return edit.setHandle(field, handle); });
        if (const TvDbObjectPointer<TvDbObject> surplus(m_database.find(own), TvDb::kForWrite);
            surplus)
            surplus->erase();
    }
}

// --- chains

/// Whether all of them can be given other neighbours at a save.
bool DrawingRepairer::isChainChangeable(std::uint64_t owner, const Handles& members)
{
    const AuditedObject* block = find(owner);
    if (!block || block->isRaw)
        return false;
    return std::all_of(members.begin(), members.end(), [&](std::uint64_t each) {
        const AuditedObject* member = find(each);
        return member && !member->isRaw;
    });
}

void DrawingRepairer::repairChains()
{
    std::map<std::uint64_t, Handles> members; // of broken chains: what they do not come to
    for (const std::uint64_t owner : about(DrawingRule::ChainBroken))
        members[owner];
    if (!members.empty())
        for (const AuditedObject& object : m_audit.m_objects)
            if (const auto at = members.find(object.owner);
                at != members.end() && object.listedBy == 0 && object.classDef &&
                find(object.owner)->classDef && isMemberClass(*find(object.owner), object))
                at->second.push_back(object.handle);
    for (auto& [owner, rest] : members) {
        ObjectSlot* slot = m_impl.find(owner);
        Handles known = rest;
        if (const auto list = m_entitiesOf.find(owner); list != m_entitiesOf.end())
            known.insert(known.end(), list->second->members.begin(), list->second->members.end());
        if (!slot || m_impl.load(*slot) != TvStatus::Ok || !isChainChangeable(owner, known))
            continue;
        slot->editable = ObjectSlot::Editable::Unknown; // nothing is lost once the list is whole
        if (!m_impl.isEditable(*slot))
            continue;
        // Not to be undone: with half a list the next save would lose the other half.
        m_impl.log().setRecording(false);
        m_placed.insert(rest.begin(), rest.end());
        const auto before = std::exchange(m_append, {{owner, rest}});
        applyLists();
        m_append = before;
        m_impl.log().setRecording(true);
    }
    std::set<std::uint64_t> owners;
    for (const std::uint64_t handle : about(DrawingRule::ChainDisagrees))
        owners.insert(find(handle)->owner);
    for (const OwnedList& list : m_audit.m_lists)
        if (list.isChained && owners.count(list.owner) > 0 && members.count(list.owner) == 0 &&
            isChainChangeable(list.owner, list.members))
            change(list.owner, [](RecordEditor) { return true; }); // written anew with its chain
}

} // namespace db
