#include "db/tv_db_data_adapter.h"

#include <algorithm>

namespace {

TvDbDataAdapterManager& standardManager()
{
    static TvDbDataAdapterManager manager;
    return manager;
}

TvDbDataAdapterManager*& current()
{
    static TvDbDataAdapterManager* manager = &standardManager();
    return manager;
}

} // namespace

TvDbDataAdapterManager::~TvDbDataAdapterManager() = default;

void TvDbDataAdapterManager::registerAdapterProvider(TvDbDataAdapterProvider* provider)
{
    if (provider && std::ranges::find(m_providers, provider) == m_providers.end())
        m_providers.push_back(provider);
}

void TvDbDataAdapterManager::unregisterAdapterProvider(TvDbDataAdapterProvider* provider)
{
    std::erase(m_providers, provider);
}

TvDbDataAdapter* TvDbDataAdapterManager::getAdapter(const TvString& id)
{
    for (TvDbDataAdapterProvider* provider : m_providers)
        if (TvDbDataAdapter* adapter = provider->getAdapter(id))
            return adapter;
    return nullptr;
}

TvDbDataAdapterManager* tvdbGetDataAdapterManager()
{
    return current();
}

void tvdbSetDataAdapterManager(TvDbDataAdapterManager* manager)
{
    current() = manager;
}
