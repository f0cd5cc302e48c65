#include <algorithm>

#include <db/entity_chain.h>

#include "drawing_auditor.h"

namespace db {

namespace {

namespace field {
const FieldId kEntries = fieldId("entries"), kValues = fieldId("values"), kKeys = fieldId("keys"),
              kExtension = fieldId("xdict"), kSequenceEnd = fieldId("seqend"),
              kBlock = fieldId("block_entity"), kBlockEnd = fieldId("endblk_entity");
// Records that a table names beside its list.
const FieldId kSingles[] = {fieldId("model_space"), fieldId("paper_space"), fieldId("byblock"),
                            fieldId("bylayer")};
} // namespace field

std::vector<std::uint64_t> handlesOf(const ArrayView& array)
{
    std::vector<std::uint64_t> handles;
    handles.reserve(array.size());
    for (std::uint32_t i = 0; i < array.size(); ++i)
        if (array.handle(i) != 0)
            handles.push_back(array.handle(i));
    return handles;
}

void appendIfAny(std::vector<std::uint64_t>& list, std::uint64_t handle)
{
    if (handle != 0)
        list.push_back(handle);
}

/// Names that several records may have: those of paper spaces and of blocks that programs made are
/// stored without their numbers, shape files have none, and several viewports are the active one.
bool mayRepeat(std::string_view control, std::u16string_view name)
{
    return control == "VPORT_CONTROL" || control == "VPENT_HDR_CONTROL" || name.empty() ||
           (control == "BLOCK_CONTROL" && name.front() == u'*');
}

} // namespace

bool isDictionary(std::string_view className)
{
    return className == "DICTIONARY" || className == "ACDBDICTIONARYWDFLT" ||
           className == "DICTIONARYWDFLT";
}

std::string recordClassOf(std::string_view control)
{
    const std::string name(control.substr(0, control.rfind("_CONTROL")));
    return name == "BLOCK" ? "BLOCK_HEADER" : name;
}

// --- what is listed

void DrawingAuditor::noteLists(const Record& record, const AuditedObject& object, bool isChanged)
{
    const auto note = [&](ListKind kind, std::vector<std::uint64_t> members) -> OwnedList* {
        if (members.empty())
            return nullptr;
        m_lists.push_back({object.handle, kind, std::move(members), false});
        return &m_lists.back();
    };
    if (const std::uint64_t extension = record.handle(field::kExtension))
        note(ListKind::Extension, {extension});
    if (object.classDef->kind() == ClassKind::Control) {
        std::vector<std::uint64_t> members = handlesOf(record.array(field::kEntries));
        for (const FieldId single : field::kSingles)
            appendIfAny(members, record.handle(single));
        note(ListKind::Table, std::move(members));
        return;
    }
    if (isDictionary(object.classDef->name())) {
        std::unordered_map<TvString, int> seen;
        const ArrayView keys = record.array(field::kKeys);
        for (std::uint32_t i = 0; i < keys.size(); ++i)
            if (++seen[TvString(keys.text(i)).toLower()] == 2)
                add(DrawingRule::KeyTwice, AuditSeverity::Error, object.handle,
                    {TvString(keys.text(i))});
        note(ListKind::Dictionary, handlesOf(record.array(field::kValues)));
        return;
    }
    std::vector<std::uint64_t> parts;
    for (const FieldId single : {field::kBlock, field::kBlockEnd, field::kSequenceEnd})
        appendIfAny(parts, record.handle(single));
    note(ListKind::Parts, std::move(parts));
    if (const FieldId list = ownedListOf(record.fields()); list != FieldId::None)
        if (OwnedList* noted = note(ListKind::Block, handlesOf(record.array(list))))
            noted->isChained = m_impl.version() == Version::Ac1015 && !isChanged;
}

// --- lists and their members

void DrawingAuditor::checkLists()
{
    for (const OwnedList& list : m_lists) {
        for (const std::uint64_t handle : list.members)
            if (const AuditedObject* member = find(handle))
                checkMember(list, const_cast<AuditedObject&>(*member));
        if (list.kind == ListKind::Table)
            checkTable(list);
        if (list.isChained)
            checkChain(list);
    }
}

void DrawingAuditor::checkMember(const OwnedList& list, AuditedObject& member)
{
    // A dictionary may name what belongs to others; everybody else lists what is his.
    const bool isLoose = list.kind == ListKind::Dictionary;
    if (member.owner != list.owner) {
        if (member.classDef)
            add(DrawingRule::ListedByAnother, isLoose ? AuditSeverity::Note : AuditSeverity::Error,
                member.handle, {base::hexText(list.owner), base::hexText(member.owner)});
        return;
    }
    if (member.listedBy != 0 && !isLoose)
        add(DrawingRule::ListedTwice, AuditSeverity::Error, member.handle,
            {base::hexText(member.listedBy)});
    member.listedBy = list.owner;
}

void DrawingAuditor::checkTable(const OwnedList& table)
{
    const std::string_view control = find(table.owner)->classDef->name();
    const std::string recordClass = recordClassOf(control);
    std::unordered_map<TvString, std::uint64_t> seen;
    for (const std::uint64_t handle : table.members) {
        const AuditedObject* member = find(handle);
        if (!member || !member->classDef || member->isRaw)
            continue;
        if (member->classDef->name() != recordClass) {
            add(DrawingRule::NotOfTheTable, AuditSeverity::Error, handle,
                {base::hexText(table.owner), TvString(std::string_view(recordClass))});
            continue;
        }
        const std::u16string& name = m_names[handle];
        if (mayRepeat(control, name))
            continue;
        const auto [first, isNew] = seen.emplace(TvString(name).toLower(), handle);
        if (!isNew && first->second != handle)
            add(DrawingRule::NameTwice, AuditSeverity::Error, handle,
                {TvString(name), base::hexText(first->second)});
    }
}

void DrawingAuditor::checkChain(const OwnedList& list)
{
    for (std::size_t i = 0; i < list.members.size(); ++i) {
        const AuditedObject* member = find(list.members[i]);
        if (!member || !member->hasLinks)
            continue;
        const std::uint64_t previous = i > 0 ? list.members[i - 1] : 0;
        const std::uint64_t next = i + 1 < list.members.size() ? list.members[i + 1] : 0;
        if (member->previous != previous || member->next != next)
            add(DrawingRule::ChainDisagrees, AuditSeverity::Error, member->handle,
                {base::hexText(list.owner)});
    }
}

// --- objects and their owners

void DrawingAuditor::checkOwner(const AuditedObject& object)
{
    if (!object.classDef)
        return;
    if (object.isEntity && !object.isRaw && !isOfClass(object.layer, "LAYER"))
        add(DrawingRule::LayerMissing, AuditSeverity::Error, object.handle,
            {base::hexText(object.layer)});
    const bool isRoot = object.classDef->kind() == ClassKind::Control ||
                        object.handle == m_impl.header().handle("DNAMEDOBJ");
    if (object.owner == 0) {
        if (!isRoot)
            add(DrawingRule::OwnerNone, AuditSeverity::Warning, object.handle);
        return;
    }
    const AuditedObject* owner = find(object.owner);
    if (!owner) {
        // What is drawn or named is lost; anything else nobody misses.
        const bool isLost = object.isEntity || object.classDef->kind() == ClassKind::Table;
        return add(DrawingRule::OwnerMissing,
                   isLost ? AuditSeverity::Error : AuditSeverity::Warning, object.handle,
                   {base::hexText(object.owner)});
    }
    if (object.listedBy != 0 || !owner->classDef || owner->isRaw || isRoot)
        return;
    const bool listsAll = owner->classDef->kind() == ClassKind::Control ||
                          (owner->classDef->name() == "BLOCK_HEADER" && object.isEntity);
    if (listsAll)
        add(DrawingRule::NotListed, AuditSeverity::Error, object.handle,
            {base::hexText(object.owner)});
    else if (isDictionary(owner->classDef->name()))
        add(DrawingRule::NotListed, AuditSeverity::Warning, object.handle,
            {base::hexText(object.owner)});
}

/// Owners of owners must come to an end. Each object is passed once.
void DrawingAuditor::checkRings()
{
    enum Mark : std::uint8_t { New, OnTheWay, Ends };
    std::vector<Mark> marks(m_objects.size(), New);
    std::vector<std::size_t> way;
    for (std::size_t start = 0; start < m_objects.size(); ++start) {
        way.clear();
        std::size_t at = start;
        while (marks[at] == New) {
            marks[at] = OnTheWay;
            way.push_back(at);
            const AuditedObject* owner = find(m_objects[at].owner);
            if (!owner)
                break;
            at = static_cast<std::size_t>(owner - m_objects.data());
        }
        const bool cameBack = way.size() > 0 && marks[at] == OnTheWay &&
                              find(m_objects[way.back()].owner) == &m_objects[at];
        if (cameBack)
            add(DrawingRule::OwnersInARing, AuditSeverity::Error, m_objects[at].handle);
        for (const std::size_t passed : way)
            marks[passed] = Ends;
    }
}

} // namespace db
