#include <db/tv_db_object_id.h>

#include "database_impl.h"

TvDbDatabase* TvDbObjectId::database() const
{
    return m_slot ? m_slot->database : nullptr;
}

TvDbHandle TvDbObjectId::handle() const
{
    return m_slot ? TvDbHandle(m_slot->handle) : TvDbHandle();
}

bool TvDbObjectId::isErased() const
{
    return m_slot && m_slot->isErased;
}

const TvRxClass* TvDbObjectId::objectClass() const
{
    return m_slot ? m_slot->database->impl().typeOf(*m_slot) : nullptr;
}
