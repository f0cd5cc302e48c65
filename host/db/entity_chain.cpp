#include "db/entity_chain.h"

#include <unordered_set>

#include <base/tv_db_handle.h>

#include "db/record_editor.h"

namespace db {

namespace {

struct OwnerFields {
    FieldId list, first, last;
};

struct Links {
    std::uint64_t previous = 0, next = 0;
};

const OwnerFields* fieldsOf(const RecordView& owner)
{
    static const OwnerFields kAll[] = {
        {fieldId("owned"), fieldId("first_entity"), fieldId("last_entity")},
        {fieldId("attribs"), fieldId("first_attrib"), fieldId("last_attrib")},
        {fieldId("vertices"), fieldId("first_vertex"), fieldId("last_vertex")},
    };
    for (const OwnerFields& fields : kAll)
        if (owner.has(fields.list) && owner.has(fields.first))
            return &fields;
    return nullptr;
}

// Of an external reference nothing is kept here; and without attributes there is no chain of them.
bool hasList(const RecordView& owner)
{
    static const FieldId kAttributes = fieldId("has_attribs");
    static const FieldId kExternal = fieldId("is_xref"), kOverlaid = fieldId("xref_overlaid");
    if (owner.has(kAttributes))
        return owner.flag(kAttributes);
    return !owner.flag(kExternal) && !owner.flag(kOverlaid);
}

base::Status chainDamaged(const Record& owner)
{
    return {
        base::Failure::Damaged, base::Reason::DwgObjectDamaged, {base::hexText(owner.handle())}};
}

/// Walks along the chain of one owner.
class ChainWalk
{
public:
    ChainWalk(const DrawingFile& file, const Record& owner) : m_file(file), m_owner(owner) {}

    /// The entities up to @p last; fewer when the chain does not come there.
    std::vector<std::uint64_t> run(std::uint64_t first, std::uint64_t last)
    {
        std::vector<std::uint64_t> found;
        for (std::uint64_t at = first; at != 0;) {
            if (!m_seen.insert(at).second || !m_file.readCommon(at, m_entity) || !isOwned())
                break;
            found.push_back(at);
            if (at == last) {
                m_isWhole = true;
                break;
            }
            at = nextOf(at);
        }
        return found;
    }
    bool isWhole() const { return m_isWhole; }

private:
    std::uint64_t nextOf(std::uint64_t at) const
    {
        static const FieldId kNoLinks = fieldId("nolinks"), kNext = fieldId("next");
        return m_entity.flag(kNoLinks) ? at + 1 : m_entity.handle(kNext);
    }

    // What stands in one of the two spaces of the drawing does not name its owner.
    bool isOwned()
    {
        static const FieldId kMode = fieldId("entmode"), kOwner = fieldId("owner");
        if (!m_entity.has(kMode))
            return false;
        switch (m_entity.integer(kMode)) {
        case 1: return isSpace("BRPSPACE", m_isPaper);
        case 2: return isSpace("BRMSPACE", m_isModel);
        default: return m_entity.handle(kOwner) == m_owner.handle();
        }
    }

    bool isSpace(const char* variable, std::optional<bool>& answer)
    {
        if (!answer) {
            const auto header = m_file.header();
            answer = header && header->handle(variable) == m_owner.handle();
        }
        return *answer;
    }

    const DrawingFile& m_file;
    const Record& m_owner;
    Record m_entity;
    std::unordered_set<std::uint64_t> m_seen;
    std::optional<bool> m_isPaper, m_isModel;
    bool m_isWhole = false;
};

void putList(Record& owner, FieldId list, const std::vector<std::uint64_t>& entities)
{
    ArrayEditor array = RecordEditor(owner).array(list);
    array.resize(static_cast<std::uint32_t>(entities.size()));
    for (std::uint32_t i = 0; i < entities.size(); ++i)
        array.setHandle(i, entities[i]);
}

// What the entity says; where it says only that its neighbours are the next handles, the outer
// sides of the chain's ends are not looked at by anyone.
bool hasLinks(const Record& entity, const Links& wanted)
{
    if (!entity.flag("nolinks"))
        return entity.handle("prev") == wanted.previous && entity.handle("next") == wanted.next;
    return (wanted.previous == 0 || wanted.previous + 1 == entity.handle()) &&
           (wanted.next == 0 || wanted.next == entity.handle() + 1);
}

void setLinks(Record& entity, const Links& links)
{
    RecordEditor edit(entity);
    edit.setFlag("nolinks", false);
    edit.setHandle("prev", links.previous);
    edit.setHandle("next", links.next);
}

struct ChainPlan {
    std::vector<std::uint64_t> entities;
    bool hasDoubles = false;
};

ChainPlan planOf(const ArrayView& list, const EntityAccess& access)
{
    ChainPlan plan;
    std::unordered_set<std::uint64_t> seen;
    plan.entities.reserve(list.size());
    for (std::uint32_t i = 0; i < list.size(); ++i) {
        const std::uint64_t handle = list.handle(i);
        if (handle == 0 || !access.look(handle))
            continue;
        plan.hasDoubles = plan.hasDoubles || !seen.insert(handle).second;
        plan.entities.push_back(handle);
    }
    return plan;
}

void setEnd(Record& owner, FieldId field, std::uint64_t entity)
{
    if (owner.handle(field) != entity)
        RecordEditor(owner).setHandle(field, entity);
}

} // namespace

FieldId ownedListOf(const RecordView& owner)
{
    const OwnerFields* const fields = fieldsOf(owner);
    return fields && hasList(owner) ? fields->list : FieldId::None;
}

base::Status fillOwnedFromChain(const DrawingFile& file, Record& owner)
{
    if (owner.version() != Version::Ac1015 || file.format() != FileFormat::Dwg)
        return {}; // before anything of the record is looked for: it is every entity that is read
    const OwnerFields* const fields = fieldsOf(owner.fields());
    if (!fields || !hasList(owner.fields()))
        return {};
    const std::uint64_t first = owner.handle(fields->first), last = owner.handle(fields->last);
    ChainWalk walk(file, owner);
    putList(owner, fields->list, walk.run(first, last));
    const bool isEmpty = first == 0 && last == 0;
    return walk.isWhole() || isEmpty ? base::Status() : chainDamaged(owner);
}

base::Status relink(Record& owner, const EntityAccess& entities)
{
    const OwnerFields* const fields = fieldsOf(owner.fields());
    if (!fields || !hasList(owner.fields()))
        return {};
    const ChainPlan plan = planOf(owner.array(fields->list), entities);
    if (plan.hasDoubles)
        return {
            base::Failure::Usage, base::Reason::DwgRecordInvalid, {base::hexText(owner.handle())}};
    const auto& chain = plan.entities;
    for (std::size_t i = 0; i < chain.size(); ++i) {
        const Links wanted{i > 0 ? chain[i - 1] : 0, i + 1 < chain.size() ? chain[i + 1] : 0};
        const Record* const now = entities.look(chain[i]);
        if (now && hasLinks(*now, wanted))
            continue;
        Record* const entity = entities.change(chain[i]);
        if (!entity)
            return {base::Failure::Unsupported,
                    base::Reason::DwgRecordInvalid,
                    {base::hexText(chain[i])}};
        setLinks(*entity, wanted);
    }
    setEnd(owner, fields->first, chain.empty() ? 0 : chain.front());
    setEnd(owner, fields->last, chain.empty() ? 0 : chain.back());
    return {};
}

} // namespace db
