#include <db/passing_entities.h>

#include <db/entity_chain.h>

#include "database_impl.h"
#include "object_factory.h"

namespace db {

PassingEntities::PassingEntities() = default;
PassingEntities::~PassingEntities() = default;

PassingEntities::Look::~Look()
{
    if (!m_made)
        return;
    ObjectAccess::slot(*m_made) = nullptr;
    m_home->push_back(std::move(m_made));
}

PassingEntities::Kind PassingEntities::kindOf(const ClassDef& of)
{
    const ObjectType type = objectTypeOf(&of, of.isEntity());
    Kind kind;
    if (type.type->isDerivedFrom(TvDbEntity::desc()))
        kind.make = type.make;
    return kind;
}

/// The object that the database keeps.
PassingEntities::Look PassingEntities::opened(ObjectSlot& slot)
{
    Look look;
    if (slot.database->impl().load(slot) == TvStatus::Ok)
        look.m_entity = tvrxCast<TvDbEntity>(slot.object.get());
    return look;
}

PassingEntities::Look PassingEntities::at(TvDbObjectId id)
{
    ObjectSlot* const slot = id.slot();
    if (!slot || slot->isErased)
        return {};
    const DrawingFile* const file = slot->database->impl().file();
    // What can only be understood in part is left to those who open it.
    if (slot->object || !file || !file->read(slot->handle, m_record) ||
        !fillOwnedFromChain(*file, m_record))
        return opened(*slot);
    Kind& kind = m_kinds.of(*m_record.classDef(), kindOf);
    if (!kind.make)
        return {};
    Look look;
    look.m_home = &kind.spare;
    if (kind.spare.empty()) {
        look.m_made = kind.make();
    } else {
        look.m_made = std::move(kind.spare.back());
        kind.spare.pop_back();
    }
    std::swap(ObjectAccess::record(*look.m_made), m_record);
    ObjectAccess::slot(*look.m_made) = slot;
    ObjectAccess::subReload(*look.m_made);
    look.m_entity = static_cast<const TvDbEntity*>(look.m_made.get());
    return look;
}

} // namespace db
