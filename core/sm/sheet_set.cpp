#include "sm/tv_sm_sheet_set.h"

#include "database_state.h"

using sm::Internals;

TVRX_DEFINE_MEMBERS(TvSmSheetSet, TvSmSubset)

TvSmSheetSet::~TvSmSheetSet() = default;

TvSmFileReference* TvSmSheetSet::getAltPageSetups() const
{
    return m_altPageSetups;
}

bool TvSmSheetSet::setAltPageSetups(TvSmFileReference* reference)
{
    return Internals::changeReference(*this, m_altPageSetups, reference);
}

const TvSmSheetSelections* TvSmSheetSet::getSheetSelections() const
{
    return &m_selections;
}

TvSmSheetSelections* TvSmSheetSet::getSheetSelections()
{
    return &m_selections;
}

TvSmReferenceCollection* TvSmSheetSet::getResourceLocations() const
{
    return &m_resources;
}

const TvSmReferenceCollection* TvSmSheetSet::getCalloutBlocks() const
{
    return &m_callouts;
}

TvSmReferenceCollection* TvSmSheetSet::getCalloutBlocks()
{
    return &m_callouts;
}

const TvSmViewCategories* TvSmSheetSet::getViewCategories() const
{
    return &m_categories;
}

TvSmViewCategories* TvSmSheetSet::getViewCategories()
{
    return &m_categories;
}

TvSmTvDbBlockRecordReference* TvSmSheetSet::getDefaultLabelBlock() const
{
    return m_labelBlock;
}

bool TvSmSheetSet::setDefaultLabelBlock(TvSmTvDbBlockRecordReference* reference)
{
    return Internals::changeReference(*this, m_labelBlock, reference);
}

TvSmPublishOptions* TvSmSheetSet::getPublishOptions() const
{
    return &m_publishOptions;
}

TvString TvSmSheetSet::getSheetSetText1(TvString& out) const
{
    return out = m_texts[0].text();
}

bool TvSmSheetSet::setSheetSetText1(const TvString& text)
{
    return Internals::changeText(*this, m_texts[0], text);
}

TvString TvSmSheetSet::getSheetSetText2(TvString& out) const
{
    return out = m_texts[1].text();
}

bool TvSmSheetSet::setSheetSetText2(const TvString& text)
{
    return Internals::changeText(*this, m_texts[1], text);
}

TvString TvSmSheetSet::getSheetSetText3(TvString& out) const
{
    return out = m_texts[2].text();
}

bool TvSmSheetSet::setSheetSetText3(const TvString& text)
{
    return Internals::changeText(*this, m_texts[2], text);
}

TvString TvSmSheetSet::getSheetSetText4(TvString& out) const
{
    return out = m_texts[3].text();
}

bool TvSmSheetSet::setSheetSetText4(const TvString& text)
{
    return Internals::changeText(*this, m_texts[3], text);
}
