#include "sm/tv_sm_sheet.h"

#include "database_state.h"

using sm::Internals;

TVRX_DEFINE_MEMBERS(TvSmSheet, TvSmComponent)

TvSmSheet::~TvSmSheet()
{
    if (!Internals::isHeldByMaker(*this))
        return;
    Internals::abandon(m_layout);
    if (m_views)
        for (TvSmSheetView* view : Internals::entries(*m_views))
            Internals::abandon(view);
}

TvString TvSmSheet::getNumber(TvString& out) const
{
    return out = m_number.text();
}

TvString TvSmSheet::getNumber() const
{
    return m_number.text();
}

bool TvSmSheet::setNumber(const TvString& number)
{
    return Internals::changeText(*this, m_number, number);
}

TvString TvSmSheet::getTitle(TvString& out) const
{
    return out = getTitle();
}

TvString TvSmSheet::getTitle() const
{
    return m_title.isSet() ? m_title.text() : getName();
}

bool TvSmSheet::setTitle(const TvString& title)
{
    return Internals::changeText(*this, m_title, title, true);
}

TvSmTvDbLayoutReference* TvSmSheet::getLayoutReference() const
{
    return m_layout;
}

bool TvSmSheet::setLayoutReference(TvSmTvDbLayoutReference* reference)
{
    return Internals::changeReference(*this, m_layout, reference);
}

bool TvSmSheet::getExcludeFromPublish() const
{
    return m_exclude;
}

bool TvSmSheet::setExcludeFromPublish(bool exclude)
{
    return Internals::change(*this, m_exclude, exclude);
}

TvSmSheetViews* TvSmSheet::getSheetViews() const
{
    return &Internals::viewsOf(*this);
}

TvString TvSmSheet::getSheetText1(TvString& out) const
{
    return out = m_texts[0].text();
}

bool TvSmSheet::setSheetText1(const TvString& text)
{
    return Internals::changeText(*this, m_texts[0], text);
}

TvString TvSmSheet::getSheetText2(TvString& out) const
{
    return out = m_texts[1].text();
}

bool TvSmSheet::setSheetText2(const TvString& text)
{
    return Internals::changeText(*this, m_texts[1], text);
}

TvString TvSmSheet::getSheetText3(TvString& out) const
{
    return out = m_texts[2].text();
}

bool TvSmSheet::setSheetText3(const TvString& text)
{
    return Internals::changeText(*this, m_texts[2], text);
}

TvString TvSmSheet::getSheetText4(TvString& out) const
{
    return out = m_texts[3].text();
}

bool TvSmSheet::setSheetText4(const TvString& text)
{
    return Internals::changeText(*this, m_texts[3], text);
}
