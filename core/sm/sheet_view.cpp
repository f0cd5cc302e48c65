#include "sm/tv_sm_sheet_view.h"

#include "database_state.h"

using sm::Internals;

TVRX_DEFINE_MEMBERS(TvSmSheetView, TvSmComponent)
TVRX_DEFINE_MEMBERS(TvSmSheetViews, TvSmComponent)

TvSmSheetView::~TvSmSheetView()
{
    if (Internals::isHeldByMaker(*this))
        Internals::abandon(m_reference);
}

TvSmTvDbViewReference* TvSmSheetView::getViewReference() const
{
    return m_reference;
}

bool TvSmSheetView::setViewReference(TvSmTvDbViewReference* reference)
{
    return Internals::changeReference(*this, m_reference, reference);
}

TvSmViewCategory* TvSmSheetView::getCategory() const
{
    const sm::DatabaseState* state = Internals::state(*this);
    return state ? tvrxCast<TvSmViewCategory>(state->findInSet(m_category)) : nullptr;
}

bool TvSmSheetView::setCategory(TvSmViewCategory* category)
{
    if (category && !Internals::canAdopt(*this, category))
        return false;
    return Internals::change(*this, m_category, category ? Internals::handle(*category) : 0);
}

TvString TvSmSheetView::getNumber(TvString& out) const
{
    return out = m_number.text();
}

TvString TvSmSheetView::getNumber() const
{
    return m_number.text();
}

bool TvSmSheetView::setNumber(const TvString& number)
{
    return Internals::changeText(*this, m_number, number);
}

TvString TvSmSheetView::getTitle(TvString& out) const
{
    return out = m_title.text();
}

TvString TvSmSheetView::getTitle() const
{
    return m_title.text();
}

bool TvSmSheetView::setTitle(const TvString& title)
{
    return Internals::changeText(*this, m_title, title);
}

TvSmSheetViews::~TvSmSheetViews() = default;

TvSmEnumerator<TvSmSheetView>* TvSmSheetViews::getEnumerator() const
{
    return new sm::ListEnumerator<TvSmSheetView>(m_views);
}

bool TvSmSheetViews::add(TvSmSheetView* view)
{
    if (!view || !Internals::mayChange(*this) || !Internals::canAdopt(*this, view))
        return false;
    if (Internals::life(*view) == Life::Attached) {
        if (view->owner() == this)
            return true;
        auto* former = tvrxCast<TvSmSheetViews>(view->owner());
        if (!former || !former->remove(view))
            return false;
    }
    return Internals::addEntry(*this, m_views, view);
}

bool TvSmSheetViews::remove(TvSmSheetView* view)
{
    return Internals::removeEntry(*this, m_views, view);
}
