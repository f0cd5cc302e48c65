#include "internals.h"

#include "database_state.h"

namespace sm {

void ExtrasDeleter::operator()(Extras* extras) const
{
    delete extras;
}

Extras& Internals::makeExtras(TvSmPersist& object)
{
    if (!object.m_extras)
        object.m_extras.reset(new Extras);
    return *object.m_extras;
}

DatabaseState* Internals::state(const TvSmPersist& object)
{
    return object.m_database ? object.m_database->m_state.get() : nullptr;
}

void Internals::bindPart(TvSmPersist& part, TvSmPersist& owner)
{
    bind(part, owner.m_database, &owner, Life::Attached);
    part.m_ownedByDatabase = true;
}

bool Internals::isInSet(const TvSmPersist& object)
{
    for (const TvSmPersist* at = &object; at; at = at->m_owner) {
        if (at->m_life != Life::Attached)
            return false;
        if (at == at->m_database)
            return true;
    }
    return false;
}

namespace {

/// Where the chain of owners ends: the database, or the object that stands in nothing.
const TvSmPersist& topOf(const TvSmPersist& object)
{
    const TvSmPersist* at = &object;
    while (Internals::life(*at) == Internals::Life::Attached && at->owner())
        at = at->owner();
    return *at;
}

} // namespace

bool Internals::mayChange(const TvSmPersist& object)
{
    DatabaseState* stateOf = state(object);
    if (!stateOf)
        return life(object) == Life::New;
    const Life top = topOf(object).m_life;
    if (top == Life::Parked)
        return false;
    if (top != Life::Held && !stateOf->takesChanges()) {
#ifndef NDEBUG
        if (std::getenv("KV_TRACE"))
            std::fprintf(stderr, "sm: a change outside the lock was refused\n");
#endif
        return false;
    }
    stateOf->forgetGroups();
    return true;
}

Journal* Internals::journal(const TvSmPersist& object)
{
    DatabaseState* stateOf = state(object);
    if (!stateOf || topOf(object).m_life == Life::Held)
        return nullptr;
    return stateOf->journal();
}

bool Internals::changeText(TvSmPersist& object, StoredText& field, const TvString& value,
                           bool keepEmpty)
{
    if (!mayChange(object))
        return false;
    const bool wantSet = keepEmpty || !value.isEmpty();
    if (field.isSet() == wantSet && field.equals(value))
        return true;
    StoredText fresh;
    if (wantSet)
        fresh.assign(value);
    field.swap(fresh);
    if (Journal* journalOf = journal(object))
        journalOf->add(std::make_unique<FieldStep<StoredText>>(field, std::move(fresh)));
    return true;
}

namespace {

/// What the database owns may have been taken out since the lock. Changes of an object that its
/// maker holds are not undone, so it cannot have that part: a rollback would leave it with two
/// owners.
bool isPartOfRollback(const TvSmPersist& owner, const TvSmPersist& child)
{
    return Internals::isDatabaseOwned(child) &&
           Internals::life(topOf(owner)) == Internals::Life::Held &&
           Internals::state(child)->journal();
}

} // namespace

bool Internals::canAdopt(const TvSmPersist& owner, const TvSmPersist* child)
{
    return child && child != &owner && child->m_database && child->m_database == owner.m_database &&
           child->m_life != Life::New && child->m_life != Life::Parked &&
           !isPartOfRollback(owner, *child);
}

void Internals::attach(TvSmPersist& child, TvSmPersist& owner)
{
    if (Journal* journalOf = journal(owner)) {
        journalOf->keep(child.m_life);
        journalOf->keep(child.m_owner);
    }
    child.m_life = Life::Attached;
    child.m_owner = &owner;
    if (!child.m_ownedByDatabase)
        state(child)->adopt(child);
}

void Internals::detach(TvSmPersist& child)
{
    if (child.m_owner) {
        if (Journal* journalOf = journal(*child.m_owner)) {
            journalOf->keep(child.m_life);
            journalOf->keep(child.m_owner);
        }
    }
    child.m_life = Life::Detached;
    child.m_owner = nullptr;
}

// --- the children of a subset: a list through the children, so that each change is O(1) ----------

namespace {

/// A child that was put into, or taken out of, a subset's order.
class ChildStep : public JournalStep
{
public:
    ChildStep(TvSmSubset& parent, TvSmComponent& child, TvSmComponent* before, bool present)
        : m_parent(parent), m_child(child), m_before(before), m_present(present)
    {
    }
    void toggle() override
    {
        if (m_present)
            Internals::unlinkChild(m_parent, m_child);
        else
            Internals::linkChild(m_parent, m_child, m_before);
        m_present = !m_present;
    }

private:
    TvSmSubset& m_parent;
    TvSmComponent& m_child;
    TvSmComponent* m_before; // null: at the end
    bool m_present;
};

} // namespace

void Internals::linkChild(TvSmSubset& parent, TvSmComponent& child, TvSmComponent* before)
{
    TvSmComponent* previous = before ? before->m_previousSibling : parent.m_lastChild;
    child.m_previousSibling = previous;
    child.m_nextSibling = before;
    (previous ? previous->m_nextSibling : parent.m_firstChild) = &child;
    (before ? before->m_previousSibling : parent.m_lastChild) = &child;
}

void Internals::unlinkChild(TvSmSubset& parent, TvSmComponent& child)
{
    (child.m_previousSibling ? child.m_previousSibling->m_nextSibling : parent.m_firstChild) =
        child.m_nextSibling;
    (child.m_nextSibling ? child.m_nextSibling->m_previousSibling : parent.m_lastChild) =
        child.m_previousSibling;
    child.m_previousSibling = nullptr;
    child.m_nextSibling = nullptr;
}

void Internals::putIn(TvSmSubset& parent, TvSmComponent& child, TvSmComponent* before)
{
    linkChild(parent, child, before);
    if (Journal* journalOf = journal(parent))
        journalOf->add(std::make_unique<ChildStep>(parent, child, before, true));
    attach(child, parent);
}

void Internals::takeOut(TvSmSubset& parent, TvSmComponent& child)
{
    TvSmComponent* before = child.m_nextSibling;
    unlinkChild(parent, child);
    if (Journal* journalOf = journal(parent))
        journalOf->add(std::make_unique<ChildStep>(parent, child, before, false));
    detach(child);
}

void Internals::appendChildUnchecked(TvSmSubset& parent, TvSmComponent& child)
{
    linkChild(parent, child, nullptr);
}

void Internals::appendEntryUnchecked(TvSmCustomPropertyBag& bag, TvSmCustomPropertyValue& value)
{
    // Few bags have more; growing from one by one would cost more than all the rest of an entry.
    if (bag.m_entries.capacity() == 0)
        bag.m_entries.reserve(8);
    bag.m_entries.push_back(&value);
}

void Internals::forgetChildren(TvSmSubset& subset)
{
    subset.m_firstChild = nullptr;
    subset.m_lastChild = nullptr;
}

void Internals::forgetSiblings(TvSmComponent& component)
{
    component.m_previousSibling = nullptr;
    component.m_nextSibling = nullptr;
}

void Internals::forgetOrder(TvSmPersist& object)
{
    if (auto* component = tvrxCast<TvSmComponent>(&object))
        forgetSiblings(*component);
    if (auto* subset = tvrxCast<TvSmSubset>(&object))
        forgetChildren(*subset);
}

// --- parts, made at the first need
// -----------------------------------------------------------------

/// In the database's own memory where the owner is the database's; what its maker holds may outlive
/// that.
template <class T>
void Internals::makePart(Part<T>& slot, const TvSmPersist& owner)
{
    if (slot)
        return;
    DatabaseState* stateOf = state(owner);
    if (stateOf && owner.m_ownedByDatabase) {
        slot.reset(new (stateOf->takeMemory(sizeof(T))) T());
        slot->m_inArena = true;
    } else {
        slot.reset(new T());
    }
    bindPart(*slot, const_cast<TvSmPersist&>(owner));
}

TvSmSheetViews& Internals::viewsOf(const TvSmSheet& sheet)
{
    makePart(sheet.m_views, sheet);
    return *sheet.m_views;
}

TvSmCustomPropertyBag& Internals::bagOf(const TvSmComponent& component)
{
    makePart(component.m_properties, component);
    return *component.m_properties;
}

TvSmReferenceCollection& Internals::calloutsOf(const TvSmViewCategory& category)
{
    makePart(category.m_callouts, category);
    return *category.m_callouts;
}

void Internals::rebindParts(TvSmPersist& object)
{
    const auto rebind = [&](TvSmPersist* part) {
        if (part)
            part->m_database = object.m_database;
    };
    if (auto* component = tvrxCast<TvSmComponent>(&object))
        rebind(component->m_properties.get());
    if (auto* sheet = tvrxCast<TvSmSheet>(&object))
        rebind(sheet->m_views.get());
    if (auto* category = tvrxCast<TvSmViewCategory>(&object))
        rebind(category->m_callouts.get());
}

bool Internals::isHeldByMaker(const TvSmPersist& object)
{
    return object.m_life == Life::Held && !object.m_ownedByDatabase && object.m_database;
}

void PartDeleter::operator()(TvSmPersist* part) const
{
    if (Internals::isInArena(*part))
        part->~TvSmPersist();
    else
        delete part;
}

void Internals::abandon(TvSmPersist* child)
{
    if (!child)
        return;
    child->m_life = Life::Detached;
    child->m_owner = nullptr;
}

} // namespace sm
