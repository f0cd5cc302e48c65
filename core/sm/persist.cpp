#include "sm/tv_sm_persist.h"

#include "database_state.h"

using sm::Internals;

TVRX_DEFINE_MEMBERS(TvSmPersist, TvRxObject)

TvSmPersist::~TvSmPersist()
{
    if (Internals::isHeldByMaker(*this))
        Internals::state(*this)->leave(*this);
}

namespace {

/// Whether @p top is @p object or an owner above it.
bool isAtOrAbove(const TvSmPersist* top, const TvSmPersist* object)
{
    while (object && object != top)
        object = object->owner();
    return object != nullptr;
}

} // namespace

bool TvSmPersist::setOwner(TvSmPersist* owner)
{
    if (owner == m_owner)
        return owner != nullptr;
    // A ring of owners would have no end.
    if (isAtOrAbove(this, owner))
        return false;
    if (!Internals::canAdopt(*this, owner) || m_life == Life::Attached || m_life == Life::Parked ||
        !Internals::mayChange(*this))
        return false;
    if (sm::Journal* journal = Internals::journal(*this))
        journal->keep(m_owner);
    m_owner = owner;
    return true;
}

bool TvSmPersist::initNew(TvSmPersist* owner, const TvString& /*name*/)
{
    sm::DatabaseState* state = owner ? Internals::state(*owner) : nullptr;
    if (!state || m_life != Life::New)
        return false;
    Internals::bind(*this, &state->database(), owner, Life::Held);
    Internals::rebindParts(*this);
    m_handle = state->newHandle();
    state->enter(*this);
    return true;
}
