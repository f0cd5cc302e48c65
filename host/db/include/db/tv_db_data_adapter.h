#pragma once

#include <memory>
#include <vector>

#include <db/tv_status.h>
#include <rx/tv_rx_object.h>

class TvDbDataLink;

/// Fetches the data of links of its own kind into tables.
class TvDbDataAdapter
{
public:
    virtual ~TvDbDataAdapter() = default;
    /// @param link       null: NotApplicable.
    /// @param content    the table's content, which is filled.
    /// @param direction  1: from the source into the table.
    /// @return NotThatLink for a link that is not of its kind.
    virtual TvStatusCode updateData(TvDbDataLink* link, TvRxObject* content, int direction) = 0;
    /// Whether the table can be written back to the source.
    virtual bool canWriteSource() const = 0;
    /// Flags of the source; 0: none.
    virtual int sourceFlags() const = 0;
    /// Which kinds of update it makes, as bits.
    virtual int updateKinds() const = 0;
    /// An empty content of the kind that updateData() fills, the caller's; null when it has none.
    virtual std::unique_ptr<TvRxObject> createContent() = 0;
};

/// Gives adapters by their id; a module registers one for those that it has.
class TvDbDataAdapterProvider
{
public:
    /// The provider's; null for an id that it does not know.
    virtual TvDbDataAdapter* getAdapter(const TvString& id) = 0;
    virtual ~TvDbDataAdapterProvider() = default;
};

/// Knows the providers. The first that knows an id answers.
///
/// What is copied is not inlined: modules export it.
class __attribute__((visibility("default"))) TvDbDataAdapterManager
{
public:
    [[gnu::noinline]] TvDbDataAdapterManager() {}
    [[gnu::noinline]] TvDbDataAdapterManager(const TvDbDataAdapterManager& other)
        : m_providers(other.m_providers)
    {
    }
    [[gnu::noinline]] TvDbDataAdapterManager& operator=(const TvDbDataAdapterManager& other)
    {
        m_providers = other.m_providers;
        return *this;
    }
    virtual ~TvDbDataAdapterManager();

    /// @param provider  not owned; null, and one that is there already, are nothing.
    virtual void registerAdapterProvider(TvDbDataAdapterProvider* provider);
    virtual void unregisterAdapterProvider(TvDbDataAdapterProvider* provider);
    /// Null when nobody knows it.
    virtual TvDbDataAdapter* getAdapter(const TvString& id);

private:
    std::vector<TvDbDataAdapterProvider*> m_providers; // in the order of their coming
};

/// The program's; null where it has none.
TvDbDataAdapterManager* tvdbGetDataAdapterManager();
/// Not owned. Null takes it away.
void tvdbSetDataAdapterManager(TvDbDataAdapterManager* manager);
