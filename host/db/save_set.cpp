#include "save_set.h"

#include <db/entity_chain.h>
#include <db/references.h>

namespace db {

base::Result<const Record*> SaveSet::record(std::uint64_t handle)
{
    const auto at = changed.find(handle);
    if (at != changed.end())
        return at->second;
    ObjectSlot* slot = m_database.find(handle);
    if (!slot || slot->isErased)
        return base::Status(base::Failure::NotFound, base::Reason::DwgObjectMissing,
                            {base::hexText(handle)});
    if (slot->object)
        return &slot->object->record();
    if (base::Status status = m_database.file()->read(handle, m_scratch); !status) {
        if (base::Status common = m_database.file()->readCommon(handle, m_scratch); !common)
            return common;
    } else if (m_database.version() == Version::Ac1015) {
        if (base::Status filled = fillOwnedFromChain(*m_database.file(), m_scratch); !filled)
            return filled;
    }
    return &m_scratch;
}

Record* SaveSet::copyOf(std::uint64_t handle)
{
    const auto known = m_copyByHandle.find(handle);
    if (known != m_copyByHandle.end())
        return known->second;
    base::Result<const Record*> original = record(handle);
    if (!original)
        return nullptr;
    Record* copy = &m_copies.emplace_back(**original);
    m_copyByHandle.emplace(handle, copy);
    changed[handle] = copy;
    return copy;
}

base::Status SaveSet::sweepRaw(std::uint64_t handle, const Record& raw)
{
    // Its bytes are not ours to change. A soft pointer into the void is harmless; something that it
    // cannot do without must not go.
    base::Status status;
    forEachReference(raw, [&](const Reference& reference) {
        if (reference.kind == ReferenceKind::HardPointer && isGone(reference.target) && status)
            status = base::Status(base::Failure::Unsupported, base::Reason::DbErasedInUse,
                                  {base::hexText(reference.target), base::hexText(handle)});
    });
    return status;
}

base::Status SaveSet::sweep()
{
    const auto gone = [this](std::uint64_t target) { return isGone(target); };
    for (const std::uint64_t handle : handles) {
        const base::Result<const Record*> current = record(handle);
        if (!current)
            continue; // damaged: it stays what it is, and the codec decides
        const std::string_view name = (*current)->classDef()->name();
        bool concerned = false;
        if (!forEachReference(**current, [&](const Reference& reference) {
                concerned |= isGone(reference.target);
            }))
            continue;
        if (!concerned)
            continue;
        if (name == "RAW_OBJECT" || name == "RAW_ENTITY") {
            if (base::Status status = sweepRaw(handle, **current); !status)
                return status;
            continue;
        }
        if (Record* copy = copyOf(handle))
            removeReferences(*copy, gone);
    }
    return {};
}

base::Status SaveSet::gather(const std::vector<ObjectSlot*>& touched, Version version)
{
    m_database.forEach([&](ObjectSlot& slot) { handles.push_back(slot.handle); });
    bool isStoredGone = false;
    for (const ObjectSlot* slot : touched) {
        if (slot->isErased) {
            m_gone.insert(slot->handle);
            if (slot->isStored) {
                erased.insert(slot->handle);
                isStoredGone = true;
            }
        } else if (slot->isChanged && !(slot->isStored && slot->object->isRaw())) {
            changed[slot->handle] = &slot->object->record();
        }
    }
    if (isStoredGone || !m_gone.empty())
        if (base::Status status = sweep(); !status)
            return status;
    if (version == Version::Ac1015 && m_database.version() == Version::Ac1015) {
        // Entities name their neighbours here: whoever's list changed has its chain made anew.
        const EntityAccess entities{[this](std::uint64_t handle) {
                                        const base::Result<const Record*> found = record(handle);
                                        return found ? *found : nullptr;
                                    },
                                    [this](std::uint64_t handle) { return copyOf(handle); }};
        std::vector<std::uint64_t> owners;
        for (const auto& [handle, record] : changed)
            if (ownedListOf(record->fields()) != FieldId::None)
                owners.push_back(handle);
        for (const std::uint64_t owner : owners) {
            Record* copy = copyOf(owner);
            if (base::Status status = relink(*copy, entities); !status)
                return status;
        }
    }
    return {};
}

} // namespace db
