#include "sm/tv_sm_reference_collection.h"

#include "database_state.h"

using sm::Internals;

TVRX_DEFINE_MEMBERS(TvSmReferenceCollection, TvSmPersist)

TvSmReferenceCollection::~TvSmReferenceCollection() = default;

namespace {

/// The references of @p list that are its own or still in the set: one whose owner was taken out is
/// in no other list, until the owner comes back.
std::vector<TvSmFileReference*> present(const TvSmReferenceCollection& list)
{
    const std::vector<TvSmFileReference*>& references = Internals::entries(list);
    std::vector<TvSmFileReference*> result;
    result.reserve(references.size());
    for (TvSmFileReference* reference : references)
        if (reference->owner() == &list || Internals::isInSet(*reference))
            result.push_back(reference);
    return result;
}

} // namespace

bool TvSmReferenceCollection::add(TvSmFileReference* reference)
{
    if (!reference || !Internals::mayChange(*this) || !Internals::canAdopt(*this, reference))
        return false;
    if (std::find(m_references.begin(), m_references.end(), reference) != m_references.end())
        return true;
    const bool standsElsewhere = Internals::life(*reference) == Life::Attached;
    // The set's list takes over what so far only a category held.
    const bool takeOver = standsElsewhere && tvrxCast<TvSmSheetSet>(owner()) &&
                          tvrxCast<TvSmReferenceCollection>(reference->owner()) &&
                          tvrxCast<TvSmViewCategory>(reference->owner()->owner());
    Internals::insertAt(*this, m_references, m_references.size(), reference);
    if (!standsElsewhere || takeOver)
        Internals::attach(*reference, *this);
    return true;
}

bool TvSmReferenceCollection::remove(TvSmFileReference* reference)
{
    const bool owned = reference && reference->owner() == this;
    if (!Internals::removeEntry<TvSmFileReference>(*this, m_references, reference))
        return false;
    if (!owned)
        return true;
    // What this list owned is in no other list any more.
    if (TvSmDatabase* db = database())
        for (TvSmViewCategory* category :
             Internals::entries(*db->getSheetSet()->getViewCategories()))
            Internals::calloutsOf(*category).drop(reference);
    return true;
}

void TvSmReferenceCollection::drop(TvSmFileReference* reference)
{
    const auto at = std::find(m_references.begin(), m_references.end(), reference);
    if (at != m_references.end())
        Internals::eraseAt(*this, m_references,
                           static_cast<std::size_t>(at - m_references.begin()));
}

TvSmEnumerator<TvSmFileReference>* TvSmReferenceCollection::getEnumerator() const
{
    return new sm::GatheredEnumerator<TvSmFileReference>(present(*this));
}
