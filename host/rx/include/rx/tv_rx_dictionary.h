#pragma once

#include <memory>
#include <string>
#include <vector>

#include <rx/tv_rx_object.h>

/// The system registry's kind of container: objects by name, in the order they were put in. Names
/// are compared letter for letter.
class TvRxDictionary : public TvRxObject
{
    TVRX_DECLARE_MEMBERS(TvRxDictionary)

    /// Null when there is none of that name.
    TvRxObject* at(const TvString& key) const;
    bool has(const TvString& key) const { return at(key) != nullptr; }
    /// Puts @p object in under @p key, in the place of one that stood there.
    /// @param object   not owned: whoever puts it in takes it out before it goes; null puts nothing
    /// in.
    /// @return the object that stood there before, or null.
    virtual TvRxObject* atPut(const TvString& key, TvRxObject* object);
    /// Takes the entry out and gives its object, or null.
    virtual TvRxObject* remove(const TvString& key);
    int numEntries() const { return static_cast<int>(m_entries.size()); }
    /// The keys, in the order they were put in.
    std::vector<TvString> keys() const;

private:
    struct Entry {
        TvString key;
        TvRxObject* object; // not owned
    };
    std::vector<Entry> m_entries;
};

/// The one registry of the process, where the host's parts find each other by name
/// ("DynamicLinker", "ServiceDictionary", ...). Never null.
TvRxDictionary* tvrxSysRegistry();
