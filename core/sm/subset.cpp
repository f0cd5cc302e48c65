#include "sm/tv_sm_subset.h"

#include "database_state.h"
#include "sm/tv_sm_sheet.h"

using sm::Internals;

TVRX_DEFINE_MEMBERS(TvSmSubset, TvSmComponent)

TvSmSubset::~TvSmSubset()
{
    if (!Internals::isHeldByMaker(*this))
        return;
    Internals::abandon(m_location);
    Internals::abandon(m_template);
    for (TvSmComponent* child = m_firstChild; child;) {
        TvSmComponent* next = Internals::nextSibling(*child);
        Internals::forgetSiblings(*child);
        Internals::abandon(child);
        child = next;
    }
}

TvSmFileReference* TvSmSubset::getNewSheetLocation() const
{
    return m_location;
}

bool TvSmSubset::setNewSheetLocation(TvSmFileReference* reference)
{
    return Internals::changeReference(*this, m_location, reference);
}

TvSmTvDbLayoutReference* TvSmSubset::getDefaultTemplateLayout() const
{
    return m_template;
}

bool TvSmSubset::setDefaultTemplateLayout(TvSmTvDbLayoutReference* reference)
{
    return Internals::changeReference(*this, m_template, reference);
}

bool TvSmSubset::getPromptForTemplate() const
{
    return m_prompt;
}

bool TvSmSubset::setPromptForTemplate(bool prompt)
{
    return Internals::change(*this, m_prompt, prompt);
}

bool TvSmSubset::getExcludeFromPublish() const
{
    return m_exclude;
}

bool TvSmSubset::setExcludeFromPublish(bool exclude)
{
    return Internals::change(*this, m_exclude, exclude);
}

namespace {

/// Follows the children's own list. Should a child be taken out during the walk, the walk ends
/// there.
class ChildEnumerator : public TvSmEnumerator<TvSmComponent>
{
public:
    explicit ChildEnumerator(const TvSmSubset& subset) : m_subset(subset) { reset(); }
    TvSmComponent* next() override
    {
        TvSmComponent* item = m_next;
        if (m_last)
            item = Internals::nextSibling(*m_last);
        m_next = nullptr;
        if (item)
            m_last = item;
        return item;
    }
    void reset() override
    {
        m_last = nullptr;
        m_next = Internals::firstChild(m_subset);
    }

private:
    const TvSmSubset& m_subset;      // lives as long as its database
    TvSmComponent* m_last = nullptr; // the one given last
    TvSmComponent* m_next = nullptr; // before the first one was given
};

template <class T>
T* createChild(TvSmSubset& parent, const TvString& name, const TvString& description)
{
    sm::DatabaseState* state = Internals::state(parent);
    if (!state || !Internals::mayChange(parent))
        return nullptr;
    T* child = state->make<T>(state->newHandle(), &parent, Internals::Life::Detached);
    child->setName(name);
    child->setDesc(description);
    return child;
}

int levelsBelow(const TvSmComponent& component)
{
    int deepest = 0;
    if (const auto* subset = tvrxCast<TvSmSubset>(&component))
        for (TvSmComponent* child = Internals::firstChild(*subset); child;
             child = Internals::nextSibling(*child))
            if (tvrxCast<TvSmSubset>(child))
                deepest = std::max(deepest, 1 + levelsBelow(*child));
    return deepest;
}

int levelsAbove(const TvSmPersist* object)
{
    int levels = 0;
    for (; object && !tvrxCast<TvSmDatabase>(object); object = object->owner())
        ++levels;
    return levels;
}

bool isBelowOrSame(const TvSmPersist* object, const TvSmPersist* top)
{
    for (; object; object = object->owner())
        if (object == top)
            return true;
    return false;
}

/// Whether @p child may stand in @p parent at all.
bool fitsInto(const TvSmSubset& parent, const TvSmComponent* child)
{
    if (!Internals::canAdopt(parent, child) || tvrxCast<TvSmSheetSet>(child))
        return false;
    if (child->isA() == TvSmSheet::desc())
        return true;
    return tvrxCast<TvSmSubset>(child) && !isBelowOrSame(&parent, child) &&
           levelsAbove(&parent) + 1 + levelsBelow(*child) <= TvSmSubset::kMaxDepth;
}

bool standsIn(const TvSmSubset& parent, const TvSmComponent* child)
{
    return child && child->owner() == &parent &&
           Internals::life(*child) == Internals::Life::Attached;
}

/// Takes a child out of the subset it stands in, if it stands in one.
void takeOutOfAny(TvSmComponent& child)
{
    if (Internals::life(child) == Internals::Life::Attached)
        if (auto* parent = tvrxCast<TvSmSubset>(child.owner()))
            Internals::takeOut(*parent, child);
}

bool removeChild(TvSmSubset& parent, TvSmComponent* child)
{
    if (!standsIn(parent, child) || !Internals::mayChange(parent))
        return false;
    Internals::takeOut(parent, *child);
    return true;
}

} // namespace

TvSmEnumerator<TvSmComponent>* TvSmSubset::getSheetEnumerator() const
{
    return new ChildEnumerator(*this);
}

TvSmSheet* TvSmSubset::createSheet(const TvString& name, const TvString& description)
{
    return createChild<TvSmSheet>(*this, name, description);
}

bool TvSmSubset::insertComponent(TvSmComponent* child, TvSmComponent* before)
{
    if (!Internals::mayChange(*this) || !fitsInto(*this, child))
        return false;
    if (before == child) {
        takeOutOfAny(*child);
        before = m_firstChild;
    } else if (before && !standsIn(*this, before)) {
        return false;
    }
    if (standsIn(*this, child) && Internals::nextSibling(*child) == before)
        return true;
    takeOutOfAny(*child);
    Internals::putIn(*this, *child, before);
    return true;
}

bool TvSmSubset::insertComponentAfter(TvSmComponent* child, TvSmComponent* after)
{
    if (!after || after == child)
        return insertComponent(child, nullptr);
    if (!standsIn(*this, after))
        return false;
    TvSmComponent* before = Internals::nextSibling(*after);
    return insertComponent(child, before == child ? Internals::nextSibling(*child) : before);
}

bool TvSmSubset::removeSheet(TvSmSheet* sheet)
{
    return removeChild(*this, sheet);
}

TvSmSubset* TvSmSubset::createSubset(const TvString& name, const TvString& description)
{
    return createChild<TvSmSubset>(*this, name, description);
}

bool TvSmSubset::removeSubset(TvSmSubset* subset)
{
    return removeChild(*this, subset);
}
