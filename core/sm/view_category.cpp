#include "sm/tv_sm_view_category.h"

#include "database_state.h"

using sm::Internals;

TVRX_DEFINE_MEMBERS(TvSmViewCategory, TvSmComponent)
TVRX_DEFINE_MEMBERS(TvSmViewCategories, TvSmComponent)

TvSmViewCategory::~TvSmViewCategory()
{
    if (m_callouts && Internals::isHeldByMaker(*this))
        for (TvSmFileReference* reference : Internals::entries(*m_callouts))
            if (reference->owner() == m_callouts.get())
                Internals::abandon(reference);
}

TvSmEnumerator<TvSmSheetView>* TvSmViewCategory::getSheetViewEnumerator() const
{
    sm::DatabaseState* state = Internals::state(*this);
    return new sm::GatheredEnumerator<TvSmSheetView>(state ? state->viewsIn(*this)
                                                           : std::vector<TvSmSheetView*>());
}

TvSmReferenceCollection* TvSmViewCategory::getCalloutBlocks() const
{
    return &Internals::calloutsOf(*this);
}

TvSmViewCategories::~TvSmViewCategories() = default;

TvSmEnumerator<TvSmViewCategory>* TvSmViewCategories::getEnumerator() const
{
    return new sm::ListEnumerator<TvSmViewCategory>(m_categories);
}

bool TvSmViewCategories::add(TvSmViewCategory* category, int /*reserved*/)
{
    if (category && category->owner() == this && Internals::life(*category) == Life::Attached)
        return Internals::mayChange(*this);
    return Internals::addEntry(*this, m_categories, category);
}

TvSmViewCategory* TvSmViewCategories::getDefaultCategory() const
{
    TvSmViewCategory* unnamed = nullptr;
    for (TvSmViewCategory* category : m_categories) {
        if (Internals::isDefault(*category))
            return category;
        if (!unnamed && category->getName().isEmpty())
            unnamed = category;
    }
    return unnamed;
}

bool TvSmViewCategories::remove(TvSmViewCategory* category)
{
    return Internals::removeEntry(*this, m_categories, category);
}
