#include "rx/tv_rx_dictionary.h"

TvRxObject::~TvRxObject() = default;

TvRxClass* TvRxObject::desc()
{
    static TvRxClass instance(u"TvRxObject", nullptr);
    return &instance;
}

TVRX_DEFINE_MEMBERS(TvRxDictionary, TvRxObject)

TvRxObject* TvRxDictionary::at(const TvString& key) const
{
    for (const Entry& entry : m_entries)
        if (entry.key == key)
            return entry.object;
    return nullptr;
}

TvRxObject* TvRxDictionary::atPut(const TvString& key, TvRxObject* object)
{
    if (!object)
        return nullptr;
    for (Entry& entry : m_entries)
        if (entry.key == key)
            return std::exchange(entry.object, object);
    m_entries.push_back({key, object});
    return nullptr;
}

TvRxObject* TvRxDictionary::remove(const TvString& key)
{
    for (auto entry = m_entries.begin(); entry != m_entries.end(); ++entry) {
        if (entry->key == key) {
            TvRxObject* object = entry->object;
            m_entries.erase(entry);
            return object;
        }
    }
    return nullptr;
}

std::vector<TvString> TvRxDictionary::keys() const
{
    std::vector<TvString> result;
    result.reserve(m_entries.size());
    for (const Entry& entry : m_entries)
        result.push_back(entry.key);
    return result;
}

TvRxDictionary* tvrxSysRegistry()
{
    static TvRxDictionary registry;
    return &registry;
}
