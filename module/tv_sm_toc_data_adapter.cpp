#include "module/tv_sm_toc_data_adapter.h"

TvStatusCode TvSmTocDataAdapter::updateData(TvDbDataLink* link, TvRxObject*, int)
{
    return link ? TvStatus::NotThatLink : TvStatus::NotApplicable;
}

TvDbDataAdapter* TvSmTocDataAdapterProvider::getAdapter(const TvString& id)
{
    if (id.compareNoCase(u"AcSmTocDataAdapter2") != 0)
        return nullptr;
    if (!m_adapter)
        m_adapter = std::make_unique<TvSmTocDataAdapter>();
    return m_adapter.get();
}
